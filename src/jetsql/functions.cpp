#include "jetsql/functions.h"

#include <algorithm>
#include <array>
#include <string>

namespace jetsql {
namespace {

using enum base::Type;
constexpr TypeRule kFixed = TypeRule::Fixed;
constexpr bool kTagged = true;
constexpr bool kPlain = false;
constexpr bool kChanges = false;  // not deterministic

// Sorted by name.
constexpr Function kFunctions[] = {
    {"ABS", 1, 1, TypeRule::OfFirst, Null, kPlain},
    {"ASC", 1, 1, kFixed, Integer, kTagged},
    {"ASCW", 1, 1, kFixed, Integer, kTagged},
    {"ATN", 1, 1, kFixed, Number, kPlain},
    {"CBOOL", 1, 1, kFixed, Boolean, kPlain},
    {"CBYTE", 1, 1, kFixed, Integer, kPlain},
    {"CCUR", 1, 1, kFixed, Currency, kPlain},
    {"CDATE", 1, 1, kFixed, Date, kPlain},
    {"CDBL", 1, 1, kFixed, Number, kTagged},
    {"CDEC", 1, 1, kFixed, Number, kPlain},
    {"CHR", 1, 1, kFixed, Text, kPlain},
    {"CHRW", 1, 1, kFixed, Text, kPlain},
    {"CINT", 1, 1, kFixed, Integer, kPlain},
    {"CLNG", 1, 1, kFixed, Integer, kPlain},
    {"COS", 1, 1, kFixed, Number, kPlain},
    {"CSNG", 1, 1, kFixed, base::Type::Single, kPlain},
    {"CSTR", 1, 1, kFixed, Text, kTagged},
    {"CURRENTUSER", 0, 0, kFixed, Text, kPlain},
    {"CVAR", 1, 1, TypeRule::Common, Null, kPlain},
    {"CVDATE", 1, 1, kFixed, Date, kPlain},
    {"DATE", 0, 0, kFixed, Date, kPlain, kChanges},
    {"DATEADD", 3, 3, kFixed, Date, kPlain},
    {"DATEDIFF", 3, 5, kFixed, Integer, kPlain},
    {"DATEPART", 2, 4, kFixed, Integer, kPlain},
    {"DATESERIAL", 3, 3, kFixed, Date, kPlain},
    {"DATEVALUE", 1, 1, kFixed, Date, kPlain},
    {"DAY", 1, 1, kFixed, Integer, kPlain},
    {"DDB", 4, 5, kFixed, Number, kPlain},
    {"EXP", 1, 1, kFixed, Number, kPlain},
    {"FIX", 1, 1, TypeRule::OfFirst, Null, kPlain},
    {"FORMAT", 1, 4, kFixed, Text, kTagged},
    {"FORMATCURRENCY", 1, 5, kFixed, Text, kTagged},
    {"FORMATDATETIME", 1, 2, kFixed, Text, kTagged},
    {"FORMATNUMBER", 1, 5, kFixed, Text, kTagged},
    {"FORMATPERCENT", 1, 5, kFixed, Text, kTagged},
    {"FV", 3, 5, kFixed, Number, kPlain},
    {"HEX", 1, 1, kFixed, Text, kPlain},
    {"HOUR", 1, 1, kFixed, Integer, kPlain},
    {"INSTR", 2, 4, kFixed, Integer, kTagged},
    {"INSTRREV", 2, 4, kFixed, Integer, kTagged},
    {"INT", 1, 1, TypeRule::OfFirst, Null, kPlain},
    {"IPMT", 4, 6, kFixed, Number, kPlain},
    {"ISDATE", 1, 1, kFixed, Boolean, kTagged},
    {"ISEMPTY", 1, 1, kFixed, Boolean, kPlain},
    {"ISERROR", 1, 1, kFixed, Boolean, kPlain},
    {"ISNUMERIC", 1, 1, kFixed, Boolean, kTagged},
    {"LCASE", 1, 1, kFixed, Text, kTagged},
    {"LEFT", 2, 2, kFixed, Text, kTagged},
    {"LEN", 1, 1, kFixed, Integer, kTagged},
    {"LOG", 1, 1, kFixed, Number, kPlain},
    {"LTRIM", 1, 1, kFixed, Text, kTagged},
    {"MID", 2, 3, kFixed, Text, kTagged},
    {"MINUTE", 1, 1, kFixed, Integer, kPlain},
    {"MONTH", 1, 1, kFixed, Integer, kPlain},
    {"MONTHNAME", 1, 2, kFixed, Text, kPlain},
    {"NOW", 0, 0, kFixed, Date, kPlain, kChanges},
    {"NPER", 3, 5, kFixed, Number, kPlain},
    {"NZ", 1, 2, TypeRule::Common, Null, kPlain},
    {"OCT", 1, 1, kFixed, Text, kPlain},
    {"PARTITION", 4, 4, kFixed, Text, kPlain},
    {"PMT", 3, 5, kFixed, Number, kPlain},
    {"PPMT", 4, 6, kFixed, Number, kPlain},
    {"PV", 3, 5, kFixed, Number, kPlain},
    {"RATE", 3, 6, kFixed, Number, kPlain},
    {"REPLACE", 3, 6, kFixed, Text, kTagged},
    {"RGB", 3, 3, kFixed, Integer, kPlain},
    {"RIGHT", 2, 2, kFixed, Text, kTagged},
    {"RND", 0, 1, kFixed, base::Type::Single, kPlain, kChanges},
    {"ROUND", 1, 2, TypeRule::OfFirst, Null, kPlain},
    {"RTRIM", 1, 1, kFixed, Text, kTagged},
    {"SECOND", 1, 1, kFixed, Integer, kPlain},
    {"SGN", 1, 1, kFixed, Integer, kPlain},
    {"SIN", 1, 1, kFixed, Number, kPlain},
    {"SLN", 3, 3, kFixed, Number, kPlain},
    {"SPACE", 1, 1, kFixed, Text, kPlain},
    {"SQR", 1, 1, kFixed, Number, kPlain},
    {"STR", 1, 1, kFixed, Text, kTagged},
    {"STRCOMP", 2, 3, kFixed, Integer, kTagged},
    {"STRCONV", 2, 3, kFixed, Text, kTagged},
    {"STRING", 2, 2, kFixed, Text, kPlain},
    {"STRREVERSE", 1, 1, kFixed, Text, kTagged},
    {"SYD", 4, 4, kFixed, Number, kPlain},
    {"TAN", 1, 1, kFixed, Number, kPlain},
    {"TIME", 0, 0, kFixed, Date, kPlain, kChanges},
    {"TIMER", 0, 0, kFixed, base::Type::Single, kPlain, kChanges},
    {"TIMESERIAL", 3, 3, kFixed, Date, kPlain},
    {"TIMEVALUE", 1, 1, kFixed, Date, kPlain},
    {"TRIM", 1, 1, kFixed, Text, kTagged},
    {"TYPENAME", 1, 1, kFixed, Text, kTagged},
    {"UCASE", 1, 1, kFixed, Text, kTagged},
    {"VAL", 1, 1, kFixed, Number, kTagged},
    {"VARTYPE", 1, 1, kFixed, Integer, kTagged},
    {"WEEKDAY", 1, 2, kFixed, Integer, kPlain},
    {"WEEKDAYNAME", 1, 3, kFixed, Text, kPlain},
    {"YEAR", 1, 1, kFixed, Integer, kPlain},
};

constexpr bool ByName(const Function& a, const Function& b) { return a.name < b.name; }
static_assert(std::is_sorted(std::begin(kFunctions), std::end(kFunctions), ByName));

constexpr std::size_t kLongestName = 14;

}  // namespace

const Function* FindFunction(std::string_view name) {
  if (!name.empty() && name.back() == '$') name.remove_suffix(1);
  if (name.empty() || name.size() > kLongestName) return nullptr;
  std::array<char, kLongestName> upper_case{};
  std::transform(name.begin(), name.end(), upper_case.begin(),
                 [](char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - 0x20) : c; });
  const std::string_view sought(upper_case.data(), name.size());
  const auto* it = std::lower_bound(std::begin(kFunctions), std::end(kFunctions), sought,
                                    [](const Function& f, std::string_view n) { return f.name < n; });
  return it != std::end(kFunctions) && it->name == sought ? it : nullptr;
}

std::span<const Function> Functions() { return kFunctions; }

}  // namespace jetsql
