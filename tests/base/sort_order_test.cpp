// The sort order: index keys byte for byte, and comparison that agrees with them.
#include "base/sort_order.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "base/text.h"
#include "support/source_dir.h"

namespace {

using base::ClaveDeIndice;
using base::ClaveDeOrden;
using base::CompararTexto;
using base::Orden;

constexpr Orden kOrdenes[] = {Orden::General, Orden::EspanolModerno, Orden::EspanolTradicional};

std::string Hexa(const std::string& bytes) {
  constexpr char kCifras[] = "0123456789ABCDEF";
  std::string salida;
  for (const char c : bytes) {
    if (!salida.empty()) salida += ' ';
    salida += kCifras[static_cast<unsigned char>(c) >> 4];
    salida += kCifras[static_cast<unsigned char>(c) & 15];
  }
  return salida;
}

struct CasoClave {
  const char* texto;
  Orden orden;
  const char* clave;
};

// Keys without the start flag 7F.
const CasoClave kClaves[] = {
    {"", Orden::General, "01 00"},
    {"Muñoz", Orden::General, "60 6F 62 64 78 01 02 02 19 00"},
    {"O'Neil", Orden::General, "64 62 51 59 5E 01 01 01 01 80 0B 06 80 00"},
    // Every plain place before the last accent is written, none after it; the apostrophe stands at place 8.
    {"Forêts d'érables", Orden::General,
     "53 64 69 51 6D 6B 07 4F 51 69 4A 4C 5E 51 6B 01 02 02 02 12 02 02 02 02 0E 01 01 01 80 27 06 80 00"},
    {"abc", Orden::EspanolModerno, "4A 4C 4D 01 00"},
    {"ABC   ", Orden::EspanolModerno, "4A 4C 4D 01 00"},
    {"a b", Orden::EspanolModerno, "4A 07 4C 01 00"},
    // In the Spanish orders ñ is a letter of its own and takes one plain place.
    {"ñ", Orden::EspanolModerno, "63 04 01 00"},
    {"Ñá", Orden::EspanolModerno, "63 04 4A 01 02 0E 00"},
    {"ñ", Orden::General, "62 01 19 00"},
    // ch and ll are letters of the traditional order alone, whatever their case.
    {"chico", Orden::EspanolModerno, "4D 57 59 4D 64 01 00"},
    {"chico", Orden::EspanolTradicional, "4E 04 59 4D 64 01 00"},
    {"CHICO", Orden::EspanolTradicional, "4E 04 59 4D 64 01 00"},
    {"calle", Orden::EspanolTradicional, "4D 4A 5F 04 51 01 00"},
    {"cHá", Orden::EspanolTradicional, "4E 04 4A 01 02 0E 00"},
    {"lll", Orden::EspanolTradicional, "5F 04 5E 01 00"},
    // ß is two letters and two places.
    {"ßá", Orden::General, "6B 6B 4A 01 02 02 0E 00"},
    {"1º", Orden::General, "38 64 01 02 03 00"},
    {"-", Orden::General, "01 01 01 01 80 07 06 82 00"},
    {"a-b-", Orden::General, "4A 4C 01 01 01 01 80 0B 06 82 80 0F 06 82 00"},
};

TEST(ClaveDeOrden, SonLosBytesDelIndice) {
  for (const CasoClave& c : kClaves) EXPECT_EQ(Hexa(ClaveDeOrden(c.texto, c.orden)), c.clave) << c.texto;
}

// The table of the file format: columns code point, character, class, inline bytes, accent byte, special
// byte.
TEST(ClaveDeOrden, LosPesosSonLosDeLaTabla) {
  const std::filesystem::path ruta =
      std::filesystem::path(support::SourceDir()) / "tests/data/mdb" / "sort_general_legacy.tsv";
  std::ifstream archivo(ruta, std::ios::binary);
  int filas = 0;
  for (std::string linea; std::getline(archivo, linea);) {
    const auto campos = base::Split(linea, "\t");
    if (campos.size() < 6 || campos[0].rfind("U+", 0) != 0) continue;
    ++filas;
    const auto punto = static_cast<char32_t>(std::stoul(campos[0].substr(2), nullptr, 16));
    // An "a" behind keeps a blank from being cut.
    const std::string texto = base::DePuntos(std::u32string(1, punto) + U"a");
    std::string espera = campos[3] + "4A01";
    if (campos[2] == "accent") espera += campos[4];
    if (campos[2] == "special") espera += "0101018007" + std::string("06") + campos[5];
    EXPECT_EQ(base::Reemplazar(Hexa(ClaveDeOrden(texto, Orden::General)), " ", ""), espera + "00")
        << campos[0];
    EXPECT_TRUE(base::TienePesos(texto));
  }
  EXPECT_EQ(filas, 251);
}

TEST(ClaveDeOrden, LoQueNoTienePesoVaDetrasPorSuMayuscula) {
  // Д (U+0414) and its small letter have one key, after every letter of the code page.
  EXPECT_EQ(ClaveDeOrden("д", Orden::General), ClaveDeOrden("Д", Orden::General));
  EXPECT_EQ(Hexa(ClaveDeOrden("Д", Orden::General)), "F0 80 90 94 01 00");
  EXPECT_EQ(CompararTexto("z", "Д", Orden::General), -1);
  EXPECT_EQ(CompararTexto("™", "Д", Orden::General), -1);
  // A stray byte of a text that is no UTF-8 is a character too.
  EXPECT_NE(ClaveDeOrden("a\xFF", Orden::General), ClaveDeOrden("a\xFE", Orden::General));
  EXPECT_FALSE(base::TienePesos("Дон"));
  EXPECT_FALSE(base::TienePesos("a\xFF"));
  EXPECT_TRUE(base::TienePesos("Ñandú – 5 €\r\n"));
}

TEST(ClaveDeIndice, TomaLasPrimeras255Unidades) {
  const std::string largo(255, 'a');
  EXPECT_EQ(ClaveDeIndice(largo + "b", Orden::General), ClaveDeIndice(largo + "c", Orden::General));
  EXPECT_NE(ClaveDeOrden(largo + "b", Orden::General), ClaveDeOrden(largo + "c", Orden::General));
  // The blanks that then stand at the end are cut like any others.
  EXPECT_EQ(ClaveDeIndice("a" + std::string(254, ' ') + "b", Orden::General),
            ClaveDeOrden("a", Orden::General));
  // A character beyond U+FFFF counts twice and is not halved.
  const std::string casi(254, 'a');
  EXPECT_EQ(ClaveDeIndice(casi + "😀", Orden::General), ClaveDeOrden(casi, Orden::General));
}

TEST(ClaveDeOrden, LosSignosLejanosSiguenDistintos) {
  const std::string a(9000, 'x'), b(100, 'x');
  EXPECT_NE(ClaveDeOrden(a + "-" + b, Orden::General), ClaveDeOrden(a + b + "-", Orden::General));
  EXPECT_NE(ClaveDeOrden(a + "x-" + b, Orden::General), ClaveDeOrden(a + "-x" + b, Orden::General));
}

struct CasoOrden {
  const char* a;
  const char* b;
  int general, moderno, tradicional;
};

const CasoOrden kComparaciones[] = {
    {"a", "A", 0, 0, 0},
    {"José", "Jose", 1, 1, 1},
    {"José", "JOSÉ", 0, 0, 0},
    {"Pena", "Peña", -1, -1, -1},
    {"Peña", "Penz", -1, 1, 1},  // ñ after every n in Spanish, beside n in the general order
    {"Peñb", "Pera", -1, -1, -1},
    {"chico", "cuna", -1, -1, 1},
    {"chico", "dado", -1, -1, -1},
    {"cz", "cha", 1, 1, -1},
    {"llave", "luz", -1, -1, 1},
    {"ll", "l", 1, 1, 1},
    {"co-op", "coop", 1, 1, 1},
    {"co-op", "coos", -1, -1, -1},
    {"a-b", "ab", 1, 1, 1},
    {"a b", "ab", -1, -1, -1},
    {"10", "9", -1, -1, -1},
    {"9", "a", -1, -1, -1},
    {"$", "0", -1, -1, -1},
    {"casa  ", "casa", 0, 0, 0},
    {"casa", "casas", -1, -1, -1},
    {"", "a", -1, -1, -1},
    {"", "  ", 0, 0, 0},
    {"", "-", -1, -1, -1},
    {"groß", "gross", 0, 0, 0},
    {"m²", "m2", 0, 0, 0},  // superior digits have the weight of the digit
    {"Álava", "Albania", -1, -1, -1},
    {"à", "á", 1, 1, 1},
};

TEST(CompararTexto, OrdenaComoElFormato) {
  for (const CasoOrden& c : kComparaciones) {
    EXPECT_EQ(CompararTexto(c.a, c.b, Orden::General), c.general) << c.a << " " << c.b;
    EXPECT_EQ(CompararTexto(c.a, c.b, Orden::EspanolModerno), c.moderno) << c.a << " " << c.b;
    EXPECT_EQ(CompararTexto(c.a, c.b, Orden::EspanolTradicional), c.tradicional) << c.a << " " << c.b;
  }
}

// All texts of up to four pieces out of a set that mixes plain letters, digraphs, accents and signs.
std::vector<std::string> TextosDePrueba() {
  const std::vector<std::string> piezas = {"a", "B", "c", "h", "L", "ñ", "é",
                                           "-", "'", " ", "ß", "1", "Д", "\x80"};
  std::vector<std::string> textos = {""};
  std::size_t desde = 0;
  for (int largo = 0; largo < 3; ++largo) {
    const std::size_t hasta = textos.size();
    for (; desde < hasta; ++desde)
      for (const std::string& p : piezas) textos.push_back(textos[desde] + p);
  }
  return textos;
}

TEST(CompararTexto, EsLaComparacionDeLasClaves) {
  const std::vector<std::string> textos = TextosDePrueba();
  ASSERT_EQ(textos.size(), 1U + 14 + 14 * 14 + 14 * 14 * 14);
  for (const Orden orden : kOrdenes) {
    std::vector<std::string> claves;
    for (const std::string& t : textos) claves.push_back(ClaveDeOrden(t, orden));
    std::size_t distintos = 0;
    for (std::size_t i = 0; i < textos.size(); ++i) {
      for (std::size_t j = i % 7; j < textos.size(); j += 7) {
        const int por_clave = claves[i].compare(claves[j]);
        const int esperado = por_clave < 0 ? -1 : (por_clave > 0 ? 1 : 0);
        if (CompararTexto(textos[i], textos[j], orden) != esperado) {
          ++distintos;
          ADD_FAILURE() << "[" << textos[i] << "] [" << textos[j] << "] orden " << static_cast<int>(orden);
        }
        ASSERT_LT(distintos, 5U);
      }
    }
  }
}

TEST(Plegar, JuntaElCasoYGuardaLosAcentos) {
  EXPECT_EQ(base::Plegar(U'a'), U'A');
  EXPECT_EQ(base::Plegar(U'ñ'), base::Plegar(U'Ñ'));
  EXPECT_EQ(base::Plegar(U'š'), base::Plegar(U'Š'));
  EXPECT_EQ(base::Plegar(U'ÿ'), base::Plegar(U'Ÿ'));
  EXPECT_EQ(base::Plegar(U'д'), base::Plegar(U'Д'));
  EXPECT_NE(base::Plegar(U'é'), base::Plegar(U'e'));
  EXPECT_NE(base::Plegar(U'-'), base::Plegar(U'\''));
  EXPECT_NE(base::Plegar(U'_'), base::Plegar(U'^'));
}

TEST(SiguientePunto, LeeUtf8YDejaPasarLosBytesSueltos) {
  const auto todos = [](std::string_view s) {
    std::u32string puntos;
    for (std::size_t i = 0; i < s.size();) puntos += base::SiguientePunto(s, i);
    return puntos;
  };
  EXPECT_EQ(todos("añ€😀"), U"añ€😀");
  const auto suelto = [](int b) { return static_cast<char32_t>(0xDC00 + b); };
  EXPECT_EQ(todos("\xC3"), std::u32string(1, suelto(0xC3)));
  EXPECT_EQ(todos("\xC3z"), std::u32string({suelto(0xC3), U'z'}));
  EXPECT_EQ(todos("\xC0\x80"), std::u32string({suelto(0xC0), suelto(0x80)}));                    // overlong
  EXPECT_EQ(todos("\xED\xA0\x80"), std::u32string({suelto(0xED), suelto(0xA0), suelto(0x80)}));  // surrogate
}

TEST(SortOrder, AnOrderIsNamedByItsLanguage) {
  EXPECT_EQ(base::LanguageOf(Orden::General), 1033);
  EXPECT_EQ(base::LanguageOf(Orden::EspanolModerno), 3082);
  EXPECT_EQ(base::LanguageOf(Orden::EspanolTradicional), 1034);
  for (const Orden order : {Orden::General, Orden::EspanolModerno, Orden::EspanolTradicional})
    EXPECT_EQ(base::OrderOfLanguage(base::LanguageOf(order)), order);
  EXPECT_EQ(base::OrderOfLanguage(0), std::nullopt);
  EXPECT_EQ(base::OrderOfLanguage(1031), std::nullopt);
}

}  // namespace
