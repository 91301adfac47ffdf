// Runs tests/data/relations/*.test.
#include <map>
#include <memory>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "base/text.h"
#include "refdata/base_de_prueba.h"
#include "relations/code_relations.h"
#include "relations/edit_relations.h"
#include "relations/sql.h"
#include "settings/config_file.h"
#include "support/escapes.h"

namespace {

using support::Block;
using support::Celda;

struct Estado {
  std::shared_ptr<support::BaseDePrueba> base = std::make_shared<support::BaseDePrueba>();
  relations::CodeRelations relaciones;
};

bool EsSi(const Block& b, const std::string& clave) { return b.Option(clave) == "SI"; }

std::vector<std::string> Lineas(const std::string& texto) {
  return texto.empty() ? std::vector<std::string>() : base::Split(texto, "\n");
}

std::string TextoSql(const Block& b) {
  const std::string cual = b.options.at(0);
  const int tipo = std::stoi(b.Option("tipo", "0"));
  if (cual == "ConceptosComoRelaciones")
    return relations::sql::ConceptosComoRelaciones(EsSi(b, "numerico"), EsSi(b, "solo"), EsSi(b, "cuotas"));
  if (cual == "DatosExternosComoRelaciones") return relations::sql::DatosExternosComoRelaciones(tipo);
  if (cual == "BorrarDatosExternos") return relations::sql::BorrarDatosExternos(tipo);
  if (cual == "InsertarDatoExterno")
    return relations::sql::InsertarDatoExterno(tipo, std::stoi(b.Option("id")), b.entry) + "]";
  throw std::runtime_error("unknown statement " + cual);
}

std::string Celdas(const std::vector<std::string>& celdas) {
  std::vector<std::string> salida;
  for (const auto& celda : celdas) salida.push_back(Celda(support::Escaped(celda)));
  return base::Join(salida, "|");
}

std::vector<std::string> LineasDeTabla(const Estado& e) {
  std::vector<std::string> lineas;
  for (const auto& registro : e.relaciones.Tabla().registros) lineas.push_back(Celdas(registro));
  return lineas;
}

std::string Tabla(const Estado& e) { return base::Join(LineasDeTabla(e), "\n"); }

std::string Grid(const Estado& e) {
  std::vector<std::string> lineas;
  for (const auto& fila : e.relaciones.Grid())
    lineas.push_back(Celdas({fila.Codigo, fila.Nombre, fila.CodigosVincConReloj, fila.CC}));
  return base::Join(lineas, "\n");
}

std::string Unidas(std::vector<std::string> lineas, const std::vector<std::string>& mas) {
  lineas.insert(lineas.end(), mas.begin(), mas.end());
  return base::Join(lineas, "\n");
}

// levantar: the input lines "KEY=value" make the settings text, those of one key joined with CR LF (with the
// word lf: with LF).
std::string Levantar(Estado& e, const Block& b) {
  std::map<std::string, std::string> valores;
  for (const auto& linea : Lineas(b.entry)) {
    const auto igual = linea.find('=');
    const auto [it, nuevo] = valores.emplace(linea.substr(0, igual), "");
    it->second.append(nuevo ? "" : b.Has("lf") ? "\n" : "\r\n").append(linea.substr(igual + 1));
  }
  std::string ajustes;
  for (const auto& [clave, valor] : valores) ajustes = settings::TextoConValor(ajustes, clave, valor);
  const auto viaja = support::LoQueViaja([&] {
    relations::LevantarRelaciones(e.base->sesion, e.base->opciones, ajustes, e.relaciones, &e.base->errores);
  });
  std::vector<std::string> avisos = e.base->Avisos();
  avisos.insert(avisos.end(), viaja.begin(), viaja.end());
  if (!e.relaciones.motivo_fallo.empty()) avisos.push_back("not read: " + e.relaciones.motivo_fallo);
  if (e.relaciones.carga_fallida == e.relaciones.motivo_fallo.empty()) avisos.push_back("NO REASON");
  return Unidas(std::move(avisos), LineasDeTabla(e));
}

// pos: the relation of each code of the input.
std::string Pos(const Estado& e, const Block& b) {
  std::vector<std::string> relaciones;
  for (const auto& codigo : base::Split(b.entry, "\n"))
    relaciones.push_back(std::to_string(e.relaciones.PosEnVecConc(codigo == "(empty)" ? "" : codigo)));
  return base::Join(relaciones, " ");
}

// registro: the input lines are combo text, colour, txtTipo, concept id, lblConcepto and cost centre.
std::string Registro(const Block& b) {
  const auto l = base::Split(b.entry, "\n");
  const relations::Relacion r = relations::RegistroDeRelacion({.texto_combo = l.at(0),
                                                               .color = std::stoi(l.at(1)),
                                                               .txtTipo = l.at(2),
                                                               .id_concepto = l.at(3),
                                                               .lblConcepto = l.at(4),
                                                               .cc = std::stoll(l.at(5))});
  return Celdas({r.begin(), r.end()});
}

// A combo whose items have the data of "3,5,7".
formula::ListControl ComboDe(const std::string& datos) {
  formula::ListControl combo;
  for (const auto& dato : datos.empty() ? std::vector<std::string>() : base::Split(datos, ","))
    combo.items.push_back({.texto = dato, .dato = std::stoll(dato)});
  return combo;
}

// editar n conceptos=… agrupa=…: what the removal of relation n puts back.
std::string Editar(const Estado& e, const Block& b) {
  const auto edicion =
      relations::EdicionDe(e.relaciones, static_cast<std::size_t>(std::stoi(b.options.at(0))),
                           ComboDe(b.Option("conceptos")), ComboDe(b.Option("agrupa")));
  std::string salida("txtTipo=");
  salida.append(Celda(edicion.txtTipo)).append(" color=").append(std::to_string(edicion.color));
  salida.append(" cmbConceptos=").append(std::to_string(edicion.cmbConceptos));
  return salida.append(" cmbAgrupaDef=").append(std::to_string(edicion.cmbAgrupaDef));
}

std::string Rechazo(const Block& b) {
  if (b.options.at(0) == "quitar") return Celda(relations::RechazoAlQuitar(b.entry));
  formula::ListControl combo = ComboDe("7,2");
  combo.ListIndex = std::stoi(b.Option("conceptos"));
  return Celda(relations::RechazoAlAgregar(combo, b.entry));
}

// centro elegido=1 agrupa=0,3: the cost centre of a relation that is added now.
std::string Centro(const Estado& e, const Block& b) {
  formula::ListControl combo = ComboDe(b.Option("agrupa"));
  combo.ListIndex = std::stoi(b.Option("elegido"));
  return std::to_string(relations::CentroDeRelacion(e.base->sesion, e.base->opciones, combo));
}

support::Verbs Preparar() {
  const auto e = std::make_shared<Estado>();
  support::Verbs verbos = support::VerbosDeBase(e->base);
  verbos["sql"] = TextoSql;
  verbos["levantar"] = [e](const Block& b) { return Levantar(*e, b); };
  verbos["tabla"] = [e](const Block&) { return Tabla(*e); };
  verbos["grid"] = [e](const Block&) { return Grid(*e); };
  verbos["pos"] = [e](const Block& b) { return Pos(*e, b); };
  verbos["agregar"] = [e](const Block& b) { return e->relaciones.Agregar(b.entry), Tabla(*e); };
  verbos["quitar"] = [e](const Block& b) {
    const int relacion = e->relaciones.PosDeCodigo(b.entry);
    if (relacion < 0) return std::string("no such relation");
    return e->relaciones.Quitar(static_cast<std::size_t>(relacion)), Tabla(*e);
  };
  verbos["texto"] = [e](const Block&) { return base::Replace(e->relaciones.Texto(), "\r\n", "<CRLF>\n"); };
  verbos["guardar"] = [e](const Block&) {
    std::string motivo;
    const auto viaja = support::LoQueViaja([&] {
      motivo = relations::GuardarRelacionesEnBase(e->base->sesion, e->relaciones, &e->base->errores);
    });
    std::vector<std::string> avisos = e->base->Avisos();
    avisos.insert(avisos.end(), viaja.begin(), viaja.end());
    if (!motivo.empty()) avisos.push_back("not stored: " + motivo);
    return Unidas(std::move(avisos), std::exchange(e->base->conexion->sentencias, {}));
  };
  verbos["registro"] = Registro;
  verbos["editar"] = [e](const Block& b) { return Editar(*e, b); };
  verbos["rechazo"] = Rechazo;
  verbos["centro"] = [e](const Block& b) { return Centro(*e, b); };
  return verbos;
}

}  // namespace

int main(int argc, char** argv) { return support::RunFiles(argc, argv, Preparar); }
