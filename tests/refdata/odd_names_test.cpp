// Whatever the name of a concept holds, its kind, operation and instalment are its own.
#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

#include "base/text.h"
#include "refdata/base_de_prueba.h"
#include "refdata/concepts_catalogue.h"

namespace {

std::string NombreDificil(std::mt19937& azar) {
  static const std::vector<std::string> kPiezas{"*", "**", "^", "XR3", "\r\n", "\n",  "*3*S*0", "*0*T*0",
                                                "7", "ñ",  "'", " ",   ",",    " - ", "",       "Horas"};
  std::string nombre;
  for (auto n = azar() % 5; n > 0; --n) nombre += kPiezas[azar() % kPiezas.size()];
  return nombre;
}

TEST(OddNames, LeaveTheOtherFieldsOfTheCatalogueAlone) {
  std::mt19937 azar(20240615);
  support::BaseDePrueba base;
  base.opciones.SoloDatosDeRel = false;
  base.opciones.ImportarCuotas = true;
  std::vector<std::vector<std::string>> debe;
  for (int id = 1; id <= 300; ++id) {
    const std::string nombre = NombreDificil(azar),
                      tipo = std::vector<std::string>{"2", "3", "5"}[azar() % 3],
                      operacion = azar() % 2 == 0 ? "S" : "R", cuota = azar() % 2 == 0 ? "0" : "1",
                      orden = std::to_string(1000 + id);
    const std::string entre_comillas = "'" + base::EscapeQuotes(nombre) + "'";
    base.conexion->Execute(
        "Insert into Conceptos "
        "(idEmpresa,id_Concepto,Codigo,Nombre,TipoDato,TipoOperacion,TipoCuota,TipoImpuesto) Values (1," +
        std::to_string(id) + ",'" + orden + "'," + entre_comillas + "," + tipo + ",'" + operacion + "'," +
        cuota + ",False)");
    debe.push_back({std::to_string(id), nombre, tipo, operacion, cuota});
  }
  refdata::ConceptsCatalogue catalogo;
  refdata::ActuLSTdeConceptos(base.sesion, base.opciones, catalogo);
  ASSERT_EQ(catalogo.motivo_fallo, "");
  ASSERT_EQ(catalogo.tabla.registros, debe);
  for (std::size_t i = 0; i < debe.size(); ++i) {
    EXPECT_EQ(catalogo.Buscar(debe[i][0]), static_cast<int>(i));
    EXPECT_EQ(std::to_string(catalogo.cmbConceptos.items[i].dato), debe[i][0]);
  }
}

}  // namespace
