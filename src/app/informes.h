// What is written about a load and its import, beside the base and never in it.
#pragma once

#include <string>
#include <vector>

#include "app/contexto.h"
#include "informe/informe.h"
#include "informe/lineas.h"

namespace app {

// "": it was done, and `aviso` may say what to mind. Else why it was not; the file of that name is as it was.
struct Escritura {
  std::string motivo;
  std::string aviso;
  std::size_t lineas = 0;
};

class Informes {
 public:
  explicit Informes(Contexto& contexto) : e_(contexto.estado), c_(contexto) {}

  // Why none of these files may be written, or "": each would replace the base, the file of hours, the
  // settings, another of them, or one of `ademas`. To be asked before an import. Paths may be empty.
  std::string MotivoParaNoEscribir(const std::vector<std::string>& salidas,
                                   const std::vector<std::string>& ademas = {}) const;

  // Every line of the last load, in file order, with what became of it.
  std::vector<informe::Linea> Lineas() const { return informe::LineasDe(e_.filas, e_.aparte); }

  // The lines that were refused or are malformed, as they stand in the file, and their reasons beside them.
  // Of the last load that was imported or tried. Nobody may read them who may not read the base.
  Escritura GuardarRechazadas(const std::string& ruta) const;
  // The report of the last import or trial; a path that ends in .html or .htm is a page, one in .csv a table.
  // For others EsInforme is false, and nothing is written.
  Escritura GuardarInforme(const std::string& ruta) const;
  static bool EsInforme(const std::string& ruta);
  informe::DatosInforme DatosDelInforme() const;
  static std::string RutaDeMotivos(const std::string& ruta) { return ruta + ".motivos"; }

 private:
  std::string Guardar(const std::string& ruta, const std::string& bytes) const;

  const Estado& e_;
  const Contexto& c_;
};

}  // namespace app
