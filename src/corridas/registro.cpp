#include "corridas/registro.h"

#include <algorithm>
#include <array>

#include "base/file.h"

namespace corridas {
namespace {

constexpr std::string_view kMarca = "IDMcorr1";
constexpr std::size_t kCabecera = 48;
constexpr std::uint64_t kCerrojo = std::uint64_t{1} << 62U;  // far outside what is written
constexpr int kEsperas = 100, kEspera = 50;                  // milliseconds
constexpr std::uint64_t kTope = std::uint64_t{1} << 40U;     // no record is larger

enum class Tipo : std::uint8_t { Corrida = 'C', Marca = 'M' };

// mark 8 | kind 1 | state 1 | 2 zeros | number 4 | length of the summary 8, of the body 8 | check of the body
// 8, of all before it with the summary 8
struct Cabecera {
  Tipo tipo = Tipo::Corrida;
  EstadoCorrida estado = EstadoCorrida::Pendiente;
  std::uint32_t numero = 0;
  std::uint64_t resumen = 0, cuerpo = 0, suma_cuerpo = 0;
  std::uint64_t Largo() const { return kCabecera + resumen + cuerpo; }
};

std::string Codificada(const Cabecera& c, std::string_view resumen) {
  std::string b(kMarca);
  CodificarEntero(static_cast<std::uint64_t>(c.tipo), 1, b);
  CodificarEntero(static_cast<std::uint64_t>(c.estado), 1, b);
  CodificarEntero(0, 2, b);
  CodificarEntero(c.numero, 4, b);
  CodificarEntero(c.resumen, 8, b);
  CodificarEntero(c.cuerpo, 8, b);
  CodificarEntero(c.suma_cuerpo, 8, b);
  CodificarEntero(Picada(resumen, Picada(b, 0)), 8, b);
  return b;
}

std::string LeerBytes(base::OpenFile& archivo, std::uint64_t desde, std::uint64_t cuantos) {
  std::string bytes(static_cast<std::size_t>(cuantos), '\0');
  bytes.resize(archivo.Read(desde, {reinterpret_cast<std::uint8_t*>(bytes.data()), bytes.size()}));
  return bytes;
}

struct Registrada {
  Cabecera cabecera;
  std::uint64_t comienzo = 0;
  std::string resumen;
};

// The record that begins there, when it is whole but for its body's bytes, which only lie inside the file.
std::optional<Registrada> RegistroEn(base::OpenFile& archivo, std::uint64_t desde, std::uint64_t largo) {
  if (largo - desde < kCabecera) return std::nullopt;
  const std::string bytes = LeerBytes(archivo, desde, kCabecera);
  if (bytes.size() < kCabecera || !bytes.starts_with(kMarca)) return std::nullopt;
  Lector l(std::string_view(bytes).substr(kMarca.size()));
  Registrada r;
  r.comienzo = desde;
  r.cabecera.tipo = static_cast<Tipo>(l.Entero(1));
  r.cabecera.estado = static_cast<EstadoCorrida>(l.Entero(1));
  l.Entero(2);
  r.cabecera.numero = static_cast<std::uint32_t>(l.Entero(4));
  r.cabecera.resumen = l.Entero(8);
  r.cabecera.cuerpo = l.Entero(8);
  r.cabecera.suma_cuerpo = l.Entero(8);
  if (r.cabecera.resumen > kTope || r.cabecera.cuerpo > kTope || r.cabecera.Largo() > largo - desde)
    return std::nullopt;
  r.resumen = LeerBytes(archivo, desde + kCabecera, r.cabecera.resumen);
  if (r.resumen.size() != r.cabecera.resumen || Codificada(r.cabecera, r.resumen) != bytes)
    return std::nullopt;
  return r;
}

std::string CuerpoDe(base::OpenFile& archivo, const Registrada& r) {
  return LeerBytes(archivo, r.comienzo + kCabecera + r.cabecera.resumen, r.cabecera.cuerpo);
}

bool CuerpoEntero(base::OpenFile& archivo, const Registrada& r) {
  const std::string cuerpo = CuerpoDe(archivo, r);
  return cuerpo.size() == r.cabecera.cuerpo && Picada(cuerpo, 0) == r.cabecera.suma_cuerpo;
}

// Whether a whole record begins anywhere from there on: then what stands before it is damaged, not cut off.
bool HayRegistroDesde(base::OpenFile& archivo, std::uint64_t desde, std::uint64_t largo) {
  const std::string resto = LeerBytes(archivo, desde, largo - desde);
  for (std::size_t i = resto.find(kMarca); i != std::string::npos; i = resto.find(kMarca, i + 1))
    if (RegistroEn(archivo, desde + i, largo)) return true;
  return false;
}

struct Contenido {
  std::vector<Registrada> registros;
  std::uint64_t fin = 0;
};

Contenido LeerTodo(base::OpenFile& archivo, const std::string& ruta) {
  Contenido c;
  const std::uint64_t largo = archivo.Length();
  while (c.fin < largo) {
    auto r = RegistroEn(archivo, c.fin, largo);
    // Only the last record can have lost bytes: each of the others was on the disk before the next was begun.
    if (r && r->comienzo + r->cabecera.Largo() == largo && !CuerpoEntero(archivo, *r)) r.reset();
    if (!r) {
      if (HayRegistroDesde(archivo, c.fin + 1, largo))
        throw base::StorageFault("El registro de corridas '" + ruta + "' está dañado en el octeto " +
                                 std::to_string(c.fin) +
                                 ". Guárdelo con otro nombre para empezar uno nuevo.");
      break;
    }
    c.fin += r->cabecera.Largo();
    c.registros.push_back(std::move(*r));
  }
  return c;
}

std::vector<Resumen> ResumenesDe(const Contenido& c) {
  std::vector<Resumen> corridas;
  for (const Registrada& r : c.registros) {
    if (r.cabecera.tipo == Tipo::Corrida) {
      Resumen resumen = DecodificarResumen(r.resumen);
      resumen.numero = r.cabecera.numero;
      resumen.estado = EstadoCorrida::Pendiente;
      corridas.push_back(std::move(resumen));
      continue;
    }
    for (Resumen& resumen : corridas)
      if (resumen.numero == r.cabecera.numero) resumen.estado = r.cabecera.estado;
  }
  VerAnulaciones(corridas);
  return corridas;
}

Corrida CorridaDe(base::OpenFile& archivo, const Contenido& contenido, std::uint32_t numero) {
  for (const Registrada& r : contenido.registros) {
    if (r.cabecera.tipo != Tipo::Corrida || r.cabecera.numero != numero) continue;
    if (!CuerpoEntero(archivo, r))
      throw base::StorageFault("El registro de la corrida " + std::to_string(numero) + " está dañado");
    Corrida c;
    for (Resumen& resumen : ResumenesDe(contenido))
      if (resumen.numero == numero) c.resumen = std::move(resumen);
    DecodificarCuerpo(CuerpoDe(archivo, r), c);
    return c;
  }
  throw base::Error("No hay una corrida " + std::to_string(numero) + " en el registro");
}

}  // namespace

void VerAnulaciones(std::vector<Resumen>& corridas) {
  for (const Resumen& anulacion : corridas) {
    if (anulacion.clase != Clase::Anulacion || anulacion.estado != EstadoCorrida::Hecha) continue;
    for (Resumen& resumen : corridas)
      if (resumen.numero == anulacion.anula) {
        resumen.anulada_por = anulacion.numero;
        resumen.conservadas = anulacion.conservadas;
      }
  }
}

std::vector<Resumen> LeerRegistro(const LugarDelRegistro& lugar) {
  if (!lugar.disco->Exists(lugar.ruta)) return {};
  const auto archivo = lugar.disco->Open(lugar.ruta, base::FileMode::Read);
  return ResumenesDe(LeerTodo(*archivo, lugar.ruta));
}

Corrida LeerCorrida(const LugarDelRegistro& lugar, std::uint32_t numero) {
  const auto archivo = lugar.disco->Open(lugar.ruta, base::FileMode::Read);
  return CorridaDe(*archivo, LeerTodo(*archivo, lugar.ruta), numero);
}

Apunte::Apunte(const LugarDelRegistro& lugar, bool crear) : lugar_(lugar) {
  do {
    if (crear) CrearSiFalta();
    Bloquear();
  } while (!archivo_->IsStillInPlace());  // somebody took an empty one away meanwhile
  Contenido contenido = LeerTodo(*archivo_, lugar_.ruta);
  fin_ = contenido.fin;
  corridas_ = ResumenesDe(contenido);
}

// Two programs cannot come here at once: whoever makes a ledger holds its base.
void Apunte::CrearSiFalta() {
  if (lugar_.disco->Exists(lugar_.ruta)) return;
  if (!lugar_.crear)
    lugar_.disco->Open(lugar_.ruta, base::FileMode::New);
  else if (!lugar_.crear())
    throw base::StorageFault("No se puede crear '" + lugar_.ruta + "'");
  creado_ = true;
  lugar_.disco->SyncFolderOf(lugar_.ruta);
}

Apunte::~Apunte() {
  const auto borrar = [&] {
    return base::AnyErrorNoted("registro de corridas", nullptr, [&] { lugar_.disco->Delete(lugar_.ruta); });
  };
  // While it is held, so that nobody is writing in it; one system deletes no open file.
  const bool falta = borrar_ && !borrar();
  archivo_.reset();
  if (falta) borrar();
}

// On one system another writer keeps the file from being opened, on the other from being locked.
void Apunte::Bloquear() {
  archivo_.reset();
  for (int vez = 0;; ++vez) {
    try {
      if (archivo_ == nullptr) archivo_ = lugar_.disco->Open(lugar_.ruta, base::FileMode::Write);
      if (archivo_->Lock(kCerrojo, 1, true)) return;
    } catch (const base::DiskError& e) {
      if (archivo_ != nullptr && e.Fault() == base::DiskFault::NotSupported)
        return;  // the base has its own locks
      if (e.Fault() != base::DiskFault::InUse) throw;
    }
    if (vez == kEsperas)
      throw base::StorageFault("Otro programa tiene en uso el registro de corridas '" + lugar_.ruta + "'");
    lugar_.disco->Wait(kEspera);
  }
}

// What a crash left behind the last whole record is cut off before anything is added.
void Apunte::Agregar(const std::string& bytes) {
  if (archivo_->Length() != fin_) archivo_->Resize(fin_);
  archivo_->Write(fin_, {reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size()});
  archivo_->Sync();
  fin_ += bytes.size();
}

Corrida Apunte::Leer(std::uint32_t numero) {
  return CorridaDe(*archivo_, LeerTodo(*archivo_, lugar_.ruta), numero);
}

std::uint32_t Apunte::Anotar(Corrida corrida) {
  Cabecera c;
  for (const Resumen& r : corridas_) c.numero = std::max(c.numero, r.numero);
  ++c.numero;
  const std::string resumen = CodificarResumen(corrida.resumen), cuerpo = CodificarCuerpo(corrida);
  c.resumen = resumen.size();
  c.cuerpo = cuerpo.size();
  c.suma_cuerpo = Picada(cuerpo, 0);
  Agregar(Codificada(c, resumen) + resumen + cuerpo);
  corrida.resumen.numero = c.numero;
  corrida.resumen.estado = EstadoCorrida::Pendiente;
  corridas_.push_back(std::move(corrida.resumen));
  return c.numero;
}

void Apunte::Marcar(std::uint32_t numero, EstadoCorrida estado) {
  if (creado_ && estado == EstadoCorrida::NoHecha && corridas_.size() == 1) borrar_ = true;
  Cabecera c;
  c.tipo = Tipo::Marca;
  c.estado = estado;
  c.numero = numero;
  c.suma_cuerpo = Picada({}, 0);
  Agregar(Codificada(c, {}));
  for (Resumen& r : corridas_)
    if (r.numero == numero) r.estado = estado;
}

}  // namespace corridas
