#include "app/inicio.h"

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

Inicio::Inicio(Contexto& contexto, const Partes& partes) : c_(contexto), e_(contexto.estado), p_(partes) {
  e_.GridAImportar = ColumnasDeImportar();
  e_.GridRelaciones = ColumnasDeRelaciones();
  e_.GridPVConf = ColumnasDePrevia();
  e_.cbTipoClave = ClavesDePersona();
}

bool Inicio::Iniciar(std::string_view linea_de_comandos) {
  return PrepararVentana() && ElegirBase(linea_de_comandos) && TerminarInicio();
}

bool Inicio::IniciarCon(std::string referencia, std::string archivo) {
  if (!PrepararVentana()) return false;
  p_.lecturas.AbrirBase(std::move(referencia));
  e_.txtRuta.text = std::move(archivo);
  return TerminarInicio();
}

bool Inicio::PrepararVentana() {
  e_.cargando = true;
  e_.mes = base::FirstDayOfMonth(c_.arranque.mes ? *c_.arranque.mes : c_.puertos.reloj.Today());
  e_.OptFiltro = 1;
  e_.caption += " " + c_.arranque.version;
  e_.GridAImportar.Columna("Resultado")->visible = false;
  // The user's configuration folder is not there before the first run of an installed program.
  if (!c_.arranque.ajustes) base::CreateFolder(c_.arranque.carpeta);
  const settings::Ajustes ajustes = c_.LeerAjustes();
  if (ajustes.estado == settings::EstadoAjustes::Ilegible) {
    // The defaults in their place would write other quantities, and be stored over them at the end.
    e_.motivo_fin =
        "No se pueden leer los ajustes, y sin ellos se importarían otras cantidades. " + ajustes.motivo;
    c_.Avisar(e_.motivo_fin);
    return false;
  }
  if (ajustes.estado == settings::EstadoAjustes::Falta)
    base::CreateIfMissing(settings::RutaDeAjustes(c_.arranque.carpeta));
  LeerOpciones(ajustes.texto);
  return true;
}

// The order matters: a control that is set fires its handler, which may look at the options read so far.
void Inicio::LeerOpciones(std::string_view ajustes) {
  settings::Settings& o = e_.opciones;
  const auto aplicar = [&](std::string_view clave) {
    settings::AplicarValor(o, clave, settings::ValorDeTexto(ajustes, clave));
  };
  aplicar("SoloDatosDeRel");
  p_.opciones.chkSoloDReloj_Click(o.SoloDatosDeRel);
  aplicar("TipoArchivo");
  p_.formato.optTipoArch_Click(o.AnchoFijo ? 1 : 0);
  aplicar("CodTipoNumerico");
  p_.opciones.chkCodigoNumerico_Click(o.CodTipoNumerico);
  aplicar("TotalizarConc");
  p_.opciones.chkTotalizarConc_Click(o.TotalizarConc);
  aplicar("SumarAyaIng");
  p_.opciones.chkSumarAyaIng_Click(o.SumarAyaIng);
  aplicar("MismoCodigoDeOrsa");
  p_.opciones.chkVincAutConOrsa_Click(o.MismoCodigoDeOrsa);
  aplicar("TextoTipoCuota");
  p_.opciones.txtTextoTipoCuota_Change(o.TextoTipoCuota);
  aplicar("ImportarCuotas");
  p_.opciones.chkImportarCuotas_Click(o.ImportarCuotas);
  aplicar("Separador");
  p_.formato.txtSeparador_Change(o.Separador);
  aplicar("CCDefEnArch");
  p_.opciones.chkConCC_Click(o.CCDefEnArch);
  aplicar("CCEnDE");
  p_.opciones.chkCCDefEnDatExt_Click(o.CCEnDE);
  aplicar("ConfDeAF");
  p_.formato.PonerLayout();
  aplicar("FactMultiplica");
  p_.formato.txtFormulaSGN_Change(o.FactMultiplica);
  aplicar("TextoDeFiltro");
  p_.archivo.txtFiltro_Change(o.TextoDeFiltro);
  aplicar("Configura");
  e_.cbTipoClave.ListIndex = o.Configura;
  aplicar("LiqHCaMensuales");
  p_.opciones.chkLiqHCaMensuales_Click(o.LiqHCaMensuales);
  aplicar("NoImpCantEn0");
  p_.opciones.chkNoImpValEnCero_Click(o.NoImpCantEn0);
}

// The rules of the command line. False: the program ends at once.
bool Inicio::ElegirBase(std::string_view linea) {
  if (base::TrimView(linea).empty()) {
    const std::string ruta = c_.puertos.picker.PickFile("Seleccionar la base a ingresar las Horas",
                                                        "Bases de Access (*.mdb)|*.mdb", "");
    if (base::TrimView(ruta).empty()) return false;
    p_.lecturas.AbrirBase(ruta);
    e_.titulo_dialogo = "Seleccionar archivo a importar";
    return true;
  }
  e_.titulo_dialogo = "Seleccionar archivo a importar";
  const std::string texto = base::Replace(linea, "\"", "");
  if (base::Contains(texto, "*")) {
    const auto partes = base::Split(texto, "*");
    p_.lecturas.AbrirBase(partes[0]);
    e_.txtRuta.text = partes[1];
    return true;
  }
  if (base::FileExists(texto))
    p_.lecturas.AbrirBase(texto);
  else
    c_.Avisar("Ruta de Base de Datos Inexistente");
  return true;
}

bool Inicio::TerminarInicio() {
  e_.LblEmpresa = "Empresa: " + e_.referencia;
  e_.cmbConceptos_ancho = 450;
  if (e_.referencia.empty()) return false;
  p_.base.ConLaBase([&] { p_.lecturas.LevantarRelaciones(); });
  e_.carga_pendiente = !e_.txtRuta.text.empty();
  e_.cargando = false;
  c_.Cambio();
  return true;
}

}  // namespace app
