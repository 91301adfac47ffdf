#include "mdb/tables/index_changes_internal.h"

#include <algorithm>

#include "mdb/indexes/index_key.h"

namespace mdb::internal {
namespace {

constexpr int kDuplicado = 3022, kNuloEnIndice = 3058;
constexpr std::size_t kParaConstruir = 64;  // entries worth building an empty tree at once

struct EnTexto {
  std::string operator()(base::Nulo) const { return "Nulo"; }
  std::string operator()(bool b) const { return b ? "Verdadero" : "Falso"; }
  std::string operator()(const std::string& t) const { return "\"" + t + "\""; }
  std::string operator()(const Bytes&) const { return "(binario)"; }
  std::string operator()(const Guid& g) const { return g.Texto(); }
  std::string operator()(const Decimal& d) const { return d.Texto(); }
  template <typename T>
  std::string operator()(T n) const {
    return base::Valor(n).Texto();
  }
};

bool EsPrimario(const Definicion& d, std::size_t real) {
  return std::any_of(d.logicos.begin(), d.logicos.end(), [&](const IndiceLogico& l) {
    return l.real == real && l.clase == IndiceLogico::Primario;
  });
}

}  // namespace

CambiosDeIndices::CambiosDeIndices(Paginas& paginas, Definicion& definicion)
    : paginas_(paginas), definicion_(definicion) {
  std::vector<bool> usada(definicion.columnas.size());
  for (std::size_t i = 0; i < definicion.reales.size(); ++i) {
    const IndiceReal& real = definicion.reales[i];
    Uno u;
    u.cual = i;
    const bool primario = EsPrimario(definicion, i);
    u.unico = real.Unico() || primario;
    u.requerido = real.Requerido() || primario;
    for (const auto& parte : real.partes) {
      const auto columna = definicion.PorNumero(parte.columna);
      if (!columna) DanioEnPagina(definicion.Pagina(), "un índice es de una columna que no hay");
      u.columnas.push_back(*columna);
      usada[*columna] = true;
    }
    indices_.push_back(std::move(u));
  }
  for (std::size_t i = 0; i < usada.size(); ++i)
    if (usada[i]) columnas_.push_back(i);
}

std::string CambiosDeIndices::NombreDe(const Uno& u) const {
  const IndiceLogico* mejor = nullptr;
  for (const auto& l : definicion_.logicos) {
    if (l.real != u.cual) continue;
    const bool gana = mejor == nullptr || l.clase == IndiceLogico::Primario ||
                      (mejor->clase == IndiceLogico::Foraneo && l.clase == IndiceLogico::Normal);
    if (gana) mejor = &l;
  }
  return mejor == nullptr ? std::string() : mejor->nombre;
}

std::string CambiosDeIndices::Valores(const Uno& u, const Fila& valores) const {
  std::string texto;
  for (const std::size_t c : u.columnas)
    texto += (texto.empty() ? "" : ", ") + std::visit(EnTexto{}, valores[c]);
  return texto;
}

void CambiosDeIndices::Sale(Uno& u, IdFila fila, const Fila& valores) {
  const IndiceReal& real = Real(u);
  if (real.IgnoraNulos() && TodosNulos(definicion_, real, valores)) return;
  Salida s;
  s.entrada.fila = fila;
  // A stored text may have characters whose weight is not known; its entry is then found by the row.
  s.sin_clave = !base::ErrorIgnorado("clave de una fila guardada", nullptr, [&] {
    ClaveDeFila(paginas_.Cab(), definicion_, real, valores, s.entrada.clave);
  });
  u.salen.push_back(std::move(s));
}

void CambiosDeIndices::Llega(Uno& u, Llegada llegada, const Fila& valores) {
  const IndiceReal& real = Real(u);
  if (u.requerido && AlgunNulo(definicion_, real, valores)) {
    const std::string nombre = NombreDe(u);
    throw ErrorDeClave(
        "El índice \"" + nombre + "\" de la tabla \"" + definicion_.nombre + "\" no admite valores Nulos",
        kNuloEnIndice, nombre);
  }
  llegada.todos_nulos = TodosNulos(definicion_, real, valores);
  if (llegada.todos_nulos && real.IgnoraNulos()) return;
  ClaveDeFila(paginas_.Cab(), definicion_, real, valores, llegada.clave);
  if (u.unico && !llegada.es_nueva) llegada.texto = Valores(u, valores);
  u.llegan.push_back(std::move(llegada));
}

void CambiosDeIndices::Sale(IdFila fila, const Fila& valores) {
  for (auto& u : indices_) Sale(u, fila, valores);
}

void CambiosDeIndices::Entra(std::size_t nueva, const Fila& valores) {
  for (auto& u : indices_) {
    Llegada llegada;
    llegada.nueva = nueva;
    llegada.es_nueva = true;
    llegada.valores = &valores;
    Llega(u, std::move(llegada), valores);
  }
}

void CambiosDeIndices::Cambia(IdFila fila, const Fila& antes, const Fila& despues,
                              const std::vector<bool>& cambiadas) {
  for (auto& u : indices_) {
    const auto toca = [&](std::size_t c) { return cambiadas[c]; };
    if (std::none_of(u.columnas.begin(), u.columnas.end(), toca)) continue;
    const std::size_t salen = u.salen.size(), llegan = u.llegan.size();
    Sale(u, fila, antes);
    Llegada llegada;
    llegada.fila = fila;
    Llega(u, std::move(llegada), despues);
    if (u.salen.size() == salen || u.llegan.size() == llegan || u.salen.back().sin_clave) continue;
    if (u.salen.back().entrada.clave != u.llegan.back().clave) continue;
    u.salen.pop_back();
    u.llegan.pop_back();
  }
}

void CambiosDeIndices::Revisar(Uno& u) {
  ArbolDeIndice arbol = Arbol(u);
  std::sort(u.llegan.begin(), u.llegan.end(),
            [](const Llegada& a, const Llegada& b) { return a.clave < b.clave; });
  for (std::size_t i = 0; i < u.llegan.size(); ++i) {
    const Llegada& l = u.llegan[i];
    const bool repetida = (i > 0 && u.llegan[i - 1].clave == l.clave) || arbol.Hay(l.clave);
    if (!repetida) {
      ++Real(u).distintas;
    } else if (u.unico && !l.todos_nulos) {
      const std::string nombre = NombreDe(u);
      throw ErrorDeClave("Ya hay en la tabla \"" + definicion_.nombre + "\" una fila con el valor " +
                             (l.es_nueva ? Valores(u, *l.valores) : l.texto) + " en el índice \"" + nombre +
                             "\", que no admite duplicados",
                         kDuplicado, nombre);
    }
  }
}

void CambiosDeIndices::QuitarYRevisar() {
  for (auto& u : indices_) {
    ArbolDeIndice arbol = Arbol(u);
    std::sort(u.salen.begin(), u.salen.end(),
              [](const Salida& a, const Salida& b) { return a.entrada < b.entrada; });
    for (const auto& s : u.salen)
      if (s.sin_clave || !arbol.Borrar(s.entrada.clave, s.entrada.fila)) arbol.BorrarPorFila(s.entrada.fila);
    Revisar(u);
  }
}

void CambiosDeIndices::Poner(const std::vector<IdFila>& nuevas) {
  for (auto& u : indices_) {
    if (u.llegan.empty()) continue;
    std::vector<Entrada> entradas;
    entradas.reserve(u.llegan.size());
    for (auto& l : u.llegan) entradas.push_back({std::move(l.clave), l.es_nueva ? nuevas[l.nueva] : l.fila});
    std::sort(entradas.begin(), entradas.end());
    ArbolDeIndice arbol = Arbol(u);
    bool vacio = entradas.size() >= kParaConstruir;
    if (vacio) {
      arbol.Recorrer([&](const Entrada&) {
        vacio = false;
        return false;
      });
    }
    if (vacio) {
      arbol.Construir(entradas);
      continue;
    }
    for (const auto& e : entradas) arbol.Insertar(e.clave, e.fila);
  }
}

}  // namespace mdb::internal
