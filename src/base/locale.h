// The regional conventions of texts, as a value that is passed in; never the machine's setting.
#pragma once

#include <array>
#include <string>

namespace base {

enum class OrdenFecha { DiaMesAnio, MesDiaAnio };

struct Locale {
  std::string decimal;  // "," in Spanish
  std::string miles;    // "." in Spanish
  std::string moneda;   // "€"
  bool moneda_detras;   // the sign follows the number
  OrdenFecha orden;
  std::string fecha_corta;  // as a date format: "dd/MM/yyyy"
  std::string fecha_larga;
  std::string hora;  // "H:mm:ss"
  std::string separador_fecha;
  std::string separador_hora;
  std::string am, pm;
  std::array<std::string, 12> meses, meses_cortos;
  std::array<std::string, 7> dias, dias_cortos;  // from Sunday
  std::string verdadero, falso, si, no, encendido, apagado;

  static const Locale& espanol();
  static const Locale& ingles();
};

}  // namespace base
