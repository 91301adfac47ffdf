// Format() and the named formats.
#include "base/format.h"

#include "engine_sqlite/runtime_internal.h"

namespace engine_sqlite {
namespace {

// Null gives the empty text.
void Format(Llamada& l) {
  const std::string_view mascara = l.Hay(1) ? l.Texto(1) : std::string_view();
  l.DarTexto(base::Format(l.Tipado(0), mascara, l.Hoy(), l.Regional(), l.PrimerDia(2), l.PrimeraSemana(3)));
}

// The mask of FormatNumber and its kin from their arguments: decimals, leading zero, brackets for negative
// numbers, thousands (-1 yes, 0 no, -2 as usual).
std::string Mascara(const Llamada& l, bool cero_usual, bool miles_usual, std::string_view detras) {
  constexpr int kUsual = -2, kDecimalesUsuales = 2, kMasDecimales = 99;
  int decimales = l.Opcional(1, -1);
  if (decimales < -1 || decimales > kMasDecimales) LanzarNumero(kLlamadaIncorrecta);
  if (decimales == -1) decimales = kDecimalesUsuales;
  const auto opcion = [&](int i, bool usual) {
    const int v = l.Opcional(i, kUsual);
    return v == kUsual ? usual : v != 0;
  };
  std::string numero = opcion(4, miles_usual) ? "#,##" : "";
  numero += opcion(2, cero_usual) ? '0' : '#';
  if (decimales > 0) numero += '.';
  numero.append(static_cast<std::size_t>(decimales), '0');
  numero += detras;
  if (!opcion(3, false)) return numero;
  std::string ambos = numero;
  ambos += ";(";
  ambos += numero;
  ambos += ')';
  return ambos;
}

void ConMascara(Llamada& l, const std::string& mascara) {
  l.DarTexto(base::FormatNumero(l.Numero(0), mascara, l.Regional()));
}

void FormatNumber(Llamada& l) {
  if (l.AlgunNulo()) return l.Nulo();
  ConMascara(l, Mascara(l, true, true, ""));
}

void FormatPercent(Llamada& l) {
  if (l.AlgunNulo()) return l.Nulo();
  ConMascara(l, Mascara(l, true, false, "%"));
}

void FormatCurrency(Llamada& l) {
  if (l.AlgunNulo()) return l.Nulo();
  std::string signo = "\"";
  signo += l.Regional().moneda;
  signo += '"';
  const bool detras = l.Regional().moneda_detras;
  std::string mascara = Mascara(l, true, true, detras ? ' ' + signo : std::string());
  if (!detras) {
    mascara.insert(0, signo);
    const std::size_t negativos = mascara.find(";(");
    if (negativos != std::string::npos) mascara.insert(negativos + 2, signo);
  }
  ConMascara(l, mascara);
}

void FormatDateTime(Llamada& l) {
  if (l.AlgunNulo()) return l.Nulo();
  constexpr std::string_view kFormatos[] = {"General Date", "Long Date", "Short Date", "Long Time",
                                            "Short Time"};
  const int cual = l.Opcional(1, 0);
  if (cual < 0 || cual > 4) LanzarNumero(kLlamadaIncorrecta);
  l.DarTexto(base::FormatFecha(l.Fecha(0), kFormatos[cual], l.Regional()));
}

constexpr Implementacion kFunciones[] = {
    {"FORMAT", Format},
    {"FORMATCURRENCY", FormatCurrency},
    {"FORMATDATETIME", FormatDateTime},
    {"FORMATNUMBER", FormatNumber},
    {"FORMATPERCENT", FormatPercent},
};

}  // namespace

std::span<const Implementacion> FuncionesDeFormato() { return kFunciones; }

}  // namespace engine_sqlite
