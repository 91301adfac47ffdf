#include "liquidation/open_headers.h"

#include <algorithm>

#include "base/dialect_number.h"
#include "base/number.h"
#include "base/text.h"
#include "liquidation/sql.h"

namespace liquidation {

std::string_view KeyField(int clave) {
  switch (clave) {
    case 0:
      return "id_Contrato";
    case 1:
      return "Numero_Alternativo";
    case 2:
      return "Tarjeta";
    case 3:
      return "Dat";
    case 4:
      return "NUMERO";
    default:
      return "id_Persona";
  }
}

bool ClaveDeTexto(int clave) { return clave == 1 || clave == 3; }

std::string OpenHeaders::Normalizada(std::string_view valor) const {
  if (ClaveDeTexto(clave_)) {
    while (!valor.empty() && valor.back() == ' ') valor.remove_suffix(1);
    return "'" + base::LowerCase(valor);  // the mark keeps an empty text apart from "matches nothing"
  }
  const auto numero = base::DialectNumber(valor);
  return numero ? base::SqlNumber(*numero) : std::string();
}

void OpenHeaders::Abrir(const sesion::DbSession& sesion, base::Date mes, std::string filtro_tipo, int clave) {
  mes_ = mes;
  filtro_tipo_ = std::move(filtro_tipo);
  clave_ = clave;
  por_clave_.clear();
  nuevos_.clear();
  Incorporar(sesion, std::nullopt);
}

void OpenHeaders::Reabrir(const sesion::DbSession& sesion, std::int32_t id_Encabezado) {
  Incorporar(sesion, id_Encabezado);
}

void OpenHeaders::Incorporar(const sesion::DbSession& sesion, std::optional<std::int32_t> uno) {
  const db::Recordset rs =
      sesion.conexion->Execute(sql::EncabezadosAbiertos(sesion.idEmpresa, mes_, filtro_tipo_, uno));
  const auto columna = [&rs](std::string_view nombre) {
    const int i = rs.PositionOf(nombre);
    if (i < 0)
      throw db::Error("La consulta de encabezados abiertos no tiene la columna " + std::string(nombre));
    return static_cast<std::size_t>(i);
  };
  const std::size_t id = columna("id_Encabezado"), contrato = columna("id_Contrato"),
                    tipo = columna("id_TipoLiq"), terminado = columna("Terminado"),
                    clave = columna(KeyField(clave_));
  for (std::size_t fila = 0; fila < rs.Count(); ++fila) {
    if (rs.At(clave, fila).IsNull()) continue;  // a criterion never equals Null
    const std::string valor = Normalizada(rs.At(clave, fila).CsvText());
    if (valor.empty()) continue;
    const EncabezadoAbierto nuevo{rs.At(id, fila).Integer(), rs.At(contrato, fila).Integer(),
                                  rs.At(tipo, fila).Integer(), rs.At(terminado, fila).Boolean()};
    auto& lista = por_clave_[valor];
    const auto antes = [](const EncabezadoAbierto& a, const EncabezadoAbierto& b) {
      return a.id_Contrato != b.id_Contrato ? a.id_Contrato < b.id_Contrato : a.id_TipoLiq < b.id_TipoLiq;
    };
    lista.insert(std::upper_bound(lista.begin(), lista.end(), nuevo, antes), nuevo);
    if (uno) nuevos_.emplace_back(valor, nuevo.id_Encabezado);
  }
}

void OpenHeaders::Deshacer() {
  for (const auto& [clave, id] : nuevos_) {
    const auto it = por_clave_.find(clave);
    if (it == por_clave_.end()) continue;
    std::erase_if(it->second, [id = id](const EncabezadoAbierto& e) { return e.id_Encabezado == id; });
    if (it->second.empty()) por_clave_.erase(it);
  }
  nuevos_.clear();
}

const EncabezadoAbierto* OpenHeaders::Buscar(std::string_view valor, std::int32_t contrato) const {
  const std::string clave = Normalizada(valor);
  if (clave.empty()) return nullptr;
  const auto it = por_clave_.find(clave);
  if (it == por_clave_.end()) return nullptr;
  const EncabezadoAbierto& primero = it->second.front();
  return primero.id_Contrato == contrato ? &primero : nullptr;
}

}  // namespace liquidation
