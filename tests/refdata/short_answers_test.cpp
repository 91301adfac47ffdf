// A driver of another program may answer with less than it was asked for.
#include <gtest/gtest.h>

#include "base/text.h"
#include "refdata/base_de_prueba.h"
#include "refdata/liquidation_types.h"
#include "refdata/persons_index.h"

namespace {

// Runs `otra` in the place of the statement that starts as told.
class ConexionQueRecorta final : public db::Connection {
 public:
  ConexionQueRecorta(std::unique_ptr<db::Connection> motor, std::string comienzo, std::string otra)
      : motor_(std::move(motor)), comienzo_(std::move(comienzo)), otra_(std::move(otra)) {}

  bool IsOpen() const override { return motor_->IsOpen(); }
  void Close() override { motor_->Close(); }
  db::Recordset Execute(std::string_view sql) override {
    return motor_->Execute(base::StartsWith(sql, comienzo_) ? std::string_view(otra_) : sql);
  }
  db::Recordset Query(std::string_view sql) override { return motor_->Query(sql); }
  std::int64_t AffectedRows() const override { return motor_->AffectedRows(); }
  void BeginTrans() override { motor_->BeginTrans(); }
  void CommitTrans() override { motor_->CommitTrans(); }
  void RollbackTrans() override { motor_->RollbackTrans(); }
  bool InTransaction() const override { return motor_->InTransaction(); }
  void SetSavepoint() override { motor_->SetSavepoint(); }
  void RollbackToSavepoint() override { motor_->RollbackToSavepoint(); }
  void ReleaseSavepoint() override { motor_->ReleaseSavepoint(); }

 private:
  std::unique_ptr<db::Connection> motor_;
  std::string comienzo_, otra_;
};

class RespuestaCorta : public ::testing::Test {
 protected:
  void Recortar(std::string comienzo, std::string otra) {
    base_.sesion.conexion = std::make_unique<ConexionQueRecorta>(std::move(base_.sesion.conexion),
                                                                 std::move(comienzo), std::move(otra));
  }
  refdata::LiquidationTypes Tipos() {
    refdata::LiquidationTypes tipos;
    refdata::CargarTiposLiquidacion(base_.sesion, base_.opciones, tipos, &base_.errores);
    return tipos;
  }

  support::BaseDePrueba base_;
};

TEST_F(RespuestaCorta, ContractsWithoutAllTheirColumnsAreNotRead) {
  Recortar("Select id_Contrato", "Select 1 as id_Contrato, 2 as Numero_Alternativo");
  refdata::PersonsIndex personas;
  refdata::CargarVecDePersonas(base_.sesion, base::MakeDate(2024, 6, 1), personas, base_.prompts,
                               &base_.errores);
  EXPECT_EQ(personas.Cantidad(), 0u);
  EXPECT_EQ(personas.motivo_fallo, "La consulta de los contratos no devolvió todas sus columnas.");
}

TEST_F(RespuestaCorta, TypesWithoutTheirConditionNameTheColumn) {
  Recortar("Select T.id_TipoLiq", "Select 1 as id_TipoLiq, True as Salarial");
  const auto tipos = Tipos();
  EXPECT_EQ(tipos.TypeCondition, "");
  EXPECT_EQ(tipos.motivo_fallo, "Falta la columna Cond");
}

TEST_F(RespuestaCorta, GroupsOfTypesNeedTheirThirdColumn) {
  Recortar("Select Distinct", "Select 1 as a, 2 as b");
  const auto tipos = Tipos();
  EXPECT_TRUE(tipos.cmbLiquidaciones.items.empty());
  EXPECT_EQ(tipos.motivo_fallo, "La consulta no devolvió todas sus columnas.");
}

TEST_F(RespuestaCorta, AnIdentifierThatIsTooLargeIsNamed) {
  Recortar("Select Distinct", "Select 1E16 as a, 2 as b, 'x' as c");
  EXPECT_EQ(Tipos().motivo_fallo, "El identificador 1E+16 es demasiado grande");
}

TEST_F(RespuestaCorta, CalendarDatesAreDates) {
  Recortar("Select CL.*", "Select 3 as id_TipoLiq, Null as CondCalLiq, #02/01/2024# as Fecha");
  EXPECT_EQ(Tipos().CalendarCondition, "([Consulta].id_TipoLiq=3 and [Consulta].Fecha in (#02/01/2024#) )");
}

}  // namespace
