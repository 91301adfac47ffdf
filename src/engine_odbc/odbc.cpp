// Handles and texts of the driver manager.
#ifndef _WIN32
#include <locale.h>
#endif

#include <algorithm>

#include "base/encoding.h"
#include "engine_odbc/odbc_internal.h"

namespace engine_odbc {
namespace {

constexpr std::string_view kNoResources = "No se pudo iniciar ODBC en este equipo";
constexpr std::size_t kMostDiagnostics = 50;  // a driver that never ends its list is not believed

}  // namespace

Environment MakeEnvironment() {
  SQLHANDLE raw = nullptr;
  if (!SQL_SUCCEEDED(SQLAllocHandle(SQL_HANDLE_ENV, SQL_NULL_HANDLE, &raw)))
    throw db::Error(base::StorageFault(std::string(kNoResources) + "."));
  Environment environment(raw);
  if (!SQL_SUCCEEDED(SQLSetEnvAttr(raw, SQL_ATTR_ODBC_VERSION, reinterpret_cast<SQLPOINTER>(SQL_OV_ODBC3),
                                   SQL_IS_UINTEGER)))
    throw FaultOf(Diagnostics(SQL_HANDLE_ENV, raw), kNoResources);
  return environment;
}

Link MakeLink(const Environment& parent) {
  SQLHANDLE raw = nullptr;
  if (!SQL_SUCCEEDED(SQLAllocHandle(SQL_HANDLE_DBC, parent.Raw(), &raw)))
    throw FaultOf(Diagnostics(SQL_HANDLE_ENV, parent.Raw()), kNoResources);
  return Link(raw);
}

Cursor MakeCursor(const Link& parent) {
  SQLHANDLE raw = nullptr;
  if (!SQL_SUCCEEDED(SQLAllocHandle(SQL_HANDLE_STMT, parent.Raw(), &raw)))
    throw FaultOf(Diagnostics(SQL_HANDLE_DBC, parent.Raw()), "La base no pudo preparar una sentencia");
  return Cursor(raw);
}

WideText::WideText(std::string_view utf8) {
  const std::u16string text = base::ToUtf16(utf8);
  units_.reserve(text.size() + 1);
  for (const char16_t u : text) units_.push_back(static_cast<SQLWCHAR>(u));
  units_.push_back(0);
}

std::string FromWide(const SQLWCHAR* units, std::size_t count) {
  std::string text(count, '\0');
  std::size_t i = 0;
  for (; i < count && units[i] < 0x80; ++i) text[i] = static_cast<char>(units[i]);
  if (i == count) return text;
  std::u16string width(count, u'\0');
  for (i = 0; i < count; ++i) width[i] = static_cast<char16_t>(units[i]);
  return base::FromUtf16(width);
}

#ifdef _WIN32
Utf8Texts::Utf8Texts() = default;
Utf8Texts::~Utf8Texts() = default;
bool LosesCharacters(SQLHANDLE) { return false; }
#else
Utf8Texts::Utf8Texts() {
  const locale_t utf8 = newlocale(LC_CTYPE_MASK, "C.UTF-8", nullptr);
  if (utf8 == nullptr) return;
  own_ = utf8;
  previous_ = uselocale(utf8);
}
Utf8Texts::~Utf8Texts() {
  if (own_ == nullptr) return;
  uselocale(static_cast<locale_t>(previous_));
  freelocale(static_cast<locale_t>(own_));
}
bool LosesCharacters(SQLHANDLE link) {
  WideText test("SELECT '\U0001F600'");
  std::vector<SQLWCHAR> returned(64);
  SQLINTEGER length = 0;
  if (!SQL_SUCCEEDED(SQLNativeSqlW(link, test.Data(), test.Length(), returned.data(),
                                   static_cast<SQLINTEGER>(returned.size()), &length)))
    return false;
  return !std::equal(test.Data(), test.Data() + test.Length(), returned.data());
}
#endif

std::vector<Diagnostic> Diagnostics(SQLSMALLINT what, SQLHANDLE handle) {
  std::vector<Diagnostic> all;
  std::vector<SQLWCHAR> text(1024);
  for (SQLSMALLINT i = 1; all.size() < kMostDiagnostics; ++i) {
    SQLWCHAR state[6] = {};
    SQLINTEGER native = 0;
    SQLSMALLINT length = 0;
    const auto read = [&] {
      return SQLGetDiagRecW(what, handle, i, state, &native, text.data(),
                            static_cast<SQLSMALLINT>(text.size()), &length);
    };
    SQLRETURN rc = read();
    if (rc == SQL_SUCCESS_WITH_INFO && length >= static_cast<SQLSMALLINT>(text.size()) && length < 32000) {
      text.resize(static_cast<std::size_t>(length) + 1);
      rc = read();
    }
    if (!SQL_SUCCEEDED(rc)) break;
    // Up to the NUL: some drivers give the length in bytes.
    std::size_t end = 0;
    while (end + 1 < text.size() && text[end] != 0) ++end;
    while (end > 0 && text[end - 1] <= ' ') --end;
    // A message is shown on one line.
    std::replace_if(
        text.begin(), text.begin() + static_cast<std::ptrdiff_t>(end), [](SQLWCHAR u) { return u < ' '; },
        SQLWCHAR{' '});
    all.push_back({FromWide(state, 5), FromWide(text.data(), end), static_cast<std::int32_t>(native)});
  }
  return all;
}

}  // namespace engine_odbc
