// Trees whose pages are damaged: an answer or an error of the data that names the page, and always an end.
#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <iostream>

#include "mdb/index_model.h"
#include "mdb/pages/page_map.h"

namespace {

using mdb::Bytes;
using mdb::Entrada;
using namespace mdb_test;

void EsperaDanio(const std::function<void()>& accion, mdb::NumPagina pagina, const char* motivo) {
  try {
    accion();
    ADD_FAILURE() << "no damage found: " << motivo;
  } catch (const mdb::Danio& d) {
    EXPECT_NE(d.Descripcion().find("página " + std::to_string(pagina) + ":"), std::string::npos)
        << d.Descripcion();
    EXPECT_NE(d.Descripcion().find(motivo), std::string::npos) << d.Descripcion();
  }
}

Arbol DeTresNiveles() {
  Arbol arbol = mdb_test::ArbolNuevo();
  for (std::uint32_t i = 0; i < 400; ++i) {
    Bytes clave(400, static_cast<std::uint8_t>(i));
    clave[0] = static_cast<std::uint8_t>(i >> 8);
    arbol.Abrir().Insertar(clave, Fila(i));
  }
  EXPECT_EQ(mdb_test::Revisar(arbol).niveles, 3U);
  return arbol;
}

TEST(ArbolDeIndice, DamageIsNamedWithItsPage) {
  const Arbol arbol = DeTresNiveles();
  auto& paginas = *arbol.paginas;
  const auto raiz = arbol.indice.raiz;
  const auto hijo = mdb::PaginaDeIndice::Leer(paginas, raiz, arbol.tabla).Hijo(0);
  const auto hoja = mdb::PaginaDeIndice::Leer(paginas, hijo, arbol.tabla).Hijo(0);
  const auto recorrer = [&] { arbol.Abrir().Recorrer([](const Entrada&) { return true; }); };
  const auto con = [&](mdb::NumPagina pagina, const std::function<void(Bytes&)>& dano,
                       const std::function<void()>& accion, mdb::NumPagina nombrada, const char* motivo) {
    const auto punto = paginas.Guardar();
    dano(paginas.Modificar(pagina));
    EsperaDanio(accion, nombrada, motivo);
    paginas.Volver(punto);
  };
  const Bytes primera(400, 0);
  const auto bajar = [&] { arbol.Abrir().Tiene(primera, Fila(0)); };
  const auto ponerHijo = [](Bytes& p, mdb::NumPagina valor) {  // of the first entry of a node
    std::size_t fin = 0;
    while ((p[27 + fin / 8] >> fin % 8 & 1) == 0) ++fin;
    for (int k = 0; k < 4; ++k) p[480 + fin - 4 + k] = static_cast<std::uint8_t>(valor >> (24 - 8 * k));
  };
  for (const auto& accion : {std::function<void()>(recorrer), std::function<void()>(bajar)}) {
    con(
        hijo, [&](Bytes& p) { ponerHijo(p, raiz); }, accion, raiz, "dos veces");
    con(
        hijo, [&](Bytes& p) { ponerHijo(p, hijo); }, accion, hijo, "dos veces");
    con(
        hijo, [&](Bytes& p) { ponerHijo(p, 1); }, accion, 1, "se esperaba una página de índice");
    con(
        hijo, [&](Bytes& p) { ponerHijo(p, 0x00FFFFFF); }, accion, 0x00FFFFFF, "páginas");
    con(
        hoja, [](Bytes& p) { p[4] = 9; }, accion, hoja, "otra tabla");
    con(
        hoja, [](Bytes& p) { p[0] = 1; }, accion, hoja, "se esperaba una página de índice");
    con(
        hoja, [](Bytes& p) { p[24] = 0xFF, p[25] = 0x03; }, accion, hoja, "más corta que la parte común");
    con(
        hoja, [](Bytes& p) { p[27] |= 2; }, accion, hoja, "demasiado corta");
    con(
        hoja, [](Bytes& p) { p[479] |= 0x80; }, accion, hoja, "no caben");
  }
  con(
      raiz,
      [](Bytes& p) {
        std::fill(p.begin() + 20, p.begin() + 24, std::uint8_t{0});
        std::fill(p.begin() + 27, p.begin() + 480, std::uint8_t{0});
      },
      recorrer, raiz, "no tiene hijos");
}

TEST(ArbolDeIndice, AChainOfEmptyLeavesThatComesBackEnds) {
  Arbol arbol = ConNumeros({1});
  auto& paginas = *arbol.paginas;
  mdb::Poner32(paginas.Modificar(arbol.indice.raiz), 16, arbol.indice.raiz);
  EXPECT_TRUE(arbol.Abrir().Hay(Numero(1)));
  std::fill_n(paginas.Modificar(arbol.indice.raiz).begin() + 27, 453, std::uint8_t{0});
  EsperaDanio([&] { arbol.Abrir().Hay(Numero(1)); }, arbol.indice.raiz, "dos veces");
}

// Whatever the bytes of the pages are, a tree gives an answer or an error of the data.
TEST(ArbolDeIndice, EndsOnDamagedPages) {
  Azar azar(23);
  const Arbol bueno = DeTresNiveles();
  bueno.paginas->Confirmar();
  const auto suyas = mdb::LeerMapa(*bueno.paginas, bueno.indice.mapa);
  std::size_t errores = 0, hechas = 0;
  for (int ronda = 0; ronda < 400; ++ronda) {
    Arbol arbol;
    arbol.tabla = bueno.tabla;
    arbol.indice = bueno.indice;
    Bytes bytes = bueno.paginas->Guardado();
    for (std::uint32_t k = 0, n = 1 + Uno(azar, ronda % 2 == 0 ? 3 : 60); k < n; ++k) {
      const std::size_t pagina = suyas[Uno(azar, static_cast<std::uint32_t>(suyas.size()))];
      bytes[pagina * 4096 + Uno(azar, Uno(azar, 2) == 0 ? 28 : 4096)] =
          static_cast<std::uint8_t>(Uno(azar, 2) == 0 ? Uno(azar, 256) : suyas[Uno(azar, 8)]);
    }
    arbol.paginas = std::make_unique<mdb::PaginasEnMemoria>(bueno.paginas->Cab(), std::move(bytes));
    for (std::uint32_t i = 0; i < 60; ++i, ++hechas) {
      Bytes clave(400, static_cast<std::uint8_t>(Uno(azar, 256)));
      clave[0] = static_cast<std::uint8_t>(Uno(azar, 2));
      const auto fila = Fila(Uno(azar, 400));
      const auto punto = arbol.paginas->Guardar();
      try {
        if (i % 5 == 0)
          arbol.Abrir().Recorrer([](const Entrada&) { return true; });
        else if (i % 5 == 1)
          arbol.Abrir().Hay(clave);
        else if (i % 5 == 2)
          arbol.Abrir().BorrarPorFila(fila);
        else if (i % 5 == 3)
          arbol.Abrir().Insertar(clave, Fila(1000 + i));
        else
          arbol.Abrir().Borrar(clave, fila);
      } catch (const base::Error&) {
        arbol.paginas->Volver(punto);
        ++errores;
      }
    }
    try {
      arbol.Abrir().Vaciar();
    } catch (const base::Error&) {
      ++errores;
    }
  }
  std::cout << hechas << " operations, " << errores << " errors\n";
  EXPECT_GT(errores, 100U);
}

// A node of another program may hold its last child as an entry, without a tail.
TEST(ArbolDeIndice, ANodeWithoutATailGetsOne) {
  Arbol arbol = ConNumeros({});
  for (std::uint32_t i = 0; i < 800; ++i) arbol.Abrir().Insertar(Numero(i), Fila(i));
  auto& paginas = *arbol.paginas;
  auto raiz = mdb::PaginaDeIndice::Leer(paginas, arbol.indice.raiz, arbol.tabla);
  raiz.Insertar(raiz.Cantidad(), mdb::EntradaCompleta(Numero(799), Fila(799), raiz.cola));
  raiz.cola = 0;
  raiz.Escribir(paginas, arbol.tabla);
  EXPECT_TRUE(arbol.Abrir().Tiene(Numero(799), Fila(799)));
  EXPECT_FALSE(arbol.Abrir().Tiene(Numero(900), Fila(900)));
  arbol.Abrir().Insertar(Numero(900), Fila(900));
  std::vector<Entrada> entradas;
  mdb_test::Revisar(arbol, &entradas);
  EXPECT_EQ(entradas.size(), 801U);
}

}  // namespace
