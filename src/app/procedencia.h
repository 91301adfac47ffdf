// What the grid was loaded with, and which controls say something else by now.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "base/date.h"
#include "base/file.h"
#include "settings/settings.h"

namespace app {

struct Estado;

// As the load found it when it began; replaced when it was completed.
struct Procedencia {
  bool cargada = false;  // false: no file was loaded yet
  std::string referencia, ruta;
  std::optional<base::FileStamp> archivo;
  base::Date mes;
  int OptFiltro = 1;
  settings::Settings opciones;
  std::string relaciones;  // what a load asks of them: their colours are not
};
Procedencia ProcedenciaDe(const Estado& estado);

// What the controls say and the grid does not show, each in a few words ("el separador"); empty while they
// agree, and while a load or an import runs. An option that a load does not look at makes no difference, nor
// does one without effect beside the others: the separator of a fixed-width file. Asks the disk about the
// file.
std::vector<std::string> Diferencias(const Estado& estado);

// The differences as a sentence for the operator; "" when there is none.
std::string TextoDeDiferencias(const Estado& estado);

}  // namespace app
