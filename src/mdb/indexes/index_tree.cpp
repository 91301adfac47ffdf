#include "mdb/indexes/index_tree.h"

#include <algorithm>
#include <string>

#include "mdb/indexes/index_tree_internal.h"
#include "mdb/pages/page_map.h"

namespace mdb {
namespace {

// Far beyond what 2 GB of pages need; a damaged file ends here.
constexpr std::size_t kNiveles = 24;

DatosDeArbol Datos(Paginas& paginas, NumPagina tabla, NumPagina raiz, Puntero mapa) {
  return {paginas, tabla, raiz, mapa};
}

[[noreturn]] void LanzarVuelta(NumPagina numero) {
  DanioEnPagina(numero, "el índice pasa dos veces por esta página");
}

PasoDeArbol Paso(const DatosDeArbol& arbol, NumPagina numero) {
  bool completada = false;
  PaginaDeIndice pagina = LeerDeArbol(arbol, numero, &completada);
  return {std::move(pagina), 0, completada};
}

class Recorrido {
 public:
  Recorrido(const DatosDeArbol& arbol, const std::function<bool(Camino&)>& visita,
            std::vector<NumPagina>* vistas)
      : arbol_(arbol), visita_(visita), vistas_(vistas), pasada_(arbol.paginas.Cantidad(), false) {}

  bool Desde(NumPagina numero) {
    if (numero < pasada_.size()) {
      if (pasada_[numero]) LanzarVuelta(numero);
      pasada_[numero] = true;
    }
    if (camino_.size() >= kNiveles) DanioEnPagina(numero, "el índice tiene demasiados niveles");
    camino_.push_back(Paso(arbol_, numero));
    if (vistas_ != nullptr) vistas_->push_back(numero);
    const std::size_t aqui = camino_.size() - 1;
    if (camino_[aqui].pagina.hoja) {
      if (visita_(camino_)) return true;
    } else {
      for (std::size_t i = 0; i <= camino_[aqui].pagina.Cantidad(); ++i) {
        camino_[aqui].lugar = i;
        if (Desde(camino_[aqui].pagina.Hijo(i))) return true;
      }
    }
    camino_.pop_back();
    return false;
  }

 private:
  const DatosDeArbol& arbol_;
  const std::function<bool(Camino&)>& visita_;
  std::vector<NumPagina>* vistas_;
  std::vector<bool> pasada_;
  Camino camino_;
};

}  // namespace

PaginaDeIndice LeerDeArbol(const DatosDeArbol& arbol, NumPagina numero, bool* completada) {
  PaginaDeIndice p = PaginaDeIndice::Leer(arbol.paginas, numero, arbol.tabla);
  if (p.hoja || p.cola != 0) return p;
  if (p.Cantidad() == 0) DanioEnPagina(numero, "un nodo del índice no tiene hijos");
  p.cola = p.Hijo(p.Cantidad() - 1);
  p.Quitar(p.Cantidad() - 1, p.Cantidad());
  if (completada != nullptr) *completada = true;
  return p;
}

Camino Bajar(const DatosDeArbol& arbol, Vista clave, IdFila fila) {
  Camino camino;
  for (NumPagina numero = arbol.raiz;;) {
    for (const PasoDeArbol& p : camino)
      if (p.pagina.numero == numero) LanzarVuelta(numero);
    if (camino.size() >= kNiveles) DanioEnPagina(numero, "el índice tiene demasiados niveles");
    camino.push_back(Paso(arbol, numero));
    PasoDeArbol& paso = camino.back();
    paso.lugar = paso.pagina.Primera(clave, fila);
    if (paso.pagina.hoja) return camino;
    numero = paso.pagina.Hijo(paso.lugar);
  }
}

bool PorHojas(const DatosDeArbol& arbol, const std::function<bool(Camino&)>& visita,
              std::vector<NumPagina>* vistas) {
  return Recorrido(arbol, visita, vistas).Desde(arbol.raiz);
}

NumPagina NuevaPaginaDeArbol(const DatosDeArbol& arbol) {
  const NumPagina numero = ReservarPagina(arbol.paginas);
  if (arbol.mapa.pagina != 0) PonerEnMapa(arbol.paginas, arbol.mapa, numero);
  return numero;
}

void LiberarPaginaDeArbol(const DatosDeArbol& arbol, NumPagina numero) {
  if (arbol.mapa.pagina != 0) QuitarDeMapa(arbol.paginas, arbol.mapa, numero);
  LiberarPagina(arbol.paginas, numero);
}

std::strong_ordering Entrada::operator<=>(const Entrada& otra) const {
  const auto orden = CompararClaves(clave, otra.clave);
  return orden != 0 ? orden : fila <=> otra.fila;
}

void ArbolDeIndice::Recorrer(const std::function<bool(const Entrada&)>& visita) const {
  Entrada entrada;
  PorHojas(Datos(paginas_, tabla_, raiz_, mapa_), [&](Camino& camino) {
    const PaginaDeIndice& hoja = camino.back().pagina;
    for (std::size_t i = 0; i < hoja.Cantidad(); ++i) {
      const Vista clave = hoja.Clave(i);
      entrada.clave.assign(clave.begin(), clave.end());
      entrada.fila = hoja.FilaDe(i);
      if (!visita(entrada)) return true;
    }
    return false;
  });
}

bool ArbolDeIndice::Hay(Vista clave) const {
  const DatosDeArbol arbol = Datos(paginas_, tabla_, raiz_, mapa_);
  const Camino camino = Bajar(arbol, clave, {});
  PaginaDeIndice hoja = camino.back().pagina;
  std::size_t i = camino.back().lugar;
  for (NumPagina pasos = 0; i == hoja.Cantidad() && hoja.siguiente != 0; ++pasos) {
    if (pasos > paginas_.Cantidad()) LanzarVuelta(hoja.siguiente);
    hoja = LeerDeArbol(arbol, hoja.siguiente);
    if (!hoja.hoja) DanioEnPagina(hoja.numero, "se esperaba una hoja de índice");
    i = 0;
  }
  if (i == hoja.Cantidad()) return false;
  const Vista esta = hoja.Clave(i);
  return std::equal(esta.begin(), esta.end(), clave.begin(), clave.end());
}

bool ArbolDeIndice::Tiene(Vista clave, IdFila fila) const {
  const Camino camino = Bajar(Datos(paginas_, tabla_, raiz_, mapa_), clave, fila);
  const PasoDeArbol& hoja = camino.back();
  return hoja.lugar < hoja.pagina.Cantidad() && hoja.pagina.Comparar(hoja.lugar, clave, fila) == 0;
}

void ArbolDeIndice::Insertar(Vista clave, IdFila fila) {
  if (clave.size() > PaginaDeIndice::kClaveMaxima)
    throw base::Error("La clave de índice es demasiado larga (" + std::to_string(clave.size()) + " bytes)");
  const DatosDeArbol arbol = Datos(paginas_, tabla_, raiz_, mapa_);
  Camino camino = Bajar(arbol, clave, fila);
  PasoDeArbol& hoja = camino.back();
  if (hoja.lugar < hoja.pagina.Cantidad() && hoja.pagina.Comparar(hoja.lugar, clave, fila) == 0)
    DanioEnPagina(hoja.pagina.numero, "el índice ya tiene una entrada de una fila nueva");
  hoja.pagina.Insertar(hoja.lugar, EntradaCompleta(clave, fila));
  GuardarInsercion(arbol, camino);
}

bool ArbolDeIndice::Borrar(Vista clave, IdFila fila) {
  const DatosDeArbol arbol = Datos(paginas_, tabla_, raiz_, mapa_);
  Camino camino = Bajar(arbol, clave, fila);
  const PasoDeArbol& hoja = camino.back();
  if (hoja.lugar == hoja.pagina.Cantidad() || hoja.pagina.Comparar(hoja.lugar, clave, fila) != 0)
    return false;
  GuardarBorrado(arbol, camino);
  return true;
}

bool ArbolDeIndice::BorrarPorFila(IdFila fila) {
  const DatosDeArbol arbol = Datos(paginas_, tabla_, raiz_, mapa_);
  Camino encontrado;
  PorHojas(arbol, [&](Camino& camino) {
    PasoDeArbol& hoja = camino.back();
    for (hoja.lugar = 0; hoja.lugar < hoja.pagina.Cantidad(); ++hoja.lugar)
      if (hoja.pagina.FilaDe(hoja.lugar) == fila) {
        encontrado = std::move(camino);
        return true;
      }
    return false;
  });
  if (encontrado.empty()) return false;
  GuardarBorrado(arbol, encontrado);
  return true;
}

}  // namespace mdb
