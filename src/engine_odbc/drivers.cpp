// Connection strings, and the drivers that are installed.
#include <array>
#include <optional>

#include "base/text.h"
#include "engine_odbc/odbc_connection.h"
#include "engine_odbc/odbc_internal.h"

namespace engine_odbc {
namespace {

// The best first: the second one does not open .accdb files.
constexpr std::array<std::string_view, 2> kAccessDrivers = {"Microsoft Access Driver (*.mdb, *.accdb)",
                                                            "Microsoft Access Driver (*.mdb)"};

// Of every driver: what ends a value or starts a quoted one.
constexpr std::string_view kValueMarks = "{};";
constexpr std::string_view kMarks = "[]{}(),;?*=!@";

// A value of a connection string, in braces only when it needs them: not every driver reads those.
std::string Value(std::string_view value, std::string_view marks) {
  const bool blanks = !value.empty() && (value.front() == ' ' || value.back() == ' ');
  if (!blanks && value.find_first_of(marks) == std::string_view::npos) return std::string(value);
  return "{" + base::Replace(value, "}", "}}") + "}";
}

// The installed drivers' names.
std::vector<std::string> Drivers() {
  const Environment environment = MakeEnvironment();
  std::vector<std::string> names;
  std::vector<SQLWCHAR> name(512), attributes(4096);
  SQLUSMALLINT direction = SQL_FETCH_FIRST;
  for (;;) {
    SQLSMALLINT length = 0, attributes_length = 0;
    const SQLRETURN rc =
        SQLDriversW(environment.Raw(), direction, name.data(), static_cast<SQLSMALLINT>(name.size()), &length,
                    attributes.data(), static_cast<SQLSMALLINT>(attributes.size()), &attributes_length);
    if (!SQL_SUCCEEDED(rc)) return names;
    std::size_t end = 0;
    while (end + 1 < name.size() && name[end] != 0) ++end;
    names.push_back(FromWide(name.data(), end));
    direction = SQL_FETCH_NEXT;
  }
}

std::optional<std::string_view> AccessDriver() {
  const std::vector<std::string> installed = Drivers();
  for (const std::string_view sought : kAccessDrivers)
    for (const std::string& d : installed)
      if (base::EqualIgnoringCase(d, sought)) return sought;
  return std::nullopt;
}

bool HasPassword(std::string_view connection_string) {
  for (const std::string& part : base::Split(connection_string, ";"))
    if (base::StartsWith(base::TrimView(part), "PWD=", base::Compare::IgnoringCase)) return true;
  return false;
}

std::string WithPassword(std::string connection_string, std::string_view password) {
  if (password.empty() || HasPassword(connection_string)) return connection_string;
  if (connection_string.back() != ';') connection_string += ';';
  return connection_string + "PWD=" + Value(password, kMarks);
}

}  // namespace

std::string ConnectionStringOf(std::string_view source, std::string_view password) {
  std::string connection_string(base::TrimView(source));
  if (!base::Contains(connection_string, "="))
    connection_string = "DSN=" + Value(connection_string, kValueMarks);
  return WithPassword(std::move(connection_string), password);
}

bool HasAccessDriver() { return AccessDriver().has_value(); }

std::string ConnectionStringForFile(std::string_view path, std::string_view password,
                                    std::string_view driver) {
  if (driver.empty()) {
    const std::optional<std::string_view> found = AccessDriver();
    if (!found)
      throw db::Error("No hay un driver ODBC de Access instalado que abra '" + std::string(path) + "'.");
    driver = *found;
  }
  return WithPassword("Driver={" + std::string(driver) + "};DBQ=" + Value(path, kValueMarks), password);
}

}  // namespace engine_odbc
