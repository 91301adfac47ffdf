#include "base/format.h"

#include <array>
#include <optional>

#include "base/dialect_number.h"
#include "base/format_internal.h"
#include "base/number.h"
#include "base/text.h"
#include "base/text_internal.h"

namespace base {
namespace internal {

std::string_view MascaraDeNombre(std::string_view mascara, const Locale& locale) {
  struct Nombre {
    std::string_view nombre, mascara;
  };
  const std::array<Nombre, 11> kNombres = {{{"General Date", "c"},
                                            {"Long Date", locale.fecha_larga},
                                            {"Medium Date", "dd-mmm-yy"},
                                            {"Short Date", locale.fecha_corta},
                                            {"Long Time", locale.hora},
                                            {"Medium Time", "hh:nn AM/PM"},
                                            {"Short Time", "hh:nn"},
                                            {"Fixed", "0.00"},
                                            {"Standard", "#,##0.00"},
                                            {"Percent", "0.00%"},
                                            {"Scientific", "0.00E+00"}}};
  // Every name is longer than the short masks that the program itself uses.
  if (mascara.size() < 5 || mascara.size() > 12) return mascara;
  for (const auto& n : kNombres)
    if (IgualSinCaso(n.nombre, mascara)) return n.mascara;
  return mascara;
}

ClaseMascara ClaseDe(std::string_view mascara) {
  std::string ignorado;
  for (std::size_t i = 0; i < mascara.size();) {
    if (TomarLiteral(mascara, i, ignorado)) continue;
    switch (MinAscii(mascara[i])) {
      case '@':
      case '&':
      case '!':
      case '<':
      case '>':
        return ClaseMascara::Texto;
      case 'd':
      case 'm':
      case 'y':
      case 'h':
      case 'n':
      case 's':
      case 'q':
      case 'w':
      case 'c':
      case '/':
      case ':':
        return ClaseMascara::Fecha;
      case 'a':
        if (LargoFranja(mascara, i) > 0) return ClaseMascara::Fecha;
        break;
      case 't':
        if (IgualSinCaso(mascara.substr(i, 5), "ttttt")) return ClaseMascara::Fecha;
        break;
      case '0':
      case '#':
      case '%':
      case '.':
      case ',':
      case ';':
        return ClaseMascara::Numero;
      default:
        break;
    }
    ++i;
  }
  return ClaseMascara::Numero;
}

bool TomarLiteral(std::string_view mascara, std::size_t& i, std::string& salida) {
  if (mascara[i] == '\\') {
    if (++i >= mascara.size()) return true;
    const std::size_t largo = LargoCaracter(mascara, i);
    salida.append(mascara, i, largo);
    i += largo;
    return true;
  }
  if (mascara[i] != '"') return false;
  const std::size_t fin = mascara.find('"', i + 1);
  salida.append(mascara.substr(i + 1, fin == std::string_view::npos ? fin : fin - i - 1));
  i = fin == std::string_view::npos ? mascara.size() : fin + 1;
  return true;
}

std::vector<std::string_view> Secciones(std::string_view mascara) {
  std::vector<std::string_view> secciones;
  std::string ignorado;
  std::size_t inicio = 0;
  for (std::size_t i = 0; i < mascara.size();) {
    if (TomarLiteral(mascara, i, ignorado)) continue;
    if (mascara[i] == ';') {
      secciones.push_back(mascara.substr(inicio, i - inicio));
      inicio = i + 1;
    }
    ++i;
  }
  secciones.push_back(mascara.substr(inicio));
  return secciones;
}

std::string FormatearTexto(std::string_view texto, std::string_view mascara) {
  const auto secciones = Secciones(mascara);
  if (texto.empty() && secciones.size() == 1) return {};
  mascara = texto.empty() ? secciones[1] : secciones[0];
  bool desde_izquierda = false;
  std::string (*caso)(std::string_view) = nullptr;
  std::size_t lugares = 0;
  std::string ignorado;
  for (std::size_t i = 0; i < mascara.size();) {
    if (TomarLiteral(mascara, i, ignorado)) continue;
    const char c = mascara[i++];
    if (c == '!') desde_izquierda = true;
    if (c == '<') caso = Minusculas;
    if (c == '>') caso = Mayusculas;
    if (c == '@' || c == '&') ++lugares;
  }
  const std::string cambiado = caso == nullptr ? std::string(texto) : caso(texto);
  std::u32string letras = APuntos(cambiado);
  // Filled from the right, missing characters are missed in front; filled from the left, behind, and a text
  // that is too long loses its first ones.
  std::size_t vacios = !desde_izquierda && letras.size() < lugares ? lugares - letras.size() : 0;
  if (desde_izquierda && lugares > 0 && letras.size() > lugares) letras.erase(0, letras.size() - lugares);
  std::string salida;
  std::size_t k = 0;
  for (std::size_t i = 0; i < mascara.size();) {
    if (TomarLiteral(mascara, i, salida)) continue;
    const char c = mascara[i++];
    if (c == '!' || c == '<' || c == '>') continue;
    if (c != '@' && c != '&') {
      salida += c;
    } else if (vacios > 0 || k >= letras.size()) {
      if (vacios > 0) --vacios;
      if (c == '@') salida += ' ';
    } else {
      salida += DePuntos({&letras[k++], 1});
    }
  }
  return salida += DePuntos(std::u32string_view(letras).substr(k));
}

}  // namespace internal

namespace {

using internal::ClaseMascara;

// The words of a mask that is no mask: what it prints for a number, none for every other mask.
std::optional<std::string> Palabra(double numero, std::string_view mascara, const Locale& locale) {
  const bool cierto = numero != 0;
  if (IgualSinCaso(mascara, "General Number")) return TextoDeNumero(numero, locale);
  if (IgualSinCaso(mascara, "Yes/No")) return cierto ? locale.si : locale.no;
  if (IgualSinCaso(mascara, "True/False")) return cierto ? locale.verdadero : locale.falso;
  if (IgualSinCaso(mascara, "On/Off")) return cierto ? locale.encendido : locale.apagado;
  if (!IgualSinCaso(mascara, "Currency")) return std::nullopt;
  const std::string cifras = FormatNumero(numero < 0 ? -numero : numero, "#,##0.00", locale);
  if (locale.moneda_detras) return (numero < 0 ? "-" : "") + cifras + " " + locale.moneda;
  return numero < 0 ? "(" + locale.moneda + cifras + ")" : locale.moneda + cifras;
}

bool EsPalabra(std::string_view mascara) {
  for (const std::string_view nombre : {"General Number", "Yes/No", "True/False", "On/Off", "Currency"})
    if (IgualSinCaso(mascara, nombre)) return true;
  return false;
}

std::string FormatDeTexto(const std::string& texto, std::string_view mascara, bool de_fecha, Fecha hoy,
                          const Locale& locale, int primer_dia, int primera_semana) {
  if (de_fecha) {
    const auto fecha = FechaDeTexto(texto, hoy, locale);
    return fecha ? internal::FormatearFecha(*fecha, mascara, locale, primer_dia, primera_semana) : texto;
  }
  if (const auto numero = DialectNumber(texto, locale)) return FormatNumero(*numero, mascara, locale);
  const auto fecha = FechaDeTexto(texto, hoy, locale);
  return fecha ? FormatNumero(fecha->serie, mascara, locale) : texto;
}

}  // namespace

std::string Format(const Valor& valor, std::string_view mascara, Fecha hoy, const Locale& locale,
                   int primer_dia, int primera_semana) {
  mascara = internal::MascaraDeNombre(mascara, locale);
  if (mascara.empty()) return valor.Texto(locale);
  const ClaseMascara clase = EsPalabra(mascara) ? ClaseMascara::Numero : internal::ClaseDe(mascara);
  if (clase == ClaseMascara::Texto) return internal::FormatearTexto(valor.Texto(locale), mascara);
  if (valor.EsNulo()) {
    const auto secciones = internal::Secciones(mascara);
    if (clase != ClaseMascara::Numero || secciones.size() < 4) return {};
    return FormatNumero(0, secciones[3], locale);
  }
  const bool de_fecha = clase == ClaseMascara::Fecha;
  if (const auto* texto = valor.Si<std::string>())
    return FormatDeTexto(*texto, mascara, de_fecha, hoy, locale, primer_dia, primera_semana);
  const double numero =
      valor.tipo() == Tipo::Simple ? DobleDeSimple(*valor.Si<float>()) : valor.Numero(locale);
  if (de_fecha) return internal::FormatearFecha({numero}, mascara, locale, primer_dia, primera_semana);
  return FormatNumero(numero, mascara, locale);
}

std::string FormatFecha(Fecha fecha, std::string_view mascara, const Locale& locale) {
  mascara = internal::MascaraDeNombre(mascara, locale);
  if (mascara.empty()) return TextoDeFecha(fecha, locale);
  return internal::FormatearFecha(fecha, mascara, locale, 1, 1);
}

std::string FormatNumero(double numero, std::string_view mascara, const Locale& locale) {
  if (const auto palabra = Palabra(numero, mascara, locale)) return *palabra;
  mascara = internal::MascaraDeNombre(mascara, locale);
  if (mascara.empty()) return TextoDeNumero(numero, locale);
  return internal::FormatearNumero(numero, mascara, locale);
}

}  // namespace base
