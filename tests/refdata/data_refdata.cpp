// Runs tests/data/refdata/*.test.
#include <algorithm>
#include <memory>
#include <stdexcept>

#include "base/text.h"
#include "refdata/base_de_prueba.h"
#include "refdata/concepts_catalogue.h"
#include "refdata/elegir_concepto.h"
#include "refdata/liquidation_types.h"
#include "refdata/persons_index.h"
#include "refdata/sql.h"

namespace {

using support::Bloque;
using support::Celda;
using support::FechaDeIso;

struct Estado {
  std::shared_ptr<support::BaseDePrueba> base = std::make_shared<support::BaseDePrueba>();
  refdata::PersonsIndex personas;
  refdata::ConceptsCatalogue conceptos;
  refdata::LiquidationTypes tipos;
};

bool EsSi(const Bloque& b, const std::string& clave) { return b.Opcion(clave) == "SI"; }

// sql <statement> empresa=1 …: the exact text.
std::string TextoSql(const Bloque& b) {
  const std::string cual = b.opciones.at(0);
  const int empresa = std::stoi(b.Opcion("empresa", "1"));
  if (cual == "GuardarMes") return refdata::sql::GuardarMes(empresa, FechaDeIso(b.Opcion("mes")));
  if (cual == "Contratos")
    return refdata::sql::Contratos(empresa, FechaDeIso(b.Opcion("desde")), FechaDeIso(b.Opcion("hasta")));
  if (cual == "Conceptos") return refdata::sql::Conceptos(empresa, EsSi(b, "solo"), EsSi(b, "cuotas"));
  if (cual == "TiposActivos") return refdata::sql::TiposActivos(empresa);
  if (cual == "Calendario") return refdata::sql::Calendario(empresa);
  if (cual == "GruposDeTipos") return refdata::sql::GruposDeTipos(empresa);
  if (cual == "CentrosDeCosto") return refdata::sql::CentrosDeCosto();
  throw std::runtime_error("unknown statement " + cual);
}

// personas mes=2024-02-01: what was shown and noted, then the rows; all eleven columns with the word "todo",
// else contract, given name and surname.
std::string Personas(Estado& e, const Bloque& b) {
  const bool hecho = refdata::CargarVecDePersonas(e.base->sesion, FechaDeIso(b.Opcion("mes")), e.personas,
                                                  e.base->prompts, &e.base->errores);
  std::string salida = e.base->Avisos();
  if (!hecho) salida += "not loaded\n";
  for (std::size_t fila = 0; fila < e.personas.Cantidad(); ++fila) {
    for (int columna = 0; columna < static_cast<int>(refdata::kColumnasPersona); ++columna)
      if (b.Tiene("todo") || columna == refdata::kContrato || columna == refdata::kNombre)
        salida += (columna == 0 ? "" : "|") + Celda(e.personas.Texto(columna, fila));
    salida += "\n";
  }
  return salida.empty() ? salida : salida.substr(0, salida.size() - 1);
}

// buscar columna=2: each key of the input, its row.
std::string Buscar(const Estado& e, const Bloque& b) {
  std::string salida;
  for (const auto& clave : base::Split(b.entrada, "\n"))
    salida += (salida.empty() ? "" : " ") + std::to_string(e.personas.Buscar(clave == "(empty)" ? "" : clave,
                                                                             std::stoi(b.Opcion("columna"))));
  return salida;
}

std::string Items(const formula::ListControl& combo) {
  std::string salida = combo.visible ? "" : "hidden ";
  salida += "[" + std::to_string(combo.ListIndex) + "]";
  for (const auto& item : combo.items) salida += " " + std::to_string(item.dato) + "=" + item.texto + ";";
  return salida;
}

// conceptos: item "datum=text" and the entry behind it; an entry without an item stands alone.
std::string Conceptos(Estado& e, const Bloque&) {
  refdata::ActuLSTdeConceptos(e.base->sesion, e.base->opciones, e.conceptos, &e.base->errores);
  std::string salida = e.base->Avisos();
  const auto& items = e.conceptos.cmbConceptos.items;
  for (std::size_t i = 0; i < std::max(items.size(), e.conceptos.tabla.Cantidad()); ++i) {
    salida += i < items.size() ? std::to_string(items[i].dato) + "=" + items[i].texto : "no item";
    salida += " <-";
    if (i >= e.conceptos.tabla.Cantidad())
      salida += " no entry";
    else
      for (std::size_t campo = 0; campo < 5; ++campo)
        salida += " " + Celda(e.conceptos.tabla.Campo(campo, i));
    salida += "\n";
  }
  return salida.empty() ? salida : salida.substr(0, salida.size() - 1);
}

// entrada: the entry of each id of the input.
std::string Entrada(const Estado& e, const Bloque& b) {
  std::string salida;
  for (const auto& id : base::Split(b.entrada, "\n"))
    salida += (salida.empty() ? "" : " ") + std::to_string(e.conceptos.Buscar(id));
  return salida;
}

// elegir n: what the click on item n shows.
std::string Elegir(Estado& e, const Bloque& b) {
  e.conceptos.cmbConceptos.ListIndex = std::stoi(b.opciones.at(0));
  const auto elegido = refdata::ElegirConcepto(e.base->sesion, e.base->opciones, e.conceptos, e.tipos);
  return "lblConcepto=" + Celda(elegido.lblConcepto) + (elegido.vaciar_txtTipo ? " txtTipo emptied" : "") +
         (e.tipos.cmbAgrupaDef.enabled ? " cmbAgrupaDef enabled" : " cmbAgrupaDef disabled") +
         (e.tipos.lblAgrupaDef_visible ? " lblAgrupaDef shown" : " lblAgrupaDef hidden");
}

// tipos: all that CargarTiposLiquidacion leaves; with a name, that part alone.
std::string Tipos(Estado& e, const Bloque& b) {
  const bool replantear =
      refdata::CargarTiposLiquidacion(e.base->sesion, e.base->opciones, e.tipos, &e.base->errores);
  const auto& t = e.tipos;
  std::string salida = e.base->Avisos();
  const auto parte = [&](const std::string& nombre, const std::string& texto) {
    if (b.opciones.empty() || b.Tiene(nombre)) salida += nombre + ": " + texto + "\n";
  };
  parte("TypeCondition", Celda(t.TypeCondition));
  parte("CalendarCondition", Celda(t.CalendarCondition));
  parte("cmbLiquidaciones", Items(t.cmbLiquidaciones));
  parte("cmbAgrupa", Items(t.cmbAgrupa));
  parte("cmbAgrupaDef", Items(t.cmbAgrupaDef));
  parte("lblAgrupa", (t.lblAgrupa_visible ? "" : "hidden ") + t.lblAgrupa);
  parte("lblAgrupaDef", (t.lblAgrupaDef_visible ? "" : "hidden ") + t.lblAgrupaDef);
  parte("CC", (t.CC_visible ? "shown " : "hidden ") + std::to_string(t.CC_ancho));
  parte("layout", replantear ? "again" : "as it is");
  return salida.substr(0, salida.size() - 1);
}

support::Verbos Preparar() {
  const auto e = std::make_shared<Estado>();
  support::Verbos verbos = support::VerbosDeBase(e->base);
  verbos["sql"] = TextoSql;
  verbos["personas"] = [e](const Bloque& b) { return Personas(*e, b); };
  verbos["buscar"] = [e](const Bloque& b) { return Buscar(*e, b); };
  verbos["conceptos"] = [e](const Bloque& b) { return Conceptos(*e, b); };
  verbos["entrada"] = [e](const Bloque& b) { return Entrada(*e, b); };
  verbos["elegir"] = [e](const Bloque& b) { return Elegir(*e, b); };
  verbos["tipos"] = [e](const Bloque& b) { return Tipos(*e, b); };
  return verbos;
}

}  // namespace

int main(int argc, char** argv) { return support::EjecutarArchivos(argc, argv, Preparar); }
