// The import, and the window beside the command line.
#include <sstream>

#include "app/conector.h"
#include "base/csv.h"
#include "base/text.h"
#include "cli/lineas_de_comandos.h"
#include "cli/salida.h"
#include "gui/banco_gui.h"

namespace {

class Importar : public prueba::Ventana {
 protected:
  void SetUp() override {
    Ventana::SetUp();
    AbrirCargada();
  }
};

TEST_F(Importar, NoChangesNothing) {
  const std::string antes = Consulta("Select Count(*) From Datos_Liquidacion");
  cajas_.respuestas = {false};
  Pulsar("cbImportar");
  ASSERT_EQ(cajas_.preguntas.size(), 1U);
  EXPECT_EQ(cajas_.preguntas[0],
            "Asegúrese que el mes que esta marcado para importar los datos (10 - 2026), es el correcto.\r\n"
            "Se importarán los datos en las liquidaciones de tipo 'SUELDOS'\r\n"
            "¿Confirma importar los datos?");
  EXPECT_EQ(Consulta("Select Count(*) From Datos_Liquidacion"), antes);
  EXPECT_FALSE(SeVe(Grilla("GridAImportar"), "Resultado"));
  EXPECT_EQ(gui::A(Hallar<QLabel>("lblCuenta_importadas")->text()), "–");
}

TEST_F(Importar, YesShowsWhatBecameOfEachLine) {
  cajas_.respuestas = {true};
  Pulsar("cbImportar");
  const QTableView* g = Grilla("GridAImportar");
  EXPECT_TRUE(SeVe(g, "Resultado"));
  int bien = 0, mal = 0;
  for (int i = 0; i < g->model()->rowCount(); ++i) {
    const std::string resultado = Celda(g, i, "Resultado"),
                      estilo = gui::A(g->model()->index(i, 0).data(gui::kEstiloDeFila).toString());
    ASSERT_NE(resultado, "");
    if (resultado == "OK") {
      ++bien;
      EXPECT_EQ(estilo[0], '_') << i;
    } else {
      ++mal;
      EXPECT_EQ(estilo, "Otras") << i;
      EXPECT_EQ(gui::A(g->model()->index(i, Columna(g, "Resultado")).data(Qt::ToolTipRole).toString()),
                resultado);
    }
  }
  EXPECT_EQ(bien + mal, 53);
  EXPECT_GT(mal, 0);
  EXPECT_EQ(gui::A(Hallar<QLabel>("lblCuenta_importadas")->text()), std::to_string(bien));
  EXPECT_EQ(gui::A(Hallar<QLabel>("lblCuenta_rechazadas")->text()), std::to_string(mal));
  const auto* totales = static_cast<gui::ListaDeTotales*>(Hallar<QWidget>("totales"));
  EXPECT_EQ(static_cast<std::size_t>(totales->Totales().size()), programa_->Ver().importacion.totales.size());
  EXPECT_FALSE(totales->Totales().isEmpty());
  // Other rows, other counts.
  cajas_.esperadas = {"Formato incorrecto en la linea 45"};
  Pulsar("cbActualizar");
  EXPECT_EQ(gui::A(Hallar<QLabel>("lblCuenta_importadas")->text()), "–");
  EXPECT_TRUE(totales->Totales().isEmpty());
  EXPECT_TRUE(SeVe(g, "Resultado"));
}

TEST_F(Importar, WhileItRunsTheWindowSaysSo) {
  std::vector<std::string> vistos;
  bool dentro = false;
  cajas_.respuestas = {true};
  // The bar is painted by the import itself: events are not run.
  const auto pintar = programa_->BarraDeProgreso().al_pintar;
  programa_->BarraDeProgreso().al_pintar = [&] {
    pintar();
    vistos.push_back(gui::A(Hallar<QLabel>("lblEstado")->text()));
    if (dentro) return;
    dentro = true;
    EXPECT_FALSE(Hallar<QPushButton>("cbImportar")->isEnabled());
    programa_->Importador().cbImportar_Click(1);  // ignored: no question
  };
  Pulsar("cbImportar");
  ASSERT_GT(vistos.size(), 10U);
  EXPECT_EQ(vistos.front(), "Leyendo lo que hay en el mes…");
  EXPECT_TRUE(std::any_of(vistos.begin(), vistos.end(), [](const std::string& v) {
    return v.starts_with("Importando… 5") && v.ends_with(" %");
  }));
  EXPECT_NE(std::find(vistos.begin(), vistos.end(), "Guardando…"), vistos.end());
  EXPECT_TRUE(dentro);
  EXPECT_EQ(cajas_.preguntas.size(), 1U);
  EXPECT_TRUE(Hallar<QPushButton>("cbImportar")->isEnabled());
  EXPECT_EQ(Hallar<QLabel>("lblEstado")->text(), QString());
}

TEST_F(Importar, TheChosenTypeIsAskedAboutAndUsed) {
  Combo("cmbLiquidaciones")->setCurrentIndex(1);
  const std::string texto = gui::A(Combo("cmbLiquidaciones")->currentText());
  cajas_.respuestas = {false};
  Pulsar("cbImportar");
  const std::string nombre = base::UpperCase(base::Trim(texto.substr(texto.find('-') + 1)));
  EXPECT_NE(cajas_.preguntas[0].find("de tipo '" + nombre + "'"), std::string::npos) << cajas_.preguntas[0];
}

TEST_F(Importar, WithoutACentreByLineTheQuestionNamesTheChosenOne) {
  cajas_.esperadas = {};
  Tilde("chkConCC")->setChecked(false);
  Combo("cmbAgrupa")->setCurrentIndex(1);
  cajas_.respuestas = {false};
  Pulsar("cbImportar");
  EXPECT_NE(cajas_.preguntas[0].find("-> Asociado al Centro de Costo '"), std::string::npos)
      << cajas_.preguntas[0];
}

std::vector<std::string> FilasDeLaLineaDeComandos(const std::string& csv) {
  std::vector<std::string> filas;
  std::istringstream lineas(csv);
  std::string linea;
  std::getline(lineas, linea);  // headings
  while (std::getline(lineas, linea)) {
    const auto partes = base::Split(linea, ";");
    if (partes[1] != "importada" && partes[1] != "rechazada") continue;
    filas.push_back(linea.substr(partes[0].size() + partes[1].size() + 2));
  }
  std::sort(filas.begin(), filas.end());
  return filas;
}

// The whole demo through both faces, on a base each.
TEST_F(Importar, TheSameAsTheCommandLine) {
  cajas_.respuestas = {true};
  Pulsar("cbImportar");
  const QTableView* g = Grilla("GridAImportar");
  std::vector<std::string> de_la_ventana;
  for (int i = 0; i < g->model()->rowCount(); ++i) {
    std::string fila;
    for (const char* columna :
         {"Id", "Nombre", "Apellido", "Horas", "Valor", "Tipo", "NomConcVinc", "CC", "Resultado"}) {
      std::string celda = Celda(g, i, columna);
      // The operator sees quantities with ","; the command line writes them as they are spliced.
      if (columna == std::string_view("Horas")) std::replace(celda.begin(), celda.end(), ',', '.');
      fila += (fila.empty() ? "" : ";") + base::CsvCell(celda, ';');
    }
    de_la_ventana.push_back(fila);
  }
  std::sort(de_la_ventana.begin(), de_la_ventana.end());

  const app::CarpetaDemo otra = app::CrearCarpetaDemo(Ruta("otra"), kMes, reloj_);
  std::istringstream entrada;
  std::ostringstream salida, errores;
  const int codigo =
      cli::Ejecutar({"importar", "--base", otra.referencia, "--archivo", otra.archivo, "--mes", "2026-10",
                     "--ajustes", otra.ajustes, "--salida", "csv", "--hoy", "2026-10-20"},
                    "importdemarcas-cli", Ruta("otra"), {entrada, salida, errores});
  EXPECT_EQ(codigo, 1) << errores.str();
  EXPECT_EQ(de_la_ventana, FilasDeLaLineaDeComandos(salida.str()));
  EXPECT_EQ(de_la_ventana.size(), 53U);

  // And the same data in both bases.
  const auto datos = [](db::Connection& conexion) {
    std::string texto;
    for (const char* sql :
         {"Select * From Encabezados Order by id_Encabezado",
          "Select * From Datos_Liquidacion Order by id_Dato", "Select * From DatosUsuTablas Order by Id"}) {
      const db::Recordset rs = conexion.Query(sql);
      for (std::size_t fila = 0; fila < rs.Count(); ++fila) {
        for (std::size_t i = 0; i < rs.Fields().size(); ++i) texto += rs.At(i, fila).CsvText() + "|";
        texto += "\n";
      }
    }
    return texto;
  };
  const app::Conexion conexion = app::AbrirReferencia(otra.referencia, reloj_);
  ASSERT_NE(conexion.conexion, nullptr);
  const std::string de_la_otra = datos(*conexion.conexion);
  EXPECT_GT(de_la_otra.size(), 3000U);
  EXPECT_EQ(datos(*programa_->Sesion().conexion), de_la_otra);
}

}  // namespace
