// The regional conventions of texts, as a value that is passed in; never the machine's setting.
#pragma once

#include <array>
#include <string>

namespace base {

enum class DateOrder { DayMonthYear, MonthDayYear };

struct Locale {
  std::string decimal;    // "," in Spanish
  std::string thousands;  // "." in Spanish
  std::string currency;   // "€"
  bool currency_behind;   // the sign follows the number
  DateOrder order;
  std::string short_date;  // as a date format: "dd/MM/yyyy"
  std::string long_date;
  std::string time;  // "H:mm:ss"
  std::string date_separator;
  std::string time_separator;
  std::string am, pm;
  std::array<std::string, 12> months, short_months;
  std::array<std::string, 7> days, short_days;  // from Sunday
  std::string true_word, false_word, yes, no, on, off;

  static const Locale& spanish();
  static const Locale& english();
};

}  // namespace base
