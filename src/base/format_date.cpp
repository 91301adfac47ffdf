// Date masks.
#include "base/format_internal.h"
#include "base/text.h"
#include "base/text_internal.h"

namespace base::internal {

std::size_t DayHalfLength(std::string_view mask, std::size_t i) {
  for (const std::string_view form : {"AM/PM", "AMPM", "A/P"})
    if (StartsWith(mask.substr(i), form, Compare::IgnoringCase)) return form.size();
  return 0;
}

namespace {

bool HasDayHalf(std::string_view mask) {
  std::string ignored;
  for (std::size_t i = 0; i < mask.size();) {
    if (TakeLiteral(mask, i, ignored)) continue;
    if (DayHalfLength(mask, i) > 0) return true;
    ++i;
  }
  return false;
}

class Writer {
 public:
  Writer(Date date, const Locale& locale, int first_day, int first_week, bool twelve_hours)
      : date_(date),
        p_(PartsOf(date)),
        locale_(locale),
        first_day_(first_day),
        first_week_(first_week),
        twelve_hours_(twelve_hours) {}

  std::string Write(std::string_view mask) {
    for (std::size_t i = 0; i < mask.size();) {
      if (TakeLiteral(mask, i, output_)) continue;
      if (const std::size_t length = DayHalfLength(mask, i)) {
        WriteDayHalf(mask.substr(i, length));
        i += length;
        continue;
      }
      const char letter = LowerAscii(mask[i]);
      std::size_t n = 1;
      while (n < LongestRun(letter) && i + n < mask.size() && LowerAscii(mask[i + n]) == letter) ++n;
      if (letter == 't' && n < 5) n = 1;
      if (!WriteComponent(letter, n)) {
        output_ += mask[i];
        n = 1;
      } else if (letter != '/' && letter != ':') {
        after_hour_ = letter == 'h';
      }
      i += n;
    }
    return output_;
  }

 private:
  static std::size_t LongestRun(char letter) {
    switch (letter) {
      case 'd':
        return 6;
      case 'm':
      case 'y':
        return 4;
      case 't':
        return 5;
      case 'h':
      case 'n':
      case 's':
      case 'w':
        return 2;
      default:
        return 1;
    }
  }

  void WriteNumber(int number, std::size_t digits) {
    if (digits == 2 && number < 10) output_ += '0';
    output_ += std::to_string(number);
  }

  void WriteDayHalf(std::string_view form) {
    const bool afternoon = p_.hour >= 12;
    if (form.size() == 4) {
      output_ += afternoon ? locale_.pm : locale_.am;
    } else if (form.size() == 3) {
      output_ += form[afternoon ? 2 : 0];
    } else {
      output_ += form.substr(afternoon ? 3 : 0, 2);
    }
    after_hour_ = false;
  }

  // False when the letter is no component: it prints as it is.
  bool WriteComponent(char letter, std::size_t n) {
    switch (letter) {
      case 'd':
        WriteDay(n);
        return true;
      case 'm':
        WriteMonth(n);
        return true;
      case 'y':
        WriteYear(n);
        return true;
      case 'h':
        WriteNumber(twelve_hours_ ? (p_.hour + 11) % 12 + 1 : p_.hour, n);
        return true;
      case 'n':
        WriteNumber(p_.minute, n);
        return true;
      case 's':
        WriteNumber(p_.second, n);
        return true;
      case 'q':
        WriteNumber((p_.month - 1) / 3 + 1, 1);
        return true;
      case 'w':
        WriteNumber(DatePart(n == 1 ? "w" : "ww", date_, first_day_, first_week_), 1);
        return true;
      case 'c':
        output_ += DateText(date_, locale_);
        return true;
      case 't':
        if (n < 5) return false;
        output_ += ApplyDateMask(date_, locale_.time, locale_, first_day_, first_week_);
        return true;
      case '/':
        output_ += locale_.date_separator;
        return true;
      case ':':
        output_ += locale_.time_separator;
        return true;
      default:
        return false;
    }
  }

  void WriteDay(std::size_t n) {
    const auto weekday = static_cast<std::size_t>(Weekday(date_) - 1);
    if (n <= 2) {
      WriteNumber(p_.day, n);
    } else if (n == 3) {
      output_ += locale_.short_days[weekday];
    } else if (n == 4) {
      output_ += locale_.days[weekday];
    } else {
      output_ += ApplyDateMask(date_, n == 5 ? locale_.short_date : locale_.long_date, locale_, first_day_,
                               first_week_);
    }
  }

  // Right behind the hour it is the minute.
  void WriteMonth(std::size_t n) {
    const auto month = static_cast<std::size_t>(p_.month - 1);
    if (n <= 2) {
      WriteNumber(after_hour_ ? p_.minute : p_.month, n);
    } else {
      output_ += n == 3 ? locale_.short_months[month] : locale_.months[month];
    }
  }

  void WriteYear(std::size_t n) {
    if (n == 4) {
      WriteNumber(p_.year, 1);
      return;
    }
    if (n >= 2) WriteNumber(p_.year % 100, 2);
    if (n != 2) WriteNumber(DatePart("y", date_), 1);  // day of the year
  }

  Date date_;
  DateParts p_;
  const Locale& locale_;
  int first_day_, first_week_;
  bool twelve_hours_;
  bool after_hour_ = false;
  std::string output_;
};

}  // namespace

std::string ApplyDateMask(Date date, std::string_view mask, const Locale& locale, int first_day,
                          int first_week) {
  return Writer(date, locale, first_day, first_week, HasDayHalf(mask)).Write(mask);
}

}  // namespace base::internal
