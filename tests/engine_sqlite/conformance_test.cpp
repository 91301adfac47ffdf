// Runs the tables of facts that lie beside the checkout through the whole engine: text of the dialect in,
// value out.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <map>
#include <memory>
#include <optional>

#include "base/number.h"
#include "base/text.h"
#include "engine_sqlite/sqlite_connection.h"
#include "render.h"
#include "support/json.h"

namespace {

using base::Valor;
using support::Json;

constexpr int kAnio = 2026;

// Thrown for a row that the dialect has no way to write.
struct NoSeEscribe {
  std::string que;
};

std::optional<std::string> LeerTabla(const std::string& nombre) {
  const std::filesystem::path ruta =
      std::filesystem::path(IDM_SOURCE_DIR) / ".." / "shared" / "conformance" / nombre;
  std::ifstream f(ruta, std::ios::binary);
  if (!f) return std::nullopt;
  return std::string(std::istreambuf_iterator<char>(f), {});
}

constexpr const char* kFaltan = "the tables of facts are not beside this checkout";

class Motor {
 public:
  Motor() : reloj_(base::FechaDe(kAnio, 5, 20)) {}

  db::Connection& Abrir(const std::string& locale, bool dao, base::Orden orden = base::Orden::General) {
    engine_sqlite::Opciones opciones;
    opciones.reloj = &reloj_;
    if (locale == "en") opciones.locale = &base::Locale::ingles();
    opciones.comodines_dao = dao;
    opciones.orden = orden;
    base_ = engine_sqlite::Abrir(":memory:", opciones);
    return *base_;
  }

  // One of each kind, kept for the expressions.
  db::Connection& Para(const std::string& locale, bool dao) {
    auto& guardada = guardadas_[locale + (dao ? "*" : "%")];
    if (guardada == nullptr) {
      Abrir(locale, dao);
      guardada = std::move(base_);
    }
    return *guardada;
  }

 private:
  ports::RelojFijo reloj_;
  std::unique_ptr<db::Connection> base_;
  std::map<std::string, std::unique_ptr<db::Connection>> guardadas_;
};

double Serie(std::string texto) {
  texto = base::Reemplazar(texto, "{YEAR}", std::to_string(kAnio));
  int a = 0, m = 0, d = 0, h = 0, n = 0, s = 0;
  if (std::sscanf(texto.c_str(), "%d-%d-%d %d:%d:%d", &a, &m, &d, &h, &n, &s) != 6)
    throw std::runtime_error("bad date " + texto);
  const double dia = base::FechaDe(a, m, d).serie, hora = base::HoraDe(h, n, s).serie;
  return dia < 0 ? dia - hora : dia + hora;
}

bool Cerca(double a, double b, double tolerancia) {
  return a == b || std::abs(a - b) <= tolerancia * std::max(std::abs(a), std::abs(b));
}

bool Igual(const Json& espera, const Valor& dio) {
  if (const Json* alguno = espera.Miembro("$anyOf"))
    return std::any_of(alguno->lista.begin(), alguno->lista.end(),
                       [&](const Json& j) { return Igual(j, dio); });
  if (espera.EsNulo()) return dio.EsNulo();
  if (dio.EsNulo()) return false;
  if (espera.EsTexto()) return dio == Valor(espera.texto);
  if (dio.tipo() == base::Tipo::Texto) return false;
  const double numero = dio.Numero();
  if (espera.clase == Json::Clase::Booleano) return numero == (espera.booleano ? -1 : 0);
  constexpr double kMedioSegundo = 0.5 / 86400;
  if (const Json* f = espera.Miembro("$date"))
    return dio.tipo() == base::Tipo::Fecha && std::abs(numero - Serie(f->texto)) < kMedioSegundo;
  if (const Json* s = espera.Miembro("$single")) return Cerca(numero, s->numero, 1e-6);
  if (const Json* c = espera.Miembro("$currency")) return Cerca(numero, c->numero, 1e-14);
  // Serials are written in the tables with 13 digits.
  return espera.EsNumero() && Cerca(numero, espera.numero, dio.tipo() == base::Tipo::Simple ? 1e-6 : 1e-12);
}

bool EsperaError(const Json& espera, int numero) {
  if (const Json* alguno = espera.Miembro("$anyOf"))
    return std::any_of(alguno->lista.begin(), alguno->lista.end(),
                       [&](const Json& j) { return EsperaError(j, numero); });
  const Json* error = espera.Miembro("$error");
  return error != nullptr && static_cast<int>(error->numero) == numero;
}

// A value as a literal of the dialect.
std::string Literal(const Json& j) {
  switch (j.clase) {
    case Json::Clase::Nulo:
      return "Null";
    case Json::Clase::Booleano:
      return j.booleano ? "True" : "False";
    case Json::Clase::Numero:
      return j.entero ? j.texto : base::SqlDeNumero(j.numero);
    case Json::Clase::Texto:
      if (j.texto.find('\0') != std::string::npos) throw NoSeEscribe{"a NUL in a text"};
      return base::Reemplazar("'@'", "@", base::DoblarComillas(j.texto));
    case Json::Clase::Lista:
      throw NoSeEscribe{"a list"};
    case Json::Clase::Objeto:
      break;
  }
  if (const Json* f = j.Miembro("$date")) {
    const std::string t = base::Reemplazar(f->texto, "{YEAR}", std::to_string(kAnio));
    return "CDate(" + base::SqlDeNumero(Serie(t)) + ")";
  }
  if (const Json* s = j.Miembro("$single")) return "CSng(" + base::SqlDeNumero(s->numero) + ")";
  if (const Json* c = j.Miembro("$currency")) return "CCur(" + base::SqlDeNumero(c->numero) + ")";
  if (const Json* v = j.Miembro("$variant"); v != nullptr && v->texto != "EMPTY") {
    if (v->texto == "NULL") return "Null";
    const std::string valor = Literal(*j.Miembro("v"));
    if (v->texto == "R4") return "CSng(" + valor + ")";
    return v->texto == "DATE" ? "CDate(" + valor + ")" : valor;
  }
  throw NoSeEscribe{"an Empty"};
}

// The expression of the dialect for a row of a table.
std::string Expresion(const std::string& funcion, const std::vector<Json>& args) {
  if (funcion == "JetExpr") return args.at(0).texto;
  std::vector<std::string> l;
  for (const Json& a : args) l.push_back(Literal(a));
  if (funcion == "Concat") return l.at(0) + " & " + l.at(1);
  if (funcion == "Compare") return l.at(0) + " " + args.at(1).texto + " " + l.at(2);
  if (funcion == "Mod") return l.at(0) + " Mod " + l.at(1);
  if (funcion == "IDiv") return l.at(0) + " \\ " + l.at(1);
  if (funcion == "Add") return l.at(0) + " + " + l.at(1);
  if (funcion == "Mul") return l.at(0) + " * " + l.at(1);
  if (funcion == "JetTextCompare") return "StrComp(" + l.at(0) + ", " + l.at(1) + ")";
  if (funcion == "JetLike89" || funcion == "JetLike92" || funcion == "LikeText")
    return l.at(0) + " Like " + l.at(1);
  if (funcion == "VariantCompare")
    return "IIf(" + l[0] + " = " + l[1] + " Is Null, Null, IIf(" + l[0] + " = " + l[1] + ", 0, IIf(" + l[0] +
           " < " + l[1] + ", -1, 1)))";
  if (funcion == "SerialToDate") return "CDate(" + l.at(0) + ")";
  if (funcion == "DateToSerial") return "CDbl(" + l.at(0) + ")";
  for (const char* ajena : {"Split", "LikeBinary", "Sub"})
    if (funcion == ajena) throw NoSeEscribe{funcion};
  std::string texto = funcion + "(";
  for (std::size_t i = 0; i < l.size(); ++i) texto += (i > 0 ? ", " : "") + l[i];
  return texto + ")";
}

// Rows that the engine answers otherwise, each with the reason.
const std::map<std::string, std::string>& Desviaciones() {
  static const std::map<std::string, std::string> kTodas = {
      {"jetsql.update_join.007", "a row that is matched twice is changed, and counted, once"},
      {"jetsql.transform.001", "the dialect has no TRANSFORM"},
      {"strings.instr.029", "without a comparison argument the dialect looks without regard to case"},
      {"compare.text_order.007", "the sort order of the files puts Ø beside O"},
      {"compare.variant.019", "a single is compared with a double as a double"},
      {"cstr.misc.004", "a conversion of Null is Null"},
      {"date_parse.numeric_text.004", "a conversion of Null is Null"},
      {"round.int_fix_text.009", "a lone point is a decimal point in the number of a text"},
      {"round.int_fix_text.012", "a lone point is a decimal point in the number of a text"},
  };
  return kTodas;
}

struct Cuenta {
  int pasan = 0, fallan = 0;
  std::map<std::string, int> ajenas;

  void Anotar(const std::string& id, bool bien, const std::string& que) {
    ++(bien ? pasan : fallan);
    const auto it = Desviaciones().find(id);
    EXPECT_EQ(bien, it == Desviaciones().end())
        << id << ": " << que << (it != Desviaciones().end() ? " (known: " + it->second + ")" : "");
  }
  void Imprimir(const std::string& nombre) const {
    std::cout << nombre << ": " << pasan << " rows hold, " << fallan << " do not";
    for (const auto& [que, cuantas] : ajenas) std::cout << "; " << cuantas << " not served (" << que << ")";
    std::cout << "\n";
  }
};

void CorrerFila(Motor& motor, const std::vector<std::string>& campos, Cuenta& cuenta) {
  const Json args = support::LeerJson(campos[2]);
  const Json espera = support::LeerJson(campos[4]);
  const bool dao = campos[1] == "JetLike89" || campos[1] == "LikeText";
  std::string sql;
  try {
    sql = "SELECT " + Expresion(campos[1], args.lista) + " AS x";
  } catch (const NoSeEscribe& n) {
    ++cuenta.ajenas[n.que];
    return;
  }
  bool bien = false;
  std::string dio;
  try {
    const db::Recordset filas = motor.Para(campos[3], dao).Ejecutar(sql);
    bien = filas.Cantidad() == 1 && Igual(espera, filas.En(0, 0));
    dio = support::Celda(filas.En(0, 0));
  } catch (const db::Error& e) {
    bien = EsperaError(espera, e.Numero());
    dio = support::TextoDeError(e);
  }
  cuenta.Anotar(campos[0], bien, sql + " in " + campos[3] + " gave " + dio + ", expected " + campos[4]);
}

// A list of texts, ordered by the engine.
void CorrerOrden(Motor& motor, const std::vector<std::string>& campos, Cuenta& cuenta) {
  db::Connection& base = motor.Abrir("es", false);
  base.Ejecutar("CREATE TABLE t (x TEXT(50))");
  const Json args = support::LeerJson(campos[2]);
  for (const Json& texto : args.lista.at(0).lista)
    base.Ejecutar("INSERT INTO t VALUES (" + Literal(texto) + ")");
  const Json espera = support::LeerJson(campos[4]);
  const db::Recordset filas = base.Ejecutar("SELECT x FROM t ORDER BY x");
  bool bien = filas.Cantidad() == espera.lista.size();
  for (std::size_t i = 0; bien && i < filas.Cantidad(); ++i) bien = Igual(espera.lista[i], filas.En(0, i));
  cuenta.Anotar(campos[0], bien, "gave\n" + support::Filas(filas));
}

class Tablas : public testing::TestWithParam<const char*> {};

TEST_P(Tablas, LasFilasValen) {
  const auto tabla = LeerTabla(std::string(GetParam()) + ".tsv");
  if (!tabla) GTEST_SKIP() << kFaltan;
  Motor motor;
  Cuenta cuenta;
  const auto lineas = base::Split(*tabla, "\n");
  for (std::size_t i = 1; i < lineas.size(); ++i) {  // after the headings
    if (lineas[i].empty()) continue;
    const auto campos = base::Split(lineas[i], "\t");
    ASSERT_GE(campos.size(), 5U) << lineas[i];
    campos[1] == "JetOrderBy" ? CorrerOrden(motor, campos, cuenta) : CorrerFila(motor, campos, cuenta);
  }
  cuenta.Imprimir(GetParam());
  EXPECT_GT(cuenta.pasan, 0);
}

INSTANTIATE_TEST_SUITE_P(Hechos, Tablas,
                         testing::Values("jetfunc", "jetsort", "strings", "compare", "val", "cnum",
                                         "isnumeric", "cstr", "round", "date_parse", "date_serial",
                                         "date_math", "format_num", "format_date", "format_text"),
                         [](const auto& caso) { return std::string(caso.param); });

// Rows as texts, so that free order compares as a multiset.
bool MismasFilas(const Json& espera, const db::Recordset& filas, bool ordenadas) {
  if (espera.lista.size() != filas.Cantidad()) return false;
  const auto igual = [&](const Json& fila, std::size_t f) {
    if (fila.lista.size() != filas.Campos().size()) return false;
    for (std::size_t c = 0; c < fila.lista.size(); ++c)
      if (!Igual(fila.lista[c], filas.En(c, f))) return false;
    return true;
  };
  std::vector<bool> usada(filas.Cantidad());
  for (std::size_t i = 0; i < espera.lista.size(); ++i) {
    std::size_t f = ordenadas ? i : 0;
    while (f < usada.size() && (usada[f] || !igual(espera.lista[i], f))) f = ordenadas ? usada.size() : f + 1;
    if (f >= usada.size()) return false;
    usada[f] = true;
  }
  return true;
}

bool Cumple(db::Connection& base, const Json& caso, std::string& dio) {
  const std::string& sql = caso.Miembro("query")->texto;
  if (const Json* espera = caso.Miembro("expected_rows")) {
    const db::Recordset filas = base.Ejecutar(sql);
    dio = support::Filas(filas);
    const Json* ordenadas = caso.Miembro("ordered");
    bool nombres = true;
    if (const Json* columnas = caso.Miembro("columns"); columnas != nullptr && columnas->EsLista())
      for (std::size_t c = 0; c < columnas->lista.size(); ++c)
        nombres = nombres && filas.Campos().at(c).nombre == columnas->lista[c].texto;
    return nombres && MismasFilas(*espera, filas, ordenadas == nullptr || ordenadas->booleano);
  }
  const Json& efecto = *caso.Miembro("expected_effect");
  if (efecto.Miembro("error") != nullptr) {
    try {
      base.Ejecutar(sql);
    } catch (const db::Error& e) {
      dio = support::TextoDeError(e);
      return !e.Descripcion().empty();
    }
    dio = "no error";
    return false;
  }
  base.Ejecutar(sql);
  const std::int64_t afectadas = base.FilasAfectadas();
  dio = "affected " + std::to_string(afectadas);
  const Json* cuantas = efecto.Miembro("affected");
  if (cuantas != nullptr && cuantas->EsNumero() && static_cast<std::int64_t>(cuantas->numero) != afectadas)
    return false;
  const db::Recordset filas = base.Ejecutar(efecto.Miembro("then")->texto);
  dio += "\n" + support::Filas(filas);
  return MismasFilas(*efecto.Miembro("rows"), filas, true);
}

TEST(Sentencias, LasFilasValen) {
  const auto tabla = LeerTabla("jetsql.jsonl");
  if (!tabla) GTEST_SKIP() << kFaltan;
  Motor motor;
  Cuenta cuenta;
  for (const std::string& linea : base::Split(*tabla, "\n")) {
    if (linea.empty()) continue;
    const Json caso = support::LeerJson(linea);
    const Json* modo = caso.Miembro("mode");
    const Json* locale = caso.Miembro("locale");
    db::Connection& base =
        motor.Abrir(locale != nullptr ? locale->texto : "es", modo != nullptr && modo->texto == "ansi89");
    std::string dio;
    bool bien = false;
    try {
      for (const Json& s : caso.Miembro("setup")->lista) base.Ejecutar(s.texto);
      bien = Cumple(base, caso, dio);
    } catch (const db::Error& e) {
      dio = support::TextoDeError(e);
    }
    cuenta.Anotar(caso.Miembro("id")->texto, bien, caso.Miembro("query")->texto + "\ngave " + dio);
  }
  cuenta.Imprimir("jetsql");
  EXPECT_GT(cuenta.pasan, 0);
}

}  // namespace
