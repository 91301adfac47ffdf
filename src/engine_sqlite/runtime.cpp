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
struct Binding {
  Record record;
  std::string name;
  Environment* environment;
  bool searches;  // looks for one text in another, at every place of it in the worst case
};

// What a call costs a bounded statement, by the texts that it is given.
std::size_t CostOfCall(const Binding& binding, std::span<sqlite3_value*> values) {
  std::size_t bytes = 0, product = 1;
  for (sqlite3_value* v : values) {
    if (sqlite3_value_type(v) != SQLITE_TEXT) continue;
    const auto size = static_cast<std::size_t>(sqlite3_value_bytes(v));
    bytes += size;
    if (product < std::size_t{1} << 31) product *= size + 1;
  }
  constexpr std::size_t kCall = 5;
  return kCall + bytes / 2 + (binding.searches ? product / 4 : 0);
}

void Dispatch(sqlite3_context* context, int n, sqlite3_value** values) {
  const auto& binding = *static_cast<const Binding*>(sqlite3_user_data(context));
  if (binding.environment->steps_left != nullptr) {
    binding.environment->Charge(CostOfCall(binding, {values, static_cast<std::size_t>(n)}));
    if (binding.environment->Exhausted()) return sqlite3_result_error_code(context, SQLITE_INTERRUPT);
  }
  try {
    Call call(context, {values, static_cast<std::size_t>(n)}, *binding.environment, binding.record.tagged);
    binding.record.body(call);
  } catch (const base::Error& e) {
    Note(context, *binding.environment, e);
  } catch (const std::bad_alloc&) {
    sqlite3_result_error_nomem(context);
  }
}

void DestroyBinding(void* binding) { delete static_cast<Binding*>(binding); }

bool Searches(std::string_view name) {
  constexpr std::string_view kThose[] = {"jet_like", "jet_instr", "jet_instrrev", "jet_replace"};
  return std::find(std::begin(kThose), std::end(kThose), name) != std::end(kThose);
}

void RegisterOne(sqlite3* base, Environment& environment, const Record& record) {
  auto binding = std::make_unique<Binding>(Binding{record, record.name, &environment, Searches(record.name)});
  const int marks = SQLITE_UTF8 | SQLITE_INNOCUOUS | (record.deterministic ? SQLITE_DETERMINISTIC : 0);
  Binding* own = binding.release();  // SQLite destroys it, also when the call fails
  sqlite3_create_function_v2(base, own->name.c_str(), record.arguments, marks, own, Dispatch, nullptr,
                             nullptr, DestroyBinding);
}

int CollateJet(void* datum, int na, const void* a, int nb, const void* b) {
  auto& environment = *static_cast<Environment*>(datum);
  const std::string_view x(static_cast<const char*>(a), static_cast<std::size_t>(na));
  const std::string_view y(static_cast<const char*>(b), static_cast<std::size_t>(nb));
  constexpr std::size_t kComparison = 4;
  environment.Charge(kComparison + std::min(x.size(), y.size()) / 4);
  if (environment.Exhausted())
    return x.compare(y);  // a sort is not interrupted half-way, but it may be quick
  try {
    return base::CompareText(x, y, environment.order);
  } catch (const std::bad_alloc&) {
    // SQLite takes no failure from a collation: the statement is stopped, and any order will do until then.
    environment.out_of_memory = true;
    sqlite3_interrupt(environment.base);
    return x.compare(y);
  }
}

Body BodyOf(std::string_view name) {
  for (const auto& group : {TextFunctions(), NumericFunctions(), ConversionFunctions(), DateFunctions(),
                            FormatFunctions(), FinancialFunctions()})
    for (const Implementation& i : group)
      if (i.name == name) return i.body;
  return nullptr;
}

std::string SqliteName(std::string_view name) {
  std::string output = "jet_";
  for (const char c : name) output += static_cast<char>(c >= 'A' && c <= 'Z' ? c + 0x20 : c);
  return output;
}

}  // namespace

void ThrowNumber(int number) { throw base::Error(base::ErrorDescription(number), number); }

void Note(sqlite3_context* context, Environment& environment, const base::Error& error) {
  environment.failed = true;
  environment.description = error.Description();
  environment.number = error.Number();
  sqlite3_result_error(context, error.what(), -1);
}

base::Date Environment::Now() {
  if (!now) now = clock->Now();
  return *now;
}

base::Date Call::Today() const { return {std::trunc(Now().serial)}; }

// Asking for a text copies it when it does not end in a zero, as the literals of a statement do not; its
// bytes are the same, if the file holds texts in UTF-8.
std::string_view Call::View(sqlite3_value* value) const {
  const bool bytes = environment_.utf8 && sqlite3_value_type(value) == SQLITE_TEXT;
  const void* p = bytes ? sqlite3_value_blob(value) : sqlite3_value_text(value);
  if (p == nullptr) return {};
  return {static_cast<const char*>(p), static_cast<std::size_t>(sqlite3_value_bytes(value))};
}

Call::Call(sqlite3_context* context, std::span<sqlite3_value*> values,
           engine_sqlite::Environment& environment, bool tagged)
    : context_(context), values_(values), environment_(environment) {
  if (tagged && !values.empty()) {
    letters_ = View(values[0]);
    values_ = values.subspan(1);
  }
}

bool Call::AnyNull() const {
  for (sqlite3_value* v : values_)
    if (sqlite3_value_type(v) == SQLITE_NULL) return true;
  return false;
}

char Call::Letter(int i) const {
  const int kind = sqlite3_value_type(values_[i]);
  if (kind == SQLITE_TEXT) return 'T';
  const char letter = static_cast<std::size_t>(i) < letters_.size() ? letters_[i] : '?';
  if (letter != '?' && letter != 'T') return letter;
  return kind == SQLITE_INTEGER ? 'I' : (kind == SQLITE_FLOAT ? 'N' : '?');
}

void Call::AppendText(int i, std::string& target) const {
  sqlite3_value* v = values_[i];
  switch (sqlite3_value_type(v)) {
    case SQLITE_NULL:
      return;
    case SQLITE_TEXT:
    case SQLITE_BLOB:
      target += View(v);
      return;
    default:
      break;
  }
  switch (Letter(i)) {
    case 'B':
      target += sqlite3_value_int64(v) != 0 ? Locale().true_word : Locale().false_word;
      return;
    case 'D':
      target += base::DateText(base::Date{sqlite3_value_double(v)}, Locale());
      return;
    case 'S':
      target += base::SingleText(static_cast<float>(sqlite3_value_double(v)), Locale());
      return;
    case 'C':
      target += Typed(i).Text(Locale());
      return;
    default:
      break;
  }
  if (sqlite3_value_type(v) == SQLITE_INTEGER) {
    target += std::to_string(sqlite3_value_int64(v));
  } else {
    target += base::NumberText(sqlite3_value_double(v), Locale());
  }
}

std::string_view Call::Text(int i) {
  const int kind = sqlite3_value_type(values_[i]);
  if (kind == SQLITE_TEXT || kind == SQLITE_BLOB) return View(values_[i]);
  std::string& target = converted_.at(static_cast<std::size_t>(i));
  target.clear();
  AppendText(i, target);
  return target;
}

double Call::Number(int i) const {
  sqlite3_value* v = values_[i];
  switch (sqlite3_value_type(v)) {
    case SQLITE_NULL:
      ThrowNumber(kInvalidUseOfNull);
    case SQLITE_INTEGER:
    case SQLITE_FLOAT:
      return sqlite3_value_double(v);
    default:
      break;
  }
  return base::CDbl(View(v), Locale());
}

Call::Figure Call::Numeric(int i) const {
  sqlite3_value* v = values_[i];
  if (sqlite3_value_type(v) == SQLITE_INTEGER) return {true, sqlite3_value_int64(v), 0};
  const double d = Number(i);
  constexpr double kLargestExact = 9007199254740992.0;
  if (IsText(i) && std::trunc(d) == d && std::abs(d) <= kLargestExact)
    return {true, static_cast<std::int64_t>(d), 0};
  return {false, 0, d};
}

std::int64_t Call::Integer(int i) const {
  const Figure c = Numeric(i);
  return c.whole ? c.integer : base::BankersInteger(c.real);
}

std::int32_t Call::Integer32(int i) const {
  const std::int64_t v = Integer(i);
  if (v < std::numeric_limits<std::int32_t>::min() || v > std::numeric_limits<std::int32_t>::max())
    ThrowNumber(kOverflow);
  return static_cast<std::int32_t>(v);
}

int Call::Optional(int i, int if_missing) const { return Has(i) ? Integer32(i) : if_missing; }

int Call::FirstDay(int i) const {
  const int day = Optional(i, 1);
  if (day < 0 || day > 7) ThrowNumber(kInvalidCall);
  return day == 0 ? 1 : day;
}

int Call::FirstWeek(int i) const {
  const int week = Optional(i, 1);
  if (week < 0 || week > 3) ThrowNumber(kInvalidCall);
  return week == 0 ? 1 : week;
}

bool Call::Boolean(int i) const { return !IsNull(i) && Number(i) != 0; }

base::Date Call::Date(int i) const {
  constexpr double kFirst = -657434.0, kAfterLast = 2958466.0;
  base::Date date;
  if (IsText(i)) {
    const auto parsed = base::DateFromText(View(values_[i]), Today(), Locale());
    if (!parsed) ThrowNumber(kTypeMismatch);
    date = *parsed;
  } else {
    date.serial = Number(i);
  }
  if (!(date.serial >= kFirst && date.serial < kAfterLast)) ThrowNumber(kOverflow);
  return date;
}

base::Value Call::Typed(int i) const {
  sqlite3_value* v = values_[i];
  switch (sqlite3_value_type(v)) {
    case SQLITE_NULL:
      return {};
    case SQLITE_TEXT:
    case SQLITE_BLOB:
      return std::string(View(v));
    default:
      break;
  }
  switch (Letter(i)) {
    case 'B':
      return sqlite3_value_int64(v) != 0;
    case 'D':
      return base::Date{sqlite3_value_double(v)};
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

void Call::ReturnNumber(double v) {
  if (!std::isfinite(v)) ThrowNumber(kOverflow);
  sqlite3_result_double(context_, v);
}

void Call::ReturnText(std::string_view v) {
  environment_.Charge(v.size() / 2);
  sqlite3_result_text64(context_, v.data() == nullptr ? "" : v.data(), v.size(), SQLITE_TRANSIENT,
                        SQLITE_UTF8);
}

void Register(sqlite3* base, Environment& environment) {
  environment.base = base;
  for (const jetsql::Function& f : jetsql::Functions()) {
    const Body body = BodyOf(f.name);
    if (body == nullptr) throw base::Error("La función " + std::string(f.name) + " no está disponible.");
    const std::string name = SqliteName(f.name);
    // The clock stands still during one statement, so Date() and its kin are computed once for it; Rnd is
    // not.
    const bool once = f.name != "RND";
    RegisterOne(base, environment, {name.c_str(), -1, f.tagged, once, body});
  }
  for (const Record& r : TranslatorHelpers()) RegisterOne(base, environment, r);
  RegisterTotals(base);
  sqlite3_create_collation_v2(base, "JET", SQLITE_UTF8, &environment, CollateJet, nullptr);
}

}  // namespace engine_sqlite
