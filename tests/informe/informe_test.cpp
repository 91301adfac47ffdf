// The report takes texts from a file that anybody may have written.
#include "informe/informe.h"

#include <gtest/gtest.h>

#include "base/csv.h"
#include "base/text.h"

namespace {

const std::vector<std::string> kHostiles = {"<script>alert(1)</script>",
                                            "</td></tr></table><b>x",
                                            "\"><img src=x>",
                                            "a&b<c>'d'",
                                            "=cmd|' /C calc'!A0",
                                            "+1+1",
                                            "-2+3",
                                            "@SUM(A1)",
                                            "\t=1",
                                            "\r\n=1;2",
                                            " =1",
                                            "\"=1\"",
                                            "a;b\"c"};

struct Caso {
  std::vector<importfile::ImportRow> filas;
  informe::DatosInforme datos;
  Caso() {
    std::size_t linea = 0;
    for (const std::string& texto : kHostiles) {
      auto& fila = filas.emplace_back();
      fila.linea = ++linea;
      fila.campo.fill(texto);
      fila.resultado = linea % 2 == 0 ? "OK" : texto;
      fila.destino = {.contrato = 1, .concepto = 7, .encabezado = 3};
    }
    datos.archivo = datos.liquidacion = datos.error = datos.nombres[7] = kHostiles.front();
    datos.mes = base::MakeDate(2026, 10, 1);
    datos.lineas = informe::LineasDe(filas, {});
    for (const std::string& texto : kHostiles) {
      corridas::CambioDeCantidad cambio;
      cambio.nombre = cambio.apellido = cambio.nombre_concepto = texto;
      cambio.antes = -1.5;
      datos.cambios.push_back(cambio);
    }
  }
};

TEST(InformeHtml, HoldsNoMarkThatATextBrought) {
  const Caso caso;
  const std::string pagina = informe::InformeHtml(caso.datos);
  for (const char* mal : {"<script", "<img", "<b>", "&b<", "'d'", "http://", "https://", "<link", "@import"})
    EXPECT_EQ(pagina.find(mal), std::string::npos) << mal;
  // Each mark that is opened is one of the page's own.
  for (std::size_t i = pagina.find('<'); i != std::string::npos; i = pagina.find('<', i + 1)) {
    bool propia = false;
    for (const char* marca : {"!DOCTYPE", "html", "head", "meta", "title", "style", "body", "h1", "h2", "p>",
                              "table", "thead", "tbody", "tfoot", "tr", "th", "td", "span"}) {
      const std::size_t nombre = i + (pagina[i + 1] == '/' ? 2 : 1);
      propia = propia || pagina.compare(nombre, std::string_view(marca).size(), marca) == 0;
    }
    ASSERT_TRUE(propia) << pagina.substr(i, 40);
  }
  EXPECT_NE(pagina.find("&lt;script&gt;alert(1)&lt;/script&gt;"), std::string::npos);
}

TEST(InformeCsv, HoldsNoCellThatASpreadsheetWouldRun) {
  const Caso caso;
  std::size_t celdas = 0;
  for (const auto& fila : base::ReadCsv(informe::InformeCsv(caso.datos), ';')) {
    ASSERT_TRUE(fila.closed);
    for (const std::string& celda : fila.cells) {
      ++celdas;
      const std::size_t primera = celda.find_first_not_of(' ');
      if (primera == std::string::npos || celda == "-1,5" || celda == "1,5") continue;
      EXPECT_EQ(std::string_view("=+-@\t\r\n").find(celda[primera]), std::string_view::npos) << celda;
    }
  }
  EXPECT_GT(celdas, 300U);
}

TEST(TotalesDe, AddUpToTheFile) {
  std::vector<importfile::ImportRow> filas(3);
  const char* cantidades[] = {"8.5", "-2", "abc"};
  for (std::size_t i = 0; i < filas.size(); ++i) {
    filas[i].linea = i + 1;
    filas[i].campo[importfile::kCantidad] = cantidades[i];
    filas[i].resultado = i < 2 ? "OK" : "No coinciden los tipos";
    filas[i].destino.concepto = 7;
  }
  std::vector<importfile::LineaAparte> aparte{{4, false, {}}, {5, true, {}}};
  aparte[0].campo[importfile::kCantidad] = "4";
  informe::DatosInforme datos;
  datos.lineas = informe::LineasDe(filas, aparte);
  datos.totales = {{7, "Horas", 2, 6.5}};
  std::size_t lineas = 0;
  double cantidad = 0;
  const auto totales = informe::TotalesDe(datos);
  for (const auto& t : totales) {
    lineas += t.lineas;
    cantidad += t.del_archivo;
  }
  EXPECT_EQ(lineas, 5U);
  EXPECT_EQ(cantidad, 10.5);
  ASSERT_EQ(totales.size(), 4U);
  EXPECT_EQ(totales[0].importada, 6.5);
  EXPECT_EQ(totales[1].importada, std::nullopt);
}

// A page of nothing is a page.
TEST(InformeHtml, OfNothingIsAPage) {
  informe::DatosInforme datos;
  datos.mes = base::MakeDate(2026, 10, 1);
  const std::string pagina = informe::InformeHtml(datos);
  EXPECT_TRUE(base::StartsWith(pagina, "<!DOCTYPE html>"));
  EXPECT_TRUE(base::EndsWith(pagina, "</html>\n"));
}

}  // namespace
