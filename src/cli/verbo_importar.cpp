#include <utility>

#include "app/programa.h"
#include "base/encoding.h"
#include "base/file.h"
#include "base/text.h"
#include "cli/consola.h"
#include "cli/salida.h"
#include "cli/verbos.h"
#include "settings/config_file.h"

namespace cli {
namespace {

// The settings text of the run, with the options of the command line over the file's. A file that is there
// and cannot be read is no empty one: the defaults in its place would write other quantities. 0, or the exit
// code.
int LeerAjustes(const OpcionesImportar& o, const std::string& carpeta, std::string& texto,
                std::ostream& err) {
  const std::string ruta = o.ajustes ? *o.ajustes : settings::RutaDeAjustes(carpeta);
  const bool existe = base::ExisteArchivo(ruta);
  if (o.ajustes && !existe) {
    err << "El Archivo '" << ruta << "' no existe\n";
    return kSinArchivo;
  }
  const auto bytes = base::LeerArchivo(ruta);
  if (existe && !bytes) {
    err << "El Archivo '" << ruta << "' no se puede leer\n";
    return kEntradaSalida;
  }
  texto = base::DeCp1252(bytes.value_or(""));
  for (const auto& [clave, valor] : o.opciones) {
    texto = settings::TextoConValor(texto, clave, valor);
    const std::string solo = settings::ValorDeTexto(settings::TextoConValor("", clave, valor), clave);
    if (settings::ValorDeTexto(texto, clave) == solo) continue;
    err << "--opcion " << clave << ": en '" << ruta << "' esa clave está repetida o le falta su cierre\n";
    return kArchivoMalo;
  }
  return 0;
}

// The position of the entry of that value, or -1 with a message that lists what there is.
int Elegir(const formula::ListControl& combo, long long valor, const char* opcion, std::ostream& err) {
  std::string hay;
  for (std::size_t i = 0; i < combo.items.size(); ++i) {
    if (combo.items[i].dato == valor) return static_cast<int>(i);
    hay += (hay.empty() ? "" : ", ") + combo.items[i].texto;
  }
  err << opcion << " " << valor << ": no hay tal valor" << (hay.empty() ? "" : "; hay: " + hay) << '\n';
  return -1;
}

bool ElegirDestino(app::Programa& programa, const OpcionesImportar& o, std::ostream& err) {
  if (o.liquidacion) {
    const int i = Elegir(programa.Ver().tipos.cmbLiquidaciones, *o.liquidacion, "--liquidacion", err);
    if (i < 0) return false;
    programa.cmbLiquidaciones_Click(i);
  }
  if (o.cc) {
    const int i = Elegir(programa.Ver().tipos.cmbAgrupa, *o.cc, "--cc", err);
    if (i < 0) return false;
    programa.cmbAgrupa_Click(i);
  }
  return true;
}

// What was read but not written stays as it was, the month parameter included.
void Deshacer(app::Programa& programa) {
  db::Connection* conexion = programa.Sesion().conexion.get();
  if (conexion != nullptr && conexion->EnTransaccion())
    base::ErrorIgnorado("deshacer", nullptr, [&] { conexion->RollbackTrans(); });
}

int CodigoDe(const Cuentas& c, const app::Estado& estado) {
  if (!estado.importacion.error.empty()) return kEntradaSalida;
  if (c.importadas == 0) return kNada;
  return c.rechazadas + c.mal_formadas > 0 ? kAlgunaNo : kTodo;
}

int Mostrar(const OpcionesImportar& o, const app::Programa& programa, Flujos f) {
  const auto lineas = LineasDe(programa.Ver());
  const Cuentas cuentas = Contar(lineas);
  if (cuentas.leidas != programa.Ver().lineas) {
    f.err << "Error interno: el archivo tiene " << programa.Ver().lineas << " líneas y se dio cuenta de "
          << cuentas.leidas << '\n';
    return kEntradaSalida;
  }
  if (o.salida == Formato::Csv)
    EscribirCsv(f.out, lineas);
  else
    EscribirTabla(f.out, lineas);
  // With a CSV the standard output holds nothing else.
  EscribirTotales(o.salida == Formato::Csv ? f.err : f.out << '\n', cuentas, programa.Ver());
  const bool escrita = programa.Ver().importacion.confirmada && !o.solo_revisar;
  return Terminar(f, CodigoDe(cuentas, programa.Ver()),
                  escrita ? ". La importación está hecha: no la repita." : "");
}

}  // namespace

int Importar(const OpcionesImportar& o, const std::string& carpeta, const ports::Clock& reloj, Flujos f) {
  std::string ajustes;
  if (const int mal = LeerAjustes(o, carpeta, ajustes, f.err); mal != 0) return mal;
  Consola consola(f.err);
  app::Arranque arranque;
  arranque.carpeta = carpeta;
  arranque.ajustes = std::move(ajustes);
  arranque.mes = o.mes;
  arranque.una_transaccion = true;
  app::Programa programa({consola, consola, reloj, nullptr}, arranque);
  programa.IniciarCon(o.base, o.archivo);
  if (!programa.Sesion().Abierta()) {
    f.err << programa.Ver().motivo_base << '\n';
    return kSinBase;
  }
  int codigo = kNada;
  if (!ElegirDestino(programa, o, f.err)) {
    codigo = kUso;
  } else {
    // One load: choosing the other filter brings its own.
    if (o.filtro_texto)
      programa.OptFiltro_Click(0);
    else
      programa.Activate();
    switch (programa.Ver().fin_de_carga) {
      case importfile::FinDeCarga::SinArchivo:  // or one that cannot be read
        codigo = base::ExisteArchivo(o.archivo) ? kEntradaSalida : kSinArchivo;
        break;
      case importfile::FinDeCarga::Completa:
        if (!programa.Ver().filas.empty()) programa.Importar(o.solo_revisar);
        codigo = Mostrar(o, programa, f);
        break;
      default:
        codigo = kArchivoMalo;
    }
  }
  Deshacer(programa);
  for (const auto& error : programa.Errores())
    f.err << "Aviso: " << error.donde << ": " << error.descripcion << '\n';
  return codigo;
}

}  // namespace cli
