// One value of the dialect, typed.
#pragma once

#include <cstdint>
#include <string>
#include <variant>

#include "base/date.h"
#include "base/locale.h"

namespace base {

struct Null {
  auto operator<=>(const Null&) const = default;
};
struct Currency {  // ten-thousandths
  std::int64_t ten_thousandths = 0;
  auto operator<=>(const Currency&) const = default;
};

// The order of the alternatives is the order of Type.
enum class Type { Null, Boolean, Integer, Single, Number, Currency, Date, Text };

class Value {
 public:
  Value() = default;
  Value(Null) {}
  Value(bool v) : v_(v) {}
  Value(int v) : v_(static_cast<std::int64_t>(v)) {}
  Value(std::int64_t v) : v_(v) {}
  Value(float v) : v_(v) {}
  Value(double v) : v_(v) {}
  Value(Currency v) : v_(v) {}
  Value(Date v) : v_(v) {}
  Value(std::string v) : v_(std::move(v)) {}
  Value(const char* v) : v_(std::string(v)) {}

  Type type() const { return static_cast<Type>(v_.index()); }
  bool IsNull() const { return v_.index() == 0; }
  template <typename T>
  const T* GetIf() const {
    return std::get_if<T>(&v_);
  }

  // CStr: Null gives "", booleans "True"/"False" words of the locale, numbers and dates by the locale. A date
  // outside the calendar shows as its serial. Never throws.
  std::string Text(const Locale& locale = Locale::spanish()) const;
  // The same with numbers in ".", booleans -1/0 and dates AAAA-MM-DD[ hh:mm:ss]: what a CSV prints.
  std::string CsvText() const;
  // CDbl: Null throws Error 94, a text that is no number throws Error 13; True is -1.
  double Number(const Locale& locale = Locale::spanish()) const;
  // Null and unreadable text give 0.
  double NumberOrZero(const Locale& locale = Locale::spanish()) const;
  // CLng and CInt: half to even; errors as Number, and 6 outside 32 or 16 bits.
  std::int32_t Integer(const Locale& locale = Locale::spanish()) const;
  std::int16_t ShortInteger(const Locale& locale = Locale::spanish()) const;
  // CBool: not 0; Null is false; "True" and the locale's word read. Another text throws Error 13.
  bool Boolean(const Locale& locale = Locale::spanish()) const;
  bool operator==(const Value&) const = default;

 private:
  std::variant<Null, bool, std::int64_t, float, double, Currency, Date, std::string> v_;
};

}  // namespace base
