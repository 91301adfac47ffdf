// Opening a file: who may write, what a cut commit left, what kind of file it is.
#include "base/file.h"
#include "mdb/pages/lock.h"
#include "mdb/pages/page_file.h"

namespace mdb {

using Estado = LectorDeDiario::Estado;

class Apertura {
 public:
  Apertura(std::string_view ruta, std::shared_ptr<base::Disco> disco) {
    a_.disco = disco != nullptr ? std::move(disco) : std::make_shared<base::DiscoDelSistema>();
    a_.ruta = a_.disco->RutaReal(ruta);
  }

  std::unique_ptr<PaginasDeArchivo> Hacer(bool solo_lectura) {
    const bool hay_diario = a_.disco->Existe(RutaDeDiario(a_.ruta));
    if (!solo_lectura || hay_diario) AbrirParaEscribir();
    if (a_.archivo != nullptr) {
      RestablecerEnDisco();
      LeerPrimera();
      MirarFormato();
    }
    if (solo_lectura) Refuse(ReadOnlyCause::Asked, "La base se abrió solo para leer");
    if (!a_.motivo.empty()) AbrirParaLeer();
    const std::uint64_t paginas = a_.capa ? a_.capa->Datos().antes : a_.largo / cabecera_.tamano_pagina;
    return std::unique_ptr<PaginasDeArchivo>(
        new PaginasDeArchivo(cabecera_, static_cast<NumPagina>(paginas), std::move(a_)));
  }

 private:
  static constexpr const char* kCannot = "No se puede escribir en la base: ";
  static constexpr const char* kInUse = "Otro programa tiene abierta la base";

  void Refuse(ReadOnlyCause cause, std::string text) {
    a_.cause = cause;
    a_.motivo = std::move(text);
  }

  // Leaves the file open with the writer's lock, or closed with the reason why it cannot be had.
  void AbrirParaEscribir() {
    try {
      a_.archivo = a_.disco->Abrir(a_.ruta, base::ModoArchivo::Escritura);
      if (!BloquearEscritor(*a_.disco, *a_.archivo)) Refuse(ReadOnlyCause::InUse, kInUse);
    } catch (const base::ErrorDeDisco& e) {
      RefuseFor(e);
    }
    if (a_.motivo.empty() || en_uso_) {
      const std::string quien = QuienLaTieneAbierta(*a_.disco, a_.ruta);
      if (!quien.empty()) Refuse(ReadOnlyCause::Denied, kCannot + quien);
    }
    if (a_.motivo.empty() && !a_.disco->CarpetaAdmiteNuevos(a_.ruta))
      Refuse(ReadOnlyCause::Denied,
             std::string(kCannot) + "no hay permiso para crear archivos en su carpeta");
    if (!a_.motivo.empty()) a_.archivo.reset();
  }

  void RefuseFor(const base::ErrorDeDisco& e) {
    switch (e.Falla()) {
      case base::FallaDisco::SinPermiso:
        return Refuse(ReadOnlyCause::Denied,
                      std::string(kCannot) + "su archivo es de solo lectura, o no hay permiso");
      case base::FallaDisco::SoloLectura:
        return Refuse(ReadOnlyCause::Denied, std::string(kCannot) + "su disco es de solo lectura");
      case base::FallaDisco::EnUso:
        en_uso_ = true;
        return Refuse(ReadOnlyCause::InUse, kInUse);
      case base::FallaDisco::NoAdmitido:
        return Refuse(ReadOnlyCause::Denied, std::string(kCannot) + "su disco no permite bloquear archivos");
      default:
        throw;
    }
  }

  void RestablecerEnDisco() {
    const BloqueoDeCommit bloqueo(*a_.disco, *a_.archivo, true);
    LectorDeDiario diario(*a_.disco, a_.ruta);
    if (diario.Cual() == Estado::NoHay) return;
    NegarDiario(diario);
    if (diario.Cual() == Estado::Completo) {
      diario.CompararCon(*a_.archivo);
      diario.Restaurar(*a_.archivo);
    }
    diario.Quitar();
  }

  static void NegarDiario(const LectorDeDiario& diario) {
    if (diario.Cual() == Estado::Danado)
      throw base::StorageFault("Junto a la base quedó el diario de una escritura cortada, y " +
                               diario.Motivo() + ". La base puede estar a medio escribir: no se la abre");
    // The writer has the lock of a base, and here we have it or read under it: of another one.
    if (diario.Cual() == Estado::Vivo)
      throw base::StorageFault("Otro programa escribe en la base, pero en su lugar hay otro archivo");
  }

  void AbrirParaLeer() {
    a_.archivo = a_.disco->Abrir(a_.ruta, base::ModoArchivo::Lectura);
    a_.hay_bloqueos = AdmiteBloqueos();
    const BloqueoDeCommit bloqueo(*a_.disco, *a_.archivo, false, a_.hay_bloqueos);
    LectorDeDiario diario(*a_.disco, a_.ruta);
    NegarDiario(diario);
    if (diario.Cual() == Estado::Completo) {
      diario.CompararCon(*a_.archivo);
      a_.capa.emplace(std::move(diario));
      a_.capa->Cerrar();
    }
    LeerPrimera();
  }

  bool AdmiteBloqueos() {
    try {
      a_.archivo->PrimerBloqueado(kByteCommit, 1);
      return true;
    } catch (const base::ErrorDeDisco& e) {
      if (e.Falla() == base::FallaDisco::NoAdmitido) return false;
      throw;
    }
  }

  void LeerPrimera() {
    a_.fecha = a_.archivo->Fecha();
    a_.largo = a_.archivo->Largo();
    if (a_.largo == 0) throw base::StorageFault("El archivo está vacío: no es una base de Access");
    Bytes primera(4096);
    if (a_.capa && a_.capa->Tiene(0)) {
      primera = a_.capa->Imagen(0);
    } else {
      primera.resize(a_.archivo->Leer(0, primera));
    }
    cabecera_ = LeerCabecera(primera);
    const std::uint64_t mayor = cabecera_.Jet3() ? std::uint64_t{1} << 30 : std::uint64_t{1} << 31;
    if (a_.largo > mayor) throw base::StorageFault("El archivo es más grande de lo que admite su formato");
    if (a_.largo < cabecera_.tamano_pagina)
      throw base::StorageFault("El archivo es demasiado corto para ser una base de Access");
    if (a_.largo % cabecera_.tamano_pagina != 0 && !a_.capa && a_.motivo.empty())
      Refuse(ReadOnlyCause::Incomplete, "El archivo termina a mitad de una página: le falta una parte");
  }

  // What is only read, whoever asks.
  void MirarFormato() {
    if (!a_.motivo.empty()) return;
    if (cabecera_.version == Version::Jet3)
      Refuse(ReadOnlyCause::Format, "Las bases de Access 97 solo se leen");
    if (cabecera_.version == Version::Ace)
      Refuse(ReadOnlyCause::Format, "Las bases .accdb (Access 2007 y posteriores) solo se leen");
  }

  PaginasDeArchivo::Abierto a_;
  Cabecera cabecera_;
  bool en_uso_ = false;
};

std::unique_ptr<PaginasDeArchivo> PaginasDeArchivo::Abrir(std::string_view ruta, bool solo_lectura,
                                                          std::shared_ptr<base::Disco> disco) {
  return Apertura(ruta, std::move(disco)).Hacer(solo_lectura);
}

}  // namespace mdb
