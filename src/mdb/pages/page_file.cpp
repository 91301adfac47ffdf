#include "mdb/pages/page_file.h"

#include <algorithm>

#include "base/file.h"
#include "mdb/pages/lock.h"

namespace mdb {
namespace {

// Pages read at once by whoever goes on reading behind the last ones.
constexpr NumPagina kDeCorrido = 32;

const char* const kComoEstaba = "No se pudo guardar en la base, que quedó como estaba. ";

void BorrarDiarioIncompleto(base::Disco& disco, const std::string& ruta) {
  LectorDeDiario viejo(disco, ruta);
  if (viejo.Cual() == LectorDeDiario::Estado::NoHay) return;
  if (viejo.Cual() != LectorDeDiario::Estado::Incompleto)
    throw base::StorageFault(
        "hay un diario de otra escritura junto a la base: cierre la base y vuelva a abrirla");
  viejo.Quitar();
}

}  // namespace

PaginasDeArchivo::PaginasDeArchivo(Cabecera cabecera, NumPagina cantidad, Abierto abierto)
    : Paginas(std::move(cabecera), cantidad), a_(std::move(abierto)) {
  PonerSoloLectura(a_.cause, a_.motivo);
}

Bytes PaginasDeArchivo::Traer(NumPagina numero) {
  if (!rota_.empty()) throw base::StorageFault(rota_);
  if (numero < tramo_desde_ || numero - tramo_desde_ >= tramo_cantidad_) {
    // The pages of a table have those of its indexes between them.
    const NumPagina fin = tramo_desde_ + tramo_cantidad_;
    const bool de_corrido = numero >= fin && numero - fin < kDeCorrido;
    LeerTramo(numero, de_corrido ? std::min<NumPagina>(kDeCorrido, PaginasEnDisco() - numero) : 1);
  }
  const Vista guardada = Vista(tramo_).subspan((numero - tramo_desde_) * Tamano(), Tamano());
  Bytes plana(guardada.begin(), guardada.end());
  CifrarPagina(Cab(), numero, plana);
  return plana;
}

bool PaginasDeArchivo::CambioAfuera() const {
  // One that was put in the file's place leaves the opened one as it was: its pages may still be read.
  return !a_.motivo.empty() && (OtroEstado() || !a_.archivo->SigueEnSuLugar());
}

bool PaginasDeArchivo::OtroEstado() const {
  return a_.archivo->Fecha() != a_.fecha || a_.archivo->Largo() != a_.largo;
}

NumPagina PaginasDeArchivo::PaginasEnDisco() const {
  const auto tamano = static_cast<std::uint64_t>(Tamano());
  return a_.capa ? a_.capa->Datos().antes : static_cast<NumPagina>(a_.largo / tamano);
}

void PaginasDeArchivo::LeerTramo(NumPagina primera, NumPagina cantidad) {
  const bool lector = !a_.motivo.empty();
  tramo_cantidad_ = 0;
  tramo_.resize(cantidad * Tamano());
  // The writer reads what nobody else may change.
  const BloqueoDeCommit bloqueo(*a_.disco, *a_.archivo, false, lector && a_.hay_bloqueos);
  const std::size_t leidos = a_.archivo->Leer(static_cast<std::uint64_t>(primera) * Tamano(), tramo_);
  if (lector && OtroEstado()) throw ArchivoCambio();
  if (leidos < tramo_.size()) DanioEnPagina(primera, "no se pudo leer entera");
  if (a_.capa) PonerCapa(primera, cantidad);
  tramo_desde_ = primera;
  tramo_cantidad_ = cantidad;
}

void PaginasDeArchivo::PonerCapa(NumPagina primera, NumPagina cantidad) {
  if (!a_.disco->Existe(RutaDeDiario(a_.ruta))) {
    // Rolled back meanwhile, and with the same date: not a byte of it had been written.
    a_.capa.reset();
    return;
  }
  for (NumPagina i = 0; i < cantidad; ++i)
    if (a_.capa->Tiene(primera + i)) PonerBytes(tramo_, i * Tamano(), a_.capa->Imagen(primera + i));
}

Bytes PaginasDeArchivo::Guardada(const Cambio& cambio) const {
  Bytes bytes = *cambio.plana;
  CifrarPagina(Cab(), cambio.numero, bytes);
  return bytes;
}

// The pages whose bytes differ from those on the disk, in their order.
std::vector<PaginasDeArchivo::Cambio> PaginasDeArchivo::Reunir(const Cambiadas& cambiadas, NumPagina antes) {
  std::vector<Cambio> cambios;
  cambios.reserve(cambiadas.size());
  for (const auto& [numero, plana] : cambiadas) cambios.push_back({numero, plana.get(), {}});
  std::sort(cambios.begin(), cambios.end(), [](const auto& a, const auto& b) { return a.numero < b.numero; });
  for (auto& c : cambios) {
    if (c.numero >= antes) continue;
    c.antes.resize(Tamano());
    if (a_.archivo->Leer(static_cast<std::uint64_t>(c.numero) * Tamano(), c.antes) < Tamano())
      DanioEnPagina(c.numero, "no se pudo leer entera");
  }
  std::erase_if(cambios, [this](const Cambio& c) { return !c.antes.empty() && c.antes == Guardada(c); });
  return cambios;
}

// Whether the file is still the one that was opened, as it was left.
void PaginasDeArchivo::Comprobar() {
  if (!a_.archivo->SigueEnSuLugar())
    throw base::StorageFault("No se guardó nada: otro programa puso otro archivo en el lugar de la base");
  if (OtroEstado())
    throw base::StorageFault(
        "No se guardó nada: otro programa cambió la base desde que se abrió. Ábrala de nuevo");
  // One that keeps pages in its memory would write old ones over the new.
  const std::string quien = QuienLaTieneAbierta(*a_.disco, a_.ruta);
  if (!quien.empty()) throw base::StorageFault("No se guardó nada en la base: " + quien);
}

void PaginasDeArchivo::Volcar(const Cambiadas& cambiadas, NumPagina antes, NumPagina cantidad) {
  if (!rota_.empty()) throw base::StorageFault(rota_);
  const std::vector<Cambio> cambios = Reunir(cambiadas, antes);
  if (cambios.empty() && antes == cantidad) return;
  const BloqueoDeCommit bloqueo(*a_.disco, *a_.archivo, true);
  Comprobar();
  EscritorDeDiario diario = EscribirDiario(cambios, DatosDelDiario(cambios, antes, cantidad));
  std::int64_t date = 0;
  try {
    base::MemoryAsFault([&] {
      EscribirPaginas(cambios, cantidad);
      date = a_.archivo->Fecha();  // without its journal the commit cannot be taken back
      diario.Quitar();
    });
  } catch (const base::Error& e) {
    VolverAtras(cambios, antes, diario, e.Descripcion());
  }
  tramo_cantidad_ = 0;
  a_.fecha = date;
  a_.largo = static_cast<std::uint64_t>(cantidad) * Tamano();
}

DatosDeDiario PaginasDeArchivo::DatosDelDiario(const std::vector<Cambio>& cambios, NumPagina antes,
                                               NumPagina cantidad) {
  DatosDeDiario datos;
  datos.tamano_pagina = static_cast<std::uint32_t>(Tamano());
  datos.antes = antes;
  datos.despues = cantidad;
  datos.cantidad = static_cast<std::uint32_t>(
      std::count_if(cambios.begin(), cambios.end(), [](const Cambio& c) { return !c.antes.empty(); }));
  Bytes primera(Tamano());
  if (a_.archivo->Leer(0, primera) < primera.size()) DanioEnPagina(0, "no se pudo leer entera");
  datos.suma_primera = Suma(primera);
  datos.fecha = a_.fecha;
  Bytes momento;
  Agregar64(momento, static_cast<std::uint64_t>(a_.disco->Ahora()));
  datos.marca = Suma(momento, datos.suma_primera);
  return datos;
}

EscritorDeDiario PaginasDeArchivo::EscribirDiario(const std::vector<Cambio>& cambios,
                                                  const DatosDeDiario& datos) {
  std::optional<EscritorDeDiario> diario;
  try {
    base::MemoryAsFault([&] {
      BorrarDiarioIncompleto(*a_.disco, a_.ruta);
      diario.emplace(*a_.disco, a_.ruta, datos);
      for (const auto& c : cambios)
        if (!c.antes.empty()) diario->Agregar(c.numero, c.antes, Guardada(c));
      diario->Sellar();
    });
  } catch (const base::Error& e) {
    if (diario) base::AnyErrorNoted("Volcar: diario", nullptr, [&] { diario->Quitar(); });
    throw base::StorageFault(kComoEstaba + e.Descripcion());
  }
  return std::move(*diario);
}

void PaginasDeArchivo::EscribirPaginas(const std::vector<Cambio>& cambios, NumPagina cantidad) {
  for (const auto& c : cambios)
    a_.archivo->Escribir(static_cast<std::uint64_t>(c.numero) * Tamano(), Guardada(c));
  const std::uint64_t largo = static_cast<std::uint64_t>(cantidad) * Tamano();
  if (a_.archivo->Largo() != largo) a_.archivo->CambiarLargo(largo);
  FecharCommit();
  a_.archivo->Sincronizar();
}

// A commit is told from the one before by its date, also when both fall in one tick of the disk's clock.
void PaginasDeArchivo::FecharCommit() {
  const std::int64_t us = a_.disco->Microsegundo();
  std::int64_t fecha = std::max(a_.disco->Ahora(), a_.fecha + us);
  for (const std::int64_t paso : {std::int64_t{0}, 10'000 * us, 2'000'000 * us}) {
    const bool bien =
        base::AnyErrorNoted("Volcar: fecha", nullptr, [&] { a_.archivo->PonerFecha(fecha + paso); });
    if (!bien || a_.archivo->Fecha() > a_.fecha) return;
  }
}

void PaginasDeArchivo::VolverAtras(const std::vector<Cambio>& cambios, NumPagina antes,
                                   EscritorDeDiario& diario, const std::string& motivo) {
  try {
    for (const auto& c : cambios)
      if (!c.antes.empty()) a_.archivo->Escribir(static_cast<std::uint64_t>(c.numero) * Tamano(), c.antes);
    a_.archivo->CambiarLargo(static_cast<std::uint64_t>(antes) * Tamano());
    base::AnyErrorNoted("VolverAtras: fecha", nullptr, [&] { a_.archivo->PonerFecha(a_.fecha); });
    a_.archivo->Sincronizar();
    diario.Quitar();
  } catch (const base::Error& e) {
    rota_ = "La base quedó a medio escribir. " + motivo +
            ". Tampoco se la pudo volver atrás: " + e.Descripcion() + ". No borre " +
            base::NombreDe(RutaDeDiario(a_.ruta)) + ": al abrir la base de nuevo se restablece con él";
    PonerSoloLectura(ReadOnlyCause::Broken, rota_);
    throw base::StorageFault(rota_);
  }
  // The same bytes with the same date: whoever reads them goes on. Where the date could not be set, not.
  a_.fecha = a_.archivo->Fecha();
  throw base::StorageFault(kComoEstaba + motivo);
}

}  // namespace mdb
