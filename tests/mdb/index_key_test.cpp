#include "mdb/indexes/index_key.h"

#include <gtest/gtest.h>

#include <iostream>
#include <map>

#include "mdb/catalog/catalog.h"
#include "mdb/corpus.h"
#include "mdb/indexes/index_tree.h"
#include "mdb/rows/table.h"
#include "mdb/samples.h"

namespace {

using mdb::TipoColumna;

mdb::Columna Col(TipoColumna tipo, std::uint16_t lcid = 1033) {
  mdb::Columna c;
  c.nombre = "Campo";
  c.tipo = tipo;
  c.lcid = lcid;
  return c;
}

std::string Hex(mdb::Vista v) {
  std::string t;
  for (const auto b : v) {
    constexpr const char* kCifras = "0123456789ABCDEF";
    if (!t.empty()) t += ' ';
    t += kCifras[b >> 4];
    t += kCifras[b & 15];
  }
  return t;
}

std::string Clave(const mdb::Columna& columna, const mdb::Dato& dato, bool descendente = false,
                  mdb::Version version = mdb::Version::Jet4) {
  mdb::Cabecera cabecera;
  cabecera.version = version;
  mdb::Bytes clave;
  mdb::AgregarClave(cabecera, columna, descendente, dato, clave);
  return Hex(clave);
}

std::int64_t N(std::int64_t n) { return n; }

TEST(ClaveDeIndice, NumbersBothWays) {
  struct Caso {
    TipoColumna tipo;
    mdb::Dato dato;
    const char *subiendo, *bajando;
  };
  const Caso casos[] = {
      {TipoColumna::Byte, N(0), "7F 00", "80 FF"},
      {TipoColumna::Byte, N(255), "7F FF", "80 00"},
      {TipoColumna::Entero, N(1), "7F 80 01", "80 7F FE"},
      {TipoColumna::Entero, N(-1), "7F 7F FF", "80 80 00"},
      {TipoColumna::Largo, N(-2147483648LL), "7F 00 00 00 00", "80 FF FF FF FF"},
      {TipoColumna::Largo, N(258), "7F 80 00 01 02", "80 7F FF FE FD"},
      {TipoColumna::EnteroGrande, N(-2), "7F 7F FF FF FF FF FF FF FE", "80 80 00 00 00 00 00 00 01"},
      {TipoColumna::Moneda, base::Moneda{10000}, "7F 80 00 00 00 00 00 27 10", "80 7F FF FF FF FF FF D8 EF"},
      {TipoColumna::Simple, 1.0F, "7F BF 80 00 00", "80 40 7F FF FF"},
      {TipoColumna::Simple, -1.0F, "7F 40 7F FF FF", "80 BF 80 00 00"},
      {TipoColumna::Doble, 2.0, "7F C0 00 00 00 00 00 00 00", "80 3F FF FF FF FF FF FF FF"},
      {TipoColumna::Doble, -2.0, "7F 3F FF FF FF FF FF FF FF", "80 C0 00 00 00 00 00 00 00"},
      {TipoColumna::Fecha, base::Fecha{1.0}, "7F BF F0 00 00 00 00 00 00", "80 40 0F FF FF FF FF FF FF"},
      {TipoColumna::Largo, base::Nulo{}, "00", "FF"},
      {TipoColumna::Texto, base::Nulo{}, "00", "FF"},
  };
  for (const Caso& c : casos) {
    SCOPED_TRACE(c.subiendo);
    EXPECT_EQ(Clave(Col(c.tipo), c.dato), c.subiendo);
    EXPECT_EQ(Clave(Col(c.tipo), c.dato, true), c.bajando);
  }
}

TEST(ClaveDeIndice, ABooleanIsNeverNull) {
  EXPECT_EQ(Clave(Col(TipoColumna::Booleano), true), "7F 00");
  EXPECT_EQ(Clave(Col(TipoColumna::Booleano), false), "7F FF");
  EXPECT_EQ(Clave(Col(TipoColumna::Booleano), base::Nulo{}), "7F FF");
  EXPECT_EQ(Clave(Col(TipoColumna::Booleano), true, true), "80 FF");
  EXPECT_EQ(Clave(Col(TipoColumna::Booleano), false, true), "80 00");
}

TEST(ClaveDeIndice, TextWithAccentsHyphensAndSpanishLetters) {
  const auto texto = [](const char* t, std::uint16_t lcid, bool bajando = false) {
    return Clave(Col(TipoColumna::Texto, lcid), std::string(t), bajando);
  };
  EXPECT_EQ(texto("Muñoz", 1033), "7F 60 6F 62 64 78 01 02 02 19 00");
  EXPECT_EQ(texto("MUÑOZ  ", 1033), "7F 60 6F 62 64 78 01 02 02 19 00");
  EXPECT_EQ(texto("O'Neil", 1033), "7F 64 62 51 59 5E 01 01 01 01 80 0B 06 80 00");
  EXPECT_EQ(texto("", 1033), "7F 01 00");
  EXPECT_EQ(texto("   ", 3082), "7F 01 00");
  // The letter ñ is one of its own in both Spanish orders, ch only in the traditional one.
  EXPECT_EQ(texto("Muñoz", 3082), "7F 60 6F 63 04 64 78 01 00");
  EXPECT_EQ(texto("muñoz", 1034), "7F 60 6F 63 04 64 78 01 00");
  EXPECT_EQ(texto("Ch", 1034), "7F 4E 04 01 00");
  EXPECT_EQ(texto("Llo", 1034), "7F 5F 04 64 01 00");
  EXPECT_NE(texto("Ch", 3082), texto("Ch", 1034));
  // Descending: the whole and its closing 00 turned round, then a plain 00.
  EXPECT_EQ(texto("O", 1033, true), "80 9B FE FF 00");
  EXPECT_EQ(texto("", 1033, true), "80 FE FF 00");
}

TEST(ClaveDeIndice, OnlyThe255FirstUnitsOfATextCount) {
  const auto clave = [](const std::string& t) { return Clave(Col(TipoColumna::Memo), t); };
  const std::string largo(255, 'o');
  EXPECT_EQ(clave(largo), clave(largo + "x"));
  EXPECT_NE(clave(largo), clave(largo.substr(1)));
  EXPECT_NO_THROW(clave(largo + "\xE2\x82\xAC\xCE\xB1"));  // no weight, but not looked at
  EXPECT_THROW(clave(std::string(254, 'o') + "\xCE\xB1"), base::Error);
  // A character of two units that stands half inside.
  EXPECT_THROW(clave(std::string(254, 'o') + "\xF0\x9F\x98\x80"), base::Error);
}

TEST(ClaveDeIndice, ATextWithoutKnownPlaceIsRefusedWithItsCharacter) {
  try {
    Clave(Col(TipoColumna::Texto), std::string("caf\xCE\xB1"));
    FAIL();
  } catch (const base::Error& e) {
    EXPECT_EQ(
        e.Descripcion(),
        "El texto «cafα» de la columna «Campo», que está en un índice, tiene el carácter «α», cuyo lugar "
        "en el orden de Access no se conoce");
  }
}

TEST(ClaveDeIndice, BinaryGoesInPiecesOfEight) {
  const auto clave = [](std::size_t n, bool bajando) {
    return Clave(Col(TipoColumna::Binario), mdb::Bytes(n, 0x11), bajando);
  };
  EXPECT_EQ(clave(0, false), "7F");
  EXPECT_EQ(clave(3, false), "7F 11 11 11 00 00 00 00 00 03");
  EXPECT_EQ(clave(3, true), "80 EE EE EE FF FF FF FF FF FC");
  EXPECT_EQ(clave(8, false), "7F 11 11 11 11 11 11 11 11 08");
  EXPECT_EQ(clave(9, false), "7F 11 11 11 11 11 11 11 11 09 11 00 00 00 00 00 00 00 01");
  EXPECT_EQ(clave(9, true), "80 EE EE EE EE EE EE EE EE 09 EE FF FF FF FF FF FF FF FE");
  mdb::Guid guid = mdb::GuidDeTexto("{00112233-4455-6677-8899-AABBCCDDEEFF}");
  EXPECT_EQ(Clave(Col(TipoColumna::Guid), guid), "7F 00 11 22 33 44 55 66 77 09 88 99 AA BB CC DD EE FF 08");
  EXPECT_EQ(Clave(Col(TipoColumna::Guid), guid, true),
            "80 FF EE DD CC BB AA 99 88 09 77 66 55 44 33 22 11 00 F7");
}

TEST(ClaveDeIndice, NumericKeepsTheOldSignByte) {
  auto columna = Col(TipoColumna::Decimal);
  columna.escala = 2;
  mdb::Decimal uno;
  uno.magnitud = {0, 0, 0, 100};
  uno.escala = 2;
  mdb::Decimal menos = uno;
  menos.negativo = true;
  const std::string ceros = " 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00",
                    efes = " FF FF FF FF FF FF FF FF FF FF FF FF FF FF FF";
  EXPECT_EQ(Clave(columna, uno), "7F FF" + ceros + " 64");
  EXPECT_EQ(Clave(columna, menos), "7F 00" + efes + " 9B");
  EXPECT_EQ(Clave(columna, uno, true), "80 FF" + efes + " 9B");
  EXPECT_EQ(Clave(columna, menos, true), "80 00" + ceros + " 64");
  EXPECT_EQ(Clave(columna, uno, false, mdb::Version::Ace), "7F FF" + ceros + " 64");
  EXPECT_EQ(Clave(columna, uno, true, mdb::Version::Ace), "80 00" + efes + " 9B");
  EXPECT_EQ(Clave(columna, menos, false, mdb::Version::Ace), "7F 00" + efes + " 9B");
  EXPECT_EQ(Clave(columna, menos, true, mdb::Version::Ace), "80 FF" + ceros + " 64");
  uno.escala = 1;
  EXPECT_THROW(Clave(columna, uno), base::Error);
}

TEST(ClaveDeIndice, ValuesOfAnotherTypeOrSizeAreRefused) {
  EXPECT_THROW(Clave(Col(TipoColumna::Largo), std::string("1")), base::Error);
  EXPECT_THROW(Clave(Col(TipoColumna::Entero), N(32768)), base::Error);
  EXPECT_THROW(Clave(Col(TipoColumna::Entero), N(-32769)), base::Error);
  EXPECT_THROW(Clave(Col(TipoColumna::Largo), N(2147483648LL)), base::Error);
  EXPECT_THROW(Clave(Col(TipoColumna::Byte), N(256)), base::Error);
  EXPECT_THROW(Clave(Col(TipoColumna::Ole), mdb::Bytes{1}), base::Error);
  EXPECT_THROW(Clave(Col(TipoColumna::Texto, 1036), std::string("a")), base::Error);
}

TEST(ClaveDeIndice, TellsWhichIndexesHaveNoKeys) {
  mdb::Definicion d;
  d.columnas = {Col(TipoColumna::Texto, 3082)};
  mdb::IndiceReal indice;
  indice.partes = {{0, false}};
  EXPECT_EQ(mdb::MotivoSinClaves({}, d, indice), "");
  d.columnas[0].lcid = 1036;
  EXPECT_EQ(mdb::MotivoSinClaves({}, d, indice),
            "la columna «Campo» está en un índice con el orden de texto 1036 versión 0, que no se conoce");
  d.columnas[0].lcid = 1033;
  d.columnas[0].version_orden = 1;
  EXPECT_NE(mdb::MotivoSinClaves({}, d, indice), "");
  d.columnas[0].tipo = TipoColumna::Ole;
  EXPECT_NE(mdb::MotivoSinClaves({}, d, indice), "");
  d.columnas[0].tipo = TipoColumna::Largo;
  EXPECT_EQ(mdb::MotivoSinClaves({}, d, indice), "");
  indice.partes[0].columna = 7;
  EXPECT_NE(mdb::MotivoSinClaves({}, d, indice), "");
}

TEST(ClaveDeIndice, NullsOfACompositeIndex) {
  mdb::Definicion d;
  d.columnas = {Col(TipoColumna::Largo), Col(TipoColumna::Booleano), Col(TipoColumna::Entero)};
  for (std::uint16_t i = 0; i < 3; ++i) d.columnas[i].numero = i;
  mdb::IndiceReal dos, tres;
  dos.partes = {{0, false}, {2, true}};
  tres.partes = {{0, false}, {1, false}, {2, false}};
  const mdb::Fila nulos(3), medio = {N(1), false, base::Nulo{}};
  EXPECT_TRUE(mdb::TodosNulos(d, dos, nulos));
  EXPECT_FALSE(mdb::TodosNulos(d, tres, nulos));  // the Boolean is there
  EXPECT_TRUE(mdb::AlgunNulo(d, tres, nulos));
  EXPECT_FALSE(mdb::TodosNulos(d, dos, medio));
  EXPECT_TRUE(mdb::AlgunNulo(d, dos, medio));
  mdb::Bytes clave = {1, 2, 3};
  mdb::ClaveDeFila({}, d, dos, medio, clave);
  EXPECT_EQ(Hex(clave), "7F 80 00 00 01 FF");
}

// Every entry of every index of every file against the key of its row. Those of the samples are worked out
// apart from ours, by the tables of weights.
struct Cuenta {
  std::size_t claves = 0, con_texto = 0, sin_claves = 0, sin_peso = 0;
};

void ComprobarTabla(mdb::Paginas& paginas, const mdb::Definicion& d, Cuenta& cuenta) {
  std::map<mdb::IdFila, mdb::Fila> filas;
  mdb::RecorrerFilas(paginas, d, [&](mdb::IdFila id, const mdb::Fila& fila) {
    filas[id] = fila;
    return true;
  });
  for (const mdb::IndiceReal& indice : d.reales) {
    const bool sin_claves = !mdb::MotivoSinClaves(paginas.Cab(), d, indice).empty();
    bool con_texto = false;
    for (const auto& parte : indice.partes)
      con_texto = con_texto || d.columnas[d.PorNumero(parte.columna).value()].EsTexto();
    mdb::Bytes clave;
    mdb::ArbolDeIndice(paginas, d.Pagina(), indice).Recorrer([&](const mdb::Entrada& e) {
      const auto fila = filas.find(e.fila);
      EXPECT_NE(fila, filas.end()) << d.nombre;
      if (fila == filas.end()) return false;
      if (sin_claves) {
        ++cuenta.sin_claves;
        return true;
      }
      try {
        mdb::ClaveDeFila(paginas.Cab(), d, indice, fila->second, clave);
      } catch (const base::Error&) {
        ++cuenta.sin_peso;
        return true;
      }
      EXPECT_EQ(Hex(clave), Hex(e.clave)) << d.nombre << " " << e.fila.pagina << ":" << int(e.fila.fila);
      ++cuenta.claves;
      cuenta.con_texto += con_texto;
      return true;
    });
  }
}

TEST(ClaveDeIndice, EncodesEveryEntryAsStored) {
  Cuenta total;
  for (const std::string& ruta : mdb_test::EveryFile()) {
    SCOPED_TRACE(ruta);
    const auto paginas = mdb_test::Cargar(ruta);
    const mdb::Catalogo catalogo(*paginas);
    Cuenta cuenta;
    for (const mdb::Objeto& o : catalogo.Objetos())
      if (o.tipo == mdb::Objeto::Tabla) {
        mdb::Definicion d = mdb::LeerDefinicion(*paginas, static_cast<mdb::NumPagina>(o.id));
        d.nombre = o.nombre;
        ComprobarTabla(*paginas, d, cuenta);
      }
    // Some .accdb files have another order (1033 of version 1).
    EXPECT_EQ(cuenta.sin_claves != 0, paginas->Cab().version_orden == 1);
    EXPECT_EQ(cuenta.sin_peso, 0U);
    total.claves += cuenta.claves;
    total.con_texto += cuenta.con_texto;
    total.sin_claves += cuenta.sin_claves;
  }
  std::cout << total.claves << " keys, " << total.con_texto << " of indexes with text, " << total.sin_claves
            << " not computed for their sort order\n";
  EXPECT_GE(total.claves, 6000U);
  EXPECT_GE(total.con_texto, 2500U);
}

}  // namespace
