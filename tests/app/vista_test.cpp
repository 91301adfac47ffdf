#include "app/vista.h"

#include "app/banco.h"
#include "app/carpeta_ajustes.h"
#include "base/file.h"
#include "support/environment.h"

namespace {

TEST(Celdas, EachColumnShowsItsField) {
  constexpr std::pair<const char*, int> kColumnas[] = {{"Id", 0},
                                                       {"Nombre", 1},
                                                       {"Apellido", 2},
                                                       {"Horas", 3},
                                                       {"Tipo", 4},
                                                       {"A_Realizar", 5},
                                                       {"DatoExtra", 8},
                                                       {"CC", 12},
                                                       {"NomConcVinc", 13},
                                                       {"Valor", 14},
                                                       {"Resultado", -1},
                                                       {"", -1},
                                                       {"Vinculado Con:", -1}};
  for (const auto& [nombre, campo] : kColumnas) EXPECT_EQ(app::CampoDeColumna(nombre), campo) << nombre;
}

importfile::ImportRow Fila(const char* tipo, const char* resultado) {
  importfile::ImportRow fila;
  fila.campo[importfile::kTipo] = tipo;
  fila.resultado = resultado;
  return fila;
}

TEST(Estilos, ALinesRelationOrOtras) {
  relations::CodeRelations relaciones;
  relaciones.Reemplazar("HC*65535*,HC,01,*7*Horas*0\r\nHE*65280*,HE,01,*2*Extras*0");
  const auto estilo = [&](const char* tipo, const char* resultado) {
    return app::EstiloDeRelacion(relaciones, app::RelacionDeEstilo(relaciones, Fila(tipo, resultado))).nombre;
  };
  EXPECT_EQ(estilo("HE", ""), "_HE");
  EXPECT_EQ(estilo("01", ""), "_HC") << "the first relation of the code";
  EXPECT_EQ(estilo("HE", "OK"), "_HE");
  EXPECT_EQ(estilo("HE", "ok"), "Otras");
  EXPECT_EQ(estilo("HE", "La Persona no existe"), "Otras");
  EXPECT_EQ(estilo("he", ""), "Otras") << "letter case counts";
  EXPECT_EQ(estilo("", ""), "Otras");
}

TEST(Estilos, ColoursAndTheTextOnThem) {
  relations::CodeRelations relaciones;
  relaciones.Reemplazar(
      "A*65535*,A,*1*x*0\r\nB*8388608*,B,*1*x*0\r\nC*4294967295*,C,*1*x*0\r\nD*nada*,D,*1*x*0");
  EXPECT_EQ(app::EstiloDeRelacion(relaciones, 0), (app::EstiloDeFila{"_A", 0x00FFFF, 0x000000}));
  EXPECT_EQ(app::EstiloDeRelacion(relaciones, 1), (app::EstiloDeFila{"_B", 0x800000, 0xFFFFFF}));
  EXPECT_EQ(app::EstiloDeRelacion(relaciones, 3), (app::EstiloDeFila{"_D", 0x000000, 0xFFFFFF}));
  const app::EstiloDeFila otras = app::EstiloDeRelacion(relaciones, -1);
  EXPECT_EQ(otras.fondo & 0xFF, 0xFF) << "light red";
  EXPECT_GT((otras.fondo >> 8) & 0xFF, 0xC0);
  EXPECT_LT(otras.texto & 0xFF, 0x50) << "dark";
}

TEST(Estilos, BlackOrWhiteWhicheverReadsBetter) {
  EXPECT_EQ(app::TextoSobre(0xFFFFFF), 0x000000);
  EXPECT_EQ(app::TextoSobre(0x000000), 0xFFFFFF);
  EXPECT_EQ(app::TextoSobre(0x00FF00), 0x000000);
  EXPECT_EQ(app::TextoSobre(0xFF0000), 0xFFFFFF) << "blue: the byte order is that of Windows";
  EXPECT_EQ(app::TextoSobre(0x0000FF), 0x000000) << "red: 5.3 to 1 in black, 4.0 in white";
  EXPECT_EQ(app::TextoSobre(0x808080), 0x000000);
  EXPECT_EQ(app::TextoSobre(0x606060), 0xFFFFFF);
}

TEST(Cuentas, OfALoadAndAnImport) {
  app::Estado e;
  e.lineas = 6;
  e.filas = {Fila("A", ""), Fila("B", "OK"), Fila("C", "no")};
  e.aparte.resize(3);
  e.aparte[1].mal_formada = true;
  EXPECT_EQ(app::Contar(e), (app::Cuentas{6, 3, 2, 1, 1, 1}));
  EXPECT_EQ(app::Contar(app::Estado{}), app::Cuentas{});
}

TEST(Totales, TheCataloguesNameGoesBeforeTheRelations) {
  app::Estado e;
  e.conceptos.tabla.dimensiones = 2;
  e.conceptos.tabla.registros = {{"7", "Horas Comunes", "3", "S", "0"}};
  liquidation::TotalConcepto total;
  total.concepto = 7;
  total.nombre = "de la relación";
  EXPECT_EQ(app::NombreDeTotal(e, total), "Horas Comunes");
  total.concepto = 8;
  EXPECT_EQ(app::NombreDeTotal(e, total), "de la relación");
}

TEST(Carpeta, TheVariableGoesBeforeTheProgramsFolder) {
  support::EnvironmentVariable variable("IMPORTDEMARCAS_CARPETA", "/una/carpeta");
  EXPECT_EQ(app::CarpetaDeAjustes(), "/una/carpeta");
  variable.Set(std::nullopt);
  const std::string programa = base::ProgramFolder();
  EXPECT_EQ(app::CarpetaDeAjustes(), base::IsWritableFolder(programa) ? programa : base::UserConfigFolder());
}

// A window looks at these numbers to know what to draw anew.
class Revisiones : public prueba::Banco {
 protected:
  void SetUp() override {
    Banco::SetUp();
    Demo();
    ASSERT_TRUE(Crear().Iniciar(demo_.referencia));
    Escribir("x.txt", "1;1;8\r\n2;1;9");
    programa_->Archivo().txtRuta_Change(Ruta("x.txt"));
    programa_->Archivo().OptFiltro_Click(0);
    programa_->Lineas().CargarDatos();
  }
  const app::Revisiones& R() const { return programa_->Ver().revision; }
};

TEST_F(Revisiones, RowsWhenTheyAreLoadedSortedOrImported) {
  unsigned antes = R().filas;
  programa_->Lineas().CargarDatos();
  EXPECT_EQ(R().filas, antes + 1);
  programa_->Lineas().GridAImportar_HeadClick("Horas");
  EXPECT_EQ(R().filas, antes + 2);
  programa_->Lineas().GridAImportar_HeadClick("Resultado");
  EXPECT_EQ(R().filas, antes + 2);
  programa_->Importador().Importar(true);
  EXPECT_EQ(R().filas, antes + 3);
  antes = R().filas;
  cajas_.esperadas = {"El Archivo 'no' no existe"};
  programa_->Archivo().txtRuta_Change("no");
  programa_->Lineas().CargarDatos();
  EXPECT_EQ(R().filas, antes) << "refused: the rows are the same";
}

TEST_F(Revisiones, ListsAndRelations) {
  app::Revisiones antes = R();
  programa_->Opciones().chkImportarCuotas_Click(false);
  EXPECT_GT(R().conceptos, antes.conceptos);
  antes = R();
  programa_->Opciones().chkConCC_Click(true);
  EXPECT_GT(R().tipos, antes.tipos);
  EXPECT_EQ(R().relaciones, antes.relaciones);
  programa_->Relaciones().cbAgrQuit_Click(1);
  EXPECT_EQ(R().relaciones, antes.relaciones + 1);
  programa_->Relaciones().cbAgrQuit_Click(0);
  EXPECT_EQ(R().relaciones, antes.relaciones + 2);
  programa_->Opciones().chkVincAutConOrsa_Click(true);
  EXPECT_EQ(R().relaciones, antes.relaciones + 3);
  antes = R();
  programa_->Formato().optTipoArch_Click(1);
  EXPECT_EQ(R().previa, antes.previa + 1);
  EXPECT_EQ(R().filas, antes.filas);
}

TEST_F(Revisiones, TheTaskUnderWay) {
  std::vector<app::Tarea> vistas;
  programa_->AlCambiar([&] {
    if (vistas.empty() || vistas.back() != programa_->Ver().tarea) vistas.push_back(programa_->Ver().tarea);
  });
  programa_->Lineas().CargarDatos();
  programa_->Importador().Importar(true);
  EXPECT_EQ(vistas, (std::vector{app::Tarea::Carga, app::Tarea::Ninguna, app::Tarea::Importacion,
                                 app::Tarea::Ninguna}));
}

}  // namespace
