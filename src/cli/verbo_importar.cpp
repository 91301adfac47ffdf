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

// The settings text of the run, with the options of the command line over the file's.
std::string TextoDeAjustes(const OpcionesImportar& o, const std::string& carpeta) {
  const std::string ruta = o.ajustes ? *o.ajustes : settings::RutaDeAjustes(carpeta);
  std::string texto = base::DeCp1252(base::LeerArchivo(ruta).value_or(""));
  for (const auto& [clave, valor] : o.opciones) texto = settings::TextoConValor(texto, clave, valor);
  return texto;
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
  f.out.flush();
  if (!f.out.good()) {
    f.err << "No se pudo escribir el resultado\n";
    return kEntradaSalida;
  }
  return CodigoDe(cuentas, programa.Ver());
}

}  // namespace

int Importar(const OpcionesImportar& o, const std::string& carpeta, const ports::Clock& reloj, Flujos f) {
  if (o.ajustes && !base::ExisteArchivo(*o.ajustes)) {
    f.err << "El Archivo '" << *o.ajustes << "' no existe\n";
    return kSinArchivo;
  }
  Consola consola(f.err);
  app::Arranque arranque;
  arranque.carpeta = carpeta;
  arranque.ajustes = TextoDeAjustes(o, carpeta);
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
    if (o.filtro_texto) programa.OptFiltro_Click(0);
    programa.Activate();
    switch (programa.Ver().fin_de_carga) {
      case importfile::FinDeCarga::SinArchivo:
        codigo = kSinArchivo;
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
