#include "corridas/testigo_de_registro.h"

#include "corridas/decidir.h"
#include "corridas/repetidas.h"
#include "liquidation/importar.h"

namespace corridas {
namespace {

// The ledger's own faults say nothing against the base.
template <typename Paso>
void Anotado(Paso&& paso) {
  try {
    base::MemoryAsFault(std::forward<Paso>(paso));
  } catch (const db::Error&) {
    throw;
  } catch (const base::Error& e) {
    throw base::Error("No se importó nada: no se pudo anotar la corrida en el registro: " + e.Description(),
                      e.Number());
  }
}

}  // namespace

void TestigoDeRegistro::AntesDeEscribir() {
  Anotado([&] {
    if (!lugar_.disco->Exists(lugar_.ruta)) return;
    apunte_ = std::make_unique<Apunte>(lugar_, false);
    DecidirPendientes(sesion_, lugar_, apunte_.get());
  });
  TestigoDeCambios::AntesDeEscribir();
}

void TestigoDeRegistro::AntesDeTerminar(const std::vector<importfile::ImportRow>& filas,
                                        const liquidation::Importacion& importacion) {
  TestigoDeCambios::AntesDeTerminar(filas, importacion);
  Corrida corrida{std::move(datos_), LineasDe(filas, true), Cambios()};
  Resumen& r = corrida.resumen;
  r.importadas = corrida.lineas.size();
  if (r.importadas == 0 && corrida.cambios.Cantidad() == 0) return;  // nothing that could be told or undone
  r.rechazadas = filas.size() - corrida.lineas.size();
  for (const LineaImportada& linea : corrida.lineas) r.horas += linea.horas;
  for (const liquidation::TotalConcepto& t : importacion.totales)
    r.totales.push_back({t.concepto, t.nombre, t.lineas, t.cantidad});
  Contar(corrida.cambios, r);
  r.antes = HuellaAntes();
  r.despues = HuellaDespues();
  Anotado([&] {
    if (apunte_ == nullptr) apunte_ = std::make_unique<Apunte>(lugar_, true);
    numero_ = apunte_->Anotar(std::move(corrida));
  });
}

// After a commit that failed nobody knows here what the base holds: it is asked the next time.
void TestigoDeRegistro::Terminada(bool confirmada) {
  if (numero_ != 0 && confirmada) {
    base::ErrorSink errores;
    if (!base::AnyErrorNoted("registro de corridas", &errores, [&] {
          base::MemoryAsFault([&] { apunte_->Marcar(numero_, EstadoCorrida::Hecha); });
        }))
      pendiente_ = errores.back().description;
  }
  apunte_.reset();
}

}  // namespace corridas
