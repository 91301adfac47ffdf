// Whatever a code, a list or a name holds, a relation comes back as it was.
#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

#include "base/text.h"
#include "refdata/base_de_prueba.h"
#include "relations/code_relations.h"
#include "settings/config_file.h"
#include "support/escapes.h"
#include "support/temp_folder.h"

namespace {

using relations::CodeRelations;
using relations::Relacion;

// Pieces of what could cut, hide or move a field, with some that are harmless.
std::string TextoDificil(std::mt19937& azar) {
  static const std::vector<std::string> kPiezas{
      "*",   "**", "XR3", "XR", "XR0", "X",   "R",  "3",  "\r",          "\n",           "\r\n",
      "^",   ",",  ",*",  "*,", "7",   "*7*", "-1", " ",  "[Separador]", "[/Conceptos]", "[",
      "[x]", "HC", " - ", "ñ",  "'",   "|",   "]",  "\t", "*16777215*,", "16777215",     ""};
  std::string texto;
  for (auto n = azar() % 5; n > 0; --n) texto += kPiezas[azar() % kPiezas.size()];
  return texto;
}

std::string Mostrada(const CodeRelations& tabla) {
  std::string salida;
  for (const auto& registro : tabla.Tabla().registros) {
    for (const auto& campo : registro) salida += "<" + support::Escaped(campo) + ">";
    salida += '\n';
  }
  return salida;
}

CodeRelations TablaDificil(std::mt19937& azar) {
  CodeRelations tabla;
  for (auto n = 1 + azar() % 4; n > 0; --n) {
    Relacion relacion;
    for (auto& campo : relacion) campo = TextoDificil(azar);
    tabla.Agregar(relacion);
  }
  return tabla;
}

void EsperarIgual(const CodeRelations& tabla, std::string_view ajustes) {
  const sesion::DbSession sin_base;
  CodeRelations leida;
  const settings::Settings opciones = settings::LeerSettings(ajustes);
  relations::LevantarRelaciones(sin_base, opciones, ajustes, leida);
  ASSERT_EQ(Mostrada(leida), Mostrada(tabla)) << ajustes;
  ASSERT_EQ(leida.Grid(), tabla.Grid());
  ASSERT_EQ(opciones.Separador, " ") << "taken from inside a relation: " << ajustes;
}

TEST(OddTexts, AnyTableSavedInTheSettingsLoadsAsItWas) {
  std::mt19937 azar(20240615);
  for (int vez = 0; vez < 5000; ++vez) {
    const CodeRelations tabla = TablaDificil(azar);
    EsperarIgual(tabla, settings::TextoConSettings("", settings::Settings(), tabla.Texto()));
    if (HasFatalFailure()) return;
  }
}

TEST(OddTexts, SoItDoesThroughTheFile) {
  const support::TempFolder carpeta;
  const std::string ruta = settings::RutaDeAjustes(carpeta.Folder());
  std::mt19937 azar(5);
  for (int vez = 0; vez < 30; ++vez) {
    const CodeRelations tabla = TablaDificil(azar);
    ASSERT_TRUE(settings::GrabarConfig(ruta, "Conceptos", tabla.Texto()));
    EsperarIgual(tabla, settings::LeerAjustes(ruta).texto);
    if (HasFatalFailure()) return;
  }
}

// Nothing that could be saved before is written in another way now.
TEST(OddTexts, APlainTableIsSavedPlain) {
  CodeRelations tabla;
  tabla.Agregar(Relacion{"HE", "255", ",XR3,[50%],a b,", "2", "Horas XR Extras ^", "12"});
  EXPECT_EQ(tabla.Texto(), "HE*255*,XR3,[50%],a b,*2*Horas XR Extras ^*12");
}

// The embedded engine with one concept of that code and name.
struct UnConcepto {
  support::BaseDePrueba base;
  explicit UnConcepto(const std::string& codigo, const std::string& nombre) {
    base.conexion->Execute(
        "Insert into Conceptos "
        "(idEmpresa,id_Concepto,Codigo,Nombre,TipoDato,TipoOperacion,TipoCuota,TipoImpuesto) Values (1,7,'" +
        base::EscapeQuotes(codigo) + "','" + base::EscapeQuotes(nombre) + "',3,'S',0,False)");
  }
};

TEST(OddTexts, TheAutomaticLinkKeepsCodeAndNameOrRefuses) {
  std::mt19937 azar(7);
  int rechazadas = 0;
  for (int vez = 0; vez < 400; ++vez) {
    const std::string codigo = TextoDificil(azar).substr(0, 20), nombre = TextoDificil(azar);
    UnConcepto uno(codigo, nombre);
    uno.base.opciones.MismoCodigoDeOrsa = true;
    for (const bool numerico : {true, false}) {
      uno.base.opciones.CodTipoNumerico = numerico;
      CodeRelations leida, debe;
      relations::LevantarRelaciones(uno.base.sesion, uno.base.opciones, "", leida);
      if (leida.carga_fallida) {
        ++rechazadas;
        ASSERT_EQ(leida.Cantidad(), 0u);
        continue;
      }
      std::string lista(",");
      lista.append(numerico ? "7" : codigo).append(",");
      debe.Agregar(Relacion{codigo, "16777215", lista, "7", nombre, ""});
      ASSERT_EQ(Mostrada(leida), Mostrada(debe));
    }
  }
  EXPECT_LT(rechazadas, 8);
}

// Stored codes: what can be cut in one way alone is right, anything else is refused whole.
TEST(OddTexts, ExternalDataAreNeverCutWrong) {
  std::mt19937 azar(11);
  int leidas = 0, rechazadas = 0;
  for (int vez = 0; vez < 400; ++vez) {
    const std::string codigo = TextoDificil(azar).substr(0, 20), nombre = TextoDificil(azar),
                      codigos = TextoDificil(azar);
    UnConcepto uno(codigo, nombre);
    uno.base.conexion->Execute("Insert into DatExtDatos (idTDE,idLoc,idDE) Values (5,7,'" +
                               base::EscapeQuotes(codigos) + "')");
    CodeRelations leida, debe;
    relations::LevantarRelaciones(uno.base.sesion, uno.base.opciones,
                                  settings::TextoConValor("", "TomaConceptosDeBD", "5"), leida);
    if (leida.carga_fallida) {
      ++rechazadas;
      ASSERT_EQ(leida.Cantidad(), 0u);
      ASSERT_NE(leida.motivo_fallo, "");
      continue;
    }
    ++leidas;
    std::string lista(",");
    lista.append(codigos).append(",");
    debe.Agregar(Relacion{codigo, "16777215", lista, "7", nombre, ""});
    ASSERT_EQ(Mostrada(leida), Mostrada(debe));
  }
  EXPECT_GT(leidas, 300);
  EXPECT_GT(rechazadas, 0);
}

}  // namespace
