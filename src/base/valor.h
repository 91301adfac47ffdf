// One value of the dialect, typed.
#pragma once

#include <cstdint>
#include <string>
#include <variant>

#include "base/date.h"
#include "base/locale.h"

namespace base {

struct Nulo {
  auto operator<=>(const Nulo&) const = default;
};
struct Moneda {  // ten-thousandths
  std::int64_t diezmilesimas = 0;
  auto operator<=>(const Moneda&) const = default;
};

// The order of the alternatives is the order of Tipo.
enum class Tipo { Nulo, Booleano, Entero, Simple, Numero, Moneda, Fecha, Texto };

class Valor {
 public:
  Valor() = default;
  Valor(Nulo) {}
  Valor(bool v) : v_(v) {}
  Valor(int v) : v_(static_cast<std::int64_t>(v)) {}
  Valor(std::int64_t v) : v_(v) {}
  Valor(float v) : v_(v) {}
  Valor(double v) : v_(v) {}
  Valor(Moneda v) : v_(v) {}
  Valor(Fecha v) : v_(v) {}
  Valor(std::string v) : v_(std::move(v)) {}
  Valor(const char* v) : v_(std::string(v)) {}

  Tipo tipo() const { return static_cast<Tipo>(v_.index()); }
  bool EsNulo() const { return v_.index() == 0; }
  template <typename T>
  const T* Si() const {
    return std::get_if<T>(&v_);
  }

  // CStr: Null gives "", booleans "True"/"False" words of the locale, numbers and dates by the locale. A date
  // outside the calendar shows as its serial. Never throws.
  std::string Texto(const Locale& locale = Locale::espanol()) const;
  // The same with numbers in ".", booleans -1/0 and dates AAAA-MM-DD[ hh:mm:ss]: what a CSV prints.
  std::string TextoCsv() const;
  // CDbl: Null throws Error 94, a text that is no number throws Error 13; True is -1.
  double Numero(const Locale& locale = Locale::espanol()) const;
  // Null and unreadable text give 0.
  double NumeroOCero(const Locale& locale = Locale::espanol()) const;
  // CLng and CInt: half to even; errors as Numero, and 6 outside 32 or 16 bits.
  std::int32_t Entero(const Locale& locale = Locale::espanol()) const;
  std::int16_t EnteroCorto(const Locale& locale = Locale::espanol()) const;
  // CBool: not 0; Null is false; "True" and the locale's word read. Another text throws Error 13.
  bool Booleano(const Locale& locale = Locale::espanol()) const;
  bool operator==(const Valor&) const = default;

 private:
  std::variant<Nulo, bool, std::int64_t, float, double, Moneda, Fecha, std::string> v_;
};

}  // namespace base
