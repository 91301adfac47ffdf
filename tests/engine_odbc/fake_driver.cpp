// The entry points of the driver for tests.
#include "fake_driver.h"

#include <algorithm>
#include <cstring>

using namespace fake;

namespace {

Object* ToObject(SQLHANDLE h) { return static_cast<Object*>(h); }

SQLRETURN End(Link& e, bool commit) {
  if (!e.in_transaction) return SQL_SUCCESS;
  e.in_transaction = false;
  return e.engine->End(commit) ? SQL_SUCCESS : Fail(&e, "HY000", "[Prueba]The transaction failed");
}

}  // namespace

extern "C" {

SQLRETURN SQL_API SQLAllocHandle(SQLSMALLINT what, SQLHANDLE parent, SQLHANDLE* output) {
  if (what == SQL_HANDLE_ENV) {
    *output = static_cast<Object*>(new Environment);
  } else if (what == SQL_HANDLE_DBC) {
    *output = static_cast<Object*>(new Link);
  } else {
    auto* c = new Cursor;
    c->link = static_cast<Link*>(ToObject(parent));
    *output = static_cast<Object*>(c);
  }
  return SQL_SUCCESS;
}

SQLRETURN SQL_API SQLFreeHandle(SQLSMALLINT what, SQLHANDLE h) {
  if (what == SQL_HANDLE_ENV) delete static_cast<Environment*>(ToObject(h));
  if (what == SQL_HANDLE_DBC) delete static_cast<Link*>(ToObject(h));
  if (what == SQL_HANDLE_STMT) delete static_cast<Cursor*>(ToObject(h));
  return SQL_SUCCESS;
}

SQLRETURN SQL_API SQLSetEnvAttr(SQLHENV, SQLINTEGER, SQLPOINTER, SQLINTEGER) { return SQL_SUCCESS; }

SQLRETURN SQL_API SQLDriverConnectW(SQLHDBC h, SQLHWND, SQLWCHAR* entry, SQLSMALLINT length, SQLWCHAR* output,
                                    SQLSMALLINT room, SQLSMALLINT* given, SQLUSMALLINT) {
  auto* e = static_cast<Link*>(ToObject(h));
  e->records.clear();
  const WideString connection_string = Read(entry, length);
  Give(connection_string, output, room, given);
  if (!Configure(*e, connection_string)) return Fail(e, "28000", "[Prueba]Not a valid password");
  return SQL_SUCCESS;
}

SQLRETURN SQL_API SQLDisconnect(SQLHDBC h) {
  static_cast<Link*>(ToObject(h))->engine.reset();
  return SQL_SUCCESS;
}

SQLRETURN SQL_API SQLGetInfoW(SQLHDBC h, SQLUSMALLINT what, SQLPOINTER value, SQLSMALLINT, SQLSMALLINT*) {
  auto* e = static_cast<Link*>(ToObject(h));
  if (what != SQL_TXN_CAPABLE) return Fail(e, "HYC00", "[Prueba]Unknown");
  const SQLUSMALLINT capability = e->has_transactions ? SQL_TC_ALL : SQL_TC_NONE;
  std::memcpy(value, &capability, sizeof capability);
  return SQL_SUCCESS;
}

SQLRETURN SQL_API SQLSetConnectAttrW(SQLHDBC h, SQLINTEGER what, SQLPOINTER value, SQLINTEGER) {
  auto* e = static_cast<Link*>(ToObject(h));
  if (what != SQL_ATTR_AUTOCOMMIT) return SQL_SUCCESS;
  e->autocommit = reinterpret_cast<SQLULEN>(value) == SQL_AUTOCOMMIT_ON;
  return e->autocommit ? End(*e, true) : SQL_SUCCESS;
}

SQLRETURN SQL_API SQLGetConnectAttrW(SQLHDBC h, SQLINTEGER what, SQLPOINTER value, SQLINTEGER, SQLINTEGER*) {
  auto* e = static_cast<Link*>(ToObject(h));
  if (what != SQL_ATTR_CONNECTION_DEAD) return Fail(e, "HYC00", "[Prueba]Unknown");
  const SQLUINTEGER dead = e->dead ? SQL_CD_TRUE : SQL_CD_FALSE;
  std::memcpy(value, &dead, sizeof dead);
  return SQL_SUCCESS;
}

SQLRETURN SQL_API SQLEndTran(SQLSMALLINT, SQLHANDLE h, SQLSMALLINT how) {
  auto* e = static_cast<Link*>(ToObject(h));
  e->records.clear();
  if (how == SQL_COMMIT ? e->commit_fails : e->rollback_fails)
    return Fail(e, "HY000", "[Prueba]The disk is full");
  ++(how == SQL_COMMIT ? e->committed : e->rolled_back);
  return End(*e, how == SQL_COMMIT);
}

SQLRETURN SQL_API SQLSetStmtAttrW(SQLHSTMT h, SQLINTEGER attribute, SQLPOINTER value, SQLINTEGER) {
  if (attribute == SQL_ATTR_QUERY_TIMEOUT)
    static_cast<Cursor*>(ToObject(h))->timeout = reinterpret_cast<SQLULEN>(value);
  return SQL_SUCCESS;
}

SQLRETURN SQL_API SQLExecDirectW(SQLHSTMT h, SQLWCHAR* text, SQLINTEGER length) {
  auto* c = static_cast<Cursor*>(ToObject(h));
  c->records.clear();
  Clear(*c);
  Link& e = *c->link;
  if (e.engine == nullptr) return Run(*c, Read(text, length));
  if (!e.autocommit && !e.in_transaction) {
    if (!e.engine->Begin()) return Fail(c, "HY000", "[Prueba]No transaction");
    e.in_transaction = true;
  }
  return e.engine->Run(*c, Read(text, length)) ? SQL_SUCCESS : SQL_ERROR;
}

SQLRETURN SQL_API SQLTablesW(SQLHSTMT h, SQLWCHAR*, SQLSMALLINT, SQLWCHAR*, SQLSMALLINT, SQLWCHAR*,
                             SQLSMALLINT, SQLWCHAR*, SQLSMALLINT) {
  auto* c = static_cast<Cursor*>(ToObject(h));
  Clear(*c);
  if (c->link->broken_catalog) return Fail(c, "HY000", "[Prueba]No catalog");
  for (const char16_t* n : {u"TABLE_CAT", u"TABLE_SCHEM", u"TABLE_NAME", u"TABLE_TYPE", u"REMARKS"})
    c->columns.push_back({n, {}, SQL_WVARCHAR});
  for (const auto& table : c->link->catalog)
    c->rows.push_back({{true, {}}, {true, {}}, {false, table.first}, {false, u"TABLE"}, {true, {}}});
  return SQL_SUCCESS;
}

// Every table whose name fits the pattern, in which "_" is any character.
SQLRETURN SQL_API SQLColumnsW(SQLHSTMT h, SQLWCHAR*, SQLSMALLINT, SQLWCHAR*, SQLSMALLINT, SQLWCHAR* pattern,
                              SQLSMALLINT length, SQLWCHAR*, SQLSMALLINT) {
  auto* c = static_cast<Cursor*>(ToObject(h));
  Clear(*c);
  for (const char16_t* n : {u"TABLE_CAT", u"TABLE_SCHEM", u"TABLE_NAME", u"COLUMN_NAME"})
    c->columns.push_back({n, {}, SQL_WVARCHAR});
  const WideString sought = Read(pattern, length);
  for (const auto& [table, columns] : c->link->catalog) {
    const bool matches = sought.size() == table.size() &&
                         std::equal(sought.begin(), sought.end(), table.begin(),
                                    [](char16_t p, char16_t t) { return p == u'_' || p == t; });
    if (!matches) continue;
    for (const WideString& column : columns)
      c->rows.push_back({{true, {}}, {true, {}}, {false, table}, {false, column}});
  }
  return SQL_SUCCESS;
}

SQLRETURN SQL_API SQLNumResultCols(SQLHSTMT h, SQLSMALLINT* count) {
  *count = static_cast<SQLSMALLINT>(static_cast<Cursor*>(ToObject(h))->columns.size());
  return SQL_SUCCESS;
}

SQLRETURN SQL_API SQLDescribeColW(SQLHSTMT h, SQLUSMALLINT i, SQLWCHAR* name, SQLSMALLINT room,
                                  SQLSMALLINT* length, SQLSMALLINT* type, SQLULEN* size,
                                  SQLSMALLINT* decimals, SQLSMALLINT* null) {
  const Column& c = static_cast<Cursor*>(ToObject(h))->columns.at(i - 1U);
  Give(c.name, name, room, length);
  *type = c.type;
  *size = 19;
  *decimals = c.type == SQL_NUMERIC || c.type == SQL_DECIMAL ? 4 : 0;
  *null = SQL_NULLABLE_UNKNOWN;
  return SQL_SUCCESS;
}

SQLRETURN SQL_API SQLColAttributeW(SQLHSTMT h, SQLUSMALLINT i, SQLUSMALLINT what, SQLPOINTER text,
                                   SQLSMALLINT room, SQLSMALLINT* length, SQLLEN* number) {
  auto* c = static_cast<Cursor*>(ToObject(h));
  const Column& column = c->columns.at(i - 1U);
  if (what == SQL_DESC_TYPE_NAME && !column.type_name.empty()) {
    Give(column.type_name, static_cast<SQLWCHAR*>(text), static_cast<SQLSMALLINT>(room / 2), length);
    return SQL_SUCCESS;
  }
  if (what == SQL_DESC_FIXED_PREC_SCALE && number != nullptr) {
    *number = column.type_name == u"FIJO" ? SQL_TRUE : SQL_FALSE;
    return SQL_SUCCESS;
  }
  return Fail(c, "HYC00", "[Prueba]Unknown");
}

SQLRETURN SQL_API SQLFetch(SQLHSTMT h) {
  auto* c = static_cast<Cursor*>(ToObject(h));
  c->records.clear();
  c->reading = 0;
  if (c->row >= c->rows.size()) return c->loses_at_end ? Lose(*c) : SQL_NO_DATA;
  ++c->row;
  return SQL_SUCCESS;
}

SQLRETURN SQL_API SQLGetData(SQLHSTMT h, SQLUSMALLINT i, SQLSMALLINT c_type, SQLPOINTER target, SQLLEN room,
                             SQLLEN* length) {
  auto* c = static_cast<Cursor*>(ToObject(h));
  c->records.clear();
  const Cell& cell = c->rows.at(c->row - 1).at(i - 1U);
  if (c->reading != i) c->read = 0;
  c->reading = i;
  if (cell.null) {
    *length = SQL_NULL_DATA;
    return SQL_SUCCESS;
  }
  return GiveCell(*c, cell, c_type, target, room, length);
}

SQLRETURN SQL_API SQLRowCount(SQLHSTMT h, SQLLEN* rows) {
  *rows = static_cast<Cursor*>(ToObject(h))->changed;
  return SQL_SUCCESS;
}

SQLRETURN SQL_API SQLFreeStmt(SQLHSTMT h, SQLUSMALLINT what) {
  auto* c = static_cast<Cursor*>(ToObject(h));
  if (what == SQL_CLOSE) Clear(*c);
  return SQL_SUCCESS;
}

SQLRETURN SQL_API SQLGetDiagRecW(SQLSMALLINT, SQLHANDLE h, SQLSMALLINT i, SQLWCHAR* state, SQLINTEGER* native,
                                 SQLWCHAR* text, SQLSMALLINT room, SQLSMALLINT* length) {
  const std::vector<Record>& records = ToObject(h)->records;
  if (i < 1 || static_cast<std::size_t>(i) > records.size()) return SQL_NO_DATA;
  const Record& r = records[static_cast<std::size_t>(i) - 1];
  Give(FromAscii(r.state), state, 6, nullptr);
  *native = r.native;
  Give(r.text, text, room, length);
  return r.text.size() < static_cast<std::size_t>(room) ? SQL_SUCCESS : SQL_SUCCESS_WITH_INFO;
}

// Its presence alone tells unixODBC that there are records to read.
SQLRETURN SQL_API SQLGetDiagFieldW(SQLSMALLINT, SQLHANDLE, SQLSMALLINT, SQLSMALLINT, SQLPOINTER, SQLSMALLINT,
                                   SQLSMALLINT*) {
  return SQL_ERROR;
}

}  // extern "C"
