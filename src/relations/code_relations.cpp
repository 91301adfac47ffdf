#include "relations/code_relations.h"

#include <algorithm>

#include "base/error.h"
#include "base/number.h"
#include "base/text.h"
#include "formula/vector_utils.h"

namespace relations {
namespace {

bool EnBlanco(std::string_view linea) { return base::TrimVista(linea).empty(); }

// A relation has six fields whatever its text holds. The table takes a text without "*" as an item and not as
// a record, so the stars that are missing are put behind it.
void AgregarRelacion(formula::Vector& tabla, std::string_view registro) {
  std::string completo(registro);
  const auto estrellas = static_cast<std::size_t>(std::count(completo.begin(), completo.end(), '*'));
  if (estrellas + 1 < kCamposRelacion) completo.append(kCamposRelacion - 1 - estrellas, '*');
  formula::AgregarRegistro(tabla, completo);
  tabla.registros.back().resize(kCamposRelacion);
}

FilaGridRelaciones FilaDe(const formula::Vector& tabla, std::size_t relacion) {
  return {.Codigo = tabla.Campo(kCodigo, relacion),
          .Nombre = tabla.Campo(kNombre, relacion),
          .CodigosVincConReloj = SinComasExternas(tabla.Campo(kExternos, relacion)),
          .CC = tabla.Campo(kCC, relacion)};
}

}  // namespace

std::int32_t CodeRelations::Color(std::size_t relacion) const {
  std::int32_t color = 0;
  base::ErrorIgnorado("CodeRelations::Color", nullptr,
                      [&] { color = base::Entero32(base::Parse(Campo(kColor, relacion))); });
  return color;
}

int CodeRelations::PosEnVecConc(std::string_view codigo) const {
  if (!indexada_) Indexar();
  if (const auto it = vistos_.find(codigo); it != vistos_.end()) return it->second;
  // What stands between two neighbouring commas is in the index; only a code that holds commas itself can
  // still be part of a list.
  if (codigo.find(',') == std::string_view::npos) return -1;
  std::string aguja(",");
  aguja.append(codigo).append(",");
  int hallada = -1;
  for (std::size_t i = 0; i < Cantidad() && hallada < 0; ++i)
    if (Campo(kExternos, i).find(aguja) != std::string::npos) hallada = static_cast<int>(i);
  vistos_.emplace(codigo, hallada);
  return hallada;
}

int CodeRelations::PosDeCodigo(std::string_view codigo_relacion) const {
  return static_cast<int>(formula::FindInColumn(codigo_relacion, tabla_, kCodigo));
}

void CodeRelations::Indexar() const {
  vistos_.clear();
  std::vector<std::string_view> piezas;
  for (std::size_t i = 0; i < Cantidad(); ++i) {
    piezas.clear();
    base::SplitVistas(Campo(kExternos, i), ",", piezas);
    for (std::size_t p = 1; p + 1 < piezas.size(); ++p)  // the outer pieces lack a comma on one side
      vistos_.emplace(piezas[p], static_cast<int>(i));
  }
  indexada_ = true;
}

void CodeRelations::Reemplazar(std::string_view texto) {
  tabla_ = {.dimensiones = 2, .registros = {}};
  grid_.clear();
  indexada_ = false;
  std::vector<std::string_view> lineas;
  base::SplitVistas(texto, base::Contiene(texto, base::kCrLf) ? base::kCrLf : std::string_view("\n"), lineas);
  for (const std::string_view linea : lineas)
    if (!EnBlanco(linea)) Agregar(linea);
}

void CodeRelations::Agregar(std::string_view registro) {
  AgregarRelacion(tabla_, registro);
  grid_.push_back(FilaDe(tabla_, Cantidad() - 1));
  indexada_ = false;
}

void CodeRelations::Quitar(std::size_t relacion) {
  if (relacion >= Cantidad()) return;
  formula::QuitarRegistro(tabla_, static_cast<std::ptrdiff_t>(relacion));
  grid_.erase(grid_.begin() + static_cast<std::ptrdiff_t>(relacion));
  indexada_ = false;
}

std::string CodeRelations::Texto() const { return formula::UnirVector(tabla_, -1, "*", base::kCrLf); }

}  // namespace relations
