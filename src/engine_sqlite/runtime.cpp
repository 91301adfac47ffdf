#include <algorithm>
#include <cmath>
#include <iterator>
#include <limits>
#include <memory>
#include <new>

#include "base/currency.h"
#include "base/dialect_number.h"
#include "base/number.h"
#include "engine_sqlite/runtime_internal.h"
#include "jetsql/functions.h"

namespace engine_sqlite {
namespace {

// What SQLite keeps with each registered function.
struct Enlace {
  Registro registro;
  std::string nombre;
  Entorno* entorno;
  bool searches;  // looks for one text in another, at every place of it in the worst case
};

// What a call costs a bounded statement, by the texts that it is given.
std::size_t CostOfCall(const Enlace& enlace, std::span<sqlite3_value*> values) {
  std::size_t bytes = 0, product = 1;
  for (sqlite3_value* v : values) {
    if (sqlite3_value_type(v) != SQLITE_TEXT) continue;
    const auto size = static_cast<std::size_t>(sqlite3_value_bytes(v));
    bytes += size;
    if (product < std::size_t{1} << 31) product *= size + 1;
  }
  constexpr std::size_t kCall = 5;
  return kCall + bytes / 2 + (enlace.searches ? product / 4 : 0);
}

void Despachar(sqlite3_context* contexto, int n, sqlite3_value** valores) {
  const auto& enlace = *static_cast<const Enlace*>(sqlite3_user_data(contexto));
  if (enlace.entorno->steps_left != nullptr) {
    enlace.entorno->Charge(CostOfCall(enlace, {valores, static_cast<std::size_t>(n)}));
    if (enlace.entorno->Exhausted()) return sqlite3_result_error_code(contexto, SQLITE_INTERRUPT);
  }
  try {
    Llamada llamada(contexto, {valores, static_cast<std::size_t>(n)}, *enlace.entorno,
                    enlace.registro.etiquetada);
    enlace.registro.cuerpo(llamada);
  } catch (const base::Error& e) {
    Anotar(contexto, *enlace.entorno, e);
  } catch (const std::bad_alloc&) {
    sqlite3_result_error_nomem(contexto);
  }
}

void DestruirEnlace(void* enlace) { delete static_cast<Enlace*>(enlace); }

bool Searches(std::string_view name) {
  constexpr std::string_view kThose[] = {"jet_like", "jet_instr", "jet_instrrev", "jet_replace"};
  return std::find(std::begin(kThose), std::end(kThose), name) != std::end(kThose);
}

void RegistrarUna(sqlite3* base, Entorno& entorno, const Registro& registro) {
  auto enlace =
      std::make_unique<Enlace>(Enlace{registro, registro.nombre, &entorno, Searches(registro.nombre)});
  const int marcas = SQLITE_UTF8 | SQLITE_INNOCUOUS | (registro.determinista ? SQLITE_DETERMINISTIC : 0);
  Enlace* propio = enlace.release();  // SQLite destroys it, also when the call fails
  sqlite3_create_function_v2(base, propio->nombre.c_str(), registro.argumentos, marcas, propio, Despachar,
                             nullptr, nullptr, DestruirEnlace);
}

int CotejarJet(void* dato, int na, const void* a, int nb, const void* b) {
  auto& entorno = *static_cast<Entorno*>(dato);
  const std::string_view x(static_cast<const char*>(a), static_cast<std::size_t>(na));
  const std::string_view y(static_cast<const char*>(b), static_cast<std::size_t>(nb));
  constexpr std::size_t kComparison = 4;
  entorno.Charge(kComparison + std::min(x.size(), y.size()) / 4);
  if (entorno.Exhausted()) return x.compare(y);  // a sort is not interrupted half-way, but it may be quick
  try {
    return base::CompararTexto(x, y, entorno.orden);
  } catch (const std::bad_alloc&) {
    // SQLite takes no failure from a collation: the statement is stopped, and any order will do until then.
    entorno.sin_memoria = true;
    sqlite3_interrupt(entorno.base);
    return x.compare(y);
  }
}

Cuerpo CuerpoDe(std::string_view nombre) {
  for (const auto& grupo : {FuncionesDeTexto(), FuncionesNumericas(), FuncionesDeConversion(),
                            FuncionesDeFecha(), FuncionesDeFormato(), FuncionesFinancieras()})
    for (const Implementacion& i : grupo)
      if (i.nombre == nombre) return i.cuerpo;
  return nullptr;
}

std::string NombreSqlite(std::string_view nombre) {
  std::string salida = "jet_";
  for (const char c : nombre) salida += static_cast<char>(c >= 'A' && c <= 'Z' ? c + 0x20 : c);
  return salida;
}

}  // namespace

void LanzarNumero(int numero) { throw base::Error(base::DescripcionDeError(numero), numero); }

void Anotar(sqlite3_context* contexto, Entorno& entorno, const base::Error& error) {
  entorno.fallo = true;
  entorno.descripcion = error.Descripcion();
  entorno.numero = error.Numero();
  sqlite3_result_error(contexto, error.what(), -1);
}

base::Fecha Entorno::Ahora() {
  if (!ahora) ahora = reloj->Ahora();
  return *ahora;
}

base::Fecha Llamada::Hoy() const { return {std::trunc(Ahora().serie)}; }

// Asking for a text copies it when it does not end in a zero, as the literals of a statement do not; its
// bytes are the same, if the file holds texts in UTF-8.
std::string_view Llamada::Vista(sqlite3_value* valor) const {
  const bool bytes = entorno_.utf8 && sqlite3_value_type(valor) == SQLITE_TEXT;
  const void* p = bytes ? sqlite3_value_blob(valor) : sqlite3_value_text(valor);
  if (p == nullptr) return {};
  return {static_cast<const char*>(p), static_cast<std::size_t>(sqlite3_value_bytes(valor))};
}

Llamada::Llamada(sqlite3_context* contexto, std::span<sqlite3_value*> valores, Entorno& entorno,
                 bool etiquetada)
    : contexto_(contexto), valores_(valores), entorno_(entorno) {
  if (etiquetada && !valores.empty()) {
    letras_ = Vista(valores[0]);
    valores_ = valores.subspan(1);
  }
}

bool Llamada::AlgunNulo() const {
  for (sqlite3_value* v : valores_)
    if (sqlite3_value_type(v) == SQLITE_NULL) return true;
  return false;
}

char Llamada::Letra(int i) const {
  const int clase = sqlite3_value_type(valores_[i]);
  if (clase == SQLITE_TEXT) return 'T';
  const char letra = static_cast<std::size_t>(i) < letras_.size() ? letras_[i] : '?';
  if (letra != '?' && letra != 'T') return letra;
  return clase == SQLITE_INTEGER ? 'I' : (clase == SQLITE_FLOAT ? 'N' : '?');
}

void Llamada::AgregarTexto(int i, std::string& destino) const {
  sqlite3_value* v = valores_[i];
  switch (sqlite3_value_type(v)) {
    case SQLITE_NULL:
      return;
    case SQLITE_TEXT:
    case SQLITE_BLOB:
      destino += Vista(v);
      return;
    default:
      break;
  }
  switch (Letra(i)) {
    case 'B':
      destino += sqlite3_value_int64(v) != 0 ? Regional().verdadero : Regional().falso;
      return;
    case 'D':
      destino += base::TextoDeFecha(base::Fecha{sqlite3_value_double(v)}, Regional());
      return;
    case 'S':
      destino += base::TextoDeSimple(static_cast<float>(sqlite3_value_double(v)), Regional());
      return;
    case 'C':
      destino += Tipado(i).Texto(Regional());
      return;
    default:
      break;
  }
  if (sqlite3_value_type(v) == SQLITE_INTEGER) {
    destino += std::to_string(sqlite3_value_int64(v));
  } else {
    destino += base::TextoDeNumero(sqlite3_value_double(v), Regional());
  }
}

std::string_view Llamada::Texto(int i) {
  const int clase = sqlite3_value_type(valores_[i]);
  if (clase == SQLITE_TEXT || clase == SQLITE_BLOB) return Vista(valores_[i]);
  std::string& destino = convertidos_.at(static_cast<std::size_t>(i));
  destino.clear();
  AgregarTexto(i, destino);
  return destino;
}

double Llamada::Numero(int i) const {
  sqlite3_value* v = valores_[i];
  switch (sqlite3_value_type(v)) {
    case SQLITE_NULL:
      LanzarNumero(kUsoDeNulo);
    case SQLITE_INTEGER:
    case SQLITE_FLOAT:
      return sqlite3_value_double(v);
    default:
      break;
  }
  return base::CDbl(Vista(v), Regional());
}

Llamada::Cifra Llamada::Numerico(int i) const {
  sqlite3_value* v = valores_[i];
  if (sqlite3_value_type(v) == SQLITE_INTEGER) return {true, sqlite3_value_int64(v), 0};
  const double d = Numero(i);
  constexpr double kExactos = 9007199254740992.0;
  if (EsTexto(i) && std::trunc(d) == d && std::abs(d) <= kExactos)
    return {true, static_cast<std::int64_t>(d), 0};
  return {false, 0, d};
}

std::int64_t Llamada::Entero(int i) const {
  const Cifra c = Numerico(i);
  return c.entera ? c.entero : base::EnteroBancario(c.real);
}

std::int32_t Llamada::Entero32(int i) const {
  const std::int64_t v = Entero(i);
  if (v < std::numeric_limits<std::int32_t>::min() || v > std::numeric_limits<std::int32_t>::max())
    LanzarNumero(kDesbordamiento);
  return static_cast<std::int32_t>(v);
}

int Llamada::Opcional(int i, int si_falta) const { return Hay(i) ? Entero32(i) : si_falta; }

int Llamada::PrimerDia(int i) const {
  const int dia = Opcional(i, 1);
  if (dia < 0 || dia > 7) LanzarNumero(kLlamadaIncorrecta);
  return dia == 0 ? 1 : dia;
}

int Llamada::PrimeraSemana(int i) const {
  const int semana = Opcional(i, 1);
  if (semana < 0 || semana > 3) LanzarNumero(kLlamadaIncorrecta);
  return semana == 0 ? 1 : semana;
}

bool Llamada::Booleano(int i) const { return !EsNulo(i) && Numero(i) != 0; }

base::Fecha Llamada::Fecha(int i) const {
  constexpr double kPrimera = -657434.0, kTrasUltima = 2958466.0;
  base::Fecha fecha;
  if (EsTexto(i)) {
    const auto leida = base::FechaDeTexto(Vista(valores_[i]), Hoy(), Regional());
    if (!leida) LanzarNumero(kNoCoincidenTipos);
    fecha = *leida;
  } else {
    fecha.serie = Numero(i);
  }
  if (!(fecha.serie >= kPrimera && fecha.serie < kTrasUltima)) LanzarNumero(kDesbordamiento);
  return fecha;
}

base::Valor Llamada::Tipado(int i) const {
  sqlite3_value* v = valores_[i];
  switch (sqlite3_value_type(v)) {
    case SQLITE_NULL:
      return {};
    case SQLITE_TEXT:
    case SQLITE_BLOB:
      return std::string(Vista(v));
    default:
      break;
  }
  switch (Letra(i)) {
    case 'B':
      return sqlite3_value_int64(v) != 0;
    case 'D':
      return base::Fecha{sqlite3_value_double(v)};
    case 'S':
      return static_cast<float>(sqlite3_value_double(v));
    case 'C':
      return base::CurrencyOf(sqlite3_value_double(v));
    default:
      break;
  }
  if (sqlite3_value_type(v) == SQLITE_INTEGER) return std::int64_t{sqlite3_value_int64(v)};
  return sqlite3_value_double(v);
}

void Llamada::DarNumero(double v) {
  if (!std::isfinite(v)) LanzarNumero(kDesbordamiento);
  sqlite3_result_double(contexto_, v);
}

void Llamada::DarTexto(std::string_view v) {
  entorno_.Charge(v.size() / 2);
  sqlite3_result_text64(contexto_, v.data() == nullptr ? "" : v.data(), v.size(), SQLITE_TRANSIENT,
                        SQLITE_UTF8);
}

void Registrar(sqlite3* base, Entorno& entorno) {
  entorno.base = base;
  for (const jetsql::Funcion& f : jetsql::Funciones()) {
    const Cuerpo cuerpo = CuerpoDe(f.nombre);
    if (cuerpo == nullptr) throw base::Error("La función " + std::string(f.nombre) + " no está disponible.");
    const std::string nombre = NombreSqlite(f.nombre);
    // The clock stands still during one statement, so Date() and its kin are computed once for it; Rnd is
    // not.
    const bool una_vez = f.nombre != "RND";
    RegistrarUna(base, entorno, {nombre.c_str(), -1, f.etiquetada, una_vez, cuerpo});
  }
  for (const Registro& r : AyudasDelTraductor()) RegistrarUna(base, entorno, r);
  RegistrarTotales(base);
  sqlite3_create_collation_v2(base, "JET", SQLITE_UTF8, &entorno, CotejarJet, nullptr);
}

}  // namespace engine_sqlite
