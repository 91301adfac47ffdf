#include "gui/tema.h"

namespace gui {
namespace {

// The left column is dark on both desktops.
void PonerColumna(Tema& t) {
  t.columna_texto = QColor(0xE8EDF3);
  t.columna_tenue = QColor(0x9DABBA);
  t.columna_apagado = QColor(0x8C99A6);
  t.bien = QColor(0x6FD3A0);
  t.mal = QColor(0xFF9B94);
}

}  // namespace

Tema Tema::Claro() {
  Tema t;
  t.ventana = QColor(0xF2F4F7);
  t.base = QColor(0xFFFFFF);
  t.alterna = QColor(0xF7F9FB);
  t.texto = QColor(0x1B2530);
  t.tenue = QColor(0x5C6B7A);
  t.apagado = QColor(0x78848F);
  t.borde = QColor(0x7C8896);
  t.borde_fuerte = QColor(0x5F6D7B);
  t.separador = QColor(0xC3CCD6);
  t.linea = QColor(0xDDE3EA);
  t.acento = QColor(0x1F6FD6);
  t.foco = QColor(0x1F6FD6);
  t.acento_encima = QColor(0x195CB3);
  t.acento_apretado = QColor(0x14498F);
  t.sobre_acento = QColor(0xFFFFFF);
  t.boton = QColor(0xFFFFFF);
  t.boton_encima = QColor(0xEDF3FB);
  t.boton_apretado = QColor(0xDCE7F5);
  t.cabecera = QColor(0xE6EBF1);
  t.columna = QColor(0x222C38);
  t.columna_boton = QColor(0x33414F);
  t.columna_encima = QColor(0x3F5061);
  t.columna_borde = QColor(0x4A5B6D);
  t.aviso = QColor(0xFFF3D1);
  t.aviso_texto = QColor(0x4F3B00);
  t.aviso_borde = QColor(0xE0A100);
  PonerColumna(t);
  return t;
}

Tema Tema::Oscuro() {
  Tema t;
  t.oscuro = true;
  t.ventana = QColor(0x23282F);
  t.base = QColor(0x191D22);
  t.alterna = QColor(0x1E2329);
  t.texto = QColor(0xE6EAEF);
  t.tenue = QColor(0xA3AFBC);
  t.apagado = QColor(0x75808B);
  t.borde = QColor(0x707D89);
  t.borde_fuerte = QColor(0x93A0AD);
  t.separador = QColor(0x46515D);
  t.linea = QColor(0x30373F);
  t.acento = QColor(0x2F74D0);
  t.foco = QColor(0x7DB4FF);
  t.acento_encima = QColor(0x2A67BC);
  t.acento_apretado = QColor(0x255BA3);
  t.sobre_acento = QColor(0xFFFFFF);
  t.boton = QColor(0x323A43);
  t.boton_encima = QColor(0x3C4651);
  t.boton_apretado = QColor(0x2A313A);
  t.cabecera = QColor(0x2C333B);
  t.columna = QColor(0x14181D);
  t.columna_boton = QColor(0x272F38);
  t.columna_encima = QColor(0x323C47);
  t.columna_borde = QColor(0x3E4955);
  t.aviso = QColor(0x3D3317);
  t.aviso_texto = QColor(0xFFE7A8);
  t.aviso_borde = QColor(0xE0A100);
  PonerColumna(t);
  return t;
}

Tema Tema::Segun(const QPalette& del_sistema) {
  return del_sistema.color(QPalette::Window).lightness() < 128 ? Oscuro() : Claro();
}

QPalette Tema::Paleta() const {
  QPalette p;
  p.setColor(QPalette::Window, ventana);
  p.setColor(QPalette::WindowText, texto);
  p.setColor(QPalette::Base, base);
  p.setColor(QPalette::AlternateBase, alterna);
  p.setColor(QPalette::Text, texto);
  p.setColor(QPalette::Button, boton);
  p.setColor(QPalette::ButtonText, texto);
  p.setColor(QPalette::BrightText, sobre_acento);
  p.setColor(QPalette::PlaceholderText, tenue);
  p.setColor(QPalette::Highlight, acento);
  p.setColor(QPalette::HighlightedText, sobre_acento);
  p.setColor(QPalette::Link, foco);
  p.setColor(QPalette::ToolTipBase, base);
  p.setColor(QPalette::ToolTipText, texto);
  p.setColor(QPalette::Light, boton_encima);
  p.setColor(QPalette::Midlight, linea);
  p.setColor(QPalette::Mid, borde);
  p.setColor(QPalette::Dark, borde_fuerte);
  p.setColor(QPalette::Shadow, columna);
  for (const auto papel : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText})
    p.setColor(QPalette::Disabled, papel, apagado);
  p.setColor(QPalette::Disabled, QPalette::Base, ventana);
  p.setColor(QPalette::Disabled, QPalette::Button, ventana);
  p.setColor(QPalette::Disabled, QPalette::Highlight, borde);
  return p;
}

}  // namespace gui
