#include "relations/code_relations.h"

#include "base/error.h"
#include "base/number.h"
#include "base/text.h"
#include "formula/vectores/vector_utils.h"
#include "relations/relation_line_internal.h"
#include "settings/config_file.h"

namespace relations {
namespace {

bool EnBlanco(std::string_view linea) { return base::TrimView(linea).empty(); }

FilaGridRelaciones FilaDe(const formula::Vector& tabla, std::size_t relacion) {
  return {.Codigo = tabla.Campo(kCodigo, relacion),
          .Nombre = tabla.Campo(kNombre, relacion),
          .CodigosVincConReloj = SinComasExternas(tabla.Campo(kExternos, relacion)),
          .CC = tabla.Campo(kCC, relacion)};
}

}  // namespace

std::int32_t CodeRelations::Color(std::size_t relacion) const {
  std::int32_t color = 0;
  base::PassOverError("CodeRelations::Color", nullptr,
                      [&] { color = base::Integer32(base::Parse(Campo(kColor, relacion))); });
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
    base::SplitViews(Campo(kExternos, i), ",", piezas);
    for (std::size_t p = 1; p + 1 < piezas.size(); ++p)  // the outer pieces lack a comma on one side
      vistos_.emplace(piezas[p], static_cast<int>(i));
  }
  indexada_ = true;
}

void CodeRelations::Vaciar() {
  tabla_ = {.dimensiones = 2, .registros = {}};
  grid_.clear();
  indexada_ = false;
}

void CodeRelations::Reemplazar(std::string_view texto) {
  Vaciar();
  const std::string con_crlf = settings::ConCrLf(texto);
  std::vector<std::string_view> lineas;
  base::SplitViews(con_crlf, base::kCrLf, lineas);
  for (const std::string_view linea : lineas)
    if (!EnBlanco(linea)) Agregar(linea);
}

void CodeRelations::Reemplazar(const std::vector<Relacion>& relaciones) {
  Vaciar();
  for (const Relacion& relacion : relaciones) Agregar(relacion);
}

void CodeRelations::Agregar(std::string_view linea) { Agregar(RelacionDeLinea(linea)); }

void CodeRelations::Agregar(const Relacion& relacion) {
  tabla_.registros.emplace_back(relacion.begin(), relacion.end());
  grid_.push_back(FilaDe(tabla_, Cantidad() - 1));
  indexada_ = false;
}

void CodeRelations::Quitar(std::size_t relacion) {
  if (relacion >= Cantidad()) return;
  formula::QuitarRegistro(tabla_, static_cast<std::ptrdiff_t>(relacion));
  grid_.erase(grid_.begin() + static_cast<std::ptrdiff_t>(relacion));
  indexada_ = false;
}

void CodeRelations::PonerExternos(std::size_t relacion, std::string externos) {
  tabla_.registros.at(relacion).at(kExternos) = std::move(externos);
  grid_.at(relacion) = FilaDe(tabla_, relacion);
  indexada_ = false;
}

std::string CodeRelations::Texto() const {
  std::string texto;
  for (std::size_t i = 0; i < Cantidad(); ++i) {
    if (i > 0) texto += base::kCrLf;
    texto += LineaDeRelacion(tabla_.registros[i]);
  }
  return texto;
}

}  // namespace relations
