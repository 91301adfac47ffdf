#include <algorithm>

#include "base/date.h"
#include "mdb/samples_internal.h"

namespace mdb_test::internal {

using enum ColumnType;
using mdb::Bytes;

Column Col(std::string name, ColumnType type, unsigned length) {
  Column c;
  c.name = std::move(name);
  c.type = type;
  c.length = length;
  return c;
}
Index Over(std::string name, std::vector<std::string> columns) {
  Index i;
  i.name = std::move(name);
  i.columns = std::move(columns);
  return i;
}
Index Unique(std::string name, std::vector<std::string> columns) {
  Index i = Over(std::move(name), std::move(columns));
  i.unique = true;
  return i;
}
Index Primary(std::vector<std::string> columns) {
  Index i = Over("PrimaryKey", std::move(columns));
  i.primary = true;
  return i;
}

namespace {

Bytes Sequence(std::size_t length, unsigned start) {
  Bytes b(length);
  for (std::size_t i = 0; i < length; ++i) b[i] = static_cast<std::uint8_t>(start + i * 7 + i / 256);
  return b;
}
std::string Letters(std::size_t length, unsigned start) {
  std::string text;
  for (std::size_t i = 0; i < length; ++i) text += static_cast<char>('a' + (start + i * 5 + i / 26) % 26);
  return text;
}
mdb::Decimal Number(const char* text, std::uint8_t scale) { return mdb::DecimalFromText(text, scale); }

void AddRow(Table& t, mdb::Row values, RowSpec::State state = RowSpec::Here) {
  t.rows.push_back({std::move(values), state, 0});
}

void AddIndexesBothWays(Table& t) {
  for (const Column& c : t.columns) {
    if (c.type == Ole || c.type == Complex || c.type == ExtendedDate || c.calculated) continue;
    t.indexes.push_back(Over("Por " + c.name, {c.name}));
    t.indexes.push_back(Over("Bajando " + c.name, {"-" + c.name}));
  }
}

}  // namespace

Table Types(Format format) {
  Table t;
  t.name = "Tipos";
  t.columns = {Col("Logico", Boolean),
               Col("Pequeno", ColumnType::Byte),
               Col("Entero", Integer),
               Col("Largo", Long),
               Col("Dinero", Currency),
               Col("Simple", Single),
               Col("Doble", Double),
               Col("Fecha", Date),
               Col("Bytes", Binary, 30),
               Col("Texto", Text, 50),
               Col("Nota", Memo),
               Col("Cosa", Ole),
               Col("Llave", ColumnType::Guid)};
  t.columns[3].autonumber = true;
  t.columns[9].compresses = true;
  using base::Date, base::Currency;
  const auto guid = [](const char* text) { return mdb::GuidFromText(text); };
  AddRow(t, {true, N(255), N(32767), N(2147483647), Currency{9223372036854775807LL}, 3.25F, 1e300,
             Date{2958465.5}, Sequence(30, 1), T("Peña & Hijos"), T("corta"), Sequence(40, 2),
             guid("{00112233-4455-6677-8899-AABBCCDDEEFF}")});
  AddRow(t, {false, N(0), N(-32768), N(-2147483647), Currency{-9223372036854775807LL}, -3.25F, -1e-300,
             Date{-1.25}, Bytes{1}, T("ab"), T(Letters(900, 3)), Sequence(1500, 4),
             guid("{FFFFFFFF-0000-1111-2222-333333333333}")});
  AddRow(t, {});
  t.rows.back().values.resize(13);
  t.rows.back().values[0] = false;
  AddRow(t,
         {true, N(7), N(0), N(12), Currency{15000}, 0.5F, 8.25, Date{36526}, Bytes{0x80, 0, 0xFF}, T("Ñandú"),
          T(Letters(6000, 5)), Sequence(20000, 6), guid("{12345678-9ABC-DEF0-1234-56789ABCDEF0}")});
  AddRow(t,
         {true, N(1), N(1), N(13), Currency{1}, 1.0F, 1.0, Date{1.0}, Sequence(9, 9), T("se va"), T("x"),
          Bytes{1}, guid("{00000000-0000-0000-0000-000000000001}")},
         RowSpec::Deleted);
  for (int i = 0; i < 40; ++i)
    AddRow(t, {i % 3 == 0, N(i), N(i * 100 - 2000), N(100 + i), Currency{i * 2500 - 5},
               0.25F * static_cast<float>(i), i / 8.0 - 2, Date{36000 + i * 31.25},
               i % 5 == 0 ? Datum{} : Datum{Sequence(1 + i % 20u, i)},
               i % 7 == 0 ? Datum{} : T(Letters(1 + i % 30u, i)), T(Letters(10u * i + 1, i)),
               Sequence(33u * i + 1, i),
               mdb::Guid{{static_cast<std::uint8_t>(200 - i), 3, static_cast<std::uint8_t>(i)}}});
  if (format != Format::Jet3) {
    Column c = Col("Decimal", ColumnType::Decimal);
    c.precision = 18;
    c.scale = 4;
    t.columns.push_back(c);
    const char* numbers[] = {"99999999999999.9999", "-99999999999999.9999", "", "8.25", "0", "-0.0001",
                             "4294967296.5"};
    for (std::size_t i = 0; i < t.rows.size(); ++i) {
      const std::string text = i < 7 ? numbers[i] : std::to_string(static_cast<int>(i) * 3 - 50);
      t.rows[i].values.push_back(text.empty() ? Datum{} : Datum{Number(text.c_str(), 4)});
    }
  }
  AddIndexesBothWays(t);
  std::erase_if(t.indexes, [](const Index& i) { return i.columns[0].find("Nota") != std::string::npos; });
  t.rows_a_page = 9;
  t.properties = {{"", "Description", T("Una columna de cada tipo")},
                  {"Texto", "Required", true},
                  {"Texto", "AllowZeroLength", false},
                  {"Doble", "DefaultValue", T("8,5")},
                  {"Doble", "DecimalPlaces", N(2)}};
  return t;
}

// The characters that the tables of weights know, alone and between letters; in the Spanish orders the
// letters that are one of their own.
Table Texts(Format format, bool spanish) {
  Table t;
  t.name = "Textos";
  t.columns = {Col("Id", Long), Col("Texto", Text, 60), Col("Otro", Text, 60)};
  t.columns[2].compresses = true;
  std::vector<std::string> texts = {
      "",      "Muñoz", "MUNOZ", "muñoz ", "Pena",  "Peña",   "Penz",  "José",
      "Jose",  "JOSÉ",  "co-op", "coop",   "co'op", "O'Neil", "ONeil", "Forêts d'érables",
      "1º",    "1ª",    "10",    "9",      "%",     "_",      "a b",   "ab",
      "Ángel", "angel", "Zoë",   "Zoe",    "zoé",   "groß",   "gross", "cHá",
      "chico", "Chico", "cinco", "calle",  "caldo", "LLAMA",  "lima",  "Ñ",
      "n",     "o",     "¿Qué?", "¡Ya!"};
  if (format == Format::Jet3)
    std::erase_if(texts, [](const std::string& x) { return !x.empty() && x.back() == ' '; });
  if (!spanish)
    for (unsigned c = 0x21; c < 0x100; ++c) {
      if (c >= 0x7F && c < 0xA1) continue;
      const std::string one =
          c < 0x80 ? std::string(1, static_cast<char>(c))
                   : std::string{static_cast<char>(0xC0 | c >> 6), static_cast<char>(0x80 | (c & 0x3F))};
      // Letters of two: how many places they take is known of ß alone.
      if (c == 0xC6 || c == 0xE6 || c == 0xDE || c == 0xFE) continue;
      texts.push_back(one);
      texts.push_back("x" + one + "y");
    }
  for (std::size_t i = 0; i < texts.size(); ++i) {
    const bool same = i % 11 == 10;
    AddRow(t,
           {N(static_cast<std::int64_t>(i)), T(texts[i]), same ? Datum{} : T(texts[texts.size() - 1 - i])});
  }
  t.indexes = {Primary({"Id"}), Over("Subiendo", {"Texto"}), Over("Bajando", {"-Texto"}),
               Over("Dos", {"Otro", "-Texto"})};
  t.indexes.push_back(Over("Sin nulos", {"Otro"}));
  t.indexes.back().ignores_nulls = true;
  t.prefixes = true;
  return t;
}

Table LongDefinition() {
  Table t;
  t.name = "Larga";
  mdb::Row row;
  for (int i = 0; i < 200; ++i) {
    const std::string name = "Una columna con un nombre largo, la de número " + std::to_string(i);
    t.columns.push_back(i % 3 == 0 ? Col(name, Text, 20) : i % 3 == 1 ? Col(name, Long) : Col(name, Boolean));
    row.push_back(i % 3 == 0 ? T("v" + std::to_string(i)) : i % 3 == 1 ? N(i * 1000) : Datum{i % 2 == 0});
  }
  for (int k = 0; k < 5; ++k) {
    row[1] = N(k);
    AddRow(t, row);
    row[static_cast<std::size_t>(3 * k + 3)] = Datum{};
  }
  t.indexes = {Primary({t.columns[1].name})};
  return t;
}

Table Moved() {
  Table t;
  t.name = "Table1";
  t.columns = {Col("id", Long), Col("texto", Text, 255), Col("nota", Memo), Col("cosa", Ole),
               Col("sí", Boolean)};
  for (int i = 0; i < 90; ++i)
    AddRow(t,
           {N(i), T(Letters(1 + i % 120u, i)), T(Letters(i * 97u % 5000 + 1, i)),
            i % 4 == 0 ? Datum{} : Datum{Sequence(i * 131u % 9000 + 1, i)}, i % 2 == 0},
           i % 6 == 2   ? RowSpec::Moved
           : i % 9 == 4 ? RowSpec::Deleted
           : i % 9 == 7 ? RowSpec::Emptied
                        : RowSpec::Here);
  for (RowSpec& r : t.rows)
    if (r.state == RowSpec::Deleted || r.state == RowSpec::Emptied) r.values[2] = r.values[3] = Datum{};
  t.indexes = {Primary({"id"}), Over("Por texto", {"texto"})};
  t.chains = true;
  t.bitmap_pages = true;
  t.rows_a_page = 12;
  return t;
}

Table Changed() {
  Table t;
  t.name = "Cambiada";
  t.columns = {Col("id", Long),        Col("borrada", Long),  Col("nombre", Text, 40), Col("ida", Text, 40),
               Col("suelto", Integer), Col("nota", Memo),     Col("cuando", Date),     Col("nuevo", Double),
               Col("nueva", Text, 30), Col("activo", Boolean)};
  t.columns[1].gone = t.columns[3].gone = true;
  t.columns[4].variable = t.columns[6].variable = true;
  for (int i = 0; i < 60; ++i) {
    RowSpec r;
    r.values = {N(i),
                {},
                T(Letters(5 + i % 9u, i)),
                {},
                N(i - 30),
                T(Letters(i % 70u, i)),
                base::Date{40000.0 + i},
                i / 4.0,
                T("nueva " + std::to_string(i)),
                i % 2 == 1};
    if (i < 20) r.columns = 7;  // older than the last three
    if (i >= 20 && i < 40) r.columns = 8;
    t.rows.push_back(std::move(r));
  }
  t.indexes = {Primary({"id"}), Over("Por nueva", {"nueva", "nombre"}), Over("Por suelto", {"suelto"})};
  return t;
}

Table Compound() {
  Table t;
  t.name = "Table1";
  t.columns = {Col("a", Text, 40), Col("b", Long), Col("c", Long)};
  for (int i = 0; i < 512; ++i) AddRow(t, {T(Letters(4, i % 16)), N(i % 32), N(i)});
  t.indexes = {Unique("Compuesto", {"a", "-b", "c"}), Primary({"c"}), Over("Por b", {"b"})};
  t.entries_a_leaf = 24;
  t.prefixes = true;
  t.rows_a_page = 100;
  return t;
}

std::vector<Table> Related() {
  Table one, two, three;
  one.name = "Table1";
  one.columns = {Col("id", Long), Col("otherfk1", Long), Col("otherfk2", Long), Col("data", Text, 30)};
  one.indexes = {Over("otherfk1", {"otherfk1"}), Primary({"id"}), Over("otherfk2", {"otherfk2"})};
  const int rows[][3] = {{0, 0, 10}, {1, 1, 11}, {2, 1, 12}, {3, 2, 13}};
  for (const auto& r : rows) AddRow(one, {N(r[0]), N(r[1]), N(r[2]), T("fila " + std::to_string(r[0]))});
  two.name = "Table2";
  three.name = "Table3";
  for (Table* t : {&two, &three}) {
    t->columns = {Col("id", Long), Col("data", Text, 30)};
    t->indexes = {Primary({"id"})};
  }
  for (int i = 0; i < 3; ++i) AddRow(two, {N(i), T("dos " + std::to_string(i))});
  for (int i = 10; i < 14; ++i) AddRow(three, {N(i), T("tres " + std::to_string(i))});
  int words = 20;
  for (Table* t : {&one, &two, &three})
    t->properties = {{"", "Description",
                      T("La tabla " + t->name + " con " + Letters(static_cast<std::size_t>(words++), 1))},
                     {"data", "Required", true},
                     {"id", "Caption", T("Número")}};
  return {one, two, three};
}

std::vector<assembler::Relation> Relations() {
  return {{"Table2Table1", "Table1", {"otherfk1"}, "Table2", {"id"}, 0x1000},
          {"Table3Table1", "Table1", {"otherfk2"}, "Table3", {"id"}, 0x100},
          {"Sueltas", "Table2", {"id", "data"}, "Table3", {"id", "data"}, 2}};
}

}  // namespace mdb_test::internal
