// The verbs of tests/data/formula. A file starts with no vector, an empty line and a fresh evaluator.
#include <cmath>
#include <memory>
#include <sstream>
#include <stdexcept>

#include "avisos_de_prueba.h"
#include "base/date.h"
#include "base/format.h"
#include "base/number.h"
#include "base/text.h"
#include "conexion_falsa.h"
#include "formula/evaluador/line_formula.h"
#include "formula/evaluador/sql.h"
#include "formula/tablas_usuario/user_tables.h"
#include "formula/vectores/vector_utils.h"
#include "support/data_test.h"

namespace {

using support::Block;

struct Estado {
  ports::FixedClock reloj{base::Date{base::MakeDate(2024, 8, 15).serial + base::MakeTime(10, 30, 0).serial}};
  sesion::DbSession sesion;
  prueba::ConexionFalsa* conexion = nullptr;
  prueba::AvisosDePrueba avisos;
  formula::Evaluador ev;
  formula::CamposDeLinea linea;
  formula::Vector vector;
  formula::ListControl control;
  formula::TablasUsuario tablas;

  Estado() {
    auto falsa = std::make_unique<prueba::ConexionFalsa>();
    conexion = falsa.get();
    sesion.conexion = std::move(falsa);
    sesion.idEmpresa = 3;
    sesion.reloj = &reloj;
    ev.sesion = &sesion;
    ev.prompts = &avisos;
    ev.reloj = &reloj;
  }
};

std::string OVacio(const std::string& texto) { return texto.empty() ? "(empty)" : texto; }

std::vector<std::string> Lineas(const std::string& texto) { return base::Split(texto, "\n"); }

base::Date LeerFecha(const std::string& texto) {
  const auto fecha = base::DateFromText(texto, base::MakeDate(2024, 8, 15));
  if (!fecha) throw std::runtime_error("no date: " + texto);
  return *fecha;
}

base::Value LeerCelda(const std::string& crudo) {
  const std::string texto = base::Trim(crudo);
  if (texto == "null") return base::Null{};
  if (texto.size() < 2 || texto[1] != ':') return texto;
  const std::string resto = texto.substr(2);
  switch (texto[0]) {
    case 'b':
      return resto == "1";
    case 'i':
      return static_cast<std::int64_t>(std::stoll(resto));
    case 'n':
      return std::stod(resto);
    case 'd':
      return LeerFecha(resto);
    case 't':
      return resto;
    default:
      throw std::runtime_error("no cell: " + texto);
  }
}

// Lines "cols a b", "fila x | y", "error text": the answers of the fake connection. "cols" starts one.
bool EsRespuesta(Estado& e, const std::string& linea) {
  auto& cola = e.conexion->respuestas;
  if (linea.rfind("cols ", 0) == 0) {
    cola.emplace_back();
    std::istringstream nombres(linea.substr(5));
    for (std::string n; nombres >> n;) cola.back().columnas.push_back(n);
  } else if (linea.rfind("fila ", 0) == 0) {
    for (const auto& celda : base::Split(linea.substr(5), "|"))
      cola.back().celdas.push_back(LeerCelda(celda));
  } else if (linea.rfind("error ", 0) == 0) {
    cola.emplace_back();
    cola.back().error = linea.substr(6);
  } else {
    return false;
  }
  return true;
}

// The lines of a block that are no answers of the connection.
std::vector<std::string> Preparar(Estado& e, const Block& b) {
  e.conexion->textos.clear();
  e.conexion->respuestas.clear();
  std::vector<std::string> otras;
  for (const auto& linea : Lineas(b.entry))
    if (!EsRespuesta(e, linea)) otras.push_back(linea);
  return otras;
}

std::string ConCajas(Estado& e, std::string texto) {
  for (const auto& caja : e.avisos.cajas) texto += "\n" + caja;
  e.avisos.cajas.clear();
  return texto;
}

void Recomenzar(Estado& e, const Block& b) {
  e.ev.avisos_mostrados = 0;
  e.ev.avisos_callados = false;
  e.avisos.callar = std::stoul(b.Option("callar", "0"));
}

// eval [par] [crlf] [callar=n]: the value, then the boxes that were shown.
std::string Eval(Estado& e, const Block& b) {
  Recomenzar(e, b);
  std::string texto = b.entry;
  if (b.Has("crlf")) texto = base::Replace(texto, "\n", "\r\n");
  bool par = b.Has("par");
  const std::string valor = formula::EvaluarExpresion(e.ev, texto, par);
  return ConCajas(e, OVacio(valor));
}

// eval_queda: the text that the caller gets back, and the flag.
std::string EvalQueda(Estado& e, const Block& b) {
  Recomenzar(e, b);
  std::string texto = b.entry;
  bool par = b.Has("par");
  formula::EvaluarExpresion(e.ev, texto, par);
  return ConCajas(e, OVacio(texto) + (par ? "\npar" : ""));
}

// sql [cerrada]: the texts that ran, then the value.
std::string Sql(Estado& e, const Block& b) {
  Recomenzar(e, b);
  const auto lineas = Preparar(e, b);
  e.conexion->abierta = !b.Has("cerrada");
  const std::string valor = formula::EvaluarTexto(e.ev, lineas.at(0));
  std::string salida;
  for (const auto& texto : e.conexion->textos) salida += texto + "\n";
  return ConCajas(e, salida + OVacio(valor));
}

// campos: lines "number=text" set fields of the line; the others are emptied.
std::string Campos(Estado& e, const Block& b) {
  e.linea = {};
  for (const auto& l : Lineas(b.entry)) {
    const auto igual = l.find('=');
    e.linea.at(std::stoul(l.substr(0, igual))) = l.substr(igual + 1);
  }
  return "ok";
}

// calcular: the formula, and answers of the connection.
std::string Calcular(Estado& e, const Block& b) {
  Recomenzar(e, b);
  const float q = formula::CalcularFormula(e.ev, Preparar(e, b).at(0), e.linea);
  if (std::isinf(q)) return ConCajas(e, q < 0 ? "-infinity" : "infinity");
  return ConCajas(e, base::PlainSingle(q));
}

std::string MostrarVector(const formula::Vector& v) {
  std::string salida = std::to_string(v.dimensiones) + " dim";
  for (const auto& registro : v.registros) salida.append("\n").append(OVacio(base::Join(registro, "|")));
  return salida;
}

// vector: sets it from lines (fields parted by "|"); dim=1|2.
std::string PonerVector(Estado& e, const Block& b) {
  e.vector = {};
  e.vector.dimensiones = std::stoi(b.Option("dim", "2"));
  if (!b.entry.empty())
    for (const auto& l : Lineas(b.entry)) e.vector.registros.push_back(base::Split(l, "|"));
  return MostrarVector(e.vector);
}

std::string Insertar(Estado& e, const Block& b) {
  std::ptrdiff_t posicion = std::stol(b.Option("pos", "-1"));
  formula::ManejoVector(e.vector, b.entry, posicion, true);
  return "pos " + std::to_string(posicion) + "\n" + MostrarVector(e.vector);
}

std::string Quitar(Estado& e, const Block& b) {
  std::ptrdiff_t posicion = std::stol(b.Option("pos"));
  formula::ManejoVector(e.vector, b.entry, posicion, false);
  return MostrarVector(e.vector);
}

std::string Unir(Estado& e, const Block& b) {
  const std::string reg = b.Option("reg", ";");
  return OVacio(base::Replace(formula::UnirVector(e.vector, std::stoi(b.Option("campo", "-1")),
                                                  b.Option("sep"), reg == "crlf" ? "\r\n" : reg),
                              "\r\n", "<CRLF>"));
}

std::string Ordenar(Estado& e, const Block& b) {
  formula::OrdenarVector(e.vector, std::stoi(b.Option("columna", "0")), e.reloj.Today());
  return MostrarVector(e.vector);
}

std::string Clase(Estado& e, const Block& b) {
  const auto lineas = Lineas(b.entry);
  return std::string(1, formula::ClaseDeColumna({lineas.begin(), lineas.end()}, e.reloj.Today()));
}

// buscar columna=n: the value of a column.
std::string Buscar(Estado& e, const Block& b) {
  return std::to_string(formula::FindInColumn(b.entry, e.vector, std::stoul(b.Option("columna"))));
}

// lista [con_vector] [cerrada]: lines tabla, campos, condicion, separador ("-" stands for " - ") and answers.
std::string Lista(Estado& e, const Block& b) {
  const auto l = Preparar(e, b);
  e.conexion->abierta = !b.Has("cerrada");
  const int estado = formula::LlenarLista(e.control, l.at(0), l.at(1), l.at(2) == "-" ? "" : l.at(2), " - ",
                                          b.Has("con_vector") ? &e.vector : nullptr, e.sesion);
  std::string salida;
  for (const auto& texto : e.conexion->textos) salida += texto + "\n";
  salida += "estado " + std::to_string(estado);
  for (const auto& item : e.control.items)
    salida.append("\n").append(std::to_string(item.dato)).append(": ").append(OVacio(item.texto));
  if (b.Has("con_vector")) salida.append("\n").append(MostrarVector(e.vector));
  return salida;
}

// sentencia: lines tabla, campos, condicion ("-": empty).
std::string Sentencia(Estado&, const Block& b) {
  const auto l = Lineas(b.entry);
  return formula::SentenciaDeLista(l.at(0), l.at(1), l.at(2) == "-" ? "" : l.at(2));
}

// cargar tabla=n [cerrada]: the query, then how many values were loaded.
std::string Cargar(Estado& e, const Block& b) {
  Preparar(e, b);
  e.conexion->abierta = !b.Has("cerrada");
  std::string salida;
  try {
    e.tablas.CargarTablasUsuario(e.sesion, std::stoi(b.Option("tabla", "-1")));
  } catch (const base::Error& error) {
    salida = "[" + error.Source() + "] " + error.Description() + "\n";
  }
  for (const auto& texto : e.conexion->textos) salida += texto + "\n";
  return salida + std::to_string(e.tablas.Cantidad()) + " valores";
}

std::string Serie(Estado& e, const Block& b) {
  const std::int32_t tabla = std::stoi(b.Option("tabla"));
  const auto serie = formula::Vector(e.tablas.Serie(tabla, b.entry));
  return (e.tablas.TieneValores(tabla, b.entry) ? "tiene, tipo " : "no tiene, tipo ") +
         std::to_string(e.tablas.Tipo(tabla)) + "\n" + MostrarVector(serie);
}

std::string Posicion(Estado& e, const Block& b) {
  return std::to_string(formula::PosicionFecha(e.vector, LeerFecha(b.entry),
                                               std::stoul(b.Option("campo", "1")), e.reloj.Today()));
}

// guardar [sumado] [sin_borrado] [cuenta] tabla=n: lines codigo, valor ("-": empty), fecha, and answers. Each
// statement on its line, then the count.
std::string Guardar(Estado& e, const Block& b) {
  const auto l = Preparar(e, b);
  e.conexion->abierta = !b.Has("cerrada");
  std::string salida;
  int registros = -1;
  try {
    formula::GuardarValorTablaUsuario(e.sesion, std::stoi(b.Option("tabla")), l.at(0),
                                      l.at(1) == "-" ? "" : l.at(1), LeerFecha(l.at(2)), b.Has("sumado"),
                                      b.Has("sin_borrado"), b.Has("cuenta") ? &registros : nullptr);
  } catch (const base::Error& error) {
    salida = "error: " + error.Description() + "\n";
  }
  std::string textos;
  for (const auto& texto : e.conexion->textos) textos += texto + "\n";
  salida = textos + salida;
  if (b.Has("cuenta")) salida += std::to_string(registros) + " registros\n";
  if (!salida.empty()) salida.pop_back();
  return salida;
}

support::Verbs Verbos() {
  auto e = std::make_shared<Estado>();
  const auto con = [e](std::string (*verbo)(Estado&, const Block&)) {
    return [e, verbo](const Block& b) { return verbo(*e, b); };
  };
  return {
      {"eval", con(Eval)},
      {"eval_queda", con(EvalQueda)},
      {"sql", con(Sql)},
      {"traducir", [](const Block& b) { return formula::sql::DeFormula(b.entry); }},
      {"campos", con(Campos)},
      {"comodines", [e](const Block& b) { return OVacio(formula::ReemplazaComodines(b.entry, e->linea)); }},
      {"calcular", con(Calcular)},
      {"vector", con(PonerVector)},
      {"insertar", con(Insertar)},
      {"quitar", con(Quitar)},
      {"unir", con(Unir)},
      {"ordenar", con(Ordenar)},
      {"clase", con(Clase)},
      {"buscar", con(Buscar)},
      {"en_lista",
       [](const Block& b) {
         const auto l = Lineas(b.entry);
         return std::to_string(formula::FindInColumn(l.at(0), base::Split(l.at(1), "|")));
       }},
      {"lista", con(Lista)},
      {"sentencia", con(Sentencia)},
      {"cargar", con(Cargar)},
      {"serie", con(Serie)},
      {"posicion", con(Posicion)},
      {"guardar", con(Guardar)},
  };
}

}  // namespace

int main(int argc, char** argv) { return support::RunFiles(argc, argv, Verbos); }
