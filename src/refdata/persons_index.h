// The contracts in force at some moment of a month, with the six keys by which a line may name its person.
#pragma once

#include <array>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "base/error.h"
#include "ports/prompts.h"
#include "sesion/db_session.h"

namespace refdata {

// Columns, in order: id_Contrato, Numero_Alternativo, Tarjeta, Dat, Numero, id_Persona (the six keys),
// Nombre_1, Apellido_1, Total (monthly hours), id_TipoRem, idCC. Rows ascend by Nombre_1.
enum ColumnaPersona {
  kContrato,
  kAlternativo,
  kTarjeta,
  kDat,
  kDocumento,
  kPersona,
  kNombre,
  kApellido,
  kTotal,
  kTipoRem,
  kCC
};
inline constexpr std::size_t kColumnasPersona = 11;

class PersonsIndex {
 public:
  // Why the last load could not read it, "" when it did: an index that is empty with a reason says nothing
  // about who works here.
  std::string motivo_fallo;

  std::size_t Cantidad() const { return filas_.size(); }
  // The value as text, "" for Null; numbers in the "." form.
  const std::string& Texto(int columna, std::size_t fila) const {
    return filas_[fila][static_cast<std::size_t>(columna)];
  }
  // FindInColumn over this table: the first row in table order whose column equals the key, or -1. Both are
  // compared as text, letter by letter: the keys that the database holds as numbers are texts here, and a
  // line's key comes without leading zeros. An empty key names nobody: a Null key never equals a text, and a
  // line without a key must not fall to whoever has an empty card. Constant time; the first look-up of a
  // column after a load indexes it.
  int Buscar(std::string_view clave, int columna) const;

  using Fila = std::array<std::string, kColumnasPersona>;
  void Reemplazar(std::vector<Fila> filas);
  void Vaciar() { Reemplazar({}); }

 private:
  struct Dispersion {
    using is_transparent = void;
    std::size_t operator()(std::string_view t) const { return std::hash<std::string_view>{}(t); }
  };
  using Indice = std::unordered_map<std::string, int, Dispersion, std::equal_to<>>;

  std::vector<Fila> filas_;
  mutable std::array<Indice, kColumnasPersona> por_clave_;
  mutable std::array<bool, kColumnasPersona> indexada_{};
};

// Stores the month as PARFECHA and reads the contracts of the month. With the connection closed it shows "La
// Base no está Abierta", leaves the rows, sets the reason and returns false. Failing statements are noted in
// `errores`: that of PARFECHA is passed over, that of the contracts leaves the index empty with its reason.
// A fault of the storage leaves it so too and travels on. The caller then reloads the concepts catalogue,
// whatever statement failed.
bool CargarVecDePersonas(const sesion::DbSession& sesion, base::Date mes, PersonsIndex& indice,
                         ports::Prompts& prompts, base::ErrorSink* errores = nullptr);

}  // namespace refdata
