#include <algorithm>

#include "mdb/schema_support.h"

namespace {

using namespace mdb_test;
using mdb::ColumnType;

mdb::TableRelationship Relationship(std::string name, std::uint32_t flags = 0) {
  return {std::move(name), "Renglones", {"Pedido"}, "Pedidos", {"Id"}, flags};
}

TestDatabase Orders() {
  TestDatabase b;
  b->CreateTable({"Pedidos", {Col("Id", ColumnType::Long), Col("Cliente", ColumnType::Text)}, {Key({"Id"})}},
                 Today());
  b->CreateTable(
      {"Renglones",
       {Col("Número", ColumnType::Long), Col("Pedido", ColumnType::Long), Col("Texto", ColumnType::Text)},
       {Key({"Número"})}},
      Today());
  b.Insert("Pedidos", {RowOf(N(1), S("a")), RowOf(N(2), S("b"))});
  b.Insert("Renglones",
           {RowOf(N(1), N(1), S("x")), RowOf(N(2), N(1), S("y")), RowOf(N(3), Nothing(), S("z"))});
  return b;
}

const mdb::LogicalIndex* ForeignIndex(const mdb::Definition& d) {
  const auto it = std::find_if(d.logicals.begin(), d.logicals.end(),
                               [](const auto& l) { return l.kind == mdb::LogicalIndex::Foreign; });
  return it == d.logicals.end() ? nullptr : &*it;
}

TEST(CreateRelationship, PutsALogicalIndexOnEachSide) {
  auto b = Orders();
  constexpr auto kCascades =
      mdb::TableRelationship::kCascadesUpdates | mdb::TableRelationship::kCascadesDeletes;
  b->CreateRelationship(Relationship("PedidosRenglones", kCascades), Today());
  const auto parent = b.Def("Pedidos"), child = b.Def("Renglones");
  const auto *p = ForeignIndex(parent), *h = ForeignIndex(child);
  ASSERT_TRUE(p != nullptr && h != nullptr);
  EXPECT_EQ(p->name, ".rB");  // number 1
  EXPECT_EQ(p->number, 1U);
  EXPECT_EQ(p->real, 0U);  // the primary key's
  EXPECT_EQ(p->side, mdb::LogicalIndex::Parent);
  EXPECT_EQ(p->other_table, child.Page());
  EXPECT_EQ(p->other_index, static_cast<std::int32_t>(h->number));
  EXPECT_EQ(h->name, "PedidosRenglones");
  EXPECT_EQ(h->side, mdb::LogicalIndex::Child);
  EXPECT_EQ(h->other_table, parent.Page());
  EXPECT_EQ(h->other_index, 1);
  EXPECT_EQ(child.reals[h->real].flags, 0x80);
  for (const auto* l : {p, h}) {
    EXPECT_EQ(l->cascades_updates, 1);
    EXPECT_EQ(l->cascades_deletes, 1);
  }
  ASSERT_EQ(b->Catalog().Relationships().size(), 1U);
  const auto& r = b->Catalog().Relationships()[0];
  EXPECT_EQ(r.name, "PedidosRenglones");
  EXPECT_EQ(r.table, "Renglones");
  EXPECT_EQ(r.columns, std::vector<std::string>{"Pedido"});
  EXPECT_EQ(r.referenced_table, "Pedidos");
  EXPECT_EQ(r.referenced_columns, std::vector<std::string>{"Id"});
  EXPECT_EQ(r.flags, kCascades);
  b.ExpectSound();
  if (HasMdbtools()) {
    const std::string schema = b.Schema("--relations", "postgres");
    EXPECT_NE(
        schema.find("FOREIGN KEY (\"pedido\") REFERENCES \"Pedidos\"(\"id\") ON UPDATE CASCADE ON DELETE "
                    "CASCADE"),
        std::string::npos)
        << schema;
  }
}

TEST(CreateRelationship, SharesAnIndexThatTheChildHas) {
  auto b = Orders();
  b->CreateIndex("Renglones", Ind("Por pedido", {"Pedido"}));
  b->CreateRelationship(Relationship("R"), Today());
  EXPECT_EQ(b.Def("Renglones").reals.size(), 2U);
  EXPECT_EQ(b.Def("Renglones").logicals.size(), 3U);
  b.ExpectSound();
  // The name goes, what it stood on stays for the relationship.
  b->DropIndex("Renglones", "Por pedido");
  EXPECT_EQ(b.Def("Renglones").reals.size(), 2U);
  b->DropRelationship("r");
  EXPECT_EQ(b.Def("Renglones").reals.size(), 1U);
  EXPECT_EQ(b.Def("Pedidos").logicals.size(), 1U);
  EXPECT_TRUE(b->Catalog().Relationships().empty());
  b.ExpectSound();
}

// An index that leaves rows with Nulls out cannot serve.
TEST(CreateRelationship, DoesNotShareAnIndexThatIgnoresNulls) {
  auto b = Orders();
  auto ignoring = Ind("Por pedido", {"Pedido"});
  ignoring.ignores_nulls = true;
  b->CreateIndex("Renglones", ignoring);
  b->CreateRelationship(Relationship("R"), Today());
  EXPECT_EQ(b.Def("Renglones").reals.size(), 3U);
  b.ExpectSound();
}

TEST(CreateRelationship, OneToOneWantsAUniqueIndexOfTheChild) {
  auto b = Orders();
  b.ExpectRejected("no admite repetidos", [&] {
    b->CreateRelationship(Relationship("Uno", mdb::TableRelationship::kOneToOne), Today());
  });
  auto r = Relationship("Uno", mdb::TableRelationship::kOneToOne);
  r.columns = {"Número"};
  b.ExpectRejected("filas que no están en 'Pedidos'", [&] { b->CreateRelationship(r, Today()); });
  b.Insert("Pedidos", {RowOf(N(3), S("c"))});
  b->CreateRelationship(r, Today());
  EXPECT_EQ(ForeignIndex(b.Def("Renglones"))->real, 0U);  // its primary key
  b.ExpectSound();
}

// Columns in another order than the parent's index: the pairs follow the index.
TEST(CreateRelationship, FollowsTheOrderOfTheReferencedIndex) {
  TestDatabase b;
  b->CreateTable(
      {"Años", {Col("Año", ColumnType::Integer), Col("Mes", ColumnType::Byte)}, {Key({"Año", "Mes"})}},
      Today());
  b->CreateTable(
      {"Días", {Col("m", ColumnType::Byte), Col("a", ColumnType::Integer), Col("d", ColumnType::Byte)}, {}},
      Today());
  b.Insert("Años", {RowOf(N(2026), N(11))});
  b.Insert("Días", {RowOf(N(11), N(2026), N(21)), RowOf(Nothing(), Nothing(), N(1))});
  b->CreateRelationship({"AñosDías", "Días", {"m", "a"}, "Años", {"Mes", "Año"}, 0}, Today());
  const auto d = b.Def("Días");
  ASSERT_EQ(d.reals.size(), 1U);
  EXPECT_EQ(d.reals[0].parts[0].column, 1);
  EXPECT_EQ(d.reals[0].parts[1].column, 0);
  EXPECT_EQ(b->Catalog().Relationships()[0].columns, (std::vector<std::string>{"a", "m"}));
  b.ExpectSound();
  b->DropRelationship("AñosDías");
  // A row with one Null has no parent.
  b.Insert("Días", {RowOf(N(11), Nothing(), N(2))});
  b.ExpectRejected("filas que no están", [&] {
    b->CreateRelationship({"AñosDías", "Días", {"m", "a"}, "Años", {"Mes", "Año"}, 0}, Today());
  });
}

TEST(CreateRelationship, ATableMayReferToItself) {
  TestDatabase b;
  b->CreateTable({"Personas", {Col("Id", ColumnType::Long), Col("Jefe", ColumnType::Long)}, {Key({"Id"})}},
                 Today());
  b.Insert("Personas", {RowOf(N(1), Nothing()), RowOf(N(2), N(1))});
  b->CreateRelationship({"Jefes", "personas", {"Jefe"}, "PERSONAS", {"Id"}, 0}, Today());
  const auto d = b.Def("Personas");
  ASSERT_EQ(d.logicals.size(), 3U);
  for (const auto& l : d.logicals)
    EXPECT_EQ(l.other_table, l.kind == mdb::LogicalIndex::Foreign ? d.Page() : 0) << l.name;
  b.ExpectSound();
  b->DropRelationship("Jefes");
  EXPECT_EQ(b.Def("Personas").logicals.size(), 1U);
  EXPECT_EQ(b.Def("Personas").reals.size(), 1U);
  b.ExpectSound();
}

TEST(CreateRelationship, RefusesWhatItCannotEnforce) {
  auto b = Orders();
  const auto create = [&](mdb::TableRelationship r) {
    return [&b, r] { b->CreateRelationship(r, Today()); };
  };
  auto r = Relationship("R");
  r.columns = {"Texto"};
  b.ExpectRejected("tipos distintos", create(r));
  r.columns = {"Texto"};
  r.referenced_columns = {"Cliente"};
  b.ExpectRejected("necesita en la tabla 'Pedidos' un índice sin repetidos", create(r));
  r.columns = {"Pedido", "Texto"};
  b.ExpectRejected("de 1 a 10 columnas", create(r));
  r = Relationship("R");
  r.referenced_table = "Nada";
  b.ExpectRejected("no tiene una tabla 'Nada'", create(r));
  r = Relationship("a.b");
  b.ExpectRejected("lleva el signo .", create(r));
  b.Insert("Renglones", {RowOf(N(9), N(77), S("huérfana"))});
  b.ExpectRejected("filas que no están en 'Pedidos'", create(Relationship("R")));
  // Not enforced, it is only told.
  b->CreateRelationship(Relationship("R", mdb::TableRelationship::kNotEnforced), Today());
  EXPECT_EQ(ForeignIndex(b.Def("Pedidos")), nullptr);
  b.ExpectRejected("ya tiene una relación 'r'",
                   create(Relationship("r", mdb::TableRelationship::kNotEnforced)));
  b.ExpectSound();
}

TEST(DropTable, IsRefusedWhileARelationshipIsEnforced) {
  auto b = Orders();
  b->CreateRelationship(Relationship("R"), Today());
  for (const char* table : {"Pedidos", "Renglones"})
    b.ExpectRejected("está en la relación 'R'", [&] { b->DropTable(table); });
  b.ExpectRejected("una relación se apoya en él", [&] { b->DropIndex("Pedidos", "PrimaryKey"); });
  b.ExpectRejected("es de una relación", [&] { b->DropIndex("Renglones", "R"); });
  b.ExpectRejected("la usa la relación 'R'", [&] { b->DropColumn("Renglones", "Pedido"); });
  b.ExpectRejected("no tiene una relación 'X'", [&] { b->DropRelationship("X"); });
  b->DropRelationship("R");
  b->CreateRelationship(Relationship("Suelta", mdb::TableRelationship::kNotEnforced), Today());
  b.ExpectRejected("la usa la relación 'Suelta'", [&] { b->DropColumn("Renglones", "Pedido"); });
  b->DropTable("Pedidos");
  EXPECT_TRUE(b->Catalog().Relationships().empty());
  b.ExpectSound();
}

// Several relationships on one parent, dropped in another order.
TEST(CreateRelationship, ManyOnOneParent) {
  TestDatabase b;
  b->CreateTable({"P", {Col("Id", ColumnType::Long)}, {Key({"Id"})}}, Today());
  for (int i = 0; i < 6; ++i) {
    const std::string child = "H" + std::to_string(i);
    b->CreateTable({child, {Col("Id", ColumnType::Long), Col("P", ColumnType::Long)}, {Key({"Id"})}},
                   Today());
    b->CreateRelationship({"P" + child, child, {"P"}, "P", {"Id"}, 0}, Today());
  }
  const auto names = [&] {
    std::vector<std::string> v;
    for (const auto& l : b.Def("P").logicals) v.push_back(l.name);
    return v;
  };
  EXPECT_EQ(names(), (std::vector<std::string>{".rB", ".rC", ".rD", ".rE", ".rF", ".rG", "PrimaryKey"}));
  b.ExpectSound();
  for (int i : {2, 0, 5}) b->DropRelationship("PH" + std::to_string(i));
  EXPECT_EQ(names(), (std::vector<std::string>{".rC", ".rE", ".rF", "PrimaryKey"}));
  b->CreateRelationship({"Otra", "H0", {"P"}, "P", {"Id"}, 0}, Today());
  EXPECT_EQ(names(), (std::vector<std::string>{".rB", ".rC", ".rE", ".rF", "PrimaryKey"}));
  b.ExpectSound();
}

}  // namespace
