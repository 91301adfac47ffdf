// What reaches the driver: the text as it stands, except a qualifier that names the base table under a
// derived table or an alias.
#include "formula/tablas_usuario/sql.h"
#include "liquidation/sql.h"
#include "odbc_settings.h"
#include "refdata/sql.h"
#include "relations/sql.h"

namespace {

class Qualifiers : public tests::TestDriver {
 protected:
  static constexpr const char* kTables =
      "Catalogo=TiposLiquidacion:id_TipoLiq,idEmpresa,Nombre/Contrato:id_Contrato,idEmpresa,id_Persona/"
      "T_1:a/TX1:b/Encabezados:id_Encabezado,id_TipoLiq";
  void SetUp() override { Open(kTables); }
};

TEST_F(Qualifiers, TheOpenHeaders) {
  EXPECT_EQ(
      Arrives(liquidation::sql::EncabezadosAbiertos(3, base::MakeDate(2026, 10, 1),
                                                    "TiposLiquidacion.id_TipoLiq=4")),
      "SELECT E.id_Encabezado, MesDeLiq, Terminado, TL.id_TipoLiq, Contrato.*, val(P.Numero) AS Numero, "
      "iif(isnull(DE.idDE), '0', DE.idDE) AS Dat FROM ((((SELECT * FROM Encabezados WHERE idEmpresa = 3 AND "
      "Terminado = FALSE AND MesdeLiq = #10/01/2026#) AS E INNER JOIN Contrato ON E.id_contrato = "
      "Contrato.id_Contrato AND E.idEmpresa = Contrato.idEmpresa) INNER JOIN (SELECT * FROM TiposLiquidacion "
      "WHERE idEmpresa = 3 AND TiposLiquidacion.id_TipoLiq = 4) AS TL ON E.id_TipoLiq = TL.id_TipoLiq AND "
      "E.idEmpresa = TL.idEmpresa) INNER JOIN Personas AS P ON P.id_Persona = Contrato.id_Persona AND "
      "Contrato.idEmpresa = P.idEmpresa) LEFT JOIN (SELECT * FROM DatExtDatos WHERE idEmpresa = 3 AND idTDE "
      "= "
      "1) AS DE ON DE.idLoc = Contrato.id_Contrato AND DE.idEmpresa = Contrato.idEmpresa ORDER BY "
      "Contrato.id_Contrato, TL.id_TipoLiq");
}

// The rest of what an import says goes to the driver letter by letter.
TEST_F(Qualifiers, OtherStatementsArriveAsTheyStand) {
  using namespace liquidation::sql;
  const base::Date month = base::MakeDate(2026, 10, 1);
  const ClaveDato key{3, 41, 7, 9};
  const Cuota instalment{3, 70, 10, 22, 500, "150.5", "Ref:O'Brien {x} ñ"};
  const std::string texts[] = {
      Precarga(3, month, "7,2"),
      ConsultaDeTipos(3, month, {"TiposLiquidacion.Salarial and (Not ParaEmp)", "", ""}).De(10),
      ConsultaDeTipos(3, month,
                      {"TiposLiquidacion.id_TipoLiq=2", "([Consulta].id_TipoLiq=2 and C.idCCAplic=4)",
                       "([Consulta].id_TipoLiq=3)"})
          .De(10),
      EncabezadoDeContrato(3, month, 10, 1),
      InsertarEncabezado(3, 41, month, 10, 1, 6),
      BuscarDato(key),
      BorrarDato(key),
      InsertarDato(500, key, "8.5,0"),
      ActualizarDato(3, 500, "Cantidad", "10.5"),
      ActualizarDatoYCoeficiente(3, 500, "10.5", "2"),
      InsertarPago(instalment, month),
      InsertarPagoDeta(instalment, month),
      ActualizarPago(instalment),
      ActualizarPagoDeta(instalment),
      ActualizarDias(3, month),
      ActualizarMontos(3, month),
      ActualizarDetalle(month),
      refdata::sql::GuardarMes(3, month),
      refdata::sql::Contratos(3, month, month),
      refdata::sql::Conceptos(3, true, true),
      refdata::sql::TiposActivos(3),
      refdata::sql::Calendario(3),
      refdata::sql::GruposDeTipos(3),
      refdata::sql::CentrosDeCosto(),
      relations::sql::ConceptosComoRelaciones(true, true, true),
      relations::sql::DatosExternosComoRelaciones(4),
      relations::sql::BorrarDatosExternos(4),
      relations::sql::InsertarDatoExterno(4, 7, "HC,HE")};
  for (const std::string& sql : texts) EXPECT_EQ(Arrives(sql), sql);
}

TEST_F(Qualifiers, TheNameOfTheTableUnderAnAlias) {
  EXPECT_EQ(Arrives("Select Contrato.id_Contrato From Contrato as C Where contrato.idEmpresa=1"),
            "SELECT C.id_Contrato FROM Contrato AS C WHERE C.idEmpresa = 1");
  EXPECT_EQ(Arrives("Select Contrato.* From Contrato as C"), "SELECT C.* FROM Contrato AS C");
  EXPECT_EQ(Arrives("Update Contrato as C Set Contrato.idEmpresa=2 Where Contrato.id_Contrato=1"),
            "UPDATE Contrato AS C SET C.idEmpresa = 2 WHERE C.id_Contrato = 1");
  EXPECT_EQ(Arrives("Delete Contrato.* From Contrato as C Where Contrato.id_Contrato=1"),
            "DELETE C.* FROM Contrato AS C WHERE C.id_Contrato = 1");
  EXPECT_EQ(Arrives("Insert into T_1 (a) Select Contrato.id_Contrato From Contrato as C"),
            "INSERT INTO T_1 (a) SELECT C.id_Contrato FROM Contrato AS C");
}

TEST_F(Qualifiers, IsResolvedInEachPart) {
  EXPECT_EQ(Arrives("Select 1 From (Select * From Contrato) as C inner join Encabezados as E on "
                    "Contrato.id_Contrato=E.id_Encabezado"),
            "SELECT 1 FROM (SELECT * FROM Contrato) AS C INNER JOIN Encabezados AS E ON C.id_Contrato = "
            "E.id_Encabezado");
  EXPECT_EQ(Arrives("Select Count(*) From Contrato as C Group by Contrato.idEmpresa Having "
                    "Max(Contrato.id_Persona)>1"),
            "SELECT Count(*) FROM Contrato AS C GROUP BY C.idEmpresa HAVING Max(C.id_Persona) > 1");
  EXPECT_EQ(Arrives("Select 1 From Contrato as C Where Exists(Select 1 From Encabezados as E Where "
                    "Contrato.id_Contrato=Encabezados.id_Encabezado)"),
            "SELECT 1 FROM Contrato AS C WHERE EXISTS (SELECT 1 FROM Encabezados AS E WHERE C.id_Contrato = "
            "E.id_Encabezado)");
  EXPECT_EQ(
      Arrives("Select Contrato.id_Contrato From Contrato as C Union Select a From T_1 Order by id_Contrato"),
      "SELECT C.id_Contrato FROM Contrato AS C UNION SELECT a FROM T_1 ORDER BY id_Contrato");
}

TEST_F(Qualifiers, ADerivedTableWithoutANameGetsOne) {
  EXPECT_EQ(Arrives("Select Contrato.id_Contrato From (Select * From Contrato)"),
            "SELECT jet_d1.id_Contrato FROM (SELECT * FROM Contrato) AS jet_d1");
}

TEST_F(Qualifiers, TheDerivedTableMustGiveTheColumn) {
  // Both read Contrato; only the second gives the column.
  EXPECT_EQ(
      Arrives("Select Contrato.id_Persona From (Select id_Contrato From Contrato) as A, (Select id_Persona "
              "From Contrato) as B"),
      "SELECT B.id_Persona FROM (SELECT id_Contrato FROM Contrato) AS A, (SELECT id_Persona FROM "
      "Contrato) AS B");
  EXPECT_EQ(Arrives("Select Contrato.p From (Select id_Persona as p From Contrato) as B"),
            "SELECT B.p FROM (SELECT id_Persona AS p FROM Contrato) AS B");
  // The list of columns is the driver's; T_1 is a pattern that TX1 fits, too.
  const std::string none = "Select T_1.b From (Select * From T_1) as A";
  EXPECT_EQ(Arrives(none), none);
  EXPECT_EQ(Arrives("Select T_1.a From (Select * From T_1) as A"),
            "SELECT A.a FROM (SELECT * FROM T_1) AS A");
  // A table that the driver does not list may have any.
  EXPECT_EQ(Arrives("Select Otra.z From (Select * From Otra) as A"),
            "SELECT A.z FROM (SELECT * FROM Otra) AS A");
}

TEST_F(Qualifiers, WhatIsRightAlreadyIsNotTouched) {
  for (const char* sql : {
           "Select  C.id_Contrato\n From Contrato  as C",
           "Select Contrato.id_Contrato From Contrato, (Select * From Contrato) as C",  // in scope
           "Select contrato.ID_CONTRATO From Contrato",
           "Select Nada.x From Contrato as C",
           "Select id_Contrato From (Select id_Contrato From Contrato)",
           "Transform Sum(id_Persona) Select idEmpresa From Contrato Group by idEmpresa Pivot id_Contrato",
           "Select 'Contrato.x', \"{fn now()}\" From Contrato as C;",
       })
    EXPECT_EQ(Arrives(sql), sql);
}

// A statement of another dialect is the driver's to judge.
TEST_F(Qualifiers, WhatIsNotUnderstoodArrivesAsItStands) {
  for (const char* sql : {"PRAGMA table_info(t)", "Select 1 limit 5", "{call algo(1)}", "Select 'sin fin",
                          "Select Contrato.x From"})
    EXPECT_EQ(Arrives(sql), sql);
}

TEST_F(Qualifiers, WithoutACatalogTheColumnIsSupposedThere) {
  Open("Catalogo=roto");
  const std::string sql = "Select Contrato.id_Contrato From (Select id_Contrato From Contrato) as C";
  EXPECT_EQ(Arrives(sql), "SELECT C.id_Contrato FROM (SELECT id_Contrato FROM Contrato) AS C");
  const std::string star = "Select Contrato.id_Contrato From (Select * From Contrato) as C";
  EXPECT_EQ(Arrives(star), "SELECT C.id_Contrato FROM (SELECT * FROM Contrato) AS C");
}

// Each literal stays in its own text, though texts of one shape are looked at once.
TEST_F(Qualifiers, TheSameShapeWithOtherValues) {
  for (const char* n : {"1", "2", "3"}) {
    const std::string sql = std::string("Select a From T_1 Where a=") + n;
    EXPECT_EQ(Arrives(sql), sql);
    EXPECT_EQ(Arrives(std::string("Select T_1.a From T_1 as X Where T_1.a='") + n + "'"),
              std::string("SELECT X.a FROM T_1 AS X WHERE X.a = '") + n + "'");
  }
}

}  // namespace
