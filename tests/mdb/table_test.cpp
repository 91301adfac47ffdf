#include "mdb/rows/table.h"

#include <gtest/gtest.h>

#include "mdb/pages/page_map.h"

namespace {

using mdb::Bytes;

constexpr std::size_t kPagina = 4096;
constexpr mdb::NumPagina kTabla = 5;
constexpr std::uint32_t kLval = 0x4C41564C;

struct Ranura {
  std::uint16_t banderas;
  Bytes bytes;
};

// A data page: rows from its end downwards, slots behind its head.
Bytes PaginaDeDatos(std::uint32_t dueno, const std::vector<Ranura>& ranuras) {
  Bytes p(kPagina, 0xEE);  // what is free is not zero in real files either
  p[0] = p[1] = 1;
  mdb::Poner32(p, 4, dueno);
  mdb::Poner16(p, 12, static_cast<std::uint16_t>(ranuras.size()));
  std::size_t fin = kPagina, pos = 14;
  for (const auto& r : ranuras) {
    fin -= r.bytes.size();
    mdb::PonerBytes(p, fin, r.bytes);
    mdb::Poner16(p, pos, static_cast<std::uint16_t>(fin | r.banderas));
    pos += 2;
  }
  return p;
}

Bytes Puntero(mdb::IdFila id) {
  Bytes b{id.fila};
  mdb::Agregar24(b, id.pagina);
  return b;
}

Bytes MapaEnLinea(std::uint32_t primera, std::initializer_list<unsigned> paginas) {
  Bytes b(5 + 8);
  mdb::Poner32(b, 1, primera);
  for (const unsigned p : paginas)
    b[5 + (p - primera) / 8] |= static_cast<std::uint8_t>(1U << (p - primera) % 8);
  return b;
}

// A row of the table below: a Long and a Text.
Bytes FilaDe(std::int32_t n, const std::string& texto) {
  Bytes b{2, 0};
  mdb::Agregar32(b, static_cast<std::uint32_t>(n));
  b.insert(b.end(), {0xFF, 0xFE});
  b.insert(b.end(), texto.begin(), texto.end());
  mdb::Agregar16(b, static_cast<std::uint16_t>(8 + texto.size()));
  mdb::Agregar16(b, 6);
  mdb::Agregar16(b, 1);
  b.push_back(3);
  return b;
}

mdb::Definicion Tabla() {
  mdb::Definicion d;
  d.paginas = {kTabla};
  d.max_columnas = 2;
  d.variables = 1;
  mdb::Columna n, t;
  n.nombre = "N";
  n.banderas |= mdb::Columna::kFija;
  t.nombre = "T";
  t.tipo = mdb::TipoColumna::Texto;
  t.numero = 1;
  d.columnas = {n, t};
  d.propias = {1, 0};
  return d;
}

// Page 1 holds the map, the pages from 2 on are given.
struct Archivo {
  mdb::PaginasEnMemoria paginas;
  mdb::Definicion tabla = Tabla();

  explicit Archivo(const std::vector<Bytes>& desde_dos, const Bytes& mapa = MapaEnLinea(0, {2}))
      : paginas(mdb::Cabecera{}, Unir(desde_dos, mapa)) {}

  static Bytes Unir(const std::vector<Bytes>& desde_dos, const Bytes& mapa) {
    Bytes todo(kPagina);
    mdb::AgregarBytes(todo, PaginaDeDatos(0, {{0, mapa}}));
    for (const auto& p : desde_dos) mdb::AgregarBytes(todo, p);
    return todo;
  }

  // "page:row number text" of each row.
  std::string Leer(const std::vector<std::size_t>& columnas = {}, std::size_t cuantas = 100) {
    std::string salida;
    mdb::RecorrerFilas(
        paginas, tabla,
        [&](mdb::IdFila id, const mdb::Fila& fila) {
          salida += std::to_string(id.pagina) + ":" + std::to_string(id.fila);
          if (const auto* n = std::get_if<std::int64_t>(&fila[0])) salida += " " + std::to_string(*n);
          if (const auto* t = std::get_if<std::string>(&fila[1])) salida += " " + *t;
          salida += "\n";
          return --cuantas > 0;
        },
        columnas);
    return salida;
  }
  // What reading all rows complains of.
  std::string Queja() {
    try {
      Leer();
    } catch (const mdb::Danio& d) {
      return d.Descripcion();
    }
    return "none";
  }
};

std::string Danada(int pagina, const std::string& motivo) {
  return "El archivo está dañado, página " + std::to_string(pagina) + ": " + motivo;
}

// Page 2: a row, a deleted one with and one without its bytes, a moved one and the last; page 3: a place of a
// moved row.
Archivo ConDeTodo() {
  return Archivo({PaginaDeDatos(kTabla, {{0, FilaDe(1, "uno")},
                                         {0xC000, FilaDe(2, "dos")},
                                         {0xC000, {}},
                                         {0x4000, Puntero({3, 0})},
                                         {0, FilaDe(5, "cinco")}}),
                  PaginaDeDatos(kTabla, {{0x8000, FilaDe(4, "cuatro")}})},
                 MapaEnLinea(0, {2, 3}));
}

TEST(Tabla, WalksLiveRowsByTheirIdentities) {
  auto a = ConDeTodo();
  EXPECT_EQ(a.Leer(), "2:0 1 uno\n2:3 4 cuatro\n2:4 5 cinco\n");
  EXPECT_EQ(a.Leer({1}), "2:0 uno\n2:3 cuatro\n2:4 cinco\n");
  EXPECT_EQ(a.Leer({}, 2), "2:0 1 uno\n2:3 4 cuatro\n");
}

TEST(Tabla, FindsOneRowByItsIdentity) {
  auto a = ConDeTodo();
  EXPECT_EQ(mdb::LeerFila(a.paginas, a.tabla, {2, 0}), (mdb::Fila{std::int64_t{1}, std::string("uno")}));
  EXPECT_EQ(mdb::LeerFila(a.paginas, a.tabla, {2, 3}), (mdb::Fila{std::int64_t{4}, std::string("cuatro")}));
  EXPECT_FALSE(mdb::LeerFila(a.paginas, a.tabla, {2, 1}));
  EXPECT_FALSE(mdb::LeerFila(a.paginas, a.tabla, {2, 2}));
  EXPECT_FALSE(mdb::LeerFila(a.paginas, a.tabla, {3, 0}));  // the place of a moved row is nobody's identity
  EXPECT_FALSE(mdb::LeerFila(a.paginas, a.tabla, {2, 9}));
  EXPECT_EQ(mdb::BuscarFila(a.paginas, a.tabla, {2, 0})->lugar, (mdb::IdFila{2, 0}));
  EXPECT_EQ(mdb::BuscarFila(a.paginas, a.tabla, {2, 3})->lugar, (mdb::IdFila{3, 0}));
  EXPECT_THROW(mdb::LeerFila(a.paginas, a.tabla, {1, 0}), mdb::Danio);  // a page of maps
  EXPECT_THROW(mdb::LeerFila(a.paginas, a.tabla, {99, 0}), mdb::Danio);
}

TEST(Tabla, DamageNamesItsPage) {
  EXPECT_EQ(Archivo({PaginaDeDatos(7, {{0, FilaDe(1, "uno")}})}).Queja(), Danada(2, "es de otra tabla"));
  EXPECT_EQ(Archivo({Bytes(kPagina)}).Queja(), Danada(2, "no es una página de datos"));
  EXPECT_EQ(Archivo({PaginaDeDatos(kTabla, {{0, FilaDe(1, "uno")}})}, MapaEnLinea(0, {2, 3})).Queja(),
            Danada(1, "una tabla tiene la página 3 y el archivo termina antes: está cortado"));
  EXPECT_EQ(Archivo({PaginaDeDatos(kTabla, {{0, FilaDe(1, "uno")}, {0, {2, 0}}})}).Queja(),
            Danada(2, "la fila 1 no se puede leer"));
  // A moved row may lead to the place of a moved row alone: never to a row, a deleted one, another moved one.
  for (const unsigned banderas : {0x0000U, 0xC000U, 0x4000U})
    EXPECT_EQ(Archivo({PaginaDeDatos(kTabla, {{0x4000, Puntero({3, 0})}}),
                       PaginaDeDatos(kTabla, {{static_cast<std::uint16_t>(banderas), FilaDe(4, "cuatro")}})})
                  .Queja(),
              Danada(3, "una fila movida no está donde debe"));
  EXPECT_EQ(Archivo({PaginaDeDatos(kTabla, {{0x4000, Puntero({2, 0})}})}).Queja(),
            Danada(2, "una fila movida no está donde debe"));
  EXPECT_EQ(Archivo({PaginaDeDatos(kTabla, {{0x4000, {1, 2}}})}).Queja(),
            Danada(2, "una fila movida no se puede seguir"));
  EXPECT_EQ(Archivo({PaginaDeDatos(kTabla, {{0x4000, Puntero({77, 0})}})}).Queja(),
            Danada(77, "el archivo tiene 3 páginas"));
  EXPECT_EQ(Archivo({PaginaDeDatos(kTabla, {{0x4000, Puntero({3, 1})}}),
                     PaginaDeDatos(kTabla, {{0x8000, FilaDe(4, "cuatro")}})})
                .Queja(),
            Danada(3, "no tiene la fila 1"));
}

TEST(Tabla, SlotsOutOfPlaceAreDamage) {
  Bytes p = PaginaDeDatos(kTabla, {{0, FilaDe(1, "uno")}, {0, FilaDe(2, "dos")}});
  mdb::Poner16(p, 16, 4095);  // rises
  EXPECT_EQ(Archivo({p}).Queja(), Danada(2, "la fila 1 está fuera de lugar"));
  mdb::Poner16(p, 16, 16);  // inside the list of slots
  EXPECT_EQ(Archivo({p}).Queja(), Danada(2, "la fila 1 está fuera de lugar"));
  mdb::Poner16(p, 14, 0x1FFF);  // beyond the page
  EXPECT_EQ(Archivo({p}).Queja(), Danada(2, "la fila 0 está fuera de lugar"));
  mdb::Poner16(p, 12, 3000);
  EXPECT_EQ(Archivo({p}).Queja(), Danada(2, "la lista de filas no cabe"));
}

// The 12 bytes of a long value in its row.
Bytes Campo(std::uint32_t palabra, mdb::IdFila id) {
  Bytes b;
  mdb::Agregar32(b, palabra);
  mdb::AgregarBytes(b, Puntero(id));
  mdb::Agregar32(b, 0x12345678);  // Access leaves what it likes here
  return b;
}

Bytes Pieza(mdb::IdFila siguiente, const std::string& datos) {
  Bytes b = Puntero(siguiente);
  b.insert(b.end(), datos.begin(), datos.end());
  return b;
}

std::string Largo(std::uint32_t palabra, mdb::IdFila id, const std::vector<Ranura>& piezas,
                  std::uint32_t dueno = kLval) {
  Archivo a({PaginaDeDatos(dueno, piezas)});
  try {
    mdb::Columna column;
    column.tipo = mdb::TipoColumna::Ole;
    const auto value = std::get<mdb::Bytes>(mdb::Decodificar(a.paginas, column, Campo(palabra, id)));
    return {value.begin(), value.end()};
  } catch (const mdb::Danio& d) {
    return d.Descripcion();
  }
}

TEST(ValorLargo, StandsInOneRowOrInAChain) {
  EXPECT_EQ(Largo(0x40000003, {2, 0}, {{0, {'a', 'b', 'c'}}}), "abc");
  EXPECT_EQ(Largo(0x40000002, {2, 0}, {{0, {'a', 'b', 'c'}}}), "ab");
  EXPECT_EQ(Largo(6, {2, 1}, {{0, Pieza({}, "def")}, {0, Pieza({2, 0}, "abc")}}), "abcdef");
  EXPECT_EQ(Largo(1, {2, 0}, {{0, Pieza({}, "a")}}), "a");
  EXPECT_EQ(Largo(0, {}, {}), "");
  EXPECT_EQ(Largo(0x40000000, {}, {}), "");
}

TEST(ValorLargo, DamagedChainsEnd) {
  EXPECT_EQ(Largo(9, {2, 0}, {{0, Pieza({}, "abc")}}),
            "El archivo está dañado: un valor largo está incompleto");
  // A chain that comes back ends at the value's length.
  EXPECT_EQ(Largo(7, {2, 0}, {{0, Pieza({2, 0}, "abc")}}), "abcabca");
  EXPECT_EQ(Largo(7, {2, 0}, {{0, Pieza({2, 0}, "")}}), Danada(2, "un valor largo tiene una pieza vacía"));
  EXPECT_EQ(Largo(0x3FFFFFFF, {2, 0}, {{0, Pieza({2, 0}, "abc")}}),
            "El archivo está dañado: un valor largo es más largo que el archivo");
  EXPECT_EQ(Largo(0x40000009, {2, 0}, {{0, {'a'}}}), Danada(2, "un valor largo está incompleto"));
  EXPECT_EQ(Largo(0x40000001, {2, 1}, {{0, {'a'}}}), Danada(2, "no tiene la fila 1"));
  EXPECT_EQ(Largo(0x40000001, {2, 0}, {{0xC000, {'a'}}}),
            Danada(2, "un valor largo lleva a una fila que no lo es"));
  EXPECT_EQ(Largo(0x40000001, {2, 0}, {{0, {'a'}}}, kTabla),
            Danada(2, "un valor largo lleva a una fila que no lo es"));
  EXPECT_EQ(Largo(0x40000001, {88, 0}, {}), Danada(88, "el archivo tiene 3 páginas"));
}

Bytes PaginaDeMapa(std::initializer_list<unsigned> bits) {
  Bytes p(kPagina);
  p[0] = 5;
  p[1] = 1;
  for (const unsigned b : bits) p[4 + b / 8] |= static_cast<std::uint8_t>(1U << b % 8);
  return p;
}

TEST(Mapa, IsABitmapFromItsStart) {
  Archivo a(std::vector<Bytes>(30, Bytes(kPagina)), MapaEnLinea(8, {9, 16, 31, 32, 60}));
  // The file has 32 pages: what lies beyond is left out.
  EXPECT_EQ(mdb::LeerMapa(a.paginas, {1, 0}), (std::vector<mdb::NumPagina>{9, 16, 31}));
  EXPECT_TRUE(mdb::PaginasDelMapa(a.paginas, {1, 0}).empty());
  EXPECT_TRUE(mdb::EnMapa(a.paginas, {1, 0}, 9));
  EXPECT_FALSE(mdb::EnMapa(a.paginas, {1, 0}, 10));
  EXPECT_FALSE(mdb::EnMapa(a.paginas, {1, 0}, 1));
  EXPECT_FALSE(mdb::EnMapa(a.paginas, {1, 0}, 5000));
}

TEST(Mapa, OrAListOfBitmapPages) {
  Bytes mapa{1};
  for (const std::uint32_t p : {0U, 0xFFFFFFFFU, 0U}) mdb::Agregar32(mapa, p);
  mdb::Poner32(mapa, 1, 2);
  Archivo a({PaginaDeMapa({0, 2, 3, 4, 32735})}, mapa);
  EXPECT_EQ(mdb::LeerMapa(a.paginas, {1, 0}), (std::vector<mdb::NumPagina>{0, 2}));
  EXPECT_EQ(mdb::PaginasDelMapa(a.paginas, {1, 0}), (std::vector<mdb::NumPagina>{2}));
  EXPECT_TRUE(mdb::EnMapa(a.paginas, {1, 0}, 32735));
  EXPECT_FALSE(mdb::EnMapa(a.paginas, {1, 0}, 32736));   // the second pointer is none
  EXPECT_FALSE(mdb::EnMapa(a.paginas, {1, 0}, 999999));  // beyond the pointers
}

TEST(Mapa, NoneIsEmpty) {
  Archivo a({});
  EXPECT_TRUE(mdb::LeerMapa(a.paginas, {}).empty());
  EXPECT_TRUE(mdb::PaginasDelMapa(a.paginas, {}).empty());
  EXPECT_FALSE(mdb::EnMapa(a.paginas, {}, 3));
}

TEST(Mapa, DamageNamesItsPage) {
  const auto queja = [](const Bytes& mapa, const std::vector<Bytes>& paginas) {
    Archivo a(paginas, mapa);
    try {
      mdb::LeerMapa(a.paginas, {1, 0});
    } catch (const mdb::Danio& d) {
      return d.Descripcion();
    }
    return std::string("none");
  };
  EXPECT_EQ(queja({2, 0, 0, 0, 0}, {}), Danada(1, "un mapa de páginas de otra clase"));
  EXPECT_EQ(queja({}, {}), Danada(1, "un mapa de páginas de otra clase"));
  EXPECT_EQ(queja({0, 0, 0}, {}), Danada(1, "un mapa de páginas de otra clase"));
  EXPECT_EQ(queja({1, 9, 0, 0, 0}, {}), Danada(1, "un mapa lleva a la página 9, que no hay"));
  EXPECT_EQ(queja({1, 2, 0, 0, 0}, {Bytes(kPagina)}), Danada(2, "no es una página de mapa"));
  EXPECT_EQ(queja({1, 2}, {}), "none");
}

// A chain of definition pages that comes back.
TEST(Definicion, AChainThatComesBackIsDamage) {
  Bytes p(kPagina);
  p[0] = 2;
  p[1] = 1;
  mdb::Poner32(p, 4, 2);
  Archivo a({p});
  EXPECT_THROW(mdb::LeerDefinicion(a.paginas, 2), mdb::Danio);
  try {
    mdb::LeerDefinicion(a.paginas, 2);
  } catch (const mdb::Danio& d) {
    EXPECT_EQ(d.Descripcion(), Danada(2, "la definición de la tabla vuelve sobre sus páginas"));
  }
  EXPECT_THROW(mdb::LeerDefinicion(a.paginas, 1), mdb::Danio);
  EXPECT_THROW(mdb::LeerDefinicion(a.paginas, 50), mdb::Danio);
}

TEST(Definicion, CountsThatLeadBeyondItsPagesAreDamage) {
  for (const std::size_t campo : {std::size_t{45}, std::size_t{47}, std::size_t{51}}) {
    Bytes p(kPagina);
    p[0] = 2;
    p[1] = 1;
    mdb::Poner32(p, campo, campo == 45 ? 0x00000300 : 0xFFFFFFFF);
    Archivo a({p});
    try {
      mdb::LeerDefinicion(a.paginas, 2);
      ADD_FAILURE() << campo;
    } catch (const mdb::Danio& d) {
      EXPECT_EQ(d.Descripcion(), Danada(2, "la definición de la tabla no se puede leer"));
    }
  }
}

TEST(Definicion, OrdersColumnsAsTheyAreShown) {
  mdb::Definicion d;
  const std::pair<int, int> lugares[] = {{0, 3}, {1, 1}, {2, 2}, {3, 1}};
  for (const auto& [numero, posicion] : lugares) {
    mdb::Columna c;
    c.nombre = "C" + std::to_string(numero);
    c.numero = static_cast<std::uint16_t>(numero);
    c.posicion = static_cast<std::uint16_t>(posicion);
    d.columnas.insert(d.columnas.begin(), c);  // stored the other way round
  }
  std::string orden;
  for (const auto i : d.EnOrden()) orden += d.columnas[i].nombre + " ";
  EXPECT_EQ(orden, "C1 C3 C2 C0 ");
  EXPECT_EQ(d.PorNumero(3), 0U);
  EXPECT_EQ(d.PorNombre("c0"), 3U);
  EXPECT_FALSE(d.PorNombre("C4"));
  EXPECT_EQ(d.ClavePrimaria(), nullptr);
}

}  // namespace
