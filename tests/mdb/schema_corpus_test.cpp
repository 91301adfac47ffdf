// The schema of files that another wrote, changed on copies in memory: nothing that was there is lost, and
// what the checker finds is what it found before.
#include <map>

#include "mdb/samples.h"
#include "mdb/schema_support.h"

namespace {

using namespace mdb_test;
using mdb::TipoColumna;

using Contenido = std::map<std::string, std::vector<mdb::Fila>>;

Contenido DeUsuario(BaseDePrueba& b) {
  Contenido todo;
  for (const auto& o : b->Indice().Objetos())
    if (o.tipo == mdb::Objeto::Tabla && !o.DeSistema()) todo[o.nombre] = b.Filas(o.nombre);
  return todo;
}

// The checker's notes are what Access itself leaves: only errors count here.
class Copia : public ::testing::TestWithParam<std::string> {};

mdb::NuevaTabla Nueva() {
  mdb::NuevaTabla t{
      "Días trabajados",
      {Col("Id", TipoColumna::Largo), Col("Año", TipoColumna::Texto, 20), Col("Nota", TipoColumna::Memo)},
      {Clave({"Id"}), Ind("Por año", {"-Año", "Id"})}};
  t.columnas[0].autonumerica = true;
  t.columnas[1].defecto = "\"2026\"";
  return t;
}

TEST_P(Copia, TakesATableAndGivesItBack) {
  BaseDePrueba b(Cargar(GetParam()));
  const Contenido antes = DeUsuario(b);
  b->CrearTabla(Nueva(), Hoy());
  std::vector<mdb::Fila> filas;
  for (int i = 1; i <= 300; ++i)
    filas.push_back(FilaDe(N(i), S("año " + std::to_string(i % 50)),
                           S(std::string(static_cast<std::size_t>(i) * 11, 'n'))));
  b.Insertar("Días trabajados", filas);
  b->AgregarColumna("Días trabajados", Col("Más", TipoColumna::Doble));
  b->QuitarColumna("Días trabajados", "Nota");
  b->CrearTabla({"Hijos de días", {Col("Día", TipoColumna::Largo)}, {}}, Hoy());
  b->CrearRelacion({"Días e hijos", "Hijos de días", {"Día"}, "Días trabajados", {"Id"}, 0}, Hoy());
  mdb::ConsultaGuardada consulta;
  consulta.nombre = "Días, la vista";
  consulta.filas.resize(1);
  consulta.filas[0].atributo = 5;
  consulta.filas[0].nombre1 = "Días trabajados";
  b->CrearConsulta(consulta, Hoy());
  b.Sana(false);
  EXPECT_EQ(b.Filas("Días trabajados").size(), 300U);
  if (HayMdbtools()) {
    EXPECT_NE(Mdbtools("mdb-tables", "-1", b.Guardado()).find("Días trabajados\n"), std::string::npos);
    EXPECT_NE(Mdbtools("mdb-queries", "-L -1", b.Guardado()).find("Días, la vista"), std::string::npos);
  }
  b->BorrarConsulta("Días, la vista");
  b->BorrarRelacion("Días e hijos");
  b->BorrarTabla("Hijos de días");
  b->BorrarTabla("Días trabajados");
  EXPECT_TRUE(DeUsuario(b) == antes);
  b.Sana(false);
}

// Each of its own tables gets a column, an index over it and rows, and loses them again.
TEST_P(Copia, ItsOwnTablesChange) {
  BaseDePrueba b(Cargar(GetParam()));
  const Contenido antes = DeUsuario(b);
  for (const auto& [tabla, filas] : antes) {
    SCOPED_TRACE(tabla);
    const std::string motivo = mdb::MotivoNoEscribible(b->Cab(), b.Def(tabla));
    auto propiedades = b->Indice().PropiedadesDe(tabla);
    auto columna = Col("Columna añadida", TipoColumna::Texto, 30);
    b->AgregarColumna(tabla, columna);
    b->CrearIndice(tabla, Ind("Índice añadido", {"Columna añadida"}));
    EXPECT_EQ(b.Filas(tabla).size(), filas.size());
    if (motivo.empty() && !filas.empty()) {
      mdb::Cambios cambios;
      mdb::RecorrerFilas(b->Hojas(), b.Def(tabla), [&](mdb::IdFila id, const mdb::Fila& fila) {
        mdb::CambioDeFila cambio;
        cambio.fila = id;
        cambio.valores.emplace_back(fila.size() - 1, S("ñ" + std::to_string(cambios.cambiadas.size())));
        cambios.cambiadas.push_back(cambio);
        return cambios.cambiadas.size() < 100;
      });
      b->Aplicar(tabla, cambios);
    }
    b->BorrarIndice(tabla, "Índice añadido");
    b->QuitarColumna(tabla, "Columna añadida");
    const auto& despues = b->Indice().PropiedadesDe(tabla);
    EXPECT_EQ(despues.size(), propiedades.size());
    for (const auto& [dueno, lista] : propiedades) {
      ASSERT_TRUE(despues.contains(dueno)) << dueno;
      ASSERT_EQ(despues.at(dueno).size(), lista.size()) << dueno;
      for (std::size_t i = 0; i < lista.size(); ++i)
        EXPECT_TRUE(despues.at(dueno)[i].valor == lista[i].valor);
    }
  }
  EXPECT_TRUE(DeUsuario(b) == antes);
  b.Sana(false);
}

std::vector<std::string> Files() {
  std::vector<std::string> paths;
  for (const char* name :
       {"empty.mdb", "types.mdb", "texts.mdb", "texts_3082.mdb", "texts_1034.mdb", "moved.mdb",
        "compound.mdb", "relations.mdb", "queries.mdb", "names.mdb", "password.mdb"})
    paths.push_back(SamplePath(name));
  for (const std::string& path : ArchivosDeCorpus())
    if (Cargar(path)->Cab().version == mdb::Version::Jet4) paths.push_back(path);
  return paths;
}

INSTANTIATE_TEST_SUITE_P(Files, Copia, ::testing::ValuesIn(Files()),
                         [](const auto& c) { return CaseName(c.param); });

}  // namespace
