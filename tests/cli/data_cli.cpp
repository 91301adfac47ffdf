// Runs the command line and prints what came of it. Each file has a folder of its own, "{dir}" in its texts.
//
//   demo [sqlite]       the demo of October 2026, in an Access file or in one of the embedded engine
//   file NAME [crlf]    a file of the folder: the lines with CR LF between them, and one at the end with
//   crlf;
//                       CP1252. With raw: the bytes that its \\r \\n \\xHH spell, nothing between the lines
//   run                 arguments, one a line; after a line "<" the lines of the standard input. Prints the
//   exit
//                       code, then the lines of the output ("|"), then those of the error output ("!"). A "$"
//                       ends a line that would end in a blank
//   import file=NAME    importar over that file with the folder's base and settings, into October 2026, as
//   CSV; the
//                       lines are further arguments
//   review file=NAME    the same with revisar
//   bytes NAME          a file of the folder as it is, a line after each LF; a UTF-16 one by its bytes
//   query               a statement of the dialect over the demo base; rows joined with |
//   mark                remembers every row of the base
//   changes             the rows that differ from then: "- " gone, "+ " new; "none"
#include <algorithm>
#include <memory>
#include <set>

#include "base/encoding.h"
#include "base/text.h"
#include "base/user_name.h"
#include "mesa.h"
#include "support/data_test.h"
#include "support/escapes.h"

namespace {

using support::Block;

class Prueba {
 public:
  std::string Demo(const Block& b) {
    mesa_.PonerMotor(b.Has("sqlite") ? "sqlite" : "mdb");
    const prueba::Salida s = mesa_.Demo();
    return s.codigo == 0 ? "" : s.err;
  }

  std::string Archivo(const Block& b) {
    std::string texto = base::Replace(b.entry, "\n", "\r\n");
    if (b.Has("crlf")) texto += "\r\n";
    if (b.Has("raw")) texto = support::Unescape(base::Replace(texto, "\r\n", ""));
    mesa_.Escribir(b.options.at(0), b.Has("raw") ? texto : base::ToCp1252(ConCarpeta(texto)));
    return {};
  }

  std::string Correr(const Block& b) {
    std::vector<std::string> argumentos;
    std::string entrada;
    bool a_la_entrada = false;
    for (const std::string& linea : base::Split(b.entry, "\n")) {
      if (a_la_entrada)
        entrada += linea + "\n";
      else if (linea == "<")
        a_la_entrada = true;
      else
        argumentos.push_back(ConCarpeta(linea));
    }
    if (b.entry.empty()) argumentos.clear();
    const prueba::Salida s = mesa_.Correr(argumentos, entrada);
    const std::string out = base::Replace(s.out, ";" + base::UserName() + " (", ";{user} (");
    return "exit " + std::to_string(s.codigo) + Lineas("|", out) + Lineas("!", s.err);
  }

  std::string Importar(const std::string& verbo, const Block& b) {
    Block completo = b;
    completo.entry = verbo + "\n--base\n{dir}/ConfBase.cfg\n--archivo\n{dir}/" + b.Option("file") +
                     "\n--mes\n2026-10\n--salida\ncsv" +
                     (base::Contains(b.entry, "--hoy") ? "" : "\n--hoy\n2026-10-20") +
                     (b.entry.empty() ? "" : "\n" + b.entry);
    return Correr(completo);
  }

  std::string Bytes(const Block& b) {
    const auto bytes = base::ReadWholeFile(mesa_.Ruta(b.options.at(0)));
    if (!bytes) return "no such file";
    std::string salida = support::Escaped(*bytes, true);
    salida = base::Replace(salida, "\\n", "\\n\n");
    while (base::EndsWith(salida, "\n")) salida.pop_back();
    return salida.empty() ? "(empty)" : salida;
  }

  std::string Query(const Block& b) {
    const auto conexion = mesa_.Abrir();
    const db::Recordset rs = conexion->Query(b.entry);
    std::vector<std::string> filas;
    for (std::size_t f = 0; f < rs.Count(); ++f) {
      std::vector<std::string> celdas;
      for (std::size_t i = 0; i < rs.Fields().size(); ++i)
        celdas.push_back(rs.At(i, f).IsNull() ? "NULL" : rs.At(i, f).CsvText());
      filas.push_back(base::Join(celdas, "|"));
    }
    return base::Join(filas, "\n");
  }

  std::string Marcar(const Block&) {
    marca_ = Filas();
    return {};
  }

  std::string Cambios(const Block&) {
    const std::multiset<std::string> ahora = Filas();
    std::vector<std::string> cambios, quitadas, puestas;
    std::set_difference(marca_.begin(), marca_.end(), ahora.begin(), ahora.end(),
                        std::back_inserter(quitadas));
    std::set_difference(ahora.begin(), ahora.end(), marca_.begin(), marca_.end(),
                        std::back_inserter(puestas));
    for (const auto& fila : quitadas) cambios.push_back("- " + fila);
    for (const auto& fila : puestas) cambios.push_back("+ " + fila);
    return cambios.empty() ? "none" : base::Join(cambios, "\n");
  }

 private:
  std::string ConCarpeta(const std::string& texto) const {
    return base::Replace(texto, "{dir}", mesa_.Carpeta());
  }

  std::string Lineas(const std::string& marca, const std::string& texto) const {
    std::string salida;
    std::istringstream lineas(base::Replace(texto, mesa_.Carpeta(), "{dir}"));
    for (std::string linea; std::getline(lineas, linea);)
      salida += base::EndsWith(linea, " ") ? "\n" + marca + linea + "$" : "\n" + marca + linea;
    return salida;
  }

  // With the table's name before each row.
  std::multiset<std::string> Filas() const {
    std::multiset<std::string> filas;
    std::string tabla;
    for (const std::string& linea : base::Split(mesa_.Filas(), "\n")) {
      if (linea.empty()) continue;
      if (linea[0] == ' ')
        filas.insert(tabla + ": " + base::Trim(linea));
      else
        tabla = linea;
    }
    return filas;
  }

  prueba::Mesa mesa_;
  std::multiset<std::string> marca_;
};

}  // namespace

int main(int argc, char** argv) {
  return support::RunFiles(argc, argv, [] {
    auto p = std::make_shared<Prueba>();
    return support::Verbs{
        {"demo", [p](const Block& b) { return p->Demo(b); }},
        {"file", [p](const Block& b) { return p->Archivo(b); }},
        {"run", [p](const Block& b) { return p->Correr(b); }},
        {"import", [p](const Block& b) { return p->Importar("importar", b); }},
        {"review", [p](const Block& b) { return p->Importar("revisar", b); }},
        {"bytes", [p](const Block& b) { return p->Bytes(b); }},
        {"query", [p](const Block& b) { return p->Query(b); }},
        {"mark", [p](const Block& b) { return p->Marcar(b); }},
        {"changes", [p](const Block& b) { return p->Cambios(b); }},
    };
  });
}
