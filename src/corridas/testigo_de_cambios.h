// Watches a run and keeps what it changed.
#pragma once

#include <vector>

#include "corridas/cambios.h"
#include "corridas/cantidades.h"
#include "importfile/import_grid.h"
#include "liquidation/testigo.h"

namespace corridas {

class TestigoDeCambios : public liquidation::Testigo {
 public:
  TestigoDeCambios(const sesion::DbSession& sesion, base::Date mes) : sesion_(sesion), mes_(mes) {}

  void AntesDeEscribir() override;
  void AntesDeTerminar(const std::vector<importfile::ImportRow>& filas,
                       const liquidation::Importacion& importacion) override;
  void Terminada(bool) override {}

  // Empty before AntesDeTerminar.
  const std::vector<CambioDeCantidad>& Cantidades() const { return cantidades_; }
  const corridas::Cambios& Cambios() const { return cambios_; }

 protected:
  Huella HuellaAntes() const { return antes_.Huella(); }
  Huella HuellaDespues() const { return huella_despues_; }

 private:
  const sesion::DbSession& sesion_;
  base::Date mes_;
  Foto antes_;
  Huella huella_despues_;
  corridas::Cambios cambios_;
  std::vector<CambioDeCantidad> cantidades_;
};

}  // namespace corridas
