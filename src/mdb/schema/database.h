// An Access file as a whole: what the engine works on.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "mdb/catalog/catalog.h"
#include "mdb/tables/table_writer.h"

namespace mdb {

struct OpcionesBase {
  bool solo_lectura = false;
  std::string contrasena;  // compared with the file's, as every program does
};

struct NuevaColumna {
  std::string nombre;
  TipoColumna tipo = TipoColumna::Largo;
  std::uint16_t largo = 0;                  // characters of a Text, bytes of a Binary; 0: 255 and 255
  std::uint8_t precision = 18, escala = 0;  // of a Numeric
  bool autonumerica = false;
  std::int32_t semilla = 1, incremento = 1;
  bool requerida = false;
  bool permite_vacio = true;  // AllowZeroLength of a text
  std::string defecto;        // expression text; empty: none
  bool comprime = true;       // texts
};
struct NuevoIndice {
  std::string nombre;
  struct Parte {
    std::string columna;
    bool descendente = false;
  };
  std::vector<Parte> partes;
  bool unico = false, primario = false, ignora_nulos = false, requerido = false;
};
struct NuevaTabla {
  std::string nombre;
  std::vector<NuevaColumna> columnas;
  std::vector<NuevoIndice> indices;
};

class Base {
 public:
  // Opens a file, rolling back the journal of a run that was cut. Throws base::Error: no such file, another
  // kind of file, wrong password, encrypted by a provider, in use. Without solo_lectura a file that cannot be
  // written (read-only, in use by another program, a format that is only read) opens for reading: see
  // MotivoSoloLectura.
  static std::unique_ptr<Base> Abrir(std::string_view ruta, const OpcionesBase& opciones = {});
  // A new Jet 4 file, written at once. Throws base::Error when it exists.
  static std::unique_ptr<Base> Crear(std::string_view ruta, std::uint16_t orden, base::Fecha ahora);
  // Over pages in memory, for tests and builders.
  explicit Base(std::unique_ptr<Paginas> paginas) : paginas_(std::move(paginas)), catalogo_(*paginas_) {}

  Paginas& Hojas() { return *paginas_; }
  const Cabecera& Cab() const { return paginas_->Cab(); }
  const Catalogo& Indice() const { return catalogo_; }
  const std::string& MotivoSoloLectura() const { return paginas_->MotivoSoloLectura(); }
  ReadOnlyCause WhyReadOnly() const { return paginas_->WhyReadOnly(); }

  // Rows. The definition is read anew for each call, so that counters and maps are those of the pages.
  std::vector<IdFila> Aplicar(std::string_view tabla, const Cambios& cambios);

  // The catalog's changes. Each does all or nothing in the pages; nothing is on disk before Confirmar. All
  // throw base::Error for names that are taken, missing or not allowed. `ahora` dates the objects.
  void CrearTabla(const NuevaTabla& tabla, base::Fecha ahora);
  void BorrarTabla(std::string_view tabla);  // refused while an enforced relationship names it
  void CrearIndice(std::string_view tabla, const NuevoIndice& indice);
  void BorrarIndice(std::string_view tabla, std::string_view indice);
  void AgregarColumna(std::string_view tabla, const NuevaColumna& columna);
  void QuitarColumna(std::string_view tabla, std::string_view columna);
  // Enforced ones need a unique index over the referenced columns, and existing rows that obey.
  void CrearRelacion(const RelacionDeTablas& relacion, base::Fecha ahora);
  void BorrarRelacion(std::string_view nombre);
  void CrearConsulta(const ConsultaGuardada& consulta, base::Fecha ahora);
  void BorrarConsulta(std::string_view nombre);

  void Confirmar() { paginas_->Confirmar(); }
  void Deshacer() {
    paginas_->Deshacer();
    catalogo_.Olvidar();
  }
  // Back to a point inside the transaction, the catalog too.
  void Volver(Paginas::Punto punto) {
    paginas_->Volver(std::move(punto));
    catalogo_.Olvidar();
  }

 private:
  std::unique_ptr<Paginas> paginas_;
  Catalogo catalogo_;
};

}  // namespace mdb
