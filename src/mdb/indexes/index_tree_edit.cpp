#include <algorithm>
#include <string>

#include "mdb/indexes/index_tree_internal.h"

namespace mdb {
namespace {

constexpr std::size_t kCapacidad = PaginaDeIndice::kCapacidad;

// Where the fields of the neighbours stand.
constexpr std::size_t kAnterior = 12, kSiguiente = 16;

void PonerVecina(const DatosDeArbol& arbol, NumPagina de, std::size_t campo, NumPagina valor) {
  if (de == 0) return;
  PaginaDeIndice::Leer(arbol.paginas, de, arbol.tabla);  // throws when it is no page of the index
  Poner32(arbol.paginas.Modificar(de), campo, valor);
}

// How many entries go to the new page at the left.
std::size_t Corte(const PasoDeArbol& paso) {
  const PaginaDeIndice& p = paso.pagina;
  const std::size_t n = p.Cantidad();
  if (n < 2) DanioEnPagina(p.numero, "una entrada del índice no cabe en una página");
  // Runs that rise or fall leave full pages behind.
  if (p.siguiente == 0 && paso.lugar + 1 >= n) return n - 1;
  if (p.hoja && p.anterior == 0 && paso.lugar == 0) return 1;
  std::size_t k = 0;
  for (std::size_t bytes = 0; 2 * bytes < p.BytesSinPrefijo(); ++k) bytes += p.Completa(k).size();
  // A node keeps at least two children on both sides.
  return std::clamp<std::size_t>(k, p.hoja || n < 3 ? 1 : 2, n - 1);
}

// The first `k` entries of `p`. Of a node, the last of them becomes the tail.
PaginaDeIndice Izquierda(const PaginaDeIndice& p, NumPagina numero, std::size_t k) {
  PaginaDeIndice izquierda(numero, p.hoja);
  izquierda.nivel = p.nivel;
  izquierda.prefijo = p.prefijo;
  izquierda.Agregar(p, 0, p.hoja ? k : k - 1);
  if (!p.hoja) izquierda.cola = p.Hijo(k - 1);
  return izquierda;
}

void Partir(const DatosDeArbol& arbol, Camino& camino, std::size_t nivel) {
  PaginaDeIndice& p = camino[nivel].pagina;
  std::size_t k = Corte(camino[nivel]);
  PaginaDeIndice izquierda = Izquierda(p, 0, k);
  while (k > 1 && !izquierda.Cabe()) izquierda = Izquierda(p, 0, --k);
  if (!izquierda.Cabe()) DanioEnPagina(p.numero, "una entrada del índice no cabe en una página");
  izquierda.numero = NuevaPaginaDeArbol(arbol);

  PasoDeArbol& padre = camino[nivel - 1];
  padre.pagina.Insertar(padre.lugar, EntradaCompleta(p.Clave(k - 1), p.FilaDe(k - 1), izquierda.numero));
  ++padre.lugar;
  padre.cambiada = true;

  izquierda.anterior = p.anterior;
  izquierda.siguiente = p.numero;
  PonerSiguiente(arbol, p.anterior, izquierda.numero);
  p.anterior = izquierda.numero;
  izquierda.Escribir(arbol.paginas, arbol.tabla);
  p.Quitar(0, k);
  camino[nivel].lugar -= std::min(camino[nivel].lugar, k);
}

// The content of the root goes to a page of its own; the root stays where it is, as a node over it.
void BajarRaiz(const DatosDeArbol& arbol, Camino& camino) {
  PasoDeArbol raiz{PaginaDeIndice(arbol.raiz, false)};
  camino[0].pagina.numero = raiz.pagina.cola = NuevaPaginaDeArbol(arbol);
  raiz.pagina.nivel = static_cast<std::uint8_t>(camino[0].pagina.nivel + 1);
  raiz.cambiada = true;
  camino.insert(camino.begin(), std::move(raiz));
}

bool Vacia(const PaginaDeIndice& p) { return p.Cantidad() == 0 && (p.hoja || p.cola == 0); }

bool Corta(const PaginaDeIndice& p) {
  return (!p.hoja && p.Cantidad() == 0) || 4 * p.BytesSinPrefijo() < kCapacidad;
}

// Takes child `padre.lugar` out of the node at `nivel`.
void QuitarHijo(Camino& camino, std::size_t nivel) {
  PasoDeArbol& paso = camino[nivel];
  PaginaDeIndice& p = paso.pagina;
  paso.cambiada = true;
  const std::size_t n = p.Cantidad();
  if (paso.lugar < n) return p.Quitar(paso.lugar, paso.lugar + 1);
  if (n == 0) {
    p.cola = 0;
    return;
  }
  // The tail goes: the child before it becomes the tail, and its key that of the whole node.
  const Vista clave = p.Clave(n - 1);
  const Bytes copia(clave.begin(), clave.end());
  const IdFila fila = p.FilaDe(n - 1);
  p.cola = p.Hijo(n - 1);
  p.Quitar(n - 1, n);
  paso.lugar = n - 1;
  PonerClaveArriba(camino, nivel, copia, fila);
}

void Desenganchar(const DatosDeArbol& arbol, const PaginaDeIndice& p) {
  PonerSiguiente(arbol, p.anterior, p.siguiente);
  PonerAnterior(arbol, p.siguiente, p.anterior);
  LiberarPaginaDeArbol(arbol, p.numero);
}

// `izquierda` and what stands in `derecha`, as one page with the number of `derecha`. The left one is named
// in the node above by an entry, whose key is that of its last child.
PaginaDeIndice Unidas(const PaginaDeIndice& izquierda, const PaginaDeIndice& derecha,
                      const PaginaDeIndice& padre, std::size_t lugar) {
  PaginaDeIndice p(derecha.numero, derecha.hoja);
  p.nivel = derecha.nivel;
  p.prefijo = std::max(izquierda.prefijo, derecha.prefijo);
  p.anterior = izquierda.anterior;
  p.siguiente = derecha.siguiente;
  p.cola = derecha.cola;
  p.Agregar(izquierda, 0, izquierda.Cantidad());
  if (!p.hoja)
    p.Insertar(p.Cantidad(), EntradaCompleta(padre.Clave(lugar), padre.FilaDe(lugar), izquierda.cola));
  p.Agregar(derecha, 0, derecha.Cantidad());
  return p;
}

PaginaDeIndice LeerHermana(const DatosDeArbol& arbol, const PaginaDeIndice& de, NumPagina numero) {
  PaginaDeIndice p = LeerDeArbol(arbol, numero);
  if (p.hoja != de.hoja || numero == de.numero)
    DanioEnPagina(numero, "las páginas de un nivel del índice no son de la misma clase");
  return p;
}

// A node with its tail alone takes a child of a neighbour which is too full to be joined with it.
void TomarHijo(const DatosDeArbol& arbol, Camino& camino, std::size_t nivel, PaginaDeIndice& hermana,
               bool derecha) {
  PaginaDeIndice& p = camino[nivel].pagina;
  PasoDeArbol& padre = camino[nivel - 1];
  const std::size_t lugar = derecha ? padre.lugar : padre.lugar - 1;  // of the left one of the two
  const std::size_t va = derecha ? 0 : hermana.Cantidad() - 1;
  const Bytes separa =
      EntradaCompleta(hermana.Clave(va), hermana.FilaDe(va), derecha ? p.numero : hermana.numero);
  const Vista clave = padre.pagina.Clave(lugar);
  const IdFila fila = padre.pagina.FilaDe(lugar);
  if (derecha) {
    p.Insertar(0, EntradaCompleta(clave, fila, p.cola));
    p.cola = hermana.Hijo(0);
  } else {
    p.Insertar(0, EntradaCompleta(clave, fila, hermana.cola));
    hermana.cola = hermana.Hijo(va);
  }
  hermana.Quitar(va, va + 1);
  hermana.Escribir(arbol.paginas, arbol.tabla);
  padre.pagina.Reemplazar(lugar, separa);
  padre.cambiada = true;
}

// Joins the page at `nivel` with a neighbour below the same node where the two fill less than three quarters
// of a page, always into the right one of them, so that no other key changes. True when the page is gone.
bool Juntar(const DatosDeArbol& arbol, Camino& camino, std::size_t nivel) {
  PasoDeArbol &paso = camino[nivel], &padre = camino[nivel - 1];
  const bool sola = !paso.pagina.hoja && paso.pagina.Cantidad() == 0;
  const std::size_t tope = sola ? kCapacidad : kCapacidad / 4 * 3;
  if (padre.lugar < padre.pagina.Cantidad()) {
    PaginaDeIndice hermana = LeerHermana(arbol, paso.pagina, padre.pagina.Hijo(padre.lugar + 1));
    PaginaDeIndice junta = Unidas(paso.pagina, hermana, padre.pagina, padre.lugar);
    if (junta.BytesSinPrefijo() <= tope) {
      junta.Escribir(arbol.paginas, arbol.tabla);
      PonerSiguiente(arbol, junta.anterior, junta.numero);
      LiberarPaginaDeArbol(arbol, paso.pagina.numero);
      padre.pagina.Quitar(padre.lugar, padre.lugar + 1);
      padre.cambiada = true;
      return true;
    }
    if (sola && hermana.Cantidad() > 1) {
      TomarHijo(arbol, camino, nivel, hermana, true);
      return false;
    }
  }
  if (padre.lugar == 0) return false;
  PaginaDeIndice hermana = LeerHermana(arbol, paso.pagina, padre.pagina.Hijo(padre.lugar - 1));
  PaginaDeIndice junta = Unidas(hermana, paso.pagina, padre.pagina, padre.lugar - 1);
  if (junta.BytesSinPrefijo() <= tope) {
    PonerSiguiente(arbol, junta.anterior, junta.numero);
    LiberarPaginaDeArbol(arbol, hermana.numero);
    padre.pagina.Quitar(padre.lugar - 1, padre.lugar);
    --padre.lugar;
    padre.cambiada = true;
    paso.pagina = std::move(junta);
  } else if (sola && hermana.Cantidad() > 1) {
    TomarHijo(arbol, camino, nivel, hermana, false);
  }
  return false;
}

// A root with one child gives way to it, as often as that is so; one without any becomes an empty leaf.
void AplanarRaiz(const DatosDeArbol& arbol, Camino& camino) {
  PasoDeArbol& raiz = camino[0];
  while (!raiz.pagina.hoja && raiz.pagina.Cantidad() == 0) {
    raiz.cambiada = true;
    if (raiz.pagina.cola == 0) {
      raiz.pagina = PaginaDeIndice(arbol.raiz, true);
      return;
    }
    const NumPagina hijo = raiz.pagina.cola;
    const auto nivel = static_cast<std::uint8_t>(raiz.pagina.nivel - 1);
    raiz.pagina = LeerDeArbol(arbol, hijo);
    raiz.pagina.numero = arbol.raiz;
    raiz.pagina.nivel = nivel;
    raiz.pagina.anterior = raiz.pagina.siguiente = 0;
    LiberarPaginaDeArbol(arbol, hijo);
  }
}

// The distances from the leaves, which not every program keeps.
void PonerNiveles(Camino& camino) {
  for (std::size_t i = 0; i < camino.size(); ++i)
    camino[i].pagina.nivel = static_cast<std::uint8_t>(camino.size() - 1 - i);
}

// Writes what has changed, from the page that stands `debajo` pages from the end of the way upwards: a root
// that is split makes the way longer at its start. A longer key above, as a removal may leave one, splits
// too.
void GuardarDesde(const DatosDeArbol& arbol, Camino& camino, std::size_t debajo) {
  for (; debajo <= camino.size(); ++debajo)
    if (camino[camino.size() - debajo].cambiada) GuardarPaso(arbol, camino, camino.size() - debajo);
}

}  // namespace

void PonerAnterior(const DatosDeArbol& arbol, NumPagina de, NumPagina anterior) {
  PonerVecina(arbol, de, kAnterior, anterior);
}

void PonerSiguiente(const DatosDeArbol& arbol, NumPagina de, NumPagina siguiente) {
  PonerVecina(arbol, de, kSiguiente, siguiente);
}

void PonerClaveArriba(Camino& camino, std::size_t nivel, Vista clave, IdFila fila) {
  while (nivel-- > 0) {
    PasoDeArbol& paso = camino[nivel];
    if (paso.lugar == paso.pagina.Cantidad()) continue;  // the tail: its key stands further up, if anywhere
    if (paso.pagina.Comparar(paso.lugar, clave, fila) == 0) return;
    paso.pagina.Reemplazar(paso.lugar, EntradaCompleta(clave, fila, paso.pagina.Hijo(paso.lugar)));
    paso.cambiada = true;
    return;
  }
}

void GuardarPaso(const DatosDeArbol& arbol, Camino& camino, std::size_t nivel) {
  const std::size_t debajo = camino.size() - nivel;  // pages from here to the leaf, which a new root leaves
  while (!camino[camino.size() - debajo].pagina.Cabe()) {
    if (debajo == camino.size()) BajarRaiz(arbol, camino);
    Partir(arbol, camino, camino.size() - debajo);
  }
  camino[camino.size() - debajo].pagina.Escribir(arbol.paginas, arbol.tabla);
}

void GuardarInsercion(const DatosDeArbol& arbol, Camino& camino) {
  PonerNiveles(camino);
  PasoDeArbol& hoja = camino.back();
  hoja.cambiada = true;
  if (hoja.lugar + 1 == hoja.pagina.Cantidad())
    PonerClaveArriba(camino, camino.size() - 1, hoja.pagina.Clave(hoja.lugar),
                     hoja.pagina.FilaDe(hoja.lugar));
  GuardarDesde(arbol, camino, 1);
}

void GuardarBorrado(const DatosDeArbol& arbol, Camino& camino) {
  PonerNiveles(camino);
  PasoDeArbol& hoja = camino.back();
  hoja.pagina.Quitar(hoja.lugar, hoja.lugar + 1);
  hoja.cambiada = true;
  const std::size_t n = hoja.pagina.Cantidad();
  if (n > 0 && hoja.lugar == n)
    PonerClaveArriba(camino, camino.size() - 1, hoja.pagina.Clave(n - 1), hoja.pagina.FilaDe(n - 1));
  for (std::size_t nivel = camino.size() - 1; nivel > 0; --nivel) {
    PasoDeArbol& paso = camino[nivel];
    if (!paso.cambiada) continue;
    if (Vacia(paso.pagina)) {
      Desenganchar(arbol, paso.pagina);
      QuitarHijo(camino, nivel - 1);
    } else if (!Corta(paso.pagina) || !Juntar(arbol, camino, nivel)) {
      GuardarPaso(arbol, camino, nivel);
    }
  }
  AplanarRaiz(arbol, camino);
  GuardarDesde(arbol, camino, camino.size());
}

}  // namespace mdb
