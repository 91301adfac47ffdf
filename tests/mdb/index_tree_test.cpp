#include "mdb/indexes/index_tree.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <iostream>
#include <random>

#include "mdb/catalog/catalog.h"
#include "mdb/corpus.h"
#include "mdb/index_model.h"
#include "mdb/outside.h"
#include "mdb/pages/page_map.h"
#include "mdb/samples.h"

namespace {

using mdb::Bytes;
using mdb::Entrada;
using mdb_test::Arbol;
using mdb_test::Azar;
using mdb_test::ConNumeros;
using mdb_test::Fila;
using mdb_test::Numero;
using mdb_test::Uno;

Bytes Cualquiera(Azar& azar, std::size_t largo) {
  Bytes v(largo);
  for (auto& b : v) b = static_cast<std::uint8_t>(azar());
  return v;
}

struct Modelo {
  const char* nombre;
  std::function<Bytes(Azar&)> clave;
  std::uint32_t filas;
};

// Keys as they come in real indexes, and worse.
std::vector<Modelo> Modelos() {
  return {
      {"short", [](Azar& a) { return Numero(Uno(a, 100000)); }, 50000},
      {"few keys, many rows", [](Azar& a) { return Numero(Uno(a, 5)); }, 5000},
      {"any length up to 510", [](Azar& a) { return Cualquiera(a, 1 + Uno(a, 510)); }, 50000},
      {"510 bytes", [](Azar& a) { return Cualquiera(a, 510); }, 50000},
      {"the longest",
       [](Azar& a) { return Cualquiera(a, mdb::PaginaDeIndice::kClaveMaxima - Uno(a, 2) * 900); }, 50000},
      {"a long common part",
       [](Azar& a) {
         Bytes v(200, static_cast<std::uint8_t>(0x40 + Uno(a, 3)));
         const Bytes resto = Cualquiera(a, 1 + Uno(a, 6));
         v.insert(v.end(), resto.begin(), resto.end());
         return v;
       },
       50000},
      // One key begins another: the order is that of the keys, whatever follows them in the entry.
      {"one begins another", [](Azar& a) { return Bytes(1 + Uno(a, 300), 0x7F); }, 300},
  };
}

class Corrida {
 public:
  Corrida(Arbol& arbol, const Modelo& modelo, unsigned semilla)
      : arbol_(arbol), modelo_(modelo), azar_(semilla) {}

  void Insertar() {
    Entrada e{modelo_.clave(azar_), Fila(Uno(azar_, modelo_.filas))};
    const auto [it, nueva] = claves_.insert(e);
    EXPECT_EQ(arbol_.Abrir().Tiene(e.clave, e.fila), !nueva);
    if (nueva) arbol_.Abrir().Insertar(e.clave, e.fila);
    ++hechas;
  }
  void Borrar() {
    Entrada e{modelo_.clave(azar_), Fila(Uno(azar_, modelo_.filas))};
    auto it = claves_.lower_bound(e);
    if (it == claves_.end()) {
      EXPECT_FALSE(arbol_.Abrir().Borrar(e.clave, e.fila));
    } else {
      EXPECT_TRUE(arbol_.Abrir().Borrar(it->clave, it->fila));
      claves_.erase(it);
    }
    ++hechas;
  }
  void Preguntar() {
    const Bytes clave = modelo_.clave(azar_);
    const auto it = claves_.lower_bound({clave, {}});
    EXPECT_EQ(arbol_.Abrir().Hay(clave), it != claves_.end() && it->clave == clave);
  }
  // `inserta` in a hundred are insertions.
  void Mezclar(int veces, std::uint32_t inserta) {
    for (int i = 0; i < veces; ++i) {
      if (Uno(azar_, 100) < inserta)
        Insertar();
      else
        Borrar();
      if (i % 7 == 0) Preguntar();
    }
    EXPECT_TRUE(mdb_test::EsIgual(arbol_, claves_));
  }
  void BorrarTodo() {
    std::vector<Entrada> orden(claves_.begin(), claves_.end());
    std::shuffle(orden.begin(), orden.end(), azar_);
    for (const Entrada& e : orden) EXPECT_TRUE(arbol_.Abrir().Borrar(e.clave, e.fila));
    hechas += orden.size();
    claves_.clear();
    EXPECT_TRUE(mdb_test::EsIgual(arbol_, claves_));
  }
  const std::set<Entrada>& Claves() const { return claves_; }
  std::size_t hechas = 0;

 private:
  Arbol& arbol_;
  const Modelo& modelo_;
  Azar azar_;
  std::set<Entrada> claves_;
};

TEST(ArbolDeIndice, HoldsWhatAModelHoldsThroughRandomChanges) {
  std::size_t hechas = 0;
  for (const Modelo& modelo : Modelos())
    for (unsigned semilla = 1; semilla <= 3; ++semilla) {
      SCOPED_TRACE(std::string(modelo.nombre) + ", seed " + std::to_string(semilla));
      Arbol arbol = mdb_test::ArbolNuevo();
      const auto raiz = arbol.indice.raiz;
      Corrida corrida(arbol, modelo, semilla);
      corrida.Mezclar(1500, 90);
      for (const std::uint32_t inserta : {50U, 20U, 70U, 10U, 95U, 40U}) corrida.Mezclar(700, inserta);
      corrida.BorrarTodo();
      EXPECT_EQ(mdb_test::Revisar(arbol).paginas, 1U);
      corrida.Mezclar(800, 80);
      EXPECT_EQ(arbol.indice.raiz, raiz);
      hechas += corrida.hechas;
      if (::testing::Test::HasFailure()) return;
    }
  std::cout << hechas << " insertions and removals\n";
  EXPECT_GT(hechas, 100000U);
}

TEST(ArbolDeIndice, ThePagesOfAnEmptiedTreeAreFreeAgain) {
  Arbol arbol = mdb_test::ArbolNuevo();
  const Modelo modelo = Modelos()[3];
  Corrida corrida(arbol, modelo, 5);
  corrida.Mezclar(1000, 100);
  const auto cantidad = arbol.paginas->Cantidad();
  EXPECT_GT(cantidad, 150U);
  corrida.BorrarTodo();
  std::size_t libres = mdb::LeerMapa(*arbol.paginas, {1, 0}).size();
  EXPECT_GE(libres + 20, cantidad);
  corrida.Mezclar(1000, 100);
  EXPECT_LE(arbol.paginas->Cantidad(), cantidad + 20);
}

TEST(ArbolDeIndice, RisingAndFallingRunsLeaveFullPages) {
  std::vector<std::uint32_t> numeros(20000);
  for (std::uint32_t i = 0; i < numeros.size(); ++i) numeros[i] = i;
  const auto lleno = [&](const Arbol& arbol) {
    std::vector<Entrada> entradas;
    const auto a = mdb_test::Revisar(arbol, &entradas);
    EXPECT_EQ(entradas.size(), numeros.size());
    EXPECT_EQ(a.niveles, 2U);
    return static_cast<double>(a.bytes) / static_cast<double>(a.paginas * mdb::PaginaDeIndice::kCapacidad);
  };
  EXPECT_GT(lleno(ConNumeros(numeros)), 0.95);
  std::reverse(numeros.begin(), numeros.end());
  EXPECT_GT(lleno(ConNumeros(numeros)), 0.95);
  std::shuffle(numeros.begin(), numeros.end(), Azar(3));
  EXPECT_GT(lleno(ConNumeros(numeros)), 0.6);
}

TEST(ArbolDeIndice, RunsAreRemovedFromEitherEndAndFromTheMiddle) {
  constexpr std::uint32_t kCantidad = 6000;
  std::vector<std::uint32_t> numeros(kCantidad);
  for (std::uint32_t i = 0; i < kCantidad; ++i) numeros[i] = i;
  const auto quitar = [&](const std::vector<std::uint32_t>& orden) {
    Arbol arbol = ConNumeros(numeros);
    std::set<Entrada> quedan;
    for (const auto n : numeros) quedan.insert({Numero(n), Fila(n)});
    for (std::size_t i = 0; i < orden.size(); ++i) {
      EXPECT_TRUE(arbol.Abrir().Borrar(Numero(orden[i]), Fila(orden[i])));
      quedan.erase({Numero(orden[i]), Fila(orden[i])});
      if (i % 500 == 499) {
        EXPECT_TRUE(mdb_test::EsIgual(arbol, quedan));
      }
    }
    EXPECT_TRUE(mdb_test::EsIgual(arbol, quedan));
  };
  quitar(numeros);
  quitar({numeros.rbegin(), numeros.rend()});
  std::vector<std::uint32_t> medio = numeros;
  std::rotate(medio.begin(), medio.begin() + 2000, medio.end());
  quitar(medio);
}

TEST(ArbolDeIndice, MergesPagesThatHaveBecomeSmall) {
  std::vector<std::uint32_t> numeros(20000);
  for (std::uint32_t i = 0; i < numeros.size(); ++i) numeros[i] = i;
  Arbol arbol = ConNumeros(numeros);
  const auto antes = mdb_test::Revisar(arbol).paginas;
  for (const auto n : numeros)
    if (n % 10 != 0) {
      EXPECT_TRUE(arbol.Abrir().Borrar(Numero(n), Fila(n)));
    }
  const auto despues = mdb_test::Revisar(arbol).paginas;
  EXPECT_LT(despues * 2, antes);
}

TEST(ArbolDeIndice, BuildsTreesOfAnySizeAtOnce) {
  Azar azar(11);
  for (const Modelo& modelo : Modelos())
    for (const std::size_t cantidad : {0U, 1U, 2U, 3U, 4U, 5U, 7U, 20U, 120U, 300U, 1000U, 4000U}) {
      SCOPED_TRACE(std::string(modelo.nombre) + " " + std::to_string(cantidad));
      std::set<Entrada> claves;
      for (std::size_t i = 0; i < cantidad; ++i)
        claves.insert({modelo.clave(azar), Fila(Uno(azar, modelo.filas))});
      Arbol arbol = mdb_test::ArbolNuevo();
      arbol.Abrir().Construir({claves.begin(), claves.end()});
      EXPECT_TRUE(mdb_test::EsIgual(arbol, claves));
      // It goes on as any other.
      for (int i = 0; i < 20; ++i) {
        const Entrada e{modelo.clave(azar), Fila(60000 + static_cast<std::uint32_t>(i))};
        if (claves.insert(e).second) arbol.Abrir().Insertar(e.clave, e.fila);
        arbol.Abrir().Borrar(claves.begin()->clave, claves.begin()->fila);
        claves.erase(claves.begin());
      }
      EXPECT_TRUE(mdb_test::EsIgual(arbol, claves));
      arbol.Abrir().Vaciar();
      EXPECT_TRUE(mdb_test::EsIgual(arbol, {}));
      arbol.Abrir().Construir({claves.begin(), claves.end()});
      EXPECT_TRUE(mdb_test::EsIgual(arbol, claves));
    }
}

TEST(ArbolDeIndice, BuildsOnlyOverAnEmptyTree) {
  Arbol arbol = ConNumeros({1});
  EXPECT_THROW(arbol.Abrir().Construir({{Numero(2), Fila(2)}}), base::Error);
}

TEST(ArbolDeIndice, RemovesAnEntryByItsRowAlone) {
  std::vector<std::uint32_t> numeros(3000);
  std::set<Entrada> modelo;
  for (std::uint32_t i = 0; i < numeros.size(); ++i) {
    numeros[i] = i;
    modelo.insert({Numero(i), Fila(i)});
  }
  Arbol arbol = ConNumeros(numeros);
  for (const std::uint32_t n : {0U, 2999U, 1500U, 1499U, 361U, 360U}) {
    EXPECT_TRUE(arbol.Abrir().BorrarPorFila(Fila(n)));
    EXPECT_FALSE(arbol.Abrir().BorrarPorFila(Fila(n)));
    modelo.erase({Numero(n), Fila(n)});
  }
  EXPECT_TRUE(mdb_test::EsIgual(arbol, modelo));
}

TEST(ArbolDeIndice, RefusesAKeyThatIsTooLongAndAnEntryThatIsThere) {
  Arbol arbol = ConNumeros({1, 2, 3});
  EXPECT_THROW(arbol.Abrir().Insertar(Numero(2), Fila(2)), mdb::Danio);
  EXPECT_NO_THROW(arbol.Abrir().Insertar(Numero(2), Fila(5)));
  EXPECT_THROW(arbol.Abrir().Insertar(Bytes(mdb::PaginaDeIndice::kClaveMaxima + 1, 1), Fila(1)), base::Error);
  EXPECT_FALSE(arbol.Abrir().Borrar(Numero(4), Fila(4)));
  EXPECT_FALSE(arbol.Abrir().Borrar(Numero(3), Fila(4)));
}

TEST(ArbolDeIndice, CompressesALeafBeforeItSplitsAndKeepsItSo) {
  Arbol arbol = mdb_test::ArbolNuevo();
  std::set<Entrada> modelo;
  for (std::uint32_t i = 0; i < 40; ++i) {
    Bytes clave(100, 0x55);
    const Bytes n = Numero(i);
    clave.insert(clave.end(), n.begin(), n.end());
    modelo.insert({clave, Fila(i)});
    arbol.Abrir().Insertar(clave, Fila(i));
  }
  // 40 entries of 109 bytes are more than a page holds, but their common part is stored once.
  EXPECT_EQ(mdb_test::Revisar(arbol).paginas, 1U);
  EXPECT_TRUE(mdb_test::EsIgual(arbol, modelo));
  const auto prefijo = [&] {
    return mdb::PaginaDeIndice::Leer(*arbol.paginas, arbol.indice.raiz, arbol.tabla).prefijo;
  };
  EXPECT_EQ(prefijo(), 104U);
  while (modelo.size() > 3) {
    const Entrada e = *modelo.begin();
    EXPECT_TRUE(arbol.Abrir().Borrar(e.clave, e.fila));
    modelo.erase(e);
  }
  EXPECT_EQ(prefijo(), 104U);
  arbol.Abrir().Insertar(Bytes{0x56}, Fila(99));
  EXPECT_EQ(prefijo(), 0U);
  modelo.insert({{0x56}, Fila(99)});
  EXPECT_TRUE(mdb_test::EsIgual(arbol, modelo));
}

// --- the trees that others wrote ---

TEST(ArbolDeIndice, TakesEveryTreeOfEveryFileApartAndTogetherAgain) {
  std::size_t arboles = 0, entradas = 0;
  Azar azar(17);
  for (const std::string& ruta : mdb_test::EveryFile()) {
    SCOPED_TRACE(ruta);
    Arbol arbol;
    arbol.paginas = mdb_test::Cargar(ruta);
    if (arbol.paginas->Cab().Jet3()) continue;
    const mdb::Catalogo catalogo(*arbol.paginas);
    for (const mdb::Objeto& o : catalogo.Objetos()) {
      if (o.tipo != mdb::Objeto::Tabla) continue;
      SCOPED_TRACE(o.nombre);
      const auto d = mdb::LeerDefinicion(*arbol.paginas, static_cast<mdb::NumPagina>(o.id));
      arbol.tabla = d.Pagina();
      for (const auto& indice : d.reales) {
        arbol.indice = indice;
        std::set<Entrada> modelo;
        arbol.Abrir().Recorrer([&](const Entrada& e) { return modelo.insert(e).second; });
        std::vector<Entrada> orden(modelo.begin(), modelo.end());
        std::shuffle(orden.begin(), orden.end(), azar);
        for (std::size_t i = 0; i < orden.size(); ++i) {
          EXPECT_TRUE(arbol.Abrir().Borrar(orden[i].clave, orden[i].fila));
          modelo.erase(orden[i]);
          if (i % 97 == 0) {
            EXPECT_TRUE(mdb_test::EsIgual(arbol, modelo));
          }
        }
        std::shuffle(orden.begin(), orden.end(), azar);
        for (std::size_t i = 0; i < orden.size(); ++i) {
          arbol.Abrir().Insertar(orden[i].clave, orden[i].fila);
          modelo.insert(orden[i]);
          if (i % 97 == 0) {
            EXPECT_TRUE(mdb_test::EsIgual(arbol, modelo));
          }
        }
        EXPECT_TRUE(mdb_test::EsIgual(arbol, modelo));
        ++arboles;
        entradas += orden.size();
      }
    }
    arbol.paginas->Confirmar();
    if (arbol.paginas->Cab().clave == 0) {  // the checker does not decrypt
      EXPECT_EQ(mdb_test::Controlar(arbol.paginas->Guardado(), false), "");
    }
  }
  std::cout << arboles << " trees, " << entradas << " entries\n";
  EXPECT_GT(entradas, 5000U);
}

}  // namespace
