#include <algorithm>

#include "engine_mdb/query_text.h"
#include "mdb/exported.h"
#include "mdb/queries/saved_query.h"
#include "mdb/samples.h"
#include "mdb/schema_support.h"

namespace {

using namespace mdb_test;
using mdb::TipoColumna;

mdb::FilaDeConsulta Fila(std::uint8_t atributo, std::optional<std::string> nombre1,
                         std::optional<std::string> expresion,
                         std::optional<std::int16_t> bandera = std::nullopt) {
  mdb::FilaDeConsulta f;
  f.atributo = atributo;
  f.nombre1 = std::move(nombre1);
  f.expresion = std::move(expresion);
  f.bandera = bandera;
  return f;
}

mdb::ConsultaGuardada Sencilla(std::string nombre) {
  mdb::ConsultaGuardada c;
  c.nombre = std::move(nombre);
  c.filas = {Fila(5, "Legajos", std::nullopt), Fila(6, std::nullopt, "Legajos.Código", std::int16_t{0}),
             Fila(6, "Doble", "Sueldo*2", std::int16_t{0}), Fila(8, std::nullopt, "((Legajos.Código)>5)")};
  return c;
}

// Every saved query of files that another wrote, saved again in a new one: the same text, ours and that of
// other readers.
TEST(CrearConsulta, QueriesOfOthersComeBackAsTheyWere) {
  int cuantas = 0;
  std::vector<std::string> files = {SamplePath("queries.mdb")};
  for (const std::string& path : ArchivosDeCorpus())
    if (path.find("queryTestV200") != std::string::npos) files.push_back(path);
  for (const std::string& file : files) {
    mdb::Base original(Cargar(file));
    const mdb::Bytes bytes = dynamic_cast<mdb::PaginasEnMemoria&>(original.Hojas()).Guardado();
    BaseDePrueba b(original.Cab().orden);
    std::vector<std::string> nombres;
    for (const auto& o : original.Indice().Objetos())
      if (o.tipo == mdb::Objeto::Consulta) nombres.push_back(o.nombre);
    ASSERT_GE(nombres.size(), 9U);
    for (const auto& nombre : nombres) b->CrearConsulta(original.Indice().ConsultaDe(nombre), Hoy());
    for (const auto& nombre : nombres) {
      SCOPED_TRACE(nombre);
      const auto suya = original.Indice().ConsultaDe(nombre), nuestra = b->Indice().ConsultaDe(nombre);
      EXPECT_EQ(nuestra.banderas, suya.banderas);
      EXPECT_EQ(engine_mdb::QueryText(nuestra), engine_mdb::QueryText(suya));
      EXPECT_EQ(Mdbtools("mdb-queries", "", b.Guardado(), Entrecomillado(nombre)),
                Mdbtools("mdb-queries", "", bytes, Entrecomillado(nombre)));
      ++cuantas;
    }
    b.Sana();
  }
  EXPECT_GE(cuantas, 10);
}

TEST(CrearConsulta, NumbersWhatHasNoNumber) {
  BaseDePrueba b;
  b->CrearConsulta(Sencilla("Años de niñez"), Hoy());
  const auto leida = b->Indice().ConsultaDe("AÑOS DE NIÑEZ");
  std::vector<std::pair<int, unsigned>> filas;
  for (const auto& f : leida.filas) filas.emplace_back(f.atributo, f.orden);
  std::sort(filas.begin(), filas.end());
  EXPECT_EQ(filas, (std::vector<std::pair<int, unsigned>>{{0, 1}, {5, 1}, {6, 1}, {6, 2}, {8, 1}, {255, 1}}));
  EXPECT_EQ(leida.banderas, 0U);
  b.Sana();
  if (HayMdbtools()) {
    EXPECT_EQ(Mdbtools("mdb-queries", "-L -1", b.Guardado()), "Años de niñez\n");
  }
}

// What the object says of its kind follows the rows, whatever the caller gave.
TEST(CrearConsulta, FlagsTellTheKind) {
  BaseDePrueba b;
  const std::pair<std::int16_t, std::uint32_t> casos[] = {
      {1, 0}, {2, 0x50}, {3, 0x40}, {4, 0x30}, {5, 0x20}, {6, 0x10}, {7, 0x60}, {8, 0x70}, {9, 0x80}};
  for (const auto& [clase, banderas] : casos) {
    auto c = Sencilla("c" + std::to_string(clase));
    c.filas.push_back(Fila(1, "x", "y", clase));
    c.banderas = 0x08 | 0x20;  // hidden; the kind is wrong but for one
    b->CrearConsulta(c, Hoy());
    EXPECT_EQ(b->Indice().ConsultaDe(c.nombre).banderas, banderas | 0x08) << clase;
  }
  b.Sana();
}

TEST(CrearConsulta, TakesTheSmallestFreeNumber) {
  BaseDePrueba b;
  const auto id = [&](const char* nombre) { return b->Indice().Buscar(nombre)->id; };
  for (const char* nombre : {"a", "b", "c"}) b->CrearConsulta(Sencilla(nombre), Hoy());
  EXPECT_EQ(id("a"), INT32_MIN);
  EXPECT_EQ(id("b"), INT32_MIN + 1);
  EXPECT_EQ(id("c"), INT32_MIN + 2);
  b->BorrarConsulta("B");
  EXPECT_EQ(b->Indice().Buscar("b"), nullptr);
  b->CrearConsulta(Sencilla("d"), Hoy());
  EXPECT_EQ(id("d"), INT32_MIN + 1);
  // Only its own rows went.
  for (const char* nombre : {"a", "c", "d"}) EXPECT_EQ(b->Indice().ConsultaDe(nombre).filas.size(), 6U);
  b.Sana();
}

TEST(CrearConsulta, LongTextsAndParametersAreKept) {
  BaseDePrueba b;
  auto c = Sencilla("Larga");
  c.filas[3].expresion = "((Legajos.Nombre)='" + std::string(6000, 'x') + "')";
  auto parametro = Fila(2, "Mes de pago", std::nullopt, std::int16_t{10});
  parametro.extra = 50;
  c.filas.push_back(parametro);
  b->CrearConsulta(c, Hoy());
  const auto leida = b->Indice().ConsultaDe("Larga");
  const auto fila = [&](int atributo) {
    return *std::find_if(leida.filas.begin(), leida.filas.end(),
                         [&](const auto& f) { return f.atributo == atributo; });
  };
  EXPECT_EQ(fila(8).expresion, c.filas[3].expresion);
  EXPECT_EQ(fila(2).extra, 50);
  EXPECT_EQ(fila(2).nombre1, "Mes de pago");
  EXPECT_EQ(fila(5).expresion, std::nullopt);
  b.Sana();
}

TEST(CrearConsulta, SharesItsNamesWithTables) {
  BaseDePrueba b;
  b->CrearTabla({"Legajos", {Col("a", TipoColumna::Largo)}, {}}, Hoy());
  b.Rechaza("ya tiene una tabla", [&] { b->CrearConsulta(Sencilla("legajos"), Hoy()); });
  b->CrearConsulta(Sencilla("Vista"), Hoy());
  b.Rechaza("ya tiene una consulta", [&] { b->CrearConsulta(Sencilla("VISTA"), Hoy()); });
  b.Rechaza("ya tiene una consulta", [&] {
    b->CrearTabla({"vista", {Col("a", TipoColumna::Largo)}, {}}, Hoy());
  });
  b.Rechaza("es una consulta, no una tabla", [&] { b->BorrarTabla("Vista"); });
  b.Rechaza("no tiene una consulta \"Legajos\"", [&] { b->BorrarConsulta("Legajos"); });
  b.Rechaza("lleva el signo !", [&] { b->CrearConsulta(Sencilla("a!b"), Hoy()); });
}

}  // namespace
