#include <cmath>

#include "base/error.h"
#include "base/number.h"
#include "base/text.h"
#include "formula/vectores/vector_utils.h"

namespace formula {
namespace {

constexpr std::string_view kAgregar = "++";

std::string_view SinMarca(std::string_view campos) {
  return base::StartsWith(campos, kAgregar) ? campos.substr(kAgregar.size()) : campos;
}

// Where the statement's own ORDER BY stands: the last one outside parentheses.
std::size_t BuscarOrden(std::string_view sql) {
  constexpr std::string_view kOrden = "ORDER BY";
  std::size_t hallado = std::string_view::npos;
  long long abiertos = 0;
  for (std::size_t i = 0; i < sql.size(); ++i) {
    if (sql[i] == '(') ++abiertos;
    if (sql[i] == ')') --abiertos;
    if (abiertos == 0 && base::StartsWith(sql.substr(i, kOrden.size()), kOrden, base::Compare::IgnoringCase))
      hallado = i;
  }
  return hallado;
}

// The name that a field of the list has in the result: without its table, brackets and blanks.
std::string_view NombreDeCampo(std::string_view campo) {
  campo = campo.substr(campo.rfind('.') + 1);  // npos + 1 is 0
  campo = base::TrimView(campo);
  if (!campo.empty() && campo.front() == '[' && campo.back() == ']')
    campo = campo.substr(1, campo.size() - 2);
  return campo;
}

// The columns of the listed fields: by name where the result has it, else by place.
std::vector<std::size_t> ColumnasDe(std::string_view campos, const db::Recordset& filas) {
  std::vector<std::size_t> columnas;
  std::size_t lugar = 0;
  for (const auto& campo : base::Split(campos, ",")) {
    const int posicion = filas.PositionOf(NombreDeCampo(campo));
    const std::size_t columna = posicion >= 0 ? static_cast<std::size_t>(posicion) : lugar;
    // A driver of another program may answer with less than it was asked for.
    if (columna >= filas.Fields().size())
      throw db::Error("La consulta no devolvió la columna " + std::string(NombreDeCampo(campo)) + ".");
    columnas.push_back(columna);
    ++lugar;
  }
  return columnas;
}

std::int64_t Dato(std::string_view registro) {
  constexpr double kMaximo = 9e15;
  const double numero = base::Parse(registro);  // stops at the first "*"
  return std::abs(numero) <= kMaximo ? static_cast<std::int64_t>(numero) : 0;
}

void Llenar(ListControl& control, Vector* vector, const db::Recordset& filas,
            const std::vector<std::size_t>& columnas, std::string_view separador,
            const FormaDeRegistro* forma) {
  for (std::size_t fila = 0; fila < filas.Count(); ++fila) {
    const std::string primero = filas.At(columnas[0], fila).Text();
    if (vector != nullptr && forma != nullptr)
      AgregarRegistro(*vector, primero, *forma);
    else if (vector != nullptr)
      AgregarRegistro(*vector, primero);
    ItemLista item;
    item.dato = Dato(primero);
    const std::size_t desde = vector != nullptr ? 1 : 0;
    for (std::size_t i = desde; i < columnas.size(); ++i) {
      if (i > desde) item.texto += separador;
      item.texto += filas.At(columnas[i], fila).Text();
    }
    control.items.push_back(std::move(item));
  }
}

}  // namespace

std::string SentenciaDeLista(std::string_view tabla, std::string_view campos, std::string_view condicion) {
  if (condicion == "*") condicion = {};
  campos = SinMarca(campos);
  const std::string donde = condicion.empty() ? "" : " Where " + std::string(condicion);
  if (!base::StartsWith(tabla, "SELECT ", base::Compare::IgnoringCase)) {
    const std::string lista(campos);
    return "select " + lista + " from " + std::string(tabla) + donde + " order by " + lista;
  }
  std::string sql(tabla);
  if (donde.empty()) return sql;
  const std::size_t orden = BuscarOrden(sql);
  if (orden == std::string::npos) return sql + donde;
  return sql.insert(orden, donde + " ");
}

int LlenarLista(ListControl& control, std::string_view tabla, std::string_view campos,
                std::string_view condicion, std::string_view separador, Vector* vector,
                const sesion::DbSession& sesion, base::ErrorSink* errores, const FormaDeRegistro* forma) {
  if (!base::StartsWith(campos, kAgregar)) {
    control.items.clear();
    control.ListIndex = -1;
    if (vector != nullptr) *vector = Vector{};
  }
  const bool bien = base::PassOverError("LlenarLista", errores, [&] {
    if (!sesion.Abierta()) throw db::Error("La Base no está Abierta");
    const db::Recordset filas = sesion.conexion->Query(SentenciaDeLista(tabla, campos, condicion));
    Llenar(control, vector, filas, ColumnasDe(SinMarca(campos), filas), separador, forma);
  });
  return bien ? 0 : -1;
}

}  // namespace formula
