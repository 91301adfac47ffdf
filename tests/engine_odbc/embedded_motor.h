// The embedded engine as the database behind the driver of the tests: a driver that speaks the dialect, as
// the Access driver does, with values that cross as ODBC's own types.
#pragma once

#include <array>
#include <charconv>
#include <cstdio>
#include <memory>
#include <string>

#include "base/encoding.h"
#include "engine_odbc/fake_driver.h"
#include "engine_sqlite/render.h"
#include "engine_sqlite/sqlite_connection.h"

namespace falso {

struct DeTipo {
  SQLSMALLINT tipo;
  const char16_t* nombre;
};
inline DeTipo EnOdbc(base::Tipo tipo) {
  switch (tipo) {
    case base::Tipo::Booleano:
      return {SQL_BIT, u"BIT"};
    case base::Tipo::Entero:
      return {SQL_INTEGER, u"INTEGER"};
    case base::Tipo::Simple:
      return {SQL_REAL, u"REAL"};
    case base::Tipo::Numero:
      return {SQL_DOUBLE, u"DOUBLE"};
    case base::Tipo::Moneda:
      return {SQL_NUMERIC, u"CURRENCY"};
    case base::Tipo::Fecha:
      return {SQL_TYPE_TIMESTAMP, u"DATETIME"};
    case base::Tipo::Nulo:
    case base::Tipo::Texto:
      break;
  }
  return {SQL_WVARCHAR, u"VARCHAR"};
}

inline std::string Cifras(double v) {
  std::array<char, 40> b{};
  return {b.data(), std::to_chars(b.data(), b.data() + b.size(), v).ptr};
}

inline Celda EnCelda(const base::Valor& v) {
  if (v.EsNulo()) return {true, {}};
  std::string texto;
  if (const auto* b = v.Si<bool>()) {
    texto = *b ? "1" : "0";
  } else if (const auto* f = v.Si<base::Fecha>()) {
    const base::PartesFecha p = base::Partes(*f);
    std::array<char, 40> linea{};
    std::snprintf(linea.data(), linea.size(), "%04d-%02d-%02d %02d:%02d:%02d", p.anio, p.mes, p.dia, p.hora,
                  p.minuto, p.segundo);
    texto = linea.data();
  } else if (const auto* d = v.Si<double>()) {
    texto = Cifras(*d);
  } else {
    texto = v.TextoCsv();
  }
  return {false, base::AUtf16(texto)};
}

class MotorEmbebido final : public Motor {
 public:
  explicit MotorEmbebido(const std::string& ruta, const engine_sqlite::Opciones& opciones = {})
      : base_(engine_sqlite::Abrir(ruta, opciones)) {}

  bool Correr(Cursor& c, const Ancho& sql) override {
    try {
      const db::Recordset filas = base_->Ejecutar(base::DeUtf16(sql));
      c.cambiadas = base_->FilasAfectadas();
      const std::size_t ancho = filas.Campos().size();
      for (std::size_t i = 0; i < ancho; ++i) {
        base::Tipo tipo = filas.Campos()[i].tipo;
        if (tipo == base::Tipo::Nulo && !filas.Vacio()) tipo = filas.En(i, 0).tipo();
        const DeTipo t = EnOdbc(tipo);
        c.columnas.push_back({base::AUtf16(filas.Campos()[i].nombre), t.nombre, t.tipo});
      }
      for (std::size_t f = 0; f < filas.Cantidad(); ++f) {
        c.filas.emplace_back();
        for (std::size_t i = 0; i < ancho; ++i) c.filas.back().push_back(EnCelda(filas.En(i, f)));
      }
      return true;
    } catch (const base::Error& e) {
      c.registros.push_back({e.IsStorageFault() ? "58030" : "HY000", base::AUtf16(support::TextoDeError(e))});
      return false;
    }
  }
  bool Empezar() override {
    return base::AnyErrorNoted("Empezar", nullptr, [&] { base_->BeginTrans(); });
  }
  bool Terminar(bool confirmar) override {
    return base::AnyErrorNoted("Terminar", nullptr,
                               [&] { confirmar ? base_->CommitTrans() : base_->RollbackTrans(); });
  }

 private:
  std::unique_ptr<db::Connection> base_;
};

}  // namespace falso
