// Date masks.
#include "base/format_internal.h"
#include "base/text.h"
#include "base/text_internal.h"

namespace base::internal {

std::size_t LargoFranja(std::string_view mascara, std::size_t i) {
  for (const std::string_view forma : {"AM/PM", "AMPM", "A/P"})
    if (EmpiezaCon(mascara.substr(i), forma, Comparar::SinCaso)) return forma.size();
  return 0;
}

namespace {

bool TieneFranja(std::string_view mascara) {
  std::string ignorado;
  for (std::size_t i = 0; i < mascara.size();) {
    if (TomarLiteral(mascara, i, ignorado)) continue;
    if (LargoFranja(mascara, i) > 0) return true;
    ++i;
  }
  return false;
}

class Escritor {
 public:
  Escritor(Fecha fecha, const Locale& locale, int primer_dia, int primera_semana, bool doce)
      : fecha_(fecha),
        p_(Partes(fecha)),
        locale_(locale),
        primer_dia_(primer_dia),
        primera_semana_(primera_semana),
        doce_(doce) {}

  std::string Escribir(std::string_view mascara) {
    for (std::size_t i = 0; i < mascara.size();) {
      if (TomarLiteral(mascara, i, salida_)) continue;
      if (const std::size_t largo = LargoFranja(mascara, i)) {
        Franja(mascara.substr(i, largo));
        i += largo;
        continue;
      }
      const char letra = MinAscii(mascara[i]);
      std::size_t n = 1;
      while (n < Maximo(letra) && i + n < mascara.size() && MinAscii(mascara[i + n]) == letra) ++n;
      if (letra == 't' && n < 5) n = 1;
      if (!Componente(letra, n)) {
        salida_ += mascara[i];
        n = 1;
      } else if (letra != '/' && letra != ':') {
        tras_hora_ = letra == 'h';
      }
      i += n;
    }
    return salida_;
  }

 private:
  static std::size_t Maximo(char letra) {
    switch (letra) {
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

  void Numero(int numero, std::size_t cifras) {
    if (cifras == 2 && numero < 10) salida_ += '0';
    salida_ += std::to_string(numero);
  }

  void Franja(std::string_view forma) {
    const bool tarde = p_.hora >= 12;
    if (forma.size() == 4) {
      salida_ += tarde ? locale_.pm : locale_.am;
    } else if (forma.size() == 3) {
      salida_ += forma[tarde ? 2 : 0];
    } else {
      salida_ += forma.substr(tarde ? 3 : 0, 2);
    }
    tras_hora_ = false;
  }

  // False when the letter is no component: it prints as it is.
  bool Componente(char letra, std::size_t n) {
    switch (letra) {
      case 'd':
        Dia(n);
        return true;
      case 'm':
        Mes(n);
        return true;
      case 'y':
        Anio(n);
        return true;
      case 'h':
        Numero(doce_ ? (p_.hora + 11) % 12 + 1 : p_.hora, n);
        return true;
      case 'n':
        Numero(p_.minuto, n);
        return true;
      case 's':
        Numero(p_.segundo, n);
        return true;
      case 'q':
        Numero((p_.mes - 1) / 3 + 1, 1);
        return true;
      case 'w':
        Numero(DatePart(n == 1 ? "w" : "ww", fecha_, primer_dia_, primera_semana_), 1);
        return true;
      case 'c':
        salida_ += TextoDeFecha(fecha_, locale_);
        return true;
      case 't':
        if (n < 5) return false;
        salida_ += FormatearFecha(fecha_, locale_.hora, locale_, primer_dia_, primera_semana_);
        return true;
      case '/':
        salida_ += locale_.separador_fecha;
        return true;
      case ':':
        salida_ += locale_.separador_hora;
        return true;
      default:
        return false;
    }
  }

  void Dia(std::size_t n) {
    const auto semana = static_cast<std::size_t>(DiaSemana(fecha_) - 1);
    if (n <= 2) {
      Numero(p_.dia, n);
    } else if (n == 3) {
      salida_ += locale_.dias_cortos[semana];
    } else if (n == 4) {
      salida_ += locale_.dias[semana];
    } else {
      salida_ += FormatearFecha(fecha_, n == 5 ? locale_.fecha_corta : locale_.fecha_larga, locale_,
                                primer_dia_, primera_semana_);
    }
  }

  // Right behind the hour it is the minute.
  void Mes(std::size_t n) {
    const auto mes = static_cast<std::size_t>(p_.mes - 1);
    if (n <= 2) {
      Numero(tras_hora_ ? p_.minuto : p_.mes, n);
    } else {
      salida_ += n == 3 ? locale_.meses_cortos[mes] : locale_.meses[mes];
    }
  }

  void Anio(std::size_t n) {
    if (n == 4) {
      Numero(p_.anio, 1);
      return;
    }
    if (n >= 2) Numero(p_.anio % 100, 2);
    if (n != 2) Numero(DatePart("y", fecha_), 1);  // day of the year
  }

  Fecha fecha_;
  PartesFecha p_;
  const Locale& locale_;
  int primer_dia_, primera_semana_;
  bool doce_;
  bool tras_hora_ = false;
  std::string salida_;
};

}  // namespace

std::string FormatearFecha(Fecha fecha, std::string_view mascara, const Locale& locale, int primer_dia,
                           int primera_semana) {
  return Escritor(fecha, locale, primer_dia, primera_semana, TieneFranja(mascara)).Escribir(mascara);
}

}  // namespace base::internal
