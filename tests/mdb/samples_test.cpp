// The samples: what was put in is what is read.
#include "mdb/samples.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "engine_mdb/query_text.h"
#include "mdb/catalog/catalog.h"
#include "mdb/corpus.h"
#include "mdb/exported.h"
#include "mdb/outside.h"
#include "mdb/rows/table.h"
#include "mdb/verify/verify.h"

namespace {

using mdb_test::Sample;

class EverySample : public testing::TestWithParam<std::string> {
 protected:
  const Sample& Put() const { return mdb_test::SampleNamed(GetParam()); }
  std::unique_ptr<mdb::PaginasEnMemoria> pages_ = mdb_test::LoadSample(GetParam());
  mdb::Catalogo catalog_{*pages_};
};

TEST_P(EverySample, GivesTheRowsThatWerePutIn) {
  for (const assembler::Table& t : Put().file.tables) {
    SCOPED_TRACE(t.name);
    const auto definition = catalog_.Tabla(t.name);
    ASSERT_NE(definition, nullptr);
    std::vector<mdb::Fila> found;
    mdb::RecorrerFilas(*pages_, *definition, [&](mdb::IdFila, const mdb::Fila& row) {
      found.push_back(row);
      return true;
    });
    const auto put = mdb_test::RowsPutIn(t);
    ASSERT_EQ(found.size(), put.size());
    for (std::size_t i = 0; i < put.size(); ++i)
      for (std::size_t c = 0; c < put[i].size(); ++c)
        EXPECT_TRUE(found[i].at(c) == put[i][c])
            << "row " << i << " column " << definition->columnas[c].nombre;
    EXPECT_EQ(definition->filas, put.size());
  }
}

TEST_P(EverySample, GivesColumnsAndIndexesAsTheyWerePutIn) {
  for (const assembler::Table& t : Put().file.tables) {
    SCOPED_TRACE(t.name);
    const auto d = catalog_.Tabla(t.name);
    ASSERT_NE(d, nullptr);
    EXPECT_EQ(d->max_columnas, t.columns.size());
    std::size_t n = 0;
    for (std::size_t i = 0; i < t.columns.size(); ++i) {
      const assembler::Column& put = t.columns[i];
      if (put.gone) continue;
      const mdb::Columna& c = d->columnas.at(n++);
      EXPECT_EQ(c.nombre, put.name);
      EXPECT_EQ(c.tipo, put.type);
      EXPECT_EQ(c.numero, i);
      EXPECT_EQ(c.Autonumerica(), put.autonumber);
      EXPECT_EQ(c.Calculada(), put.calculated);
      EXPECT_EQ(c.escala, put.scale);
      if (put.type == mdb::TipoColumna::Texto || put.type == mdb::TipoColumna::Memo) {
        EXPECT_EQ(c.lcid, Put().file.lcid);
      }
    }
    EXPECT_EQ(n, d->columnas.size());
    if (!t.shown.empty()) {
      const auto order = d->EnOrden();
      for (std::size_t i = 0; i < order.size(); ++i) EXPECT_EQ(order[i], t.shown[i]);
    }
    ASSERT_EQ(d->reales.size(), t.indexes.size());
    for (std::size_t k = 0; k < t.indexes.size(); ++k) {
      const assembler::Index& put = t.indexes[k];
      std::vector<std::string> columns;
      for (const auto& part : d->reales[k].partes)
        columns.push_back((part.descendente ? "-" : "") +
                          d->columnas[d->PorNumero(part.columna).value()].nombre);
      EXPECT_EQ(columns, put.columns);
      EXPECT_EQ(d->reales[k].Unico(), put.unique || put.primary);
      EXPECT_EQ(d->reales[k].IgnoraNulos(), put.ignores_nulls);
      const auto name = std::find_if(d->logicos.begin(), d->logicos.end(),
                                     [&](const auto& l) { return l.nombre == put.name; });
      ASSERT_NE(name, d->logicos.end());
      EXPECT_EQ(name->real, k);
      EXPECT_EQ(name->clase == mdb::IndiceLogico::Primario, put.primary);
    }
  }
}

TEST_P(EverySample, GivesPropertiesRelationshipsQueriesAndLinks) {
  for (const assembler::Table& t : Put().file.tables)
    for (const assembler::Property& p : t.properties) {
      const mdb::Dato* found = mdb::Buscar(catalog_.PropiedadesDe(t.name), p.owner, p.name);
      ASSERT_NE(found, nullptr) << t.name << " " << p.owner << " " << p.name;
      EXPECT_TRUE(*found == p.value) << t.name << " " << p.owner << " " << p.name;
    }
  ASSERT_EQ(catalog_.Relaciones().size(), Put().file.relations.size());
  for (const assembler::Relation& put : Put().file.relations) {
    const auto& all = catalog_.Relaciones();
    const auto r = std::find_if(all.begin(), all.end(), [&](const auto& x) { return x.nombre == put.name; });
    ASSERT_NE(r, all.end()) << put.name;
    EXPECT_EQ(r->tabla, put.table);
    EXPECT_EQ(r->columnas, put.columns);
    EXPECT_EQ(r->tabla_referida, put.parent);
    EXPECT_EQ(r->columnas_referidas, put.parent_columns);
    EXPECT_EQ(r->banderas, put.flags);
  }
  for (const auto& [name, text] : Put().query_texts)
    EXPECT_EQ(engine_mdb::QueryText(catalog_.ConsultaDe(name)), text) << name;
  for (const assembler::Link& put : Put().file.links) {
    const mdb::Objeto* o = catalog_.Buscar(put.name);
    ASSERT_NE(o, nullptr) << put.name;
    EXPECT_EQ(o->tipo, put.type);
    EXPECT_EQ(o->base, put.database);
    EXPECT_EQ(o->nombre_externo, put.table);
    EXPECT_EQ(o->conexion, put.connection);
  }
}

TEST_P(EverySample, IsSound) {
  for (const auto& finding : mdb::Verificar(*pages_).hallazgos)
    EXPECT_NE(finding.grado, mdb::Hallazgo::Grado::Error) << finding.texto;
  if (pages_->Cab().clave == 0) {
    EXPECT_EQ(mdb_test::Controlar(pages_->Guardado(), false), "");
  }
}

INSTANTIATE_TEST_SUITE_P(All, EverySample, testing::ValuesIn(mdb_test::SampleNames()),
                         [](const auto& c) { return mdb_test::CaseName(c.param); });

// Putting the same together twice gives the same bytes.
TEST(Samples, AreTheSameEachTime) {
  for (const Sample& s : mdb_test::Samples()) {
    const mdb::Bytes bytes = mdb_test::SampleBytes(s.name);
    EXPECT_TRUE(bytes == mdb_test::SampleBytes(s.name)) << s.name;
    EXPECT_EQ(bytes.size() % (s.file.format == assembler::Format::Jet3 ? 2048U : 4096U), 0U);
  }
}

}  // namespace
