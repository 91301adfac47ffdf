// A whole import over ODBC gives what it gives without. The driver of the tests has the embedded engine
// behind it here, so that it speaks the dialect as the Access driver does; values cross as ODBC's own types.
#include <gtest/gtest.h>

#include <array>
#include <charconv>
#include <cstdio>

#include "base/encoding.h"
#include "demo/demo_base.h"
#include "engine_odbc/fake_driver.h"
#include "engine_sqlite/sqlite_connection.h"
#include "mesa.h"

namespace {

using base::Tipo;

struct DeTipo {
  SQLSMALLINT tipo;
  const char16_t* nombre;
};
DeTipo EnOdbc(Tipo tipo) {
  switch (tipo) {
    case Tipo::Booleano:
      return {SQL_BIT, u"BIT"};
    case Tipo::Entero:
      return {SQL_INTEGER, u"INTEGER"};
    case Tipo::Simple:
      return {SQL_REAL, u"REAL"};
    case Tipo::Numero:
      return {SQL_DOUBLE, u"DOUBLE"};
    case Tipo::Moneda:
      return {SQL_NUMERIC, u"CURRENCY"};
    case Tipo::Fecha:
      return {SQL_TYPE_TIMESTAMP, u"DATETIME"};
    case Tipo::Nulo:
    case Tipo::Texto:
      break;
  }
  return {SQL_WVARCHAR, u"VARCHAR"};
}

std::string Cifras(double v) {
  std::array<char, 40> b{};
  return {b.data(), std::to_chars(b.data(), b.data() + b.size(), v).ptr};
}

falso::Celda EnCelda(const base::Valor& v) {
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

class MotorEmbebido final : public falso::Motor {
 public:
  explicit MotorEmbebido(const std::string& ruta) : base_(engine_sqlite::Abrir(ruta)) {}

  bool Correr(falso::Cursor& c, const falso::Ancho& sql) override {
    try {
      const db::Recordset filas = base_->Ejecutar(base::DeUtf16(sql));
      c.cambiadas = base_->FilasAfectadas();
      const std::size_t ancho = filas.Campos().size();
      for (std::size_t i = 0; i < ancho; ++i) {
        Tipo tipo = filas.Campos()[i].tipo;
        if (tipo == Tipo::Nulo && !filas.Vacio()) tipo = filas.En(i, 0).tipo();
        const DeTipo t = EnOdbc(tipo);
        c.columnas.push_back({base::AUtf16(filas.Campos()[i].nombre), t.nombre, t.tipo});
      }
      for (std::size_t f = 0; f < filas.Cantidad(); ++f) {
        c.filas.emplace_back();
        for (std::size_t i = 0; i < ancho; ++i) c.filas.back().push_back(EnCelda(filas.En(i, f)));
      }
      return true;
    } catch (const base::Error& e) {
      c.registros.push_back({"HY000", base::AUtf16(e.Descripcion())});
      return false;
    }
  }
  bool Empezar() override {
    return base::ErrorIgnorado("Empezar", nullptr, [&] { base_->BeginTrans(); });
  }
  bool Terminar(bool confirmar) override {
    return base::ErrorIgnorado("Terminar", nullptr,
                               [&] { confirmar ? base_->CommitTrans() : base_->RollbackTrans(); });
  }

 private:
  std::unique_ptr<db::Connection> base_;
};

class ImportarOdbc : public testing::Test {
 protected:
  // A demo of its own, under the name that the table's reader knows.
  static void Llenar(const prueba::Mesa& mesa, const std::string& motor, const std::string& base) {
    const base::Fecha mes = base::FechaDe(2026, 10, 1);
    engine_sqlite::Opciones opciones;
    opciones.crear = true;
    demo::LlenarBase(*engine_sqlite::Abrir(mesa.Ruta("Personal.sqlite"), opciones), mes);
    for (const demo::ArchivoDemo& a : demo::ArchivosDemo(mes)) mesa.Escribir(a.nombre, a.bytes);
    mesa.Escribir("ConfBase.cfg", "[Motor]\r\n" + motor + "\r\n[/Motor]\r\n[Base]\r\n" + base +
                                      "\r\n[/Base]\r\n[Usuario]\r\n6\r\n[/Usuario]");
  }
  static prueba::Salida Importar(const prueba::Mesa& mesa, const std::string& archivo) {
    return mesa.Correr({"importar", "--base", mesa.Ruta("ConfBase.cfg"), "--archivo", mesa.Ruta(archivo),
                        "--mes", "2026-10", "--hoy", "2026-10-20"});
  }
};

TEST_F(ImportarOdbc, DaLoMismoQueSinOdbc) {
  prueba::Mesa directa{"sqlite"}, por_odbc{"sqlite"};
  Llenar(directa, "sqlite", "Personal.sqlite");
  Llenar(por_odbc, "odbc", "Driver=" IDM_ODBC_PRUEBA ";Motor=" + por_odbc.Ruta("Personal.sqlite"));
  const std::string antes = por_odbc.Filas();
  EXPECT_EQ(directa.Filas(), antes);
  const prueba::Salida a = Importar(directa, "horas.txt"), b = Importar(por_odbc, "horas.txt");
  EXPECT_EQ(a.codigo, b.codigo);
  EXPECT_EQ(a.out, b.out);
  EXPECT_EQ(a.err, b.err);
  EXPECT_NE(b.out.find("importadas: 48 "), std::string::npos) << b.out << b.err;
  EXPECT_NE(por_odbc.Filas(), antes);
  EXPECT_EQ(directa.Filas(), por_odbc.Filas());
}

// The same file again replaces and sums what is there.
TEST_F(ImportarOdbc, UnaSegundaVezTambien) {
  prueba::Mesa directa{"sqlite"}, por_odbc{"sqlite"};
  Llenar(directa, "sqlite", "Personal.sqlite");
  Llenar(por_odbc, "odbc", "Driver=" IDM_ODBC_PRUEBA ";Motor=" + por_odbc.Ruta("Personal.sqlite"));
  for (int vez = 0; vez < 2; ++vez)
    EXPECT_EQ(Importar(directa, "horas.txt").out, Importar(por_odbc, "horas.txt").out);
  EXPECT_EQ(directa.Filas(), por_odbc.Filas());
}

TEST_F(ImportarOdbc, SinTransaccionesNoImportaNada) {
  prueba::Mesa mesa{"sqlite"};
  Llenar(mesa, "odbc", "Driver=" IDM_ODBC_PRUEBA ";Txn=0;Motor=" + mesa.Ruta("Personal.sqlite"));
  const std::string antes = mesa.Filas();
  const prueba::Salida s = Importar(mesa, "horas.txt");
  EXPECT_NE(s.codigo, 0);
  EXPECT_EQ(mesa.Filas(), antes);
}

TEST_F(ImportarOdbc, UnCommitQueFallaNoDejaNada) {
  prueba::Mesa mesa{"sqlite"};
  Llenar(mesa, "odbc", "Driver=" IDM_ODBC_PRUEBA ";Commit=falla;Motor=" + mesa.Ruta("Personal.sqlite"));
  const std::string antes = mesa.Filas();
  const prueba::Salida s = Importar(mesa, "horas.txt");
  EXPECT_NE(s.codigo, 0);
  EXPECT_NE((s.out + s.err).find("La base no pudo guardar la transacción: [Prueba]The disk is full"),
            std::string::npos)
      << s.out << s.err;
  EXPECT_EQ(mesa.Filas(), antes);
}

}  // namespace

extern "C" falso::Motor* CrearMotorDePrueba(const char16_t* nombre) {
  return new MotorEmbebido(base::DeUtf16(nombre));
}
