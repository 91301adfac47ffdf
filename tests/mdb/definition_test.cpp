#include "mdb/definitions/definition.h"

#include <gtest/gtest.h>

#include "base/text.h"
#include "mdb/catalog/catalog.h"
#include "mdb/corpus.h"
#include "mdb/exported.h"
#include "mdb/samples.h"

namespace {

// Prints what the independent reader finds in the definitions of a file's tables.
const char* const kPrograma = R"PY(
import sys
sys.path.insert(0, sys.argv[1].rsplit('/', 1)[0])
import jet
db = jet.DB(sys.argv[2])
cat = db.catalog()
for pg, r, row in cat.rows():
    o = {c.name: cat.value(c, v) for c, v in row.items() if c.name in ('Id', 'Name', 'Type')}
    if o['Type'] != 1: continue
    t = db.tdef(o['Id'])
    print('T', o['Id'], t.nrows, t.autonum, t.ttype, t.maxcols, t.nvar, t.own[1], t.own[0], t.free[1], t.free[0],
          *t.pages)
    for c in t.cols:
        lv = t.lval.get(c.num, ((0, 0), (0, 0)))
        lcid = 0 if c.type == 16 else c.lcid9 if db.j3 else c.lcid
        print('C', c.name, c.type, c.num, c.voff, c.num2, lcid, c.flags, c.ext, c.foff, c.length,
              lv[0][1], lv[0][0], lv[1][1], lv[1][0], c.prec if c.type == 16 else 0, c.scale if c.type == 16 else 0)
    for x in t.real:
        print('R', *['%d%s' % (n, '+' if f else '-') for n, f in x.cols], x.umap[1], x.umap[0], x.root, x.flags,
              jet.u32(x.stat, 0), x.uniq)
    for x in t.log:
        print('L', x.name, x.num, x.data, x.rtype, x.rnum, x.rpage, x.cu, x.cd, x.type)
)PY";

std::string Descrita(const mdb::Definicion& d) {
  std::string s = "T";
  const auto n = [&](auto v) { s += " " + std::to_string(v); };
  const auto puntero = [&](mdb::Puntero p) {
    n(p.pagina);
    n(p.fila);
  };
  n(d.Pagina());
  n(d.filas);
  n(d.ultimo_automatico);
  n(d.clase);
  n(d.max_columnas);
  n(d.variables);
  puntero(d.propias);
  puntero(d.libres);
  for (const auto p : d.paginas) n(p);
  for (const auto& c : d.columnas) {
    s += "\nC " + c.nombre;
    n(static_cast<int>(c.tipo));
    for (const int v : {c.numero, c.variable, c.posicion, c.lcid}) n(v);
    for (const int v : {int{c.banderas}, int{c.banderas_ext}, int{c.desplazamiento}, int{c.largo}}) n(v);
    puntero(c.lv_propias);
    puntero(c.lv_libres);
    n(c.precision);
    n(c.escala);
  }
  for (const auto& r : d.reales) {
    s += "\nR";
    for (const auto& p : r.partes) s += " " + std::to_string(p.columna) + (p.descendente ? "-" : "+");
    puntero(r.mapa);
    n(r.raiz);
    n(r.banderas);
    n(r.entradas);
    n(r.distintas);
  }
  for (const auto& l : d.logicos) {
    s += "\nL " + l.nombre;
    n(l.numero);
    n(l.real);
    n(l.lado);
    n(l.otro_indice);
    n(l.otra_tabla);
    n(l.actualiza_en_cascada);
    n(l.borra_en_cascada);
    n(l.clase);
  }
  return s + "\n";
}

class Definitions : public testing::TestWithParam<std::string> {};

// The reader is an extra, beside the further files: without it there is no such case. What the samples hold
// is compared with what was put in (samples_test.cpp).
TEST_P(Definitions, AreReadAsTheIndependentReaderReadsThem) {
  const auto paginas = mdb_test::Cargar(GetParam());
  const mdb::Catalogo catalogo(*paginas);
  std::string nuestro;
  for (const auto& o : catalogo.Objetos())
    if (o.tipo == mdb::Objeto::Tabla)
      nuestro += Descrita(mdb::LeerDefinicion(*paginas, static_cast<mdb::NumPagina>(o.id)));
  const std::string suyo = mdb_test::Salida("python3 -c " + mdb_test::Entrecomillado(kPrograma) + " " +
                                            mdb_test::Entrecomillado(mdb_test::HerramientaDeControl()) + " " +
                                            mdb_test::Entrecomillado(GetParam()));
  EXPECT_EQ(nuestro, suyo);
  EXPECT_NE(nuestro, "");
}

std::vector<std::string> FilesOfTheReader() {
  if (mdb_test::HerramientaDeControl().empty()) return {};
  auto paths = mdb_test::EveryFile();
  std::erase_if(paths, [](const std::string& p) { return p.find("encrypted") != std::string::npos; });
  return paths;
}

GTEST_ALLOW_UNINSTANTIATED_PARAMETERIZED_TEST(Definitions);
INSTANTIATE_TEST_SUITE_P(Files, Definitions, testing::ValuesIn(FilesOfTheReader()),
                         [](const auto& c) { return mdb_test::CaseName(c.param); });

}  // namespace
