// Runs the tables of facts about text, number and date primitives that lie beside the checkout, where the
// functions of this module serve them directly.
#include <gtest/gtest.h>

#include <cmath>
#include <filesystem>
#include <functional>
#include <iostream>
#include <map>
#include <optional>
#include <sstream>

#include "base/date.h"
#include "base/dialect_number.h"
#include "base/error.h"
#include "base/format.h"
#include "base/number.h"
#include "base/text.h"
#include "base/valor.h"
#include "conformance/comparar.h"
#include "support/source_dir.h"

namespace {

using base::Fecha;
using base::Locale;
using base::Valor;
using conformance::Json;

const Fecha kHoy = conformance::Hoy();

struct Llamada {
  const std::vector<Json>& args;
  const Locale& locale;
};
// What a function gave: a value or the number of an error; none when the row is not this module's.
struct Resultado {
  std::optional<Valor> valor;
  int error = 0;
};
using Funcion = std::function<Valor(const Llamada&)>;

// Thrown by a function for arguments that its contract does not take (a Null, an Empty).
struct NoServido {};

Valor LeerValor(const Json& j) {
  switch (j.clase) {
    case Json::Clase::Nulo:
      return base::Nulo{};
    case Json::Clase::Booleano:
      return j.booleano;
    case Json::Clase::Numero:
      return j.entero ? Valor(static_cast<std::int64_t>(j.numero)) : Valor(j.numero);
    case Json::Clase::Texto:
      return j.texto;
    case Json::Clase::Lista:
      throw NoServido{};
    case Json::Clase::Objeto:
      break;
  }
  if (const Json* f = j.Miembro("$date")) return Fecha{conformance::SerieDe(f->texto)};
  if (const Json* s = j.Miembro("$single")) return static_cast<float>(s->numero);
  if (const Json* c = j.Miembro("$currency")) return base::Moneda{std::llround(c->numero * 10000)};
  throw NoServido{};  // Empty and variants are no values here
}

Valor Arg(const Llamada& l, std::size_t i) { return LeerValor(l.args.at(i)); }
double Numero(const Llamada& l, std::size_t i) { return Arg(l, i).Numero(l.locale); }
int Entero(const Llamada& l, std::size_t i) { return static_cast<int>(Numero(l, i)); }
int EnteroO(const Llamada& l, std::size_t i, int si_falta) {
  return i < l.args.size() ? Entero(l, i) : si_falta;
}
Fecha LaFecha(const Llamada& l, std::size_t i) { return {Numero(l, i)}; }
std::string Texto(const Llamada& l, std::size_t i) {
  if (!l.args.at(i).EsTexto()) throw NoServido{};
  return l.args[i].texto;
}

Valor SinNulo(const Llamada& l, std::size_t i) {
  Valor v = Arg(l, i);
  if (v.EsNulo()) throw NoServido{};
  return v;
}

Valor CDate(const Llamada& l) {
  const Valor v = Arg(l, 0);
  if (const auto* texto = v.Si<std::string>()) {
    const auto fecha = base::FechaDeTexto(*texto, kHoy, l.locale);
    if (!fecha) throw base::Error(base::DescripcionDeError(13), 13);
    return *fecha;
  }
  return Fecha{v.Numero(l.locale)};
}

const std::map<std::string, Funcion>& Funciones() {
  static const std::map<std::string, Funcion> kFunciones = {
      {"Val", [](const Llamada& l) { return Valor(base::Val(Texto(l, 0))); }},
      {"CDbl", [](const Llamada& l) { return Valor(Numero(l, 0)); }},
      {"CSng", [](const Llamada& l) { return Valor(static_cast<float>(Numero(l, 0))); }},
      {"CLng", [](const Llamada& l) { return Valor(Arg(l, 0).Entero(l.locale)); }},
      {"CInt", [](const Llamada& l) { return Valor(static_cast<int>(Arg(l, 0).EnteroCorto(l.locale))); }},
      {"CBool", [](const Llamada& l) { return Valor(Arg(l, 0).Booleano(l.locale)); }},
      {"IsNumeric", [](const Llamada& l) { return Valor(base::IsNumeric(Texto(l, 0), l.locale)); }},
      {"CStr", [](const Llamada& l) { return Valor(SinNulo(l, 0).Texto(l.locale)); }},
      {"Round",
       [](const Llamada& l) {
         if (l.args[0].clase == Json::Clase::Booleano) throw NoServido{};
         return Valor(base::Redondear(Numero(l, 0), EnteroO(l, 1, 0)));
       }},
      {"CDate", CDate},
      {"IsDate", [](const Llamada& l) { return Valor(base::EsFecha(Texto(l, 0), kHoy, l.locale)); }},
      {"DateSerial",
       [](const Llamada& l) { return Valor(base::FechaDe(Entero(l, 0), Entero(l, 1), Entero(l, 2))); }},
      {"TimeSerial",
       [](const Llamada& l) { return Valor(base::HoraDe(Entero(l, 0), Entero(l, 1), Entero(l, 2))); }},
      {"DateToSerial", [](const Llamada& l) { return Valor(Numero(l, 0)); }},
      {"SerialToDate", [](const Llamada& l) { return Valor(LaFecha(l, 0)); }},
      {"Year", [](const Llamada& l) { return Valor(base::Partes(LaFecha(l, 0)).anio); }},
      {"Month", [](const Llamada& l) { return Valor(base::Partes(LaFecha(l, 0)).mes); }},
      {"Day", [](const Llamada& l) { return Valor(base::Partes(LaFecha(l, 0)).dia); }},
      {"Hour", [](const Llamada& l) { return Valor(base::Partes(LaFecha(l, 0)).hora); }},
      {"Minute", [](const Llamada& l) { return Valor(base::Partes(LaFecha(l, 0)).minuto); }},
      {"Weekday",
       [](const Llamada& l) { return Valor(base::DatePart("w", LaFecha(l, 0), EnteroO(l, 1, 1))); }},
      {"DateAdd",
       [](const Llamada& l) { return Valor(base::DateAdd(Texto(l, 0), Numero(l, 1), LaFecha(l, 2))); }},
      {"DateDiff",
       [](const Llamada& l) {
         return Valor(static_cast<std::int64_t>(
             base::DateDiff(Texto(l, 0), LaFecha(l, 1), LaFecha(l, 2), EnteroO(l, 3, 1), EnteroO(l, 4, 1))));
       }},
      {"DatePart",
       [](const Llamada& l) {
         return Valor(base::DatePart(Texto(l, 0), LaFecha(l, 1), EnteroO(l, 2, 1), EnteroO(l, 3, 1)));
       }},
      {"Format",
       [](const Llamada& l) {
         return Valor(
             base::Format(Arg(l, 0), Texto(l, 1), kHoy, l.locale, EnteroO(l, 2, 1), EnteroO(l, 3, 1)));
       }},
  };
  return kFunciones;
}

bool Coincide(const Resultado& r, const Json& esperado) {
  if (r.error != 0) return conformance::EsperaError(esperado, r.error);
  return r.valor && conformance::Igual(esperado, *r.valor);
}

std::string Mostrar(const Resultado& r) {
  std::ostringstream texto;
  if (r.error != 0) {
    texto << "error " << r.error;
  } else if (r.valor) {
    texto << '[' << r.valor->TextoCsv() << ']';
  }
  return texto.str();
}

class Conformance : public testing::TestWithParam<const char*> {};

TEST_P(Conformance, RowsHold) {
  const std::filesystem::path ruta = std::filesystem::path(support::SourceDir()) / "tests/data/conformance" /
                                     (std::string(GetParam()) + ".tsv");
  int pasan = 0, fallan = 0;
  std::map<std::string, int> ajenas;
  for (const conformance::Fila& fila : conformance::LeerTabla(ruta).filas) {
    const auto funcion = Funciones().find(fila.funcion);
    if (funcion == Funciones().end()) {
      ++ajenas[fila.funcion];
      continue;
    }
    const Locale& locale = fila.locale == "en" ? Locale::ingles() : Locale::espanol();
    Resultado r;
    try {
      r.valor = funcion->second({fila.args, locale});
    } catch (const base::Error& e) {
      r.error = e.Numero();
    } catch (const NoServido&) {
      ++ajenas[fila.funcion + " of such an argument"];
      continue;
    }
    const bool bien = Coincide(r, fila.espera);
    ++(bien ? pasan : fallan);
    EXPECT_TRUE(bien) << fila.id << " in " << fila.locale << " gave " << Mostrar(r) << ", expected "
                      << fila.espera.Escrito();
  }
  std::cout << GetParam() << ": " << pasan << " rows hold, " << fallan << " do not";
  for (const auto& [que, cuantas] : ajenas) std::cout << "; " << cuantas << " not served (" << que << ")";
  std::cout << "\n";
  EXPECT_GT(pasan, 0);
}

INSTANTIATE_TEST_SUITE_P(Tables, Conformance,
                         testing::Values("val", "cnum", "isnumeric", "cstr", "round", "date_parse",
                                         "date_serial", "date_math", "format_num", "format_date",
                                         "format_text"),
                         [](const auto& caso) { return std::string(caso.param); });

}  // namespace
