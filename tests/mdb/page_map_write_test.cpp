// Page maps as they are written: windows, promotion, the global map, pages taken and given back.
#include <gtest/gtest.h>

#include <random>
#include <set>

#include "mdb/corpus.h"
#include "mdb/pages/page_map.h"
#include "mdb/pages/page_rows.h"
#include "mdb/samples.h"

namespace {

using mdb::NumPagina;
using Conjunto = std::set<NumPagina>;
constexpr mdb::Puntero kGlobal{1, 0};
constexpr std::uint32_t kPorPagina = 32736;

// A file of the pages 0 and 1, with the global map of a new file.
std::unique_ptr<mdb::PaginasEnMemoria> Nuevo(std::size_t largo_del_mapa = 69) {
  mdb::Bytes bytes(3 * 4096, 0);
  const auto uno = std::span(bytes).subspan(4096, 4096);
  mdb::NuevaPaginaDeFilas(uno, 1);
  mdb::Bytes fila(largo_del_mapa, 0xFF);
  for (std::size_t i = 0; i < 5; ++i) fila[i] = 0;
  fila[5] = 0xF8;  // pages 0 to 2 are used
  mdb::AgregarFila(1, uno, fila);
  mdb::AgregarFila(1, uno, mdb::Bytes(69, 0));
  return std::make_unique<mdb::PaginasEnMemoria>(mdb::Cabecera{}, std::move(bytes));
}

Conjunto Leer(mdb::Paginas& p, mdb::Puntero mapa) {
  const auto v = mdb::LeerMapa(p, mapa);
  return {v.begin(), v.end()};
}
std::uint8_t Clase(mdb::Paginas& p, mdb::Puntero mapa) {
  const auto imagen = p.Leer(mapa.pagina);
  return (*imagen)[mdb::LeerRanura(mapa.pagina, *imagen, mapa.fila).desde];
}
std::uint32_t Inicio(mdb::Paginas& p, mdb::Puntero mapa) {
  const auto imagen = p.Leer(mapa.pagina);
  return mdb::U32(*imagen, mdb::LeerRanura(mapa.pagina, *imagen, mapa.fila).desde + 1);
}
std::size_t Largo(mdb::Paginas& p, mdb::Puntero mapa) {
  return mdb::LeerRanura(mapa.pagina, *p.Leer(mapa.pagina), mapa.fila).largo;
}
// Pages are only numbers to a map that is not the global one.
void Crecer(mdb::Paginas& p, NumPagina hasta) {
  while (p.Cantidad() < hasta) p.Agregar();
}

TEST(MapaDePaginas, ANewMapIsAnEmptyBitmapOf512PagesOnAPageOfMaps) {
  auto p = Nuevo();
  const auto a = mdb::NuevoMapa(*p), b = mdb::NuevoMapa(*p);
  EXPECT_EQ(a, (mdb::Puntero{3, 0}));
  EXPECT_EQ(b, (mdb::Puntero{3, 1}));
  EXPECT_EQ(Largo(*p, a), 69U);
  EXPECT_TRUE(Leer(*p, a).empty());
  EXPECT_EQ(mdb::DuenoDe(*p->Leer(3)), 0U);
  EXPECT_FALSE(mdb::EnMapa(*p, kGlobal, 3));
}

TEST(MapaDePaginas, AFullPageOfMapsIsFollowedByAnother) {
  auto p = Nuevo();
  Conjunto paginas;
  for (int i = 0; i < 120; ++i) paginas.insert(mdb::NuevoMapa(*p).pagina);
  EXPECT_EQ(paginas, (Conjunto{3, 4, 5, 6}));  // 36 of 69 + 2 bytes, and 1500 for them to grow
}

TEST(MapaDePaginas, PagesOfTheWindowAreBits) {
  auto p = Nuevo();
  const auto m = mdb::NuevoMapa(*p);
  Crecer(*p, 600);
  for (const NumPagina n : {0U, 7U, 8U, 511U}) mdb::PonerEnMapa(*p, m, n);
  EXPECT_EQ(Leer(*p, m), (Conjunto{0, 7, 8, 511}));
  EXPECT_EQ(Clase(*p, m), 0);
  mdb::QuitarDeMapa(*p, m, 7);
  mdb::QuitarDeMapa(*p, m, 7);
  mdb::QuitarDeMapa(*p, m, 599);  // beyond it: was not there
  EXPECT_EQ(Leer(*p, m), (Conjunto{0, 8, 511}));
}

TEST(MapaDePaginas, TheWindowMovesToAMultipleOfEight) {
  auto p = Nuevo();
  const auto m = mdb::NuevoMapa(*p);
  Crecer(*p, 2000);
  mdb::PonerEnMapa(*p, m, 1003);
  EXPECT_EQ(Inicio(*p, m), 1000U);
  mdb::PonerEnMapa(*p, m, 1511);  // the last of the window
  EXPECT_EQ(Inicio(*p, m), 1000U);
  mdb::QuitarDeMapa(*p, m, 1003);
  mdb::PonerEnMapa(*p, m, 1512);  // only 1511 is left to keep
  EXPECT_EQ(Inicio(*p, m), 1504U);
  mdb::QuitarDeMapa(*p, m, 1512);
  mdb::PonerEnMapa(*p, m, 1000);  // and back
  EXPECT_EQ(Inicio(*p, m), 1000U);
  EXPECT_EQ(Largo(*p, m), 69U);
  EXPECT_EQ(Leer(*p, m), (Conjunto{1000, 1511}));
}

TEST(MapaDePaginas, ABitmapGetsLongerWhereItsPageHasRoom) {
  auto p = Nuevo();
  const auto m = mdb::NuevoMapa(*p), vecino = mdb::NuevoMapa(*p);
  mdb::PonerEnMapa(*p, vecino, 2);
  Crecer(*p, 5000);
  mdb::PonerEnMapa(*p, m, 1003);
  mdb::PonerEnMapa(*p, m, 1512);
  EXPECT_EQ(Clase(*p, m), 0);
  EXPECT_EQ(Largo(*p, m), 73U);  // by four bytes
  EXPECT_EQ(Inicio(*p, m), 1000U);
  mdb::PonerEnMapa(*p, m, 1000 + 4095);
  EXPECT_EQ(Largo(*p, m), 517U);
  mdb::PonerEnMapa(*p, m, 1001);
  EXPECT_EQ(Leer(*p, m), (Conjunto{1001, 1003, 1512}));  // 5095 is beyond the end of the file
  Crecer(*p, 5096);
  EXPECT_EQ(Leer(*p, m), (Conjunto{1001, 1003, 1512, 5095}));
  EXPECT_EQ(Leer(*p, vecino), Conjunto{2});
  mdb::PonerEnMapa(*p, m, 999);  // beyond the longest
  EXPECT_EQ(Clase(*p, m), 1);
  EXPECT_EQ(Leer(*p, m), (Conjunto{999, 1001, 1003, 1512, 5095}));
}

TEST(MapaDePaginas, BecomesAListOfBitmapPagesInItsPlace) {
  auto p = Nuevo();
  const auto m = mdb::NuevoMapa(*p), vecino = mdb::NuevoMapa(*p);
  mdb::PonerEnMapa(*p, vecino, 2);
  Crecer(*p, kPorPagina + 10);
  mdb::PonerEnMapa(*p, m, 5);
  mdb::PonerEnMapa(*p, m, 5000);
  EXPECT_EQ(Clase(*p, m), 1);
  EXPECT_EQ(Largo(*p, m), 69U);
  const auto de_mapa = mdb::PaginasDelMapa(*p, m);
  ASSERT_EQ(de_mapa.size(), 1U);
  EXPECT_EQ(mdb::U32(*p->Leer(de_mapa[0]), 0), 0x00000105U);
  EXPECT_FALSE(mdb::EnMapa(*p, kGlobal, de_mapa[0]));
  mdb::PonerEnMapa(*p, m, kPorPagina + 3);  // the second range
  EXPECT_EQ(mdb::PaginasDelMapa(*p, m).size(), 2U);
  EXPECT_EQ(Leer(*p, m), (Conjunto{5, 5000, kPorPagina + 3}));
  mdb::QuitarDeMapa(*p, m, 3 * kPorPagina);  // a range without a page: nothing to do
  EXPECT_EQ(mdb::PaginasDelMapa(*p, m).size(), 2U);
  EXPECT_EQ(Leer(*p, vecino), Conjunto{2});
}

// The maps of its page fill it: each takes what room there is, then turns into a list.
TEST(MapaDePaginas, BecomesAListWhenItsPageIsFull) {
  auto p = Nuevo();
  std::vector<mdb::Puntero> mapas;
  for (int i = 0; i < 36; ++i) mapas.push_back(mdb::NuevoMapa(*p));
  ASSERT_EQ(mapas.back().pagina, mapas.front().pagina);
  Crecer(*p, 4100);
  Conjunto modelo;
  int listas = 0;
  for (const NumPagina n : {10U, 700U, 1500U}) {
    modelo.insert(n);
    for (const auto& m : mapas) mdb::PonerEnMapa(*p, m, n);
  }
  for (const auto& m : mapas) {
    EXPECT_EQ(Leer(*p, m), modelo);
    listas += Clase(*p, m);
  }
  EXPECT_GT(listas, 20);
  EXPECT_LT(listas, 36);
}

TEST(MapaDePaginas, ANegativePointerIsNoPage) {
  auto p = Nuevo();
  const auto m = mdb::NuevoMapa(*p);
  Crecer(*p, 6000);
  mdb::PonerEnMapa(*p, m, 5);
  mdb::PonerEnMapa(*p, m, 5900);
  const auto lugar = mdb::LeerRanura(m.pagina, *p->Leer(m.pagina), m.fila).desde;
  mdb::Poner32(p->Modificar(m.pagina), lugar + 1, 0xFFFFFFFEU);
  EXPECT_TRUE(Leer(*p, m).empty());
  mdb::PonerEnMapa(*p, m, 7);
  EXPECT_EQ(Leer(*p, m), Conjunto{7});
}

TEST(MapaDePaginas, DeletingAMapGivesItsPagesBack) {
  auto p = Nuevo();
  const auto a = mdb::NuevoMapa(*p), b = mdb::NuevoMapa(*p);
  Crecer(*p, 6000);
  mdb::PonerEnMapa(*p, a, 5);
  mdb::PonerEnMapa(*p, a, 5900);
  const auto bits = mdb::PaginasDelMapa(*p, a).at(0);
  mdb::BorrarMapa(*p, a);
  EXPECT_TRUE(mdb::EnMapa(*p, kGlobal, bits));
  EXPECT_FALSE(mdb::EnMapa(*p, kGlobal, a.pagina));
  EXPECT_TRUE(Leer(*p, b).empty());
  mdb::BorrarMapa(*p, b);  // the last of its page
  EXPECT_TRUE(mdb::EnMapa(*p, kGlobal, a.pagina));
  mdb::BorrarMapa(*p, {});  // no map: nothing
}

TEST(MapaDePaginas, RandomChangesAgreeWithASet) {
  auto p = Nuevo();
  Crecer(*p, 9000);
  std::mt19937 motor(20010101);
  const auto azar = [&] { return static_cast<unsigned>(motor()); };
  for (int vuelta = 0; vuelta < 30; ++vuelta) {
    const auto m = mdb::NuevoMapa(*p);
    Conjunto modelo;
    const NumPagina base = azar() % 3000, ancho = 1 + azar() % (vuelta % 3 == 0 ? 6000 : 900);
    for (int paso = 0; paso < 300; ++paso) {
      const NumPagina n = base + azar() % ancho;
      if (azar() % 3 != 0) {
        mdb::PonerEnMapa(*p, m, n);
        modelo.insert(n);
      } else {
        mdb::QuitarDeMapa(*p, m, n);
        modelo.erase(n);
      }
      if (paso % 10 == 0) {
        ASSERT_EQ(Leer(*p, m), modelo);
        ASSERT_EQ(Inicio(*p, m) % 8 * (1U - Clase(*p, m)), 0U);
      }
    }
    ASSERT_EQ(Leer(*p, m), modelo);
  }
}

TEST(MapaGlobal, TakesTheLowestFreePageElseAppends) {
  auto p = Nuevo();
  EXPECT_EQ(mdb::ReservarPagina(*p), 3U);
  EXPECT_EQ(mdb::ReservarPagina(*p), 4U);
  EXPECT_EQ(mdb::ReservarPagina(*p), 5U);
  p->Modificar(4)[100] = 9;
  mdb::LiberarPagina(*p, 4);
  mdb::LiberarPagina(*p, 3);
  EXPECT_EQ(mdb::U32(*p->Leer(4), 0), 0U);
  EXPECT_EQ(Leer(*p, kGlobal), (Conjunto{3, 4}));
  EXPECT_EQ(mdb::ReservarPagina(*p), 3U);
  EXPECT_EQ(mdb::ReservarPagina(*p), 4U);
  EXPECT_EQ((*p->Leer(4))[100], 0);  // zeroed
  EXPECT_EQ(mdb::ReservarPagina(*p), 6U);
}

TEST(MapaGlobal, PagesOfTheHeaderAreNeverFreeWhateverItSays) {
  auto p = Nuevo();
  const auto imagen = p->Leer(1);
  mdb::Poner8(p->Modificar(1), mdb::LeerRanura(1, *imagen, 0).desde + 5, 0xFF);
  EXPECT_EQ(mdb::ReservarPagina(*p), 3U);
}

TEST(MapaGlobal, ItsRowGrowsOnPageOneWithTheFile) {
  auto p = Nuevo();
  while (p->Cantidad() < 5000) mdb::ReservarPagina(*p);
  EXPECT_EQ(Clase(*p, kGlobal), 0);
  EXPECT_GE(Largo(*p, kGlobal), 5U + 5000 / 8);
  EXPECT_EQ(Largo(*p, {1, 1}), 69U);  // the second map of page 1 only moved
  EXPECT_TRUE(Leer(*p, kGlobal).empty());
  // Pages that the file does not have yet are free.
  const auto imagen = p->Leer(1);
  const auto r = mdb::LeerRanura(1, *imagen, 0);
  EXPECT_EQ((*imagen)[r.desde + r.largo - 1], 0xFF);
  mdb::LiberarPagina(*p, 4321);
  EXPECT_EQ(mdb::ReservarPagina(*p), 4321U);
}

TEST(MapaGlobal, BecomesAListOfBitmapPagesWhenPageOneIsFull) {
  auto p = Nuevo();
  for (NumPagina i = 0; i < 31200; ++i) mdb::ReservarPagina(*p);
  ASSERT_EQ(Clase(*p, kGlobal), 0);
  mdb::LiberarPagina(*p, 777);
  mdb::LiberarPagina(*p, 778);
  EXPECT_EQ(mdb::ReservarPagina(*p), 777U);
  Conjunto dadas;
  // Two bitmap pages: the second is needed with the first page of its range.
  for (NumPagina i = 0; i < 3000; ++i) EXPECT_TRUE(dadas.insert(mdb::ReservarPagina(*p)).second);
  EXPECT_TRUE(dadas.contains(778));
  ASSERT_EQ(Clase(*p, kGlobal), 1);
  const auto de_mapa = mdb::PaginasDelMapa(*p, kGlobal);
  ASSERT_EQ(de_mapa.size(), 2U);
  for (const auto n : de_mapa) {
    EXPECT_FALSE(dadas.contains(n));
    EXPECT_FALSE(mdb::EnMapa(*p, kGlobal, n));
  }
  EXPECT_EQ((*p->Leer(de_mapa[1]))[4095], 0xFF);  // its last pages are beyond the end of the file
  EXPECT_TRUE(Leer(*p, kGlobal).empty());
  mdb::LiberarPagina(*p, 40);
  mdb::LiberarPagina(*p, kPorPagina + 40);
  EXPECT_EQ(Leer(*p, kGlobal), (Conjunto{40, kPorPagina + 40}));
  EXPECT_EQ(mdb::ReservarPagina(*p), 40U);
  EXPECT_EQ(mdb::ReservarPagina(*p), kPorPagina + 40);
}

TEST(MapaGlobal, WhatAWindowThatWasMovedLeavesOutCountsAsUsed) {
  auto p = Nuevo();
  Crecer(*p, 700);
  const auto lugar = mdb::LeerRanura(1, *p->Leer(1), 0).desde;
  mdb::Bytes& uno = p->Modificar(1);
  mdb::Poner32(uno, lugar + 1, 640);  // as another program does when its file outgrows the map
  for (std::size_t i = 0; i < 64; ++i) mdb::Poner8(uno, lugar + 5 + i, i < 8 ? 0x00 : 0xFF);
  for (NumPagina n = 700; n < 1200; ++n) ASSERT_EQ(mdb::ReservarPagina(*p), n);
  EXPECT_EQ(Clase(*p, kGlobal), 0);
  EXPECT_TRUE(Leer(*p, kGlobal).empty());
  mdb::LiberarPagina(*p, 20);  // before the window: now all pages must be named
  EXPECT_EQ(Clase(*p, kGlobal), 1);
  EXPECT_EQ(Leer(*p, kGlobal), Conjunto{20});
}

TEST(MapaGlobal, OfAnotherWritersFileGivesItsFreePages) {
  const auto p = mdb_test::LoadSample("long.mdb");
  const Conjunto libres = Leer(*p, kGlobal);
  ASSERT_EQ(libres.size(), 22U);
  const NumPagina antes = p->Cantidad();
  Conjunto dadas;
  for (int i = 0; i < 22; ++i) dadas.insert(mdb::ReservarPagina(*p));
  EXPECT_EQ(dadas, libres);
  EXPECT_EQ(mdb::ReservarPagina(*p), antes);
}

}  // namespace
