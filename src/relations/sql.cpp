#include "relations/sql.h"

#include "base/text.h"

namespace relations::sql {

std::string ConceptosComoRelaciones(bool codigo_numerico, bool solo_datos_de_reloj, bool con_cuotas) {
  std::string texto = "Select XXX From (Select Codigo &'*'& clng('&HFFFFFF') &'*,'&";
  texto += codigo_numerico ? "id_Concepto" : "Codigo";
  texto += "& ',*'& id_Concepto &'*'&  Nombre as XXX, Codigo From Conceptos  as C Where ";
  texto += solo_datos_de_reloj ? "TipoDato=3 " : "TipoDato in (3,2,5)";
  if (!con_cuotas) texto += " and TipoCuota=0";
  texto +=
      " and Not TipoImpuesto "
      "                Union All  "
      "                Select Nombre &'*'& clng('&HFFFFFF') & '*,'&  ID + 1000  & ',*'& ID + 1000 &'*'&  "
      "Tablas.NombreCampo & '  (T.U.)' as XXX,  Nombre as Codigo From Tablas Where TipoDato=1 And Tipo in "
      "(1,3)) order by Codigo";
  return texto;
}

std::string DatosExternosComoRelaciones(std::int32_t tipo) {
  return "Select Codigo &'*'& clng('&HFFFFFF') &'*,'& IDDE &',*'& id_Concepto &'*'&  Nombre From Conceptos  "
         "as C Inner Join (Select * From DatExtDatos Where idTDE=" +
         std::to_string(tipo) + ") as DE on DE.idLoc=C.id_Concepto order by Codigo";
}

std::string BorrarDatosExternos(std::int32_t tipo) {
  return "Delete * From DatExtDatos Where idTDE=" + std::to_string(tipo);
}

std::string InsertarDatoExterno(std::int32_t tipo, std::int32_t id_concepto, std::string_view codigos) {
  std::string texto = "Insert into DatExtDatos Select " + std::to_string(tipo) + " as idTDE, ";
  texto += std::to_string(id_concepto);
  texto += " as idLoc,'" + base::EscapeQuotes(codigos) + "' as idDE ";
  return texto;
}

}  // namespace relations::sql
