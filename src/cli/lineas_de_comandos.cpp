#include "cli/lineas_de_comandos.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <memory>

#include "base/text.h"
#include "cli/verbos.h"
#include "ports/system_clock.h"
#include "settings/config_file.h"

namespace cli {
namespace {

constexpr const char* kCodigos =
    "Códigos de salida:\n"
    "  0   todas las líneas importadas (las filtradas no cuentan)\n"
    "  1   alguna línea rechazada o mal formada (consulta: una sentencia falló;\n"
    "      verificar: la base tiene errores)\n"
    "  2   no se importó nada\n"
    "  3   el archivo, o buena parte de sus líneas, ya se importó en el mes: no se importó nada\n"
    "  64  argumentos incorrectos\n"
    "  65  archivo que no se puede usar\n"
    "  66  no existe el archivo\n"
    "  69  no se puede abrir la base\n"
    "  74  error de lectura o escritura\n";

// What the options give, before it is understood.
struct Textos {
  std::string hoy, mes, salida = "tabla", filtro = "relacion", motor = "mdb";
  std::vector<std::string> opciones;
};

bool SoloDigitos(std::string_view t) {
  return !t.empty() && std::all_of(t.begin(), t.end(), [](char c) { return c >= '0' && c <= '9'; });
}

// AAAA-MM or AAAA-MM-DD, nothing else; the date must exist.
std::optional<base::Date> LeerFecha(const std::string& texto, bool con_dia) {
  const auto partes = base::Split(texto, "-");
  if (partes.size() != (con_dia ? 3U : 2U)) return std::nullopt;
  for (std::size_t i = 0; i < partes.size(); ++i)
    if (!SoloDigitos(partes[i]) || partes[i].size() != (i == 0 ? 4U : 2U)) return std::nullopt;
  const int anio = std::stoi(partes[0]), mes = std::stoi(partes[1]), dia = con_dia ? std::stoi(partes[2]) : 1;
  if (anio < 100 || mes < 1 || mes > 12 || dia < 1) return std::nullopt;
  const base::Date fecha = base::MakeDate(anio, mes, dia);
  if (base::PartsOf(fecha).day != dia) return std::nullopt;
  return fecha;
}

CLI::Validator Fecha(bool con_dia) {
  return CLI::Validator(
      [con_dia](std::string& texto) {
        if (LeerFecha(texto, con_dia)) return std::string();
        return "'" + texto + "' no es " + (con_dia ? "una fecha AAAA-MM-DD" : "un mes AAAA-MM");
      },
      "");
}

bool EsClaveDeAjustes(const std::string& clave) {
  settings::Settings prueba;
  return base::EqualIgnoringCase(clave, "Conceptos") || base::EqualIgnoringCase(clave, "TomaConceptosDeBD") ||
         settings::AplicarValor(prueba, clave, "");
}

CLI::Validator ClaveYValor() {
  return CLI::Validator(
      [](std::string& texto) {
        const std::size_t igual = texto.find('=');
        if (igual == std::string::npos) return "'" + texto + "' no tiene la forma CLAVE=VALOR";
        const std::string clave = texto.substr(0, igual);
        if (!EsClaveDeAjustes(clave)) return "'" + clave + "' no es una clave del archivo de ajustes";
        const std::string cierre = "[/" + clave + "]";
        if (base::Contains(texto.substr(igual + 1), cierre, base::Compare::IgnoringCase))
          return "el valor de '" + clave + "' no puede contener " + cierre;
        return std::string();
      },
      "");
}

CLI::Validator UnaDe(std::vector<std::string> palabras) {
  return CLI::Validator(
      [palabras = std::move(palabras)](std::string& texto) {
        if (std::find(palabras.begin(), palabras.end(), texto) != palabras.end()) return std::string();
        return "'" + texto + "' no es ninguna de: " + base::Join(palabras, ", ");
      },
      "");
}

void OpcionHoy(CLI::App* verbo, Textos& t) {
  verbo->add_option("--hoy", t.hoy, "Fija la fecha de hoy, para repetir una corrida")
      ->check(Fecha(true))
      ->type_name("AAAA-MM-DD");
}

void OpcionesDeCarga(CLI::App* verbo, OpcionesImportar& o, Textos& t) {
  verbo->add_option("--base", o.base, "Base de datos: un archivo, o ConfBase.cfg")->required();
  verbo->add_option("--archivo", o.archivo, "Archivo de horas a importar")->required();
  verbo->add_option("--mes", t.mes, "Mes de las liquidaciones")
      ->required()
      ->check(Fecha(false))
      ->type_name("AAAA-MM");
  verbo->add_option("--liquidacion", o.liquidacion, "Valor del tipo de liquidación (0: Sueldos, lo normal)");
  verbo->add_option("--cc", o.cc, "Número del centro de costo de toda la importación");
  verbo->add_option("--ajustes", o.ajustes, "Archivo de ajustes, en lugar del de la carpeta del programa");
  verbo
      ->add_option("--opcion", t.opciones,
                   "Cambia una clave de los ajustes para esta corrida (un fin de línea se escribe \\r\\n)")
      ->check(ClaveYValor())
      ->take_all()
      ->allow_extra_args(false)
      ->type_name("CLAVE=VALOR");
  verbo->add_option("--filtro", t.filtro, "Filtro: relacion (lo normal) o texto")
      ->check(UnaDe({"relacion", "texto"}))
      ->type_name("relacion|texto");
  OpcionHoy(verbo, t);
}

void OpcionDeSalida(CLI::App* verbo, Textos& t) {
  verbo->add_option("--salida", t.salida, "Forma del resultado: tabla (lo normal) o csv")
      ->check(UnaDe({"tabla", "csv"}))
      ->type_name("tabla|csv");
}

void OpcionesDeImportar(CLI::App* verbo, OpcionesImportar& o, Textos& t) {
  OpcionesDeCarga(verbo, o, t);
  OpcionDeSalida(verbo, t);
  verbo->add_option(
      "--rechazadas", o.rechazadas,
      "Archivo donde dejar las líneas rechazadas y mal formadas, con sus motivos en otro terminado "
      "en .motivos");
  verbo->add_option("--informe", o.informe, "Archivo donde dejar el informe: .csv o .html");
  verbo->add_flag("--cambios", o.cambios, "Muestra las cantidades antes y después");
}

OpcionesImportar Completar(OpcionesImportar o, const Textos& t, bool solo_revisar) {
  o.mes = *LeerFecha(t.mes, false);
  o.filtro_texto = t.filtro == "texto";
  o.salida = t.salida == "csv" ? Formato::Csv : Formato::Tabla;
  o.solo_revisar = solo_revisar;
  for (const std::string& texto : t.opciones) {
    const std::size_t igual = texto.find('=');
    o.opciones.emplace_back(texto.substr(0, igual),
                            base::Replace(texto.substr(igual + 1), "\\r\\n", base::kCrLf));
  }
  return o;
}

// What follows the first ": " of a message of the parser, the part that names what is wrong.
std::string Detalle(const std::string& texto) {
  const std::size_t corte = texto.find(": ");
  return corte == std::string::npos ? texto : texto.substr(corte + 2);
}

// The parser's own messages, said in Spanish. They are told apart by their class (the name of one with extra
// arguments is the verb's), and by their text where one class says several things.
std::string EnEspanol(const CLI::ParseError& e) {
  const std::string texto = e.what();
  if (dynamic_cast<const CLI::RequiredError*>(&e) != nullptr) {
    if (base::Contains(texto, "subcommand"))
      return "Falta el verbo: importar, revisar, codigos, explicar, probar, relaciones, historial, deshacer, "
             "formula, "
             "consulta, verificar o "
             "demo";
    return "Falta un argumento: " + base::Replace(texto, " is required", "");
  }
  if (dynamic_cast<const CLI::ExtrasError*>(&e) != nullptr) return "Argumento de más: " + Detalle(texto);
  if (dynamic_cast<const CLI::ArgumentMismatch*>(&e) != nullptr) {
    const std::string opcion = texto.substr(0, texto.find_first_of(": "));
    if (base::Contains(texto, "override")) return opcion + ": no lleva valor";
    return opcion + (base::Contains(texto, "missing") ? ": falta su valor" : ": va una sola vez");
  }
  if (dynamic_cast<const CLI::ConversionError*>(&e) != nullptr) return "No es un número: " + Detalle(texto);
  return texto;
}

// An expression may start with "-", which would read as an option: it goes last, behind "--".
std::vector<std::string> ConExpresionAlFinal(std::vector<std::string> args) {
  if (args.empty() || args.front() != "formula") return args;
  for (std::size_t i = 1; i < args.size(); ++i) {
    const std::string& a = args[i];
    if (a == "--base" || a == "--hoy") {
      ++i;
      continue;
    }
    if (a == "--") return args;  // said so already
    if (a == "-h" || a == "--help" || base::StartsWith(a, "--base=") || base::StartsWith(a, "--hoy="))
      continue;
    if (a.size() < 2 || a.front() != '-') continue;
    const std::string expresion = a;
    args.erase(args.begin() + static_cast<std::ptrdiff_t>(i));
    args.insert(args.end(), {"--", expresion});
    return args;
  }
  return args;
}

}  // namespace

int Ejecutar(const std::vector<std::string>& argumentos, const std::string& programa,
             const std::string& carpeta, Flujos f) {
  CLI::App app("Importa las horas de un reloj en las liquidaciones de un mes de la base de sueldos.",
               "importdemarcas-cli");
  app.get_formatter()->label("OPTIONS", "OPCIONES");
  app.get_formatter()->label("SUBCOMMAND", "VERBO");
  app.get_formatter()->label("Subcommands", "Verbos");
  app.get_formatter()->label("Options", "Opciones");
  app.get_formatter()->label("Positionals", "Argumentos");
  app.get_formatter()->label("Usage", "Uso");
  app.get_formatter()->label("REQUIRED", "(obligatorio)");
  app.get_formatter()->label("TEXT", "TEXTO");
  app.get_formatter()->label("INT", "NÚMERO");
  app.option_defaults()->group("Opciones");
  app.footer(kCodigos);
  app.set_help_flag("-h,--help", "Muestra esta ayuda")->group("Opciones");
  app.require_subcommand(1);

  Textos t;
  OpcionesImportar importar;
  bool simular = false;
  OpcionesHistorial historial;
  OpcionesDeshacer deshacer;
  OpcionesFormula formula;
  OpcionesConsulta consulta;
  OpcionesVerificar verificar;
  OpcionesDemo demo;
  CLI::App* v_importar =
      app.add_subcommand("importar", "Carga un archivo y lo importa en las liquidaciones del mes");
  OpcionesDeImportar(v_importar, importar, t);
  CLI::App* v_revisar =
      app.add_subcommand("revisar", "Lo mismo que importar, sin escribir nada: muestra qué daría cada línea");
  OpcionesDeImportar(v_revisar, importar, t);
  CLI::App* v_codigos =
      app.add_subcommand("codigos", "Los códigos del archivo sin relación, con el concepto más probable");
  OpcionesDeCarga(v_codigos, importar, t);
  OpcionDeSalida(v_codigos, t);
  std::size_t linea = 0;
  CLI::App* v_explicar =
      app.add_subcommand("explicar", "Dice paso a paso por qué una línea termina como termina");
  OpcionesDeCarga(v_explicar, importar, t);
  v_explicar->add_option("--linea", linea, "Número de la línea en el archivo")->required();
  OpcionesProbar probar;
  CLI::App* v_probar =
      app.add_subcommand("probar", "Prueba una fórmula o un filtro con las líneas del archivo, sin usarlos");
  OpcionesDeCarga(v_probar, importar, t);
  v_probar->add_option("--formula", probar.formula, "La fórmula, como en FactMultiplica");
  v_probar->add_option("--condicion", probar.filtro, "El filtro, como en TextoDeFiltro");
  v_probar->add_option("--cuantas", probar.cuantas, "Cuántas líneas mostrar (10, lo normal)");
  CLI::App* v_relaciones = app.add_subcommand(
      "relaciones", "Escribe las relaciones para una planilla, o las reemplaza por las de una");
  OpcionesRelaciones relaciones;
  v_relaciones->add_option("ACCION", relaciones.accion, "exportar o importar")
      ->required()
      ->check(UnaDe({"exportar", "importar"}));
  v_relaciones->add_option("ARCHIVO", relaciones.archivo, "El archivo CSV")->required();
  v_relaciones->add_option("--base", relaciones.base, "Base de datos: un archivo, o ConfBase.cfg")
      ->required();
  v_relaciones->add_option("--ajustes", relaciones.ajustes,
                           "Archivo de ajustes, en lugar del de la carpeta del programa");
  OpcionHoy(v_relaciones, t);
  v_importar->add_flag("--simular", simular, "Lo mismo que el verbo revisar")->disable_flag_override();
  v_importar->add_flag("--repetir", importar.repetir, "Importa también lo que ya se importó en el mes")
      ->disable_flag_override();
  CLI::App* v_historial = app.add_subcommand("historial", "Muestra las importaciones hechas en una base");
  v_historial->add_option("--base", historial.base, "Base de datos: un archivo, o ConfBase.cfg")->required();
  v_historial->add_option("--salida", t.salida, "Forma del resultado: tabla (lo normal) o csv")
      ->check(UnaDe({"tabla", "csv"}))
      ->type_name("tabla|csv");
  OpcionHoy(v_historial, t);
  CLI::App* v_deshacer =
      app.add_subcommand("deshacer", "Deshace una importación: la última que sigue en pie, u otra");
  v_deshacer->add_option("--base", deshacer.base, "Base de datos: un archivo, o ConfBase.cfg")->required();
  v_deshacer->add_option("--corrida", deshacer.corrida, "Su número en el historial");
  OpcionHoy(v_deshacer, t);
  CLI::App* v_formula = app.add_subcommand("formula", "Evalúa una expresión");
  v_formula
      ->add_option("EXPRESION", formula.expresion, "La expresión, o - para leer una por línea de la entrada")
      ->required();
  v_formula->add_option("--base", formula.base, "Base de datos para las funciones SQL y LISTA");
  OpcionHoy(v_formula, t);
  CLI::App* v_consulta =
      app.add_subcommand("consulta", "Ejecuta una sentencia SQL y escribe su resultado como CSV");
  v_consulta->add_option("--base", consulta.base, "Base de datos: un archivo, o ConfBase.cfg")->required();
  v_consulta->add_option("SQL", consulta.sql, "La sentencia, o - para leer una por línea de la entrada")
      ->required();
  v_consulta->add_flag("--escribir", consulta.escribir, "Permite sentencias que cambian la base")
      ->disable_flag_override();
  OpcionHoy(v_consulta, t);
  CLI::App* v_verificar =
      app.add_subcommand("verificar", "Revisa una base de Access entera y dice qué daños tiene");
  v_verificar->add_option("ARCHIVO", verificar.archivo, "La base de Access")->required();
  CLI::App* v_demo = app.add_subcommand("demo", "Crea una base de muestra con sus archivos y ajustes");
  v_demo->add_option("CARPETA", demo.carpeta, "Carpeta donde crearlos")->required();
  v_demo->add_option("--mes", t.mes, "Mes de la muestra (el corriente si no se dice)")
      ->check(Fecha(false))
      ->type_name("AAAA-MM");
  v_demo->add_option("--motor", t.motor, "Motor de la base: mdb (un archivo de Access, lo normal) o sqlite")
      ->check(UnaDe({"mdb", "sqlite"}))
      ->type_name("mdb|sqlite");
  OpcionHoy(v_demo, t);
  for (CLI::App* verbo : app.get_subcommands({})) {
    verbo->group("Verbos");
    verbo->set_help_flag("-h,--help", "Muestra esta ayuda")->group("Opciones");
    verbo->footer(kCodigos);
  }

  try {
    std::vector<std::string> al_reves = ConExpresionAlFinal(argumentos);
    std::reverse(al_reves.begin(), al_reves.end());
    app.parse(al_reves);
  } catch (const CLI::CallForHelp&) {
    const auto elegidos = app.get_subcommands();
    f.out << (elegidos.empty() ? app.help() : elegidos.front()->help());
    return kTodo;
  } catch (const CLI::ParseError& e) {
    f.err << EnEspanol(e) << "\nUse --help para ver los argumentos.\n";
    return kUso;
  }

  std::unique_ptr<ports::Clock> reloj;
  if (t.hoy.empty())
    reloj = std::make_unique<ports::SystemClock>();
  else
    reloj = std::make_unique<ports::FixedClock>(*LeerFecha(t.hoy, true));
  if (v_importar->parsed() || v_revisar->parsed())
    return Importar(Completar(importar, t, v_revisar->parsed() || simular), carpeta, *reloj, f);
  if (v_codigos->parsed()) return Codigos(Completar(importar, t, true), carpeta, *reloj, f);
  if (v_explicar->parsed()) return Explicar(Completar(importar, t, true), linea, carpeta, *reloj, f);
  if (v_probar->parsed()) return Probar(Completar(importar, t, true), probar, carpeta, *reloj, f);
  if (v_relaciones->parsed()) return Relaciones(relaciones, carpeta, *reloj, f);
  if (v_historial->parsed()) {
    historial.carpeta = carpeta;
    historial.salida = t.salida == "csv" ? Formato::Csv : Formato::Tabla;
    return Historial(historial, *reloj, f);
  }
  if (v_deshacer->parsed()) {
    deshacer.carpeta = carpeta;
    return Deshacer(deshacer, *reloj, f);
  }
  if (v_formula->parsed()) return Formula(formula, *reloj, f);
  if (v_consulta->parsed()) return Consulta(consulta, *reloj, f);
  if (v_verificar->parsed()) return Verificar(verificar, f);
  demo.programa = programa;
  demo.sqlite = t.motor == "sqlite";
  demo.mes = t.mes.empty() ? base::FirstDayOfMonth(reloj->Today()) : *LeerFecha(t.mes, false);
  return Demo(demo, *reloj, f);
}

}  // namespace cli
