#include "conformance/expresion.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <string_view>

#include "base/text.h"

namespace conformance {
namespace {

template <std::size_t N>
bool EsUna(const std::string& funcion, const std::array<std::string_view, N>& nombres) {
  return std::find(nombres.begin(), nombres.end(), funcion) != nombres.end();
}

constexpr std::array<std::string_view, 12> kConversiones = {
    "CBool", "CByte", "CCur", "CDate", "CVDate", "CDbl", "CDec", "CInt", "CLng", "CSng", "CStr", "CVar"};

// Those that read a text as a number.
constexpr std::array<std::string_view, 16> kDeNumero = {"CBool", "CByte", "CCur", "CDbl", "CDec",
                                                        "CInt",  "CLng",  "CSng", "Int",  "Fix",
                                                        "Round", "Abs",   "Sgn",  "Mod",  "IDiv"};

// A binary operator, written between its operands.
struct Operador {
  std::string_view funcion, texto;
};
constexpr Operador kOperadores[] = {
    {"Concat", " & "}, {"Mod", " Mod "}, {"IDiv", " \\ "}, {"Add", " + "},          {"Sub", " - "},
    {"Mul", " * "},    {"Div", " / "},   {"Pow", " ^ "},   {"JetLike89", " Like "}, {"JetLike92", " Like "}};

// Which arguments of a function are texts: bit i is argument i.
struct Textos {
  std::string_view funcion;
  unsigned cuales;
};
constexpr Textos kTextos[] = {{"CStr", 1},       {"Len", 1},
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

bool EsEmpty(const Json& j) {
  const Json* v = j.Miembro("$variant");
  return j.Miembro("$empty") != nullptr || (v != nullptr && v->texto == "EMPTY");
}

bool EsTextual(const Json& j) {
  const Json* v = j.Miembro("$variant");
  return j.EsTexto() || (v != nullptr && v->texto == "BSTR");
}

// Variants of two kinds, a number and a text, compare by their kind.
bool DeDosClases(const Fila& f) {
  if (f.funcion != "Compare" && f.funcion != "VariantCompare") return false;
  const Json &a = f.args.at(0), &b = f.args.at(f.funcion == "Compare" ? 2 : 1);
  const auto vale = [](const Json& j) {
    const Json* v = j.Miembro("$variant");
    return !j.EsNulo() && !EsEmpty(j) && !(v != nullptr && v->texto == "NULL");
  };
  return vale(a) && vale(b) && EsTextual(a) != EsTextual(b);
}

// Whether an Empty as argument i of the row counts as a text; beside another value, as that value's kind.
bool EmptyEsTexto(const Fila& f, std::size_t i) {
  if (f.funcion == "Compare") return EsTextual(f.args.at(i == 0 ? 2 : 0));
  if (f.funcion == "VariantCompare") return EsTextual(f.args.at(i == 0 ? 1 : 0));
  // With a start in front, the texts of InStr are the two behind it.
  if (f.funcion == "InStr") return f.args.size() > 2 ? i == 1 || i == 2 : true;
  for (const Textos& t : kTextos)
    if (t.funcion == f.funcion) return (t.cuales >> i & 1U) != 0;
  return false;
}

// All the digits that tell the number from every other, and never a form that reads as a whole number.
std::string LiteralDoble(double d) {
  std::array<char, 40> espacio{};
  const auto r = std::to_chars(espacio.data(), espacio.data() + espacio.size(), d);
  std::string texto(espacio.data(), r.ptr);
  if (texto.find_first_of(".e") == std::string::npos) texto += ".0";
  return texto;
}

std::string Entre(std::string_view funcion, const std::string& argumento) {
  return std::string(funcion) + "(" + argumento + ")";
}

std::optional<std::string> LiteralObjeto(const Json& j) {
  if (const Json* f = j.Miembro("$date")) return Entre("CDate", LiteralDoble(SerieDe(f->texto)));
  if (const Json* s = j.Miembro("$single")) return Entre("CSng", LiteralDoble(s->numero));
  if (const Json* c = j.Miembro("$currency")) return Entre("CCur", LiteralDoble(c->numero));
  const Json* clase = j.Miembro("$variant");
  if (clase == nullptr) return std::nullopt;
  if (clase->texto == "NULL") return "Null";
  const Json* v = j.Miembro("v");
  if (v == nullptr) return std::nullopt;
  const auto valor = Literal(*v);
  if (!valor) return std::nullopt;
  struct Conversion {
    std::string_view clase, funcion;
  };
  constexpr Conversion kClases[] = {{"I2", "CInt"}, {"I4", "CLng"}, {"UI1", "CByte"},  {"R4", "CSng"},
                                    {"R8", "CDbl"}, {"CY", "CCur"}, {"DATE", "CDate"}, {"BOOL", "CBool"}};
  for (const Conversion& c : kClases)
    if (c.clase == clase->texto) return Entre(c.funcion, *valor);
  return valor;
}

std::string Lista(const std::vector<std::string>& l) { return base::Join(l, ", "); }

// InStr, InStrRev, Replace and StrComp with the comparison of classic Basic where the row leaves it out.
void CompararPorOmision(const std::string& funcion, std::vector<std::string>& l) {
  const std::string binaria = "0";
  if (funcion == "InStr") {
    if (l.size() == 2) l.insert(l.begin(), "1");
    if (l.size() == 3) l.push_back(binaria);
  } else if (funcion == "InStrRev") {
    if (l.size() == 2) l.emplace_back("-1");
    if (l.size() == 3) l.push_back(binaria);
  } else if (funcion == "Replace") {
    if (l.size() == 3) l.emplace_back("1");
    if (l.size() == 4) l.emplace_back("-1");
    if (l.size() == 5) l.push_back(binaria);
  } else if (funcion == "StrComp" && l.size() == 2) {
    l.push_back(binaria);
  }
}

std::string Tres(const std::string& a, const std::string& b) {
  const std::string igual = a + " = " + b;
  return "IIf((" + igual + ") Is Null, Null, IIf(" + igual + ", 0, IIf(" + a + " < " + b + ", -1, 1)))";
}

}  // namespace

std::optional<std::string> Literal(const Json& j) {
  switch (j.clase) {
    case Json::Clase::Nulo:
      return "Null";
    case Json::Clase::Booleano:
      return j.booleano ? "True" : "False";
    case Json::Clase::Numero:
      return j.entero ? j.texto : LiteralDoble(j.numero);
    case Json::Clase::Texto:
      if (j.texto.find('\0') != std::string::npos) return std::nullopt;
      return "'" + base::DoblarComillas(j.texto) + "'";
    case Json::Clase::Lista:
      return std::nullopt;
    case Json::Clase::Objeto:
      break;
  }
  return LiteralObjeto(j);
}

std::optional<std::string> PorQueNoSeSirve(const Fila& f) {
  if (EsUna(f.funcion, kConversiones) && !f.args.empty() && f.args[0].EsNulo())
    return "a conversion of Null is Null";
  if (f.funcion == "Val" && f.espera.Miembro("$error") != nullptr) return "Val never fails";
  if (DeDosClases(f)) return "a text beside a number is read as a number";
  if (f.locale == "es" && EsUna(f.funcion, kDeNumero))
    for (const Json& a : f.args)
      if (a.EsTexto() && std::count(a.texto.begin(), a.texto.end(), '.') == 1 &&
          a.texto.find(',') == std::string::npos)
        return "a lone point is the decimal point of a number";
  return std::nullopt;
}

bool ConComodinesDao(const Fila& f) { return f.funcion == "JetLike89"; }

std::optional<std::string> Expresion(const Fila& f) {
  if (f.funcion == "JetExpr") return f.args.at(0).texto;
  for (const char* primitiva : {"Split", "LikeBinary", "LikeText"})
    if (f.funcion == primitiva) return std::nullopt;
  std::vector<std::string> l;
  for (std::size_t i = 0; i < f.args.size(); ++i) {
    const Json& a = f.args[i];
    const auto literal =
        EsEmpty(a) ? std::optional<std::string>(EmptyEsTexto(f, i) ? "''" : "0") : Literal(a);
    if (!literal) return std::nullopt;
    l.push_back(*literal);
  }
  for (const Operador& o : kOperadores)
    if (o.funcion == f.funcion) return l.at(0) + std::string(o.texto) + l.at(1);
  if (f.funcion == "Compare") return l.at(0) + " " + f.args.at(1).texto + " " + l.at(2);
  if (f.funcion == "VariantCompare") return Tres(l.at(0), l.at(1));
  if (f.funcion == "JetTextCompare") return "StrComp(" + l.at(0) + ", " + l.at(1) + ")";
  if (f.funcion == "SerialToDate") return Entre("CDate", l.at(0));
  if (f.funcion == "DateToSerial") return Entre("CDbl", l.at(0));
  CompararPorOmision(f.funcion, l);
  return Entre(f.funcion, Lista(l));
}

}  // namespace conformance
