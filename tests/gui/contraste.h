// Contrast as it is drawn: relative luminance and ratio of the pixels of a picture.
#pragma once

#include <QColor>
#include <QImage>
#include <algorithm>
#include <cmath>
#include <map>
#include <vector>

namespace prueba {

inline double Luminancia(const QColor& c) {
  const auto lineal = [](double v) { return v <= 0.04045 ? v / 12.92 : std::pow((v + 0.055) / 1.055, 2.4); };
  return 0.2126 * lineal(c.redF()) + 0.7152 * lineal(c.greenF()) + 0.0722 * lineal(c.blueF());
}

// From 1 (the same) to 21.
inline double Contraste(const QColor& a, const QColor& b) {
  const double x = Luminancia(a), y = Luminancia(b);
  return (std::max(x, y) + 0.05) / (std::min(x, y) + 0.05);
}

// The contrast to what they were that so many pixels reach.
inline double ContrasteDelCambio(const QImage& antes, const QImage& despues, int pixeles) {
  std::vector<double> contrastes;
  for (int y = 0; y < antes.height(); ++y)
    for (int x = 0; x < antes.width(); ++x)
      if (antes.pixel(x, y) != despues.pixel(x, y))
        contrastes.push_back(Contraste(antes.pixelColor(x, y), despues.pixelColor(x, y)));
  if (static_cast<int>(contrastes.size()) < pixeles) return 1;
  std::sort(contrastes.rbegin(), contrastes.rend());
  return contrastes[static_cast<std::size_t>(pixeles) - 1];
}

// The colour that most of the picture has.
inline QColor Fondo(const QImage& imagen) {
  std::map<QRgb, int> veces;
  for (int y = 0; y < imagen.height(); ++y)
    for (int x = 0; x < imagen.width(); ++x) ++veces[imagen.pixel(x, y)];
  const auto mas = std::max_element(veces.begin(), veces.end(),
                                    [](const auto& a, const auto& b) { return a.second < b.second; });
  return QColor(mas->first);
}

// Of the letters in a picture that holds letters on one ground: the pixel that stands out most. The edges of
// letters are blended, their stems are not.
inline double ContrasteDeTexto(const QImage& imagen) {
  const QColor fondo = Fondo(imagen);
  double mayor = 1;
  for (int y = 0; y < imagen.height(); ++y)
    for (int x = 0; x < imagen.width(); ++x)
      mayor = std::max(mayor, Contraste(imagen.pixelColor(x, y), fondo));
  return mayor;
}

}  // namespace prueba
