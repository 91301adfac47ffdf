// Between the core's texts, colours and dates and those of Qt.
#pragma once

#include <QColor>
#include <QDate>
#include <QString>
#include <cstdint>
#include <string>
#include <string_view>

#include "base/date.h"

namespace gui {

inline QString De(std::string_view texto) {
  return QString::fromUtf8(texto.data(), static_cast<qsizetype>(texto.size()));
}
inline std::string A(const QString& texto) { return texto.toStdString(); }

inline QColor ColorDe(std::int32_t bgr) { return {bgr & 0xFF, (bgr >> 8) & 0xFF, (bgr >> 16) & 0xFF}; }
inline std::int32_t BgrDe(const QColor& c) { return c.red() | (c.green() << 8) | (c.blue() << 16); }

inline QDate DiaDe(base::Date fecha) {
  const base::DateParts p = base::PartsOf(fecha);
  return {p.year, p.month, p.day};
}
inline base::Date FechaDe(const QDate& dia) { return base::MakeDate(dia.year(), dia.month(), dia.day()); }

// Lengths of the window's rules are twips: 15 to a pixel at 96 dpi.
inline constexpr int Px(int twips) { return (twips + (twips < 0 ? -7 : 7)) / 15; }

}  // namespace gui
