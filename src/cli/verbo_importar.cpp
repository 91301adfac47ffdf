#include <utility>

#include "base/file.h"
#include "base/text.h"
#include "cli/consola.h"
#include "cli/salida.h"
#include "cli/verbos.h"
#include "corridas/repetidas.h"
#include "settings/config_file.h"

namespace cli {
namespace {

// The settings text of the run, with the options of the command line over the file's. A file that is there
// and cannot be read is no empty one: the defaults in its place would write other quantities. 0, or the exit
// code.
int LeerAjustes(const OpcionesImportar& o, const std::string& carpeta, std::string& texto,
                std::ostream& err) {
  const std::string ruta = o.ajustes ? *o.ajustes : settings::RutaDeAjustes(carpeta);
  settings::Ajustes ajustes = settings::LeerAjustes(ruta);
  if (o.ajustes && ajustes.estado == settings::EstadoAjustes::Falta) {
    err << "El Archivo '" << ruta << "' no existe\n";
    return kSinArchivo;
  }
  if (ajustes.estado == settings::EstadoAjustes::Ilegible) {
    err << "No se pueden leer los ajustes. " << ajustes.motivo << '\n';
    return kEntradaSalida;
  }
  texto = std::move(ajustes.texto);
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
    programa.Archivo().cmbLiquidaciones_Click(i);
  }
  if (o.cc) {
    const int i = Elegir(programa.Ver().tipos.cmbAgrupa, *o.cc, "--cc", err);
    if (i < 0) return false;
    programa.Archivo().cmbAgrupa_Click(i);
  }
  return true;
}

// `avisos`: something was told before that may not be meant.
int CodigoDe(const informe::Cuentas& c, const app::Estado& estado, bool avisos) {
  if (!estado.importacion.error.empty() || !estado.fallo_de_base.empty()) return kEntradaSalida;
  if (c.importadas == 0) return kNada;
  const bool del_todo =
      c.rechazadas + c.mal_formadas == 0 && estado.importacion.actualizaciones_fallidas.empty();
  return del_todo && !avisos ? kTodo : kAlgunaNo;
}

// What follows the message of a failed write.
std::string_view YaEsta(const OpcionesImportar& o, const app::Programa& programa) {
  const bool escrita = programa.Ver().importacion.confirmada && !o.solo_revisar;
  return escrita ? ". La importación está hecha: no la repita." : "";
}

// The files that were asked for. False when one could not be written.
bool EscribirArchivos(app::Programa& programa, const OpcionesImportar& o, Flujos f) {
  std::vector<app::Escritura> escritas;
  if (!o.rechazadas.empty()) escritas.push_back(programa.Informes().GuardarRechazadas(o.rechazadas));
  if (!o.informe.empty()) escritas.push_back(programa.Informes().GuardarInforme(o.informe));
  bool bien = true;
  for (const app::Escritura& escrita : escritas) {
    if (!escrita.motivo.empty()) f.err << escrita.motivo << YaEsta(o, programa) << '\n';
    if (!escrita.aviso.empty()) f.err << "Aviso: " << escrita.aviso << '\n';
    bien = bien && escrita.motivo.empty();
  }
  return bien;
}

int Mostrar(const OpcionesImportar& o, const app::Programa& programa, bool avisos, Flujos f) {
  const auto lineas = informe::LineasDe(programa.Ver().filas, programa.Ver().aparte);
  const informe::Cuentas cuentas = informe::Contar(lineas);
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
  if (o.cambios) EscribirCambios(o.salida == Formato::Csv ? f.err : f.out << '\n', programa.Ver().cantidades);
  return Terminar(f, CodigoDe(cuentas, programa.Ver(), avisos), YaEsta(o, programa));
}

// What an import stands on could not all be read: nothing is imported, nor said of any line. A fault of the
// base has been told by the program already.
bool FaltaLeer(const app::Programa& programa, std::ostream& err) {
  const std::string motivo = programa.MotivoParaNoImportar();
  if (motivo.empty()) return false;
  if (programa.Ver().fallo_de_base.empty()) err << motivo << "\nNo se importa nada.\n";
  return true;
}

// What was imported into the month before, told. Hours that come twice are paid twice.
bool YaImportado(app::Programa& programa, std::ostream& err) {
  std::string motivo;
  const auto repetidas = programa.Historial().YaImportado(motivo);
  for (const corridas::ImportadaAntes& r : repetidas)
    err << "Aviso: " << informe::EnUnaLinea(corridas::TextoDe(r)) << '\n';
  if (!motivo.empty()) err << "Aviso: " << informe::EnUnaLinea(motivo) << '\n';
  return !repetidas.empty();
}

int ImportarYMostrar(app::Programa& programa, const OpcionesImportar& o, Flujos f) {
  const bool repetido = YaImportado(programa, f.err);
  if (repetido && !o.solo_revisar && !o.repetir) {
    f.err << "No se importa nada. Para importarlo otra vez agregue --repetir.\n";
    return kRepetido;
  }
  const std::vector<std::string> avisos = programa.Importador().Avisos();
  for (const std::string& aviso : avisos) f.err << "Aviso: " << informe::EnUnaLinea(aviso) << '\n';
  // These say nothing against importing: the exit code is the same with them.
  for (const std::string& aviso : programa.Importador().Verosimilitud())
    f.err << "Aviso: " << informe::EnUnaLinea(aviso) << '\n';
  if (FaltaLeer(programa, f.err)) return kEntradaSalida;  // what is told before is read from the base too
  if (!programa.Ver().filas.empty()) programa.Importador().Importar(o.solo_revisar);
  const bool escritos = EscribirArchivos(programa, o, f);
  const int codigo = Mostrar(o, programa, !avisos.empty() || (repetido && o.solo_revisar), f);
  return escritos ? codigo : kEntradaSalida;
}

bool SePuedenEscribir(app::Programa& programa, const OpcionesImportar& o, std::ostream& err) {
  std::vector<std::string> salidas;
  if (!o.informe.empty() && !app::Informes::EsInforme(o.informe)) {
    err << "El informe '" << o.informe << "' tiene que terminar en .csv o .html\n";
    return false;
  }
  if (!o.rechazadas.empty()) salidas = {o.rechazadas, app::Informes::RutaDeMotivos(o.rechazadas)};
  if (!o.informe.empty()) salidas.push_back(o.informe);
  const std::string motivo = programa.Informes().MotivoParaNoEscribir(salidas, {o.ajustes.value_or("")});
  if (!motivo.empty()) err << motivo << '\n';
  return motivo.empty();
}

int CargarY(app::Programa& programa, const OpcionesImportar& o, Flujos f,
            const std::function<int(app::Programa&)>& hacer) {
  if (FaltaLeer(programa, f.err)) return kEntradaSalida;
  if (!SePuedenEscribir(programa, o, f.err)) return kUso;
  if (!ElegirDestino(programa, o, f.err)) return kUso;
  // One load: choosing the other filter brings its own.
  if (o.filtro_texto)
    programa.Archivo().OptFiltro_Click(0);
  else
    programa.Activate();
  if (FaltaLeer(programa, f.err)) return kEntradaSalida;
  switch (programa.Ver().fin_de_carga) {
    case importfile::FinDeCarga::SinArchivo:  // or one that cannot be read
      return base::FileExists(o.archivo) ? kEntradaSalida : kSinArchivo;
    case importfile::FinDeCarga::Completa:
      return hacer(programa);
    default:
      return kArchivoMalo;
  }
}

}  // namespace

int ConArchivoCargado(const OpcionesImportar& o, const std::string& carpeta, const ports::Clock& reloj,
                      Flujos f, const std::function<int(app::Programa&)>& hacer) {
  std::string ajustes;
  if (const int mal = LeerAjustes(o, carpeta, ajustes, f.err); mal != 0) return mal;
  Consola consola(f.err);
  app::Arranque arranque;
  arranque.carpeta = carpeta;
  arranque.ajustes = std::move(ajustes);
  arranque.mes = o.mes;
  arranque.una_transaccion = true;
  arranque.solo_prueba = o.solo_revisar;
  app::Programa programa({consola, consola, reloj, nullptr}, arranque);
  programa.IniciarCon(o.base, o.archivo);
  if (!programa.Sesion().Abierta()) {
    f.err << programa.Ver().motivo_base << '\n';
    return kSinBase;
  }
  const int codigo = CargarY(programa, o, f, hacer);
  programa.Deshacer();
  for (const auto& error : programa.Errores())
    f.err << "Aviso: " << error.where << ": " << error.description << '\n';
  return codigo;
}

int Importar(const OpcionesImportar& o, const std::string& carpeta, const ports::Clock& reloj, Flujos f) {
  return ConArchivoCargado(o, carpeta, reloj, f,
                           [&](app::Programa& programa) { return ImportarYMostrar(programa, o, f); });
}

}  // namespace cli
