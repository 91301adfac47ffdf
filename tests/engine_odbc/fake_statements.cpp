// What the statements of the driver for tests do.
#include "fake_driver.h"

#include <dlfcn.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace fake {
namespace {

std::string ToAscii(const WideString& text) {
  std::string output;
  for (const char16_t u : text) output += u < 0x80 ? static_cast<char>(u) : '?';
  return output;
}

std::vector<WideString> Split(const WideString& text, char16_t where) {
  std::vector<WideString> parts(1);
  for (const char16_t u : text) {
    if (u == where)
      parts.emplace_back();
    else
      parts.back() += u;
  }
  return parts;
}

SQLSMALLINT Type(const WideString& name) {
  static const std::vector<std::pair<std::string, SQLSMALLINT>> kTypes = {{"bit", SQL_BIT},
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
  for (const auto& [text, type] : kTypes)
    if (FromAscii(text) == name) return type;
  return SQL_UNKNOWN_TYPE;
}

Cell ReadCell(const WideString& text) {
  if (text == u"NULL") return {true, {}};
  if (!text.empty() && text[0] == u'~') {
    std::size_t i = 1;
    std::size_t n = 0;
    for (; i < text.size() && text[i] >= u'0' && text[i] <= u'9'; ++i) n = n * 10 + (text[i] - u'0');
    Cell c;
    for (std::size_t k = 0; k < n; ++k) c.text += static_cast<char16_t>(u'0' + k % 10);
    c.text += text.substr(i);
    return c;
  }
  Cell c{false, text};
  for (std::size_t i; (i = c.text.find(u"\\0")) != WideString::npos;) c.text.replace(i, 2, 1, u'\0');
  return c;
}

void PutRows(Cursor& c, const WideString& text) {
  const std::vector<WideString> lines = Split(text, u'\n');
  for (const WideString& word : Split(lines[0], u' ')) {
    if (word.empty()) continue;
    std::vector<WideString> parts = Split(word, u':');
    parts.resize(3);
    c.columns.push_back({parts[0], parts[2], Type(parts[1])});
  }
  for (std::size_t i = 1; i < lines.size(); ++i) {
    std::vector<Cell> row;
    for (const WideString& cell : Split(lines[i], u'|')) row.push_back(ReadCell(cell));
    row.resize(c.columns.size());
    c.rows.push_back(std::move(row));
  }
}

void PutOne(Cursor& c, const WideString& name, const WideString& value) {
  c.columns.push_back({name, {}, SQL_WLONGVARCHAR});
  c.rows.push_back({Cell{false, value}});
}

// A cell as the bytes of a C type whose data comes in pieces.
std::string Bytes(const WideString& text, SQLSMALLINT c_type) {
  std::string bytes;
  for (const char16_t u : text) {
    bytes += static_cast<char>(u & 0xFF);
    if (c_type == SQL_C_WCHAR) bytes += static_cast<char>(u >> 8);
  }
  return bytes;
}

SQLRETURN GivePiece(Cursor& c, const WideString& text, SQLSMALLINT c_type, char* target, SQLLEN room,
                    SQLLEN* length) {
  const std::string bytes = Bytes(text, c_type);
  const std::size_t end = c_type == SQL_C_BINARY ? 0 : (c_type == SQL_C_WCHAR ? 2 : 1);
  if (c.read > bytes.size() || (c.read == bytes.size() && c.read > 0)) return SQL_NO_DATA;
  const std::size_t remaining = bytes.size() - c.read;
  const std::size_t n = std::min(remaining, static_cast<std::size_t>(room) - end);
  std::memcpy(target, bytes.data() + c.read, n);
  std::memset(target + n, 0, end);
  c.read += n;
  const bool all = n == remaining;
  *length = c.link->tells_total || all ? static_cast<SQLLEN>(remaining) : SQL_NO_TOTAL;
  if (all) {
    ++c.read;  // so that an empty text, too, comes once
    return SQL_SUCCESS;
  }
  c.records.push_back({"01004", u"[Prueba]There is more"});
  return SQL_SUCCESS_WITH_INFO;
}

// "2024-03-05 06:07:08.5"
SQL_TIMESTAMP_STRUCT Moment(const std::string& t) {
  SQL_TIMESTAMP_STRUCT m{};
  int a = 0, me = 0, d = 0, h = 0, n = 0, s = 0;
  double fraction = 0;
  std::sscanf(t.c_str(), "%d-%d-%d %d:%d:%d", &a, &me, &d, &h, &n, &s);
  if (const std::size_t point = t.find('.'); point != std::string::npos)
    fraction = std::atof(t.c_str() + point);
  m.year = static_cast<SQLSMALLINT>(a);
  m.month = static_cast<SQLUSMALLINT>(me);
  m.day = static_cast<SQLUSMALLINT>(d);
  m.hour = static_cast<SQLUSMALLINT>(h);
  m.minute = static_cast<SQLUSMALLINT>(n);
  m.second = static_cast<SQLUSMALLINT>(s);
  m.fraction = static_cast<SQLUINTEGER>(fraction * 1e9);
  return m;
}

template <typename T>
SQLRETURN GiveFixed(const T& value, SQLPOINTER target, SQLLEN* length) {
  std::memcpy(target, &value, sizeof value);
  *length = sizeof value;
  return SQL_SUCCESS;
}

void ReadOption(Link& e, const WideString& name, const WideString& value, WideString& key,
                WideString& given) {
  if (name == u"Txn") e.has_transactions = value != u"0";
  if (name == u"Savepoints") e.savepoints = value == u"si";
  if (name == u"Commit") e.commit_fails = value == u"falla";
  if (name == u"Rollback") e.rollback_fails = value == u"falla";
  if (name == u"Total") e.tells_total = value != u"no";
  if (name == u"Clave") key = value;
  if (name == u"Motor") {
    const auto create =
        reinterpret_cast<decltype(&CreateTestEngine)>(dlsym(RTLD_DEFAULT, "CreateTestEngine"));
    if (create != nullptr) e.engine.reset(create(value.c_str()));
  }
  if (name == u"PWD") given = value;
  if (name != u"Catalogo") return;
  e.broken_catalog = value == u"roto";
  for (const WideString& table : Split(value, u'/')) {
    std::vector<WideString> parts = Split(table, u':');
    parts.resize(2);
    e.catalog.push_back({parts[0], Split(parts[1], u',')});
  }
}

}  // namespace

WideString FromAscii(const std::string& text) { return {text.begin(), text.end()}; }
WideString Read(const SQLWCHAR* text, SQLINTEGER length) {
  WideString output;
  for (SQLINTEGER i = 0; length == SQL_NTS ? text[i] != 0 : i < length; ++i)
    output += static_cast<char16_t>(text[i]);
  return output;
}

void Give(const WideString& text, SQLWCHAR* target, SQLSMALLINT room, SQLSMALLINT* length) {
  if (length != nullptr) *length = static_cast<SQLSMALLINT>(text.size());
  if (target == nullptr || room <= 0) return;
  const std::size_t n = std::min(text.size(), static_cast<std::size_t>(room - 1));
  for (std::size_t i = 0; i < n; ++i) target[i] = text[i];
  target[n] = 0;
}

SQLRETURN Fail(Object* object, const std::string& state, const std::string& text) {
  object->records.push_back({state, FromAscii(text)});
  return SQL_ERROR;
}

SQLRETURN Lose(Cursor& c) { return Fail(&c, "08S01", "[Prueba]The line is dead"); }

bool Configure(Link& e, const WideString& connection_string) {
  WideString key, given;
  for (const WideString& part : Split(connection_string, u';'))
    if (const std::size_t equal = part.find(u'='); equal != WideString::npos)
      ReadOption(e, part.substr(0, equal), part.substr(equal + 1), key, given);
  return key == given;
}

SQLRETURN Run(Cursor& c, const WideString& text) {
  const auto rest = [&](const char16_t* verb) { return text.substr(WideString(verb).size()); };
  const auto starts = [&](const char16_t* verb) { return text.rfind(verb, 0) == 0; };
  if (starts(u"FILAS ")) {
    PutRows(c, rest(u"FILAS "));
  } else if (text.find(u"SAVEPOINT idm_mark") != WideString::npos) {
    if (!c.link->savepoints) return Fail(&c, "42000", "[Prueba]Syntax error");
    c.link->marks += ToAscii(text.substr(0, 2));
    c.changed = 0;
  } else if (text == u"MARCAS") {
    PutOne(c, u"marcas", FromAscii(c.link->marks));
  } else if (starts(u"CAMBIA ")) {
    c.changed = std::atol(ToAscii(rest(u"CAMBIA ")).c_str());
  } else if (text == u"NADA") {
    return SQL_NO_DATA;
  } else if (starts(u"AVISA ")) {
    const SQLRETURN rc = Run(c, rest(u"AVISA "));
    c.records.push_back({"01000", u"[Prueba]Take care"});
    return rc == SQL_SUCCESS ? SQL_SUCCESS_WITH_INFO : rc;
  } else if (starts(u"FALLA ")) {
    for (const WideString& one : Split(rest(u"FALLA "), u';')) {
      const std::size_t blank = one.find(u' ');
      const SQLINTEGER native = blank > 5 ? std::atoi(ToAscii(one.substr(6, blank - 6)).c_str()) : 0;
      c.records.push_back({ToAscii(one.substr(0, 5)), one.substr(blank + 1), native});
    }
    return SQL_ERROR;
  } else if (text == u"PIERDE") {
    return Lose(c);
  } else if (text == u"MUERE") {
    c.link->dead = true;
    return Fail(&c, "HY000", "[Prueba]Nobody answers");
  } else if (text == u"PIERDE_LEYENDO") {
    PutOne(c, u"x", u"1");
    c.loses_at_end = true;
  } else if (text == u"CUENTAS") {
    const Link& e = *c.link;
    PutOne(c, u"cuentas",
           FromAscii(std::to_string(e.autocommit) + " " + std::to_string(e.committed) + " " +
                     std::to_string(e.rolled_back)));
  } else if (text == u"SELECT 'TARDA'" && c.timeout > 0) {
    return Fail(&c, "HYT00", "[Prueba]Timeout " + std::to_string(c.timeout));
  } else {
    PutOne(c, u"texto", text);
  }
  return SQL_SUCCESS;
}

void Clear(Cursor& c) {
  c.columns.clear();
  c.rows.clear();
  c.row = 0;
  c.reading = 0;
  c.changed = -1;
}

SQLRETURN GiveCell(Cursor& c, const Cell& cell, SQLSMALLINT c_type, SQLPOINTER target, SQLLEN room,
                   SQLLEN* length) {
  const std::string ascii = ToAscii(cell.text);
  switch (c_type) {
    case SQL_C_DOUBLE:
      return GiveFixed(std::atof(ascii.c_str()), target, length);
    case SQL_C_FLOAT:
      return GiveFixed(std::strtof(ascii.c_str(), nullptr), target, length);
    case SQL_C_TYPE_TIMESTAMP:
      return GiveFixed(Moment(ascii), target, length);
    case SQL_C_TYPE_DATE: {
      const SQL_TIMESTAMP_STRUCT m = Moment(ascii);
      return GiveFixed(SQL_DATE_STRUCT{m.year, m.month, m.day}, target, length);
    }
    case SQL_C_TYPE_TIME: {
      const SQL_TIMESTAMP_STRUCT m = Moment("2000-01-01 " + ascii);
      return GiveFixed(SQL_TIME_STRUCT{m.hour, m.minute, m.second}, target, length);
    }
    case SQL_C_CHAR:
    case SQL_C_WCHAR:
    case SQL_C_BINARY:
      return GivePiece(c, cell.text, c_type, static_cast<char*>(target), room, length);
    default:
      return Fail(&c, "HYC00", "[Prueba]A type of ODBC 3 that not every driver knows");
  }
}

}  // namespace fake
