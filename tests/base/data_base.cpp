// Verbs over the text, number, date and mask primitives. Each input line is one case and gives one line of
// the result. A line in double quotes is the text between them, where \t \n \r \\ stand for what they say.
#include <cmath>
#include <functional>
#include <stdexcept>

#include "base/date.h"
#include "base/dialect_number.h"
#include "base/encoding.h"
#include "base/error.h"
#include "base/format.h"
#include "base/number.h"
#include "base/text.h"
#include "base/value.h"
#include "support/data_test.h"

namespace {

using base::Date;
using base::Locale;
using base::Value;
using support::Block;

const Date kToday = base::MakeDate(2026, 5, 20);  // a Wednesday

std::string Unescape(const std::string& text) {
  std::string output;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] != '\\' || i + 1 == text.size()) {
      output += text[i];
      continue;
    }
    const char c = text[++i];
    output += c == 't' ? '\t' : c == 'n' ? '\n' : c == 'r' ? '\r' : c;
  }
  return output;
}

std::string Argument(std::string_view line) {
  if (line.size() < 2 || line.front() != '"' || line.back() != '"') return std::string(line);
  return Unescape(std::string(line.substr(1, line.size() - 2)));
}

// The fields of a line, parted by " ~ ".
std::vector<std::string> Fields(const std::string& line) {
  auto fields = base::Split(line, " ~ ");
  for (auto& c : fields) c = Argument(c);
  return fields;
}

std::string Visible(const std::string& text) { return text.empty() ? "(empty)" : text; }

std::string ShowDate(Date f) { return base::IsoDate(f); }

Date Read(std::string_view text) {
  const auto f = base::DateFromLiteral(text, kToday);
  if (!f) throw std::runtime_error("not a date: " + std::string(text));
  return *f;
}

double Double(const std::string& text) { return std::stod(text); }

// A typed value: Null, True, False, #date#, "text", 1.5! single, 15000@ currency in ten-thousandths, 5
// integer, 5.0 number, serial:5 a date of that serial.
Value Typed(const std::string& t) {
  if (t == "Null") return base::Null{};
  if (t == "True" || t == "False") return t == "True";
  if (t.size() > 1 && t.front() == '#' && t.back() == '#') return Read(t.substr(1, t.size() - 2));
  if (t.size() > 1 && t.front() == '"' && t.back() == '"') return Argument(t);
  if (base::StartsWith(t, "serial:")) return Date{Double(t.substr(7))};
  if (t.back() == '!') return std::stof(t.substr(0, t.size() - 1));
  if (t.back() == '@') return base::Currency{std::stoll(t.substr(0, t.size() - 1))};
  if (t.find_first_of(".en") == std::string::npos) return static_cast<std::int64_t>(std::stoll(t));
  return Double(t);
}

using PerLine = std::function<std::string(const std::string& line, const Block& block)>;

support::Verb ForEachLine(PerLine f) {
  return [f = std::move(f)](const Block& block) {
    std::string output;
    for (const auto& line : base::Split(block.entry, "\n")) {
      if (!output.empty()) output += '\n';
      try {
        output += f(line, block);
      } catch (const base::Error& e) {
        output += "error ";
        output += std::to_string(e.Number());
      }
    }
    return output;
  };
}

const Locale& LocaleOf(const Block& b) { return b.Has("en") ? Locale::english() : Locale::spanish(); }

std::string Number(std::optional<double> n) { return n ? base::SqlNumber(*n) : "none"; }

std::string Infinite(double n) {
  if (std::isinf(n)) return n < 0 ? "-infinity" : "infinity";
  return base::SqlNumber(n);
}

void NumberVerbs(support::Verbs& v) {
  v["number"] = ForEachLine([](const std::string& l, const Block& b) {
    const std::string text = Argument(l);
    const auto n = base::NumberFromText(text, LocaleOf(b));
    if (n.has_value() != base::IsNumber(text, LocaleOf(b))) return std::string("EsNumero disagrees");
    return Number(n);
  });
  v["number-or-error"] = ForEachLine([](const std::string& l, const Block& b) {
    return Number(base::NumberFromTextOrThrow(Argument(l), LocaleOf(b)));
  });
  v["dialect-number"] = ForEachLine([](const std::string& l, const Block& b) {
    const std::string text = Argument(l);
    const auto n = base::DialectNumber(text, LocaleOf(b));
    if (n.has_value() != base::IsNumeric(text, LocaleOf(b))) return std::string("IsNumeric disagrees");
    return Number(n);
  });
  v["cdbl"] = ForEachLine(
      [](const std::string& l, const Block& b) { return Number(base::CDbl(Argument(l), LocaleOf(b))); });
  v["val"] = ForEachLine([](const std::string& l, const Block&) { return Number(base::Val(Argument(l))); });
  v["parse"] =
      ForEachLine([](const std::string& l, const Block&) { return Infinite(base::Parse(Argument(l))); });
  v["quantity"] = ForEachLine(
      [](const std::string& l, const Block&) { return Infinite(base::NumericValue(Argument(l))); });
  v["blank"] = ForEachLine([](const std::string& l, const Block&) {
    return std::string(base::IsBlank(Argument(l)) ? "yes" : "no");
  });
  v["plain"] = ForEachLine(
      [](const std::string& l, const Block& b) { return base::PlainNumber(Double(l), LocaleOf(b).decimal); });
  v["plain-single"] =
      ForEachLine([](const std::string& l, const Block&) { return base::PlainSingle(std::stof(l)); });
  v["double"] = ForEachLine(
      [](const std::string& l, const Block& b) { return base::NumberText(Double(l), LocaleOf(b)); });
  v["single"] = ForEachLine(
      [](const std::string& l, const Block& b) { return base::SingleText(std::stof(l), LocaleOf(b)); });
  v["sql-double"] =
      ForEachLine([](const std::string& l, const Block&) { return base::SqlNumber(Double(l)); });
  v["sql-single"] =
      ForEachLine([](const std::string& l, const Block&) { return base::SqlSingle(std::stof(l)); });
  v["widen"] = ForEachLine(
      [](const std::string& l, const Block&) { return base::SqlNumber(base::DoubleOfSingle(std::stof(l))); });
  v["round"] = ForEachLine([](const std::string& l, const Block&) {
    const auto c = Fields(l);
    return base::SqlNumber(base::Round(Double(c.at(0)), std::stoi(c.at(1))));
  });
  v["whole"] = ForEachLine([](const std::string& l, const Block& b) {
    const double n = Double(l);
    if (b.Has("16")) return std::to_string(base::Integer16(n));
    return std::to_string(b.Has("32") ? base::Integer32(n) : base::BankersInteger(n));
  });
  v["hex"] = ForEachLine([](const std::string& l, const Block& b) {
    const auto n = base::HexOctalInteger(Argument(l), std::stoi(b.Option("bits")));
    return n ? std::to_string(*n) : std::string("none");
  });
}

void DateVerbs(support::Verbs& v) {
  v["date"] = ForEachLine([](const std::string& l, const Block& b) {
    const auto f = base::DateFromText(Argument(l), kToday, LocaleOf(b));
    return f ? ShowDate(*f) : std::string("none");
  });
  v["isdate"] = ForEachLine([](const std::string& l, const Block& b) {
    return std::string(base::IsDate(Argument(l), kToday, LocaleOf(b)) ? "yes" : "no");
  });
  v["literal"] = ForEachLine([](const std::string& l, const Block&) {
    const auto f = base::DateFromLiteral(Argument(l), kToday);
    return f ? ShowDate(*f) : std::string("none");
  });
  v["serial"] = ForEachLine([](const std::string& l, const Block&) {
    const auto c = Fields(l);
    return ShowDate(base::MakeDate(std::stoi(c.at(0)), std::stoi(c.at(1)), std::stoi(c.at(2))));
  });
  v["time"] = ForEachLine([](const std::string& l, const Block&) {
    const auto c = Fields(l);
    return ShowDate(base::MakeTime(std::stoi(c.at(0)), std::stoi(c.at(1)), std::stoi(c.at(2))));
  });
  v["from-serial"] = ForEachLine([](const std::string& l, const Block&) { return ShowDate({Double(l)}); });
  v["to-serial"] =
      ForEachLine([](const std::string& l, const Block&) { return base::SqlNumber(Read(l).serial); });
  v["show-date"] =
      ForEachLine([](const std::string& l, const Block& b) { return base::DateText(Read(l), LocaleOf(b)); });
  v["sql-date"] = ForEachLine([](const std::string& l, const Block&) { return base::DateMMddyyyy(Read(l)); });
  v["first-day"] = ForEachLine(
      [](const std::string& l, const Block&) { return ShowDate(base::FirstDayOfMonth(Read(l))); });
  v["last-day"] =
      ForEachLine([](const std::string& l, const Block&) { return ShowDate(base::LastDayOfMonth(Read(l))); });
  v["weekday"] =
      ForEachLine([](const std::string& l, const Block&) { return std::to_string(base::Weekday(Read(l))); });
  v["dateadd"] = ForEachLine([](const std::string& l, const Block&) {
    const auto c = Fields(l);
    return ShowDate(base::DateAdd(c.at(0), Double(c.at(1)), Read(c.at(2))));
  });
  v["datediff"] = ForEachLine([](const std::string& l, const Block& b) {
    const auto c = Fields(l);
    return std::to_string(
        base::DateDiff(c.at(0), Read(c.at(1)), Read(c.at(2)), std::stoi(b.Option("first", "1"))));
  });
  v["datepart"] = ForEachLine([](const std::string& l, const Block& b) {
    const auto c = Fields(l);
    return std::to_string(base::DatePart(c.at(0), Read(c.at(1)), std::stoi(b.Option("first", "1")),
                                         std::stoi(b.Option("week", "1"))));
  });
}

void ValueVerbs(support::Verbs& v) {
  // value ~ mask
  v["format"] = ForEachLine([](const std::string& l, const Block& b) {
    const auto c = base::Split(l, " ~ ");
    return Visible(base::Format(Typed(c.at(0)), c.at(1), kToday, LocaleOf(b),
                                std::stoi(b.Option("first", "1")), std::stoi(b.Option("week", "1"))));
  });
  v["cstr"] =
      ForEachLine([](const std::string& l, const Block& b) { return Visible(Typed(l).Text(LocaleOf(b))); });
  v["csv"] = ForEachLine([](const std::string& l, const Block&) { return Visible(Typed(l).CsvText()); });
  v["cdbl-value"] =
      ForEachLine([](const std::string& l, const Block& b) { return Number(Typed(l).Number(LocaleOf(b))); });
  v["number-or-0"] =
      ForEachLine([](const std::string& l, const Block&) { return Number(Typed(l).NumberOrZero()); });
  v["clng"] = ForEachLine(
      [](const std::string& l, const Block& b) { return std::to_string(Typed(l).Integer(LocaleOf(b))); });
  v["cint"] = ForEachLine([](const std::string& l, const Block& b) {
    return std::to_string(Typed(l).ShortInteger(LocaleOf(b)));
  });
  v["cbool"] = ForEachLine([](const std::string& l, const Block& b) {
    return std::string(Typed(l).Boolean(LocaleOf(b)) ? "True" : "False");
  });
}

base::Compare ModeOf(const Block& b) {
  return b.Has("nocase") ? base::Compare::IgnoringCase : base::Compare::Exact;
}

void TextVerbs(support::Verbs& v) {
  v["upper"] = ForEachLine([](const std::string& l, const Block&) { return base::UpperCase(Argument(l)); });
  v["lower"] = ForEachLine([](const std::string& l, const Block&) { return base::LowerCase(Argument(l)); });
  v["equal-nocase"] = ForEachLine([](const std::string& l, const Block&) {
    const auto c = Fields(l);
    return std::string(base::EqualIgnoringCase(c.at(0), c.at(1)) ? "yes" : "no");
  });
  v["trim"] = ForEachLine([](const std::string& l, const Block&) {
    return base::Join({"[", base::Replace(base::Trim(Argument(l)), "\t", "\\t"), "]"}, "");
  });
  v["length"] = ForEachLine(
      [](const std::string& l, const Block&) { return std::to_string(base::Length(Argument(l))); });
  v["mid"] = ForEachLine([](const std::string& l, const Block&) {
    const auto c = Fields(l);
    if (c.size() == 2) return Visible(base::Mid(c[0], std::stol(c[1])));
    return Visible(base::Mid(c.at(0), std::stol(c.at(1)), std::stol(c.at(2))));
  });
  v["left"] = ForEachLine([](const std::string& l, const Block&) {
    const auto c = Fields(l);
    return Visible(base::Left(c.at(0), std::stol(c.at(1))));
  });
  v["right"] = ForEachLine([](const std::string& l, const Block&) {
    const auto c = Fields(l);
    return Visible(base::Right(c.at(0), std::stol(c.at(1))));
  });
  v["find"] = ForEachLine([](const std::string& l, const Block& b) {
    const auto c = Fields(l);
    const std::size_t from = c.size() > 2 ? std::stoul(c[2]) : 0;
    const std::size_t i = base::Find(c.at(0), c.at(1), from, ModeOf(b));
    return i == std::string::npos ? std::string("none") : std::to_string(i);
  });
  v["replace"] = ForEachLine([](const std::string& l, const Block& b) {
    const auto c = Fields(l);
    return Visible(base::Replace(c.at(0), c.at(1), c.at(2), ModeOf(b)));
  });
  v["split"] = ForEachLine([](const std::string& l, const Block&) {
    const auto c = Fields(l);
    const auto pieces = base::Split(c.at(0), c.at(1));
    return base::Join({std::to_string(pieces.size()), base::Join(pieces, "|")}, " ");
  });
  v["lines"] = ForEachLine([](const std::string& l, const Block&) {
    const std::string text = Argument(l);
    std::string shown;
    for (const auto line : base::SplitLines(text)) shown.append("[").append(line).append("]");
    return shown;
  });
  v["starts"] = ForEachLine([](const std::string& l, const Block& b) {
    const auto c = Fields(l);
    return std::string(base::StartsWith(c.at(0), c.at(1), ModeOf(b)) ? "yes" : "no");
  });
  v["ends"] = ForEachLine([](const std::string& l, const Block&) {
    const auto c = Fields(l);
    return std::string(base::EndsWith(c.at(0), c.at(1)) ? "yes" : "no");
  });
  v["quotes"] =
      ForEachLine([](const std::string& l, const Block&) { return base::EscapeQuotes(Argument(l)); });
}

std::string FromHex(const std::string& text) {
  std::string bytes;
  for (const auto& pair : base::Split(text, " "))
    if (!pair.empty()) bytes += static_cast<char>(std::stoi(pair, nullptr, 16));
  return bytes;
}

std::string ToHex(std::string_view bytes) {
  constexpr std::string_view kDigits = "0123456789ABCDEF";
  std::string text;
  for (const char c : bytes) {
    const auto b = static_cast<unsigned char>(c);
    if (!text.empty()) text += ' ';
    text += kDigits[b >> 4];
    text += kDigits[b & 15];
  }
  return Visible(text);
}

void CodePageVerbs(support::Verbs& v) {
  v["decode-page"] =
      ForEachLine([](const std::string& l, const Block&) { return base::FromCp1252(FromHex(l)); });
  v["encode-page"] = ForEachLine([](const std::string& l, const Block&) {
    std::size_t lost = 99;
    const std::string bytes = base::ToCp1252(l, &lost);
    return base::Join({ToHex(bytes), "lost", std::to_string(lost)}, " ");
  });
  v["decode-file"] =
      ForEachLine([](const std::string& l, const Block&) { return Visible(base::DecodeFile(FromHex(l))); });
}

support::Verbs Prepare() {
  support::Verbs v;
  NumberVerbs(v);
  DateVerbs(v);
  ValueVerbs(v);
  TextVerbs(v);
  CodePageVerbs(v);
  return v;
}

}  // namespace

int main(int argc, char** argv) { return support::RunFiles(argc, argv, Prepare); }
