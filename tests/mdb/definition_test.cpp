#include "mdb/definitions/definition.h"

#include <gtest/gtest.h>

#include "base/text.h"
#include "mdb/catalog/catalog.h"
#include "mdb/corpus.h"
#include "mdb/exported.h"
#include "mdb/samples.h"

namespace {

// Prints what the independent reader finds in the definitions of a file's tables.
const char* const kProgram = R"PY(
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

std::string Described(const mdb::Definition& d) {
  std::string s = "T";
  const auto n = [&](auto v) { s += " " + std::to_string(v); };
  const auto pointer = [&](mdb::Pointer p) {
    n(p.page);
    n(p.row);
  };
  n(d.Page());
  n(d.rows);
  n(d.last_auto_number);
  n(d.kind);
  n(d.max_columns);
  n(d.variables);
  pointer(d.owned_pages);
  pointer(d.free_pages);
  for (const auto p : d.pages) n(p);
  for (const auto& c : d.columns) {
    s += "\nC " + c.name;
    n(static_cast<int>(c.type));
    for (const int v : {c.number, c.variable, c.position, c.lcid}) n(v);
    for (const int v : {int{c.flags}, int{c.extended_flags}, int{c.offset}, int{c.length}}) n(v);
    pointer(c.lv_owned_pages);
    pointer(c.lv_free_pages);
    n(c.precision);
    n(c.scale);
  }
  for (const auto& r : d.reals) {
    s += "\nR";
    for (const auto& p : r.parts) s += " " + std::to_string(p.column) + (p.descending ? "-" : "+");
    pointer(r.map);
    n(r.root);
    n(r.flags);
    n(r.entries);
    n(r.distinct);
  }
  for (const auto& l : d.logicals) {
    s += "\nL " + l.name;
    n(l.number);
    n(l.real);
    n(l.side);
    n(l.other_index);
    n(l.other_table);
    n(l.cascades_updates);
    n(l.cascades_deletes);
    n(l.kind);
  }
  return s + "\n";
}

class Definitions : public testing::TestWithParam<std::string> {};

// The reader is an extra, beside the further files: without it there is no such case. What the samples hold
// is compared with what was put in (samples_test.cpp).
TEST_P(Definitions, AreReadAsTheIndependentReaderReadsThem) {
  const auto pages = mdb_test::Load(GetParam());
  const mdb::SystemCatalog catalog(*pages);
  std::string ours;
  for (const auto& o : catalog.Objects())
    if (o.type == mdb::Object::Table)
      ours += Described(mdb::ReadDefinition(*pages, static_cast<mdb::PageNumber>(o.id)));
  const std::string theirs =
      mdb_test::Output("python3 -c " + mdb_test::Quoted(kProgram) + " " +
                       mdb_test::Quoted(mdb_test::CheckingTool()) + " " + mdb_test::Quoted(GetParam()));
  EXPECT_EQ(ours, theirs);
  EXPECT_NE(ours, "");
}

std::vector<std::string> FilesOfTheReader() {
  if (mdb_test::CheckingTool().empty()) return {};
  auto paths = mdb_test::EveryFile();
  std::erase_if(paths, [](const std::string& p) { return p.find("encrypted") != std::string::npos; });
  return paths;
}

GTEST_ALLOW_UNINSTANTIATED_PARAMETERIZED_TEST(Definitions);
INSTANTIATE_TEST_SUITE_P(Files, Definitions, testing::ValuesIn(FilesOfTheReader()),
                         [](const auto& c) { return mdb_test::CaseName(c.param); });

}  // namespace
