#include "mdb/pages/journal.h"

#include <algorithm>
#include <array>

#include "mdb/pages/lock.h"

namespace mdb {
namespace {

constexpr std::array<std::uint8_t, 8> kMagia{'I', 'D', 'M', 'D', 'I', 'A', 'R', 0x1A};
constexpr std::array<std::uint8_t, 8> kFin{'I', 'D', 'M', 'F', 'I', 'N', '!', 0x1A};
constexpr std::uint32_t kVersion = 1;
constexpr std::size_t kCabecera = 64, kCierre = 24, kPrincipio = 16;
// The least that a disk writes whole: a page cut by a lost current is old and new by such pieces.
constexpr std::size_t kSector = 512;
constexpr std::size_t kTramo = std::size_t{1} << 18;

std::size_t Sectores(const DatosDeDiario& d) { return d.tamano_pagina / kSector; }
std::size_t LargoDeRegistro(const DatosDeDiario& d) { return kPrincipio + 4 * Sectores(d) + d.tamano_pagina; }
std::uint64_t LargoDeDiario(const DatosDeDiario& d) {
  return kCabecera + d.cantidad * static_cast<std::uint64_t>(LargoDeRegistro(d)) + kCierre;
}
std::uint32_t SumaDeSector(Vista sector) { return static_cast<std::uint32_t>(Suma(sector)); }

Bytes Cabecera(const DatosDeDiario& d) {
  Bytes b(kMagia.begin(), kMagia.end());
  Agregar32(b, kVersion);
  Agregar32(b, d.tamano_pagina);
  Agregar32(b, d.antes);
  Agregar32(b, d.despues);
  Agregar32(b, d.cantidad);
  Agregar32(b, 0);
  Agregar64(b, d.marca);
  Agregar64(b, d.suma_primera);
  Agregar64(b, static_cast<std::uint64_t>(d.fecha));
  Agregar64(b, Suma(b));
  return b;
}

// The sum of a record: of all but the place it stands in.
std::uint64_t SumaDeRegistro(const DatosDeDiario& d, Vista registro) {
  return Suma(registro.subspan(kPrincipio), Suma(registro.first(8), d.marca));
}

// It vouches for itself first, so that an end torn while it was written is told from damage before it.
Bytes Cierre(const DatosDeDiario& d, std::uint64_t suma) {
  Bytes b(kFin.begin(), kFin.end());
  Agregar64(b, suma);
  Agregar64(b, Suma(b, d.marca));
  return b;
}

std::size_t LeerEn(base::ArchivoAbierto& archivo, std::uint64_t pos, Bytes& bytes) {
  return archivo.Leer(pos, bytes);
}

const char* const kOtraBase =
    "Junto a la base quedó el diario de una escritura cortada (archivo terminado en -diario), pero la base "
    "no es "
    "la que ese diario conoce: la reemplazaron o la cambió otro programa después. No se tocó ninguno de los "
    "dos. "
    "Si puso una copia de respaldo en su lugar, mueva el diario a otra carpeta y vuelva a abrir";

}  // namespace

std::string RutaDeDiario(std::string_view ruta_de_base) { return std::string(ruta_de_base) + "-diario"; }

std::uint64_t Suma(Vista bytes, std::uint64_t desde) {
  constexpr std::uint64_t kPrimo = 0x9E3779B97F4A7C15;
  std::uint64_t h = desde ^ (kPrimo + bytes.size());
  const auto mezclar = [&h](std::uint64_t palabra) {
    h = (h ^ palabra) * kPrimo;
    h ^= h >> 32;
  };
  std::size_t i = 0;
  for (; i + 8 <= bytes.size(); i += 8) {
    std::uint64_t palabra = 0;
    for (std::size_t k = 0; k < 8; ++k) palabra |= static_cast<std::uint64_t>(bytes[i + k]) << (8 * k);
    mezclar(palabra);
  }
  std::uint64_t resto = 0;
  for (std::size_t k = 0; i + k < bytes.size(); ++k)
    resto |= static_cast<std::uint64_t>(bytes[i + k]) << (8 * k);
  mezclar(resto);
  return h;
}

EscritorDeDiario::EscritorDeDiario(base::Disco& disco, std::string_view ruta_de_base,
                                   const DatosDeDiario& datos)
    : disco_(disco),
      ruta_(RutaDeDiario(ruta_de_base)),
      archivo_(disco.Abrir(ruta_, base::ModoArchivo::Nuevo)),
      datos_(datos),
      suma_(datos.marca),
      tramo_(Cabecera(datos)) {
  // Nobody else can have a file locked that was created a moment ago.
  archivo_->Bloquear(kByteEscritor, 1, true);
}

void EscritorDeDiario::Agregar(NumPagina numero, Vista antes, Vista despues) {
  const std::size_t principio = tramo_.size();
  Agregar32(tramo_, numero);
  Agregar32(tramo_, 0);
  Agregar64(tramo_, 0);
  for (std::size_t s = 0; s < datos_.tamano_pagina; s += kSector)
    Agregar32(tramo_, SumaDeSector(Trozo(despues, s, kSector)));
  AgregarBytes(tramo_, Trozo(antes, 0, datos_.tamano_pagina));
  const std::uint64_t suma = SumaDeRegistro(datos_, Vista(tramo_).subspan(principio));
  Poner64(tramo_, principio + 8, suma);
  suma_ = Suma(Vista(tramo_).subspan(principio + 8, 8), suma_);
  if (tramo_.size() >= kTramo) Vaciar();
}

void EscritorDeDiario::Vaciar() {
  archivo_->Escribir(pos_, tramo_);
  pos_ += tramo_.size();
  tramo_.clear();
}

void EscritorDeDiario::Sellar() {
  // The end goes last and by itself: where it stands, all before it is on the disk.
  Vaciar();
  archivo_->Sincronizar();
  tramo_ = Cierre(datos_, suma_);
  Vaciar();
  archivo_->Sincronizar();
  disco_.SincronizarCarpetaDe(ruta_);
}

void EscritorDeDiario::Quitar() {
  if (!base::AnyErrorNoted("EscritorDeDiario::Quitar", nullptr, [&] { disco_.Borrar(ruta_); })) {
    archivo_->CambiarLargo(0);
    archivo_->Sincronizar();
  }
  archivo_.reset();
  // The commit cannot be taken back any more; should the name come up again after a lost current, the base is
  // rolled back whole.
  base::AnyErrorNoted("EscritorDeDiario::Quitar", nullptr, [&] { disco_.SincronizarCarpetaDe(ruta_); });
}

LectorDeDiario::LectorDeDiario(base::Disco& disco, std::string_view ruta_de_base)
    : disco_(disco), ruta_(RutaDeDiario(ruta_de_base)) {
  if (!disco_.Existe(ruta_)) return;
  try {
    archivo_ = disco_.Abrir(ruta_, base::ModoArchivo::Lectura);
  } catch (const base::ErrorDeDisco& e) {
    if (e.Falla() == base::FallaDisco::NoExiste) return;
    throw;
  }
  Examinar();
}

void LectorDeDiario::Examinar() {
  try {
    if (archivo_->PrimerBloqueado(kByteEscritor, 1)) {
      estado_ = Estado::Vivo;
      return;
    }
  } catch (const base::ErrorDeDisco& e) {
    if (e.Falla() != base::FallaDisco::NoAdmitido) throw;
  }
  estado_ = Estado::Incompleto;
  Bytes b(kCabecera);
  if (LeerEn(*archivo_, 0, b) < b.size()) return;
  if (!std::equal(kMagia.begin(), kMagia.end(), b.begin()) || U64(b, 56) != Suma(Vista(b).first(56))) return;
  if (U32(b, 8) != kVersion) {
    estado_ = Estado::Danado;
    motivo_ = "lo dejó otra versión del programa: abra la base con esa";
    return;
  }
  datos_ = {U32(b, 12), U32(b, 16), U32(b, 20), U32(b, 24), U64(b, 32), U64(b, 40), I64(b, 48)};
  if (datos_.tamano_pagina != 4096 && datos_.tamano_pagina != 2048) return;
  // Also what keeps a false count from asking for more memory than the file has bytes.
  if (archivo_->Largo() < LargoDeDiario(datos_)) return;
  Bytes fin(kCierre);
  if (LeerEn(*archivo_, LargoDeDiario(datos_) - kCierre, fin) < fin.size()) return;
  if (fin != Cierre(datos_, U64(fin, 8))) return;
  const bool bien = ExaminarRegistros(U64(fin, 8));
  estado_ = bien ? Estado::Completo : Estado::Danado;
  if (!bien) motivo_ = "está dañado";
}

bool LectorDeDiario::ExaminarRegistros(std::uint64_t suma_final) {
  Bytes registro(LargoDeRegistro(datos_));
  std::uint64_t pos = kCabecera, suma = datos_.marca;
  for (std::uint32_t i = 0; i < datos_.cantidad; ++i, pos += registro.size()) {
    if (LeerEn(*archivo_, pos, registro) < registro.size()) return false;
    if (U64(registro, 8) != SumaDeRegistro(datos_, registro)) return false;
    if (U32(registro, 0) >= datos_.antes || !lugares_.emplace(U32(registro, 0), pos).second) return false;
    suma = Suma(Vista(registro).subspan(8, 8), suma);
  }
  return suma == suma_final;
}

Bytes LectorDeDiario::Registro(base::ArchivoAbierto& archivo, NumPagina numero, std::uint64_t pos) const {
  Bytes registro(LargoDeRegistro(datos_));
  if (LeerEn(archivo, pos, registro) < registro.size() || U32(registro, 0) != numero ||
      U64(registro, 8) != SumaDeRegistro(datos_, registro))
    throw base::StorageFault("El diario de la base cambió o está dañado: cierre la base y vuelva a abrirla");
  return registro;
}

Bytes LectorDeDiario::Imagen(NumPagina numero) const {
  const auto lugar = lugares_.find(numero);
  if (lugar == lugares_.end()) throw base::StorageFault("El diario de la base no tiene esa página");
  std::unique_ptr<base::ArchivoAbierto> otra;
  if (archivo_ == nullptr) otra = disco_.Abrir(ruta_, base::ModoArchivo::Lectura);
  Bytes registro = Registro(archivo_ != nullptr ? *archivo_ : *otra, numero, lugar->second);
  registro.erase(registro.begin(),
                 registro.begin() + static_cast<std::ptrdiff_t>(registro.size() - datos_.tamano_pagina));
  return registro;
}

void LectorDeDiario::CompararPagina(base::ArchivoAbierto& archivo, NumPagina numero,
                                    std::uint64_t pos) const {
  const Bytes registro = Registro(*archivo_, numero, pos);
  const Vista antes = Vista(registro).last(datos_.tamano_pagina);
  Bytes ahora(datos_.tamano_pagina);
  if (LeerEn(archivo, static_cast<std::uint64_t>(numero) * datos_.tamano_pagina, ahora) < ahora.size())
    throw base::StorageFault(kOtraBase);
  for (std::size_t s = 0; s < Sectores(datos_); ++s) {
    const Vista sector = Vista(ahora).subspan(s * kSector, kSector);
    const Vista viejo = antes.subspan(s * kSector, kSector);
    if (!std::equal(sector.begin(), sector.end(), viejo.begin()) &&
        SumaDeSector(sector) != U32(registro, kPrincipio + 4 * s))
      throw base::StorageFault(kOtraBase);
  }
}

void LectorDeDiario::CompararCon(base::ArchivoAbierto& archivo) const {
  const std::uint64_t largo = archivo.Largo(), tamano = datos_.tamano_pagina;
  if (largo < datos_.antes * tamano || largo > std::max(datos_.antes, datos_.despues) * tamano)
    throw base::StorageFault(kOtraBase);
  if (!Tiene(0)) {
    Bytes primera(datos_.tamano_pagina);
    if (LeerEn(archivo, 0, primera) < primera.size() || Suma(primera) != datos_.suma_primera)
      throw base::StorageFault(kOtraBase);
  }
  for (const auto& [numero, pos] : lugares_) CompararPagina(archivo, numero, pos);
}

void LectorDeDiario::Restaurar(base::ArchivoAbierto& archivo) const {
  for (const auto& [numero, pos] : lugares_) {
    const Bytes registro = Registro(*archivo_, numero, pos);
    archivo.Escribir(static_cast<std::uint64_t>(numero) * datos_.tamano_pagina,
                     Vista(registro).last(datos_.tamano_pagina));
  }
  archivo.CambiarLargo(static_cast<std::uint64_t>(datos_.antes) * datos_.tamano_pagina);
  base::AnyErrorNoted("LectorDeDiario::Restaurar", nullptr, [&] { archivo.PonerFecha(datos_.fecha); });
  archivo.Sincronizar();
}

void LectorDeDiario::Quitar() {
  archivo_.reset();
  disco_.Borrar(ruta_);
  disco_.SincronizarCarpetaDe(ruta_);
}

}  // namespace mdb
