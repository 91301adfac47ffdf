#include "app/programa.h"
#include "base/file.h"
#include "base/number.h"
#include "base/text.h"
#include "settings/config_file.h"

namespace app {
namespace {

// The cost centre shows once a company that groups by it was read.
Grid ColumnasDeImportar() {
  return {{{"Id", "Id"},
           {"Nombre", "Nombre"},
           {"Apellido", "Apellido"},
           {"Horas", "Horas"},
           {"Valor", "Valor"},
           {"Tipo", "Tipo"},
           {"NomConcVinc", "Vinculado Con:"},
           {"A_Realizar", "A_Realizar"},
           {"DatoExtra", "Dat.Ext."},
           {"CC", "C. Costo", false},
           {"Resultado", "Resultado"}}};
}

Grid ColumnasDeRelaciones() {
  return {{{"Codigo", "Codigo"},
           {"Nombre", "Nombre"},
           {"CodigosVincConReloj", "Cod. de Sis. Externo"},
           {"CC", "C.Costo", false}}};
}

Grid ColumnasDePrevia() {
  return {{{"Persona", "Persona"},
           {"TipoDato", "Tipo Dato"},
           {"Dato", "Dato"},
           {"DatExt", "Dato Extra"},
           {"Valor", "Valor"}}};
}

formula::ListControl ClavesDePersona() {
  formula::ListControl lista;
  for (const char* texto :
       {"Id Interno", "Nº Alternativo", "Nº Tarjeta", "Cod.Sist. Ext.", "Documento", "Nº Persona"})
    lista.items.push_back({texto, static_cast<std::int64_t>(lista.items.size())});
  return lista;
}

}  // namespace

Programa::Programa(const Puertos& puertos, Arranque arranque)
    : puertos_(puertos), arranque_(std::move(arranque)), barra_(puertos.eventos) {
  sesion_.reloj = &puertos_.reloj;
  evaluador_.sesion = &sesion_;
  evaluador_.prompts = &puertos_.prompts;
  evaluador_.reloj = &puertos_.reloj;
  e_.GridAImportar = ColumnasDeImportar();
  e_.GridRelaciones = ColumnasDeRelaciones();
  e_.GridPVConf = ColumnasDePrevia();
  e_.cbTipoClave = ClavesDePersona();
}

void Programa::Avisar(std::string texto) {
  puertos_.prompts.Mostrar({std::move(texto), ports::Icono::Exclamacion, false});
}

void Programa::Cambio() {
  if (al_cambiar) al_cambiar();
}

bool Programa::Iniciar(std::string_view linea_de_comandos) {
  return PrepararVentana() && ElegirBase(linea_de_comandos) && TerminarInicio();
}

bool Programa::IniciarCon(std::string referencia, std::string archivo) {
  if (!PrepararVentana()) return false;
  AbrirBase(std::move(referencia));
  e_.txtRuta.text = std::move(archivo);
  return TerminarInicio();
}

bool Programa::PrepararVentana() {
  e_.cargando = true;
  e_.mes = base::PrimerDiaDelMes(arranque_.mes ? *arranque_.mes : puertos_.reloj.Hoy());
  e_.OptFiltro = 1;
  e_.caption += " " + arranque_.version;
  e_.GridAImportar.Columna("Resultado")->visible = false;
  // The user's configuration folder is not there before the first run of an installed program.
  if (!arranque_.ajustes) base::CrearCarpeta(arranque_.carpeta);
  const settings::Ajustes ajustes = LeerAjustes();
  if (ajustes.estado == settings::EstadoAjustes::Ilegible) {
    // The defaults in their place would write other quantities, and be stored over them at the end.
    e_.motivo_fin =
        "No se pueden leer los ajustes, y sin ellos se importarían otras cantidades. " + ajustes.motivo;
    Avisar(e_.motivo_fin);
    return false;
  }
  if (ajustes.estado == settings::EstadoAjustes::Falta)
    base::CrearSiFalta(settings::RutaDeAjustes(arranque_.carpeta));
  ajustes_ = ajustes.texto;
  LeerOpciones();
  return true;
}

// The rules of the command line. False: the program ends at once.
bool Programa::ElegirBase(std::string_view linea) {
  if (base::TrimVista(linea).empty()) {
    const std::string ruta = puertos_.picker.AbrirArchivo("Seleccionar la base a ingresar las Horas",
                                                          "Bases de Access (*.mdb)|*.mdb", "");
    if (base::TrimVista(ruta).empty()) return false;
    AbrirBase(ruta);
    titulo_dialogo_ = "Seleccionar archivo a importar";
    return true;
  }
  titulo_dialogo_ = "Seleccionar archivo a importar";
  const std::string texto = base::Reemplazar(linea, "\"", "");
  if (base::Contiene(texto, "*")) {
    const auto partes = base::Split(texto, "*");
    AbrirBase(partes[0]);
    e_.txtRuta.text = partes[1];
    return true;
  }
  if (base::ExisteArchivo(texto))
    AbrirBase(texto);
  else
    Avisar("Ruta de Base de Datos Inexistente");
  return true;
}

void Programa::AbrirBase(std::string referencia) {
  e_.referencia = std::move(referencia);
  Conectar(e_.referencia);
  if (!sesion_.Abierta()) return Avisar("Error al abrir la base ubicada en " + e_.referencia);
  if (e_.fallo_de_base.empty()) ConLaBase([&] { CargarVecDePersonas(); });
  VerSoloLectura();
  if (!e_.solo_lectura.empty())
    Avisar(e_.solo_lectura + std::string(base::kCrLf) +
           "Se puede mirar, pero no importar ni guardar relaciones en ella.");
}

bool Programa::TerminarInicio() {
  e_.LblEmpresa = "Empresa: " + e_.referencia;
  e_.cmbConceptos_ancho = 450;
  if (e_.referencia.empty()) return false;
  ConLaBase([&] { LevantarRelaciones(); });
  e_.carga_pendiente = !e_.txtRuta.text.empty();
  e_.cargando = false;
  Cambio();
  return true;
}

void Programa::Activate() {
  if (!e_.carga_pendiente) return;
  e_.carga_pendiente = false;
  if (e_.fallo_de_base.empty()) CargarDatos();
}

}  // namespace app
