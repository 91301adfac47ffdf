// The statements of the code relations, to the byte. None names the company: the lists and the store are
// those of every company of the database.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace relations::sql {

// Every concept and user table as a relation of its own code to itself, in white, one text a row.
std::string ConceptosComoRelaciones(bool codigo_numerico, bool solo_datos_de_reloj, bool con_cuotas);

// The codes stored under an external-data type, one relation each, in white.
std::string DatosExternosComoRelaciones(std::int32_t tipo);
std::string BorrarDatosExternos(std::int32_t tipo);
// `codigos` without its outer commas; its quotes are doubled here.
std::string InsertarDatoExterno(std::int32_t tipo, std::int32_t id_concepto, std::string_view codigos);

}  // namespace relations::sql
