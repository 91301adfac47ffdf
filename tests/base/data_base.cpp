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
#include "base/valor.h"
#include "support/data_test.h"

namespace {

using base::Fecha;
using base::Locale;
using base::Valor;
using support::Bloque;

const Fecha kHoy = base::FechaDe(2026, 5, 20);  // a Wednesday

std::string Desescapar(const std::string& texto) {
  std::string salida;
  for (std::size_t i = 0; i < texto.size(); ++i) {
    if (texto[i] != '\\' || i + 1 == texto.size()) {
      salida += texto[i];
      continue;
    }
    const char c = texto[++i];
    salida += c == 't' ? '\t' : c == 'n' ? '\n' : c == 'r' ? '\r' : c;
  }
  return salida;
}

std::string Argumento(std::string_view linea) {
  if (linea.size() < 2 || linea.front() != '"' || linea.back() != '"') return std::string(linea);
  return Desescapar(std::string(linea.substr(1, linea.size() - 2)));
}

// The fields of a line, parted by " ~ ".
std::vector<std::string> Campos(const std::string& linea) {
  auto campos = base::Split(linea, " ~ ");
  for (auto& c : campos) c = Argumento(c);
  return campos;
}

std::string Visible(const std::string& texto) { return texto.empty() ? "(empty)" : texto; }

std::string Fechar(Fecha f) { return base::FechaIso(f); }

Fecha Leer(std::string_view texto) {
  const auto f = base::FechaDeLiteral(texto, kHoy);
  if (!f) throw std::runtime_error("not a date: " + std::string(texto));
  return *f;
}

double Doble(const std::string& texto) { return std::stod(texto); }

// A typed value: Null, True, False, #date#, "text", 1.5! single, 15000@ currency in ten-thousandths, 5
// integer, 5.0 number, serial:5 a date of that serial.
Valor Tipado(const std::string& t) {
  if (t == "Null") return base::Nulo{};
  if (t == "True" || t == "False") return t == "True";
  if (t.size() > 1 && t.front() == '#' && t.back() == '#') return Leer(t.substr(1, t.size() - 2));
  if (t.size() > 1 && t.front() == '"' && t.back() == '"') return Argumento(t);
  if (base::EmpiezaCon(t, "serial:")) return Fecha{Doble(t.substr(7))};
  if (t.back() == '!') return std::stof(t.substr(0, t.size() - 1));
  if (t.back() == '@') return base::Moneda{std::stoll(t.substr(0, t.size() - 1))};
  if (t.find_first_of(".en") == std::string::npos) return static_cast<std::int64_t>(std::stoll(t));
  return Doble(t);
}

using PorLinea = std::function<std::string(const std::string& linea, const Bloque& bloque)>;

support::Verbo CadaLinea(PorLinea f) {
  return [f = std::move(f)](const Bloque& bloque) {
    std::string salida;
    for (const auto& linea : base::Split(bloque.entrada, "\n")) {
      if (!salida.empty()) salida += '\n';
      try {
        salida += f(linea, bloque);
      } catch (const base::Error& e) {
        salida += "error ";
        salida += std::to_string(e.Numero());
      }
    }
    return salida;
  };
}

const Locale& LocaleDe(const Bloque& b) { return b.Tiene("en") ? Locale::ingles() : Locale::espanol(); }

std::string Numero(std::optional<double> n) { return n ? base::SqlDeNumero(*n) : "none"; }

std::string Infinite(double n) {
  if (std::isinf(n)) return n < 0 ? "-infinity" : "infinity";
  return base::SqlDeNumero(n);
}

void VerbosDeNumeros(support::Verbos& v) {
  v["number"] = CadaLinea([](const std::string& l, const Bloque& b) {
    const std::string texto = Argumento(l);
    const auto n = base::NumeroDeTexto(texto, LocaleDe(b));
    if (n.has_value() != base::EsNumero(texto, LocaleDe(b))) return std::string("EsNumero disagrees");
    return Numero(n);
  });
  v["number-or-error"] = CadaLinea([](const std::string& l, const Bloque& b) {
    return Numero(base::NumeroDeTextoOError(Argumento(l), LocaleDe(b)));
  });
  v["dialect-number"] = CadaLinea([](const std::string& l, const Bloque& b) {
    const std::string texto = Argumento(l);
    const auto n = base::DialectNumber(texto, LocaleDe(b));
    if (n.has_value() != base::IsNumeric(texto, LocaleDe(b))) return std::string("IsNumeric disagrees");
    return Numero(n);
  });
  v["cdbl"] = CadaLinea(
      [](const std::string& l, const Bloque& b) { return Numero(base::CDbl(Argumento(l), LocaleDe(b))); });
  v["val"] = CadaLinea([](const std::string& l, const Bloque&) { return Numero(base::Val(Argumento(l))); });
  v["parse"] =
      CadaLinea([](const std::string& l, const Bloque&) { return Infinite(base::Parse(Argumento(l))); });
  v["quantity"] = CadaLinea(
      [](const std::string& l, const Bloque&) { return Infinite(base::ValorNumerico(Argumento(l))); });
  v["blank"] = CadaLinea([](const std::string& l, const Bloque&) {
    return std::string(base::IsBlank(Argumento(l)) ? "yes" : "no");
  });
  v["plain"] = CadaLinea(
      [](const std::string& l, const Bloque& b) { return base::PlainNumber(Doble(l), LocaleDe(b).decimal); });
  v["plain-single"] =
      CadaLinea([](const std::string& l, const Bloque&) { return base::PlainSingle(std::stof(l)); });
  v["double"] = CadaLinea(
      [](const std::string& l, const Bloque& b) { return base::TextoDeNumero(Doble(l), LocaleDe(b)); });
  v["single"] = CadaLinea(
      [](const std::string& l, const Bloque& b) { return base::TextoDeSimple(std::stof(l), LocaleDe(b)); });
  v["sql-double"] =
      CadaLinea([](const std::string& l, const Bloque&) { return base::SqlDeNumero(Doble(l)); });
  v["sql-single"] =
      CadaLinea([](const std::string& l, const Bloque&) { return base::SqlDeSimple(std::stof(l)); });
  v["widen"] = CadaLinea([](const std::string& l, const Bloque&) {
    return base::SqlDeNumero(base::DobleDeSimple(std::stof(l)));
  });
  v["round"] = CadaLinea([](const std::string& l, const Bloque&) {
    const auto c = Campos(l);
    return base::SqlDeNumero(base::Redondear(Doble(c.at(0)), std::stoi(c.at(1))));
  });
  v["whole"] = CadaLinea([](const std::string& l, const Bloque& b) {
    const double n = Doble(l);
    if (b.Tiene("16")) return std::to_string(base::Entero16(n));
    return std::to_string(b.Tiene("32") ? base::Entero32(n) : base::EnteroBancario(n));
  });
  v["hex"] = CadaLinea([](const std::string& l, const Bloque& b) {
    const auto n = base::EnteroHexOctal(Argumento(l), std::stoi(b.Opcion("bits")));
    return n ? std::to_string(*n) : std::string("none");
  });
}

void VerbosDeFechas(support::Verbos& v) {
  v["date"] = CadaLinea([](const std::string& l, const Bloque& b) {
    const auto f = base::FechaDeTexto(Argumento(l), kHoy, LocaleDe(b));
    return f ? Fechar(*f) : std::string("none");
  });
  v["isdate"] = CadaLinea([](const std::string& l, const Bloque& b) {
    return std::string(base::EsFecha(Argumento(l), kHoy, LocaleDe(b)) ? "yes" : "no");
  });
  v["literal"] = CadaLinea([](const std::string& l, const Bloque&) {
    const auto f = base::FechaDeLiteral(Argumento(l), kHoy);
    return f ? Fechar(*f) : std::string("none");
  });
  v["serial"] = CadaLinea([](const std::string& l, const Bloque&) {
    const auto c = Campos(l);
    return Fechar(base::FechaDe(std::stoi(c.at(0)), std::stoi(c.at(1)), std::stoi(c.at(2))));
  });
  v["time"] = CadaLinea([](const std::string& l, const Bloque&) {
    const auto c = Campos(l);
    return Fechar(base::HoraDe(std::stoi(c.at(0)), std::stoi(c.at(1)), std::stoi(c.at(2))));
  });
  v["from-serial"] = CadaLinea([](const std::string& l, const Bloque&) { return Fechar({Doble(l)}); });
  v["to-serial"] =
      CadaLinea([](const std::string& l, const Bloque&) { return base::SqlDeNumero(Leer(l).serie); });
  v["show-date"] = CadaLinea(
      [](const std::string& l, const Bloque& b) { return base::TextoDeFecha(Leer(l), LocaleDe(b)); });
  v["sql-date"] = CadaLinea([](const std::string& l, const Bloque&) { return base::FechaMMddyyyy(Leer(l)); });
  v["first-day"] =
      CadaLinea([](const std::string& l, const Bloque&) { return Fechar(base::PrimerDiaDelMes(Leer(l))); });
  v["last-day"] =
      CadaLinea([](const std::string& l, const Bloque&) { return Fechar(base::LastDayOfMonth(Leer(l))); });
  v["weekday"] =
      CadaLinea([](const std::string& l, const Bloque&) { return std::to_string(base::DiaSemana(Leer(l))); });
  v["dateadd"] = CadaLinea([](const std::string& l, const Bloque&) {
    const auto c = Campos(l);
    return Fechar(base::DateAdd(c.at(0), Doble(c.at(1)), Leer(c.at(2))));
  });
  v["datediff"] = CadaLinea([](const std::string& l, const Bloque& b) {
    const auto c = Campos(l);
    return std::to_string(
        base::DateDiff(c.at(0), Leer(c.at(1)), Leer(c.at(2)), std::stoi(b.Opcion("first", "1"))));
  });
  v["datepart"] = CadaLinea([](const std::string& l, const Bloque& b) {
    const auto c = Campos(l);
    return std::to_string(base::DatePart(c.at(0), Leer(c.at(1)), std::stoi(b.Opcion("first", "1")),
                                         std::stoi(b.Opcion("week", "1"))));
  });
}

void VerbosDeValores(support::Verbos& v) {
  // value ~ mask
  v["format"] = CadaLinea([](const std::string& l, const Bloque& b) {
    const auto c = base::Split(l, " ~ ");
    return Visible(base::Format(Tipado(c.at(0)), c.at(1), kHoy, LocaleDe(b),
                                std::stoi(b.Opcion("first", "1")), std::stoi(b.Opcion("week", "1"))));
  });
  v["cstr"] =
      CadaLinea([](const std::string& l, const Bloque& b) { return Visible(Tipado(l).Texto(LocaleDe(b))); });
  v["csv"] = CadaLinea([](const std::string& l, const Bloque&) { return Visible(Tipado(l).TextoCsv()); });
  v["cdbl-value"] =
      CadaLinea([](const std::string& l, const Bloque& b) { return Numero(Tipado(l).Numero(LocaleDe(b))); });
  v["number-or-0"] =
      CadaLinea([](const std::string& l, const Bloque&) { return Numero(Tipado(l).NumeroOCero()); });
  v["clng"] = CadaLinea(
      [](const std::string& l, const Bloque& b) { return std::to_string(Tipado(l).Entero(LocaleDe(b))); });
  v["cint"] = CadaLinea([](const std::string& l, const Bloque& b) {
    return std::to_string(Tipado(l).EnteroCorto(LocaleDe(b)));
  });
  v["cbool"] = CadaLinea([](const std::string& l, const Bloque& b) {
    return std::string(Tipado(l).Booleano(LocaleDe(b)) ? "True" : "False");
  });
}

base::Comparar Modo(const Bloque& b) {
  return b.Tiene("nocase") ? base::Comparar::SinCaso : base::Comparar::Exacto;
}

void VerbosDeTextos(support::Verbos& v) {
  v["upper"] = CadaLinea([](const std::string& l, const Bloque&) { return base::Mayusculas(Argumento(l)); });
  v["lower"] = CadaLinea([](const std::string& l, const Bloque&) { return base::Minusculas(Argumento(l)); });
  v["equal-nocase"] = CadaLinea([](const std::string& l, const Bloque&) {
    const auto c = Campos(l);
    return std::string(base::IgualSinCaso(c.at(0), c.at(1)) ? "yes" : "no");
  });
  v["trim"] = CadaLinea([](const std::string& l, const Bloque&) {
    return base::Join({"[", base::Reemplazar(base::Trim(Argumento(l)), "\t", "\\t"), "]"}, "");
  });
  v["length"] = CadaLinea(
      [](const std::string& l, const Bloque&) { return std::to_string(base::Longitud(Argumento(l))); });
  v["mid"] = CadaLinea([](const std::string& l, const Bloque&) {
    const auto c = Campos(l);
    if (c.size() == 2) return Visible(base::Mid(c[0], std::stol(c[1])));
    return Visible(base::Mid(c.at(0), std::stol(c.at(1)), std::stol(c.at(2))));
  });
  v["left"] = CadaLinea([](const std::string& l, const Bloque&) {
    const auto c = Campos(l);
    return Visible(base::Left(c.at(0), std::stol(c.at(1))));
  });
  v["right"] = CadaLinea([](const std::string& l, const Bloque&) {
    const auto c = Campos(l);
    return Visible(base::Right(c.at(0), std::stol(c.at(1))));
  });
  v["find"] = CadaLinea([](const std::string& l, const Bloque& b) {
    const auto c = Campos(l);
    const std::size_t desde = c.size() > 2 ? std::stoul(c[2]) : 0;
    const std::size_t i = base::Buscar(c.at(0), c.at(1), desde, Modo(b));
    return i == std::string::npos ? std::string("none") : std::to_string(i);
  });
  v["replace"] = CadaLinea([](const std::string& l, const Bloque& b) {
    const auto c = Campos(l);
    return Visible(base::Reemplazar(c.at(0), c.at(1), c.at(2), Modo(b)));
  });
  v["split"] = CadaLinea([](const std::string& l, const Bloque&) {
    const auto c = Campos(l);
    const auto piezas = base::Split(c.at(0), c.at(1));
    return base::Join({std::to_string(piezas.size()), base::Join(piezas, "|")}, " ");
  });
  v["lines"] = CadaLinea([](const std::string& l, const Bloque&) {
    const std::string text = Argumento(l);
    std::string shown;
    for (const auto line : base::SplitLines(text)) shown.append("[").append(line).append("]");
    return shown;
  });
  v["starts"] = CadaLinea([](const std::string& l, const Bloque& b) {
    const auto c = Campos(l);
    return std::string(base::EmpiezaCon(c.at(0), c.at(1), Modo(b)) ? "yes" : "no");
  });
  v["ends"] = CadaLinea([](const std::string& l, const Bloque&) {
    const auto c = Campos(l);
    return std::string(base::TerminaCon(c.at(0), c.at(1)) ? "yes" : "no");
  });
  v["quotes"] =
      CadaLinea([](const std::string& l, const Bloque&) { return base::DoblarComillas(Argumento(l)); });
}

std::string DeHex(const std::string& texto) {
  std::string bytes;
  for (const auto& par : base::Split(texto, " "))
    if (!par.empty()) bytes += static_cast<char>(std::stoi(par, nullptr, 16));
  return bytes;
}

std::string AHex(std::string_view bytes) {
  constexpr std::string_view kCifras = "0123456789ABCDEF";
  std::string texto;
  for (const char c : bytes) {
    const auto b = static_cast<unsigned char>(c);
    if (!texto.empty()) texto += ' ';
    texto += kCifras[b >> 4];
    texto += kCifras[b & 15];
  }
  return Visible(texto);
}

void VerbosDePaginas(support::Verbos& v) {
  v["decode-page"] = CadaLinea([](const std::string& l, const Bloque&) { return base::DeCp1252(DeHex(l)); });
  v["encode-page"] = CadaLinea([](const std::string& l, const Bloque&) {
    std::size_t perdidos = 99;
    const std::string bytes = base::ACp1252(l, &perdidos);
    return base::Join({AHex(bytes), "lost", std::to_string(perdidos)}, " ");
  });
  v["decode-file"] = CadaLinea(
      [](const std::string& l, const Bloque&) { return Visible(base::DecodificarArchivo(DeHex(l))); });
}

support::Verbos Preparar() {
  support::Verbos v;
  VerbosDeNumeros(v);
  VerbosDeFechas(v);
  VerbosDeValores(v);
  VerbosDeTextos(v);
  VerbosDePaginas(v);
  return v;
}

}  // namespace

int main(int argc, char** argv) { return support::EjecutarArchivos(argc, argv, Preparar); }
