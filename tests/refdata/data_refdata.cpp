// Runs tests/data/refdata/*.test.
#include <algorithm>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include "base/text.h"
#include "refdata/base_de_prueba.h"
#include "refdata/concepts_catalogue.h"
#include "refdata/elegir_concepto.h"
#include "refdata/liquidation_types.h"
#include "refdata/persons_index.h"
#include "refdata/sql.h"
#include "support/escapes.h"

namespace {

using support::Block;
using support::Celda;
using support::FechaDeIso;

struct Estado {
  std::shared_ptr<support::BaseDePrueba> base = std::make_shared<support::BaseDePrueba>();
  refdata::PersonsIndex personas;
  refdata::ConceptsCatalogue conceptos;
  refdata::LiquidationTypes tipos;
};

// What was shown and noted, and why the table is not read.
std::vector<std::string> AvisosY(Estado& e, const std::vector<std::string>& viaja,
                                 const std::string& motivo) {
  std::vector<std::string> lineas = e.base->Avisos();
  lineas.insert(lineas.end(), viaja.begin(), viaja.end());
  if (!motivo.empty()) lineas.push_back("not read: " + motivo);
  return lineas;
}

bool EsSi(const Block& b, const std::string& clave) { return b.Option(clave) == "SI"; }

// sql <statement> empresa=1 …: the exact text.
std::string TextoSql(const Block& b) {
  const std::string cual = b.options.at(0);
  const int empresa = std::stoi(b.Option("empresa", "1"));
  if (cual == "GuardarMes") return refdata::sql::GuardarMes(empresa, FechaDeIso(b.Option("mes")));
  if (cual == "Contratos")
    return refdata::sql::Contratos(empresa, FechaDeIso(b.Option("desde")), FechaDeIso(b.Option("hasta")));
  if (cual == "Conceptos") return refdata::sql::Conceptos(empresa, EsSi(b, "solo"), EsSi(b, "cuotas"));
  if (cual == "TiposActivos") return refdata::sql::TiposActivos(empresa);
  if (cual == "Calendario") return refdata::sql::Calendario(empresa);
  if (cual == "GruposDeTipos") return refdata::sql::GruposDeTipos(empresa);
  if (cual == "CentrosDeCosto") return refdata::sql::CentrosDeCosto();
  throw std::runtime_error("unknown statement " + cual);
}

// personas mes=2024-02-01: what was shown and noted, then the rows; all eleven columns with the word "todo",
// else contract and given name.
std::string Personas(Estado& e, const Block& b) {
  bool hecho = true;
  const auto viaja = support::LoQueViaja([&] {
    hecho = refdata::CargarVecDePersonas(e.base->sesion, FechaDeIso(b.Option("mes")), e.personas,
                                         e.base->prompts, &e.base->errores);
  });
  std::vector<std::string> lineas = AvisosY(e, viaja, e.personas.motivo_fallo);
  if (!hecho) lineas.push_back("not loaded");
  for (std::size_t fila = 0; fila < e.personas.Cantidad(); ++fila) {
    std::vector<std::string> celdas;
    for (int columna = 0; columna < static_cast<int>(refdata::kColumnasPersona); ++columna)
      if (b.Has("todo") || columna == refdata::kContrato || columna == refdata::kNombre)
        celdas.push_back(Celda(e.personas.Texto(columna, fila)));
    lineas.push_back(base::Join(celdas, "|"));
  }
  return base::Join(lineas, "\n");
}

// buscar columna=2: each key of the input, its row.
std::string Buscar(const Estado& e, const Block& b) {
  std::vector<std::string> filas;
  for (const auto& clave : base::Split(b.entry, "\n"))
    filas.push_back(
        std::to_string(e.personas.Buscar(clave == "(empty)" ? "" : clave, std::stoi(b.Option("columna")))));
  return base::Join(filas, " ");
}

std::string Item(const formula::ItemLista& item) {
  return base::Join({std::to_string(item.dato), support::Escaped(item.texto)}, "=");
}

std::string Items(const formula::ListControl& combo) {
  std::string salida = combo.visible ? "[" : "hidden [";
  salida.append(std::to_string(combo.ListIndex)).append("]");
  for (const auto& item : combo.items) salida.append(" ").append(Item(item)).append(";");
  return salida;
}

// conceptos: item "datum=text" and the entry behind it; an entry without an item stands alone.
std::string Conceptos(Estado& e, const Block&) {
  const auto viaja = support::LoQueViaja(
      [&] { refdata::ActuLSTdeConceptos(e.base->sesion, e.base->opciones, e.conceptos, &e.base->errores); });
  std::vector<std::string> lineas = AvisosY(e, viaja, e.conceptos.motivo_fallo);
  const auto& items = e.conceptos.cmbConceptos.items;
  const auto& tabla = e.conceptos.tabla;
  for (std::size_t i = 0; i < std::max(items.size(), tabla.Cantidad()); ++i) {
    std::vector<std::string> piezas{i < items.size() ? Item(items[i]) : "no item", "<-"};
    if (i >= tabla.Cantidad()) piezas.push_back("no entry");
    for (std::size_t campo = 0; i < tabla.Cantidad() && campo < tabla.registros[i].size(); ++campo)
      piezas.push_back(Celda(support::Escaped(tabla.Campo(campo, i))));
    lineas.push_back(base::Join(piezas, " "));
  }
  return base::Join(lineas, "\n");
}

// entrada: the entry of each id of the input.
std::string Entrada(const Estado& e, const Block& b) {
  std::vector<std::string> entradas;
  for (const auto& id : base::Split(b.entry, "\n"))
    entradas.push_back(std::to_string(e.conceptos.Buscar(id)));
  return base::Join(entradas, " ");
}

// elegir n: what the click on item n shows.
std::string Elegir(Estado& e, const Block& b) {
  e.conceptos.cmbConceptos.ListIndex = std::stoi(b.options.at(0));
  const auto elegido = refdata::ElegirConcepto(e.base->sesion, e.base->opciones, e.conceptos, e.tipos);
  std::string salida("lblConcepto=");
  salida.append(Celda(elegido.lblConcepto)).append(elegido.vaciar_txtTipo ? " txtTipo emptied" : "");
  salida.append(e.tipos.cmbAgrupaDef.enabled ? " cmbAgrupaDef enabled" : " cmbAgrupaDef disabled");
  return salida.append(e.tipos.lblAgrupaDef_visible ? " lblAgrupaDef shown" : " lblAgrupaDef hidden");
}

// tipos: all that CargarTiposLiquidacion leaves; with a name, that part alone.
std::string Tipos(Estado& e, const Block& b) {
  bool replantear = false;
  const auto viaja = support::LoQueViaja([&] {
    replantear = refdata::CargarTiposLiquidacion(e.base->sesion, e.base->opciones, e.tipos, &e.base->errores);
  });
  const auto& t = e.tipos;
  std::vector<std::string> lineas = AvisosY(e, viaja, t.motivo_fallo);
  const auto parte = [&](const std::string& nombre, const std::string& texto) {
    if (b.options.empty() || b.Has(nombre)) lineas.push_back(base::Join({nombre, texto}, ": "));
  };
  const auto rotulo = [](const std::string& texto, bool visible) {
    return visible ? texto : base::Join({"hidden", texto}, " ");
  };
  parte("TypeCondition", Celda(t.TypeCondition));
  parte("CalendarCondition", Celda(t.CalendarCondition));
  parte("cmbLiquidaciones", Items(t.cmbLiquidaciones));
  parte("cmbAgrupa", Items(t.cmbAgrupa));
  parte("cmbAgrupaDef", Items(t.cmbAgrupaDef));
  parte("lblAgrupa", rotulo(t.lblAgrupa, t.lblAgrupa_visible));
  parte("lblAgrupaDef", rotulo(t.lblAgrupaDef, t.lblAgrupaDef_visible));
  parte("CC", base::Join({t.CC_visible ? "shown" : "hidden", std::to_string(t.CC_ancho)}, " "));
  parte("layout", replantear ? "again" : "as it is");
  return base::Join(lineas, "\n");
}

support::Verbs Preparar() {
  const auto e = std::make_shared<Estado>();
  support::Verbs verbos = support::VerbosDeBase(e->base);
  verbos["sql"] = TextoSql;
  verbos["personas"] = [e](const Block& b) { return Personas(*e, b); };
  verbos["buscar"] = [e](const Block& b) { return Buscar(*e, b); };
  verbos["conceptos"] = [e](const Block& b) { return Conceptos(*e, b); };
  verbos["entrada"] = [e](const Block& b) { return Entrada(*e, b); };
  verbos["elegir"] = [e](const Block& b) { return Elegir(*e, b); };
  verbos["tipos"] = [e](const Block& b) { return Tipos(*e, b); };
  return verbos;
}

}  // namespace

int main(int argc, char** argv) { return support::RunFiles(argc, argv, Preparar); }
