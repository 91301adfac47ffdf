#include "app/base_de_datos.h"

#include <new>
#include <utility>

#include "base/file.h"
#include "base/format.h"
#include "base/sha256.h"
#include "base/text.h"
#include "base/user_name.h"

namespace app {
namespace {

std::string EnCopia(const std::string& motivo) {
  return motivo + "\r\nSe revisa sobre una copia en memoria: nada se escribe en la base.";
}

constexpr const char* kExtensionDelRegistro = ".corridas";

}  // namespace

BaseDeDatos::BaseDeDatos(Contexto& contexto) : c_(contexto), e_(contexto.estado) {
  sesion_.reloj = &c_.puertos.reloj;
  evaluador_.sesion = &sesion_;
  evaluador_.prompts = &c_.puertos.prompts;
  evaluador_.reloj = &c_.puertos.reloj;
}

bool BaseDeDatos::Conectar(const std::string& referencia) {
  if (sesion_.Abierta()) sesion_.conexion->Close();
  Conexion nueva = c_.puertos.conectar(referencia, c_.puertos.reloj);
  sesion_.conexion = std::move(nueva.conexion);
  sesion_.id_Usuario = nueva.id_Usuario;
  e_.archivo_base = std::move(nueva.archivo);
  origen_ = nueva.origen.empty() ? referencia : std::move(nueva.origen);
  e_.motivo_base = std::move(nueva.motivo);
  if (!sesion_.Abierta()) return c_.arranque.solo_prueba && ComenzarEnCopia(referencia, e_.motivo_base);
  if (!c_.arranque.una_transaccion || Comenzar()) return true;
  return c_.arranque.solo_prueba && ComenzarEnCopia(referencia, e_.motivo_base);
}

// What was tried there counts as it would on the base itself. A base that is none, or that cannot be read,
// keeps the reason that it had.
bool BaseDeDatos::ComenzarEnCopia(const std::string& referencia, std::string motivo) {
  Conexion copia = c_.puertos.conectar_copia(referencia, c_.puertos.reloj);
  if (copia.conexion == nullptr ||
      !base::AnyErrorNoted("copia", nullptr, [&] { copia.conexion->BeginTrans(); })) {
    e_.motivo_base = std::move(motivo);
    return false;
  }
  sesion_.conexion = std::move(copia.conexion);
  sesion_.id_Usuario = copia.id_Usuario;
  e_.archivo_base = std::move(copia.archivo);
  e_.motivo_base.clear();
  c_.Avisar(EnCopia(motivo));
  return true;
}

bool BaseDeDatos::Probar(const std::function<void()>& paso, std::string& motivo) {
  motivo.clear();
  db::Connection& conexion = *sesion_.conexion;
  if (conexion.InTransaction() || base::AnyErrorNoted("probar", nullptr, [&] {
        try {
          conexion.BeginTrans();
        } catch (const base::Error& e) {
          motivo = e.Description();
          throw;
        }
      })) {
    paso();
    return true;
  }
  Conexion copia = c_.puertos.conectar_copia(e_.referencia, c_.puertos.reloj);
  if (copia.conexion == nullptr) return false;
  c_.Avisar(EnCopia(motivo));
  std::swap(sesion_.conexion, copia.conexion);
  try {
    paso();
  } catch (const std::exception&) {
    std::swap(sesion_.conexion, copia.conexion);
    throw;
  }
  std::swap(sesion_.conexion, copia.conexion);
  return true;
}

std::string BaseDeDatos::Cambiar(const std::string& referencia) {
  const bool misma = referencia == e_.referencia;
  if (misma && sesion_.Abierta()) sesion_.conexion->Close();  // its own lock would stand in the way
  Conexion nueva = c_.puertos.conectar(referencia, c_.puertos.reloj);
  if (nueva.conexion == nullptr || !nueva.conexion->IsOpen()) {
    if (nueva.motivo.empty()) nueva.motivo = "No se puede abrir.";
    if (misma) e_.motivo_base = nueva.motivo;
    return nueva.motivo;
  }
  if (sesion_.Abierta()) sesion_.conexion->Close();
  sesion_.conexion = std::move(nueva.conexion);
  sesion_.id_Usuario = nueva.id_Usuario;
  e_.archivo_base = std::move(nueva.archivo);
  origen_ = nueva.origen.empty() ? referencia : std::move(nueva.origen);
  sesion_.idEmpresa = 0;
  sesion_.TipoConstruccion = sesion_.LiqAgrup = false;
  e_.motivo_base.clear();
  return {};
}

// Without its transaction the start-up itself would be written for good: the base then counts as not opened.
bool BaseDeDatos::Comenzar() {
  try {
    sesion_.conexion->BeginTrans();
    return true;
  } catch (const base::Error& e) {
    e_.motivo_base = e.Description();
    sesion_.conexion.reset();
    return false;
  }
}

// Without the company every statement of an import would run on company 0, which is nobody's: an empty table
// and a field that is no value of its kind are read no better than a missing table.
void BaseDeDatos::LeerEmpresa() {
  sesion_.TipoConstruccion = false;
  sesion_.LiqAgrup = false;
  e_.motivo_empresa.clear();
  const auto paso = [&](const char* donde, const std::function<void()>& leer) {
    return base::PassOverError(donde, &c_.errores, [&] {
      try {
        leer();
      } catch (const base::Error& e) {
        if (e_.motivo_empresa.empty()) e_.motivo_empresa = e.Description();
        throw;
      }
    });
  };
  db::Recordset rs;
  const bool hay = paso("Conectar: empresa", [&] {
    rs = sesion_.conexion->Execute("Select TipoConstruccion, LiqAgrup, idEmpresa From Empresa");
    if (rs.IsEmpty()) throw db::Error("La tabla Empresa no tiene ninguna fila.");
  });
  if (!hay) return;
  // Several companies: always the first row of this unordered query. One field that cannot be read does not
  // take the others along.
  paso("Conectar: TipoConstruccion", [&] { sesion_.TipoConstruccion = rs.At(0, 0).Boolean(); });
  paso("Conectar: LiqAgrup", [&] { sesion_.LiqAgrup = rs.At(1, 0).Boolean(); });
  paso("Conectar: idEmpresa", [&] { sesion_.idEmpresa = rs.At(2, 0).Integer(); });
}

bool BaseDeDatos::ConLaBase(const std::function<void()>& paso) {
  try {
    paso();
    return true;
  } catch (const base::Error& e) {
    FalloLaBase(e.Description());
  } catch (const std::bad_alloc&) {
    FalloLaBase("No hay memoria suficiente.");
  }
  return false;
}

// One fault often brings others: the first is told.
void BaseDeDatos::FalloLaBase(std::string motivo) {
  e_.grilla_a_medias = true;
  if (!e_.fallo_de_base.empty()) return;
  e_.fallo_de_base = std::move(motivo);
  std::string aviso = "Falló la base: " + e_.fallo_de_base;
  aviso += base::kCrLf;
  c_.Avisar(aviso += "No se importa nada hasta volver a leerla entera.");
  c_.Cambio();
}

std::string BaseDeDatos::MotivoDeLectura() const {
  if (!e_.fallo_de_base.empty()) return "Falló la base: " + e_.fallo_de_base;
  const std::pair<const char*, const std::string&> lecturas[] = {
      {"la fila de la empresa", e_.motivo_empresa},
      {"la lista de tipos de liquidación", e_.tipos.motivo_fallo},
      {"la lista de tablas de usuario", e_.motivo_tablas},
      {"la lista de contratos del mes", e_.personas.motivo_fallo},
      {"la lista de conceptos", e_.conceptos.motivo_fallo},
      {"la lista de relaciones", e_.relaciones.motivo_fallo}};
  for (const auto& [que, motivo] : lecturas)
    if (!motivo.empty()) return std::string("No se pudo leer ") + que + ": " + motivo;
  return {};
}

std::string BaseDeDatos::MotivoParaNoImportar() const {
  if (!sesion_.Abierta()) return "La Base no está Abierta";
  std::string motivo = MotivoDeLectura();
  if (motivo.empty() && e_.grilla_a_medias)
    motivo = "La grilla se cargó cuando la base no se podía leer entera, y hay que cargarla de nuevo.";
  return motivo;
}

void BaseDeDatos::Deshacer() {
  if (sesion_.conexion != nullptr && sesion_.conexion->InTransaction())
    base::AnyErrorNoted("deshacer", nullptr, [&] { sesion_.conexion->RollbackTrans(); });
}

corridas::LugarDelRegistro BaseDeDatos::LugarDelRegistro() {
  corridas::LugarDelRegistro lugar;
  lugar.disco = c_.puertos.disco != nullptr ? c_.puertos.disco : &disco_;
  const std::string base = e_.archivo_base.empty() ? std::string() : lugar.disco->RealPath(e_.archivo_base);
  lugar.ruta = base.empty()
                   ? base::JoinPath(c_.arranque.carpeta, "base-" + base::Sha256(origen_).substr(0, 16))
                   : base;
  lugar.ruta += kExtensionDelRegistro;
  if (c_.puertos.disco == nullptr)
    lugar.crear = [ruta = lugar.ruta, base] { return base::WritePrivateFile(ruta, {}, base); };
  return lugar;
}

corridas::Resumen BaseDeDatos::CorridaNueva() const {
  corridas::Resumen r;
  r.momento = base::FormatDate(c_.puertos.reloj.Now(), "yyyy-MM-dd hh:nn:ss");
  r.usuario_sistema = c_.arranque.usuario ? *c_.arranque.usuario : base::UserName();
  r.id_Usuario = sesion_.id_Usuario;
  r.idEmpresa = sesion_.idEmpresa;
  return r;
}

void BaseDeDatos::ProbarEscritura() {
  if (e_.solo_lectura.empty() || !sesion_.Abierta() || sesion_.conexion->InTransaction()) return;
  const bool si =
      base::AnyErrorNoted("probar la escritura", nullptr, [&] { sesion_.conexion->BeginTrans(); });
  if (si) Deshacer();
  VerSoloLectura();
}

std::string BaseDeDatos::MotivoSinEmpresa() const {
  if (!e_.motivo_empresa.empty()) return "No se pudo leer la fila de la empresa: " + e_.motivo_empresa;
  if (NombraBaseDeLaEmpresa(e_.referencia)) return {};
  return "La base no tiene empresa: su nombre no es Personal.mdb, Proyec.mdb ni ConfBase.cfg.";
}

void BaseDeDatos::VerSoloLectura() { e_.solo_lectura = MotivoSoloLectura(sesion_.conexion.get()); }

bool NombraBaseDeLaEmpresa(std::string_view referencia) {
  for (const char* nombre : {"Personal.mdb", "Proyec.mdb", "ConfBase.cfg"})
    if (base::Contains(referencia, nombre, base::Compare::IgnoringCase)) return true;
  return false;
}

}  // namespace app
