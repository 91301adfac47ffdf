#include "app/reloj_sistema.h"

#include <ctime>

namespace app {

base::Fecha RelojSistema::Ahora() const {
  const std::time_t t = std::time(nullptr);
  std::tm partes{};
#ifdef _WIN32
  localtime_s(&partes, &t);
#else
  localtime_r(&t, &partes);
#endif
  const base::Fecha dia = base::FechaDe(partes.tm_year + 1900, partes.tm_mon + 1, partes.tm_mday);
  return base::Fecha{dia.serie + base::HoraDe(partes.tm_hour, partes.tm_min, partes.tm_sec).serie};
}

}  // namespace app
