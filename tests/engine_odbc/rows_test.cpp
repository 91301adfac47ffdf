// Rows as typed values, whatever the driver's way of giving them.
#include "entorno.h"

namespace {

using base::Tipo;
using base::Valor;

class Filas : public pruebas::DriverDePrueba {
 protected:
  void SetUp() override { Abrir(); }
  // The one cell of a result of one column.
  Valor Celda(const std::string& tipo, const std::string& valor) {
    const db::Recordset filas = Correr("FILAS x:" + tipo + "\n" + valor);
    EXPECT_EQ(filas.Cantidad(), 1U) << valor;
    return filas.En(0, 0);
  }
  double Serie(const std::string& tipo, const std::string& valor) {
    const Valor v = Celda(tipo, valor);
    return v.Si<base::Fecha>() == nullptr ? -1e9 : v.Si<base::Fecha>()->serie;
  }
};

TEST_F(Filas, CadaTipoDeSqlTieneElSuyo) {
  const db::Recordset filas = Correr(
      "FILAS b:bit t:tinyint s:smallint i:integer g:bigint r:real f:float d:double n:numeric e:decimal "
      "c:numeric:CURRENCY m:decimal:money p:numeric:FIJO da:date ti:time mo:moment tx:text me:memo bi:binary "
      "gu:guid z:geometry\n"
      "1|255|-32768|2147483647|9007199254740993|0.1|0.25|0.1|12.5|-3|1234.5678|-0.5|7|2024-03-05|06:00:00|"
      "2024-03-05 06:00:00|ñ|long|raw|12345678-9ABC|?");
  EXPECT_EQ(
      support::Cabecera(filas),
      "b:bool|t:int|s:int|i:int|g:int|r:single|f:number|d:number|n:number|e:number|c:currency|m:currency|"
      "p:currency|da:date|ti:date|mo:date|tx:text|me:text|bi:text|gu:text|z:text");
  const double dia = base::FechaDe(2024, 3, 5).serie;
  const Valor esperados[] = {true,
                             255,
                             -32768,
                             2147483647,
                             std::int64_t{9007199254740993},  // a double has no such number
                             0.1F,
                             0.25,
                             0.1,
                             12.5,
                             -3.0,
                             base::Moneda{12345678},
                             base::Moneda{-5000},
                             base::Moneda{70000},
                             base::Fecha{dia},
                             base::Fecha{0.25},
                             base::Fecha{dia + 0.25},
                             "ñ",
                             "long",
                             "raw",
                             "{12345678-9ABC}",
                             "?"};
  ASSERT_EQ(filas.Campos().size(), std::size(esperados));
  for (std::size_t i = 0; i < std::size(esperados); ++i) EXPECT_EQ(filas.En(i, 0), esperados[i]) << i;
}

TEST_F(Filas, NuloEnCadaTipo) {
  const db::Recordset filas = Correr(
      "FILAS b:bit i:integer r:real d:double n:numeric c:numeric:CURRENCY da:date ti:time mo:moment tx:text "
      "bi:binary gu:guid\nNULL|NULL|NULL|NULL|NULL|NULL|NULL|NULL|NULL|NULL|NULL|NULL");
  for (std::size_t i = 0; i < filas.Campos().size(); ++i) EXPECT_TRUE(filas.En(i, 0).EsNulo()) << i;
}

TEST_F(Filas, ElTextoVacioNoEsNulo) {
  EXPECT_EQ(Celda("text", ""), Valor(""));
  EXPECT_EQ(Celda("memo", ""), Valor(""));
  EXPECT_EQ(Celda("binary", ""), Valor(""));
}

TEST_F(Filas, SinFilasQuedanLasColumnas) {
  const db::Recordset filas = Correr("FILAS a:integer b:text");
  EXPECT_TRUE(filas.Vacio());
  EXPECT_EQ(support::Cabecera(filas), "a:int|b:text");
  EXPECT_EQ(base_->FilasAfectadas(), 0);
}

TEST_F(Filas, LaMonedaTieneCuatroDecimalesExactos) {
  EXPECT_EQ(Celda("numeric:CURRENCY", "922337203685477.5807"), Valor(base::Moneda{9223372036854775807}));
  EXPECT_EQ(Celda("numeric:CURRENCY", "-922337203685477.5807"), Valor(base::Moneda{-9223372036854775807}));
  EXPECT_EQ(Celda("numeric:CURRENCY", "-922337203685477.5808"),
            Valor(base::Moneda{-9223372036854775807 - 1}));
  EXPECT_EQ(Celda("numeric:CURRENCY", "922337203685477.5808"), Valor(922337203685477.5808));
  EXPECT_EQ(Celda("numeric:CURRENCY", "922337203685477.58075"), Valor(922337203685477.58075));
  EXPECT_EQ(Celda("numeric:CURRENCY", "0.1"), Valor(base::Moneda{1000}));
  EXPECT_EQ(Celda("numeric:CURRENCY", ".5"), Valor(base::Moneda{5000}));
  EXPECT_EQ(Celda("numeric:CURRENCY", "1234,5"), Valor(base::Moneda{12345000}));  // by the machine's settings
  EXPECT_EQ(Celda("numeric:CURRENCY", "0.00005"), Valor(base::Moneda{0}));        // half to even
  EXPECT_EQ(Celda("numeric:CURRENCY", "0.00015"), Valor(base::Moneda{2}));
  EXPECT_EQ(Celda("numeric:CURRENCY", "0.000051"), Valor(base::Moneda{1}));
  EXPECT_EQ(Celda("numeric:CURRENCY", "-0.00015"), Valor(base::Moneda{-2}));
  EXPECT_EQ(Celda("numeric:CURRENCY", "1e20"), Valor(1e20));  // none that a currency can hold
  EXPECT_EQ(Celda("numeric:CURRENCY", "9999999999999999.5"), Valor(9999999999999999.5));
}

TEST_F(Filas, LosNumerosSeLeenDeSuTexto) {
  EXPECT_EQ(Celda("integer", "-7"), Valor(-7));
  EXPECT_EQ(Celda("integer", "+7"), Valor(7));
  EXPECT_EQ(Celda("integer", " 7 "), Valor(7));
  EXPECT_EQ(Celda("integer", "7.0"), Valor(7.0));
  EXPECT_EQ(Celda("integer", "99999999999999999999"), Valor(1e20));
  EXPECT_EQ(Celda("decimal", "1,25"), Valor(1.25));
  EXPECT_EQ(Celda("decimal", "1e3"), Valor(1000.0));
  EXPECT_EQ(Celda("integer", "siete"), Valor("siete"));  // nothing is lost of what is no number
  EXPECT_EQ(Celda("decimal", ""), Valor(""));
  EXPECT_EQ(ErrorDe("FILAS x:integer\n~200"), "El campo x trae un número que no lo es.");
}

TEST_F(Filas, LosBooleanosSeLeenDeSuTexto) {
  for (const char* si : {"1", "-1", "2", "true", "T", "Yes"}) EXPECT_EQ(Celda("bit", si), Valor(true)) << si;
  for (const char* no : {"0", "false", "F", "n"}) EXPECT_EQ(Celda("bit", no), Valor(false)) << no;
  EXPECT_EQ(Celda("bit", "maybe"), Valor("maybe"));
}

TEST_F(Filas, LasFechasSonSeries) {
  EXPECT_EQ(Serie("moment", "1899-12-30 00:00:00"), 0.0);
  EXPECT_EQ(Serie("moment", "1899-12-30 18:00:00"), 0.75);
  EXPECT_EQ(Serie("moment", "1899-12-31 12:00:00"), 1.5);
  EXPECT_EQ(Serie("moment", "1899-12-29 06:00:00"), -1.25);  // the hour counts away from zero
  EXPECT_EQ(Serie("moment", "0100-01-01 00:00:00"), -657434.0);
  EXPECT_EQ(Serie("moment", "9999-12-31 00:00:00"), 2958465.0);
  EXPECT_NEAR(Serie("moment", "2024-03-05 00:00:00.5"), 45356.0 + 0.5 / 86400, 1e-9);
  EXPECT_EQ(Serie("date", "2024-03-05"), 45356.0);
  EXPECT_EQ(Serie("time", "12:00:00"), 0.5);
}

TEST_F(Filas, UnaFechaQueNoExisteEsUnError) {
  const char* mal = "El campo x trae una fecha que no existe.";
  EXPECT_EQ(ErrorDe("FILAS x:moment\n1900-01-00 00:00:00"), mal);
  EXPECT_EQ(ErrorDe("FILAS x:moment\n0000-00-00 00:00:00"), mal);
  EXPECT_EQ(ErrorDe("FILAS x:moment\n0099-01-01 00:00:00"), mal);
  EXPECT_EQ(ErrorDe("FILAS x:moment\n2024-13-01 00:00:00"), mal);
  EXPECT_EQ(ErrorDe("FILAS x:date\n2024-01-32"), mal);
  EXPECT_EQ(ErrorDe("FILAS x:time\n24:00:00"), mal);
}

// A text comes in pieces when it is longer than what the driver was given room for, and a character of two
// units may be cut by one.
TEST_F(Filas, UnTextoLargoVieneEntero) {
  for (const char* total : {"si", "no"}) {
    Abrir("Total=" + std::string(total));
    for (const std::size_t largo : {2046U, 2047U, 2048U, 2049U, 10239U, 10240U, 1000003U}) {
      std::string esperado(largo, '0');
      for (std::size_t i = 0; i < largo; ++i) esperado[i] = static_cast<char>('0' + i % 10);
      for (const char* tipo : {"text", "memo", "binary"})
        EXPECT_EQ(Celda(tipo, "~" + std::to_string(largo)), Valor(esperado)) << tipo << largo << total;
      esperado += "😀ñ";
      EXPECT_EQ(Celda("memo", "~" + std::to_string(largo) + "😀ñ"), Valor(esperado)) << largo << total;
    }
  }
}

TEST_F(Filas, UnNuloDentroDelTextoQueda) {
  EXPECT_EQ(Celda("text", "a\\0b"), Valor(std::string("a\0b", 3)));
  EXPECT_EQ(Celda("binary", "\\0\\0"), Valor(std::string("\0\0", 2)));
}

TEST_F(Filas, UnResultadoAnchoYLargo) {
  std::string sql = "FILAS", esperada;
  for (int i = 0; i < 300; ++i) {
    sql += " c" + std::to_string(i) + ":integer";
    esperada += (i > 0 ? "|" : "") + std::to_string(i);
  }
  for (int f = 0; f < 50; ++f) sql += "\n" + esperada;
  const db::Recordset filas = Correr(sql);
  ASSERT_EQ(filas.Campos().size(), 300U);
  ASSERT_EQ(filas.Cantidad(), 50U);
  EXPECT_EQ(filas.En(299, 49), Valor(299));
  EXPECT_EQ(filas.Campos()[299].nombre, "c299");
  EXPECT_EQ(filas.Fuente(), sql);
}

TEST_F(Filas, UnNombreDeColumnaLargoVieneEntero) {
  const std::string nombre(3000, 'n');
  EXPECT_EQ(Correr("FILAS " + nombre + ":text\nx").Campos()[0].nombre, nombre);
}

TEST_F(Filas, UnAvisoNoEsUnError) {
  EXPECT_EQ(support::Filas(Correr("AVISA FILAS a:integer\n1\n2")), "1\n2");
  Correr("AVISA CAMBIA 3");
  EXPECT_EQ(base_->FilasAfectadas(), 3);
}

TEST_F(Filas, LasFilasAfectadas) {
  Correr("CAMBIA 12");
  EXPECT_EQ(base_->FilasAfectadas(), 12);
  Correr("NADA");
  EXPECT_EQ(base_->FilasAfectadas(), 0);
  Correr("CAMBIA 12");
  Correr("FILAS a:integer\n1");
  EXPECT_EQ(base_->FilasAfectadas(), 0);
  Correr("CAMBIA -1");  // a driver that does not know
  EXPECT_EQ(base_->FilasAfectadas(), 0);
  Correr("CAMBIA 12");
  EXPECT_NE(ErrorDe("FALLA HY000 x"), "no error");
  EXPECT_EQ(base_->FilasAfectadas(), 0);
}

}  // namespace
