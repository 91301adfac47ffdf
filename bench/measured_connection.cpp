#include "measured_connection.h"

#include <array>
#include <utility>

#include "base/text.h"

namespace bench {
namespace {

struct Clase {
  std::string_view comienzo, contiene, nombre;
};

// The first that fits names the statement; those of each line come first.
constexpr std::array<Clase, 15> kClases = {{
    {"Select id_Dato", "", "find datum"},
    {"insert into Datos_Liquidacion", "", "insert datum"},
    {"select max(", "id_Dato", "max id_Dato"},
    {"SELECT  TTL", "", "type of contract"},
    {"Update Datos_Liquidacion", "", "update datum"},
    {"select max(", "id_Encabezado", "max id_Encabezado"},
    {"Insert into Encabezados", "", "insert header"},
    {"Select id_Encabezado", "", "find header"},
    {"UPDATE Datos_Liquidacion INNER JOIN CDetaLiq", "", "final: days"},
    {"UPDATE Datos_Liquidacion INNER JOIN ACambiar", "", "final: amounts"},
    {"Update  ((Conceptos", "", "final: detail"},
    {"", "From Con_Contrato", "persons"},
    {"", "cLiq_HistoricoSimple", "preload"},
    {"", "inner join Contrato", "open headers"},
    {"", "", "other"},
}};

std::string_view NombreDe(std::string_view sql) {
  for (const Clase& clase : kClases) {
    if (!base::EmpiezaCon(sql, clase.comienzo)) continue;
    if (clase.contiene.empty() || sql.find(clase.contiene) != sql.npos) return clase.nombre;
  }
  return "other";
}

}  // namespace

template <typename Paso>
auto MeasuredConnection::Medir(std::string_view sql, Paso&& paso) {
  const std::string_view nombre = NombreDe(sql);
  auto it = costos_.find(nombre);
  if (it == costos_.end()) it = costos_.emplace(nombre, Costo{}).first;
  Costo& costo = it->second;
  const RelojDePared reloj;
  if (!EsActualizacionFinal(nombre)) {
    auto resultado = paso();
    costo.segundos += reloj.Segundos();
    ++costo.veces;
    return resultado;
  }
  const Reloj proceso;
  auto resultado = paso();
  costo.proceso += proceso.Segundos();
  costo.segundos += reloj.Segundos();
  ++costo.veces;
  return resultado;
}

db::Recordset MeasuredConnection::Ejecutar(std::string_view sql) {
  return Medir(sql, [&] { return otra_->Ejecutar(sql); });
}

db::Recordset MeasuredConnection::Consultar(std::string_view sql) {
  return Medir(sql, [&] { return otra_->Consultar(sql); });
}

void MeasuredConnection::CommitTrans() {
  const RelojDePared reloj;
  const Reloj proceso;
  otra_->CommitTrans();
  Costo& costo = costos_["commit"];
  costo.proceso += proceso.Segundos();
  costo.segundos += reloj.Segundos();
  ++costo.veces;
}

bool EsActualizacionFinal(std::string_view nombre) { return base::EmpiezaCon(nombre, "final: "); }

}  // namespace bench
