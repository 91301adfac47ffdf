// The editing row under GridRelaciones: what the add and the remove button do, without the window.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "formula/vectores/list_control.h"
#include "refdata/concepts_catalogue.h"
#include "relations/code_relations.h"
#include "sesion/db_session.h"
#include "settings/settings.h"

namespace relations {

// Why cbAgrQuit(0) refuses, or "" when it does not.
std::string RechazoAlAgregar(const formula::ListControl& cmbConceptos, std::string_view txtTipo);
// The same for cbAgrQuit(1); `codigo` is the "Codigo" cell of the current row, "" when there is none.
std::string RechazoAlQuitar(std::string_view codigo);

// The cost centre of a new relation: the chosen one when it stands after "[Por Defecto]", the company groups
// and the cost centre comes by line; otherwise 0.
std::int64_t CentroDeRelacion(const sesion::DbSession& sesion, const settings::Settings& opciones,
                              const formula::ListControl& cmbAgrupaDef);

// What removing a relation puts back into the controls, so that it can be changed and added again.
struct EdicionDeRelacion {
  std::string txtTipo;
  std::int32_t color = 0;
  int cmbConceptos = -1;  // list indexes; -1: not in the list
  int cmbAgrupaDef = -1;
};
EdicionDeRelacion EdicionDe(const CodeRelations& relaciones, std::size_t relacion,
                            const formula::ListControl& cmbConceptos,
                            const formula::ListControl& cmbAgrupaDef);

}  // namespace relations
