// Rows of one page: whatever is done, the rows stay without gaps and the free-space field exact.
#include "mdb/pages/page_rows.h"

#include <gtest/gtest.h>

#include <random>

namespace {

mdb::Bytes Pagina(std::uint32_t dueno = 7) {
  mdb::Bytes p(4096, 0xEE);
  mdb::NuevaPaginaDeFilas(p, dueno);
  return p;
}
mdb::Bytes De(std::size_t largo, std::uint8_t byte) { return mdb::Bytes(largo, byte); }
mdb::Bytes Contenido(const mdb::Bytes& p, unsigned fila) {
  const auto r = mdb::LeerRanura(9, p, fila);
  const auto v = mdb::Trozo(p, r.desde, r.largo);
  return {v.begin(), v.end()};
}

TEST(FilasDePagina, ANewPageHas4082BytesOfRoom) {
  const auto p = Pagina(0x01020304);
  EXPECT_EQ(mdb::U16(p, 0), 0x0101);
  EXPECT_EQ(mdb::U16(p, 2), 4082);
  EXPECT_EQ(mdb::DuenoDe(p), 0x01020304U);
  EXPECT_EQ(mdb::U32(p, 8), 0U);
  EXPECT_EQ(mdb::CantidadDeRanuras(p), 0U);
  EXPECT_TRUE(mdb::SinFilas(p));
  EXPECT_TRUE(mdb::CabeFila(p, 4080));
  EXPECT_FALSE(mdb::CabeFila(p, 4081));
}

TEST(FilasDePagina, TheOwnerOfLongValuesReadsLval) {
  const auto p = Pagina(mdb::kDuenoLargos);
  EXPECT_EQ(std::string(p.begin() + 4, p.begin() + 8), "LVAL");
}

TEST(FilasDePagina, ARowCostsItsBytesAndTwo) {
  auto p = Pagina();
  EXPECT_EQ(mdb::AgregarFila(9, p, De(100, 1)), 0);
  EXPECT_EQ(mdb::AgregarFila(9, p, De(10, 2), mdb::Ranura::kDestino), 1);
  EXPECT_EQ(mdb::U16(p, 2), 4082 - 112 - 2);
  EXPECT_EQ(mdb::LeerRanura(9, p, 0).desde, 3996U);
  EXPECT_EQ(mdb::LeerRanura(9, p, 1).desde, 3986U);
  EXPECT_EQ(mdb::LeerRanura(9, p, 1).marcas, 0x8000);
  EXPECT_THROW(mdb::LeerRanura(9, p, 2), mdb::Danio);
}

TEST(FilasDePagina, DeletingTakesTheBytesBackAndKeepsTheNumbers) {
  auto p = Pagina();
  for (std::uint8_t i = 0; i < 4; ++i) mdb::AgregarFila(9, p, De(50U + i, i));
  mdb::QuitarFila(9, p, 1);
  EXPECT_TRUE(mdb::LeerRanura(9, p, 1).Borrada());
  EXPECT_EQ(mdb::LeerRanura(9, p, 1).largo, 0U);
  EXPECT_EQ(Contenido(p, 0), De(50, 0));
  EXPECT_EQ(Contenido(p, 2), De(52, 2));
  EXPECT_EQ(Contenido(p, 3), De(53, 3));
  EXPECT_EQ(mdb::U16(p, 2), 4082 - 4 * 2 - 50 - 52 - 53);
  EXPECT_EQ(mdb::AgregarFila(9, p, De(5, 9)), 4);
}

TEST(FilasDePagina, ARowThatDoesNotGrowIntoTheRoomStaysAsItWas) {
  auto p = Pagina();
  mdb::AgregarFila(9, p, De(2000, 1));
  mdb::AgregarFila(9, p, De(2000, 2));
  const auto antes = p;
  EXPECT_FALSE(mdb::CambiarFila(9, p, 0, De(2079, 3)));
  EXPECT_EQ(p, antes);
  EXPECT_TRUE(mdb::CambiarFila(9, p, 0, De(2078, 3)));
  EXPECT_EQ(mdb::U16(p, 2), 0);
  EXPECT_EQ(Contenido(p, 0), De(2078, 3));
  EXPECT_EQ(Contenido(p, 1), De(2000, 2));
}

TEST(FilasDePagina, TakesNoMoreThan255Rows) {
  auto p = Pagina();
  for (int i = 0; i < 255; ++i) EXPECT_EQ(mdb::AgregarFila(9, p, De(4, 1)), i);
  EXPECT_GT(mdb::Hueco(p), 1000U);
  EXPECT_FALSE(mdb::CabeFila(p, 4));
}

TEST(FilasDePagina, SlotsThatLeadOutOfThePageAreDamage) {
  auto p = Pagina();
  mdb::AgregarFila(9, p, De(100, 1));
  mdb::AgregarFila(9, p, De(100, 2));
  EXPECT_NO_THROW(mdb::RevisarPaginaDeFilas(9, p));
  auto cruzada = p;
  mdb::Poner16(cruzada, 16, 4000);  // row 1 before row 0
  EXPECT_THROW(mdb::RevisarPaginaDeFilas(9, cruzada), mdb::Danio);
  EXPECT_THROW(mdb::CambiarFila(9, cruzada, 0, De(1, 1)), mdb::Danio);
  auto sobre = p;
  mdb::Poner16(sobre, 16, 15);  // over the slots
  EXPECT_THROW(mdb::LeerRanura(9, sobre, 1), mdb::Danio);
  auto muchas = p;
  mdb::Poner16(muchas, 12, 0xFFFF);
  EXPECT_THROW(mdb::RevisarPaginaDeFilas(9, muchas), mdb::Danio);
}

TEST(FilasDePagina, RandomChangesAgreeWithAList) {
  std::mt19937 motor(20030517);
  const auto azar = [&] { return static_cast<unsigned>(motor()); };
  for (int vuelta = 0; vuelta < 20; ++vuelta) {
    auto p = Pagina();
    std::vector<mdb::Bytes> modelo;
    std::vector<bool> viva;
    for (int paso = 0; paso < 400; ++paso) {
      const auto bytes = De(azar() % 120, static_cast<std::uint8_t>(paso));
      const unsigned que = azar() % 4;
      if (que < 2 || modelo.empty()) {
        if (!mdb::CabeFila(p, bytes.size())) continue;
        ASSERT_EQ(mdb::AgregarFila(9, p, bytes), modelo.size());
        modelo.push_back(bytes);
        viva.push_back(true);
      } else {
        const unsigned fila = azar() % static_cast<unsigned>(modelo.size());
        if (!viva[fila]) continue;
        if (que == 2) {
          mdb::QuitarFila(9, p, fila);
          modelo[fila].clear();
          viva[fila] = false;
        } else if (mdb::CambiarFila(9, p, fila, bytes)) {
          modelo[fila] = bytes;
        }
      }
      ASSERT_NO_THROW(mdb::RevisarPaginaDeFilas(9, p));
      std::size_t usados = 14 + 2 * modelo.size();
      for (unsigned i = 0; i < modelo.size(); ++i) {
        ASSERT_EQ(Contenido(p, i), modelo[i]);
        ASSERT_EQ(!mdb::LeerRanura(9, p, i).Borrada(), viva[i]);
        usados += modelo[i].size();
      }
      ASSERT_EQ(mdb::U16(p, 2), 4096 - usados);
    }
  }
}

}  // namespace
