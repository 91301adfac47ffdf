#include "mdb/pages/pages.h"

#include <gtest/gtest.h>

namespace {

mdb::PaginasEnMemoria DosPaginas() { return {mdb::Cabecera{}, mdb::Bytes(8192, 1)}; }

TEST(Paginas, ImagesHandedOutDoNotChange) {
  auto p = DosPaginas();
  const auto antes = p.Leer(1);
  p.Modificar(1)[0] = 9;
  const auto medio = p.Leer(1);
  p.Modificar(1)[0] = 10;
  EXPECT_EQ((*antes)[0], 1);
  EXPECT_EQ((*medio)[0], 9);
  EXPECT_EQ((*p.Leer(1))[0], 10);
}

TEST(Paginas, RollbackAndPointsGiveBackPagesAndLength) {
  auto p = DosPaginas();
  p.Modificar(0)[5] = 2;
  const auto punto = p.Guardar();
  p.Modificar(0)[5] = 3;
  EXPECT_EQ(p.Agregar(), 2U);
  EXPECT_EQ((*p.Leer(2))[4095], 0);
  p.Volver(punto);
  EXPECT_EQ(p.Cantidad(), 2U);
  EXPECT_EQ((*p.Leer(0))[5], 2);
  p.Deshacer();
  EXPECT_EQ((*p.Leer(0))[5], 1);
  EXPECT_FALSE(p.HayCambios());
  EXPECT_EQ(p.Guardado(), mdb::Bytes(8192, 1));
}

TEST(Paginas, CommitWritesWhatWasChanged) {
  auto p = DosPaginas();
  p.Modificar(p.Agregar())[0] = 8;
  p.Confirmar();
  p.Deshacer();
  EXPECT_EQ(p.Cantidad(), 3U);
  EXPECT_EQ((*p.Leer(2))[0], 8);
  EXPECT_EQ(p.Guardado().size(), 3U * 4096);
}

TEST(Paginas, APageBeyondTheEndIsDamage) {
  auto p = DosPaginas();
  EXPECT_THROW(p.Leer(2), mdb::Danio);
  EXPECT_THROW(p.Modificar(7), mdb::Danio);
}

}  // namespace
