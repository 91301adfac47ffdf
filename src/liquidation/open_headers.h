// The month's open liquidation headers, found by the key that the file names its persons with.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include "base/date.h"
#include "sesion/db_session.h"

namespace liquidation {

struct EncabezadoAbierto {
  std::int32_t id_Encabezado = 0;
  std::int32_t id_Contrato = 0;
  std::int32_t id_TipoLiq = 0;
  bool Terminado = false;
};

// The field of the headers' query by key kind: id_Contrato, Numero_Alternativo, Tarjeta, Dat, NUMERO, else
// id_Persona.
std::string_view KeyField(int clave);
// Kinds 1 and 3 compare as text, without case; the others as numbers.
bool ClaveDeTexto(int clave);

class OpenHeaders {
 public:
  // Runs the headers' query and keeps its rows by person key, in its order (contract, type). Throws
  // db::Error; the table is then empty.
  void Abrir(const sesion::DbSession& sesion, base::Date mes, std::string filtro_tipo, int clave);
  // The first record whose key field equals the value: as a criterion "field=value" finds it. Null when there
  // is none, and when that record is another contract's: two may share a card, or belong to one person. A
  // value that is no number finds nothing under a numeric kind. The pointer lives until the next Reabrir.
  const EncabezadoAbierto* Buscar(std::string_view valor, std::int32_t contrato) const;
  // Brings in a header that the run has just inserted, as opening the whole query again would, reading that
  // header alone. Throws db::Error.
  void Reabrir(const sesion::DbSession& sesion, std::int32_t id_Encabezado);

  // What was brought in since the last Marcar goes back.
  void Marcar() { nuevos_.clear(); }
  void Deshacer();

 private:
  void Incorporar(const sesion::DbSession& sesion, std::optional<std::int32_t> uno);  // or all
  std::string Normalizada(std::string_view valor) const;  // "" when it can match nothing

  base::Date mes_;
  std::string filtro_tipo_;
  int clave_ = 5;
  std::unordered_map<std::string, std::vector<EncabezadoAbierto>> por_clave_;
  std::vector<std::pair<std::string, std::int32_t>> nuevos_;  // key and header, since Marcar
};

}  // namespace liquidation
