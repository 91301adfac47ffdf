#include "base/text.h"

#include <gtest/gtest.h>

#include "base/encoding.h"
#include "base/error.h"

namespace {

using base::Comparar;

std::string TodosLosBytes() {
  std::string bytes;
  for (int b = 0; b < 256; ++b) bytes += static_cast<char>(b);
  return bytes;
}

TEST(Text, MalformedBytesCountOneEachAndComeBack) {
  // An overlong form, a surrogate, a cut character, bytes that never occur, a point above the last one.
  const std::string mal = "\xC0\xAF\xED\xA0\x80\xE2\x82\xFF\xF4\x90\x80\x80z";
  EXPECT_EQ(base::Longitud(mal), mal.size());
  EXPECT_EQ(base::APuntos(mal).size(), mal.size());
  EXPECT_EQ(base::APuntos(mal)[0], U'\xDCC0');
  EXPECT_EQ(base::DePuntos(base::APuntos(mal)), mal);
  EXPECT_EQ(base::Mayusculas(mal), mal.substr(0, mal.size() - 1) + "Z");
  EXPECT_EQ(base::Mid(mal, 2, 1), "\xAF");
  const std::string todos = TodosLosBytes() + TodosLosBytes();
  EXPECT_EQ(base::DePuntos(base::APuntos(todos)), todos);
}

TEST(Text, PointsOfEveryLengthComeBack) {
  const std::u32string puntos = {0, 0x7F, 0x80, 0x7FF, 0x800, 0xD7FF, 0xE000, 0xFFFF, 0x10000, 0x10FFFF};
  const std::string texto = base::DePuntos(puntos);
  EXPECT_TRUE(base::EsUtf8Valido(texto));
  EXPECT_EQ(base::APuntos(texto), puntos);
  EXPECT_EQ(base::Longitud(texto), puntos.size());
}

TEST(Text, EveryLetterWithAPartnerGoesThereAndBack) {
  int parejas = 0;
  for (char32_t p = 1; p < 0x600; ++p) {
    const std::string letra = base::DePuntos({&p, 1});
    const std::string mayuscula = base::Mayusculas(letra), minuscula = base::Minusculas(letra);
    ASSERT_EQ(mayuscula.size(), letra.size());
    ASSERT_EQ(minuscula.size(), letra.size());
    ASSERT_TRUE(mayuscula == letra || minuscula == letra) << static_cast<unsigned>(p);
    if (mayuscula == minuscula) continue;
    ++parejas;
    ASSERT_EQ(base::Mayusculas(minuscula), mayuscula) << static_cast<unsigned>(p);
    ASSERT_EQ(base::Minusculas(mayuscula), minuscula) << static_cast<unsigned>(p);
    ASSERT_TRUE(base::IgualSinCaso(mayuscula, minuscula));
  }
  EXPECT_GT(parejas, 500);
}

TEST(Text, EqualityWithoutCaseLooksAtWholeCharacters) {
  // Same length and same second byte: only the character tells them apart.
  EXPECT_FALSE(base::IgualSinCaso("\xC3\xA1", "\xC4\xA1"));
  EXPECT_TRUE(base::IgualSinCaso("x\xC5\xB8y", "X\xC3\xBFY"));
  EXPECT_FALSE(base::IgualSinCaso("\xC3\x97", "\xC3\xB7"));  // the signs × and ÷ are no letters
}

TEST(Text, SearchFindsOverlappingBeginnings) {
  EXPECT_EQ(base::Buscar("aaab", "aab"), 1U);
  EXPECT_EQ(base::Buscar("AAAB", "aab", 0, Comparar::SinCaso), 1U);
  EXPECT_EQ(base::Buscar("abc", "", 4, Comparar::SinCaso), std::string::npos);
  EXPECT_EQ(base::Buscar("abc", "", 4), std::string::npos);
}

TEST(Text, ViewsReplaceWhatTheListHeld) {
  std::vector<std::string_view> piezas = {"old", "pieces", "more"};
  const std::string texto = "a;b";
  base::SplitVistas(texto, ";", piezas);
  EXPECT_EQ(piezas, (std::vector<std::string_view>{"a", "b"}));
  EXPECT_EQ(piezas[1].data(), texto.data() + 2);
  EXPECT_EQ(base::Join({}, ";"), "");
  EXPECT_EQ(base::Join({"a"}, ";"), "a");
}

TEST(Encoding, EveryByteOfThePageComesBack) {
  const std::string bytes = TodosLosBytes();
  const std::string utf8 = base::DeCp1252(bytes);
  EXPECT_TRUE(base::EsUtf8Valido(utf8));
  EXPECT_EQ(base::Longitud(utf8), 256U);
  std::size_t perdidos = 99;
  EXPECT_EQ(base::ACp1252(utf8, &perdidos), bytes);
  EXPECT_EQ(perdidos, 0U);
}

TEST(Encoding, StrayBytesAreLostOneByOne) {
  std::size_t perdidos = 0;
  EXPECT_EQ(base::ACp1252("a\xFF\xC3z", &perdidos), "a??z");
  EXPECT_EQ(perdidos, 2U);
  EXPECT_EQ(base::ACp1252("a\xFFz"), "a?z");
}

TEST(Encoding, Utf16ThereAndBack) {
  const std::string texto = "Año € 😀";
  EXPECT_EQ(base::AUtf16("😀"), (std::u16string{0xD83D, 0xDE00}));
  EXPECT_EQ(base::DeUtf16(base::AUtf16(texto)), texto);
  EXPECT_EQ(base::DeUtf16(std::u16string{0xDC00, u'a'}),
            "\xEF\xBF\xBD"
            "a");
  EXPECT_EQ(base::AUtf16("\xFF"), (std::u16string{0xFFFD}));
}

TEST(Encoding, AFileMayHoldZeros) {
  EXPECT_EQ(base::DecodificarArchivo(std::string_view("a\0b", 3)), std::string("a\0b", 3));
}

TEST(Error, StepsThatFailAreNotedAndPassedOver) {
  base::SumideroErrores sumidero;
  EXPECT_TRUE(base::ErrorIgnorado("uno", &sumidero, [] {}));
  EXPECT_FALSE(base::ErrorIgnorado("dos", &sumidero, [] { throw base::Error("falló", 6); }));
  EXPECT_FALSE(base::ErrorIgnorado("tres", nullptr, [] { throw base::Error("falló"); }));
  ASSERT_EQ(sumidero.size(), 1U);
  EXPECT_EQ(sumidero[0].donde, "dos");
  EXPECT_EQ(sumidero[0].descripcion, "falló");
  // A defect of the program is none of the data's.
  EXPECT_THROW(base::ErrorIgnorado("x", &sumidero, [] { throw std::logic_error("defect"); }),
               std::logic_error);
}

TEST(Error, DescriptionsByNumber) {
  EXPECT_EQ(base::DescripcionDeError(5), "Argumento o llamada a procedimiento no válidos");
  EXPECT_EQ(base::DescripcionDeError(6), "Desbordamiento");
  EXPECT_EQ(base::DescripcionDeError(11), "División por cero");
  EXPECT_EQ(base::DescripcionDeError(13), "No coinciden los tipos");
  EXPECT_EQ(base::DescripcionDeError(94), "Uso no válido de Null");
  EXPECT_EQ(base::DescripcionDeError(12345), "Error 12345");
}

}  // namespace
