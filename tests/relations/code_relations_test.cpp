#include "relations/code_relations.h"

#include <gtest/gtest.h>

#include <limits>
#include <optional>

#include "refdata/base_de_prueba.h"
#include "relations/edit_relations.h"
#include "settings/config_file.h"

namespace {

using relations::CodeRelations;

TEST(CodeRelations, ATextWithoutCrLfIsSplitAtLf) {
  CodeRelations relaciones;
  relaciones.Reemplazar("A*1*,a,*1*uno*0\nB*2*,b,*2*dos*0\n");
  ASSERT_EQ(relaciones.Cantidad(), 2u);
  EXPECT_EQ(relaciones.PosEnVecConc("b"), 1);
  EXPECT_EQ(relaciones.Campo(relations::kCC, 0), "0");
}

TEST(CodeRelations, AColourThatIsNoneIsBlack) {
  CodeRelations relaciones;
  relaciones.Reemplazar("A*99999999999*,a,*1*uno*0\r\nB*rojo*,b,*2*dos*0\r\nC*255*,c,*3*tres*0");
  EXPECT_EQ(relaciones.Color(0), 0);
  EXPECT_EQ(relaciones.Color(1), 0);
  EXPECT_EQ(relaciones.Color(2), 255);
}

TEST(CodeRelations, AListTakesThePlaceOfAllThatWas) {
  CodeRelations relaciones;
  relaciones.Reemplazar("A*1*,a,*1*uno*0");
  relaciones.Reemplazar(std::vector<relations::Relacion>{{"B", "2", ",b,", "2", "dos", "0"}});
  ASSERT_EQ(relaciones.Cantidad(), 1u);
  EXPECT_EQ(relaciones.Grid().size(), 1u);
  EXPECT_EQ(relaciones.PosEnVecConc("a"), -1);
  EXPECT_EQ(relaciones.PosEnVecConc("b"), 0);
}

TEST(CodeRelations, AnIdentifierIsAWholeNumberOf32Bits) {
  using Limites = std::numeric_limits<std::int32_t>;
  EXPECT_EQ(relations::IdentificadorDe("7"), 7);
  EXPECT_EQ(relations::IdentificadorDe(" 07,0 "), 7);
  EXPECT_EQ(relations::IdentificadorDe("2147483647"), Limites::max());
  EXPECT_EQ(relations::IdentificadorDe("-2147483648"), Limites::min());
  for (const char* ninguno : {"2147483648", "-2147483649", "99999999999", "7,5", "abc", "", " "})
    EXPECT_EQ(relations::IdentificadorDe(ninguno), std::nullopt) << ninguno;
}

// The type of the load before is not that of one that names no type.
TEST(CodeRelations, ATypeThatIsNoneIsNotTheOneBefore) {
  support::BaseDePrueba base;
  CodeRelations relaciones;
  const auto levantar = [&](const char* tipo) {
    relations::LevantarRelaciones(base.sesion, base.opciones,
                                  settings::TextoConValor("", "TomaConceptosDeBD", tipo), relaciones);
  };
  levantar("5");
  EXPECT_FALSE(relaciones.carga_fallida);
  EXPECT_EQ(relaciones.tipo_dato_externo, 5);
  levantar("99999999999");
  EXPECT_TRUE(relaciones.carga_fallida);
  EXPECT_EQ(relaciones.tipo_dato_externo, 0);
}

// Two relations under external type 5, of which the second one's insert can be made to fail.
class Guardado : public ::testing::Test {
 protected:
  Guardado() {
    base_.conexion->Execute("Insert into DatExtDatos (idTDE,idLoc,idDE) Values (5,9,'antes')");
    relaciones_.Reemplazar("A*0*,a,*1*uno*0\r\nB*0*,b,*2*dos*0");
    relaciones_.tipo_dato_externo = 5;
  }
  std::string Guardar() {
    return relations::GuardarRelacionesEnBase(base_.sesion, relaciones_, &base_.errores);
  }
  std::string Codigos() {
    const auto rs = base_.conexion->Execute("Select idDE From DatExtDatos Order by idDE");
    std::string texto;
    for (std::size_t i = 0; i < rs.Count(); ++i) texto += rs.At(0, i).CsvText() + " ";
    return texto;
  }

  support::BaseDePrueba base_;
  CodeRelations relaciones_;
};

// What a caller did before in its transaction is the caller's, to keep or to undo.
TEST_F(Guardado, InsideATransactionOnlyTheSavingIsUndone) {
  base_.conexion->BeginTrans();
  base_.conexion->Execute("Insert into DatExtDatos (idTDE,idLoc,idDE) Values (6,1,'otro')");
  base_.conexion->fallan = {"2 as idLoc"};
  EXPECT_EQ(Guardar(), "Falla pedida");
  EXPECT_TRUE(base_.conexion->InTransaction());
  EXPECT_EQ(Codigos(), "antes otro ");
  base_.conexion->fallan.clear();
  EXPECT_EQ(Guardar(), "");
  EXPECT_TRUE(base_.conexion->InTransaction());
  EXPECT_EQ(Codigos(), "a b otro ");
  base_.conexion->RollbackTrans();
  EXPECT_EQ(Codigos(), "antes ");
}

TEST_F(Guardado, OutsideOneItIsItsOwn) {
  EXPECT_EQ(Guardar(), "");
  EXPECT_FALSE(base_.conexion->InTransaction());
  EXPECT_EQ(Codigos(), "a b ");
}

}  // namespace
