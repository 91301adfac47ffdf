#include "app/procedencia.h"

#include "app/estado.h"
#include "base/number.h"

namespace app {
namespace {

std::string Huella(const relations::CodeRelations& relaciones) {
  std::string huella;
  for (std::size_t i = 0; i < relaciones.Cantidad(); ++i)
    for (const auto campo :
         {relations::kCodigo, relations::kExternos, relations::kConcepto, relations::kNombre, relations::kCC})
      huella.append(relaciones.Campo(campo, i)).append(1, '\0');
  return huella;
}

// The text that decides, "" when it has no effect.
std::string Formula(const settings::Settings& o) {
  return importfile::FormulaEnUso(o.FactMultiplica) ? o.FactMultiplica : std::string();
}

std::string Condicion(const Procedencia& p) {
  if (p.OptFiltro != 0 || base::IsBlank(p.opciones.TextoDeFiltro)) return {};
  return p.opciones.TextoDeFiltro;
}

std::string Opcion(const char* caption) { return "la opción \"" + std::string(caption) + "\""; }

class Comparacion {
 public:
  Comparacion(const Procedencia& grilla, const Procedencia& controles) : g_(grilla), c_(controles) {}

  std::vector<std::string> Hallar() {
    Ver(g_.referencia != c_.referencia, "la base");
    VerArchivo();
    VerFormato();
    Ver(Formula(g_.opciones) != Formula(c_.opciones), "la fórmula");
    Ver(g_.OptFiltro != c_.OptFiltro || Condicion(g_) != Condicion(c_), "el filtro");
    Ver(g_.mes != c_.mes, "el mes");
    VerOpciones();
    Ver(g_.relaciones != c_.relaciones, "las relaciones");
    return std::move(halladas_);
  }

 private:
  void Ver(bool distinta, std::string que) {
    if (distinta) halladas_.push_back(std::move(que));
  }
  void VerArchivo() {
    if (g_.ruta != c_.ruta) return Ver(true, "la ruta");
    Ver(g_.archivo != c_.archivo,
        c_.archivo ? "el contenido del archivo" : "el archivo, que ya no está en esa ruta");
  }
  void VerFormato() {
    const settings::Settings &a = g_.opciones, &b = c_.opciones;
    if (a.AnchoFijo != b.AnchoFijo) return Ver(true, "el formato");
    if (b.AnchoFijo)
      Ver(a.ConfDeAF != b.ConfDeAF, "las columnas del formato");
    else
      Ver(a.Separador != b.Separador, "el separador");
  }
  void VerOpciones() {
    const settings::Settings &a = g_.opciones, &b = c_.opciones;
    Ver(a.Configura != b.Configura, "la clave de relación con el contrato");
    Ver(a.CodTipoNumerico != b.CodTipoNumerico, Opcion("Codigo de Dato Numérico"));
    Ver(a.CCEnDE != b.CCEnDE, Opcion("Centro de Costo definido en dato extra"));
    // Both decide what the catalogue of concepts lists, and with it the kind of each row's datum.
    Ver(a.SoloDatosDeRel != b.SoloDatosDeRel, Opcion("Solo Datos de Reloj"));
    Ver(a.ImportarCuotas != b.ImportarCuotas, Opcion("Importar Cuotas"));
  }

  const Procedencia &g_, &c_;
  std::vector<std::string> halladas_;
};

std::string Enumerar(const std::vector<std::string>& cosas) {
  std::string texto;
  for (std::size_t i = 0; i < cosas.size(); ++i) {
    if (i > 0) texto += i + 1 == cosas.size() ? " y " : ", ";
    texto += cosas[i];
  }
  return texto;
}

}  // namespace

Procedencia ProcedenciaDe(const Estado& e) {
  return {true,  e.referencia, e.txtRuta.text, base::StampOf(e.txtRuta.text),
          e.mes, e.OptFiltro,  e.opciones,     Huella(e.relaciones)};
}

std::vector<std::string> Diferencias(const Estado& e) {
  if (e.cargando || e.carga_pendiente || e.tarea != Tarea::Ninguna) return {};
  if (!e.procedencia.cargada)
    return e.txtRuta.text.empty() ? std::vector<std::string>{} : std::vector<std::string>{"la ruta"};
  return Comparacion(e.procedencia, ProcedenciaDe(e)).Hallar();
}

std::string TextoDeDiferencias(const Estado& e) {
  const std::vector<std::string> cosas = Diferencias(e);
  if (cosas.empty()) return {};
  if (!e.procedencia.cargada) return "El archivo de la ruta todavía no se leyó.";
  return "La grilla no es la de los controles: cambió " + Enumerar(cosas) + ".";
}

}  // namespace app
