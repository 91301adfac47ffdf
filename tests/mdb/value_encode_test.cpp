// Values and rows as the bytes that stand in the file, worked out by hand.
#include <gtest/gtest.h>

#include "mdb/pages/text.h"
#include "mdb/rows/row_encode_internal.h"
#include "mdb/rows/table.h"

namespace {

using mdb::Bytes;
using mdb::Columna;
using mdb::Dato;
using mdb::TipoColumna;

Columna De(TipoColumna tipo, std::uint16_t largo = 0, bool comprime = false) {
  Columna c;
  c.nombre = "C";
  c.tipo = tipo;
  c.largo = largo;
  c.banderas_ext = comprime ? Columna::kComprime : 0;
  return c;
}
Columna Decimal(std::uint8_t precision, std::uint8_t escala) {
  Columna c = De(TipoColumna::Decimal, 17);
  c.precision = precision;
  c.escala = escala;
  return c;
}
mdb::Definicion Tabla() {
  mdb::Definicion d;
  d.nombre = "T";
  return d;
}
Bytes Codificar(const Columna& c, const Dato& dato) {
  Bytes b;
  mdb::internal::CodificarValor(Tabla(), c, dato, b);
  return b;
}
std::string Falla(const Columna& c, const Dato& dato) {
  try {
    Codificar(c, dato);
    return "(nothing)";
  } catch (const base::Error& e) {
    return std::to_string(e.Numero()) + " " + e.Descripcion();
  }
}

TEST(CodificarValor, WritesNumbersDatesAndBytes) {
  using B = Bytes;
  EXPECT_EQ(Codificar(De(TipoColumna::Booleano), true), B{1});
  EXPECT_EQ(Codificar(De(TipoColumna::Byte), std::int64_t{255}), B{255});
  EXPECT_EQ(Codificar(De(TipoColumna::Entero), std::int64_t{-2}), (B{0xFE, 0xFF}));
  EXPECT_EQ(Codificar(De(TipoColumna::Largo), std::int64_t{0x01020304}), (B{4, 3, 2, 1}));
  EXPECT_EQ(Codificar(De(TipoColumna::Moneda), base::Moneda{15000}), (B{0x98, 0x3A, 0, 0, 0, 0, 0, 0}));
  EXPECT_EQ(Codificar(De(TipoColumna::Simple), 1.0F), (B{0, 0, 0x80, 0x3F}));
  EXPECT_EQ(Codificar(De(TipoColumna::Doble), 1.0), (B{0, 0, 0, 0, 0, 0, 0xF0, 0x3F}));
  // Six in the morning of 29 December 1899: the serial as it is.
  EXPECT_EQ(Codificar(De(TipoColumna::Fecha), base::Fecha{-1.25}), (B{0, 0, 0, 0, 0, 0, 0xF4, 0xBF}));
  EXPECT_EQ(Codificar(De(TipoColumna::Binario, 4), B{3, 0, 1}), (B{3, 0, 1}));
  EXPECT_EQ(Codificar(De(TipoColumna::Guid), mdb::GuidDeTexto("{00112233-4455-6677-8899-AABBCCDDEEFF}")),
            (B{0x33, 0x22, 0x11, 0, 0x55, 0x44, 0x77, 0x66, 0x88, 0x99, 0xAA, 0xBB, 0xCC, 0xDD, 0xEE, 0xFF}));
}

TEST(CodificarValor, WritesDecimalsMostSignificantWordFirst) {
  EXPECT_EQ(Codificar(Decimal(6, 2), mdb::DecimalDeTexto("-12.50", 2)),
            (Bytes{0x80, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0xE2, 0x04, 0, 0}));
  // 2 to the 32nd: the third word is 1.
  EXPECT_EQ(Codificar(Decimal(28, 0), mdb::DecimalDeTexto("4294967296", 0)),
            (Bytes{0, 0, 0, 0, 0, 0, 0, 0, 0, 1, 0, 0, 0, 0, 0, 0, 0}));
  mdb::Decimal menos_cero;
  menos_cero.negativo = true;
  EXPECT_EQ(Codificar(Decimal(5, 0), menos_cero), Bytes(17, 0));
}

TEST(CodificarValor, WritesTextInOneByteACharacterWhereItMay) {
  const Columna comprime = De(TipoColumna::Texto, 510, true), llana = De(TipoColumna::Texto, 510);
  EXPECT_EQ(Codificar(comprime, std::string("Ana")), (Bytes{0xFF, 0xFE, 'A', 'n', 'a'}));
  EXPECT_EQ(Codificar(comprime, std::string("Añ")), (Bytes{'A', 0, 0xF1, 0}));  // two are not worth it
  EXPECT_EQ(Codificar(comprime, std::string("Añÿ")), (Bytes{0xFF, 0xFE, 'A', 0xF1, 0xFF}));
  EXPECT_EQ(Codificar(comprime, std::string("An€")), (Bytes{'A', 0, 'n', 0, 0xAC, 0x20}));
  EXPECT_EQ(Codificar(comprime, std::string("a\0b", 3)), (Bytes{'a', 0, 0, 0, 'b', 0}));
  EXPECT_EQ(Codificar(comprime, std::string()), Bytes());
  EXPECT_EQ(Codificar(llana, std::string("Ana")), (Bytes{'A', 0, 'n', 0, 'a', 0}));
  EXPECT_EQ(Codificar(llana, std::string("😀")), (Bytes{0x3D, 0xD8, 0x00, 0xDE}));
}

TEST(CodificarValor, CompressesNoMoreThan1024Characters) {
  const Columna memo = De(TipoColumna::Memo, 0, true);
  EXPECT_EQ(Codificar(memo, std::string(1024, 'a')).size(), 1026U);
  EXPECT_EQ(Codificar(memo, std::string(1025, 'a')).size(), 2050U);
}

// Its first two bytes are those that mark a compressed text.
TEST(CodificarValor, ATextThatStartsWithAByteOrderMarkReadsBack) {
  const Columna c = De(TipoColumna::Texto, 510);
  const std::string texto = "\uFEFFab€";
  const Bytes bytes = Codificar(c, texto);
  EXPECT_EQ(bytes, (Bytes{0xFF, 0xFE, 0, 0xFF, 0xFE, 0, 'a', 'b', 0, 0xAC, 0x20}));
  EXPECT_EQ(mdb::DecodificarTexto(mdb::Cabecera{}, bytes), texto);
  EXPECT_EQ(
      Falla(c, std::string("\uFEFF\u0100")),
      "0 Un texto que empieza con la marca U+FEFF no se puede guardar con los demás caracteres que tiene");
}

TEST(CodificarValor, RefusesWhatTheColumnDoesNotHold) {
  struct Caso {
    Columna columna;
    Dato dato;
    const char* falla;
  };
  const double infinito = std::numeric_limits<double>::infinity();
  const Caso casos[] = {
      {De(TipoColumna::Byte), std::int64_t{256},
       "6 El valor 256 no cabe en la columna \"C\" de la tabla \"T\", que va de 0 a 255"},
      {De(TipoColumna::Byte), std::int64_t{-1},
       "6 El valor -1 no cabe en la columna \"C\" de la tabla \"T\", que va de 0 a 255"},
      {De(TipoColumna::Entero), std::int64_t{32768},
       "6 El valor 32768 no cabe en la columna \"C\" de la tabla \"T\", que va de -32768 a 32767"},
      {De(TipoColumna::Largo), std::int64_t{-2147483649LL},
       "6 El valor -2147483649 no cabe en la columna \"C\" de la tabla \"T\", que va de -2147483648 a "
       "2147483647"},
      {De(TipoColumna::Doble), infinito,
       "6 El valor para la columna \"C\" de la tabla \"T\" no es un número"},
      {De(TipoColumna::Simple), std::numeric_limits<float>::quiet_NaN(),
       "6 El valor para la columna \"C\" de la tabla \"T\" no es un número"},
      {De(TipoColumna::Fecha), base::Fecha{2958466},
       "6 La fecha para la columna \"C\" de la tabla \"T\" está fuera de los años 100 a 9999"},
      {De(TipoColumna::Fecha), base::Fecha{-657435},
       "6 La fecha para la columna \"C\" de la tabla \"T\" está fuera de los años 100 a 9999"},
      {De(TipoColumna::Fecha), base::Fecha{infinito},
       "6 La fecha para la columna \"C\" de la tabla \"T\" está fuera de los años 100 a 9999"},
      {De(TipoColumna::Texto, 6), std::string("ñandú"),
       "3163 El valor para la columna \"C\" de la tabla \"T\" tiene 5 caracteres y caben 3"},
      {De(TipoColumna::Binario, 3), Bytes{1, 2, 3, 4},
       "3163 El valor para la columna \"C\" de la tabla \"T\" tiene 4 bytes y caben 3"},
      {Decimal(4, 2), mdb::DecimalDeTexto("123.45", 2),
       "6 El número 123.45 no cabe en la columna \"C\" de la tabla \"T\", que tiene 4 cifras, 2 de ellas "
       "decimales"},
      {Decimal(4, 2), mdb::DecimalDeTexto("1", 3),  // not of the column's scale
       "6 El número 1.000 no cabe en la columna \"C\" de la tabla \"T\", que tiene 4 cifras, 2 de ellas "
       "decimales"},
      {De(TipoColumna::Largo), std::string("1"),
       "3421 La columna \"C\" de la tabla \"T\" no admite un valor de ese tipo"},
      {De(TipoColumna::Fecha), 1.0, "3421 La columna \"C\" de la tabla \"T\" no admite un valor de ese tipo"},
      {De(TipoColumna::Complejo), std::int64_t{1},
       "0 La columna \"C\" de la tabla \"T\" es de un tipo que no se escribe"},
  };
  for (const auto& c : casos) EXPECT_EQ(Falla(c.columna, c.dato), c.falla);
}

TEST(CodificarValor, TakesTheLastOfEachRange) {
  EXPECT_EQ(Falla(De(TipoColumna::Fecha), base::Fecha{2958465.99}), "(nothing)");
  EXPECT_EQ(Falla(De(TipoColumna::Fecha), base::Fecha{-657434.99}), "(nothing)");  // 1 January 100, 23:45
  EXPECT_EQ(Falla(De(TipoColumna::Texto, 6), std::string("ñan")), "(nothing)");
  EXPECT_EQ(Falla(Decimal(4, 2), mdb::DecimalDeTexto("-99.99", 2)), "(nothing)");
  EXPECT_EQ(Falla(De(TipoColumna::Largo), std::int64_t{-2147483648LL}), "(nothing)");
}

// A Long, a text, a Boolean, a text that was deleted, another text.
mdb::Definicion Mezclada() {
  mdb::Definicion d = Tabla();
  Columna id = De(TipoColumna::Largo, 4), nombre = De(TipoColumna::Texto, 100, true),
          activo = De(TipoColumna::Booleano, 1), nota = De(TipoColumna::Texto, 100, true);
  id.banderas = activo.banderas = Columna::kFija | Columna::kActualizable;
  activo.desplazamiento = 999;  // rubbish, as in real files
  nombre.numero = 1;
  activo.numero = 2;
  nota.numero = 4;
  nota.variable = 2;
  d.columnas = {id, nombre, activo, nota};
  d.max_columnas = 5;
  d.variables = 3;
  d.paginas = {7};
  return d;
}

Bytes Armar(const mdb::Definicion& d, const mdb::Fila& valores) {
  std::vector<Bytes> bytes(valores.size());
  std::vector<mdb::Crudo> crudos(valores.size());
  for (std::size_t i = 0; i < valores.size(); ++i) {
    if (mdb::EsNulo(valores[i])) continue;
    mdb::internal::CodificarValor(d, d.columnas[i], valores[i], bytes[i]);
    crudos[i] = bytes[i];
  }
  const mdb::internal::ArmadorDeFilas armador(d);
  Bytes fila;
  armador.Armar(crudos, fila);
  EXPECT_EQ(armador.Largo(crudos), fila.size());
  return fila;
}

TEST(ArmarFila, LaysOutFixedThenVariableThenTheirPlaces) {
  const auto d = Mezclada();
  EXPECT_EQ(Armar(d, {std::int64_t{7}, std::string("Ana"), true, base::Nulo{}}),
            (Bytes{5, 0, 7, 0, 0, 0, 0xFF, 0xFE, 'A', 'n', 'a', 11, 0, 11, 0, 11, 0, 6, 0, 3, 0, 0x07}));
  // A Null Long keeps its room; an empty text is there, with no bytes.
  EXPECT_EQ(Armar(d, {base::Nulo{}, std::string(), false, std::string("B")}),
            (Bytes{5, 0, 0, 0, 0, 0, 'B', 0, 8, 0, 6, 0, 6, 0, 6, 0, 3, 0, 0x12}));
}

TEST(ArmarFila, ReadsBack) {
  const auto d = Mezclada();
  const Bytes fila = Armar(d, {base::Nulo{}, std::string(), true, std::string("nota")});
  const auto crudos = mdb::PartirFila(mdb::Cabecera{}, d, fila);
  EXPECT_FALSE(crudos[0].has_value());
  EXPECT_EQ(crudos[1]->size(), 0U);
  EXPECT_EQ((*crudos[2])[0], 1);
  EXPECT_EQ(mdb::DecodificarTexto(mdb::Cabecera{}, *crudos[3]), "nota");
}

TEST(ArmarFila, WithoutVariableColumnsOnlyTheMaskFollows) {
  mdb::Definicion d = Mezclada();
  d.columnas.resize(1);
  d.max_columnas = 9;  // a mask of two bytes
  d.variables = 0;
  EXPECT_EQ(Armar(d, {std::int64_t{1}}), (Bytes{9, 0, 1, 0, 0, 0, 1, 0}));
}

TEST(ArmarFila, ADefinitionThatContradictsItselfIsDamage) {
  mdb::Definicion d = Mezclada();
  d.columnas[3].variable = 0;  // the place of another column
  EXPECT_THROW(mdb::internal::ArmadorDeFilas{d}, mdb::Danio);
  d = Mezclada();
  d.columnas[3].variable = 3;
  EXPECT_THROW(mdb::internal::ArmadorDeFilas{d}, mdb::Danio);
  d = Mezclada();
  d.columnas[0].numero = 5;
  EXPECT_THROW(mdb::internal::ArmadorDeFilas{d}, mdb::Danio);
}

}  // namespace
