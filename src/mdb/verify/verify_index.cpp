#include <algorithm>
#include <optional>

#include "mdb/indexes/index_page.h"
#include "mdb/indexes/index_tree.h"
#include "mdb/verify/verify_internal.h"

namespace mdb::internal {
namespace {

using DeIndice = FilasVistas::DeIndice;

constexpr std::size_t kNiveles = 24;

std::string NombreDeIndice(const Definicion& d, std::size_t indice) {
  for (const IndiceLogico& l : d.logicos)
    if (l.real == indice) return l.nombre;
  return "número " + std::to_string(indice);
}

bool EsUnico(const Definicion& d, std::size_t indice) {
  return d.reales[indice].Unico() ||
         std::any_of(d.logicos.begin(), d.logicos.end(), [&](const IndiceLogico& l) {
           return l.real == indice && l.clase == IndiceLogico::Primario;
         });
}

std::string Hex(Vista v) {
  std::string t;
  for (const std::uint8_t b : v) {
    constexpr const char* kCifras = "0123456789ABCDEF";
    t += kCifras[b >> 4];
    t += kCifras[b & 15];
  }
  return t;
}

class RevisionDeIndice {
 public:
  RevisionDeIndice(Revision& r, const Definicion& d, std::size_t indice, FilasVistas& filas)
      : r_(r), d_(d), real_(d.reales[indice]), filas_(filas), de_(filas.indices[indice]) {
    const std::string nombre = Entre(NombreDeIndice(d, indice));
    donde_ = "tabla " + Entre(d.nombre) + ", índice " + nombre;
    dueno_ = r.NuevoDueno("el índice " + nombre + " de la tabla " + Entre(d.nombre));
    unico_ = EsUnico(d, indice);
  }

  void Hacer() {
    ++r_.informe.indices;
    const MapaVisto mapa = r_.Mapa(real_.mapa, dueno_, donde_);
    entero_ = true;
    Pagina(real_.raiz, 0);
    Enlaces();
    if (entero_ && mapa.legible && real_.mapa.pagina != 0) Mapa(mapa.paginas);
    if (entero_) Faltantes();
    if (sin_clave_ != 0 && de_.con_claves)
      r_.Nota(0, donde_,
              Cuantas(sin_clave_, "una clave no se puede", "claves no se pueden") +
                  " calcular para comprobar la entrada");
    if (!de_.con_claves && !filas_.ids.empty())
      r_.Nota(0, donde_, "el orden de sus claves no se conoce y no se comprobaron");
  }

 private:
  struct Nivel {
    NumPagina numero, anterior, siguiente;
  };

  // Walks a page and what is below it. Returns its distance from the leaves, none when it cannot be read;
  // `ultima_` is then the last entry met.
  std::optional<std::size_t> Pagina(NumPagina numero, std::size_t hondo) {
    std::optional<std::size_t> altura;
    if (hondo >= kNiveles) {
      r_.Error(numero, donde_, "el índice tiene demasiados niveles");
    } else if (r_.Tomar(numero, dueno_, donde_)) {
      r_.Probar(numero, donde_, [&] {
        const PaginaDeIndice p = PaginaDeIndice::Leer(r_.paginas, numero, 0);
        paginas_.push_back(numero);
        if (p.duena != d_.Pagina())
          r_.Error(numero, donde_, "la página dice ser de la tabla de la página " + std::to_string(p.duena));
        if (p.libres != p.libres_segun_pagina)
          r_.Error(numero, donde_,
                   "dice tener " + std::to_string(p.libres_segun_pagina) + " bytes libres y tiene " +
                       std::to_string(p.libres));
        altura = p.hoja ? Hoja(p) : Nodo(p, hondo);
        if (p.nivel != *altura && p.hoja)
          r_.Error(numero, donde_, "la hoja dice ser del nivel " + std::to_string(unsigned{p.nivel}));
        if (p.nivel != *altura && !p.hoja)
          r_.Nota(numero, donde_,
                  "el nodo dice ser del nivel " + std::to_string(unsigned{p.nivel}) + " y es del " +
                      std::to_string(*altura));
        if (niveles_.size() <= *altura) niveles_.resize(*altura + 1);
        niveles_[*altura].push_back({numero, p.anterior, p.siguiente});
      });
    }
    entero_ = entero_ && altura;
    return altura;
  }

  std::size_t Hoja(const PaginaDeIndice& p) {
    if (p.cola != 0) r_.Error(p.numero, donde_, "la hoja tiene un hijo");
    if (p.Cantidad() == 0 && p.numero != real_.raiz) r_.Error(p.numero, donde_, "la hoja está vacía");
    for (std::size_t i = 0; i < p.Cantidad(); ++i) UnaEntrada(p, i);
    return 0;
  }

  std::size_t Nodo(const PaginaDeIndice& p, std::size_t hondo) {
    std::optional<std::size_t> debajo;
    if (p.cola == 0 && p.Cantidad() > 1) r_.Nota(p.numero, donde_, "el nodo no tiene hijo final");
    const std::size_t hijos = p.Cantidad() + (p.cola != 0 ? 1 : 0);
    if (hijos == 0) DanioEnPagina(p.numero, "el nodo no tiene hijos");
    for (std::size_t i = 0; i < hijos; ++i) {
      const std::size_t antes = entradas_;
      const auto altura = Pagina(p.Hijo(i), hondo + 1);
      if (altura && debajo && *altura != *debajo)
        r_.Error(p.numero, donde_, "los hijos del nodo no son del mismo nivel");
      if (altura) debajo = std::max(debajo.value_or(0), *altura);
      if (altura && i < p.Cantidad() && entradas_ != antes && p.Comparar(i, ultima_.clave, ultima_.fila) != 0)
        r_.Error(p.numero, donde_,
                 "la clave del nodo para la página " + std::to_string(p.Hijo(i)) +
                     " no es la última que hay debajo de ella");
      if (i > 0 && i < p.Cantidad() && p.Comparar(i - 1, p.Clave(i), p.FilaDe(i)) >= 0)
        r_.Error(p.numero, donde_, "las claves del nodo no están en orden");
    }
    return debajo.value_or(0) + 1;
  }

  void UnaEntrada(const PaginaDeIndice& p, std::size_t i) {
    const Vista clave = p.Clave(i);
    const IdFila fila = p.FilaDe(i);
    ++r_.informe.entradas;
    const auto orden = CompararClaves(ultima_.clave, clave);
    const bool primera = entradas_++ == 0;
    if (!primera && (orden > 0 || (orden == 0 && ultima_.fila >= fila)))
      r_.Error(p.numero, donde_,
               "la entrada " + std::to_string(i) + " (" + DeFila(fila) + ") no está en su orden");
    ContraFila(p.numero, clave, fila, !primera && orden == 0);
    ultima_.clave.assign(clave.begin(), clave.end());
    ultima_.fila = fila;
  }

  void ContraFila(NumPagina pagina, Vista clave, IdFila id, bool repetida) {
    const auto it = std::lower_bound(filas_.ids.begin(), filas_.ids.end(), id);
    if (it == filas_.ids.end() || *it != id) {
      r_.Error(pagina, donde_, "hay una entrada de " + DeFila(id) + ", que no existe");
      return;
    }
    const auto n = static_cast<std::size_t>(it - filas_.ids.begin());
    std::uint8_t& marcas = de_.marcas[n];
    if ((marcas & DeIndice::kEntrada) != 0)
      r_.Error(pagina, donde_, DeFila(id) + " tiene más de una entrada");
    if (real_.Requerido() && (marcas & DeIndice::kAlgunNulo) != 0)
      r_.Error(pagina, donde_, DeFila(id) + " no tiene valor en una columna del índice, que lo exige");
    marcas |= DeIndice::kEntrada;
    if (!filas_.legible[n]) return;
    if (unico_ && repetida && (marcas & DeIndice::kTodosNulos) == 0)
      r_.Error(pagina, donde_, "el índice es único, y " + DeFila(id) + " tiene la misma clave que otra");
    if ((marcas & DeIndice::kSinClave) != 0) {
      ++sin_clave_;
      return;
    }
    const Vista esperada = de_.Clave(n);
    if (std::equal(clave.begin(), clave.end(), esperada.begin(), esperada.end())) return;
    const std::string motivo =
        "la clave de " + DeFila(id) + " es " + Hex(clave) + ", y la de sus valores es " + Hex(esperada);
    if ((marcas & DeIndice::kDudosa) != 0)
      r_.Nota(pagina, donde_, motivo);
    else
      r_.Error(pagina, donde_, motivo);
  }

  void Faltantes() {
    for (std::size_t n = 0; n < filas_.ids.size(); ++n) {
      const std::uint8_t marcas = de_.marcas[n];
      if ((marcas & DeIndice::kEntrada) != 0 || !filas_.legible[n]) continue;
      if (real_.IgnoraNulos() && (marcas & DeIndice::kTodosNulos) != 0) continue;
      r_.Error(filas_.ids[n].pagina, donde_, DeFila(filas_.ids[n]) + " no tiene entrada en el índice");
    }
  }

  // Leaves are linked over the whole index; some programs link nodes only below the same node.
  void Enlaces() {
    if (!entero_) return;
    for (std::size_t k = 0; k < niveles_.size(); ++k)
      for (std::size_t i = 0; i < niveles_[k].size(); ++i) {
        const Nivel& n = niveles_[k][i];
        const NumPagina antes = i == 0 ? 0 : niveles_[k][i - 1].numero;
        const NumPagina despues = i + 1 == niveles_[k].size() ? 0 : niveles_[k][i + 1].numero;
        const auto mal = [&](NumPagina dice, NumPagina es) { return dice != es && (k == 0 || dice != 0); };
        if (mal(n.anterior, antes))
          r_.Error(n.numero, donde_,
                   "dice que la página anterior es la " + std::to_string(n.anterior) + ", y es la " +
                       std::to_string(antes));
        if (mal(n.siguiente, despues))
          r_.Error(n.numero, donde_,
                   "dice que la página siguiente es la " + std::to_string(n.siguiente) + ", y es la " +
                       std::to_string(despues));
      }
  }

  void Mapa(const std::vector<NumPagina>& mapa) {
    std::sort(paginas_.begin(), paginas_.end());
    for (const NumPagina p : paginas_)
      if (!std::binary_search(mapa.begin(), mapa.end(), p))
        r_.Error(p, donde_, "la página es del índice y su mapa no la nombra");
    for (const NumPagina p : mapa)
      if (!std::binary_search(paginas_.begin(), paginas_.end(), p))
        r_.Error(p, donde_, "el mapa del índice nombra la página, y el índice no la usa");
  }

  Revision& r_;
  const Definicion& d_;
  const IndiceReal& real_;
  FilasVistas& filas_;
  DeIndice& de_;
  std::string donde_;
  Revision::Dueno dueno_ = 0;
  bool unico_ = false, entero_ = false;
  std::vector<std::vector<Nivel>> niveles_;
  std::vector<NumPagina> paginas_;
  Entrada ultima_;
  std::size_t entradas_ = 0, sin_clave_ = 0;
};

}  // namespace

void RevisarIndice(Revision& revision, const Definicion& definicion, std::size_t indice, FilasVistas& filas) {
  RevisionDeIndice(revision, definicion, indice, filas).Hacer();
}

}  // namespace mdb::internal
