// Whole trees at once: filled from sorted entries, or emptied.
#include <algorithm>

#include "mdb/indexes/index_tree.h"
#include "mdb/indexes/index_tree_internal.h"

namespace mdb {
namespace {

// A sixteenth stays free on each page, so that the next changes do not split all of them.
constexpr std::size_t kLleno = PaginaDeIndice::kCapacidad / 16 * 15;

// What a page of some level is made of: an entry of a leaf, or a child with the last entry below it.
struct Pieza {
  const Entrada* entrada = nullptr;
  NumPagina hija = 0;
  std::size_t Bytes() const { return entrada->clave.size() + (hija == 0 ? 4 : 8); }
};

// Where each page's pieces end. A leaf holds all of its pieces as entries, a node all but its last one, and
// two at least.
std::vector<std::size_t> Fines(const std::vector<Pieza>& piezas, bool hojas) {
  const std::size_t menos = hojas ? 1 : 2;
  std::vector<std::size_t> fines;
  std::size_t desde = 0, bytes = 0;
  for (std::size_t i = 0; i < piezas.size(); ++i) {
    std::size_t mas = 0;  // what this piece adds to the page
    if (hojas || i > desde) mas = piezas[hojas ? i : i - 1].Bytes();
    if (i >= desde + menos && bytes + mas > kLleno) {
      fines.push_back(i);
      desde = i;
      bytes = 0;
      mas = hojas ? mas : 0;
    }
    bytes += mas;
  }
  if (!hojas && !fines.empty() && piezas.size() - fines.back() < menos) {
    // One child is left over: the page before gives one away, or takes it in when it has but two itself.
    const std::size_t antes = fines.size() > 1 ? fines[fines.size() - 2] : 0;
    if (fines.back() - antes > menos)
      --fines.back();
    else
      fines.pop_back();
  }
  fines.push_back(piezas.size());
  return fines;
}

void Llenar(PaginaDeIndice& p, const std::vector<Pieza>& piezas, std::size_t desde, std::size_t hasta) {
  for (std::size_t i = desde; i < hasta; ++i) {
    const Entrada& e = *piezas[i].entrada;
    if (p.hoja)
      p.Insertar(p.Cantidad(), EntradaCompleta(e.clave, e.fila));
    else if (i + 1 < hasta)
      p.Insertar(p.Cantidad(), EntradaCompleta(e.clave, e.fila, piezas[i].hija));
    else
      p.cola = piezas[i].hija;
  }
}

// Writes one level and returns its pages as the pieces of the next; a level of one page is the root.
std::vector<Pieza> EscribirNivel(const DatosDeArbol& arbol, const std::vector<Pieza>& piezas,
                                 std::uint8_t nivel) {
  const std::vector<std::size_t> fines = Fines(piezas, nivel == 0);
  std::vector<NumPagina> numeros(fines.size(), arbol.raiz);
  if (fines.size() > 1)
    std::generate(numeros.begin(), numeros.end(), [&] { return NuevaPaginaDeArbol(arbol); });
  std::vector<Pieza> siguientes;
  for (std::size_t k = 0; k < fines.size(); ++k) {
    PaginaDeIndice p(numeros[k], nivel == 0);
    p.nivel = nivel;
    p.anterior = k == 0 ? 0 : numeros[k - 1];
    p.siguiente = k + 1 == fines.size() ? 0 : numeros[k + 1];
    Llenar(p, piezas, k == 0 ? 0 : fines[k - 1], fines[k]);
    p.Escribir(arbol.paginas, arbol.tabla);
    siguientes.push_back({piezas[fines[k] - 1].entrada, numeros[k]});
  }
  return siguientes;
}

}  // namespace

void ArbolDeIndice::Construir(const std::vector<Entrada>& ordenadas) {
  const DatosDeArbol arbol{paginas_, tabla_, raiz_, mapa_};
  const PaginaDeIndice raiz = LeerDeArbol(arbol, raiz_);
  if (!raiz.hoja || raiz.Cantidad() != 0) DanioEnPagina(raiz_, "el índice por construir no está vacío");
  if (ordenadas.empty()) return;
  std::vector<Pieza> piezas;
  piezas.reserve(ordenadas.size());
  for (const Entrada& e : ordenadas) {
    if (e.clave.size() > PaginaDeIndice::kClaveMaxima)
      throw base::Error("La clave de índice es demasiado larga (" + std::to_string(e.clave.size()) +
                        " bytes)");
    piezas.push_back({&e});
  }
  std::uint8_t nivel = 0;
  do piezas = EscribirNivel(arbol, piezas, nivel++);
  while (piezas.size() > 1);
}

void ArbolDeIndice::Vaciar() {
  const DatosDeArbol arbol{paginas_, tabla_, raiz_, mapa_};
  std::vector<NumPagina> vistas;
  PorHojas(
      arbol, [](Camino&) { return false; }, &vistas);
  for (const NumPagina numero : vistas)
    if (numero != raiz_) LiberarPaginaDeArbol(arbol, numero);
  PaginaDeIndice(raiz_, true).Escribir(paginas_, tabla_);
}

NumPagina NuevaRaiz(Paginas& paginas, NumPagina tabla, Puntero mapa) {
  const DatosDeArbol arbol{paginas, tabla, 0, mapa};
  const NumPagina numero = NuevaPaginaDeArbol(arbol);
  PaginaDeIndice(numero, true).Escribir(paginas, tabla);
  return numero;
}

}  // namespace mdb
