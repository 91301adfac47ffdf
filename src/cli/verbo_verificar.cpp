#include <algorithm>

#include "app/verificar.h"
#include "cli/salida.h"
#include "cli/verbos.h"

namespace cli {
namespace {

bool EsError(const mdb::Finding& h) { return h.severity == mdb::Finding::Severity::Error; }

void Escribir(const mdb::Finding& h, std::ostream& out) {
  out << (EsError(h) ? "Error" : "Nota");
  if (h.page != 0) out << " (página " << h.page << ")";
  out << ": " << h.text << '\n';
}

}  // namespace

int Verificar(const OpcionesVerificar& o, Flujos f) {
  const app::Verificacion v = app::VerificarArchivo(o.archivo);
  if (v.acceso != app::Acceso::Bien) {
    f.err << v.motivo << '\n';
    return v.acceso == app::Acceso::NoExiste ? kSinArchivo : kArchivoMalo;
  }
  const mdb::Report& i = v.informe;
  for (const mdb::Finding& h : i.findings) Escribir(h, f.out);
  f.out << "Páginas: " << i.pages << " (" << i.free_pages << " libres). Tablas: " << i.tables
        << ". Filas: " << i.rows << ". Índices: " << i.indexes << " (" << i.entries
        << " entradas). Valores largos: " << i.long_values << ".\n";
  const auto errores = std::count_if(i.findings.begin(), i.findings.end(), EsError);
  if (errores == 0)
    f.out << "Sin errores.\n";
  else
    f.out << "Errores: " << errores
          << ". Haga una copia de la base y repárela con Access (Compactar y reparar).\n";
  return Terminar(f, i.IsSound() ? kTodo : kAlgunaNo);
}

}  // namespace cli
