// What the functions of the dialect share: their surroundings, their arguments and how they answer.
//
// Values live in SQLite as: booleans -1/0, dates as day serials, currency and singles as reals. The letters
// of a tagged function (see jetsql/functions.h) tell them apart where a text must be made of them.
#pragma once

#include <sqlite3.h>

#include <array>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "base/date.h"
#include "base/error.h"
#include "base/locale.h"
#include "base/sort_order.h"
#include "base/valor.h"
#include "ports/clock.h"

namespace engine_sqlite {

// The surroundings of a connection's functions. It outlives the SQLite handle that they are registered on.
struct Entorno {
  const base::Locale* locale = nullptr;
  const ports::Clock* reloj = nullptr;
  base::Orden orden = base::Orden::EspanolModerno;
  std::uint32_t azar = 0x50000;  // the state of Rnd
  bool utf8 = false;             // the file holds its texts in UTF-8
  sqlite3* base = nullptr;       // on which the functions are registered

  // The clock stands still while a statement runs: it is read once, when the statement first asks.
  base::Fecha Ahora();
  std::optional<base::Fecha> ahora;  // emptied before each statement

  // The failure that a function raised in the statement that is running.
  bool fallo = false;
  bool sin_memoria = false;  // a comparison did not get its memory, and has no other way to say so
  std::string descripcion;
  int numero = 0;

  // What a bounded statement may still take (see work_limit_internal.h); null for any other. A function that
  // works on long texts takes more than the one step that it is to SQLite.
  std::int64_t* steps_left = nullptr;
  void Charge(std::size_t steps) {
    if (steps_left != nullptr) *steps_left -= static_cast<std::int64_t>(steps);
  }
  bool Exhausted() const { return steps_left != nullptr && *steps_left < 0; }
};

// The errors of the dialect's runtime.
[[noreturn]] void LanzarNumero(int numero);
inline constexpr int kLlamadaIncorrecta = 5;
inline constexpr int kDesbordamiento = 6;
inline constexpr int kDivisionPorCero = 11;
inline constexpr int kNoCoincidenTipos = 13;
inline constexpr int kUsoDeNulo = 94;

class Llamada {
 public:
  static constexpr int kMaximo = 8;  // arguments whose text may need a conversion

  Llamada(sqlite3_context* contexto, std::span<sqlite3_value*> valores, Entorno& entorno, bool etiquetada);

  Entorno& Alrededor() const { return entorno_; }
  const base::Locale& Regional() const { return *entorno_.locale; }
  base::Fecha Ahora() const { return entorno_.Ahora(); }
  base::Fecha Hoy() const;

  // Arguments, from 0, without the tag.
  int Cantidad() const { return static_cast<int>(valores_.size()); }
  bool Hay(int i) const { return i < Cantidad(); }
  bool EsNulo(int i) const { return sqlite3_value_type(valores_[i]) == SQLITE_NULL; }
  bool AlgunNulo() const;
  // The letter of the type: the tag's, or I, N, T by the storage class. Text that a tag calls otherwise is T.
  char Letra(int i) const;
  bool EsTexto(int i) const { return sqlite3_value_type(valores_[i]) == SQLITE_TEXT; }

  // As text by the locale. The view lasts until the function returns; i < kMaximo. Null is "".
  std::string_view Texto(int i);
  // The same at the end of `destino`, for any argument.
  void AgregarTexto(int i, std::string& destino) const;
  // As a number: a text is read by the locale. Throws 13 for a text that is none, 94 for Null.
  double Numero(int i) const;
  std::int64_t Entero(int i) const;         // half to even
  std::int32_t Entero32(int i) const;       // the same; throws 6 outside 32 bits
  int Opcional(int i, int si_falta) const;  // Entero32, or `si_falta` when there is no such argument
  // The first day of the week, or the first week of the year, that argument `i` names; 0, the system's,
  // counts as when it is not given: Sunday, and the week of January 1st. Throws 5 for another one.
  int PrimerDia(int i) const;
  int PrimeraSemana(int i) const;
  bool Booleano(int i) const;       // not 0; Null is false
  base::Fecha Fecha(int i) const;   // a text is read as CDate reads it; throws 13, 94
  base::Valor Tipado(int i) const;  // with the type that the letter tells
  // A number as SQLite holds it (INTEGER or FLOAT); a text that is a whole number gives an integer.
  struct Cifra {
    bool entera;
    std::int64_t entero;
    double real;
  };
  Cifra Numerico(int i) const;

  // The answer. Called once.
  void Nulo() { sqlite3_result_null(contexto_); }
  void DarEntero(std::int64_t v) { sqlite3_result_int64(contexto_, v); }
  void DarNumero(double v);  // throws 6 when it is no finite number
  void DarCifra(const Cifra& v) { v.entera ? DarEntero(v.entero) : DarNumero(v.real); }
  void DarBooleano(bool v) { sqlite3_result_int(contexto_, v ? -1 : 0); }
  void DarFecha(base::Fecha v) { sqlite3_result_double(contexto_, v.serie); }
  void DarTexto(std::string_view v);
  void DarArgumento(int i) { sqlite3_result_value(contexto_, valores_[i]); }

 private:
  sqlite3_context* contexto_;
  std::span<sqlite3_value*> valores_;
  Entorno& entorno_;
  std::string_view Vista(sqlite3_value* valor) const;

  std::string_view letras_;
  std::array<std::string, kMaximo> convertidos_;
};

using Cuerpo = void (*)(Llamada&);

// One function of the SQLite text. `argumentos` counts the tag; -1: any number.
struct Registro {
  const char* nombre;  // with jet_
  int argumentos;
  bool etiquetada;
  bool determinista;
  Cuerpo cuerpo;
};

// The bodies of the dialect's functions, by the dialect's name; each file has its own.
struct Implementacion {
  std::string_view nombre;  // upper case, as in jetsql/functions.h
  Cuerpo cuerpo;
};
std::span<const Implementacion> FuncionesDeTexto();
std::span<const Implementacion> FuncionesNumericas();
std::span<const Implementacion> FuncionesDeConversion();
std::span<const Implementacion> FuncionesDeFecha();
std::span<const Implementacion> FuncionesDeFormato();
std::span<const Implementacion> FuncionesFinancieras();
std::span<const Registro> AyudasDelTraductor();
void RegistrarTotales(sqlite3* base);

// Hands a failure of a function to SQLite, keeping its text and number in the surroundings.
void Anotar(sqlite3_context* contexto, Entorno& entorno, const base::Error& error);

// Registers the functions, the helpers of the writer, the aggregates and the collation JET. `entorno` must
// outlive the handle.
void Registrar(sqlite3* base, Entorno& entorno);

}  // namespace engine_sqlite
