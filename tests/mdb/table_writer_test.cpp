// Batches of changes: indexes, counters, and what is refused as a whole.
#include <gtest/gtest.h>

#include "mdb/table_at_hand.h"

namespace {

using mdb::Cambios;
using mdb::Fila;
using mdb::TipoColumna;
using mdb_test::Cambio;
using mdb_test::ConClave;
using mdb_test::kNulo;
using mdb_test::N;
using mdb_test::Tabla;
using mdb_test::Texto;

std::string Rechazo(Tabla& t, const Cambios& c) {
  const auto punto = t.P().Guardar();
  const auto antes = t.d;
  try {
    t.Aplicar(c);
    return "(taken)";
  } catch (const mdb::ErrorDeClave& e) {
    t.P().Volver(punto);
    t.d = antes;
    return std::to_string(e.Numero()) + " " + e.indice + ": " + e.Descripcion();
  }
}

TEST(AplicarIndices, RowsMayExchangeTheValuesOfAUniqueIndex) {
  Tabla t(ConClave());
  const auto ids = t.Aplicar({{}, {}, {{N(1), Texto("a"), N(30)}, {N(2), Texto("b"), N(40)}}});
  t.Aplicar({{}, {Cambio(ids[0], {{0, N(2)}}), Cambio(ids[1], {{0, N(1)}})}, {}});
  EXPECT_EQ(t.Leer(ids[0]), (Fila{N(2), Texto("a"), N(30)}));
  EXPECT_EQ(t.Entradas(0).at(0).fila, ids[1]);
  // A key that goes away with its row may come again in the same batch.
  const auto nueva = t.Aplicar({{ids[0]}, {}, {{N(2), Texto("c"), N(30)}}});
  EXPECT_EQ(t.Entradas(0).at(1).fila, nueva[0]);
  EXPECT_EQ(t.Control(), "");
}

TEST(AplicarIndices, ADuplicateNamesTheIndexAndTheValue) {
  Tabla t(ConClave());
  t.Insertar({N(1), Texto("Ana"), N(30)});
  EXPECT_EQ(
      Rechazo(t, {{}, {}, {{N(1), Texto("b"), N(1)}}}),
      "3022 PrimaryKey: Ya hay en la tabla \"Clave\" una fila con el valor 1 en el índice \"PrimaryKey\", "
      "que no admite duplicados");
  EXPECT_EQ(Rechazo(t, {{}, {}, {{N(2), Texto("ANA "), N(30)}}}),  // neither case nor a blank at the end
            "3022 PorNombre: Ya hay en la tabla \"Clave\" una fila con el valor \"ANA \", 30 en el índice "
            "\"PorNombre\", que no admite duplicados");
  EXPECT_EQ(Rechazo(t, {{}, {}, {{N(5), kNulo, kNulo}, {N(5), kNulo, kNulo}}}).substr(0, 15),
            "3022 PrimaryKey");                            // twice among the new
  const auto b = t.Insertar({N(2), Texto("Aná"), N(30)});  // an accent is another name
  EXPECT_EQ(Rechazo(t, {{}, {Cambio(b, {{0, N(1)}})}, {}}).substr(0, 15), "3022 PrimaryKey");
  EXPECT_EQ(t.Control(), "");
}

TEST(AplicarIndices, ANullIsRefusedWhereTheIndexRequiresAValue) {
  Tabla t(ConClave());
  EXPECT_EQ(Rechazo(t, {{}, {}, {{kNulo, Texto("b"), N(1)}}}),
            "3058 PrimaryKey: El índice \"PrimaryKey\" de la tabla \"Clave\" no admite valores Nulos");
  const auto id = t.Insertar({N(1), Texto("b"), N(1)});
  EXPECT_EQ(Rechazo(t, {{}, {Cambio(id, {{0, kNulo}})}, {}}).substr(0, 4), "3058");
}

TEST(AplicarIndices, KeysOfOnlyNullsMayRepeatButPartlyNullOnesAreValues) {
  Tabla t(ConClave());
  t.Insertar({N(1), kNulo, kNulo});
  t.Insertar({N(2), kNulo, kNulo});
  EXPECT_EQ(t.Entradas(1).size(), 2U);
  t.Insertar({N(3), Texto("x"), kNulo});
  EXPECT_EQ(Rechazo(t, {{}, {}, {{N(4), Texto("x"), kNulo}}}).substr(0, 15), "3022 PorNombre:");
  t.Insertar({N(5), kNulo, N(7)});
  EXPECT_EQ(Rechazo(t, {{}, {}, {{N(6), kNulo, N(7)}}}),
            "3022 PorNombre: Ya hay en la tabla \"Clave\" una fila con el valor Nulo, 7 en el índice "
            "\"PorNombre\", "
            "que no admite duplicados");
  EXPECT_EQ(t.Control(), "");
}

TEST(AplicarIndices, AnIndexThatIgnoresNullsHasNoEntryForThem) {
  Tabla t(ConClave());
  const auto a = t.Insertar({N(1), kNulo, kNulo});
  EXPECT_TRUE(t.Entradas(2).empty());
  t.Cambiar(a, 2, N(5));
  EXPECT_EQ(t.Entradas(2).size(), 1U);
  t.Cambiar(a, 2, kNulo);
  EXPECT_TRUE(t.Entradas(2).empty());
  EXPECT_EQ(t.Control(), "");
}

TEST(AplicarIndices, OnlyThoseWhoseKeyChangesAreTouched) {
  Tabla t(ConClave());
  const auto id = t.Insertar({N(1), Texto("ana"), N(30)});
  t.P().Confirmar();
  t.Cambiar(id, 1, Texto("ANA"));  // the same key
  std::size_t tocadas = 0;
  for (const auto& [numero, bytes] : t.P().Guardar().cambiadas)
    tocadas += (*bytes)[0] == 3 || (*bytes)[0] == 4;
  EXPECT_EQ(tocadas, 0U);
  t.Cambiar(id, 2, N(31));  // two of the three
  tocadas = 0;
  for (const auto& [numero, bytes] : t.P().Guardar().cambiadas)
    tocadas += (*bytes)[0] == 3 || (*bytes)[0] == 4;
  EXPECT_EQ(tocadas, 2U);
  EXPECT_EQ(t.Control(), "");
}

TEST(AplicarIndices, AnEntryWithAnotherKeyIsFoundByItsRow) {
  Tabla t(ConClave());
  const auto a = t.Insertar({N(1), Texto("a"), N(30)}), b = t.Insertar({N(2), Texto("b"), N(40)});
  mdb::ArbolDeIndice arbol(t.P(), t.d.Pagina(), t.d.reales[1]);
  const auto entrada = t.Entradas(1).at(0);
  ASSERT_EQ(entrada.fila, a);
  ASSERT_TRUE(arbol.Borrar(entrada.clave, a));
  arbol.Insertar(mdb::Bytes{0x7F, 0x99, 0x01, 0x00}, a);  // as another program may have made it
  t.Borrar(a);
  ASSERT_EQ(t.Entradas(1).size(), 1U);
  EXPECT_EQ(t.Entradas(1).at(0).fila, b);
  EXPECT_EQ(t.Control(), "");
}

TEST(AplicarIndices, CountersGrowWithNewKeysOnly) {
  Tabla t(ConClave());
  t.Aplicar({{}, {}, {{N(1), Texto("a"), N(30)}, {N(2), Texto("b"), N(30)}, {N(3), Texto("c"), N(31)}}});
  const auto d = mdb::LeerDefinicion(t.P(), t.d.Pagina());
  EXPECT_EQ(d.filas, 3U);
  EXPECT_EQ(d.reales[0].distintas, 3U);
  EXPECT_EQ(d.reales[2].distintas, 2U);
}

TEST(AplicarFilas, TheLastAutonumberIsTheLargest) {
  mdb::NuevaTabla tabla{"Auto", {mdb_test::Columna("Id", TipoColumna::Largo)}, {}};
  tabla.columnas[0].autonumerica = true;
  Tabla t(tabla);
  t.Aplicar({{}, {}, {{N(5)}, {N(3)}}});
  EXPECT_EQ(mdb::LeerDefinicion(t.P(), t.d.Pagina()).ultimo_automatico, 5);
  t.Insertar({N(4)});
  EXPECT_EQ(mdb::LeerDefinicion(t.P(), t.d.Pagina()).ultimo_automatico, 5);
  EXPECT_EQ(t.Control(), "");
}

TEST(AplicarFilas, RowsThatAreNotThereAndRowsNamedTwiceAreRefused) {
  Tabla t(ConClave());
  const auto a = t.Insertar({N(1), kNulo, kNulo}), b = t.Insertar({N(2), kNulo, kNulo});
  t.Borrar(a);
  EXPECT_THROW(t.Borrar(a), base::Error);
  EXPECT_THROW(t.Cambiar(a, 0, N(3)), base::Error);
  EXPECT_THROW(t.Borrar({b.pagina, 77}), base::Error);
  EXPECT_THROW(t.Aplicar({{b, b}, {}, {}}), base::Error);
  EXPECT_THROW(t.Aplicar({{b}, {Cambio(b, {{0, N(2)}})}, {}}), base::Error);
  EXPECT_THROW(t.Aplicar({{}, {Cambio(b, {{3, N(2)}})}, {}}), base::Error);
  EXPECT_THROW(t.Aplicar({{}, {}, {{N(1)}}}), base::Error);
  EXPECT_EQ(t.Leer(b)[0], mdb::Dato(N(2)));
}

TEST(BaseAplicar, DoesAllOrNothing) {
  Tabla t(ConClave());
  const auto ids = t.base->Aplicar("clave", {{}, {}, {{N(1), Texto("a"), N(30)}}});
  t.base->Confirmar();
  EXPECT_THROW(
      t.base->Aplicar("Clave", {{ids[0]}, {}, {{N(2), Texto("a"), N(30)}, {N(3), Texto("b"), N(99999)}}}),
      base::Error);
  EXPECT_FALSE(t.base->Hojas().Guardar().cambiadas.contains(t.d.Pagina()));
  EXPECT_EQ(t.Leer(ids[0]), (Fila{N(1), Texto("a"), N(30)}));
  EXPECT_THROW(t.base->Aplicar("NoHay", {}), base::Error);
  EXPECT_EQ(t.Control(), "");
}

TEST(MotivoNoEscribible, SaysWhyATableIsOnlyRead) {
  Tabla t(ConClave());
  mdb::Cabecera c = t.P().Cab();
  EXPECT_EQ(mdb::MotivoNoEscribible(c, t.d), "");
  c.version = mdb::Version::Jet3;
  EXPECT_EQ(mdb::MotivoNoEscribible(c, t.d),
            "La tabla \"Clave\" solo se lee: los archivos de Access 97 no se escriben");
  c.version = mdb::Version::Ace;
  EXPECT_EQ(mdb::MotivoNoEscribible(c, t.d),
            "La tabla \"Clave\" solo se lee: los archivos .accdb no se escriben");
  c.version = mdb::Version::Jet4;
  auto d = t.d;
  d.columnas[2].tipo = TipoColumna::Complejo;
  EXPECT_EQ(mdb::MotivoNoEscribible(c, d),
            "La tabla \"Clave\" solo se lee: la columna \"Edad\" es de un tipo que no se escribe");
  d = t.d;
  d.columnas[2].banderas_ext = mdb::Columna::kCalculada;
  EXPECT_EQ(mdb::MotivoNoEscribible(c, d),
            "La tabla \"Clave\" solo se lee: la columna \"Edad\" es calculada");
  d = t.d;
  d.columnas[1].lcid = 1041;  // a text of an index in an order that is not known
  EXPECT_NE(mdb::MotivoNoEscribible(c, d).find("La tabla \"Clave\" solo se lee: "), std::string::npos);
  EXPECT_THROW(mdb::Aplicar(t.P(), d, {}), base::Error);
  d.reales.clear();  // without its index it does not matter
  EXPECT_EQ(mdb::MotivoNoEscribible(c, d), "");
}

}  // namespace
