// Verbs of the settings file:
//   leer clave=K [ausente] [ascii]    the value of K in the file (which `ausente` leaves uncreated)
//   grabar clave=K valor=V [ausente]  the bytes of the file after storing V
//   grabar_memoria clave=K valor=V    the same over a text
//                                     (leer, grabar: with sin_carpeta the file has no folder to be in)
//   opciones [ausente]                every option, as its key would be written
//   forma clave=K                     each input line as the value of K: what the option becomes
//   aplicar                           lines K=V over the default options: the keys that are not as by default
//   cierre [conceptos=T]              the text after storing all options read from it
//   layout                            the columns of a ConfDeAF text
//   ruta                              the settings file of each folder
// Input lines are joined with CR LF. "\r", "\xE9"… are bytes, in options "\x20" is a blank.
#include "base/encoding.h"
#include "base/file.h"
#include "base/text.h"
#include "settings/config_file.h"
#include "support/data_test.h"
#include "support/escapes.h"
#include "support/temp_folder.h"

namespace {

using support::Bloque;

std::string TextoDelBloque(const Bloque& b) {
  return support::Desescapar(base::Reemplazar(b.entrada, "\n", base::kCrLf));
}

std::vector<std::string> LineasDelBloque(const Bloque& b) { return base::Split(b.entrada, "\n"); }

std::string OVacio(const std::string& texto) { return texto.empty() ? "(empty)" : texto; }

// One shown line a line of the text, its CR LF visible.
std::string Mostrado(std::string_view texto) {
  return OVacio(base::Reemplazar(support::Escapado(texto, true), "\\r\\n", "\\r\\n\n"));
}

std::string Opcion(const Bloque& b, const std::string& clave) { return support::Desescapar(b.Opcion(clave)); }

struct ArchivoDePrueba {
  support::CarpetaTemporal carpeta;
  std::string ruta;
  explicit ArchivoDePrueba(const Bloque& b) : ruta(settings::RutaDeAjustes(carpeta.Carpeta())) {
    if (!b.Tiene("ausente")) carpeta.Escribir("ImportDeMarcas.ini", TextoDelBloque(b));
    if (b.Tiene("sin_carpeta")) ruta = settings::RutaDeAjustes(carpeta.Ruta("no_hay"));
  }
  std::string Bytes() const { return carpeta.Leer("ImportDeMarcas.ini"); }
};

std::string Leer(const Bloque& b) {
  const ArchivoDePrueba archivo(b);
  const std::string valor = settings::LeerConfig(archivo.ruta, Opcion(b, "clave"));
  if (b.Tiene("ausente"))
    return OVacio(valor) + "\nfile of " + std::to_string(archivo.Bytes().size()) + " bytes";
  return OVacio(support::Escapado(valor, b.Tiene("ascii")));
}

std::string Grabar(const Bloque& b) {
  const ArchivoDePrueba archivo(b);
  const bool bien = settings::GrabarConfig(archivo.ruta, Opcion(b, "clave"), Opcion(b, "valor"));
  return std::string(bien ? "" : "FAILED\n").append(Mostrado(archivo.Bytes()));
}

std::string GrabarMemoria(const Bloque& b) {
  return Mostrado(
      settings::TextoConValor(base::DeCp1252(TextoDelBloque(b)), Opcion(b, "clave"), Opcion(b, "valor")));
}

std::string Todas(const settings::Settings& s) {
  std::string salida;
  for (const auto clave : settings::ClavesDeOpciones()) {
    if (!salida.empty()) salida += '\n';
    salida += std::string(clave) + "=" + support::Escapado(settings::ValorDeClave(s, clave));
  }
  return salida;
}

std::string Opciones(const Bloque& b) {
  const ArchivoDePrueba archivo(b);
  return Todas(settings::LeerSettings(settings::LeerConfig(archivo.ruta, "*")));
}

settings::Settings Opuestas() {
  settings::Settings s;
  for (bool settings::Settings::*opcion :
       {&settings::Settings::SoloDatosDeRel, &settings::Settings::AnchoFijo,
        &settings::Settings::CodTipoNumerico, &settings::Settings::TotalizarConc,
        &settings::Settings::SumarAyaIng, &settings::Settings::MismoCodigoDeOrsa,
        &settings::Settings::ImportarCuotas, &settings::Settings::CCDefEnArch, &settings::Settings::CCEnDE,
        &settings::Settings::LiqHCaMensuales, &settings::Settings::NoImpCantEn0})
    s.*opcion = !(s.*opcion);
  s.TextoTipoCuota = s.Separador = s.FactMultiplica = s.TextoDeFiltro = "otro";
  s.Configura = 1;
  s.ConfDeAF = {{3, 3, 3}};
  return s;
}

std::string Forma(const Bloque& b) {
  const std::string clave = b.Opcion("clave");
  std::string salida;
  for (const std::string& linea : LineasDelBloque(b)) {
    const std::string valor = linea == "(empty)" ? "" : support::Desescapar(linea);
    settings::Settings una, otra = Opuestas();
    if (!settings::AplicarValor(una, clave, valor) || !settings::AplicarValor(otra, clave, valor))
      return "refused" + settings::ValorDeClave(una, clave);  // a key that is no option has no text
    const std::string queda = settings::ValorDeClave(una, clave);
    if (!salida.empty()) salida += '\n';
    salida += '<';
    salida += linea + "> " + OVacio(support::Escapado(queda));
    if (queda != settings::ValorDeClave(otra, clave)) salida += " DEPENDS ON WHAT IT WAS";
  }
  return salida;
}

std::string Aplicar(const Bloque& b) {
  settings::Settings s;
  std::string salida;
  const auto linea_de = [&](const std::string& texto) {
    salida += std::string(salida.empty() ? "" : "\n").append(texto);
  };
  for (const std::string& linea : LineasDelBloque(b)) {
    const std::size_t igual = linea.find('=');
    const std::string clave = linea.substr(0, igual);
    if (!settings::AplicarValor(s, clave, support::Desescapar(linea.substr(igual + 1))))
      linea_de("refused " + clave);
  }
  const settings::Settings por_defecto;
  for (const auto clave : settings::ClavesDeOpciones()) {
    const std::string valor = settings::ValorDeClave(s, clave);
    if (valor != settings::ValorDeClave(por_defecto, clave))
      linea_de(std::string(clave) + "=" + support::Escapado(valor));
  }
  return OVacio(salida);
}

std::string Cierre(const Bloque& b) {
  const std::string texto = base::DeCp1252(TextoDelBloque(b));
  std::optional<std::string> conceptos;
  for (const auto& o : b.opciones)
    if (o.rfind("conceptos=", 0) == 0) conceptos = support::Desescapar(o.substr(10));
  return Mostrado(settings::TextoConSettings(texto, settings::LeerSettings(texto), conceptos));
}

std::string Layout(const Bloque& b) {
  const std::string texto = b.entrada == "(empty)" ? ""
                            : b.Tiene("lf")        ? support::Desescapar(b.entrada)
                                                   : TextoDelBloque(b);
  const settings::FixedWidthLayout layout = settings::LayoutDeTexto(texto);
  std::string salida;
  for (const settings::ColumnaAF& c : layout)
    salida += "field " + std::to_string(c.campo) + " start " + std::to_string(c.inicio) + " length " +
              std::to_string(c.largo) + "\n";
  return salida + support::Escapado(settings::TextoDeLayout(layout));
}

std::string Ruta(const Bloque& b) {
  std::string salida;
  for (const std::string& carpeta : LineasDelBloque(b))
    salida += std::string(salida.empty() ? "" : "\n").append(settings::RutaDeAjustes(carpeta));
  return salida;
}

}  // namespace

int main(int argc, char** argv) {
  return support::EjecutarArchivos(argc, argv, [] {
    return support::Verbos{{"leer", Leer},         {"grabar", Grabar}, {"grabar_memoria", GrabarMemoria},
                           {"opciones", Opciones}, {"forma", Forma},   {"aplicar", Aplicar},
                           {"cierre", Cierre},     {"layout", Layout}, {"ruta", Ruta}};
  });
}
