// What a run changed in the base: the rows that it may write, read before its first line and after its last
// update, and their difference.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "base/date.h"
#include "corridas/fila_codificada.h"
#include "sesion/db_session.h"

namespace corridas {

// One row. None before: inserted; none after: deleted; neither is none: changed.
struct CambioDeFila {
  std::optional<Fila> antes, despues;  // all columns of its table
  const Fila& Cualquiera() const { return despues ? *despues : *antes; }
};

struct CambiosDeTabla {
  std::string tabla;
  std::vector<std::string> columnas;  // as the base names them
  std::vector<std::size_t> clave;     // positions in `columnas` of what names a row
  std::vector<CambioDeFila> filas;    // by key
  // Position of a column whatever its case, -1 when there is none.
  int Columna(std::string_view nombre) const;
};

// The tables are always the five of kTablas and in their order, also when nothing changed.
struct Cambios {
  std::vector<CambiosDeTabla> tablas;
  std::size_t Cantidad() const;
};

enum Tabla : std::size_t { kEncabezados, kDatos, kPagos, kPagosDeta, kTablasUsuario, kCuantasTablas };

// A name for the whole of what a Foto holds, whatever the order of its rows.
struct Huella {
  std::uint64_t suma = 0, filas = 0;
  bool operator==(const Huella&) const = default;
};

class Foto {
 public:
  Foto() = default;
  // Reads the month's headers and data, their instalments, and the user tables: five plain queries. Throws
  // db::Error.
  static Foto Tomar(const sesion::DbSession& sesion, base::Date mes);
  corridas::Huella Huella() const { return huella_; }
  const std::vector<std::string>& Columnas(Tabla tabla) const { return tablas_.at(tabla).columnas; }
  void ParaCada(Tabla tabla, const std::function<void(const Fila&)>& paso) const;
  // The rows with the key of that one, which has the columns of the table; more than one where the base holds
  // its keys twice.
  std::vector<Fila> ConClaveDe(Tabla tabla, const Fila& fila) const;
  friend Cambios Diferencia(const Foto& antes, const Foto& despues);

 private:
  struct FilaGuardada {
    std::size_t comienzo = 0, fin_clave = 0, fin = 0;  // in bytes_: the key, then all columns
  };
  struct TablaGuardada {
    std::vector<std::string> columnas;
    std::vector<std::size_t> clave;
    std::string bytes;
    std::vector<FilaGuardada> filas;
    mutable std::unordered_multimap<std::string, std::size_t> indice;  // by key; made when first asked

    std::string_view Clave(const FilaGuardada& f) const;
    std::string_view Valores(const FilaGuardada& f) const;
    Fila Decodificada(const FilaGuardada& f) const;
  };
  // Positions of the rows of a key: more than one where the base holds its keys twice.
  using Indice = std::unordered_multimap<std::string_view, std::size_t>;

  static TablaGuardada Leer(const sesion::DbSession& sesion, Tabla tabla, base::Date mes);
  static CambiosDeTabla DiferenciaDe(const TablaGuardada& antes, const TablaGuardada& despues);
  static std::optional<std::size_t> Pareja(const TablaGuardada& de, Indice& indice, const TablaGuardada& en,
                                           const FilaGuardada& fila, bool igual);

  std::vector<TablaGuardada> tablas_;
  corridas::Huella huella_;
};

// Linear in the rows. Of two rows with one key those that are alike are a pair.
Cambios Diferencia(const Foto& antes, const Foto& despues);

}  // namespace corridas
