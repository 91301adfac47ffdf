// What the mirrors' conditions, defaults and triggers call.
#include <algorithm>
#include <cmath>
#include <string>

#include "base/error.h"
#include "base/number.h"
#include "engine_mdb/cells_internal.h"
#include "engine_mdb/source_internal.h"
#include "mdb/indexes/index_key.h"

namespace engine_mdb {
namespace {

MdbSource& SourceOf(sqlite3_context* context) { return *static_cast<MdbSource*>(sqlite3_user_data(context)); }

void Next(sqlite3_context* context, int, sqlite3_value** values) {
  sqlite3_result_int64(context, SourceOf(context).NextAutonumber(sqlite3_value_int(values[0])));
}

void Seen(sqlite3_context* context, int, sqlite3_value** values) {
  if (sqlite3_value_type(values[1]) == SQLITE_INTEGER)
    SourceOf(context).SeeAutonumber(sqlite3_value_int(values[0]), sqlite3_value_int64(values[1]));
}

void FailWith(sqlite3_context* context, const std::string& text) {
  const std::string own = std::string(engine_sqlite::kOwnText) + text;
  sqlite3_result_error(context, own.c_str(), static_cast<int>(own.size()));
}

std::string TextOf(sqlite3_value* value) {
  const auto* p = reinterpret_cast<const char*>(sqlite3_value_text(value));
  return p == nullptr ? std::string() : std::string(p, static_cast<std::size_t>(sqlite3_value_bytes(value)));
}

// idm_decimal(value, precision, scale, column)
void Decimal(sqlite3_context* context, int, sqlite3_value** values) {
  if (sqlite3_value_type(values[0]) == SQLITE_NULL) return;
  const int scale = sqlite3_value_int(values[2]);
  const double v = base::Round(sqlite3_value_double(values[0]), std::min(scale, 22));
  if (std::abs(v) >= std::pow(10.0, sqlite3_value_int(values[1]) - scale))
    return FailWith(context, "El número no cabe en el campo " + TextOf(values[3]) + ".");
  sqlite3_result_double(context, v);
}

// idm_bytes(value, most bytes or 0, column): a text as the bytes that the file keeps of it.
void BytesForm(sqlite3_context* context, int, sqlite3_value** values) {
  if (sqlite3_value_type(values[0]) == SQLITE_NULL) return;
  const bool are_bytes = sqlite3_value_type(values[0]) == SQLITE_BLOB;
  const mdb::Bytes bytes = are_bytes ? mdb::Bytes() : AsUtf16(TextOf(values[0]));
  const auto length = are_bytes ? static_cast<std::size_t>(sqlite3_value_bytes(values[0])) : bytes.size();
  const auto limit = static_cast<std::size_t>(sqlite3_value_int(values[1]));
  if (limit != 0 && length > limit)
    return FailWith(context, "El valor es demasiado largo para el campo " + TextOf(values[2]) + ".");
  if (are_bytes)
    sqlite3_result_value(context, values[0]);
  else if (bytes.empty())
    sqlite3_result_zeroblob(context, 0);  // a null pointer would be Null
  else
    sqlite3_result_blob64(context, bytes.data(), bytes.size(), SQLITE_TRANSIENT);
}

void GuidForm(sqlite3_context* context, int, sqlite3_value** values) {
  if (sqlite3_value_type(values[0]) == SQLITE_NULL) return;
  try {
    const std::string text = mdb::GuidFromText(TextOf(values[0])).Text();
    sqlite3_result_text64(context, text.data(), text.size(), SQLITE_TRANSIENT, SQLITE_UTF8);
  } catch (const base::Error&) {
    FailWith(context, "El texto no es un GUID: no se puede guardar en el campo " + TextOf(values[1]) + ".");
  }
}

// idm_units(text): its length as the file counts it, in units of UTF-16. A text may hold a NUL.
void Units(sqlite3_context* context, int, sqlite3_value** values) {
  if (sqlite3_value_type(values[0]) == SQLITE_NULL) return;
  const auto* p = sqlite3_value_text(values[0]);
  const int bytes = sqlite3_value_bytes(values[0]);
  sqlite3_int64 units = 0;
  for (int i = 0; i < bytes; ++i) {
    if ((p[i] & 0xC0U) != 0x80U) ++units;
    if (p[i] >= 0xF0U) ++units;
  }
  sqlite3_result_int64(context, units);
}

// idm_in_index(table, column, text): true, or the reason why no index of the file can hold the text.
void InIndex(sqlite3_context* context, int, sqlite3_value** values) {
  sqlite3_result_int(context, 1);
  if (sqlite3_value_type(values[2]) != SQLITE_TEXT) return;
  const std::string text = TextOf(values[2]);
  if (std::all_of(text.begin(), text.end(), [](char c) { return c >= ' ' && c <= '~'; })) return;
  try {
    SourceOf(context).TryKey(sqlite3_value_int(values[0]), sqlite3_value_int(values[1]), text);
  } catch (const base::Error& e) {
    FailWith(context, e.Description());
  }
}

void Fail(sqlite3_context* context, int, sqlite3_value** values) { FailWith(context, TextOf(values[0])); }

void NewGuid(sqlite3_context* context, int, sqlite3_value**) {
  mdb::Guid guid;
  sqlite3_randomness(static_cast<int>(guid.bytes.size()), guid.bytes.data());
  guid.bytes[6] = static_cast<std::uint8_t>((guid.bytes[6] & 0x0F) | 0x40);
  guid.bytes[8] = static_cast<std::uint8_t>((guid.bytes[8] & 0x3F) | 0x80);
  const std::string text = guid.Text();
  sqlite3_result_text64(context, text.data(), text.size(), SQLITE_TRANSIENT, SQLITE_UTF8);
}

// SQLite is no place for exceptions to pass through.
template <void (*Body)(sqlite3_context*, int, sqlite3_value**)>
void Guarded(sqlite3_context* context, int n, sqlite3_value** values) {
  try {
    Body(context, n, values);
  } catch (const std::bad_alloc&) {
    sqlite3_result_error_nomem(context);
  }
}

struct Function {
  const char* name;
  int arguments;
  bool fixed;  // the same answer for the same arguments
  void (*function)(sqlite3_context*, int, sqlite3_value**);
};
constexpr Function kFunctions[] = {
    {"idm_next", 1, false, Next},
    {"idm_visto", 2, false, Seen},
    {"idm_falla", 1, false, Guarded<Fail>},
    {"idm_guid", 0, false, Guarded<NewGuid>},
    {"idm_decimal", 4, true, Guarded<Decimal>},
    {"idm_guid_form", 2, true, Guarded<GuidForm>},
    {"idm_bytes", 3, true, Guarded<BytesForm>},
    {"idm_units", 1, true, Units},
    {"idm_in_index", 3, true, Guarded<InIndex>},
};

}  // namespace

void MdbSource::RegisterFunctions() {
  for (const Function& f : kFunctions)
    sqlite3_create_function_v2(mirror_, f.name, f.arguments,
                               SQLITE_UTF8 | SQLITE_INNOCUOUS | (f.fixed ? SQLITE_DETERMINISTIC : 0), this,
                               f.function, nullptr, nullptr, nullptr);
}

std::int64_t MdbSource::NextAutonumber(int table) {
  MirrorTable& t = *by_number_.at(static_cast<std::size_t>(table));
  return t.state.last_auto_number += std::max(t.definition.increment, std::int32_t{1});
}

void MdbSource::SeeAutonumber(int table, std::int64_t value) {
  MirrorTable& t = *by_number_.at(static_cast<std::size_t>(table));
  t.state.last_auto_number = std::max(t.state.last_auto_number, value);
}

void MdbSource::TryKey(int table, int column, const std::string& text) const {
  const MirrorTable& t = *by_number_.at(static_cast<std::size_t>(table));
  mdb::Bytes key;
  mdb::AppendKey(t.base->Header(), t.definition.columns.at(static_cast<std::size_t>(column)), false, text,
                 key);
}

}  // namespace engine_mdb
