// Runs the tables of facts about text, number and date primitives that lie beside the checkout, where the
// functions of this module serve them directly.
#include <gtest/gtest.h>

#include <cmath>
#include <filesystem>
#include <fstream>
#include <functional>
#include <map>
#include <optional>
#include <sstream>

#include "base/date.h"
#include "base/error.h"
#include "base/format.h"
#include "base/number.h"
#include "base/text.h"
#include "base/valor.h"
#include "conformance/json.h"

namespace {

using base::Fecha;
using base::Locale;
using base::Valor;
using conformance::Json;

const Fecha kHoy = base::FechaDe(2026, 5, 20);

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

Fecha LeerFecha(std::string texto) {
  texto = base::Reemplazar(texto, "{YEAR}", std::to_string(base::Partes(kHoy).anio));
  int a = 0, m = 0, d = 0, h = 0, n = 0, s = 0;
  if (std::sscanf(texto.c_str(), "%d-%d-%d %d:%d:%d", &a, &m, &d, &h, &n, &s) != 6)
    throw std::runtime_error("bad date " + texto);
  const double dia = base::FechaDe(a, m, d).serie;
  const double hora = base::HoraDe(h, n, s).serie;
  return {dia < 0 ? dia - hora : dia + hora};
}

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
  if (const Json* f = j.Miembro("$date")) return LeerFecha(f->texto);
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
      {"IsNumeric", [](const Llamada& l) { return Valor(base::EsNumero(Texto(l, 0), l.locale)); }},
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

bool Cerca(double a, double b, double tolerancia) {
  return a == b || std::abs(a - b) <= tolerancia * std::max(std::abs(a), std::abs(b));
}

bool Coincide(const Resultado& r, const Json& esperado) {
  if (const Json* alguno = esperado.Miembro("$anyOf")) {
    for (const auto& e : alguno->lista)
      if (Coincide(r, e)) return true;
    return false;
  }
  if (const Json* error = esperado.Miembro("$error")) return r.error == static_cast<int>(error->numero);
  if (!r.valor) return false;
  const Valor espera = LeerValor(esperado);
  if (espera.tipo() == base::Tipo::Texto || espera.tipo() == base::Tipo::Booleano) return *r.valor == espera;
  if (espera.tipo() == base::Tipo::Fecha) {
    const auto* f = r.valor->Si<Fecha>();
    return f != nullptr && base::FechaIso(*f) == base::FechaIso(*espera.Si<Fecha>());
  }
  if (r.valor->tipo() == base::Tipo::Texto || r.valor->EsNulo()) return false;
  // Serials are written in the tables with 13 digits.
  const double tolerancia = espera.tipo() == base::Tipo::Simple ? 1e-6 : 1e-12;
  return Cerca(r.valor->Numero(), espera.Numero(), tolerancia);
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
  const std::filesystem::path ruta = std::filesystem::path(IDM_SOURCE_DIR) / ".." / "shared" / "conformance" /
                                     (std::string(GetParam()) + ".tsv");
  std::ifstream archivo(ruta, std::ios::binary);
  if (!archivo) GTEST_SKIP() << "the tables of facts are not beside this checkout";
  int pasan = 0, fallan = 0;
  std::map<std::string, int> ajenas;
  std::string linea;
  std::getline(archivo, linea);  // the headings
  while (std::getline(archivo, linea)) {
    const auto campos = base::Split(linea, "\t");
    ASSERT_GE(campos.size(), 5U) << linea;
    const auto funcion = Funciones().find(campos[1]);
    if (funcion == Funciones().end()) {
      ++ajenas[campos[1]];
      continue;
    }
    const Json args = conformance::LeerJson(campos[2]);
    const Locale& locale = campos[3] == "en" ? Locale::ingles() : Locale::espanol();
    Resultado r;
    try {
      r.valor = funcion->second({args.lista, locale});
    } catch (const base::Error& e) {
      r.error = e.Numero();
    } catch (const NoServido&) {
      ++ajenas[campos[1] + " of such an argument"];
      continue;
    }
    const bool bien = Coincide(r, conformance::LeerJson(campos[4]));
    ++(bien ? pasan : fallan);
    EXPECT_TRUE(bien) << campos[0] << ": " << campos[1] << campos[2] << " in " << campos[3] << " gave "
                      << Mostrar(r) << ", expected " << campos[4];
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
