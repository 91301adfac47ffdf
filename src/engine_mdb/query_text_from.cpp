#include <algorithm>
#include <memory>

#include "base/error.h"
#include "base/text.h"
#include "engine_mdb/query_text_internal.h"
#include "jetsql/statement_kind.h"

namespace engine_mdb::internal {
namespace {

// Access takes 32 tables; the bounds keep a damaged file from building a tree of any height or a condition of
// any length.
constexpr std::size_t kMasFuentes = 255, kMasUniones = 2000;

std::string SinCorchetes(std::string_view nombre) {
  if (nombre.size() >= 2 && nombre.front() == '[' && nombre.back() == ']')
    nombre = nombre.substr(1, nombre.size() - 2);
  return std::string(nombre);
}

// The text of a derived table, without the marks of the old spelling: [SELECT …].
std::string_view SinMarcas(std::string_view texto) {
  texto = base::TrimVista(SinCola(texto));
  if (base::TerminaCon(texto, ".")) texto.remove_suffix(1);
  if (texto.size() >= 2 && texto.front() == '[' && texto.back() == ']')
    texto = SinCola(texto.substr(1, texto.size() - 2));
  return texto;
}

std::string TextoDeFuente(const mdb::FilaDeConsulta& f) {
  std::string texto;
  const std::string expresion = f.expresion.value_or("");
  if (const auto dentro = SinMarcas(expresion); jetsql::BeginsQuery(dentro)) {
    texto = "(" + std::string(dentro) + ")";
  } else {
    if (!dentro.empty()) texto = "[" + std::string(dentro) + "].";
    if (!f.nombre1 || f.nombre1->empty()) throw base::Error("La consulta tiene una fuente sin nombre");
    texto += Citar(*f.nombre1);
  }
  if (f.nombre2 && !f.nombre2->empty()) texto += " AS " + Citar(*f.nombre2);
  return texto;
}

// A source, or the join of two groups of sources.
struct Nodo {
  std::string hoja;
  std::unique_ptr<Nodo> izquierda, derecha;
  const char* tipo = nullptr;
  std::vector<std::string> condiciones;  // the last stored first: so they are written
  std::vector<std::size_t> fuentes;      // all below it

  bool Tiene(std::size_t fuente) const {
    return std::find(fuentes.begin(), fuentes.end(), fuente) != fuentes.end();
  }
  std::string Texto() const {
    if (!tipo) return hoja;
    std::string texto = Lado(*izquierda) + tipo + Lado(*derecha) + " ON ";
    if (condiciones.size() == 1) return texto + condiciones.front();
    for (std::size_t i = 0; i < condiciones.size(); ++i)
      texto += (i == 0 ? "(" : " AND (") + condiciones[i] + ")";
    return texto;
  }

 private:
  static std::string Lado(const Nodo& n) { return n.tipo ? "(" + n.Texto() + ")" : n.Texto(); }
};

const char* TipoDeUnion(std::int16_t bandera) {
  switch (bandera) {
    case mdb::query_codes::kInner:
      return " INNER JOIN ";
    case mdb::query_codes::kLeft:
      return " LEFT JOIN ";
    case mdb::query_codes::kRight:
      return " RIGHT JOIN ";
    default:
      throw base::Error("La consulta une sus tablas de un modo que no se conoce");
  }
}

class Arbol {
 public:
  explicit Arbol(std::span<const mdb::FilaDeConsulta> fuentes) {
    if (fuentes.size() > kMasFuentes) throw base::Error("La consulta tiene demasiadas tablas");
    for (const auto& f : fuentes) {
      auto hoja = std::make_unique<Nodo>();
      hoja->hoja = TextoDeFuente(f);
      hoja->fuentes.push_back(nombres_.size());
      nombres_.push_back(
          SinCorchetes(f.nombre2 && !f.nombre2->empty() ? *f.nombre2 : f.nombre1.value_or("")));
      grupos_.push_back(std::move(hoja));
    }
  }

  void Unir(const mdb::FilaDeConsulta& u) {
    const std::size_t a = Fuente(u.nombre1), b = Fuente(u.nombre2);
    if (a == b) throw base::Error("La consulta une una tabla con ella misma");
    const std::size_t ga = Grupo(a), gb = Grupo(b);
    const std::string condicion(SinCola(u.expresion.value_or("")));
    if (condicion.empty()) throw base::Error("La consulta une dos tablas sin decir por qué");
    if (ga == gb) {
      AgregarCondicion(*grupos_[ga], a, b, condicion);
      return;
    }
    auto nodo = std::make_unique<Nodo>();
    nodo->tipo = TipoDeUnion(u.bandera.value_or(mdb::query_codes::kInner));
    nodo->condiciones.push_back(condicion);
    nodo->fuentes = grupos_[ga]->fuentes;
    nodo->fuentes.insert(nodo->fuentes.end(), grupos_[gb]->fuentes.begin(), grupos_[gb]->fuentes.end());
    nodo->izquierda = std::move(grupos_[ga]);
    nodo->derecha = std::move(grupos_[gb]);
    grupos_[std::min(ga, gb)] = std::move(nodo);
    grupos_.erase(grupos_.begin() + static_cast<std::ptrdiff_t>(std::max(ga, gb)));
  }

  std::string Texto() const {
    std::string texto;
    for (const auto& g : grupos_) texto += (texto.empty() ? "" : ", ") + g->Texto();
    return texto;
  }

 private:
  std::size_t Fuente(const std::optional<std::string>& nombre) const {
    const std::string buscado = SinCorchetes(nombre.value_or(""));
    for (std::size_t i = 0; i < nombres_.size(); ++i)
      if (base::IgualSinCaso(nombres_[i], buscado)) return i;
    throw base::Error("La consulta une \"" + buscado + "\", que no está entre sus tablas");
  }

  std::size_t Grupo(std::size_t fuente) const {
    std::size_t g = 0;
    while (!grupos_[g]->Tiene(fuente)) ++g;
    return g;
  }

  // A further condition belongs to the join that first brings its two sides together.
  static void AgregarCondicion(Nodo& grupo, std::size_t a, std::size_t b, const std::string& condicion) {
    Nodo* n = &grupo;
    for (;;) {
      if (n->izquierda->Tiene(a) && n->izquierda->Tiene(b)) {
        n = n->izquierda.get();
      } else if (n->derecha->Tiene(a) && n->derecha->Tiene(b)) {
        n = n->derecha.get();
      } else {
        break;
      }
    }
    n->condiciones.insert(n->condiciones.begin(), condicion);
  }

  std::vector<std::string> nombres_;
  std::vector<std::unique_ptr<Nodo>> grupos_;
};

}  // namespace

std::string TextoDeFuentes(std::span<const mdb::FilaDeConsulta> fuentes,
                           std::span<const mdb::FilaDeConsulta> uniones) {
  if (uniones.size() > kMasUniones) throw base::Error("La consulta tiene demasiadas uniones");
  Arbol arbol(fuentes);
  for (const auto& u : uniones) arbol.Unir(u);
  return arbol.Texto();
}

}  // namespace engine_mdb::internal
