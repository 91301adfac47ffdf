// The module's statements on the embedded engine.
#include <gtest/gtest.h>

#include "avisos_de_prueba.h"
#include "engine_sqlite/sqlite_connection.h"
#include "formula/evaluador/evaluator.h"
#include "formula/tablas_usuario/sql.h"
#include "formula/tablas_usuario/user_tables.h"
#include "formula/vectores/vector_utils.h"

namespace {

class EnMotor : public ::testing::Test {
 protected:
  EnMotor() {
    engine_sqlite::Options opciones;
    opciones.clock = &reloj;
    sesion.conexion = engine_sqlite::Open(":memory:", opciones);
    sesion.idEmpresa = 3;
    sesion.reloj = &reloj;
    ev.sesion = &sesion;
    ev.prompts = &avisos;
    ev.reloj = &reloj;
    for (const char* sql :
         {"CREATE TABLE Conceptos (idEmpresa LONG NOT NULL, id_Concepto LONG NOT NULL, Codigo TEXT(10), "
          "Nombre TEXT(50), Factor DOUBLE, TipoImpuesto YESNO, Desde DATETIME)",
          "CREATE TABLE CentroCosto (idCC LONG NOT NULL, NombreCC TEXT(40))",
          "CREATE TABLE Tablas (id LONG NOT NULL, idEmpresa LONG NOT NULL, Nombre TEXT(30), NombreCampo "
          "TEXT(50), Tipo LONG, TipoDato LONG, DatoOp TEXT(50))",
          "CREATE TABLE DatosUsuTablas (idEmpresa LONG NOT NULL, Id LONG NOT NULL, Id_Tabla LONG NOT NULL, "
          "Codigo TEXT(30), Valor TEXT(50), Fecha DATETIME, CONSTRAINT PK PRIMARY KEY (Id))",
          "Insert into Conceptos values (3,1,'HC','Horas Comunes',1.5,False,#02/01/2024#)",
          "Insert into Conceptos values (3,2,'HE','Horas Extras',2.25,False,Null)",
          "Insert into Conceptos values (3,3,'IRP','Impuesto',Null,True,Null)",
          "Insert into CentroCosto values (12,'Obra Sur')", "Insert into CentroCosto values (2,'Obra Norte')",
          "Insert into Tablas values (5,3,'BONO','Bono',3,1,Null)",
          "Insert into Tablas values (6,3,'VACIA','Sin valores',1,1,Null)",
          "Insert into Tablas values (7,4,'OTRA','De otra empresa',1,1,Null)"})
      sesion.conexion->Execute(sql);
  }

  std::string Evaluar(const std::string& formula) { return formula::EvaluarTexto(ev, formula); }
  std::string Fila(const std::string& sql) {
    const db::Recordset filas = sesion.conexion->Query(sql);
    std::string texto;
    for (std::size_t i = 0; i < filas.Count(); ++i) {
      if (i > 0) texto += "; ";
      for (std::size_t c = 0; c < filas.Fields().size(); ++c) {
        if (c > 0) texto += "|";
        texto += filas.At(c, i).IsNull() ? "NULL" : filas.At(c, i).CsvText();
      }
    }
    return texto;
  }
  std::string Valores() {
    return Fila("select Id,Id_Tabla,Codigo,Valor,Fecha from DatosUsuTablas order by Id_Tabla,Codigo,Fecha");
  }
  int Guardar(const std::string& codigo, const std::string& valor, base::Date fecha, bool sumado = false) {
    int registros = -1;
    formula::GuardarValorTablaUsuario(sesion, 5, codigo, valor, fecha, sumado, false, &registros);
    return registros;
  }

  ports::FixedClock reloj{base::MakeDate(2024, 8, 15)};
  prueba::AvisosDePrueba avisos;
  sesion::DbSession sesion;
  formula::Evaluador ev;
};

// Products of tables that never end. The evaluation has no value then, and the next one is as before.
TEST_F(EnMotor, AQueryWithoutEndIsInterruptedAndSoIsItsFormula) {
  std::string tablas = "Conceptos C0";
  for (int i = 1; i < 20; ++i) tablas += ", Conceptos C" + std::to_string(i);
  for (const std::string& consulta : std::vector<std::string>{
           "SQL(CAMPO COUNT(*) EN " + tablas + ")", "8+SQL(CAMPO COUNT(*) EN " + tablas + ")",
           "[LISTA(CAMPO C0.Codigo EN " + tablas + ";,)]",
           "SI(SQL(CAMPO COUNT(*) EN " + tablas + ")=0;1;2)"}) {
    avisos.cajas.clear();
    Evaluar(consulta);
    EXPECT_TRUE(ev.sin_valor) << consulta;
    ASSERT_NE(ev.agotado, nullptr) << consulta;
    EXPECT_EQ(std::string(ev.agotado).rfind("La consulta de la fórmula se interrumpió: ", 0), 0U)
        << ev.agotado;
    ASSERT_EQ(avisos.cajas.size(), 1U) << consulta;
    EXPECT_EQ(Evaluar("SQL(CAMPO COUNT(*) EN Conceptos)"), "3");
    EXPECT_EQ(ev.agotado, nullptr);
  }
}

// Each of them is quick; together they are not.
TEST_F(EnMotor, TheQueriesOfOneFormulaShareTheirLimit) {
  const std::string una =
      "+SQL(CAMPO COUNT(*) EN Conceptos A, Conceptos B, Conceptos C, Conceptos D, Conceptos E, "
      "Conceptos F, Conceptos G, Conceptos H, Conceptos I, Conceptos J)";
  EXPECT_EQ(Evaluar("0" + una), "59049");
  EXPECT_EQ(ev.agotado, nullptr);
  std::string muchas = "0";
  for (int i = 0; i < 1000; ++i) muchas += una;
  Evaluar(muchas);
  ASSERT_NE(ev.agotado, nullptr);
  EXPECT_STREQ(ev.agotado, "La consulta de la fórmula se interrumpió: da demasiado trabajo a la base");
}

TEST_F(EnMotor, AListHasAnEnd) {
  // 59,049 rows with a separator of 100 characters are more than a text of the evaluator may be.
  Evaluar(
      "LISTA(CAMPO A.Codigo EN Conceptos A, Conceptos B, Conceptos C, Conceptos D, Conceptos E, "
      "Conceptos F, Conceptos G, Conceptos H, Conceptos I, Conceptos J;" +
      std::string(100, '-') + ")");
  ASSERT_NE(ev.agotado, nullptr);
  EXPECT_STREQ(ev.agotado, "La consulta de la fórmula se interrumpió: su resultado es demasiado grande");
}

TEST_F(EnMotor, AnInterruptedQueryLosesNothingOfTheTransaction) {
  sesion.conexion->BeginTrans();
  sesion.conexion->Execute("Update CentroCosto set NombreCC='Cambiada' where idCC=12");
  std::string tablas = "CentroCosto C0";
  for (int i = 1; i < 40; ++i) tablas += ", CentroCosto C" + std::to_string(i);
  Evaluar("SQL(CAMPO COUNT(*) EN " + tablas + ")");
  EXPECT_NE(ev.agotado, nullptr);
  sesion.conexion->CommitTrans();
  EXPECT_EQ(Fila("select NombreCC from CentroCosto order by idCC"), "Obra Norte; Cambiada");
}

TEST_F(EnMotor, FormulaQueries) {
  EXPECT_EQ(Evaluar("SQL(CAMPO COUNT(*) EN Conceptos)"), "3");
  EXPECT_EQ(Evaluar("SQL(campo promedio(Factor) en Conceptos)"), "1,875");
  EXPECT_EQ(Evaluar("SQL(CAMPO Factor EN Conceptos SOLOSI Codigo='he')"), "2,25");
  EXPECT_EQ(Evaluar("SQL(CAMPO COUNT(*) EN Conceptos SOLOSI idEmpresa=3 Y (id_Concepto=1 O id_Concepto=2))"),
            "2");
  EXPECT_EQ(Evaluar("SQL(CAMPO COUNT(*) EN Conceptos SOLOSI NO TipoImpuesto)"), "2");
  EXPECT_EQ(Evaluar("SQL(CAMPO COUNT(*) EN Conceptos SOLOSI (NO TipoImpuesto) Y Factor>2)"), "1");
  EXPECT_EQ(Evaluar("SQL(CAMPO Factor COMO F EN Conceptos SOLOSI id_Concepto=1)"), "1,5");
  EXPECT_EQ(Evaluar("SQL(CAMPO Desde EN Conceptos SOLOSI id_Concepto=1)"), "45323");
  EXPECT_EQ(Evaluar("2*SQL(CAMPO COUNT(*) EN Conceptos)+1"), "7");
  EXPECT_EQ(Evaluar("LISTA(CAMPO Codigo EN Conceptos ORDER BY Codigo;,)"), "HC,HE,IRP");
  EXPECT_EQ(Evaluar("LISTA(CAMPO Codigo,Factor EN Conceptos ORDER BY Codigo;/)"), "HC1,5/HE2,25/IRP");
  EXPECT_EQ(Evaluar("EVAL(HE ENLIST LISTA(CAMPO Codigo EN Conceptos;,))"), "1");
  EXPECT_TRUE(avisos.cajas.empty());
}

TEST_F(EnMotor, FormulaQueriesThatFail) {
  EXPECT_EQ(Evaluar("SQL(CAMPO Factor EN Conceptos SOLOSI id_Concepto=3)"), "0");   // Null
  EXPECT_EQ(Evaluar("SQL(CAMPO Factor EN Conceptos SOLOSI id_Concepto=99)"), "0");  // no row
  EXPECT_EQ(Evaluar("SQL(CAMPO Nombre EN Conceptos)"), "0");                        // no number
  EXPECT_EQ(Evaluar("SQL(CAMPO X EN NoHay)"), "0");
  EXPECT_EQ(Evaluar("SQL(nada de esto)"), "0");
  EXPECT_EQ(Evaluar("SQL()"), "0");
  EXPECT_EQ(Evaluar("LISTA(CAMPO X EN NoHay;,)"), "");
  EXPECT_TRUE(avisos.cajas.empty());
}

TEST_F(EnMotor, AFormulaNeverWrites) {
  const std::string antes = Fila("select * from Conceptos order by id_Concepto");
  for (const char* sql : {"DELETE FROM Conceptos", "DELETE * FROM Conceptos", "UPDATE Conceptos SET Factor=9",
                          "INSERT INTO Conceptos VALUES (3,9,'X','X',1,False,Null)", "DROP TABLE Conceptos",
                          "CREATE TABLE Nueva (a LONG)", "ALTER TABLE Conceptos ADD COLUMN z LONG",
                          "INSERT INTO Conceptos CAMPO * EN Conceptos"}) {
    EXPECT_EQ(Evaluar("SQL(" + std::string(sql) + ")"), "0") << sql;
    EXPECT_EQ(Evaluar("LISTA(" + std::string(sql) + ";,)"), "") << sql;
  }
  // Two statements are none; in a list the second is only its separator.
  EXPECT_EQ(Evaluar("SQL(CAMPO 1; DELETE FROM Conceptos)"), "0");
  EXPECT_EQ(Evaluar("LISTA(CAMPO 1; DELETE FROM Conceptos)"), "1");
  EXPECT_EQ(Fila("select * from Conceptos order by id_Concepto"), antes);
  EXPECT_THROW(sesion.conexion->Query("select * from Nueva"), db::Error);
}

TEST_F(EnMotor, Lists) {
  formula::ListControl combo;
  EXPECT_EQ(formula::LlenarLista(combo, "CentroCosto", "++idCC,NombreCC", "", " - ", nullptr, sesion), 0);
  ASSERT_EQ(combo.items.size(), 2U);
  EXPECT_EQ(combo.items[0].texto, "2 - Obra Norte");
  EXPECT_EQ(combo.items[1].dato, 12);
  formula::Vector tabla;
  EXPECT_EQ(formula::LlenarLista(combo,
                                 "Select id_Concepto & '*' & Nombre as Datos, Nombre, Codigo From Conceptos "
                                 "Order by Codigo Desc",
                                 "Datos,Codigo,Nombre", "Not TipoImpuesto", " - ", &tabla, sesion),
            0);
  ASSERT_EQ(combo.items.size(), 2U);
  EXPECT_EQ(combo.items[0].texto, "HE - Horas Extras");
  EXPECT_EQ(combo.items[0].dato, 2);
  EXPECT_EQ(formula::UnirVector(tabla, -1, "|", ";"), "2|Horas Extras;1|Horas Comunes");
  EXPECT_EQ(formula::LlenarLista(combo, "NoHay", "a", "", " - ", &tabla, sesion), -1);
  EXPECT_TRUE(combo.items.empty());
}

// The field that may hold anything is what stands between those before it and those after it.
TEST(FormaDeRegistro, TheFreeFieldTakesTheStars) {
  const auto partido = [](const char* valor, formula::FormaDeRegistro forma) {
    formula::Vector tabla;
    formula::AgregarRegistro(tabla, valor, forma);
    EXPECT_EQ(tabla.dimensiones, 2);
    return formula::UnirVector(tabla, -1, "|", ";");
  };
  const formula::FormaDeRegistro concepto{.campos = 5, .libre = 1};
  EXPECT_EQ(partido("7*Horas*3*S*0", concepto), "7|Horas|3|S|0");
  EXPECT_EQ(partido("7*Horas *50*3*S*0", concepto), "7|Horas *50|3|S|0");
  EXPECT_EQ(partido("7*^**a**2*T*1", concepto), "7|^**a*|2|T|1");
  EXPECT_EQ(partido("7*Horas", concepto), "7|Horas");
  EXPECT_EQ(partido("a*b*c", {.campos = 2, .libre = 0}), "a*b|c");
  EXPECT_EQ(partido("a*b*c", {.campos = 2, .libre = 1}), "a|b*c");
}

TEST_F(EnMotor, AListsRecordsMayHaveAFreeField) {
  formula::ListControl combo;
  formula::Vector tabla;
  const formula::FormaDeRegistro forma{.campos = 2, .libre = 1};
  formula::LlenarLista(combo, "Select '7*a*b' as Datos, 'x' as Codigo", "Datos,Codigo", "", " - ", &tabla,
                       sesion, nullptr, &forma);
  EXPECT_EQ(formula::UnirVector(tabla, -1, "|", ";"), "7|a*b");
  // Without a vector there is nothing to cut.
  formula::LlenarLista(combo, "Select '7*a*b' as Datos", "Datos", "", " - ", nullptr, sesion, nullptr,
                       &forma);
  ASSERT_EQ(combo.items.size(), 1U);
  EXPECT_EQ(combo.items[0].texto, "7*a*b");
}

// Filled anew it has nothing chosen; what is added leaves the choice.
TEST_F(EnMotor, AListFilledAnewHasNothingChosen) {
  formula::ListControl combo;
  combo.ListIndex = 1;
  formula::LlenarLista(combo, "CentroCosto", "++idCC", "", " - ", nullptr, sesion);
  EXPECT_EQ(combo.ListIndex, 1);
  formula::LlenarLista(combo, "CentroCosto", "idCC", "", " - ", nullptr, sesion);
  EXPECT_EQ(combo.ListIndex, -1);
}

TEST_F(EnMotor, WhyAListWasNotFilledIsNoted) {
  formula::ListControl combo;
  const auto motivo = [&](const char* tabla, const char* campos) {
    base::ErrorSink errores;
    EXPECT_EQ(formula::LlenarLista(combo, tabla, campos, "", " - ", nullptr, sesion, &errores), -1);
    return errores.size() == 1 ? errores.front().description : "not noted once";
  };
  EXPECT_EQ(motivo("Select idCC From CentroCosto", "idCC,[NombreCC]"),
            "La consulta no devolvió la columna NombreCC.");
  sesion.conexion->Close();
  EXPECT_EQ(motivo("CentroCosto", "idCC"), "La Base no está Abierta");
}

TEST_F(EnMotor, UserTablesAreWrittenByDate) {
  EXPECT_EQ(Guardar("101", "8.5", base::MakeDate(2024, 6, 1)), 1);
  EXPECT_EQ(Guardar("101", "7", base::MakeDate(2024, 1, 1)), 2);
  EXPECT_EQ(Guardar("101", "6", {}), 3);
  EXPECT_EQ(Guardar("102", "a*b'c", base::MakeDate(2024, 1, 1)), 1);
  EXPECT_EQ(Valores(),
            "3|5|101|6|NULL; 2|5|101|7|2024-01-01; 1|5|101|8.5|2024-06-01; 4|5|102|a*b'c|2024-01-01");
  // The same date: replaced, its number kept; other codes untouched.
  EXPECT_EQ(Guardar("101", "7.5", base::MakeDate(2024, 1, 1)), 3);
  EXPECT_EQ(Guardar("101", "208.1", {}, true), 3);
  EXPECT_EQ(Valores(),
            "3|5|101|8.1|NULL; 2|5|101|7.5|2024-01-01; 1|5|101|8.5|2024-06-01; 4|5|102|a*b'c|2024-01-01");
}

TEST_F(EnMotor, AClosingZeroReplacesNothing) {
  const auto cerrar = [&](base::Date fecha) {
    return formula::CerrarValorTablaUsuario(sesion, 5, "101", fecha);
  };
  Guardar("101", "7", base::MakeDate(2024, 1, 1));
  sesion.conexion->Execute("Insert into DatosUsuTablas values (3,2,5,'101','8',#06/01/2024 12:00:00#)");
  EXPECT_FALSE(cerrar(base::MakeDate(2024, 1, 1)));
  EXPECT_FALSE(cerrar(base::MakeDate(2024, 6, 1)));
  EXPECT_TRUE(cerrar(base::MakeDate(2024, 7, 1)));
  EXPECT_FALSE(cerrar(base::MakeDate(2024, 7, 1)));
  EXPECT_EQ(Valores(), "1|5|101|7|2024-01-01; 2|5|101|8|2024-06-01; 3|5|101|0|2024-07-01");
  sesion.conexion->Close();
  try {
    cerrar({});
    FAIL() << "written";
  } catch (const db::Error& e) {
    EXPECT_EQ(e.Description(), "No se ha conectado con la base de datos");
  }
}

TEST_F(EnMotor, AnEmptyValueRemovesTheOneBefore) {
  Guardar("101", "6", {});
  Guardar("101", "7", base::MakeDate(2024, 1, 1));
  Guardar("101", "8", base::MakeDate(2024, 6, 1));
  // Not the one of the date itself, but the latest before it.
  EXPECT_EQ(Guardar("101", "", base::MakeDate(2024, 6, 1)), 2);
  EXPECT_EQ(Valores(), "1|5|101|6|NULL; 3|5|101|8|2024-06-01");
  EXPECT_EQ(Guardar("101", "", base::MakeDate(2020, 1, 1)), 1);
  EXPECT_EQ(Valores(), "3|5|101|8|2024-06-01");
  EXPECT_EQ(Guardar("101", "", base::MakeDate(2020, 1, 1)), 1);
}

TEST_F(EnMotor, UserTablesAreLoadedByCompany) {
  formula::TablasUsuario tablas;
  tablas.CargarTablasUsuario(sesion, -1);
  EXPECT_EQ(tablas.Cantidad(), 0U);
  Guardar("101", "8", base::MakeDate(2024, 6, 1));
  Guardar("101", "7", {});
  sesion.conexion->Execute("Insert into DatosUsuTablas values (3,90,6,Null,Null,Null)");
  sesion.conexion->Execute("Insert into DatosUsuTablas values (4,91,7,'101','9',Null)");
  tablas.CargarTablasUsuario(sesion, -1);
  EXPECT_EQ(tablas.Cantidad(), 3U);
  EXPECT_EQ(formula::UnirVector(tablas.Serie(5, "101"), -1, "|", "; "),
            "2|5|101|7|30/12/1899; 1|5|101|8|01/06/2024");
  EXPECT_TRUE(tablas.TieneValores(6, "-1"));
  EXPECT_EQ(tablas.Tipo(5), 3);
  EXPECT_EQ(tablas.Tipo(6), 1);
  tablas.CargarTablasUsuario(sesion, 6);
  EXPECT_EQ(tablas.Cantidad(), 1U);
  EXPECT_FALSE(tablas.TieneValores(5, "101"));
}

TEST_F(EnMotor, WithoutAConnection) {
  sesion.conexion.reset();
  formula::TablasUsuario tablas;
  try {
    tablas.CargarTablasUsuario(sesion, -1);
    FAIL() << "loaded";
  } catch (const base::Error& e) {
    EXPECT_EQ(e.Source(), "Error al cargar Valores de Tablas de Usuarios");
    EXPECT_EQ(e.Description(), "No se ha conectado con la base de datos");
  }
  EXPECT_THROW(Guardar("101", "8", {}), db::Error);
  EXPECT_EQ(Evaluar("SQL(CAMPO COUNT(*) EN Conceptos)"), "0");
  formula::ListControl combo;
  EXPECT_EQ(formula::LlenarLista(combo, "CentroCosto", "idCC", "", " - ", nullptr, sesion), -1);
}

TEST_F(EnMotor, EveryStatementRuns) {
  for (const auto& sql : {formula::sql::CargarTablas(3, -1), formula::sql::CargarTablas(3, 5),
                          formula::sql::Serie(3, 5, "O'Brien")})
    EXPECT_NO_THROW(sesion.conexion->Query(sql)) << sql;
  for (const auto& sql :
       {formula::sql::InsertarValor(3, "1", "5", "O'Brien", "a'b", {}),
        formula::sql::InsertarValor(3, "2", "5", "O'Brien", "a'b", base::MakeDate(2024, 12, 31)),
        formula::sql::BorrarAnterior(3, 5, "O'Brien", base::MakeDate(2025, 1, 1)),
        formula::sql::BorrarSerie(3, 5, "O'Brien")}) {
    EXPECT_NO_THROW(sesion.conexion->Execute(sql)) << sql;
    EXPECT_EQ(sesion.conexion->AffectedRows(), 1) << sql;
  }
  EXPECT_EQ(Valores(), "");
}

}  // namespace
