// What needs more than a few lines of text, or a say while the load runs.
#include <gtest/gtest.h>

#include <random>
#include <string>

#include "base/number.h"
#include "importfile/import_grid.h"
#include "importfile/importfile_internal.h"
#include "support/temp_folder.h"

namespace {

using importfile::Carga;
using importfile::CargarDatos;
using importfile::EntradaCarga;
using importfile::FiltroPor;
using importfile::FinDeCarga;

struct Tablas {
  refdata::PersonsIndex personas;
  relations::CodeRelations relaciones;
  refdata::ConceptsCatalogue conceptos;
  settings::Settings opciones;
  support::TempFolder carpeta;

  Tablas() {
    std::vector<refdata::PersonsIndex::Fila> filas;
    for (int i = 1; i <= 500; ++i) {
      const std::string n = std::to_string(i);
      filas.push_back({n, n, n, n, n, n, "Nombre" + n, "Apellido" + n, "180", "1", "2"});
    }
    personas.Reemplazar(std::move(filas));
    relaciones.Reemplazar("HC*65535*,1,*7*Horas Comunes*0\r\nHE*65280*,2,*2*Horas Extras*0");
    conceptos.tabla.dimensiones = 2;
    conceptos.tabla.registros = {{"7", "Horas Comunes", "3", "S", "0"}, {"2", "Horas Extras", "3", "S", "0"}};
    opciones.Separador = ";";
  }
  EntradaCarga Entrada(const std::string& texto) {
    EntradaCarga entrada;
    entrada.txtRuta = carpeta.Write("marcas.txt", texto);
    entrada.opciones = &opciones;
    entrada.personas = &personas;
    entrada.conceptos = &conceptos;
    entrada.relaciones = &relaciones;
    return entrada;
  }
};

// The short cut for plain decimals must not be told from the conversion that it spares.
TEST(TextoDeDecimal, IsWhatTheGeneralConversionGives) {
  std::mt19937 azar(20240510);
  const auto cifras = [&](int cuantas) {
    std::string texto;
    for (int i = 0; i < cuantas; ++i) texto += "0012345678900"[azar() % 13];
    return texto;
  };
  int sencillos = 0;
  for (int i = 0; i < 20000; ++i) {
    std::string texto = cifras(static_cast<int>(azar() % 17));
    if (azar() % 2 == 0) texto.append(".").append(cifras(static_cast<int>(azar() % 16)));
    const auto sencillo = importfile::TextoDeDecimal(texto);
    if (!sencillo) continue;
    ++sencillos;
    ASSERT_EQ(*sencillo, base::SqlNumber(base::NumericValue(texto))) << texto;
    ASSERT_EQ(importfile::ValeCero(texto), base::NumericValue(texto) == 0) << texto;
  }
  EXPECT_GT(sencillos, 8000);
}

TEST(TextoDeDecimal, LeavesEveryOtherTextToTheGeneralConversion) {
  for (const char* texto : {"", ".", "5.", ".5", "-5", "+5", " 5", "5 ", "8,5", "1.234.567", "1e3", "&H10",
                            "5x", "1234567890123456", "0.123456789012345", "\xEF\xBC\x95"})
    EXPECT_FALSE(importfile::TextoDeDecimal(texto).has_value()) << texto;
}

TEST(CargarDatos, LoadsAHundredThousandLinesAndLosesNone) {
  constexpr std::size_t kLineas = 100000;
  Tablas tablas;
  std::string texto;
  for (std::size_t i = 0; i < kLineas; ++i)  // keys going down; every third code is in no relation
    texto += std::to_string(500 - i % 500) + ";" + std::to_string(i % 3 + 1) + ";8,5;extra;0\r\n";
  const Carga carga = CargarDatos(tablas.Entrada(texto));
  EXPECT_EQ(carga.fin, FinDeCarga::Completa);
  EXPECT_EQ(carga.lineas, kLineas);
  EXPECT_EQ(carga.aparte.size(), kLineas / 3);
  ASSERT_EQ(carga.filas.size(), kLineas - kLineas / 3);
  for (std::size_t i = 1; i < carga.filas.size(); ++i) {
    const auto &antes = carga.filas[i - 1], &fila = carga.filas[i];
    const int clave_antes = std::stoi(antes.campo[importfile::kClave]);
    const int clave = std::stoi(fila.campo[importfile::kClave]);
    ASSERT_TRUE(clave_antes < clave || (clave_antes == clave && antes.linea < fila.linea)) << "row " << i;
    ASSERT_EQ(fila.campo[importfile::kNombre], "Nombre" + fila.campo[importfile::kClave]);
    ASSERT_EQ(fila.campo[importfile::kCantidad], "8.5");
  }
}

TEST(CargarDatos, AVeryLongLineIsALineLikeOthers) {
  constexpr std::size_t kLargo = 3000000;
  Tablas tablas;
  std::string texto = "1;1;8;";
  texto.append(kLargo, 'x').append("\r\n2;1;3\r\n3;1;4");
  texto.append(kLargo, ';');  // as many empty fields
  Carga carga = CargarDatos(tablas.Entrada(texto));
  ASSERT_EQ(carga.filas.size(), 3U);
  EXPECT_EQ(carga.filas[0].campo[importfile::kDatoExtra].size(), kLargo);
  EXPECT_EQ(carga.filas[2].campo[importfile::kCantidad], "4");
  tablas.opciones.AnchoFijo = true;
  tablas.opciones.CodTipoNumerico = false;
  carga = CargarDatos(tablas.Entrada(std::string(kLargo, '\xF1') + "\r\n000002 1   9"));
  ASSERT_EQ(carga.filas.size(), 1U);
  EXPECT_EQ(carga.filas[0].campo[importfile::kCantidad], "9");
  EXPECT_EQ(carga.aparte.size(), 1U);
}

TEST(CargarDatos, NeedsNeitherEvaluatorNorPromptsNorProgress) {
  Tablas tablas;
  tablas.opciones.FactMultiplica = "*2";
  tablas.opciones.TextoDeFiltro = "Horas>10";
  EntradaCarga entrada = tablas.Entrada("1;1;8\r\n2;1;3\r\n;bad\r\n");
  entrada.filtro = FiltroPor::Texto;
  const Carga carga = CargarDatos(entrada);
  ASSERT_EQ(carga.filas.size(), 1U);
  EXPECT_EQ(carga.filas[0].campo[importfile::kCantidad], "16");
  EXPECT_EQ(carga.aparte.size(), 2U);
}

// Clears an option as an operator could while events are pumped.
struct CambiaOpciones final : ports::Progress {
  explicit CambiaOpciones(settings::Settings& s) : opciones(s) {}
  void ActuBarra(float, bool) override {}
  void DoEvents() override {
    opciones.Separador.assign(1, '|');
    opciones.CodTipoNumerico = false;
  }
  bool IsCancelled() const override { return false; }
  settings::Settings& opciones;
};

TEST(CargarDatos, AnOptionChangedMeanwhileDoesNotSplitTheLoad) {
  Tablas tablas;
  CambiaOpciones progreso(tablas.opciones);
  EntradaCarga entrada = tablas.Entrada("1;01;8\r\n2;02;3\r\n3;01;4");
  entrada.progreso = &progreso;
  const Carga carga = CargarDatos(entrada);
  ASSERT_EQ(carga.filas.size(), 3U);
  EXPECT_EQ(carga.filas[2].campo[importfile::kTipo], "1");
}

TEST(CargarDatos, ACatalogueEntryOfMinusOneIsNoConcept) {
  Tablas tablas;
  tablas.conceptos.tabla.registros = {{"-1", "-1", "9", "9", "9"}};
  EntradaCarga entrada = tablas.Entrada("1;33;8\r\n999;1;3");
  entrada.filtro = FiltroPor::Texto;
  const Carga carga = CargarDatos(entrada);
  ASSERT_EQ(carga.filas.size(), 2U);
  for (const auto& fila : carga.filas) EXPECT_EQ(fila.campo[importfile::kTipoDato], "3");
}

// Five columns of one character: the first and the last of each length, and bytes that are none.
TEST(DevLineaAF, CutsByCharacters) {
  settings::FixedWidthLayout columnas;
  for (std::int16_t i = 1; i <= 5; ++i) columnas.push_back({i, i, 1});
  const auto cortes = [&](std::string_view linea) {
    std::vector<std::string> campos = importfile::DevLineaAF(linea, columnas).campos;
    while (!campos.empty() && campos.back().empty()) campos.pop_back();
    return campos;
  };
  using Campos = std::vector<std::string>;
  EXPECT_EQ(cortes("\xC2\x80\xDF\xBF\xE0\xA0\x80\xEF\xBF\xBD\xF0\x90\x80\x80"),
            (Campos{"\xC2\x80", "\xDF\xBF", "\xE0\xA0\x80", "\xEF\xBF\xBD", "\xF0\x90\x80\x80"}));
  EXPECT_EQ(cortes("\x7F\xF4\x8F\xBF\xBF"
                   "ab"),
            (Campos{"\x7F", "\xF4\x8F\xBF\xBF", "a", "b"}));
  EXPECT_EQ(cortes("\xC1\xA1"
                   "ab"),
            (Campos{"\xC1", "\xA1", "a", "b"}));
  EXPECT_EQ(cortes("\xF5\x80\x80\x80"
                   "a"),
            (Campos{"\xF5", "\x80", "\x80", "\x80", "a"}));
  EXPECT_EQ(cortes("\xC3"
                   "a\xE2\x82"
                   "b"),
            (Campos{"\xC3", "a", "\xE2", "\x82", "b"}));
  EXPECT_EQ(cortes("\xF0\x90\x80"
                   "ab"),
            (Campos{"\xF0", "\x90", "\x80", "a", "b"}));
  EXPECT_EQ(cortes("\xC3\xC0"), (Campos{"\xC3", "\xC0"}));
  EXPECT_EQ(cortes("ab\xE2\x82"), (Campos{"a", "b", "\xE2", "\x82"}));
}

// Whose every statement meets a damaged page.
class DamagedBase final : public db::Connection {
 public:
  int statements = 0;
  bool IsOpen() const override { return true; }
  void Close() override {}
  db::Recordset Execute(std::string_view) override { Fail(); }
  db::Recordset Query(std::string_view) override { Fail(); }
  std::int64_t AffectedRows() const override { return 0; }
  void BeginTrans() override {}
  void CommitTrans() override {}
  void RollbackTrans() override {}
  bool InTransaction() const override { return false; }
  void SetSavepoint() override {}
  void RollbackToSavepoint() override {}
  void ReleaseSavepoint() override {}

 private:
  [[noreturn]] void Fail() {
    ++statements;
    throw db::Error("La página 7 está dañada", 0, {}, base::ErrorKind::Storage);
  }
};

// A load that went on would bring quantities that the formula never had.
TEST(CargarDatos, AFaultOfTheStorageEndsIt) {
  Tablas tablas;
  sesion::DbSession sesion;
  auto danada = std::make_unique<DamagedBase>();
  DamagedBase& base = *danada;
  sesion.conexion = std::move(danada);
  formula::Evaluador evaluador;
  evaluador.sesion = &sesion;
  EntradaCarga entrada = tablas.Entrada("1;1;8\r\n2;1;8\r\n");
  entrada.evaluador = &evaluador;
  entrada.filtro = FiltroPor::Texto;

  tablas.opciones.FactMultiplica = "SQL(CAMPO A EN T)";
  EXPECT_THROW(CargarDatos(entrada), base::Error);
  EXPECT_EQ(base.statements, 1);

  tablas.opciones.FactMultiplica.clear();
  tablas.opciones.TextoDeFiltro = "SQL(CAMPO A EN T)>1";
  EXPECT_THROW(CargarDatos(entrada), base::Error);
  EXPECT_EQ(base.statements, 2);

  tablas.opciones.TextoDeFiltro.clear();
  EXPECT_EQ(CargarDatos(entrada).filas.size(), 2U);
  EXPECT_EQ(evaluador.profundidad, 0);
}

// Lines against a second reading of the same rule, one character at a time.
TEST(CargarDatos, EveryLineOfMixedEndsIsARow) {
  std::mt19937 azar(1125);
  Tablas tablas;
  tablas.opciones.AnchoFijo = true;  // an empty line is a row too
  for (int vez = 0; vez < 200; ++vez) {
    std::string texto;
    for (std::size_t i = azar() % 60; i > 0; --i) texto += "a1\r\n\r\n\x85"[azar() % 7];
    std::vector<std::string> lineas(1);
    for (std::size_t i = 0; i < texto.size(); ++i) {
      if (texto[i] == '\r' && i + 1 < texto.size() && texto[i + 1] == '\n') ++i;
      if (texto[i] == '\r' || texto[i] == '\n')
        lineas.emplace_back();
      else
        lineas.back() += texto[i] == '\x85' ? "…" : std::string(1, texto[i]);
    }
    if (lineas.back().empty()) lineas.pop_back();
    const EntradaCarga entrada = tablas.Entrada(texto);
    EntradaCarga todas = entrada;
    todas.filtro = FiltroPor::Texto;
    const Carga carga = CargarDatos(todas);
    ASSERT_EQ(carga.lineas, lineas.size()) << testing::PrintToString(texto);
    std::string esperada, leida;
    for (std::size_t i = 0; i < lineas.size() && i < 4; ++i) esperada += (i > 0 ? "\r\n" : "") + lineas[i];
    leida = carga.previa;
    if (lineas.size() < 4 && leida.size() > esperada.size()) esperada += "\r\n";  // the empty last piece
    ASSERT_EQ(leida, esperada) << testing::PrintToString(texto);
    for (const auto& fila : carga.filas) ASSERT_LE(fila.linea, lineas.size());
    ASSERT_EQ(carga.filas.size(), lineas.size());
  }
}

}  // namespace
