// Watches an import and puts it into the ledger: as pending before the commit, as done after it.
#pragma once

#include <memory>

#include "corridas/registro.h"
#include "corridas/testigo_de_cambios.h"

namespace corridas {

class TestigoDeRegistro final : public TestigoDeCambios {
 public:
  // `datos`: what is known of the run before it begins; the rest is filled in. What cannot be noted is not
  // imported.
  TestigoDeRegistro(const sesion::DbSession& sesion, LugarDelRegistro lugar, Resumen datos)
      : TestigoDeCambios(sesion, datos.mes),
        sesion_(sesion),
        lugar_(std::move(lugar)),
        datos_(std::move(datos)) {}

  void AntesDeEscribir() override;
  void AntesDeTerminar(const std::vector<importfile::ImportRow>& filas,
                       const liquidation::Importacion& importacion) override;
  void Terminada(bool confirmada) override;

  std::uint32_t Numero() const { return numero_; }  // of the run in the ledger; 0: not noted
  // What could not be said after the commit: the ledger will ask the base. "" for nothing.
  const std::string& Pendiente() const { return pendiente_; }

 private:
  const sesion::DbSession& sesion_;
  LugarDelRegistro lugar_;
  Resumen datos_;
  std::unique_ptr<Apunte> apunte_;
  std::uint32_t numero_ = 0;
  std::string pendiente_;
};

}  // namespace corridas
