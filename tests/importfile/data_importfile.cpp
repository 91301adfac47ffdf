// Verbs of the import file:
//   mundo                       the tables of the loads that follow in this file, one entry a line:
//                               "persona" + eleven fields, "relacion" + six fields, "concepto" + five and
//                               maybe its code
//   load [K=V …]                loads the input as a file with those options and prints what came of it
//   cut [K=V …]                 the fields of a line and its star line
//   preview [K=V …]             the rows of the preview grid for these first lines
//   propose [K=V …]             what the input, as a file, seems to be: the proposal or why there is none,
//   and
//                               whether the options would do; codigo and crudo as in load
//   causes [K=V …]              loads the input and prints why its lines found nobody or nothing
//   valid                       the answer of the line check
// K=V are keys of the settings file. Of `load` besides:
//   filtro=texto|relacion  orden=N  archivo=ausente|carpeta   what is loaded and how
//   codigo=cp1252|utf8|utf8bom|utf16le|utf16be                the bytes of the file
//   crudo                     only what the input writes as \r and \n ends its lines; otherwise each with CR
//   LF calla=N  cancela=N                                        silence at box N; cancel when asked the N-th
//   ver=3,4  numero  previa  barra  valor                          what is printed
// It prints boxes as "! text" ("[+]" when they offer silence, "(i)" when they have no icon), rows as
// "line> fields" (with `numero` "line!> fields" when the quantity is no number), dropped lines as "line-
// fields", malformed ones as "line? fields", and the end.
#include <sstream>

#include "base/encoding.h"
#include "base/text.h"
#include "importfile/import_grid.h"
#include "importfile/line_formats.h"
#include "importfile/proponer_formato.h"
#include "settings/config_file.h"
#include "support/data_test.h"
#include "support/escapes.h"
#include "support/temp_folder.h"

namespace {

using support::Block;

struct Mundo {
  refdata::PersonsIndex personas;
  relations::CodeRelations relaciones;
  refdata::ConceptsCatalogue conceptos;
};

struct AvisosDePrueba final : ports::Prompts {
  std::string salida;
  int mostrados = 0;
  int calla = 0;
  bool Show(const ports::Notice& aviso) override {
    salida.append("! ").append(aviso.text).append(aviso.offers_silence ? " [+]" : "");
    salida.append(aviso.icon == ports::Icon::None ? " (i)\n" : "\n");
    return ++mostrados == calla;
  }
  bool Confirm(const std::string& texto) override {
    throw std::runtime_error("unexpected question: " + texto);
  }
};

struct ProgresoDePrueba final : ports::Progress {
  std::string salida;
  mutable int preguntas = 0;
  int cancela = 0;
  void ActuBarra(float paso, bool sin_refresco) override {
    std::ostringstream o;
    o << paso;
    if (!salida.empty()) salida += ' ';
    salida.append(o.str()).append(sin_refresco ? "!" : "");
  }
  void DoEvents() override { salida += " ev"; }
  bool IsCancelled() const override { return ++preguntas == cancela || (cancela > 0 && preguntas > cancela); }
};

std::string Entero(std::size_t n) { return std::to_string(n); }

std::string Preparar(Mundo& mundo, const Block& b) {
  std::vector<refdata::PersonsIndex::Fila> personas;
  std::string relaciones;
  mundo.conceptos = {};
  mundo.conceptos.tabla.dimensiones = 2;
  for (const std::string& linea : base::Split(b.entry, "\n")) {
    const std::size_t blanco = linea.find(' ');
    const std::string clase = linea.substr(0, blanco), resto = linea.substr(blanco + 1);
    if (clase == "persona") {
      const auto campos = base::Split(resto, "|");
      auto& fila = personas.emplace_back();
      if (campos.size() != fila.size()) throw std::runtime_error("a person has eleven fields: " + linea);
      for (std::size_t i = 0; i < fila.size(); ++i) fila[i] = campos[i];
    } else if (clase == "relacion") {
      relaciones += (relaciones.empty() ? "" : "\r\n") + resto;
    } else if (clase == "concepto") {
      std::vector<std::string> campos = base::Split(resto, "*");
      const std::string codigo = campos.size() > 5 ? campos[5] : campos[0];
      campos.resize(5);
      mundo.conceptos.cmbConceptos.items.push_back({codigo + " - " + campos[1], 0});
      mundo.conceptos.tabla.registros.push_back(std::move(campos));
    } else {
      throw std::runtime_error("unknown entry: " + linea);
    }
  }
  const std::size_t cuantas = personas.size();
  mundo.personas.Reemplazar(std::move(personas));
  mundo.relaciones.Reemplazar(relaciones);
  return Entero(cuantas) + " persons, " + Entero(mundo.relaciones.Cantidad()) + " relations, " +
         Entero(mundo.conceptos.tabla.Cantidad()) + " concepts";
}

settings::Settings OpcionesDe(const Block& b) {
  settings::Settings s;
  for (const std::string& o : b.options) {
    const std::size_t igual = o.find('=');
    if (igual != std::string::npos)
      settings::AplicarValor(s, o.substr(0, igual), support::Unescape(o.substr(igual + 1)));
  }
  return s;
}

std::string Utf16(std::string_view utf8, bool grande) {
  std::string bytes;
  const auto unidad = [&](char16_t u) {
    const char alto = static_cast<char>(u >> 8), bajo = static_cast<char>(u & 0xFF);
    bytes += grande ? alto : bajo;
    bytes += grande ? bajo : alto;
  };
  unidad(0xFEFF);
  for (const char16_t u : base::ToUtf16(utf8)) unidad(u);
  return bytes;
}

std::string BytesDelArchivo(const Block& b) {
  const std::string texto = base::Replace(b.entry, "\n", b.Has("crudo") ? "" : "\r\n");
  const std::string codigo = b.Option("codigo", "cp1252");
  if (codigo == "cp1252") return support::Unescape(base::ToCp1252(texto));
  if (codigo == "utf8") return support::Unescape(texto);
  if (codigo == "utf8bom") return "\xEF\xBB\xBF" + support::Unescape(texto);
  if (codigo == "utf16le" || codigo == "utf16be") return Utf16(support::Unescape(texto), codigo == "utf16be");
  throw std::runtime_error("unknown codigo " + codigo);
}

std::string Campos(const Block& b, const formula::CamposDeLinea& campo) {
  std::string salida;
  const std::string ver = b.Option("ver");
  std::vector<std::size_t> cuales;
  for (std::size_t i = 0; ver.empty() && i < campo.size(); ++i) cuales.push_back(i);
  if (!ver.empty())
    for (const std::string& n : base::Split(ver, ","))
      cuales.push_back(static_cast<std::size_t>(std::stoi(n)));
  for (std::size_t k = 0; k < cuales.size(); ++k) {
    const std::string& texto = campo[cuales[k]];
    if (k > 0) salida += '|';
    salida += texto.size() > 60 ? Entero(texto.size()) + " bytes" : support::Escaped(texto);
  }
  return salida;
}

std::string Contar(const Block& b, const importfile::Carga& carga) {
  static const char* const kFines[] = {"Completa", "SinArchivo", "FormatoIncorrecto", "Cancelada"};
  std::string salida;
  for (const auto& fila : carga.filas) {
    if (!fila.resultado.empty()) throw std::runtime_error("a loaded row has a result");
    salida += Entero(fila.linea) + (b.Has("numero") && fila.cantidad_no_numerica ? "!> " : "> ") +
              Campos(b, fila.campo) + "\n";
  }
  for (const auto& a : carga.aparte)
    salida += Entero(a.linea) + (a.mal_formada ? "? " : "- ") + Campos(b, a.campo) + "\n";
  if (carga.fin == importfile::FinDeCarga::Completa &&
      carga.lineas != carga.filas.size() + carga.aparte.size())
    salida += "LINES LOST\n";
  if (b.Has("previa")) salida += "preview " + support::Escaped(carga.previa) + "\n";
  if (b.Has("valor")) salida += carga.hay_valor ? "with value\n" : "without value\n";
  return salida + kFines[static_cast<int>(carga.fin)] + " " + Entero(carga.lineas);
}

std::string Cargar(const Mundo& mundo, const Block& b) {
  support::TempFolder carpeta;
  const settings::Settings opciones = OpcionesDe(b);
  AvisosDePrueba avisos;
  ProgresoDePrueba progreso;
  const ports::FixedClock reloj(base::MakeDate(2024, 5, 10));
  formula::Evaluador evaluador;
  evaluador.prompts = &avisos;
  evaluador.reloj = &reloj;
  evaluador.avisos_callados = true;  // left over from a load before
  evaluador.avisos_mostrados = 7;
  importfile::EntradaCarga entrada;
  entrada.txtRuta = carpeta.Path("marcas.txt");
  if (b.Option("archivo") == "carpeta") entrada.txtRuta = carpeta.Folder();
  if (b.Option("archivo").empty()) carpeta.Write("marcas.txt", BytesDelArchivo(b));
  entrada.opciones = &opciones;
  entrada.filtro =
      b.Option("filtro") == "texto" ? importfile::FiltroPor::Texto : importfile::FiltroPor::Relacion;
  entrada.columna_orden = std::stoi(b.Option("orden", "0"));
  entrada.personas = &mundo.personas;
  entrada.conceptos = &mundo.conceptos;
  entrada.relaciones = &mundo.relaciones;
  entrada.evaluador = &evaluador;
  entrada.prompts = &avisos;
  entrada.progreso = &progreso;
  avisos.calla = std::stoi(b.Option("calla", "0"));
  progreso.cancela = std::stoi(b.Option("cancela", "0"));
  const std::string resultado = Contar(b, importfile::CargarDatos(entrada));
  std::string salida = base::Replace(avisos.salida, carpeta.Folder(), "CARPETA") + resultado;
  if (b.Has("barra")) salida += "\n" + progreso.salida;
  if (b.Option("archivo") == "ausente" && std::filesystem::exists(entrada.txtRuta))
    salida += "\nFILE CREATED";
  return salida;
}

std::string Cortar(const Block& b) {
  const settings::Settings opciones = OpcionesDe(b);
  const std::string linea = support::Unescape(b.entry);
  const importfile::ResultadoCorte corte = opciones.AnchoFijo
                                               ? importfile::DevLineaAF(linea, opciones.ConfDeAF)
                                               : importfile::CortarDelimitada(linea, opciones.Separador);
  std::string salida;
  for (const std::string& campo : corte.campos)
    salida.append("<").append(support::Escaped(campo)).append(">");
  return salida + "\n" + support::Escaped(corte.estrella);
}

std::string Previsualizar(const Block& b) {
  const auto filas = importfile::CargarDatosPrevisual(base::Replace(b.entry, "\n", "\r\n"), OpcionesDe(b));
  std::string salida;
  for (const auto& fila : filas)
    salida.append(salida.empty() ? "<" : "\n<").append(base::Join(fila, "><")).append(">");
  return salida.empty() ? "(none)" : salida;
}

importfile::EntradaCarga EntradaDe(const Mundo& mundo, const Block& b, const settings::Settings& opciones) {
  importfile::EntradaCarga entrada;
  entrada.opciones = &opciones;
  entrada.filtro =
      b.Option("filtro") == "texto" ? importfile::FiltroPor::Texto : importfile::FiltroPor::Relacion;
  entrada.personas = &mundo.personas;
  entrada.conceptos = &mundo.conceptos;
  entrada.relaciones = &mundo.relaciones;
  return entrada;
}

std::string Proponer(const Mundo& mundo, const Block& b) {
  const settings::Settings opciones = OpcionesDe(b);
  const importfile::EntradaCarga entrada = EntradaDe(mundo, b, opciones);
  const std::string bytes = BytesDelArchivo(b);
  const importfile::PropuestaDeFormato p = importfile::ProponerFormato(bytes, entrada);
  const auto si = [](bool valor) { return valor ? "SI" : "NO"; };
  std::string salida;
  if (p.hay) {
    salida += p.opciones.AnchoFijo
                  ? "columns " + base::Replace(settings::TextoDeLayout(p.opciones.ConfDeAF), base::kCrLf, " ")
                  : "separator " + support::Escaped(p.opciones.Separador);
    salida += "\nkey " + std::to_string(p.opciones.Configura) + ", numeric " +
              si(p.opciones.CodTipoNumerico) + ", by code " + si(p.opciones.MismoCodigoDeOrsa) + "\n";
    for (const std::string& razon : p.razones) salida += "- " + razon + "\n";
    for (const auto& fila : p.cortadas) salida += "> " + support::Escaped(base::Join(fila, "|")) + "\n";
  } else {
    salida += "none: " + p.motivo + "\n";
  }
  return salida + "the options would do: " + si(importfile::ElFormatoSirve(bytes, entrada));
}

std::string Causas(const Mundo& mundo, const Block& b) {
  support::TempFolder carpeta;
  const settings::Settings opciones = OpcionesDe(b);
  importfile::EntradaCarga entrada = EntradaDe(mundo, b, opciones);
  entrada.txtRuta = carpeta.Path("marcas.txt");
  carpeta.Write("marcas.txt", BytesDelArchivo(b));
  const importfile::Carga carga = importfile::CargarDatos(entrada);
  const importfile::CausasDe causas =
      importfile::CausasDeCarga({entrada, carga.fin, carga.filas, carga.aparte, carga.lineas, carga.previa});
  if (causas.causas.empty()) return "(none)";
  return base::Join(causas.causas, "\n") + (causas.graves ? "\ngrave" : "");
}

std::string Validar(const Block& b) { return importfile::ValidoLinea(b.entry) ? "true" : "false"; }

}  // namespace

int main(int argc, char** argv) {
  return support::RunFiles(argc, argv, [] {
    const auto mundo = std::make_shared<Mundo>();
    return support::Verbs{{"mundo", [mundo](const Block& b) { return Preparar(*mundo, b); }},
                          {"load", [mundo](const Block& b) { return Cargar(*mundo, b); }},
                          {"cut", Cortar},
                          {"preview", Previsualizar},
                          {"propose", [mundo](const Block& b) { return Proponer(*mundo, b); }},
                          {"causes", [mundo](const Block& b) { return Causas(*mundo, b); }},
                          {"valid", Validar}};
  });
}
