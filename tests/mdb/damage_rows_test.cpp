#include "mdb/damage.h"

#include <algorithm>

namespace {

using namespace mdb_test;

// --- rows and long values ---

std::vector<IdFila> Movidas(Obra& o) {
  std::vector<IdFila> ids;
  for (const IdFila id : o.Filas("Table1"))
    if (mdb::LeerRanura(id.pagina, *o.paginas->Leer(id.pagina), id.fila).marcas == mdb::Ranura::kMovida)
      ids.push_back(id);
  return ids;
}

// Rows of the catalog with a long value of its own row.
std::vector<IdFila> ConLargo(Obra& o) {
  std::vector<IdFila> ids;
  const auto d = o.Def("MSysObjects");
  const auto i = d.PorNombre("LvProp").value();
  for (const IdFila id : o.Filas("MSysObjects")) {
    const auto f = mdb::BuscarFila(*o.paginas, d, id).value();
    const auto celda = mdb::PartirFila(o.paginas->Cab(), d, f.bytes)[i];
    if (celda && (mdb::U32(*celda, 0) & 0x80000000U) == 0) ids.push_back(id);
  }
  EXPECT_GE(ids.size(), 2U);
  return ids;
}

std::vector<Dano> DeFilas() {
  return {
      {"a row with more columns than its table", kIndices,
       [](Obra& o) {
         const auto f = o.Fila("Table1", o.Filas("Table1")[1]);
         Sumar16(o.P(f.pagina), f.pos, 40);
         return f.pagina;
       },
       "la fila dice tener"},
      {"variable columns that overlap", kIndices,
       [](Obra& o) {
         const auto f = o.Fila("MSysObjects", o.Filas("MSysObjects")[3]);
         auto& p = o.P(f.pagina);  // 17 columns: three bytes of mask, two of the count, then the offsets
         Sumar16(p, f.pos + f.largo - 3 - 4, 500);
         return f.pagina;
       },
       "se pisan"},
      {"a count of variable columns that is too large", kIndices,
       [](Obra& o) {
         const auto f = o.Fila("MSysObjects", o.Filas("MSysObjects")[3]);
         mdb::Poner16(o.P(f.pagina), f.pos + f.largo - 3 - 2, 900);
         return f.pagina;
       },
       "columnas de largo variable"},
      {"a text longer than its column", kIndices,
       [](Obra& o) {
         const auto d = o.Def("MSysObjects");
         const auto i = d.PorNombre("Name").value();
         mdb::Poner16(o.P(2), o.PosColumna("MSysObjects", i) + 23, 8);
         return o.Datos("MSysObjects");
       },
       "el valor de la columna «Name» es más largo que la columna"},
      {"a text that ends inside a letter", kIndices,
       [](Obra& o) {
         const auto f = o.Fila("MSysRelationships", o.Filas("MSysRelationships")[0]);
         auto& p = o.P(f.pagina);  // one byte of mask, two of the count, then the offsets, the end last
         const auto tabla = f.pos + f.largo - 1 - 4;
         Sumar16(p, tabla - 2U * mdb::U16(p, tabla + 2), -1);
         return f.pagina;
       },
       "es un texto cortado por la mitad de una letra"},
      {"a Null in a key that may have none", kIndices,
       [](Obra& o) {
         const auto f = o.Fila("Table1", o.Filas("Table1")[0]);
         const auto d = o.Def("Table1");
         const auto numero = d.columnas[d.PorNombre("id").value()].numero;
         o.P(f.pagina)[f.pos + f.largo - 1] &= static_cast<std::uint8_t>(~(1U << numero));
         return d.reales[1].raiz;
       },
       "que lo exige"},
      {"a number of another width among the variable columns", kIndices,
       [](Obra& o) {
         const auto d = o.Def("MSysObjects");
         const auto p = o.Datos("MSysObjects");
         o.P(2)[o.PosColumna("MSysObjects", d.PorNombre("Name").value())] = 5;  // Currency, 8 bytes
         return p;
       },
       "el valor de la columna «Name» no mide lo que su tipo"},
      {"a row that is cut", kIndices,
       [](Obra& o) {
         const auto id = o.Filas("Table1")[0];
         auto& p = o.P(id.pagina);
         mdb::Poner16(p, Ranura(id.fila), static_cast<std::uint16_t>(mdb::U16(p, Ranura(id.fila)) + 8));
         return id.pagina;
       },
       "tabla «Table1»"},
      {"a moved row that leads to a row that is none's", kMovidas,
       [](Obra& o) {
         const IdFila id = Movidas(o)[0];
         auto& p = o.P(id.pagina);
         const auto r = mdb::LeerRanura(id.pagina, p, id.fila);
         p[r.desde] = 0;
         mdb::Poner24(p, r.desde + 1, o.Datos("Table1"));
         return NumPagina{0};
       },
       "una fila movida no está donde debe"},
      {"two moved rows in one place", kMovidas,
       [](Obra& o) {
         const auto ids = Movidas(o);
         const auto a = mdb::LeerRanura(ids[0].pagina, *o.paginas->Leer(ids[0].pagina), ids[0].fila);
         const auto b = mdb::LeerRanura(ids[1].pagina, *o.paginas->Leer(ids[1].pagina), ids[1].fila);
         const auto puntero = mdb::U32(*o.paginas->Leer(ids[0].pagina), a.desde);
         mdb::Poner32(o.P(ids[1].pagina), b.desde, puntero);
         return static_cast<NumPagina>(puntero >> 8);
       },
       "dos filas movidas llevan a"},
      {"the place of a moved row that is gone", kMovidas,
       [](Obra& o) {
         const IdFila id = Movidas(o)[0];
         auto& p = o.P(id.pagina);
         mdb::Poner16(p, Ranura(id.fila), mdb::U16(p, Ranura(id.fila)) | 0xC000);
         return NumPagina{0};
       },
       "es la de una fila movida que no existe"},
      {"a moved row beyond the end", kMovidas,
       [](Obra& o) {
         const IdFila id = Movidas(o)[0];
         auto& p = o.P(id.pagina);
         mdb::Poner24(p, mdb::LeerRanura(id.pagina, p, id.fila).desde + 1, 70000);
         return NumPagina{70000};
       },
       "el archivo tiene"},
      {"a long value of another length", kIndices,
       [](Obra& o) {
         const auto c = o.Celda("MSysObjects", ConLargo(o)[0], "LvProp");
         o.P(c.pagina)[c.pos] ^= 3;
         return c.pagina;
       },
       "dice medir"},
      {"a long value in a row of data", kIndices,
       [](Obra& o) {
         const auto c = o.Celda("MSysObjects", ConLargo(o)[0], "LvProp");
         const auto p = o.Datos("Table1");
         o.P(c.pagina)[c.pos + 4] = 0;
         mdb::Poner24(o.P(c.pagina), c.pos + 5, p);
         return p;
       },
       "no es de valores largos"},
      {"a long value in a row that is not there", kIndices,
       [](Obra& o) {
         const auto c = o.Celda("MSysObjects", ConLargo(o)[0], "LvProp");
         o.P(c.pagina)[c.pos + 4] = 200;
         return NumPagina{0};
       },
       "no tiene la fila 200"},
      {"one place for two long values", kIndices,
       [](Obra& o) {
         const auto ids = ConLargo(o);
         const auto a = o.Celda("MSysObjects", ids[0], "LvProp"),
                    b = o.Celda("MSysObjects", ids[1], "LvProp");
         const auto imagen = o.paginas->Leer(a.pagina);
         mdb::PonerBytes(o.P(b.pagina), b.pos, mdb::Trozo(*imagen, a.pos, 12));
         return NumPagina{0};
       },
       "dos valores largos usan"},
      {"a chain of a long value that comes back", kIndices,
       [](Obra& o) {
         const auto c = o.Celda("MSysObjects", ConLargo(o)[0], "LvProp");
         auto& p = o.P(c.pagina);
         const auto largo = mdb::U32(p, c.pos) & 0x3FFFFFFFU;
         mdb::Poner32(p, c.pos, largo + 100000);  // a chain now, and longer than its first piece
         const auto puntero = mdb::U32(p, c.pos + 4);
         const NumPagina pagina = puntero >> 8;
         const auto r = mdb::LeerRanura(pagina, *o.paginas->Leer(pagina), puntero & 0xFF);
         mdb::Poner32(o.P(pagina), r.desde, puntero);
         return pagina;
       },
       "dos valores largos usan"},
      {"a page of long values that its column does not know", kIndices,
       [](Obra& o) {
         const auto d = o.Def("MSysObjects");
         const auto mapa = d.columnas[d.PorNombre("LvProp").value()].lv_propias;
         const auto p = mdb::LeerMapa(*o.paginas, mapa).front();
         mdb::QuitarDeMapa(*o.paginas, mapa, p);
         return p;
       },
       "que no es de la columna «LvProp»"},
      {"a page of long values with rows of another kind", kIndices,
       [](Obra& o) {
         const auto d = o.Def("MSysObjects");
         const auto p =
             mdb::LeerMapa(*o.paginas, d.columnas[d.PorNombre("LvProp").value()].lv_propias).front();
         mdb::Poner16(o.P(p), Ranura(0),
                      static_cast<std::uint16_t>((mdb::U16(o.P(p), Ranura(0)) & 0x1FFF) | 0x4000));
         return p;
       },
       "marcas de otra clase"},
  };
}

TEST(VerificarDanos, InRowsAndLongValues) { Plantar(DeFilas()); }

}  // namespace
