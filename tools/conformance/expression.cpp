#include "conformance/expression.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <string_view>

#include "base/text.h"

namespace conformance {
namespace {

template <std::size_t N>
bool IsOneOf(const std::string& function, const std::array<std::string_view, N>& names) {
  return std::find(names.begin(), names.end(), function) != names.end();
}

constexpr std::array<std::string_view, 12> kConversions = {
    "CBool", "CByte", "CCur", "CDate", "CVDate", "CDbl", "CDec", "CInt", "CLng", "CSng", "CStr", "CVar"};

// Those that read a text as a number.
constexpr std::array<std::string_view, 16> kOfNumber = {"CBool", "CByte", "CCur", "CDbl", "CDec",
                                                        "CInt",  "CLng",  "CSng", "Int",  "Fix",
                                                        "Round", "Abs",   "Sgn",  "Mod",  "IDiv"};

// A binary operator, written between its operands.
struct Operator {
  std::string_view function, text;
};
constexpr Operator kOperators[] = {
    {"Concat", " & "}, {"Mod", " Mod "}, {"IDiv", " \\ "}, {"Add", " + "},          {"Sub", " - "},
    {"Mul", " * "},    {"Div", " / "},   {"Pow", " ^ "},   {"JetLike89", " Like "}, {"JetLike92", " Like "}};

// Which arguments of a function are texts: bit i is argument i.
struct Texts {
  std::string_view function;
  unsigned which;
};
constexpr Texts kTexts[] = {{"CStr", 1},       {"Len", 1},
                            {"LCase", 1},      {"UCase", 1},
                            {"Trim", 1},       {"LTrim", 1},
                            {"RTrim", 1},      {"Left", 1},
                            {"Right", 1},      {"Mid", 1},
                            {"StrReverse", 1}, {"StrConv", 1},
                            {"Asc", 1},        {"AscW", 1},
                            {"Val", 1},        {"Format", 3},
                            {"Replace", 7},    {"StrComp", 3},
                            {"InStrRev", 3},   {"Concat", 3},
                            {"String", 2},     {"JetTextCompare", 3},
                            {"JetLike89", 3},  {"JetLike92", 3},
                            {"DateAdd", 1},    {"DateDiff", 1}};

bool IsEmpty(const Json& j) {
  const Json* v = j.Member("$variant");
  return j.Member("$empty") != nullptr || (v != nullptr && v->text == "EMPTY");
}

bool IsTextual(const Json& j) {
  const Json* v = j.Member("$variant");
  return j.IsText() || (v != nullptr && v->text == "BSTR");
}

// Variants of two kinds, a number and a text, compare by their kind.
bool IsOfTwoKinds(const Row& f) {
  if (f.function != "Compare" && f.function != "VariantCompare") return false;
  const Json &a = f.args.at(0), &b = f.args.at(f.function == "Compare" ? 2 : 1);
  const auto has_value = [](const Json& j) {
    const Json* v = j.Member("$variant");
    return !j.IsNull() && !IsEmpty(j) && !(v != nullptr && v->text == "NULL");
  };
  return has_value(a) && has_value(b) && IsTextual(a) != IsTextual(b);
}

// Whether an Empty as argument i of the row counts as a text; beside another value, as that value's kind.
bool EmptyIsText(const Row& f, std::size_t i) {
  if (f.function == "Compare") return IsTextual(f.args.at(i == 0 ? 2 : 0));
  if (f.function == "VariantCompare") return IsTextual(f.args.at(i == 0 ? 1 : 0));
  // With a start in front, the texts of InStr are the two behind it.
  if (f.function == "InStr") return f.args.size() > 2 ? i == 1 || i == 2 : true;
  for (const Texts& t : kTexts)
    if (t.function == f.function) return (t.which >> i & 1U) != 0;
  return false;
}

// All the digits that tell the number from every other, and never a form that reads as a whole number.
std::string DoubleLiteral(double d) {
  std::array<char, 40> buffer{};
  const auto r = std::to_chars(buffer.data(), buffer.data() + buffer.size(), d);
  std::string text(buffer.data(), r.ptr);
  if (text.find_first_of(".e") == std::string::npos) text += ".0";
  return text;
}

std::string Wrap(std::string_view function, const std::string& argument) {
  return std::string(function) + "(" + argument + ")";
}

std::optional<std::string> ObjectLiteral(const Json& j) {
  if (const Json* f = j.Member("$date")) return Wrap("CDate", DoubleLiteral(SerialOf(f->text)));
  if (const Json* s = j.Member("$single")) return Wrap("CSng", DoubleLiteral(s->number));
  if (const Json* c = j.Member("$currency")) return Wrap("CCur", DoubleLiteral(c->number));
  const Json* kind = j.Member("$variant");
  if (kind == nullptr) return std::nullopt;
  if (kind->text == "NULL") return "Null";
  const Json* v = j.Member("v");
  if (v == nullptr) return std::nullopt;
  const auto value = Literal(*v);
  if (!value) return std::nullopt;
  struct Conversion {
    std::string_view kind, function;
  };
  constexpr Conversion kKinds[] = {{"I2", "CInt"}, {"I4", "CLng"}, {"UI1", "CByte"},  {"R4", "CSng"},
                                   {"R8", "CDbl"}, {"CY", "CCur"}, {"DATE", "CDate"}, {"BOOL", "CBool"}};
  for (const Conversion& c : kKinds)
    if (c.kind == kind->text) return Wrap(c.function, *value);
  return value;
}

std::string List(const std::vector<std::string>& l) { return base::Join(l, ", "); }

// InStr, InStrRev, Replace and StrComp with the comparison of classic Basic where the row leaves it out.
void AddDefaultComparison(const std::string& function, std::vector<std::string>& l) {
  const std::string binary = "0";
  if (function == "InStr") {
    if (l.size() == 2) l.insert(l.begin(), "1");
    if (l.size() == 3) l.push_back(binary);
  } else if (function == "InStrRev") {
    if (l.size() == 2) l.emplace_back("-1");
    if (l.size() == 3) l.push_back(binary);
  } else if (function == "Replace") {
    if (l.size() == 3) l.emplace_back("1");
    if (l.size() == 4) l.emplace_back("-1");
    if (l.size() == 5) l.push_back(binary);
  } else if (function == "StrComp" && l.size() == 2) {
    l.push_back(binary);
  }
}

std::string ThreeWay(const std::string& a, const std::string& b) {
  const std::string equal = a + " = " + b;
  return "IIf((" + equal + ") Is Null, Null, IIf(" + equal + ", 0, IIf(" + a + " < " + b + ", -1, 1)))";
}

}  // namespace

std::optional<std::string> Literal(const Json& j) {
  switch (j.kind) {
    case Json::Kind::Null:
      return "Null";
    case Json::Kind::Boolean:
      return j.boolean ? "True" : "False";
    case Json::Kind::Number:
      return j.integer ? j.text : DoubleLiteral(j.number);
    case Json::Kind::Text:
      if (j.text.find('\0') != std::string::npos) return std::nullopt;
      return "'" + base::EscapeQuotes(j.text) + "'";
    case Json::Kind::List:
      return std::nullopt;
    case Json::Kind::Object:
      break;
  }
  return ObjectLiteral(j);
}

std::optional<std::string> WhyNotServed(const Row& f) {
  if (IsOneOf(f.function, kConversions) && !f.args.empty() && f.args[0].IsNull())
    return "a conversion of Null is Null";
  if (f.function == "Val" && f.expected.Member("$error") != nullptr) return "Val never fails";
  if (IsOfTwoKinds(f)) return "a text beside a number is read as a number";
  if (f.locale == "es" && IsOneOf(f.function, kOfNumber))
    for (const Json& a : f.args)
      if (a.IsText() && std::count(a.text.begin(), a.text.end(), '.') == 1 &&
          a.text.find(',') == std::string::npos)
        return "a lone point is the decimal point of a number";
  return std::nullopt;
}

bool UsesDaoWildcards(const Row& f) { return f.function == "JetLike89"; }

std::optional<std::string> Expression(const Row& f) {
  if (f.function == "JetExpr") return f.args.at(0).text;
  for (const char* primitive : {"Split", "LikeBinary", "LikeText"})
    if (f.function == primitive) return std::nullopt;
  std::vector<std::string> l;
  for (std::size_t i = 0; i < f.args.size(); ++i) {
    const Json& a = f.args[i];
    const auto literal = IsEmpty(a) ? std::optional<std::string>(EmptyIsText(f, i) ? "''" : "0") : Literal(a);
    if (!literal) return std::nullopt;
    l.push_back(*literal);
  }
  for (const Operator& o : kOperators)
    if (o.function == f.function) return l.at(0) + std::string(o.text) + l.at(1);
  if (f.function == "Compare") return l.at(0) + " " + f.args.at(1).text + " " + l.at(2);
  if (f.function == "VariantCompare") return ThreeWay(l.at(0), l.at(1));
  if (f.function == "JetTextCompare") return "StrComp(" + l.at(0) + ", " + l.at(1) + ")";
  if (f.function == "SerialToDate") return Wrap("CDate", l.at(0));
  if (f.function == "DateToSerial") return Wrap("CDbl", l.at(0));
  AddDefaultComparison(f.function, l);
  return Wrap(f.function, List(l));
}

}  // namespace conformance
