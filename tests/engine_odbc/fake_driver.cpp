// The entry points of the driver for tests.
#include "fake_driver.h"

#include <algorithm>
#include <cstring>

using namespace falso;

namespace {

Objeto* AObjeto(SQLHANDLE h) { return static_cast<Objeto*>(h); }

SQLRETURN Terminar(Enlace& e, bool confirmar) {
  if (!e.en_transaccion) return SQL_SUCCESS;
  e.en_transaccion = false;
  return e.motor->Terminar(confirmar) ? SQL_SUCCESS : Fallar(&e, "HY000", "[Prueba]The transaction failed");
}

}  // namespace

extern "C" {

SQLRETURN SQL_API SQLAllocHandle(SQLSMALLINT que, SQLHANDLE padre, SQLHANDLE* salida) {
  if (que == SQL_HANDLE_ENV) {
    *salida = static_cast<Objeto*>(new Ambiente);
  } else if (que == SQL_HANDLE_DBC) {
    *salida = static_cast<Objeto*>(new Enlace);
  } else {
    auto* c = new Cursor;
    c->enlace = static_cast<Enlace*>(AObjeto(padre));
    *salida = static_cast<Objeto*>(c);
  }
  return SQL_SUCCESS;
}

SQLRETURN SQL_API SQLFreeHandle(SQLSMALLINT que, SQLHANDLE h) {
  if (que == SQL_HANDLE_ENV) delete static_cast<Ambiente*>(AObjeto(h));
  if (que == SQL_HANDLE_DBC) delete static_cast<Enlace*>(AObjeto(h));
  if (que == SQL_HANDLE_STMT) delete static_cast<Cursor*>(AObjeto(h));
  return SQL_SUCCESS;
}

SQLRETURN SQL_API SQLSetEnvAttr(SQLHENV, SQLINTEGER, SQLPOINTER, SQLINTEGER) { return SQL_SUCCESS; }

SQLRETURN SQL_API SQLDriverConnectW(SQLHDBC h, SQLHWND, SQLWCHAR* entrada, SQLSMALLINT largo,
                                    SQLWCHAR* salida, SQLSMALLINT caben, SQLSMALLINT* dado, SQLUSMALLINT) {
  auto* e = static_cast<Enlace*>(AObjeto(h));
  e->registros.clear();
  const Ancho cadena = Leer(entrada, largo);
  Dar(cadena, salida, caben, dado);
  if (!Configurar(*e, cadena)) return Fallar(e, "28000", "[Prueba]Not a valid password");
  return SQL_SUCCESS;
}

SQLRETURN SQL_API SQLDisconnect(SQLHDBC h) {
  static_cast<Enlace*>(AObjeto(h))->motor.reset();
  return SQL_SUCCESS;
}

SQLRETURN SQL_API SQLGetInfoW(SQLHDBC h, SQLUSMALLINT que, SQLPOINTER valor, SQLSMALLINT, SQLSMALLINT*) {
  auto* e = static_cast<Enlace*>(AObjeto(h));
  if (que != SQL_TXN_CAPABLE) return Fallar(e, "HYC00", "[Prueba]Unknown");
  const SQLUSMALLINT alcance = e->con_transacciones ? SQL_TC_ALL : SQL_TC_NONE;
  std::memcpy(valor, &alcance, sizeof alcance);
  return SQL_SUCCESS;
}

SQLRETURN SQL_API SQLSetConnectAttrW(SQLHDBC h, SQLINTEGER que, SQLPOINTER valor, SQLINTEGER) {
  auto* e = static_cast<Enlace*>(AObjeto(h));
  if (que != SQL_ATTR_AUTOCOMMIT) return SQL_SUCCESS;
  e->autocommit = reinterpret_cast<SQLULEN>(valor) == SQL_AUTOCOMMIT_ON;
  return e->autocommit ? Terminar(*e, true) : SQL_SUCCESS;
}

SQLRETURN SQL_API SQLGetConnectAttrW(SQLHDBC h, SQLINTEGER que, SQLPOINTER valor, SQLINTEGER, SQLINTEGER*) {
  auto* e = static_cast<Enlace*>(AObjeto(h));
  if (que != SQL_ATTR_CONNECTION_DEAD) return Fallar(e, "HYC00", "[Prueba]Unknown");
  const SQLUINTEGER muerto = e->muerto ? SQL_CD_TRUE : SQL_CD_FALSE;
  std::memcpy(valor, &muerto, sizeof muerto);
  return SQL_SUCCESS;
}

SQLRETURN SQL_API SQLEndTran(SQLSMALLINT, SQLHANDLE h, SQLSMALLINT como) {
  auto* e = static_cast<Enlace*>(AObjeto(h));
  e->registros.clear();
  if (como == SQL_COMMIT ? e->commit_falla : e->rollback_falla)
    return Fallar(e, "HY000", "[Prueba]The disk is full");
  ++(como == SQL_COMMIT ? e->confirmadas : e->deshechas);
  return Terminar(*e, como == SQL_COMMIT);
}

SQLRETURN SQL_API SQLSetStmtAttrW(SQLHSTMT h, SQLINTEGER attribute, SQLPOINTER value, SQLINTEGER) {
  if (attribute == SQL_ATTR_QUERY_TIMEOUT)
    static_cast<Cursor*>(AObjeto(h))->timeout = reinterpret_cast<SQLULEN>(value);
  return SQL_SUCCESS;
}

SQLRETURN SQL_API SQLExecDirectW(SQLHSTMT h, SQLWCHAR* texto, SQLINTEGER largo) {
  auto* c = static_cast<Cursor*>(AObjeto(h));
  c->registros.clear();
  Vaciar(*c);
  Enlace& e = *c->enlace;
  if (e.motor == nullptr) return Correr(*c, Leer(texto, largo));
  if (!e.autocommit && !e.en_transaccion) {
    if (!e.motor->Empezar()) return Fallar(c, "HY000", "[Prueba]No transaction");
    e.en_transaccion = true;
  }
  return e.motor->Correr(*c, Leer(texto, largo)) ? SQL_SUCCESS : SQL_ERROR;
}

SQLRETURN SQL_API SQLTablesW(SQLHSTMT h, SQLWCHAR*, SQLSMALLINT, SQLWCHAR*, SQLSMALLINT, SQLWCHAR*,
                             SQLSMALLINT, SQLWCHAR*, SQLSMALLINT) {
  auto* c = static_cast<Cursor*>(AObjeto(h));
  Vaciar(*c);
  if (c->enlace->catalogo_roto) return Fallar(c, "HY000", "[Prueba]No catalog");
  for (const char16_t* n : {u"TABLE_CAT", u"TABLE_SCHEM", u"TABLE_NAME", u"TABLE_TYPE", u"REMARKS"})
    c->columnas.push_back({n, {}, SQL_WVARCHAR});
  for (const auto& tabla : c->enlace->catalogo)
    c->filas.push_back({{true, {}}, {true, {}}, {false, tabla.first}, {false, u"TABLE"}, {true, {}}});
  return SQL_SUCCESS;
}

// Every table whose name fits the pattern, in which "_" is any character.
SQLRETURN SQL_API SQLColumnsW(SQLHSTMT h, SQLWCHAR*, SQLSMALLINT, SQLWCHAR*, SQLSMALLINT, SQLWCHAR* patron,
                              SQLSMALLINT largo, SQLWCHAR*, SQLSMALLINT) {
  auto* c = static_cast<Cursor*>(AObjeto(h));
  Vaciar(*c);
  for (const char16_t* n : {u"TABLE_CAT", u"TABLE_SCHEM", u"TABLE_NAME", u"COLUMN_NAME"})
    c->columnas.push_back({n, {}, SQL_WVARCHAR});
  const Ancho busca = Leer(patron, largo);
  for (const auto& [tabla, columnas] : c->enlace->catalogo) {
    const bool va = busca.size() == tabla.size() &&
                    std::equal(busca.begin(), busca.end(), tabla.begin(),
                               [](char16_t p, char16_t t) { return p == u'_' || p == t; });
    if (!va) continue;
    for (const Ancho& columna : columnas)
      c->filas.push_back({{true, {}}, {true, {}}, {false, tabla}, {false, columna}});
  }
  return SQL_SUCCESS;
}

SQLRETURN SQL_API SQLNumResultCols(SQLHSTMT h, SQLSMALLINT* cuantas) {
  *cuantas = static_cast<SQLSMALLINT>(static_cast<Cursor*>(AObjeto(h))->columnas.size());
  return SQL_SUCCESS;
}

SQLRETURN SQL_API SQLDescribeColW(SQLHSTMT h, SQLUSMALLINT i, SQLWCHAR* nombre, SQLSMALLINT caben,
                                  SQLSMALLINT* largo, SQLSMALLINT* tipo, SQLULEN* tamanio,
                                  SQLSMALLINT* decimales, SQLSMALLINT* nulo) {
  const Columna& c = static_cast<Cursor*>(AObjeto(h))->columnas.at(i - 1U);
  Dar(c.nombre, nombre, caben, largo);
  *tipo = c.tipo;
  *tamanio = 19;
  *decimales = c.tipo == SQL_NUMERIC || c.tipo == SQL_DECIMAL ? 4 : 0;
  *nulo = SQL_NULLABLE_UNKNOWN;
  return SQL_SUCCESS;
}

SQLRETURN SQL_API SQLColAttributeW(SQLHSTMT h, SQLUSMALLINT i, SQLUSMALLINT que, SQLPOINTER texto,
                                   SQLSMALLINT caben, SQLSMALLINT* largo, SQLLEN* numero) {
  auto* c = static_cast<Cursor*>(AObjeto(h));
  const Columna& columna = c->columnas.at(i - 1U);
  if (que == SQL_DESC_TYPE_NAME && !columna.nombre_de_tipo.empty()) {
    Dar(columna.nombre_de_tipo, static_cast<SQLWCHAR*>(texto), static_cast<SQLSMALLINT>(caben / 2), largo);
    return SQL_SUCCESS;
  }
  if (que == SQL_DESC_FIXED_PREC_SCALE && numero != nullptr) {
    *numero = columna.nombre_de_tipo == u"FIJO" ? SQL_TRUE : SQL_FALSE;
    return SQL_SUCCESS;
  }
  return Fallar(c, "HYC00", "[Prueba]Unknown");
}

SQLRETURN SQL_API SQLFetch(SQLHSTMT h) {
  auto* c = static_cast<Cursor*>(AObjeto(h));
  c->registros.clear();
  c->leyendo = 0;
  if (c->fila >= c->filas.size()) return c->pierde_al_final ? Perder(*c) : SQL_NO_DATA;
  ++c->fila;
  return SQL_SUCCESS;
}

SQLRETURN SQL_API SQLGetData(SQLHSTMT h, SQLUSMALLINT i, SQLSMALLINT tipo_c, SQLPOINTER destino, SQLLEN caben,
                             SQLLEN* largo) {
  auto* c = static_cast<Cursor*>(AObjeto(h));
  c->registros.clear();
  const Celda& celda = c->filas.at(c->fila - 1).at(i - 1U);
  if (c->leyendo != i) c->leido = 0;
  c->leyendo = i;
  if (celda.nula) {
    *largo = SQL_NULL_DATA;
    return SQL_SUCCESS;
  }
  return DarCelda(*c, celda, tipo_c, destino, caben, largo);
}

SQLRETURN SQL_API SQLRowCount(SQLHSTMT h, SQLLEN* filas) {
  *filas = static_cast<Cursor*>(AObjeto(h))->cambiadas;
  return SQL_SUCCESS;
}

SQLRETURN SQL_API SQLFreeStmt(SQLHSTMT h, SQLUSMALLINT que) {
  auto* c = static_cast<Cursor*>(AObjeto(h));
  if (que == SQL_CLOSE) Vaciar(*c);
  return SQL_SUCCESS;
}

SQLRETURN SQL_API SQLGetDiagRecW(SQLSMALLINT, SQLHANDLE h, SQLSMALLINT i, SQLWCHAR* estado,
                                 SQLINTEGER* nativo, SQLWCHAR* texto, SQLSMALLINT caben, SQLSMALLINT* largo) {
  const std::vector<Registro>& registros = AObjeto(h)->registros;
  if (i < 1 || static_cast<std::size_t>(i) > registros.size()) return SQL_NO_DATA;
  const Registro& r = registros[static_cast<std::size_t>(i) - 1];
  Dar(DeAscii(r.estado), estado, 6, nullptr);
  *nativo = r.native;
  Dar(r.texto, texto, caben, largo);
  return r.texto.size() < static_cast<std::size_t>(caben) ? SQL_SUCCESS : SQL_SUCCESS_WITH_INFO;
}

// Its presence alone tells unixODBC that there are records to read.
SQLRETURN SQL_API SQLGetDiagFieldW(SQLSMALLINT, SQLHANDLE, SQLSMALLINT, SQLSMALLINT, SQLPOINTER, SQLSMALLINT,
                                   SQLSMALLINT*) {
  return SQL_ERROR;
}

}  // extern "C"
