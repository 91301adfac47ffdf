// The examples of docs/formulas.md give what the page says: "`formula` → result", and in the table of errors
// the box that the example shows.
#include <gtest/gtest.h>

#include <fstream>
#include <iterator>

#include "avisos_de_prueba.h"
#include "base/date.h"
#include "base/text.h"
#include "formula/evaluador/evaluator.h"
#include "support/source_dir.h"

namespace {

std::string LeerPagina() {
  std::ifstream f(support::SourceDir() + "/docs/formulas.md", std::ios::binary);
  const std::string todo(std::istreambuf_iterator<char>(f), {});
  return base::Replace(todo, "\n", " ");
}

class Pagina : public testing::Test {
 protected:
  Pagina() {
    ev.prompts = &avisos;
    ev.reloj = &reloj;
  }
  ports::FixedClock reloj{base::MakeDate(2024, 8, 15)};
  prueba::AvisosDePrueba avisos;
  formula::Evaluador ev;
};

// Up to the next blank; a comma, point or bracket there ends the sentence and is no part of it.
std::string Resultado(const std::string& texto, std::size_t desde) {
  std::string r = texto.substr(desde, texto.find(' ', desde) - desde);
  while (!r.empty() && (r.back() == '.' || r.back() == ',' || r.back() == ')' || r.back() == ':'))
    r.pop_back();
  return r;
}

TEST_F(Pagina, EveryExampleGivesWhatItSays) {
  const std::string pagina = LeerPagina();
  const std::string flecha = "` → ";
  int vistos = 0;
  for (std::size_t i = pagina.find(flecha); i != std::string::npos; i = pagina.find(flecha, i + 1)) {
    const std::size_t inicio = pagina.rfind('`', i - 1) + 1;
    const std::string ejemplo = pagina.substr(inicio, i - inicio);
    // "1/2/25" shows two of its decimals.
    const std::string dice = Resultado(pagina, i + flecha.size());
    const std::string da = formula::EvaluarTexto(ev, ejemplo);
    EXPECT_EQ(ejemplo == "1/2/25" ? da.substr(0, dice.size()) : da, dice) << ejemplo;
    ++vistos;
  }
  EXPECT_GT(vistos, 60);
  EXPECT_EQ(ev.avisos_mostrados, 0);
}

TEST_F(Pagina, EveryErrorShowsItsBox) {
  const std::string pagina = LeerPagina();
  int vistos = 0;
  for (const char* aviso : {"Falta un )", "Falta uno de los parametros",
                            "Falta un termino en la funcion Condicion", "No coinciden los tipos"}) {
    const std::size_t fila = pagina.find(std::string("| ") + aviso + " |");
    ASSERT_NE(fila, std::string::npos) << aviso;
    const std::size_t inicio = pagina.find('`', fila) + 1;
    const std::string ejemplo = pagina.substr(inicio, pagina.find('`', inicio) - inicio);
    avisos.cajas.clear();
    ev.avisos_mostrados = 0;
    formula::EvaluarTexto(ev, ejemplo);
    ASSERT_EQ(avisos.cajas.size(), 1U) << ejemplo;
    EXPECT_TRUE(base::EndsWith(avisos.cajas[0], aviso)) << avisos.cajas[0];
    ++vistos;
  }
  EXPECT_EQ(vistos, 4);
}

}  // namespace
