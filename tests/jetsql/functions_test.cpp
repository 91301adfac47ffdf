// The table of the dialect's functions.
#include "jetsql/functions.h"

#include <gtest/gtest.h>

#include <string>

namespace {

using jetsql::BuscarFuncion;

TEST(Funciones, SeHallanSinImportarElCasoNiElSignoDeTexto) {
  for (const char* nombre : {"left", "LEFT", "Left", "LEFT$", "left$"}) {
    const jetsql::Funcion* f = BuscarFuncion(nombre);
    ASSERT_NE(f, nullptr) << nombre;
    EXPECT_EQ(f->nombre, "LEFT");
    EXPECT_EQ(f->tipo, base::Tipo::Texto);
    EXPECT_TRUE(f->etiquetada);
  }
}

TEST(Funciones, LasDelTraductorYLasDesconocidasNoEstan) {
  for (const char* nombre : {"IIF", "SWITCH", "CHOOSE", "ISNULL", "SUM", "COUNT", "", "$", "NADA", "LEFTT",
                             "UNNOMBREMUYLARGODEVERDAD", "Lef"})
    EXPECT_EQ(BuscarFuncion(nombre), nullptr) << nombre;
}

TEST(Funciones, CadaUnaSeHallaPorSuNombreYTieneArgumentosPosibles) {
  ASSERT_FALSE(jetsql::Funciones().empty());
  for (const jetsql::Funcion& f : jetsql::Funciones()) {
    EXPECT_EQ(BuscarFuncion(f.nombre), &f);
    EXPECT_GE(f.minimo, 0);
    EXPECT_TRUE(f.maximo == -1 || f.maximo >= f.minimo) << f.nombre;
  }
}

TEST(Funciones, SoloElRelojYElAzarCambian) {
  std::string cambian;
  for (const jetsql::Funcion& f : jetsql::Funciones())
    if (!f.determinista) cambian += std::string(f.nombre) + " ";
  EXPECT_EQ(cambian, "DATE NOW RND TIME TIMER ");
}

}  // namespace
