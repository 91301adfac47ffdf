#include "mdb/samples.h"

#include <algorithm>
#include <filesystem>

#include "mdb/corpus.h"
#include "mdb/samples_internal.h"
#include "support/temp_folder.h"

namespace mdb_test {
namespace {

using namespace internal;

Sample Of(std::string name, Format format, std::vector<Table> tables) {
  Sample s;
  s.name = std::move(name);
  s.file.format = format;
  s.file.tables = std::move(tables);
  return s;
}

// Only columns that Access 2007 and later have.
Table NewTypes() {
  Table t;
  t.name = "Nuevos";
  t.columns = {Col("id", ColumnType::Long),          Col("grande", ColumnType::BigInteger),
               Col("complejo", ColumnType::Complex), Col("extendida", ColumnType::ExtendedDate),
               Col("calculada", ColumnType::Double), Col("calculado", ColumnType::Boolean)};
  t.columns[4].calculated = t.columns[5].calculated = true;
  const std::string date = "0000000000000738000:0000000000000000000:7";
  for (int i = 0; i < 6; ++i)
    t.rows.push_back({{N(i), N(5000000000LL * (i - 2)), N(i), T(date + std::string(42 - date.size(), ' ')),
                       i * 1.5, i % 2 == 0}});
  t.indexes = {Primary({"id"}), Over("Por grande", {"grande"})};
  t.shown = {3, 5, 0, 4, 2, 1};
  return t;
}

std::vector<Sample> Make() {
  std::vector<Sample> all;
  all.push_back(Of("empty.mdb", Format::Jet4, {}));
  all.push_back(Of("types97.mdb", Format::Jet3, {Types(Format::Jet3), Changed()}));
  all.push_back(Of("types.mdb", Format::Jet4, {Types(Format::Jet4), Changed()}));
  all.push_back(Of("types.accdb", Format::Ace, {Types(Format::Ace), Changed()}));
  all.push_back(Of("new_types.accdb", Format::Ace, {NewTypes()}));
  all.back().file.version = 5;
  all.push_back(Of("texts97.mdb", Format::Jet3, {Texts(Format::Jet3, false)}));
  all.push_back(Of("texts.mdb", Format::Jet4, {Texts(Format::Jet4, false)}));
  for (const std::uint16_t lcid : {std::uint16_t{3082}, std::uint16_t{1034}}) {
    all.push_back(Of("texts_" + std::to_string(lcid) + ".mdb", Format::Jet4, {Texts(Format::Jet4, true)}));
    all.back().file.lcid = lcid;
  }
  all.push_back(Of("long.mdb", Format::Jet4, {LongDefinition()}));
  all.back().file.free_pages = 22;
  all.push_back(Of("moved97.mdb", Format::Jet3, {Moved()}));
  all.push_back(Of("moved.mdb", Format::Jet4, {Moved()}));
  all.push_back(Of("compound97.mdb", Format::Jet3, {Compound()}));
  all.push_back(Of("compound.mdb", Format::Jet4, {Compound()}));
  all.push_back(Of("relations97.mdb", Format::Jet3, Related()));
  all.back().file.relations = Relations();
  all.back().file.queries_on_page_5 = true;
  all.push_back(Of("relations.mdb", Format::Jet4, Related()));
  all.back().file.relations = Relations();
  all.push_back(Queries("queries97.mdb", Format::Jet3));
  all.push_back(Queries("queries.mdb", Format::Jet4));
  all.push_back(Queries("queries.accdb", Format::Ace));
  all.back().file.order_version = 1;
  all.push_back(OddNames());
  all.push_back(Of("password97.mdb", Format::Jet3, Related()));
  all.back().file.password = "contraseña";
  all.push_back(Of("password.mdb", Format::Jet4, Related()));
  all.back().file.password = "contraseña";
  all.push_back(Of("encrypted97.mdb", Format::Jet3, {Types(Format::Jet3), Changed()}));
  all.back().file.key = 0xA1B2C3D4;
  all.push_back(Of("encrypted.mdb", Format::Jet4, {Types(Format::Jet4), Changed()}));
  all.back().file.key = 0xA1B2C3D4;
  return all;
}

}  // namespace

const std::vector<Sample>& Samples() {
  static const std::vector<Sample> kAll = Make();
  return kAll;
}

const Sample& SampleNamed(const std::string& name) {
  for (const Sample& s : Samples())
    if (s.name == name) return s;
  throw std::runtime_error("no sample " + name);
}

mdb::Bytes SampleBytes(const std::string& name) { return assembler::Assemble(SampleNamed(name).file); }

std::unique_ptr<mdb::MemoryPages> LoadSample(const std::string& name) {
  mdb::Bytes bytes = SampleBytes(name);
  const mdb::FileHeader header = mdb::ReadHeader(bytes);
  return std::make_unique<mdb::MemoryPages>(header, std::move(bytes));
}

std::string SamplePath(const std::string& name) {
  static const support::TempFolder kFolder;
  const std::string path = kFolder.Path(name);
  if (!std::filesystem::exists(path)) {
    const mdb::Bytes bytes = SampleBytes(name);
    kFolder.Write(name, {reinterpret_cast<const char*>(bytes.data()), bytes.size()});
  }
  return path;
}

std::vector<std::string> SampleNames() {
  std::vector<std::string> names;
  for (const Sample& s : Samples()) names.push_back(s.name);
  return names;
}

std::vector<std::string> EveryFile() {
  std::vector<std::string> paths;
  for (const Sample& s : Samples()) paths.push_back(SamplePath(s.name));
  for (const std::string& path : CorpusFiles()) paths.push_back(path);
  return paths;
}

std::string CaseName(const std::string& path) {
  std::string name = std::filesystem::path(path).filename().string();
  std::replace(name.begin(), name.end(), '.', '_');
  const std::string further = CorpusFolder();
  return !further.empty() && path.starts_with(further) ? "further_" + name : name;
}

std::vector<mdb::Row> RowsPutIn(const assembler::Table& table) {
  std::vector<mdb::Row> rows;
  for (const assembler::RowSpec& r : table.rows) {
    if (r.state == assembler::RowSpec::Deleted || r.state == assembler::RowSpec::Emptied) continue;
    mdb::Row row;
    for (std::size_t i = 0; i < table.columns.size(); ++i) {
      if (table.columns[i].gone) continue;
      const bool known = r.columns == 0 || i < r.columns;
      const bool yes_or_no = table.columns[i].type == ColumnType::Boolean;
      row.push_back(known ? r.values.at(i) : yes_or_no ? Datum{false} : Datum{});
    }
    rows.push_back(std::move(row));
  }
  return rows;
}

}  // namespace mdb_test
