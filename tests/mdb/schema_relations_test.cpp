#include <algorithm>

#include "mdb/schema_support.h"

namespace {

using namespace mdb_test;
using mdb::TipoColumna;

mdb::RelacionDeTablas Relacion(std::string nombre, std::uint32_t banderas = 0) {
  return {std::move(nombre), "Renglones", {"Pedido"}, "Pedidos", {"Id"}, banderas};
}

BaseDePrueba Pedidos() {
  BaseDePrueba b;
  b->CrearTabla(
      {"Pedidos", {Col("Id", TipoColumna::Largo), Col("Cliente", TipoColumna::Texto)}, {Clave({"Id"})}},
      Hoy());
  b->CrearTabla({"Renglones",
                 {Col("Número", TipoColumna::Largo), Col("Pedido", TipoColumna::Largo),
                  Col("Texto", TipoColumna::Texto)},
                 {Clave({"Número"})}},
                Hoy());
  b.Insertar("Pedidos", {FilaDe(N(1), S("a")), FilaDe(N(2), S("b"))});
  b.Insertar("Renglones",
             {FilaDe(N(1), N(1), S("x")), FilaDe(N(2), N(1), S("y")), FilaDe(N(3), Nada(), S("z"))});
  return b;
}

const mdb::IndiceLogico* Foraneo(const mdb::Definicion& d) {
  const auto it = std::find_if(d.logicos.begin(), d.logicos.end(),
                               [](const auto& l) { return l.clase == mdb::IndiceLogico::Foraneo; });
  return it == d.logicos.end() ? nullptr : &*it;
}

TEST(CrearRelacion, PutsALogicalIndexOnEachSide) {
  auto b = Pedidos();
  constexpr auto kCascadas =
      mdb::RelacionDeTablas::kActualizaEnCascada | mdb::RelacionDeTablas::kBorraEnCascada;
  b->CrearRelacion(Relacion("PedidosRenglones", kCascadas), Hoy());
  const auto padre = b.Def("Pedidos"), hijo = b.Def("Renglones");
  const auto *p = Foraneo(padre), *h = Foraneo(hijo);
  ASSERT_TRUE(p != nullptr && h != nullptr);
  EXPECT_EQ(p->nombre, ".rB");  // number 1
  EXPECT_EQ(p->numero, 1U);
  EXPECT_EQ(p->real, 0U);  // the primary key's
  EXPECT_EQ(p->lado, mdb::IndiceLogico::Padre);
  EXPECT_EQ(p->otra_tabla, hijo.Pagina());
  EXPECT_EQ(p->otro_indice, static_cast<std::int32_t>(h->numero));
  EXPECT_EQ(h->nombre, "PedidosRenglones");
  EXPECT_EQ(h->lado, mdb::IndiceLogico::Hijo);
  EXPECT_EQ(h->otra_tabla, padre.Pagina());
  EXPECT_EQ(h->otro_indice, 1);
  EXPECT_EQ(hijo.reales[h->real].banderas, 0x80);
  for (const auto* l : {p, h}) {
    EXPECT_EQ(l->actualiza_en_cascada, 1);
    EXPECT_EQ(l->borra_en_cascada, 1);
  }
  ASSERT_EQ(b->Indice().Relaciones().size(), 1U);
  const auto& r = b->Indice().Relaciones()[0];
  EXPECT_EQ(r.nombre, "PedidosRenglones");
  EXPECT_EQ(r.tabla, "Renglones");
  EXPECT_EQ(r.columnas, std::vector<std::string>{"Pedido"});
  EXPECT_EQ(r.tabla_referida, "Pedidos");
  EXPECT_EQ(r.columnas_referidas, std::vector<std::string>{"Id"});
  EXPECT_EQ(r.banderas, kCascadas);
  b.Sana();
  if (HayMdbtools()) {
    const std::string esquema = b.Esquema("--relations", "postgres");
    EXPECT_NE(
        esquema.find("FOREIGN KEY (\"pedido\") REFERENCES \"Pedidos\"(\"id\") ON UPDATE CASCADE ON DELETE "
                     "CASCADE"),
        std::string::npos)
        << esquema;
  }
}

TEST(CrearRelacion, SharesAnIndexThatTheChildHas) {
  auto b = Pedidos();
  b->CrearIndice("Renglones", Ind("Por pedido", {"Pedido"}));
  b->CrearRelacion(Relacion("R"), Hoy());
  EXPECT_EQ(b.Def("Renglones").reales.size(), 2U);
  EXPECT_EQ(b.Def("Renglones").logicos.size(), 3U);
  b.Sana();
  // The name goes, what it stood on stays for the relationship.
  b->BorrarIndice("Renglones", "Por pedido");
  EXPECT_EQ(b.Def("Renglones").reales.size(), 2U);
  b->BorrarRelacion("r");
  EXPECT_EQ(b.Def("Renglones").reales.size(), 1U);
  EXPECT_EQ(b.Def("Pedidos").logicos.size(), 1U);
  EXPECT_TRUE(b->Indice().Relaciones().empty());
  b.Sana();
}

// An index that leaves rows with Nulls out cannot serve.
TEST(CrearRelacion, DoesNotShareAnIndexThatIgnoresNulls) {
  auto b = Pedidos();
  auto ignora = Ind("Por pedido", {"Pedido"});
  ignora.ignora_nulos = true;
  b->CrearIndice("Renglones", ignora);
  b->CrearRelacion(Relacion("R"), Hoy());
  EXPECT_EQ(b.Def("Renglones").reales.size(), 3U);
  b.Sana();
}

TEST(CrearRelacion, OneToOneWantsAUniqueIndexOfTheChild) {
  auto b = Pedidos();
  b.Rechaza("no admite repetidos",
            [&] { b->CrearRelacion(Relacion("Uno", mdb::RelacionDeTablas::kUnoAUno), Hoy()); });
  auto r = Relacion("Uno", mdb::RelacionDeTablas::kUnoAUno);
  r.columnas = {"Número"};
  b.Rechaza("filas que no están en \"Pedidos\"", [&] { b->CrearRelacion(r, Hoy()); });
  b.Insertar("Pedidos", {FilaDe(N(3), S("c"))});
  b->CrearRelacion(r, Hoy());
  EXPECT_EQ(Foraneo(b.Def("Renglones"))->real, 0U);  // its primary key
  b.Sana();
}

// Columns in another order than the parent's index: the pairs follow the index.
TEST(CrearRelacion, FollowsTheOrderOfTheReferencedIndex) {
  BaseDePrueba b;
  b->CrearTabla(
      {"Años", {Col("Año", TipoColumna::Entero), Col("Mes", TipoColumna::Byte)}, {Clave({"Año", "Mes"})}},
      Hoy());
  b->CrearTabla(
      {"Días", {Col("m", TipoColumna::Byte), Col("a", TipoColumna::Entero), Col("d", TipoColumna::Byte)}, {}},
      Hoy());
  b.Insertar("Años", {FilaDe(N(2026), N(11))});
  b.Insertar("Días", {FilaDe(N(11), N(2026), N(21)), FilaDe(Nada(), Nada(), N(1))});
  b->CrearRelacion({"AñosDías", "Días", {"m", "a"}, "Años", {"Mes", "Año"}, 0}, Hoy());
  const auto d = b.Def("Días");
  ASSERT_EQ(d.reales.size(), 1U);
  EXPECT_EQ(d.reales[0].partes[0].columna, 1);
  EXPECT_EQ(d.reales[0].partes[1].columna, 0);
  EXPECT_EQ(b->Indice().Relaciones()[0].columnas, (std::vector<std::string>{"a", "m"}));
  b.Sana();
  b->BorrarRelacion("AñosDías");
  // A row with one Null has no parent.
  b.Insertar("Días", {FilaDe(N(11), Nada(), N(2))});
  b.Rechaza("filas que no están", [&] {
    b->CrearRelacion({"AñosDías", "Días", {"m", "a"}, "Años", {"Mes", "Año"}, 0}, Hoy());
  });
}

TEST(CrearRelacion, ATableMayReferToItself) {
  BaseDePrueba b;
  b->CrearTabla(
      {"Personas", {Col("Id", TipoColumna::Largo), Col("Jefe", TipoColumna::Largo)}, {Clave({"Id"})}}, Hoy());
  b.Insertar("Personas", {FilaDe(N(1), Nada()), FilaDe(N(2), N(1))});
  b->CrearRelacion({"Jefes", "personas", {"Jefe"}, "PERSONAS", {"Id"}, 0}, Hoy());
  const auto d = b.Def("Personas");
  ASSERT_EQ(d.logicos.size(), 3U);
  for (const auto& l : d.logicos)
    EXPECT_EQ(l.otra_tabla, l.clase == mdb::IndiceLogico::Foraneo ? d.Pagina() : 0) << l.nombre;
  b.Sana();
  b->BorrarRelacion("Jefes");
  EXPECT_EQ(b.Def("Personas").logicos.size(), 1U);
  EXPECT_EQ(b.Def("Personas").reales.size(), 1U);
  b.Sana();
}

TEST(CrearRelacion, RefusesWhatItCannotEnforce) {
  auto b = Pedidos();
  const auto crear = [&](mdb::RelacionDeTablas r) { return [&b, r] { b->CrearRelacion(r, Hoy()); }; };
  auto r = Relacion("R");
  r.columnas = {"Texto"};
  b.Rechaza("tipos distintos", crear(r));
  r.columnas = {"Texto"};
  r.columnas_referidas = {"Cliente"};
  b.Rechaza("necesita en la tabla \"Pedidos\" un índice sin repetidos", crear(r));
  r.columnas = {"Pedido", "Texto"};
  b.Rechaza("de 1 a 10 columnas", crear(r));
  r = Relacion("R");
  r.tabla_referida = "Nada";
  b.Rechaza("no tiene una tabla \"Nada\"", crear(r));
  r = Relacion("a.b");
  b.Rechaza("lleva el signo .", crear(r));
  b.Insertar("Renglones", {FilaDe(N(9), N(77), S("huérfana"))});
  b.Rechaza("filas que no están en \"Pedidos\"", crear(Relacion("R")));
  // Not enforced, it is only told.
  b->CrearRelacion(Relacion("R", mdb::RelacionDeTablas::kNoExigida), Hoy());
  EXPECT_EQ(Foraneo(b.Def("Pedidos")), nullptr);
  b.Rechaza("ya tiene una relación \"r\"", crear(Relacion("r", mdb::RelacionDeTablas::kNoExigida)));
  b.Sana();
}

TEST(BorrarTabla, IsRefusedWhileARelationshipIsEnforced) {
  auto b = Pedidos();
  b->CrearRelacion(Relacion("R"), Hoy());
  for (const char* tabla : {"Pedidos", "Renglones"})
    b.Rechaza("está en la relación \"R\"", [&] { b->BorrarTabla(tabla); });
  b.Rechaza("una relación se apoya en él", [&] { b->BorrarIndice("Pedidos", "PrimaryKey"); });
  b.Rechaza("es de una relación", [&] { b->BorrarIndice("Renglones", "R"); });
  b.Rechaza("la usa la relación \"R\"", [&] { b->QuitarColumna("Renglones", "Pedido"); });
  b.Rechaza("no tiene una relación \"X\"", [&] { b->BorrarRelacion("X"); });
  b->BorrarRelacion("R");
  b->CrearRelacion(Relacion("Suelta", mdb::RelacionDeTablas::kNoExigida), Hoy());
  b.Rechaza("la usa la relación \"Suelta\"", [&] { b->QuitarColumna("Renglones", "Pedido"); });
  b->BorrarTabla("Pedidos");
  EXPECT_TRUE(b->Indice().Relaciones().empty());
  b.Sana();
}

// Several relationships on one parent, dropped in another order.
TEST(CrearRelacion, ManyOnOneParent) {
  BaseDePrueba b;
  b->CrearTabla({"P", {Col("Id", TipoColumna::Largo)}, {Clave({"Id"})}}, Hoy());
  for (int i = 0; i < 6; ++i) {
    const std::string hijo = "H" + std::to_string(i);
    b->CrearTabla({hijo, {Col("Id", TipoColumna::Largo), Col("P", TipoColumna::Largo)}, {Clave({"Id"})}},
                  Hoy());
    b->CrearRelacion({"P" + hijo, hijo, {"P"}, "P", {"Id"}, 0}, Hoy());
  }
  const auto nombres = [&] {
    std::vector<std::string> v;
    for (const auto& l : b.Def("P").logicos) v.push_back(l.nombre);
    return v;
  };
  EXPECT_EQ(nombres(), (std::vector<std::string>{".rB", ".rC", ".rD", ".rE", ".rF", ".rG", "PrimaryKey"}));
  b.Sana();
  for (int i : {2, 0, 5}) b->BorrarRelacion("PH" + std::to_string(i));
  EXPECT_EQ(nombres(), (std::vector<std::string>{".rC", ".rE", ".rF", "PrimaryKey"}));
  b->CrearRelacion({"Otra", "H0", {"P"}, "P", {"Id"}, 0}, Hoy());
  EXPECT_EQ(nombres(), (std::vector<std::string>{".rB", ".rC", ".rE", ".rF", "PrimaryKey"}));
  b.Sana();
}

}  // namespace
