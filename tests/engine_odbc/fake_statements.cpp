// What the statements of the driver for tests do.
#include "fake_driver.h"

#include <dlfcn.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace falso {
namespace {

std::string AAscii(const Ancho& texto) {
  std::string salida;
  for (const char16_t u : texto) salida += u < 0x80 ? static_cast<char>(u) : '?';
  return salida;
}

std::vector<Ancho> Partir(const Ancho& texto, char16_t donde) {
  std::vector<Ancho> partes(1);
  for (const char16_t u : texto) {
    if (u == donde)
      partes.emplace_back();
    else
      partes.back() += u;
  }
  return partes;
}

SQLSMALLINT Tipo(const Ancho& nombre) {
  static const std::vector<std::pair<std::string, SQLSMALLINT>> kTipos = {{"bit", SQL_BIT},
                                                                          {"tinyint", SQL_TINYINT},
                                                                          {"smallint", SQL_SMALLINT},
                                                                          {"integer", SQL_INTEGER},
                                                                          {"bigint", SQL_BIGINT},
                                                                          {"real", SQL_REAL},
                                                                          {"float", SQL_FLOAT},
                                                                          {"double", SQL_DOUBLE},
                                                                          {"numeric", SQL_NUMERIC},
                                                                          {"decimal", SQL_DECIMAL},
                                                                          {"date", SQL_TYPE_DATE},
                                                                          {"time", SQL_TYPE_TIME},
                                                                          {"moment", SQL_TYPE_TIMESTAMP},
                                                                          {"binary", SQL_LONGVARBINARY},
                                                                          {"guid", SQL_GUID},
                                                                          {"memo", SQL_WLONGVARCHAR},
                                                                          {"text", SQL_WVARCHAR}};
  for (const auto& [texto, tipo] : kTipos)
    if (DeAscii(texto) == nombre) return tipo;
  return SQL_UNKNOWN_TYPE;
}

Celda LeerCelda(const Ancho& texto) {
  if (texto == u"NULL") return {true, {}};
  if (!texto.empty() && texto[0] == u'~') {
    std::size_t i = 1;
    std::size_t n = 0;
    for (; i < texto.size() && texto[i] >= u'0' && texto[i] <= u'9'; ++i) n = n * 10 + (texto[i] - u'0');
    Celda c;
    for (std::size_t k = 0; k < n; ++k) c.texto += static_cast<char16_t>(u'0' + k % 10);
    c.texto += texto.substr(i);
    return c;
  }
  Celda c{false, texto};
  for (std::size_t i; (i = c.texto.find(u"\\0")) != Ancho::npos;) c.texto.replace(i, 2, 1, u'\0');
  return c;
}

void PonerFilas(Cursor& c, const Ancho& texto) {
  const std::vector<Ancho> lineas = Partir(texto, u'\n');
  for (const Ancho& palabra : Partir(lineas[0], u' ')) {
    if (palabra.empty()) continue;
    std::vector<Ancho> partes = Partir(palabra, u':');
    partes.resize(3);
    c.columnas.push_back({partes[0], partes[2], Tipo(partes[1])});
  }
  for (std::size_t i = 1; i < lineas.size(); ++i) {
    std::vector<Celda> fila;
    for (const Ancho& celda : Partir(lineas[i], u'|')) fila.push_back(LeerCelda(celda));
    fila.resize(c.columnas.size());
    c.filas.push_back(std::move(fila));
  }
}

void PonerUna(Cursor& c, const Ancho& nombre, const Ancho& valor) {
  c.columnas.push_back({nombre, {}, SQL_WLONGVARCHAR});
  c.filas.push_back({Celda{false, valor}});
}

// A cell as the bytes of a C type whose data comes in pieces.
std::string Bytes(const Ancho& texto, SQLSMALLINT tipo_c) {
  std::string bytes;
  for (const char16_t u : texto) {
    bytes += static_cast<char>(u & 0xFF);
    if (tipo_c == SQL_C_WCHAR) bytes += static_cast<char>(u >> 8);
  }
  return bytes;
}

SQLRETURN DarPieza(Cursor& c, const Ancho& texto, SQLSMALLINT tipo_c, char* destino, SQLLEN caben,
                   SQLLEN* largo) {
  const std::string bytes = Bytes(texto, tipo_c);
  const std::size_t fin = tipo_c == SQL_C_BINARY ? 0 : (tipo_c == SQL_C_WCHAR ? 2 : 1);
  if (c.leido > bytes.size() || (c.leido == bytes.size() && c.leido > 0)) return SQL_NO_DATA;
  const std::size_t quedan = bytes.size() - c.leido;
  const std::size_t n = std::min(quedan, static_cast<std::size_t>(caben) - fin);
  std::memcpy(destino, bytes.data() + c.leido, n);
  std::memset(destino + n, 0, fin);
  c.leido += n;
  const bool todo = n == quedan;
  *largo = c.enlace->con_total || todo ? static_cast<SQLLEN>(quedan) : SQL_NO_TOTAL;
  if (todo) {
    ++c.leido;  // so that an empty text, too, comes once
    return SQL_SUCCESS;
  }
  c.registros.push_back({"01004", u"[Prueba]There is more"});
  return SQL_SUCCESS_WITH_INFO;
}

// "2024-03-05 06:07:08.5"
SQL_TIMESTAMP_STRUCT Momento(const std::string& t) {
  SQL_TIMESTAMP_STRUCT m{};
  int a = 0, me = 0, d = 0, h = 0, n = 0, s = 0;
  double fraccion = 0;
  std::sscanf(t.c_str(), "%d-%d-%d %d:%d:%d", &a, &me, &d, &h, &n, &s);
  if (const std::size_t punto = t.find('.'); punto != std::string::npos)
    fraccion = std::atof(t.c_str() + punto);
  m.year = static_cast<SQLSMALLINT>(a);
  m.month = static_cast<SQLUSMALLINT>(me);
  m.day = static_cast<SQLUSMALLINT>(d);
  m.hour = static_cast<SQLUSMALLINT>(h);
  m.minute = static_cast<SQLUSMALLINT>(n);
  m.second = static_cast<SQLUSMALLINT>(s);
  m.fraction = static_cast<SQLUINTEGER>(fraccion * 1e9);
  return m;
}

template <typename T>
SQLRETURN DarFijo(const T& valor, SQLPOINTER destino, SQLLEN* largo) {
  std::memcpy(destino, &valor, sizeof valor);
  *largo = sizeof valor;
  return SQL_SUCCESS;
}

void LeerOpcion(Enlace& e, const Ancho& nombre, const Ancho& valor, Ancho& clave, Ancho& dada) {
  if (nombre == u"Txn") e.con_transacciones = valor != u"0";
  if (nombre == u"Savepoints") e.savepoints = valor == u"si";
  if (nombre == u"Commit") e.commit_falla = valor == u"falla";
  if (nombre == u"Rollback") e.rollback_falla = valor == u"falla";
  if (nombre == u"Total") e.con_total = valor != u"no";
  if (nombre == u"Clave") clave = valor;
  if (nombre == u"Motor") {
    const auto crear =
        reinterpret_cast<decltype(&CrearMotorDePrueba)>(dlsym(RTLD_DEFAULT, "CrearMotorDePrueba"));
    if (crear != nullptr) e.motor.reset(crear(valor.c_str()));
  }
  if (nombre == u"PWD") dada = valor;
  if (nombre != u"Catalogo") return;
  e.catalogo_roto = valor == u"roto";
  for (const Ancho& tabla : Partir(valor, u'/')) {
    std::vector<Ancho> partes = Partir(tabla, u':');
    partes.resize(2);
    e.catalogo.push_back({partes[0], Partir(partes[1], u',')});
  }
}

}  // namespace

Ancho DeAscii(const std::string& texto) { return {texto.begin(), texto.end()}; }
Ancho Leer(const SQLWCHAR* texto, SQLINTEGER largo) {
  Ancho salida;
  for (SQLINTEGER i = 0; largo == SQL_NTS ? texto[i] != 0 : i < largo; ++i)
    salida += static_cast<char16_t>(texto[i]);
  return salida;
}

void Dar(const Ancho& texto, SQLWCHAR* destino, SQLSMALLINT caben, SQLSMALLINT* largo) {
  if (largo != nullptr) *largo = static_cast<SQLSMALLINT>(texto.size());
  if (destino == nullptr || caben <= 0) return;
  const std::size_t n = std::min(texto.size(), static_cast<std::size_t>(caben - 1));
  for (std::size_t i = 0; i < n; ++i) destino[i] = texto[i];
  destino[n] = 0;
}

SQLRETURN Fallar(Objeto* objeto, const std::string& estado, const std::string& texto) {
  objeto->registros.push_back({estado, DeAscii(texto)});
  return SQL_ERROR;
}

SQLRETURN Perder(Cursor& c) { return Fallar(&c, "08S01", "[Prueba]The line is dead"); }

bool Configurar(Enlace& e, const Ancho& cadena) {
  Ancho clave, dada;
  for (const Ancho& parte : Partir(cadena, u';'))
    if (const std::size_t igual = parte.find(u'='); igual != Ancho::npos)
      LeerOpcion(e, parte.substr(0, igual), parte.substr(igual + 1), clave, dada);
  return clave == dada;
}

SQLRETURN Correr(Cursor& c, const Ancho& texto) {
  const auto resto = [&](const char16_t* verbo) { return texto.substr(Ancho(verbo).size()); };
  const auto empieza = [&](const char16_t* verbo) { return texto.rfind(verbo, 0) == 0; };
  if (empieza(u"FILAS ")) {
    PonerFilas(c, resto(u"FILAS "));
  } else if (texto.find(u"SAVEPOINT idm_marca") != Ancho::npos) {
    if (!c.enlace->savepoints) return Fallar(&c, "42000", "[Prueba]Syntax error");
    c.enlace->marks += AAscii(texto.substr(0, 2));
    c.cambiadas = 0;
  } else if (texto == u"MARCAS") {
    PonerUna(c, u"marcas", DeAscii(c.enlace->marks));
  } else if (empieza(u"CAMBIA ")) {
    c.cambiadas = std::atol(AAscii(resto(u"CAMBIA ")).c_str());
  } else if (texto == u"NADA") {
    return SQL_NO_DATA;
  } else if (empieza(u"AVISA ")) {
    const SQLRETURN rc = Correr(c, resto(u"AVISA "));
    c.registros.push_back({"01000", u"[Prueba]Take care"});
    return rc == SQL_SUCCESS ? SQL_SUCCESS_WITH_INFO : rc;
  } else if (empieza(u"FALLA ")) {
    for (const Ancho& uno : Partir(resto(u"FALLA "), u';')) {
      const std::size_t blank = uno.find(u' ');
      const SQLINTEGER native = blank > 5 ? std::atoi(AAscii(uno.substr(6, blank - 6)).c_str()) : 0;
      c.registros.push_back({AAscii(uno.substr(0, 5)), uno.substr(blank + 1), native});
    }
    return SQL_ERROR;
  } else if (texto == u"PIERDE") {
    return Perder(c);
  } else if (texto == u"MUERE") {
    c.enlace->muerto = true;
    return Fallar(&c, "HY000", "[Prueba]Nobody answers");
  } else if (texto == u"PIERDE_LEYENDO") {
    PonerUna(c, u"x", u"1");
    c.pierde_al_final = true;
  } else if (texto == u"CUENTAS") {
    const Enlace& e = *c.enlace;
    PonerUna(c, u"cuentas",
             DeAscii(std::to_string(e.autocommit) + " " + std::to_string(e.confirmadas) + " " +
                     std::to_string(e.deshechas)));
  } else if (texto == u"SELECT 'TARDA'" && c.timeout > 0) {
    return Fallar(&c, "HYT00", "[Prueba]Timeout " + std::to_string(c.timeout));
  } else {
    PonerUna(c, u"texto", texto);
  }
  return SQL_SUCCESS;
}

void Vaciar(Cursor& c) {
  c.columnas.clear();
  c.filas.clear();
  c.fila = 0;
  c.leyendo = 0;
  c.cambiadas = -1;
}

SQLRETURN DarCelda(Cursor& c, const Celda& celda, SQLSMALLINT tipo_c, SQLPOINTER destino, SQLLEN caben,
                   SQLLEN* largo) {
  const std::string ascii = AAscii(celda.texto);
  switch (tipo_c) {
    case SQL_C_DOUBLE:
      return DarFijo(std::atof(ascii.c_str()), destino, largo);
    case SQL_C_FLOAT:
      return DarFijo(std::strtof(ascii.c_str(), nullptr), destino, largo);
    case SQL_C_TYPE_TIMESTAMP:
      return DarFijo(Momento(ascii), destino, largo);
    case SQL_C_TYPE_DATE: {
      const SQL_TIMESTAMP_STRUCT m = Momento(ascii);
      return DarFijo(SQL_DATE_STRUCT{m.year, m.month, m.day}, destino, largo);
    }
    case SQL_C_TYPE_TIME: {
      const SQL_TIMESTAMP_STRUCT m = Momento("2000-01-01 " + ascii);
      return DarFijo(SQL_TIME_STRUCT{m.hour, m.minute, m.second}, destino, largo);
    }
    case SQL_C_CHAR:
    case SQL_C_WCHAR:
    case SQL_C_BINARY:
      return DarPieza(c, celda.texto, tipo_c, static_cast<char*>(destino), caben, largo);
    default:
      return Fallar(&c, "HYC00", "[Prueba]A type of ODBC 3 that not every driver knows");
  }
}

}  // namespace falso
