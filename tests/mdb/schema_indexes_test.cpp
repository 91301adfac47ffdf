#include <algorithm>

#include "mdb/indexes/index_tree.h"
#include "mdb/pages/page_map.h"
#include "mdb/schema_support.h"

namespace {

using namespace mdb_test;
using mdb::TipoColumna;

// Values in index order with one Null, a text with an accent, a hyphen and trailing blanks among them.
BaseDePrueba ConFilas() {
  BaseDePrueba b;
  b->CrearTabla(
      {"T",
       {Col("n", TipoColumna::Largo), Col("Texto", TipoColumna::Texto, 50), Col("f", TipoColumna::Fecha),
        Col("ok", TipoColumna::Booleano), Col("dec", TipoColumna::Decimal), Col("g", TipoColumna::Guid),
        Col("m", TipoColumna::Moneda), Col("memo", TipoColumna::Memo), Col("bin", TipoColumna::Binario),
        Col("d", TipoColumna::Doble)},
       {}},
      Hoy());
  std::vector<mdb::Fila> filas;
  const char* textos[] = {"cañón", "canon", "co-op", "coop", "Ñandú", "zapato  ", "árbol", "arbol"};
  for (int i = 0; i < 400; ++i) {
    const bool nulo = i % 40 == 39;
    filas.push_back(
        FilaDe(N(400 - i), nulo ? Nada() : S(textos[i % 8] + std::to_string(i / 8)),
               mdb::Dato(base::Fecha{i * 1.25 - 200}), i % 2 == 0,
               mdb::Dato(mdb::DecimalDeTexto(std::to_string(i - 200), 0)),
               mdb::Dato(mdb::Guid{{static_cast<std::uint8_t>(i), 1, 2, static_cast<std::uint8_t>(i / 256)}}),
               mdb::Dato(base::Moneda{(i - 100) * 12345}), S("memo " + std::to_string(i * 7 % 400)),
               mdb::Dato(mdb::Bytes(static_cast<std::size_t>(1 + i % 20), static_cast<std::uint8_t>(i))),
               mdb::Dato(i * 0.5 - 77)));
  }
  b.Insertar("T", std::move(filas));
  return b;
}

std::size_t Entradas(BaseDePrueba& b, const std::string& tabla, const std::string& indice) {
  const auto d = b.Def(tabla);
  std::size_t cuantas = 0;
  for (const auto& l : d.logicos)
    if (l.nombre == indice)
      mdb::ArbolDeIndice(b->Hojas(), d.Pagina(), d.reales[l.real]).Recorrer([&](const mdb::Entrada&) {
        return ++cuantas > 0;
      });
  return cuantas;
}

TEST(CrearIndice, TakesInTheRowsThatAreThere) {
  auto b = ConFilas();
  int n = 0;
  for (const char* columna : {"n", "Texto", "f", "ok", "dec", "g", "m", "memo", "bin", "d"}) {
    for (const std::string signo : {"", "-"}) {
      const std::string nombre = "Índice " + std::to_string(++n);
      b->CrearIndice("t", Ind(nombre, {signo + columna}));
      EXPECT_EQ(Entradas(b, "T", nombre), 400U) << columna;
    }
  }
  b->CrearIndice("T", Ind("Compuesto", {"ok", "-Texto", "f"}));
  b->CrearIndice("T", Clave({"n"}));
  EXPECT_EQ(b.Def("T").logicos.size(), 22U);
  EXPECT_EQ(b.Def("T").ClavePrimaria()->nombre, "PrimaryKey");
  b.Sana();
  // They are kept from then on.
  b.Insertar("T", {FilaDe(N(1000), S("último"), mdb::Dato(base::Fecha{1}), true,
                          mdb::Dato(mdb::DecimalDeTexto("5", 0)), mdb::Dato(mdb::Guid{}),
                          mdb::Dato(base::Moneda{1}), S("m"), mdb::Dato(mdb::Bytes{1}), mdb::Dato(0.5))});
  EXPECT_EQ(Entradas(b, "T", "Compuesto"), 401U);
  b.Sana();
  if (HayMdbtools()) {
    EXPECT_NE(b.Esquema("--indexes", "postgres").find("PRIMARY KEY (\"n\")"), std::string::npos);
  }
}

TEST(CrearIndice, MarksWhatItIs) {
  BaseDePrueba b;
  b->CrearTabla({"T", {Col("a", TipoColumna::Largo), Col("b", TipoColumna::Texto)}, {Clave({"a"})}}, Hoy());
  auto ignora = Ind("Ignora", {"b"});
  ignora.ignora_nulos = true;
  auto requerido = Ind("Requerido", {"b"});
  requerido.requerido = true;
  b->CrearIndice("T", ignora);
  b->CrearIndice("T", requerido);
  b->CrearIndice("T", Unico("Sin repetidos", {"-b", "a"}));
  const auto d = b.Def("T");
  EXPECT_EQ(d.reales[0].banderas, 0x89);
  EXPECT_EQ(d.reales[1].banderas, 0x82);
  EXPECT_EQ(d.reales[2].banderas, 0x88);
  EXPECT_EQ(d.reales[3].banderas, 0x81);
  EXPECT_TRUE(d.reales[3].partes[0].descendente);
  EXPECT_FALSE(d.reales[3].partes[1].descendente);
  std::vector<std::string> nombres;  // kept by name
  for (const auto& l : d.logicos) nombres.push_back(l.nombre);
  EXPECT_EQ(nombres, (std::vector<std::string>{"Ignora", "PrimaryKey", "Requerido", "Sin repetidos"}));
  b.Sana();
}

TEST(CrearIndice, RefusesRowsThatDoNotObey) {
  BaseDePrueba b;
  b->CrearTabla(
      {"T", {Col("a", TipoColumna::Largo), Col("b", TipoColumna::Texto), Col("c", TipoColumna::Largo)}, {}},
      Hoy());
  b.Insertar("T", {FilaDe(N(1), S("Ana"), N(1)), FilaDe(N(2), S("ANA "), N(1)), FilaDe(N(3), Nada(), Nada()),
                   FilaDe(N(4), Nada(), Nada())});
  // Case and trailing blanks make no difference to a key.
  b.Rechaza("no admite repetidos", [&] { b->CrearIndice("T", Unico("u", {"b"})); });
  b.Rechaza("no admite repetidos", [&] { b->CrearIndice("T", Unico("u", {"c", "b"})); });
  b.Rechaza("no admite nulos", [&] { b->CrearIndice("T", Clave({"b"})); });
  try {
    b->CrearIndice("T", Unico("u", {"b"}));
  } catch (const mdb::ErrorDeClave& e) {
    EXPECT_EQ(e.Numero(), 3022);
    EXPECT_EQ(e.indice, "u");
  }
  // Keys of Nulls alone may repeat, and an index that ignores them does not list them.
  auto ignora = Ind("i", {"b"});
  ignora.ignora_nulos = true;
  b->CrearIndice("T", ignora);
  EXPECT_EQ(Entradas(b, "T", "i"), 2U);
  b->CrearIndice("T", Unico("u", {"a", "b"}));
  EXPECT_EQ(Entradas(b, "T", "u"), 4U);
  b.Sana();
}

TEST(CrearIndice, RepeatedNullsAreNoRepetition) {
  BaseDePrueba b;
  b->CrearTabla({"T", {Col("a", TipoColumna::Largo), Col("b", TipoColumna::Texto)}, {}}, Hoy());
  b.Insertar("T", {FilaDe(Nada(), Nada()), FilaDe(Nada(), Nada()), FilaDe(N(1), Nada())});
  b->CrearIndice("T", Unico("u", {"a", "b"}));
  EXPECT_EQ(Entradas(b, "T", "u"), 3U);
  b.Sana();
  b.Insertar("T", {FilaDe(N(2), S("x")), FilaDe(N(2), S("y"))});
  b.Rechaza("no admite repetidos", [&] { b->CrearIndice("T", Unico("v", {"a"})); });
}

TEST(CrearIndice, RefusesWhatCannotBe) {
  BaseDePrueba b;
  std::vector<mdb::NuevaColumna> columnas;
  for (int i = 0; i < 12; ++i) columnas.push_back(Col("c" + std::to_string(i), TipoColumna::Largo));
  columnas.push_back(Col("o", TipoColumna::Ole));
  b->CrearTabla({"T", columnas, {Clave({"c0"})}}, Hoy());
  const auto crear = [&](mdb::NuevoIndice i) { return [&b, i] { b->CrearIndice("T", i); }; };
  b.Rechaza("ya tiene una clave principal", [&] {
    auto otra = Clave({"c1"});
    otra.nombre = "Otra";
    b->CrearIndice("T", otra);
  });
  b.Rechaza("ya tiene un índice \"primarykey\"", crear(Ind("primarykey", {"c1"})));
  b.Rechaza("no tiene una columna \"zz\"", crear(Ind("i", {"zz"})));
  b.Rechaza("dos veces la columna \"c1\"", crear(Ind("i", {"c1", "c2", "C1"})));
  b.Rechaza("no puede estar en un índice", crear(Ind("i", {"o"})));
  b.Rechaza("de 1 a 10 columnas", crear(Ind("i", {})));
  b.Rechaza("de 1 a 10 columnas",
            crear(Ind("i", {"c0", "c1", "c2", "c3", "c4", "c5", "c6", "c7", "c8", "c9", "c10"})));
  b.Rechaza("Falta el nombre de un índice", crear(Ind("", {"c1"})));
  b.Rechaza("no tiene una tabla \"X\"", [&] { b->CrearIndice("X", Ind("i", {"c1"})); });
  b->CrearIndice("T", Ind("diez", {"c0", "c1", "c2", "c3", "c4", "c5", "c6", "c7", "c8", "-c9"}));
  for (int i = 0; i < 30; ++i)
    b->CrearIndice("T", Ind("i" + std::to_string(i), {(i % 2 ? "-c" : "c") + std::to_string(i % 12)}));
  EXPECT_EQ(b.Def("T").logicos.size(), 32U);
  b.Rechaza("ya tiene 32 índices", crear(Ind("uno más", {"c1"})));
  mdb::Fila fila(13);
  for (int i = 0; i < 12; ++i) fila[static_cast<std::size_t>(i)] = N(i);
  b.Insertar("T", {fila});
  b.Sana();
}

TEST(BorrarIndice, GivesItsPagesBack) {
  auto b = ConFilas();
  const auto antes = b.Guardado().size();
  b->CrearIndice("T", Ind("Uno", {"Texto", "memo"}));
  b->CrearIndice("T", Ind("Dos", {"f"}));
  b->CrearIndice("T", Ind("Tres", {"g"}));
  b.Sana();
  const auto con = b.Guardado().size();
  EXPECT_GT(con, antes);
  b->BorrarIndice("T", "DOS");
  EXPECT_EQ(Entradas(b, "T", "Uno"), 400U);
  EXPECT_EQ(Entradas(b, "T", "Tres"), 400U);
  b.Sana();
  b->BorrarIndice("T", "Uno");
  EXPECT_EQ(Entradas(b, "T", "Tres"), 400U);
  b->BorrarIndice("T", "Tres");
  EXPECT_TRUE(b.Def("T").reales.empty());
  b.Sana();
  b->CrearIndice("T", Ind("Uno", {"Texto", "memo"}));
  b->CrearIndice("T", Ind("Dos", {"f"}));
  b->CrearIndice("T", Ind("Tres", {"g"}));
  EXPECT_EQ(b.Guardado().size(), con);
  b.Sana();
  b.Rechaza("no tiene un índice \"Nada\"", [&] { b->BorrarIndice("T", "Nada"); });
}

}  // namespace
