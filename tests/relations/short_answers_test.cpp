// A driver of another program may answer with something else than it was asked for.
#include <gtest/gtest.h>

#include "relations/code_relations.h"
#include "settings/config_file.h"
#include "support/quiet_connection.h"

namespace {

using relations::CodeRelations;

// Answers every statement with the same rows of one column, or with none at all.
class ConexionDeUnaRespuesta final : public support::QuietConnection {
 public:
  explicit ConexionDeUnaRespuesta(std::vector<base::Value> filas) : filas_(std::move(filas)) {}

  db::Recordset Execute(std::string_view) override {
    if (filas_.empty()) return {};
    return {std::make_shared<db::Columns>(db::Columns{{"XXX", base::Type::Text}}), filas_};
  }

 private:
  std::vector<base::Value> filas_;
};

CodeRelations Levantadas(std::vector<base::Value> filas) {
  sesion::DbSession sesion;
  sesion.conexion = std::make_unique<ConexionDeUnaRespuesta>(std::move(filas));
  CodeRelations relaciones;
  relations::LevantarRelaciones(sesion, settings::Settings(),
                                settings::TextoConValor("", "TomaConceptosDeBD", "5"), relaciones);
  return relaciones;
}

TEST(RespuestaCorta, RelationsWithoutTheirColumnAreNotRead) {
  const CodeRelations relaciones = Levantadas({});
  EXPECT_TRUE(relaciones.carga_fallida);
  EXPECT_EQ(relaciones.motivo_fallo, "La consulta de las relaciones no devolvió su columna.");
}

// Without the places where a row is cut it is a line like those of the settings file.
TEST(RespuestaCorta, ARowWithoutColourOrListIsCutAtItsStars) {
  const CodeRelations relaciones = Levantadas({base::Value(std::string("HC*255*,07,*7*Horas*3"))});
  EXPECT_EQ(relaciones.motivo_fallo, "");
  EXPECT_EQ(relaciones.Texto(), "HC*255*,07,*7*Horas*3");
}

// An id that nothing follows is the end of a name.
TEST(RespuestaCorta, ANameMayEndInANumber) {
  const CodeRelations relaciones =
      Levantadas({base::Value(std::string("HC*16777215*,07,*7*Horas,*50")), base::Value(base::Null{})});
  EXPECT_EQ(relaciones.motivo_fallo, "");
  ASSERT_EQ(relaciones.Cantidad(), 2U);
  EXPECT_EQ(relaciones.Campo(relations::kConcepto, 0), "7");
  EXPECT_EQ(relaciones.Campo(relations::kNombre, 0), "Horas,*50");
  EXPECT_EQ(relaciones.Campo(relations::kCodigo, 1), "");
}

}  // namespace
