#include "mdb/index_model.h"

#include <algorithm>
#include <map>

#include "mdb/pages/page_map.h"
#include "mdb/schema/new_file.h"

namespace mdb_test {
namespace {

class Revision {
 public:
  explicit Revision(const Arbol& arbol) : arbol_(arbol) {}

  // Returns the level of the page; `ultima` becomes the last entry below it.
  int Pagina(mdb::NumPagina numero, mdb::Entrada& ultima) {
    if (!vistas_.insert(numero).second) {
      ADD_FAILURE() << "page " << numero << " met twice";
      return 0;
    }
    const auto p = mdb::PaginaDeIndice::Leer(*arbol_.paginas, numero, arbol_.tabla);
    EXPECT_EQ(p.libres, p.libres_segun_pagina) << numero;
    EXPECT_EQ((*arbol_.paginas->Leer(numero))[1], 1) << numero;
    aspecto_.bytes += p.BytesSinPrefijo();
    const int nivel = p.hoja ? Hoja(p, ultima) : Nodo(p, ultima);
    EXPECT_EQ(p.nivel, nivel) << numero;
    if (static_cast<std::size_t>(nivel) >= niveles_.size())
      niveles_.resize(static_cast<std::size_t>(nivel) + 1);
    niveles_[static_cast<std::size_t>(nivel)].push_back(p);
    return nivel;
  }

  void Enlaces() const {
    for (const auto& nivel : niveles_)
      for (std::size_t i = 0; i < nivel.size(); ++i) {
        EXPECT_EQ(nivel[i].anterior, i == 0 ? 0 : nivel[i - 1].numero) << nivel[i].numero;
        EXPECT_EQ(nivel[i].siguiente, i + 1 == nivel.size() ? 0 : nivel[i + 1].numero) << nivel[i].numero;
      }
  }
  void Mapa() const {
    const auto en_mapa = mdb::LeerMapa(*arbol_.paginas, arbol_.indice.mapa);
    EXPECT_EQ(std::set<mdb::NumPagina>(en_mapa.begin(), en_mapa.end()), vistas_);
    const auto libres = mdb::LeerMapa(*arbol_.paginas, {1, 0});
    for (const auto libre : libres) EXPECT_FALSE(vistas_.contains(libre)) << libre;
  }
  std::vector<mdb::Entrada>& Entradas() { return entradas_; }
  Aspecto Fin() {
    aspecto_.niveles = niveles_.size();
    aspecto_.paginas = vistas_.size();
    return aspecto_;
  }

 private:
  static mdb::Entrada De(const mdb::PaginaDeIndice& p, std::size_t i) {
    const auto clave = p.Clave(i);
    return {mdb::Bytes(clave.begin(), clave.end()), p.FilaDe(i)};
  }

  int Hoja(const mdb::PaginaDeIndice& p, mdb::Entrada& ultima) {
    EXPECT_EQ(p.cola, 0U) << p.numero;
    EXPECT_TRUE(p.Cantidad() > 0 || p.numero == arbol_.indice.raiz) << p.numero;
    for (std::size_t i = 0; i < p.Cantidad(); ++i) entradas_.push_back(De(p, i));
    if (p.Cantidad() > 0) ultima = entradas_.back();
    return 0;
  }

  int Nodo(const mdb::PaginaDeIndice& p, mdb::Entrada& ultima) {
    EXPECT_NE(p.cola, 0U) << p.numero;
    EXPECT_GT(p.Cantidad(), 0U) << "a node with one child: " << p.numero;
    int nivel = -1;
    for (std::size_t i = 0; i <= p.Cantidad(); ++i) {
      const int debajo = Pagina(p.Hijo(i), ultima);
      EXPECT_TRUE(nivel < 0 || nivel == debajo) << p.numero;
      nivel = debajo;
      if (i < p.Cantidad()) {
        EXPECT_TRUE(De(p, i) == ultima) << "key " << i << " of node " << p.numero;
      }
    }
    return nivel + 1;
  }

  const Arbol& arbol_;
  std::set<mdb::NumPagina> vistas_;
  std::vector<std::vector<mdb::PaginaDeIndice>> niveles_;
  std::vector<mdb::Entrada> entradas_;
  Aspecto aspecto_;
};

}  // namespace

Arbol ArbolNuevo() {
  Arbol arbol;
  mdb::Bytes bytes = mdb::NuevaBase(3082, base::FechaDe(2026, 11, 21));
  const mdb::Cabecera cabecera = mdb::LeerCabecera(bytes);
  arbol.paginas = std::make_unique<mdb::PaginasEnMemoria>(cabecera, std::move(bytes));
  arbol.tabla = 2;
  arbol.indice.mapa = mdb::NuevoMapa(*arbol.paginas);
  arbol.indice.raiz = mdb::NuevaRaiz(*arbol.paginas, arbol.tabla, arbol.indice.mapa);
  return arbol;
}

std::uint32_t Uno(Azar& azar, std::uint32_t hasta) { return static_cast<std::uint32_t>(azar()) % hasta; }

mdb::Bytes Numero(std::uint32_t n) {
  return {0x7F, static_cast<std::uint8_t>(n >> 24), static_cast<std::uint8_t>(n >> 16),
          static_cast<std::uint8_t>(n >> 8), static_cast<std::uint8_t>(n)};
}

mdb::IdFila Fila(std::uint32_t n) { return {n / 200 + 7, static_cast<std::uint8_t>(n % 200)}; }

Arbol ConNumeros(const std::vector<std::uint32_t>& numeros) {
  Arbol arbol = ArbolNuevo();
  for (const auto n : numeros) arbol.Abrir().Insertar(Numero(n), Fila(n));
  return arbol;
}

Aspecto Revisar(const Arbol& arbol, std::vector<mdb::Entrada>* entradas) {
  Revision revision(arbol);
  mdb::Entrada ultima;
  revision.Pagina(arbol.indice.raiz, ultima);
  revision.Enlaces();
  revision.Mapa();
  const auto& todas = revision.Entradas();
  const auto desorden = std::adjacent_find(todas.begin(), todas.end(), [](const auto& a, const auto& b) {
    return std::tie(a.clave, a.fila) >= std::tie(b.clave, b.fila);
  });
  EXPECT_EQ(desorden, todas.end()) << "entry " << desorden - todas.begin() << " out of order";
  if (entradas != nullptr) *entradas = std::move(revision.Entradas());
  return revision.Fin();
}

::testing::AssertionResult EsIgual(const Arbol& arbol, const std::set<mdb::Entrada>& modelo) {
  std::vector<mdb::Entrada> entradas;
  Revisar(arbol, &entradas);
  if (std::equal(entradas.begin(), entradas.end(), modelo.begin(), modelo.end()))
    return ::testing::AssertionSuccess();
  return ::testing::AssertionFailure()
         << "the tree has " << entradas.size() << " entries, the model " << modelo.size();
}

}  // namespace mdb_test
