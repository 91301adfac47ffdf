#include "jetsql/translate.h"

#include <algorithm>

#include "jetsql/crosstab_internal.h"
#include "jetsql/definition_internal.h"
#include "jetsql/parser.h"
#include "jetsql/resolver_internal.h"
#include "jetsql/writer_internal.h"

namespace jetsql {
namespace {

// CREATE, DROP and ALTER hold their literals in the text, where SQLite takes no parameters.
void FijarTodos(std::string_view sql, Traduccion& t) {
  Forma forma;
  SepararLiterales(sql, forma);
  for (std::size_t i = 0; i < forma.literales.size(); ++i) t.fijos.push_back(static_cast<int>(i));
}

class Traductor {
 public:
  // `cruzadas`: the columns of crosstabs, as far as they are known.
  Traductor(Catalogo& catalogo, const OpcionesTraduccion& opciones,
            const std::vector<ColumnasCruzadas>* cruzadas = nullptr)
      : catalogo_(catalogo),
        opciones_(opciones),
        cruzadas_(cruzadas),
        resolutor_(catalogo, opciones.locale, cruzadas) {}

  Traduccion Hacer(std::string_view sql) {
    Sentencia s = Analizar(sql);
    if (KindOf(s) == Clase::Definicion && !std::holds_alternative<ConsultaPtr>(s)) FijarTodos(sql, t_);
    return Hacer(s);
  }

  Traduccion Hacer(Sentencia& s) {
    t_.clase = KindOf(s);
    std::visit([&](auto& x) { Una(x); }, s);
    t_.determinista = resolutor_.Determinista();
    for (const int i : resolutor_.Fijos()) t_.fijos.push_back(i);
    std::sort(t_.fijos.begin(), t_.fijos.end());
    t_.fijos.erase(std::unique(t_.fijos.begin(), t_.fijos.end()), t_.fijos.end());
    return std::move(t_);
  }

 private:
  void Una(ConsultaPtr& c) {
    if (c->cruce && !c->cruce->con_lista) {
      const ColumnasCruzadas* propias = Propias();
      t_.cruzada = propias == nullptr;
      propias == nullptr ? PedirValores(*c) : DarValores(*c, propias->valores);
    }
    const bool lee = t_.clase == Clase::Consulta;
    try {
      resolutor_.Resolver(*c);
    } catch (const FaltanColumnas& f) {
      if (!lee) throw;
      PedirDe(f.Consulta());
      return;
    }
    if (!lee) {
      DefinirDeConsulta(*c, catalogo_, opciones_, t_);
      return;
    }
    t_.pasos.push_back(WriteQuery(*c, opciones_));
    for (const auto& col : c->salida) t_.columnas.push_back({col.nombre, col.tipo.tipo});
  }
  const ColumnasCruzadas* Propias() const {
    if (cruzadas_ != nullptr)
      for (const auto& c : *cruzadas_)
        if (c.consulta.empty()) return &c;
    return nullptr;
  }
  // The values of a saved crosstab first; if it stands on another one, those of that.
  void PedirDe(std::string consulta) {
    constexpr int kAnidadas = 30;
    for (int i = 0; i < kAnidadas; ++i) {
      Sentencia s = Analizar(*catalogo_.Consulta(consulta), Literales::EnTexto);
      Consulta& c = *std::get<ConsultaPtr>(s);
      PedirValores(c);
      try {
        Resolutor(catalogo_, opciones_.locale, cruzadas_).Resolver(c);
      } catch (const FaltanColumnas& f) {
        consulta = f.Consulta();
        continue;
      }
      t_ = {};
      t_.pasos.push_back(WriteQuery(c, opciones_));
      t_.columnas.push_back({c.salida[0].nombre, c.salida[0].tipo.tipo});
      t_.cruzada = true;
      t_.consulta_cruzada = std::move(consulta);
      return;
    }
    throw base::Error("La consulta '" + consulta + "' se contiene a sí misma");
  }
  void Una(Insercion& s) {
    resolutor_.Resolver(s);
    t_.pasos.push_back(WriteInsert(s, opciones_));
    t_.escribe.push_back(s.info->nombre);
  }
  void Una(Actualizacion& s) {
    resolutor_.Resolver(s);
    t_.pasos = WriteUpdate(s, opciones_);
    for (const Asignacion& a : s.cambios) {
      const std::string& tabla = a.columna->fuente->tabla->nombre;
      if (std::find(t_.escribe.begin(), t_.escribe.end(), tabla) == t_.escribe.end())
        t_.escribe.push_back(tabla);
    }
  }
  void Una(Borrado& s) {
    resolutor_.Resolver(s);
    t_.pasos.push_back(WriteDelete(s, opciones_));
    t_.escribe.push_back(s.fuente->tabla->nombre);
  }
  template <typename T>
  void Una(T& definicion) {
    Definir(definicion, catalogo_, t_);
  }

  Catalogo& catalogo_;
  OpcionesTraduccion opciones_;
  const std::vector<ColumnasCruzadas>* cruzadas_;
  Resolutor resolutor_;
  Traduccion t_;
};

}  // namespace

Traduccion Traducir(std::string_view sql, Catalogo& catalogo, const OpcionesTraduccion& opciones) {
  return Traductor(catalogo, opciones).Hacer(sql);
}

Traduccion Traducir(Sentencia& sentencia, Catalogo& catalogo, const OpcionesTraduccion& opciones) {
  return Traductor(catalogo, opciones).Hacer(sentencia);
}

std::string TraducirValor(std::string_view expresion, base::Tipo destino) {
  class Vacio final : public Catalogo {
    const TablaInfo* Tabla(std::string_view) override { return nullptr; }
    const std::string* Consulta(std::string_view) override { return nullptr; }
  };
  const Sentencia s = Analizar("SELECT " + std::string(expresion), Literales::EnTexto);
  const auto* consulta = std::get_if<ConsultaPtr>(&s);
  if (consulta == nullptr || (*consulta)->partes.size() != 1 || (*consulta)->partes[0].lista.size() != 1 ||
      !(*consulta)->partes[0].lista[0].expr || !(*consulta)->partes[0].de.empty())
    throw base::Error("'" + std::string(expresion) + "' no es un valor");
  Vacio vacio;
  ExprPtr valor = (*consulta)->partes[0].lista[0].expr;
  Resolutor(vacio).ResolverSuelta(valor);
  return WriteValue(*valor, destino);
}

Traduccion TraducirCruzada(std::string_view sql, Catalogo& catalogo, const OpcionesTraduccion& opciones,
                           const std::vector<ColumnasCruzadas>& columnas) {
  return Traductor(catalogo, opciones, &columnas).Hacer(sql);
}

}  // namespace jetsql
