// The whole demo of October 2026. What is expected was worked out from the demo's tables and file, line by
// line and by other means than the program's.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>

#include "base/text.h"
#include "cli/codigos.h"
#include "mesa.h"
#include "support/source_dir.h"

namespace {

std::string Esperado(const std::string& nombre) {
  std::ifstream f(support::SourceDir() + "/tests/data/cli/" + nombre, std::ios::binary);
  if (!f) throw std::runtime_error("cannot read " + nombre);
  return {std::istreambuf_iterator<char>(f), std::istreambuf_iterator<char>()};
}

// The words of a command as a shell takes them apart, the program's name left out.
std::vector<std::string> Palabras(const std::string& orden) {
  std::vector<std::string> palabras;
  std::string palabra;
  char comilla = 0;
  bool empezada = false;
  for (std::size_t i = 0; i < orden.size(); ++i) {
    const char c = orden[i];
    if (comilla != 0) {
      if (c == comilla)
        comilla = 0;
      else
        palabra += c;
    } else if (c == '\'' || c == '"') {
      comilla = c;
      empezada = true;
    } else if (c == '\\' && i + 1 < orden.size()) {
      palabra += orden[++i];
    } else if (c == ' ') {
      if (empezada || !palabra.empty()) palabras.push_back(palabra);
      palabra.clear();
      empezada = false;
    } else {
      palabra += c;
    }
  }
  if (empezada || !palabra.empty()) palabras.push_back(palabra);
  palabras.erase(palabras.begin());
  return palabras;
}

std::string UltimaLinea(const std::string& texto) {
  const auto lineas = base::Split(texto, "\n");
  return lineas[lineas.size() - 2];  // the text ends with a line end
}

// On each engine: the rows are the same.
class DemoEntera : public ::testing::TestWithParam<const char*> {
 protected:
  DemoEntera() {
    const prueba::Salida demo = mesa_.Demo();
    EXPECT_EQ(demo.codigo, cli::kTodo) << demo.err;
    orden_ = Palabras(UltimaLinea(demo.out));
  }

  std::string Consulta(const std::string& sql) const {
    const auto conexion = mesa_.Abrir();
    const db::Recordset rs = conexion->Query(sql);
    std::string texto;
    for (std::size_t f = 0; f < rs.Count(); ++f) {
      for (std::size_t i = 0; i < rs.Fields().size(); ++i)
        texto += (i > 0 && !rs.At(i, f).IsNull() ? "|" : "") + rs.At(i, f).CsvText();
      texto += "\n";
    }
    return texto;
  }

  // The month's data: contract, type, concept, grouping, quantity (the amount for data of kind 2) and, for
  // kind 5, the price.
  std::string Datos() const {
    return Consulta(
        "Select "
        "E.id_Contrato,E.id_TipoLiq,D.id_Concepto,D.idAgrupa,iif(C.TipoDato=2,D.Coeficiente,D.Cantidad) "
        "as Valor,iif(C.TipoDato=5,Round(D.Coeficiente,4),Null) as Precio From (Datos_Liquidacion as D inner "
        "join Encabezados as E on D.id_Encabezado=E.id_Encabezado and D.idEmpresa=E.idEmpresa) inner join "
        "Conceptos as C on C.id_Concepto=D.id_Concepto and C.idEmpresa=D.idEmpresa Where D.idEmpresa=1 and "
        "E.MesDeLiq=#10/01/2026# Order by E.id_Contrato,E.id_TipoLiq,D.id_Concepto,D.idAgrupa,D.id_Dato");
  }

  prueba::Mesa mesa_{GetParam()};
  std::vector<std::string> orden_;
};

TEST_P(DemoEntera, EveryLineAndEveryQuantity) {
  const std::string otra_empresa =
      "Select D.* From Datos_Liquidacion as D Where idEmpresa=2 and id_Encabezado=23";
  const std::string ajena = Consulta(otra_empresa);
  orden_.insert(orden_.end(), {"--salida", "csv"});
  const prueba::Salida s = mesa_.Correr(orden_);
  EXPECT_EQ(s.codigo, cli::kAlgunaNo);
  EXPECT_EQ(s.out, Esperado("demo_2026_10.csv"));
  EXPECT_EQ(
      s.err,
      "Formato incorrecto en la linea 45\n"
      "Aviso: Hay contratos que terminan dentro del mes: contrato 141, Kevin Arbiza, el 25/10/2026; contrato "
      "142, Lucía Bidegarra, el 25/10/2026 y contrato 149, Teresa Iturriaz, el 10/10/2026.\n"
      "Leídas: 55 = importadas: 48 + rechazadas: 5 + filtradas: 1 + mal formadas: 1\n"
      "Cantidades por concepto:\n"
      "  1 Sueldo Básico: 6 (6 líneas)\n"
      "  2 Horas Extras: 24,25 (6 líneas)\n"
      "  3 Horas Nocturnas: 16,5 (1 línea)\n"
      "  4 Horas en Feriado: 8 (1 línea)\n"
      "  7 Horas Comunes: 1478,25 (23 líneas)\n"
      "  9 Viáticos: 8 (2 líneas)\n"
      "  10 Presentismo: 1850,75 (1 línea)\n"
      "  11 Comisiones: 12 (1 línea)\n"
      "  12 Destajo: 1250,5 (1 línea)\n"
      "  20 Adelanto de Sueldo: 6000 (3 líneas)\n"
      "  1005 TICKET: 57 (3 líneas)\n");
  EXPECT_EQ(Datos(), Esperado("demo_2026_10_data.txt"));
  // Contract 101 has values before and after the month, 107 only before, 131 none.
  EXPECT_EQ(Consulta("Select Codigo,Valor,Fecha From DatosUsuTablas Where Id_Tabla=5 Order by Codigo,Fecha"),
            "101|22|2026-09-01\n101|18|2026-10-01\n101|0|2026-11-01\n101|20|2026-12-01\n"
            "107|18\n107|21|2026-05-01\n107|19|2026-10-01\n107|0|2026-11-01\n131|20|2026-10-01\n");
  EXPECT_EQ(Consulta("Select idEmpresa,Valor From valores Where codigo='PARFECHA' Order by idEmpresa"),
            "1|#10/01/2026#\n2|#08/01/2026#\n");
  EXPECT_EQ(Consulta(otra_empresa), ajena);
}

// One new header for each of the sixteen contracts that had none of their type, by the user of ConfBase.cfg.
TEST_P(DemoEntera, OneHeaderAContract) {
  mesa_.Correr(orden_);
  EXPECT_EQ(Consulta("Select Count(*) From Encabezados Where id_Encabezado>42"), "16\n");
  EXPECT_EQ(
      Consulta(
          "Select Distinct id_Usuario,Terminado,Impreso,idEmpresa From Encabezados Where id_Encabezado>42"),
      "2|0|0|1\n");
  EXPECT_EQ(
      Consulta("Select id_Contrato,id_TipoLiq From Encabezados Where idEmpresa=1 and MesDeLiq=#10/01/2026# "
               "Group by id_Contrato,id_TipoLiq Having Count(*)>1"),
      "");
}

// What was there is added to: importing the same file again doubles what it brought.
TEST_P(DemoEntera, ASecondImportAddsAgain) {
  mesa_.Correr(orden_);
  orden_.push_back("--repetir");
  mesa_.Correr(orden_);
  EXPECT_EQ(Consulta("Select D.Cantidad From Datos_Liquidacion as D inner join Encabezados as E on "
                     "D.id_Encabezado=E.id_Encabezado Where E.id_Contrato=108 and D.id_Concepto=7 and "
                     "E.MesDeLiq=#10/01/2026#"),
            "219\n");  // 44 and twice 40.5 + 44 + 3
  EXPECT_EQ(Consulta("Select Count(*) From Encabezados Where id_Encabezado>42"), "16\n");
}

TEST_P(DemoEntera, TheFixedWidthFileGivesTheSame) {
  const prueba::Salida s = mesa_.Correr({"importar", "--base", mesa_.Ruta("ConfBase.cfg"), "--archivo",
                                         mesa_.Ruta("horas_ancho_fijo.txt"), "--mes", "2026-10", "--opcion",
                                         "TipoArchivo=AF", "--salida", "csv"});
  EXPECT_EQ(s.codigo, cli::kAlgunaNo);
  const auto lineas = base::Split(s.out, "\n");
  const auto esperadas = base::Split(Esperado("demo_2026_10.csv"), "\n");
  ASSERT_EQ(lineas.size(), esperadas.size());
  for (std::size_t i = 0; i < lineas.size(); ++i) {
    if (i == 44) {  // a zero stays as it was written
      EXPECT_EQ(
          lineas[i],
          "44;rechazada;7016;Yamila;Muniz;000000.00;;HC;Horas Comunes;2;Cantidad En 0 (Conf. No importar)");
    } else if (i == 45) {  // and a line cannot be too short: what it lacks is empty
      EXPECT_EQ(lineas[i],
                "45;rechazada;7016;Yamila;Muniz;;;HE;Horas Extras;2;Cantidad En 0 (Conf. No importar)");
    } else {
      auto celdas = base::Split(lineas[i], ";"), otras = base::Split(esperadas[i], ";");
      if (celdas.size() > 6) celdas[6] = otras[6];  // the value as it stands: 00350,00
      EXPECT_EQ(base::Join(celdas, ";"), base::Join(otras, ";"));
    }
  }
  EXPECT_EQ(Datos(), Esperado("demo_2026_10_data.txt"));
}

TEST_P(DemoEntera, ReviewingSaysTheSameAndLeavesEveryRow) {
  const std::string antes = mesa_.Filas();
  orden_.front() = "revisar";
  orden_.insert(orden_.end(), {"--salida", "csv"});
  const prueba::Salida s = mesa_.Correr(orden_);
  EXPECT_EQ(s.codigo, cli::kAlgunaNo);
  EXPECT_EQ(s.out, Esperado("demo_2026_10.csv"));
  EXPECT_EQ(mesa_.Filas(), antes);
}

// Every row of every table, in its order, twice over.
TEST(DemoEnLosDosMotores, TheSameRowsInEveryTable) {
  const prueba::Mesa access("mdb"), propia("sqlite");
  for (const prueba::Mesa* mesa : {&access, &propia}) {
    const prueba::Salida demo = mesa->Demo();
    ASSERT_EQ(demo.codigo, cli::kTodo) << demo.err;
  }
  EXPECT_EQ(access.Filas(), propia.Filas());
  std::string antes = propia.Filas();
  for (int vez = 0; vez < 2; ++vez) {
    for (const prueba::Mesa* mesa : {&access, &propia}) {
      const prueba::Salida s = mesa->Correr({"importar", "--base", mesa->Ruta("ConfBase.cfg"), "--archivo",
                                             mesa->Ruta("horas.txt"), "--mes", "2026-10", "--ajustes",
                                             mesa->Ruta("ImportDeMarcas.ini"), "--repetir"});
      ASSERT_EQ(s.codigo, cli::kAlgunaNo) << s.err;
    }
    const std::string despues = propia.Filas();
    EXPECT_NE(despues, antes);
    EXPECT_EQ(access.Filas(), despues);
    antes = despues;
  }
}

// Not a byte of an Access file, nor its date, by what only looks at it.
TEST(DemoEnAccess, ReviewingAndAskingLeaveTheFileAlone) {
  const prueba::Mesa mesa("mdb");
  ASSERT_EQ(mesa.Demo().codigo, cli::kTodo);
  const std::string ruta = mesa.Ruta("Personal.mdb");
  const auto fecha = std::filesystem::last_write_time(std::filesystem::u8path(ruta));
  const auto bytes = base::ReadWholeFile(ruta);
  EXPECT_EQ(mesa.Correr({"revisar", "--base", ruta, "--archivo", mesa.Ruta("horas.txt"), "--mes", "2026-10"})
                .codigo,
            cli::kAlgunaNo);
  EXPECT_EQ(mesa.Correr({"consulta", "--base", ruta, "SELECT Count(*) FROM Personas"}).codigo, cli::kTodo);
  EXPECT_EQ(mesa.Correr({"verificar", ruta}).codigo, cli::kTodo);
  EXPECT_EQ(base::ReadWholeFile(ruta), bytes);
  EXPECT_EQ(std::filesystem::last_write_time(std::filesystem::u8path(ruta)), fecha);
}

INSTANTIATE_TEST_SUITE_P(Motores, DemoEntera, ::testing::Values("mdb", "sqlite"),
                         [](const auto& caso) { return std::string(caso.param); });

}  // namespace
