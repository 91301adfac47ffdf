// Runs the files of tests/data/jetsql. The catalog of a file starts empty. Verbs:
//   define      CREATE statements, one a line: each must translate; adds its table or saved query to the
//   catalog translate   a statement: its SQLite text, a line a step. Options: columns (name:type of the
//   result), fixed (the
//               literals that the translation depends on), class, dao (LIKE with * ? #)
//   print       a statement read and printed back; what is printed is read again and must print the same
//   shape       the key, with the marks as <i> <n> <t> <d>, and the literals, one a line
//   same        two statements, one a line: whether they have one shape
#include <memory>
#include <string>

#include "base/text.h"
#include "jetsql/parser.h"
#include "jetsql/translate.h"
#include "support/data_test.h"

namespace {

class CatalogoDePrueba : public jetsql::Catalogo {
 public:
  const jetsql::TablaInfo* Tabla(std::string_view nombre) override {
    for (const auto& t : tablas_)
      if (base::IgualSinCaso(t->nombre, nombre)) return t.get();
    return nullptr;
  }
  const std::string* Consulta(std::string_view nombre) override {
    for (const auto& c : consultas_)
      if (base::IgualSinCaso(c->first, nombre)) return &c->second;
    return nullptr;
  }
  void Agregar(const jetsql::Definicion& d) {
    if (d.que == jetsql::Definicion::Que::CrearTabla)
      tablas_.push_back(std::make_unique<jetsql::TablaInfo>(jetsql::TablaInfo{d.nombre, d.columnas}));
    if (d.que == jetsql::Definicion::Que::CrearVista)
      consultas_.push_back(std::make_unique<std::pair<std::string, std::string>>(d.nombre, d.texto_vista));
  }
  // A saved query whose text nobody has checked.
  void AgregarConsulta(std::string nombre, std::string texto) {
    consultas_.push_back(
        std::make_unique<std::pair<std::string, std::string>>(std::move(nombre), std::move(texto)));
  }

 private:
  std::vector<std::unique_ptr<jetsql::TablaInfo>> tablas_;
  std::vector<std::unique_ptr<std::pair<std::string, std::string>>> consultas_;
};

std::string Tipo(base::Tipo tipo) {
  static constexpr const char* kNombres[] = {"unknown", "boolean",  "integer", "single",
                                             "number",  "currency", "date",    "text"};
  return kNombres[static_cast<std::size_t>(tipo)];
}

std::string Clase(jetsql::Clase clase) {
  static constexpr const char* kNombres[] = {"query", "insert", "update", "delete", "definition"};
  return kNombres[static_cast<std::size_t>(clase)];
}

std::string Reimpresa(const std::string& sql) {
  const std::string una = jetsql::Imprimir(jetsql::Analizar(sql));
  const std::string otra = jetsql::Imprimir(jetsql::Analizar(una));
  return una == otra ? una : "PRINTED AGAIN: " + otra + "\nFIRST: " + una;
}

std::string Error(const base::Error& e) {
  std::string texto = "ERROR " + e.Descripcion();
  if (e.Numero() != 0) texto.append(" [").append(std::to_string(e.Numero())).append("]");
  if (const auto* s = dynamic_cast<const jetsql::ErrorSintaxis*>(&e))
    texto.append(" @").append(std::to_string(s->Linea())).append(":").append(std::to_string(s->Columna()));
  return texto;
}

std::string Definir(CatalogoDePrueba& catalogo, const support::Bloque& b) {
  for (const auto& linea : base::Split(b.entrada, "\n")) {
    const auto partes = base::Split(linea, " := ");
    if (partes.size() == 2)
      catalogo.AgregarConsulta(partes[0], partes[1]);
    else
      catalogo.Agregar(jetsql::Traducir(linea, catalogo).definicion);
  }
  return "";
}

std::string Traducida(CatalogoDePrueba& catalogo, const support::Bloque& b) {
  jetsql::OpcionesTraduccion opciones;
  opciones.comodines_dao = b.Tiene("dao");
  const jetsql::Traduccion t = jetsql::Traducir(b.entrada, catalogo, opciones);
  // What is printed must mean the same: it has the same columns, of the same types.
  const std::string impresa = Reimpresa(b.entrada);
  const jetsql::Traduccion de_impresa = jetsql::Traducir(impresa, catalogo, opciones);
  std::vector<std::string> lineas = t.pasos;
  if (b.Tiene("class"))
    lineas.insert(lineas.begin(), Clase(t.clase) + (t.determinista ? "" : ", changes by itself"));
  if (b.Tiene("columns"))
    for (const auto& c : t.columnas) lineas.push_back(c.nombre + ": " + Tipo(c.tipo));
  if (b.Tiene("fixed")) {
    std::string fijos = "fixed";
    for (const int i : t.fijos) fijos.append(" ?").append(std::to_string(i + 1));
    lineas.push_back(fijos);
  }
  if (de_impresa.pasos.size() != t.pasos.size() || de_impresa.columnas.size() != t.columnas.size())
    lineas.push_back("THE PRINTED STATEMENT DIFFERS: " + impresa);
  for (std::size_t i = 0; i < t.columnas.size() && i < de_impresa.columnas.size(); ++i)
    if (t.columnas[i].nombre != de_impresa.columnas[i].nombre ||
        t.columnas[i].tipo != de_impresa.columnas[i].tipo)
      lineas.push_back("THE PRINTED STATEMENT HAS ANOTHER COLUMN " + de_impresa.columnas[i].nombre);
  return base::Join(lineas, "\n");
}

std::string FormaDe(const support::Bloque& b) {
  jetsql::Forma forma;
  if (!jetsql::SepararLiterales(b.entrada, forma)) return "MALFORMED";
  std::string texto;
  for (const char c : forma.clave) {
    static constexpr const char* kMarcas[] = {"", "<i>", "<n>", "<t>", "<d>"};
    if (c >= 1 && c <= 4)
      texto += kMarcas[static_cast<std::size_t>(c)];
    else
      texto += c;
  }
  for (const auto& v : forma.literales)
    texto.append("\n").append(Tipo(v.tipo())).append(" ").append(v.TextoCsv());
  return texto;
}

std::string MismaForma(const support::Bloque& b) {
  const auto lineas = base::Split(b.entrada, "\n");
  jetsql::Forma a, otra;
  if (!jetsql::SepararLiterales(lineas.at(0), a) || !jetsql::SepararLiterales(lineas.at(1), otra))
    return "MALFORMED";
  return a.clave == otra.clave ? "same" : "different";
}

support::Verbos Preparar() {
  const auto catalogo = std::make_shared<CatalogoDePrueba>();
  const auto con_errores = [](auto f) {
    return [f](const support::Bloque& b) -> std::string {
      try {
        return f(b);
      } catch (const base::Error& e) {
        return Error(e);
      }
    };
  };
  support::Verbos verbos;
  verbos["define"] = con_errores([catalogo](const support::Bloque& b) { return Definir(*catalogo, b); });
  verbos["translate"] = con_errores([catalogo](const support::Bloque& b) { return Traducida(*catalogo, b); });
  verbos["print"] = con_errores([](const support::Bloque& b) { return Reimpresa(b.entrada); });
  verbos["shape"] = con_errores(FormaDe);
  verbos["same"] = con_errores(MismaForma);
  return verbos;
}

}  // namespace

int main(int argc, char** argv) { return support::EjecutarArchivos(argc, argv, Preparar); }
