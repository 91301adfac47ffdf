// Gives every name of a tree its table and column, and every expression its type. The tree must outlive what
// is read from it: columns point at their sources.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "jetsql/ast.h"
#include "jetsql/catalog.h"
#include "jetsql/translate.h"

namespace jetsql {

// The tables that a name may come from, from the inside out.
struct Ambito {
  const Ambito* padre = nullptr;
  std::vector<Fuente*> fuentes;
  std::vector<ItemLista>* lista = nullptr;  // whose aliases may be named, where they may
};

class Resolutor {
 public:
  // `cruzadas`: the columns of the crosstabs among the saved queries, as far as they are known.
  explicit Resolutor(Catalogo& catalogo, const base::Locale* locale = nullptr,
                     const std::vector<ColumnasCruzadas>* cruzadas = nullptr)
      : catalogo_(catalogo),
        locale_(locale != nullptr ? *locale : base::Locale::espanol()),
        cruzadas_(cruzadas) {}

  void Resolver(Consulta& c, const Ambito* padre = nullptr);
  void Resolver(Insercion& s);
  void Resolver(Actualizacion& s);
  void Resolver(Borrado& s);
  void ResolverSuelta(ExprPtr& e);                          // that names no table
  const TablaInfo& TablaDe(std::string_view nombre) const;  // throws when there is none

  // Literals that decided something, in any order.
  const std::vector<int>& Fijos() const { return fijos_; }
  bool Determinista() const { return determinista_; }

 private:
  enum class Agregados { Prohibidos, Permitidos, Dentro };
  struct Contexto {
    const Ambito& ambito;
    Agregados agregados = Agregados::Prohibidos;
    bool* hay_agregado = nullptr;
  };
  struct Hallada {
    const Fuente* fuente = nullptr;
    int columna = -1;
  };

  // Sources and names (resolver.cpp).
  void Hojas(const std::vector<RamaPtr>& de, std::vector<Fuente*>& fuentes) const;
  void Hojas(const Rama& rama, std::vector<Fuente*>& fuentes) const;
  void ResolverFuentes(const std::vector<Fuente*>& fuentes, const Ambito* padre);
  void ResolverFuente(Fuente& f, const Ambito* padre);
  void AbrirConsulta(Fuente& f, const std::string& texto);
  void AbrirCruce(const Fuente& f) const;
  void Condiciones(Rama& rama, const Ambito* padre);
  std::string AliasUnico(std::string_view nombre);
  Hallada EnFuentes(const std::vector<Fuente*>& fuentes, const Expr& e) const;
  Hallada PorTablaLeida(const Ambito& ambito, const Expr& e) const;
  Hallada Buscar(const Ambito& ambito, const Expr& e) const;

  // Queries (resolver_query.cpp).
  void ResolverParte(Seleccion& s, const Ambito* padre);
  void Expandir(Seleccion& s) const;
  void NombrarSalida(Seleccion& s) const;
  void ResolverOrden(Consulta& c, const Ambito* padre);
  void OrdenDeUnion(Consulta& c);
  void OrdenDeDistintas(Consulta& c);
  void CalcularSalida(Consulta& c) const;
  void ElegirDistintas(Seleccion& s) const;
  static bool NombraAfuera(const Expr& e, const Seleccion& s);
  void ComprobarGrupo(Seleccion& s, ExprPtr& e, bool dentro_de_agregado);
  bool Iguales(const Expr& a, const Expr& b, std::vector<int>& literales) const;
  bool Casan(const Expr& a, const Expr& b);  // the same, noting the literals in fijos_

  // Expressions (resolver_expr.cpp).
  void Resolver(ExprPtr& e, const Contexto& c);
  void ResolverColumna(ExprPtr& e, const Contexto& c);
  void ResolverLlamada(Expr& e, const Contexto& c);
  void ResolverEspecial(Expr& e);
  bool PorAlias(ExprPtr& e, const Contexto& c);
  void ResolverSubconsulta(Expr& e, const Contexto& c, bool una_columna);

  Catalogo& catalogo_;
  const base::Locale& locale_;
  const std::vector<ColumnasCruzadas>* cruzadas_;
  std::vector<std::string> abiertas_;   // saved queries being read
  std::vector<std::string> alias_sql_;  // in use, in lower case
  std::vector<int> fijos_;
  bool determinista_ = true;
};

}  // namespace jetsql
