// The examples of docs/sql-dialect.md are what the translator writes.
#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <map>
#include <memory>

#include "base/text.h"
#include "jetsql/functions.h"
#include "jetsql/translate.h"
#include "support/source_dir.h"

namespace {

class Catalogo : public jetsql::Catalogo {
 public:
  const jetsql::TablaInfo* Tabla(std::string_view nombre) override {
    const auto it = tablas_.find(base::Mayusculas(nombre));
    return it == tablas_.end() ? nullptr : &it->second;
  }
  const std::string* Consulta(std::string_view nombre) override {
    const auto it = consultas_.find(base::Mayusculas(nombre));
    return it == consultas_.end() ? nullptr : &it->second;
  }
  void Crear(std::string_view sql) {
    const jetsql::Definicion d = jetsql::Traducir(sql, *this).definicion;
    if (d.que == jetsql::Definicion::Que::CrearTabla)
      tablas_[base::Mayusculas(d.nombre)] = {d.nombre, d.columnas};
    else
      consultas_[base::Mayusculas(d.nombre)] = d.texto_vista;
  }

 private:
  std::map<std::string, jetsql::TablaInfo> tablas_;
  std::map<std::string, std::string> consultas_;
};

std::string LeerPagina() {
  std::ifstream f(support::SourceDir() + "/docs/sql-dialect.md", std::ios::binary);
  return {std::istreambuf_iterator<char>(f), {}};
}

TEST(Docs, EveryExampleIsTranslatedAsWritten) {
  Catalogo catalogo;
  std::string ejemplo;
  int vistos = 0;
  const auto piezas = base::Split(LeerPagina(), "```");
  for (std::size_t i = 1; i < piezas.size(); i += 2) {  // every second piece is inside a block
    const std::size_t fin = piezas[i].find('\n');
    ASSERT_NE(fin, std::string::npos) << piezas[i];
    const std::string clase = piezas[i].substr(0, fin);
    const std::string texto = base::Trim(base::Reemplazar(piezas[i].substr(fin), "\n", " "));
    if (clase == "tables") {
      for (const auto& linea : base::Split(base::Trim(piezas[i].substr(fin + 1)), "\n"))
        if (!linea.empty()) catalogo.Crear(linea);
    } else if (clase == "jet") {
      ASSERT_EQ(ejemplo, "") << "an example without its translation";
      ejemplo = texto;
    } else if (clase == "sqlite") {
      EXPECT_EQ(base::Join(jetsql::Traducir(ejemplo, catalogo).pasos, " "), texto) << ejemplo;
      ejemplo.clear();
      ++vistos;
    }
  }
  EXPECT_GT(vistos, 20);
}

TEST(Docs, EveryFunctionIsNamed) {
  const std::string pagina = base::Reemplazar(LeerPagina(), "\n", " ");
  for (const jetsql::Funcion& f : jetsql::Funciones()) {
    const std::string nombre = std::string(" ").append(f.nombre);
    EXPECT_TRUE(base::Contiene(pagina, nombre + ",") || base::Contiene(pagina, nombre + ".")) << f.nombre;
  }
}

}  // namespace
