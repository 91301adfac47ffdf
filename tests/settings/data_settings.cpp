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

using support::Block;

std::string TextoDelBloque(const Block& b) {
  return support::Unescape(base::Replace(b.entry, "\n", base::kCrLf));
}

std::vector<std::string> LineasDelBloque(const Block& b) { return base::Split(b.entry, "\n"); }

std::string OVacio(const std::string& texto) { return texto.empty() ? "(empty)" : texto; }

// One shown line a line of the text, its CR LF visible.
std::string Mostrado(std::string_view texto) {
  return OVacio(base::Replace(support::Escaped(texto, true), "\\r\\n", "\\r\\n\n"));
}

std::string Opcion(const Block& b, const std::string& clave) { return support::Unescape(b.Option(clave)); }

struct ArchivoDePrueba {
  support::TempFolder carpeta;
  std::string ruta;
  explicit ArchivoDePrueba(const Block& b) : ruta(settings::RutaDeAjustes(carpeta.Folder())) {
    if (!b.Has("ausente")) carpeta.Write("ImportDeMarcas.ini", TextoDelBloque(b));
    if (b.Has("sin_carpeta")) ruta = settings::RutaDeAjustes(carpeta.Path("no_hay"));
  }
  std::string Bytes() const { return carpeta.Read("ImportDeMarcas.ini"); }
};

std::string Leer(const Block& b) {
  const ArchivoDePrueba archivo(b);
  const std::string valor = settings::LeerConfig(archivo.ruta, Opcion(b, "clave"));
  if (b.Has("ausente"))
    return OVacio(valor) + "\nfile of " + std::to_string(archivo.Bytes().size()) + " bytes";
  return OVacio(support::Escaped(valor, b.Has("ascii")));
}

std::string Grabar(const Block& b) {
  const ArchivoDePrueba archivo(b);
  const bool bien = settings::GrabarConfig(archivo.ruta, Opcion(b, "clave"), Opcion(b, "valor"));
  return std::string(bien ? "" : "FAILED\n").append(Mostrado(archivo.Bytes()));
}

std::string GrabarMemoria(const Block& b) {
  return Mostrado(
      settings::TextoConValor(base::FromCp1252(TextoDelBloque(b)), Opcion(b, "clave"), Opcion(b, "valor")));
}

std::string Todas(const settings::Settings& s) {
  std::string salida;
  for (const auto clave : settings::ClavesDeOpciones()) {
    if (!salida.empty()) salida += '\n';
    salida += std::string(clave) + "=" + support::Escaped(settings::ValorDeClave(s, clave));
  }
  return salida;
}

std::string Opciones(const Block& b) {
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

std::string Forma(const Block& b) {
  const std::string clave = b.Option("clave");
  std::string salida;
  for (const std::string& linea : LineasDelBloque(b)) {
    const std::string valor = linea == "(empty)" ? "" : support::Unescape(linea);
    settings::Settings una, otra = Opuestas();
    if (!settings::AplicarValor(una, clave, valor) || !settings::AplicarValor(otra, clave, valor))
      return "refused" + settings::ValorDeClave(una, clave);  // a key that is no option has no text
    const std::string queda = settings::ValorDeClave(una, clave);
    if (!salida.empty()) salida += '\n';
    salida += '<';
    salida += linea + "> " + OVacio(support::Escaped(queda));
    if (queda != settings::ValorDeClave(otra, clave)) salida += " DEPENDS ON WHAT IT WAS";
  }
  return salida;
}

std::string Aplicar(const Block& b) {
  settings::Settings s;
  std::string salida;
  const auto linea_de = [&](const std::string& texto) {
    salida += std::string(salida.empty() ? "" : "\n").append(texto);
  };
  for (const std::string& linea : LineasDelBloque(b)) {
    const std::size_t igual = linea.find('=');
    const std::string clave = linea.substr(0, igual);
    if (!settings::AplicarValor(s, clave, support::Unescape(linea.substr(igual + 1))))
      linea_de("refused " + clave);
  }
  const settings::Settings por_defecto;
  for (const auto clave : settings::ClavesDeOpciones()) {
    const std::string valor = settings::ValorDeClave(s, clave);
    if (valor != settings::ValorDeClave(por_defecto, clave))
      linea_de(std::string(clave) + "=" + support::Escaped(valor));
  }
  return OVacio(salida);
}

std::string Cierre(const Block& b) {
  const std::string texto = base::FromCp1252(TextoDelBloque(b));
  std::optional<std::string> conceptos;
  for (const auto& o : b.options)
    if (o.rfind("conceptos=", 0) == 0) conceptos = support::Unescape(o.substr(10));
  return Mostrado(settings::TextoConSettings(texto, settings::LeerSettings(texto), conceptos));
}

std::string Layout(const Block& b) {
  const std::string texto = b.entry == "(empty)" ? ""
                            : b.Has("lf")        ? support::Unescape(b.entry)
                                                 : TextoDelBloque(b);
  const settings::FixedWidthLayout layout = settings::LayoutDeTexto(texto);
  std::string salida;
  for (const settings::ColumnaAF& c : layout)
    salida += "field " + std::to_string(c.campo) + " start " + std::to_string(c.inicio) + " length " +
              std::to_string(c.largo) + "\n";
  return salida + support::Escaped(settings::TextoDeLayout(layout));
}

std::string Ruta(const Block& b) {
  std::string salida;
  for (const std::string& carpeta : LineasDelBloque(b))
    salida += std::string(salida.empty() ? "" : "\n").append(settings::RutaDeAjustes(carpeta));
  return salida;
}

}  // namespace

int main(int argc, char** argv) {
  return support::RunFiles(argc, argv, [] {
    return support::Verbs{{"leer", Leer},         {"grabar", Grabar}, {"grabar_memoria", GrabarMemoria},
                          {"opciones", Opciones}, {"forma", Forma},   {"aplicar", Aplicar},
                          {"cierre", Cierre},     {"layout", Layout}, {"ruta", Ruta}};
  });
}
