#include "conformance/correr.h"

#include <algorithm>
#include <exception>

#include "base/error.h"
#include "base/like.h"
#include "base/number.h"
#include "base/text.h"
#include "conformance/comparar.h"
#include "conformance/expresion.h"

namespace conformance {
namespace {

using Que = Resultado::Que;

constexpr int kLlamadaIncorrecta = 5, kUsoDeNulo = 94;

Resultado Dar(bool bien, std::string dio, const Json& espera) {
  return {bien ? Que::Pasa : Que::Falla, std::move(dio), espera.Escrito()};
}

// A text of a row; a number counts as its text.
std::string Texto(const Json& j) { return j.EsTexto() || j.EsNumero() ? j.texto : j.Escrito(); }

int Entero(const Fila& f, std::size_t i, int si_falta) {
  return i < f.args.size() ? static_cast<int>(f.args[i].numero) : si_falta;
}

// The functions that the dialect does not have, by the primitives under it.
Resultado PorPrimitiva(const Fila& f) {
  const bool nulo = std::any_of(f.args.begin(), f.args.end(), [](const Json& j) { return j.EsNulo(); });
  if (nulo && f.funcion == "Split") throw base::Error(base::DescripcionDeError(kUsoDeNulo), kUsoDeNulo);
  if (nulo) return Dar(Igual(f.espera, base::Valor()), "null", f.espera);
  if (f.funcion == "Split") {
    const int limite = Entero(f, 2, -1);
    if (limite < -1) throw base::Error(base::DescripcionDeError(kLlamadaIncorrecta), kLlamadaIncorrecta);
    const auto piezas = base::Partir(Texto(f.args.at(0)), f.args.size() > 1 ? Texto(f.args[1]) : " ", limite,
                                     Entero(f, 3, 0) == 0 ? base::Comparar::Exacto : base::Comparar::SinCaso);
    return Dar(Igual(f.espera, piezas), "[" + base::Join(piezas, "|") + "]", f.espera);
  }
  if (f.funcion == "LikeBinary" || f.funcion == "LikeText") {
    const bool si = base::Parecido(Texto(f.args.at(0)), Texto(f.args.at(1)), base::Comodines::Dao,
                                   f.funcion == "LikeText" ? base::Igualdad::Pesos : base::Igualdad::Exacta);
    return Dar(Igual(f.espera, base::Valor(si)), si ? "true" : "false", f.espera);
  }
  return {Que::Salta, "an argument that the dialect cannot write", f.espera.Escrito()};
}

// "es" or "es_AR"; every other name is that of any locale.
bool EsLocale(const std::string& nombre, const std::string& idioma) {
  return nombre == idioma || base::EmpiezaCon(nombre, idioma + "_") || base::EmpiezaCon(nombre, idioma + "-");
}

const base::Locale& LocaleDe(const std::string& nombre) {
  return EsLocale(nombre, "en") ? base::Locale::ingles() : base::Locale::espanol();
}

// What a change did, and what the base says of it afterwards.
Resultado Cambiar(db::Connection& base, const Sentencia& s) {
  if (s.efecto.Miembro("error") != nullptr) {
    try {
      base.Ejecutar(s.sql);
    } catch (const db::Error& e) {
      return Dar(!e.Descripcion().empty(), Mostrar(e), s.efecto);
    }
    return Dar(false, "no error", s.efecto);
  }
  base.Ejecutar(s.sql);
  const std::int64_t afectadas = base.FilasAfectadas();
  std::string dio = "affected " + std::to_string(afectadas);
  const Json* cuantas = s.efecto.Miembro("affected");
  bool bien =
      cuantas == nullptr || !cuantas->EsNumero() || static_cast<std::int64_t>(cuantas->numero) == afectadas;
  if (const Json* despues = s.efecto.Miembro("then")) {
    const db::Recordset filas = base.Ejecutar(despues->texto);
    dio += ", then " + Mostrar(filas);
    const Json* espera = s.efecto.Miembro("rows");
    bien = bien && espera != nullptr && MismasFilas(*espera, filas, s.ordenadas, s.sin_caso);
  }
  return Dar(bien, std::move(dio), s.efecto);
}

Resultado Consultar(db::Connection& base, const Sentencia& s) {
  const db::Recordset filas = base.Ejecutar(s.sql);
  bool bien = MismasFilas(s.filas, filas, s.ordenadas, s.sin_caso);
  std::string dio = Mostrar(filas);
  for (std::size_t c = 0; c < s.columnas.size(); ++c) {
    const std::string nombre = c < filas.Campos().size() ? filas.Campos()[c].nombre : "";
    if (nombre == s.columnas[c]) continue;
    bien = false;
    dio += ", column '" + nombre + "' for '" + s.columnas[c] + "'";
  }
  return Dar(bien, std::move(dio), s.filas);
}

}  // namespace

Corredor::Corredor(Motor& motor) : motor_(motor), reloj_(Hoy()) {}

Ajustes Corredor::Para(const std::string& locale, bool dao) const {
  Ajustes a;
  a.locale = &LocaleDe(locale);
  a.reloj = &reloj_;
  a.comodines_dao = dao;
  return a;
}

db::Connection& Corredor::Guardada(const std::string& locale, bool dao) {
  auto& base = guardadas_[locale + (dao ? "*" : "%")];
  if (base == nullptr) base = motor_.BaseNueva(Para(locale, dao));
  return *base;
}

Resultado Corredor::Correr(const Fila& fila) {
  if (const auto regla = PorQueNoSeSirve(fila)) return {Que::Salta, *regla, fila.espera.Escrito()};
  if (EsLocale(fila.locale, "es") || EsLocale(fila.locale, "en"))
    return EnLocale(fila, fila.locale.substr(0, 2));
  Resultado r = EnLocale(fila, "es");
  if (r.que == Que::Pasa) r = EnLocale(fila, "en");
  return r;
}

Resultado Corredor::EnLocale(const Fila& fila, const std::string& locale) {
  try {
    if (fila.funcion == "JetOrderBy") return Ordenar(fila);
    const auto expresion = Expresion(fila);
    if (!expresion) return PorPrimitiva(fila);
    return PorDialecto(fila, "SELECT " + *expresion + " AS x", locale);
  } catch (const base::Error& e) {
    return Dar(EsperaError(fila.espera, e.Numero()), Mostrar(e), fila.espera);
  } catch (const std::exception& e) {  // too few arguments, or a form that is not known: the others still run
    return Dar(false, std::string("a row that cannot be run: ") + e.what(), fila.espera);
  }
}

Resultado Corredor::PorDialecto(const Fila& fila, const std::string& sql, const std::string& locale) {
  const db::Recordset filas = Guardada(locale, ConComodinesDao(fila)).Ejecutar(sql);
  if (filas.Cantidad() != 1) return Dar(false, Mostrar(filas), fila.espera);
  return Dar(Igual(fila.espera, filas.En(0, 0)), Mostrar(filas.En(0, 0)) + " from " + sql + " in " + locale,
             fila.espera);
}

// A list of texts, put into a table and ordered by the engine.
Resultado Corredor::Ordenar(const Fila& fila) {
  const auto base = motor_.BaseNueva(Para("es", false));
  base->Ejecutar("CREATE TABLE t (x TEXT(250))");
  for (const Json& texto : fila.args.at(0).lista)
    base->Ejecutar("INSERT INTO t (x) VALUES (" + Literal(texto).value_or("Null") + ")");
  const db::Recordset filas = base->Ejecutar("SELECT x FROM t ORDER BY x");
  bool bien = fila.espera.lista.size() == filas.Cantidad();
  for (std::size_t i = 0; bien && i < filas.Cantidad(); ++i)
    bien = Igual(fila.espera.lista[i], filas.En(0, i));
  return Dar(bien, Mostrar(filas), fila.espera);
}

Resultado Corredor::Correr(const Sentencia& s) {
  try {
    const auto base = motor_.BaseNueva(Para(s.locale, s.comodines_dao));
    for (const std::string& sql : s.antes) base->Ejecutar(sql);
    return s.filas.EsLista() ? Consultar(*base, s) : Cambiar(*base, s);
  } catch (const base::Error& e) {
    return Dar(false, Mostrar(e), s.filas.EsLista() ? s.filas : s.efecto);
  } catch (const std::exception& e) {
    return Dar(false, std::string("a row that cannot be run: ") + e.what(), s.efecto);
  }
}

int Cuenta::Saltadas() const {
  int n = 0;
  for (const auto& [regla, cuantas] : saltan) n += cuantas;
  return n;
}

void Cuenta::Sumar(const Resultado& r) {
  switch (r.que) {
    case Que::Pasa:
      ++pasan;
      break;
    case Que::Falla:
      ++fallan;
      break;
    case Que::Salta:
      ++saltan[r.dio];
      break;
  }
}

void Cuenta::Sumar(const Cuenta& otra) {
  pasan += otra.pasan;
  fallan += otra.fallan;
  for (const auto& [regla, cuantas] : otra.saltan) saltan[regla] += cuantas;
}

std::string Cuenta::Texto() const {
  return std::to_string(pasan) + " passed, " + std::to_string(fallan) + " failed, " +
         std::to_string(Saltadas()) + " skipped";
}

}  // namespace conformance
