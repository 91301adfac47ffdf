#include "informe/rechazadas.h"

#include "base/encoding.h"

namespace informe {

Rechazadas ReunirRechazadas(const importfile::ArchivoLeido& archivo, const std::vector<Linea>& lineas) {
  Rechazadas r;
  r.bytes = archivo.Marca();
  for (const Linea& linea : lineas) {
    if (!linea.SinImportar()) continue;
    ++r.cuantas;
    r.bytes += archivo.Linea(linea.numero);
    r.motivos += std::to_string(linea.numero) + ": " + EnUnaLinea(linea.resultado) + "\r\n";
  }
  // A mark decides by itself; without one the bytes of all lines together did.
  if (archivo.Marca().empty())
    r.se_leen_igual = base::IsValidUtf8(archivo.Bytes()) == base::IsValidUtf8(r.bytes) ||
                      base::FromCp1252(r.bytes) == r.bytes;
  return r;
}

}  // namespace informe
