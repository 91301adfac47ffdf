#include <string>

#include "app/conector.h"
#include "base/csv.h"
#include "base/text.h"
#include "cli/salida.h"
#include "cli/verbos.h"

namespace cli {
namespace {

constexpr char kSeparador = ',';

void EscribirFilas(std::ostream& out, const db::Recordset& rs) {
  const std::size_t ancho = rs.Fields().size();
  for (std::size_t i = 0; i < ancho; ++i)
    out << (i > 0 ? std::string(1, kSeparador) : std::string())
        << base::CsvCell(rs.Fields()[i].name, kSeparador);
  if (ancho > 0) out << '\n';
  for (std::size_t fila = 0; fila < rs.Count(); ++fila) {
    for (std::size_t i = 0; i < ancho; ++i) {
      if (i > 0) out << kSeparador;
      out << base::CsvCell(rs.At(i, fila).CsvText(), kSeparador);
    }
    out << '\n';
  }
}

bool Correr(db::Connection& conexion, const std::string& sql, bool escribir, Flujos f) {
  try {
    const db::Recordset rs = escribir ? conexion.Execute(sql) : conexion.Query(sql);
    if (rs.Fields().empty())
      f.err << "Filas afectadas: " << conexion.AffectedRows() << '\n';
    else
      EscribirFilas(f.out, rs);
    return true;
  } catch (const base::Error& e) {
    f.err << e.Description() << '\n';
    return false;
  }
}

}  // namespace

int Consulta(const OpcionesConsulta& o, const ports::Clock& reloj, Flujos f) {
  app::Conexion c = app::AbrirReferencia(o.base, reloj);
  if (c.conexion == nullptr) {
    f.err << c.motivo << '\n';
    return kSinBase;
  }
  bool bien = true;
  if (o.sql != "-") {
    bien = Correr(*c.conexion, o.sql, o.escribir, f);
  } else {
    bool primera = true;
    for (std::string linea; std::getline(f.in, linea);) {
      if (!linea.empty() && linea.back() == '\r') linea.pop_back();
      if (base::TrimView(linea).empty()) continue;
      if (!primera) f.out << '\n';  // results are parted by an empty line
      primera = false;
      bien = Correr(*c.conexion, linea, o.escribir, f) && bien;
    }
  }
  return Terminar(f, bien ? kTodo : kAlgunaNo);
}

}  // namespace cli
