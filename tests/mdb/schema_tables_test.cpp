#include "mdb/pages/page_map.h"
#include "mdb/schema_support.h"

namespace {

using namespace mdb_test;
using mdb::TipoColumna;

constexpr TipoColumna kTipos[] = {
    TipoColumna::Booleano, TipoColumna::Byte,  TipoColumna::Entero,  TipoColumna::Largo, TipoColumna::Moneda,
    TipoColumna::Simple,   TipoColumna::Doble, TipoColumna::Fecha,   TipoColumna::Texto, TipoColumna::Memo,
    TipoColumna::Binario,  TipoColumna::Ole,   TipoColumna::Decimal, TipoColumna::Guid};

mdb::NuevaTabla TablaDeTodo() {
  mdb::NuevaTabla t{"Años y niñez", {}, {}};
  int n = 0;
  for (const auto tipo : kTipos) t.columnas.push_back(Col("Columna ñ " + std::to_string(++n), tipo));
  t.columnas[12].precision = 10;
  t.columnas[12].escala = 4;
  return t;
}

mdb::Fila FilaDeTodo() {
  return FilaDe(true, N(200), N(-300), N(70000), base::Moneda{-12345}, 1.5F, -2.25, base::Fecha{46347.5},
                S("José Ñandú"), S(std::string(3000, 'm')), mdb::Bytes{1, 2, 3}, mdb::Bytes(9000, 7),
                mdb::DecimalDeTexto("-12.5", 4), mdb::GuidDeTexto("00112233-4455-6677-8899-AABBCCDDEEFF"));
}

TEST(CrearTabla, HoldsEveryType) {
  for (const std::uint16_t orden : {std::uint16_t{3082}, std::uint16_t{1034}, std::uint16_t{1033}}) {
    BaseDePrueba b(orden);
    b->CrearTabla(TablaDeTodo(), Hoy());
    const auto d = b.Def("AÑOS Y NIÑEZ");  // whatever the case
    ASSERT_EQ(d.columnas.size(), std::size(kTipos));
    EXPECT_EQ(d.max_columnas, std::size(kTipos));
    EXPECT_EQ(d.variables, 4);
    for (std::size_t i = 0; i < d.columnas.size(); ++i) {
      EXPECT_EQ(d.columnas[i].tipo, kTipos[i]);
      EXPECT_EQ(d.columnas[i].numero, i);
      EXPECT_EQ(d.columnas[i].posicion, i);
      EXPECT_EQ(d.columnas[i].lcid, d.columnas[i].tipo == TipoColumna::Decimal ? 0 : orden);
    }
    EXPECT_EQ(d.columnas[12].precision, 10);
    EXPECT_EQ(d.columnas[12].escala, 4);
    b.Insertar("Años y niñez", {FilaDeTodo(), mdb::Fila(std::size(kTipos))});
    const auto filas = b.Filas("Años y niñez");
    ASSERT_EQ(filas.size(), 2U);
    EXPECT_EQ(filas[0], FilaDeTodo());
    EXPECT_EQ(filas[1][0], mdb::Dato(false));
    EXPECT_EQ(filas[1][7], Nada());
    b.Sana();
  }
}

TEST(CrearTabla, OtherReadersSeeItsSchema) {
  if (!HayMdbtools()) GTEST_SKIP() << "no mdbtools";
  BaseDePrueba b;
  auto t = TablaDeTodo();
  t.columnas[3].autonumerica = true;
  t.columnas[8].largo = 40;
  t.columnas[8].requerida = true;
  t.columnas[8].defecto = "\"nadie\"";
  b->CrearTabla(t, Hoy());
  EXPECT_EQ(Mdbtools("mdb-tables", "-1", b.Guardado()), "Años y niñez\n");
  const std::string esquema = b.Esquema("--default-values --not-null", "access");
  for (const char* linea :
       {"CREATE TABLE [Años y niñez]", "[Columna ñ 1]\t\t\tBoolean NOT NULL", "[Columna ñ 2]\t\t\tByte",
        "[Columna ñ 3]\t\t\tInteger", "[Columna ñ 4]\t\t\tLong Integer", "[Columna ñ 5]\t\t\tCurrency",
        "[Columna ñ 6]\t\t\tSingle", "[Columna ñ 7]\t\t\tDouble", "[Columna ñ 8]\t\t\tDateTime",
        "[Columna ñ 9]\t\t\tText (40) NOT NULL DEFAULT 'nadie'", "[Columna ñ 10]\t\t\tMemo/Hyperlink (255)",
        "[Columna ñ 11]\t\t\tBinary", "[Columna ñ 12]\t\t\tOLE (255)", "[Columna ñ 13]\t\t\tNumeric (10, 4)",
        "[Columna ñ 14]\t\t\tReplication ID"})
    EXPECT_NE(esquema.find(linea), std::string::npos) << linea << "\n" << esquema;
}

TEST(CrearTabla, KeepsPropertiesOfItsColumns) {
  BaseDePrueba b;
  mdb::NuevaTabla t{"Legajos", {Col("Código", TipoColumna::Texto, 10), Col("Alta", TipoColumna::Fecha)}, {}};
  t.columnas[0].requerida = true;
  t.columnas[0].permite_vacio = false;
  t.columnas[0].comprime = false;
  t.columnas[1].defecto = "Date()+1";
  t.columnas.push_back(Col("Marca", TipoColumna::Guid));
  t.columnas[2].autonumerica = true;
  b->CrearTabla(t, Hoy());
  const auto& p = b->Indice().PropiedadesDe("legajos");
  const auto valor = [&](const char* columna, const char* nombre) {
    const auto* dato = mdb::Buscar(p, columna, nombre);
    return dato == nullptr ? Nada() : *dato;
  };
  EXPECT_EQ(valor("Código", "Required"), mdb::Dato(true));
  EXPECT_EQ(valor("Código", "AllowZeroLength"), mdb::Dato(false));
  EXPECT_EQ(valor("Código", "UnicodeCompression"), mdb::Dato(false));
  EXPECT_EQ(valor("Alta", "DefaultValue"), S("Date()+1"));
  EXPECT_EQ(valor("Alta", "AllowZeroLength"), Nada());
  EXPECT_EQ(valor("Marca", "DefaultValue"), S("GenGUID()"));
  EXPECT_EQ(b.Def("Legajos").columnas[2].banderas, 0x43);
  EXPECT_EQ(b.Def("Legajos").columnas[0].banderas_ext, 0);
  b.Sana();
}

TEST(CrearTabla, TakesTheColumnsThatThereMayBe) {
  BaseDePrueba b;
  mdb::NuevaTabla t{"Ancha", {}, {}};
  for (int i = 0; i < 255; ++i)
    t.columnas.push_back(
        Col("columna número " + std::to_string(i) + std::string(30, 'x'), i % 5 == 0 ? TipoColumna::Booleano
                                                                          : i % 2    ? TipoColumna::Texto
                                                                                     : TipoColumna::Largo));
  b->CrearTabla(t, Hoy());
  auto d = b.Def("Ancha");
  EXPECT_EQ(d.columnas.size(), 255U);
  EXPECT_GT(d.paginas.size(), 4U);
  mdb::Fila fila(255);
  for (std::size_t i = 0; i < 255; ++i)
    fila[i] = i % 5 == 0 ? mdb::Dato(i % 10 == 0)
              : i % 2    ? S("t" + std::to_string(i))
                         : N(static_cast<int>(i));
  b.Insertar("Ancha", {fila, fila});
  EXPECT_EQ(b.Filas("Ancha"), (std::vector<mdb::Fila>{fila, fila}));
  b.Sana();
  if (HayMdbtools()) {
    const std::string esquema = b.Esquema("");
    EXPECT_NE(esquema.find("columna número 254"), std::string::npos);
  }
  b.Rechaza("255 columnas", [&] { b->AgregarColumna("Ancha", Col("una más", TipoColumna::Largo)); });
  t.nombre = "Otra";
  t.columnas.push_back(Col("una más", TipoColumna::Largo));
  b.Rechaza("255 columnas", [&] { b->CrearTabla(t, Hoy()); });
  b->BorrarTabla("Ancha");
  EXPECT_EQ(b->Indice().Buscar("Ancha"), nullptr);
  b.Sana();
}

TEST(CrearTabla, RefusesWhatAccessWould) {
  BaseDePrueba b;
  const auto tabla = [&](std::string nombre, std::vector<mdb::NuevaColumna> columnas) {
    return [&b, t = mdb::NuevaTabla{std::move(nombre), std::move(columnas), {}}] { b->CrearTabla(t, Hoy()); };
  };
  const auto larga = Col("a", TipoColumna::Largo);
  b->CrearTabla({"Una", {larga}, {}}, Hoy());
  b.Rechaza("ya tiene una tabla con el nombre \"Una\"", tabla("UNA", {larga}));
  b.Rechaza("ya tiene una tabla", tabla("MSysObjects", {larga}));
  b.Rechaza("no tiene columnas", tabla("Otra", {}));
  b.Rechaza("Falta el nombre de una tabla", tabla("", {larga}));
  b.Rechaza("más de 64 letras", tabla(std::string(65, 'x'), {larga}));
  b.Rechaza("empieza con un espacio", tabla(" x", {larga}));
  for (const char* signo : {".", "!", "`", "[", "]"})
    b.Rechaza("lleva el signo " + std::string(signo), tabla("a" + std::string(signo) + "b", {larga}));
  b.Rechaza("carácter de control", tabla("a\tb", {larga}));
  b.Rechaza("ya tiene una columna \"A\"", tabla("Otra", {larga, Col("A", TipoColumna::Texto)}));
  b.Rechaza("lleva el signo .", tabla("Otra", {Col("a.b", TipoColumna::Texto)}));
  b.Rechaza("más de 255 letras", tabla("Otra", {Col("a", TipoColumna::Texto, 256)}));
  b.Rechaza("más de 510 bytes", tabla("Otra", {Col("a", TipoColumna::Binario, 511)}));
  b.Rechaza("no tiene", tabla("Otra", {Col("a", TipoColumna::EnteroGrande)}));
  auto decimal = Col("a", TipoColumna::Decimal);
  decimal.precision = 29;
  b.Rechaza("cantidad de cifras", tabla("Otra", {decimal}));
  decimal.precision = 5;
  decimal.escala = 6;
  b.Rechaza("cantidad de cifras", tabla("Otra", {decimal}));
  auto automatica = larga;
  automatica.autonumerica = true;
  auto segunda = automatica;
  segunda.nombre = "b";
  b.Rechaza("ya tiene una columna autonumérica, \"a\"", tabla("Otra", {automatica, segunda}));
  segunda.tipo = TipoColumna::Texto;
  b.Rechaza("no es un entero largo", tabla("Otra", {segunda}));
  std::vector<mdb::NuevaColumna> decimales;
  for (int i = 0; i < 240; ++i) decimales.push_back(Col("d" + std::to_string(i), TipoColumna::Decimal));
  b.Rechaza("no caben en una fila", tabla("Otra", decimales));
  // A bad index takes the whole table back.
  mdb::NuevaTabla con_indice{"Otra", {larga, Col("m", TipoColumna::Memo)}, {Ind("i", {"falta"})}};
  b.Rechaza("no tiene una columna \"falta\"", [&] { b->CrearTabla(con_indice, Hoy()); });
  b.Sana();
}

// A name of 64 letters counts letters, not bytes.
TEST(CrearTabla, NamesAreCountedInLetters) {
  BaseDePrueba b;
  std::string nombre;
  for (int i = 0; i < 64; ++i) nombre += "ñ";
  b->CrearTabla({nombre, {Col(nombre, TipoColumna::Largo)}, {Ind(nombre, {nombre})}}, Hoy());
  EXPECT_NE(b->Indice().Buscar(nombre), nullptr);
  b.Sana();
}

TEST(BorrarTabla, GivesAllPagesBack) {
  BaseDePrueba b;
  auto t = TablaDeTodo();
  t.indices = {Clave({"Columna ñ 4"}), Ind("Texto", {"Columna ñ 9"})};
  std::size_t paginas = 0;
  for (int vuelta = 0; vuelta < 5; ++vuelta) {
    b->CrearTabla(t, Hoy());
    std::vector<mdb::Fila> filas;
    for (int i = 0; i < 50; ++i) {
      filas.push_back(FilaDeTodo());
      filas.back()[3] = N(i);
    }
    b.Insertar(t.nombre, filas);
    b.Sana();
    const auto ahora = b.Guardado().size();
    if (vuelta == 0) paginas = ahora;
    EXPECT_EQ(ahora, paginas) << vuelta;
    b->BorrarTabla("años y niñez");
    b.Sana();
  }
  EXPECT_EQ(Mdbtools("mdb-tables", "-1", b.Guardado()), "");
}

TEST(BorrarTabla, LeavesTheOthersAlone) {
  BaseDePrueba b;
  for (const char* nombre : {"A", "B", "C"}) {
    b->CrearTabla({nombre, {Col("x", TipoColumna::Largo), Col("m", TipoColumna::Memo)}, {Clave({"x"})}},
                  Hoy());
    b.Insertar(nombre, {FilaDe(N(1), S(std::string(5000, nombre[0])))});
  }
  b->BorrarTabla("B");
  EXPECT_EQ(b.Filas("A"), std::vector<mdb::Fila>{FilaDe(N(1), S(std::string(5000, 'A')))});
  EXPECT_EQ(b.Filas("C"), std::vector<mdb::Fila>{FilaDe(N(1), S(std::string(5000, 'C')))});
  b.Sana();
  b.Rechaza("no tiene una tabla \"B\"", [&] { b->BorrarTabla("B"); });
  b.Rechaza("es del sistema", [&] { b->BorrarTabla("MSysACEs"); });
}

// A map that names a page of another table: the table is not dropped, and the other keeps its rows.
TEST(BorrarTabla, StopsAtAPageThatIsNotItsOwn) {
  BaseDePrueba b;
  for (const char* nombre : {"A", "B"}) {
    b->CrearTabla({nombre, {Col("x", TipoColumna::Largo), Col("m", TipoColumna::Memo)}, {}}, Hoy());
    b.Insertar(nombre, {FilaDe(N(1), S(std::string(5000, 'm')))});
  }
  auto& hojas = b->Hojas();
  const auto ajena = mdb::LeerMapa(hojas, b.Def("B").propias).front();
  mdb::PonerEnMapa(hojas, b.Def("A").propias, ajena);
  b.Rechaza("página " + std::to_string(ajena) + ": está en el mapa de una tabla",
            [&] { b->BorrarTabla("A"); });
  mdb::QuitarDeMapa(hojas, b.Def("A").propias, ajena);
  mdb::PonerEnMapa(hojas, b.Def("A").columnas[1].lv_propias, ajena);
  EXPECT_THROW(b->QuitarColumna("A", "m"), mdb::Danio);
  EXPECT_EQ(b.Filas("B").size(), 1U);
}

TEST(AgregarColumna, LeavesOldRowsWithoutIt) {
  BaseDePrueba b;
  b->CrearTabla({"T", {Col("a", TipoColumna::Largo), Col("b", TipoColumna::Texto)}, {}}, Hoy());
  b.Insertar("T", {FilaDe(N(1), S("uno"))});
  b->AgregarColumna("T", Col("c", TipoColumna::Doble));
  b->AgregarColumna("T", Col("d", TipoColumna::Booleano));
  b->AgregarColumna("T", Col("e", TipoColumna::Memo));
  b.Insertar("T", {FilaDe(N(2), S("dos"), 2.5, true, S(std::string(4000, 'e')))});
  EXPECT_EQ(b.Filas("T"),
            (std::vector<mdb::Fila>{FilaDe(N(1), S("uno"), Nada(), false, Nada()),
                                    FilaDe(N(2), S("dos"), 2.5, true, S(std::string(4000, 'e')))}));
  b.Sana();
  EXPECT_EQ(mdb::Buscar(b->Indice().PropiedadesDe("T"), "e", "AllowZeroLength") != nullptr, true);
  b.Rechaza("ya tiene una columna", [&] { b->AgregarColumna("T", Col("C", TipoColumna::Largo)); });
}

// Rows without any column of variable length have no count of them; the first such column gives them one.
TEST(AgregarColumna, TheFirstVariableOneRewritesTheRows) {
  BaseDePrueba b;
  b->CrearTabla({"T", {Col("a", TipoColumna::Largo), Col("b", TipoColumna::Booleano)}, {Clave({"a"})}},
                Hoy());
  std::vector<mdb::Fila> filas;
  for (int i = 0; i < 700; ++i) filas.push_back(FilaDe(N(i), i % 3 == 0));
  b.Insertar("T", filas);
  b->AgregarColumna("T", Col("t", TipoColumna::Texto));
  for (auto& f : filas) f.push_back(Nada());
  EXPECT_EQ(b.Filas("T"), filas);
  b.Sana();
  b->QuitarColumna("T", "t");
  for (auto& f : filas) f.pop_back();
  b.Insertar("T", {FilaDe(N(700), false)});
  filas.push_back(FilaDe(N(700), false));
  EXPECT_EQ(b.Filas("T"), filas);
  b.Sana();
}

TEST(AgregarColumna, NumbersTheRowsThatAreThere) {
  BaseDePrueba b;
  b->CrearTabla({"T", {Col("a", TipoColumna::Texto)}, {}}, Hoy());
  b.Insertar("T", {FilaDe(S("x")), FilaDe(S("y")), FilaDe(S("z"))});
  auto numero = Col("n", TipoColumna::Largo);
  numero.autonumerica = true;
  numero.semilla = 10;
  numero.incremento = -5;
  b->AgregarColumna("T", numero);
  EXPECT_EQ(b.Filas("T"),
            (std::vector<mdb::Fila>{FilaDe(S("x"), N(10)), FilaDe(S("y"), N(5)), FilaDe(S("z"), N(0))}));
  EXPECT_EQ(b.Def("T").ultimo_automatico, 0);
  EXPECT_EQ(b.Def("T").incremento, -5);
  auto guid = Col("g", TipoColumna::Guid);
  guid.autonumerica = true;
  b.Rechaza("tabla nueva", [&] { b->AgregarColumna("T", guid); });
}

TEST(QuitarColumna, KeepsTheOthersAndItsPlaceInTheCounts) {
  BaseDePrueba b;
  b->CrearTabla({"T",
                 {Col("a", TipoColumna::Largo), Col("b", TipoColumna::Texto), Col("m", TipoColumna::Memo),
                  Col("c", TipoColumna::Texto), Col("d", TipoColumna::Entero)},
                 {Ind("Por c", {"c"})}},
                Hoy());
  b.Insertar("T", {FilaDe(N(1), S("uno"), S(std::string(6000, 'm')), S("c1"), N(7))});
  const auto memo = b.Def("T").columnas[2];
  ASSERT_FALSE(mdb::LeerMapa(b->Hojas(), memo.lv_propias).empty());
  b.Rechaza("la usa el índice \"Por c\"", [&] { b->QuitarColumna("T", "C"); });
  b->QuitarColumna("T", "M");
  b->QuitarColumna("T", "a");
  EXPECT_EQ(b.Filas("T"), std::vector<mdb::Fila>{FilaDe(S("uno"), S("c1"), N(7))});
  EXPECT_EQ(b.Def("T").max_columnas, 5);
  EXPECT_EQ(b.Def("T").variables, 3);
  b.Sana();
  EXPECT_EQ(b->Indice().PropiedadesDe("T").count("m"), 0U);
  b.Insertar("T", {FilaDe(S("dos"), S("c2"), N(8))});
  b->AgregarColumna("T", Col("m", TipoColumna::Memo));  // the same name again, another column
  b.Insertar("T", {FilaDe(S("tres"), S("c3"), N(9), S(std::string(6000, 'n')))});
  EXPECT_EQ(b.Filas("T"),
            (std::vector<mdb::Fila>{FilaDe(S("uno"), S("c1"), N(7), Nada()),
                                    FilaDe(S("dos"), S("c2"), N(8), Nada()),
                                    FilaDe(S("tres"), S("c3"), N(9), S(std::string(6000, 'n')))}));
  b.Sana();
  b->BorrarIndice("T", "Por c");
  for (const char* c : {"c", "d", "m"}) b->QuitarColumna("T", c);
  b.Rechaza("es la única", [&] { b->QuitarColumna("T", "b"); });
  b.Rechaza("no tiene una columna \"z\"", [&] { b->QuitarColumna("T", "z"); });
  EXPECT_EQ(b.Filas("T"), (std::vector<mdb::Fila>{FilaDe(S("uno")), FilaDe(S("dos")), FilaDe(S("tres"))}));
  b.Sana();
}

// An old row, from before two columns and with one that is gone, changes and grows.
TEST(QuitarColumna, OldRowsCanStillBeChanged) {
  BaseDePrueba b;
  b->CrearTabla(
      {"T", {Col("a", TipoColumna::Texto), Col("m", TipoColumna::Memo), Col("n", TipoColumna::Largo)}, {}},
      Hoy());
  const auto id = b.Insertar("T", {FilaDe(S("a"), S(std::string(3000, 'm')), N(3))}).front();
  b->AgregarColumna("T", Col("p", TipoColumna::Texto));
  b->QuitarColumna("T", "m");
  b->AgregarColumna("T", Col("q", TipoColumna::Doble));
  mdb::CambioDeFila cambio;
  cambio.fila = id;
  cambio.valores.emplace_back(2, S(std::string(200, 'p')));
  mdb::Cambios cambios;
  cambios.cambiadas.push_back(cambio);
  b->Aplicar("T", cambios);
  EXPECT_EQ(b.Filas("T"), std::vector<mdb::Fila>{FilaDe(S("a"), N(3), S(std::string(200, 'p')), Nada())});
  b.Sana();
}

}  // namespace
