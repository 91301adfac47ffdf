#include <algorithm>

#include "app/verificar.h"
#include "cli/salida.h"
#include "cli/verbos.h"

namespace cli {
namespace {

bool EsError(const mdb::Hallazgo& h) { return h.grado == mdb::Hallazgo::Grado::Error; }

void Escribir(const mdb::Hallazgo& h, std::ostream& out) {
  out << (EsError(h) ? "Error" : "Nota");
  if (h.pagina != 0) out << " (página " << h.pagina << ")";
  out << ": " << h.texto << '\n';
}

}  // namespace

int Verificar(const OpcionesVerificar& o, Flujos f) {
  const app::Verificacion v = app::VerificarArchivo(o.archivo);
  if (v.acceso != app::Acceso::Bien) {
    f.err << v.motivo << '\n';
    return v.acceso == app::Acceso::NoExiste ? kSinArchivo : kArchivoMalo;
  }
  const mdb::Informe& i = v.informe;
  for (const mdb::Hallazgo& h : i.hallazgos) Escribir(h, f.out);
  f.out << "Páginas: " << i.paginas << " (" << i.libres << " libres). Tablas: " << i.tablas
        << ". Filas: " << i.filas << ". Índices: " << i.indices << " (" << i.entradas
        << " entradas). Valores largos: " << i.valores_largos << ".\n";
  const auto errores = std::count_if(i.hallazgos.begin(), i.hallazgos.end(), EsError);
  if (errores == 0)
    f.out << "Sin errores.\n";
  else
    f.out << "Errores: " << errores
          << ". Haga una copia de la base y repárela con Access (Compactar y reparar).\n";
  return Terminar(f, i.Sano() ? kTodo : kAlgunaNo);
}

}  // namespace cli
