#include <algorithm>

#include "mdb/pages/page_map.h"
#include "mdb/rows/row_internal.h"
#include "mdb/schema/schema_internal.h"

namespace mdb::internal {
namespace {

// The longest row that is written.
constexpr std::size_t kAnchoDeFila = 4060;
constexpr std::uint16_t kLetrasDeTexto = 255, kBytesDeBinario = 510;
constexpr std::uint8_t kCifrasDeDecimal = 28;

std::uint16_t LargoDe(const NuevaColumna& nueva) {
  const auto error = [&](const char* motivo) -> std::uint16_t {
    throw base::Error("La columna \"" + nueva.nombre + "\" " + motivo);
  };
  switch (nueva.tipo) {
    case TipoColumna::Booleano:
      return 1;
    case TipoColumna::Byte:
    case TipoColumna::Entero:
    case TipoColumna::Largo:
    case TipoColumna::Simple:
    case TipoColumna::Moneda:
    case TipoColumna::Doble:
    case TipoColumna::Fecha:
    case TipoColumna::Guid:
      return AnchoDeTipo(nueva.tipo);
    case TipoColumna::Decimal:
      if (nueva.precision < 1 || nueva.precision > kCifrasDeDecimal || nueva.escala > nueva.precision)
        return error("no puede tener esa cantidad de cifras");
      return AnchoDeTipo(nueva.tipo);
    case TipoColumna::Texto:
      if (nueva.largo > kLetrasDeTexto) return error("no puede tener más de 255 letras");
      return static_cast<std::uint16_t>(2 * (nueva.largo == 0 ? kLetrasDeTexto : nueva.largo));
    case TipoColumna::Binario:
      if (nueva.largo > kBytesDeBinario) return error("no puede tener más de 510 bytes");
      return nueva.largo == 0 ? std::uint16_t{255} : nueva.largo;
    case TipoColumna::Memo:
    case TipoColumna::Ole:
      return 0;
    default:
      return error("es de un tipo que una base de Access 2000 a 2003 no tiene");
  }
}

// What a fixed column takes whatever its descriptor says: Access itself writes smaller numbers for Numeric.
std::size_t LargoGuardado(TipoColumna tipo) { return tipo == TipoColumna::Decimal ? 17 : 0; }

std::size_t FinDeFijas(const Definicion& d) {
  std::size_t fin = 0;
  for (const auto& c : d.columnas)
    if (c.Fija() && c.tipo != TipoColumna::Booleano)
      fin = std::max<std::size_t>(fin,
                                  c.desplazamiento + std::max<std::size_t>(c.largo, LargoGuardado(c.tipo)));
  return fin;
}

// What a row takes that has nothing in its variable columns.
std::size_t AnchoMinimo(const Definicion& d) {
  const std::size_t tabla_de_variables = d.variables == 0 ? 0 : 4 + 2U * d.variables;
  return 2 + FinDeFijas(d) + tabla_de_variables + (d.max_columnas + 7U) / 8;
}

void ComprobarAutonumerica(const Definicion& d, const NuevaColumna& nueva) {
  if (nueva.tipo == TipoColumna::Guid) return;
  if (nueva.tipo != TipoColumna::Largo)
    throw base::Error("La columna \"" + nueva.nombre + "\" no puede ser autonumérica: no es un entero largo");
  if (nueva.incremento == 0)
    throw base::Error("La columna autonumérica \"" + nueva.nombre + "\" no puede crecer de a 0");
  for (const auto& c : d.columnas)
    if (c.Autonumerica())
      throw base::Error("La tabla \"" + d.nombre + "\" ya tiene una columna autonumérica, \"" + c.nombre +
                        "\"");
}

std::uint8_t BanderasDe(const NuevaColumna& nueva) {
  std::uint8_t b = Columna::kActualizable;
  if (!EsDeLargoVariable(nueva.tipo)) b |= Columna::kFija;
  if (nueva.autonumerica)
    b |= nueva.tipo == TipoColumna::Guid ? Columna::kGuidAutomatico : Columna::kAutonumerica;
  return b;
}

}  // namespace

void AgregarColumna(Paginas& paginas, Definicion& d, const NuevaColumna& nueva) {
  ComprobarNombre(nueva.nombre, "una columna");
  if (d.PorNombre(nueva.nombre))
    throw base::Error("La tabla \"" + d.nombre + "\" ya tiene una columna \"" + nueva.nombre + "\"");
  if (d.max_columnas >= Definicion::kColumnas)
    throw base::Error("La tabla \"" + d.nombre +
                      "\" llegó a las 255 columnas que puede tener, contando las que tuvo antes");
  if (nueva.autonumerica) ComprobarAutonumerica(d, nueva);
  Columna c;
  c.nombre = nueva.nombre;
  c.tipo = nueva.tipo;
  c.largo = LargoDe(nueva);
  c.banderas = BanderasDe(nueva);
  if (c.tipo == TipoColumna::Texto && nueva.comprime) c.banderas_ext = Columna::kComprime;
  c.numero = d.max_columnas;
  c.variable = d.variables;
  for (const auto& otra : d.columnas)
    c.posicion = std::max(c.posicion, static_cast<std::uint16_t>(otra.posicion + 1));
  c.lcid = paginas.Cab().orden;
  c.version_orden = c.EsTexto() ? paginas.Cab().version_orden : std::uint8_t{0};
  if (c.tipo == TipoColumna::Decimal) {
    c.precision = nueva.precision;
    c.escala = nueva.escala;
  }
  if (c.Fija() && c.tipo != TipoColumna::Booleano)
    c.desplazamiento = static_cast<std::uint16_t>(FinDeFijas(d));
  if (nueva.autonumerica && nueva.tipo == TipoColumna::Largo) {
    d.ultimo_automatico = static_cast<std::int32_t>(static_cast<std::uint32_t>(nueva.semilla) -
                                                    static_cast<std::uint32_t>(nueva.incremento));
    d.incremento = nueva.incremento;
  }
  ++d.max_columnas;
  if (!c.Fija()) ++d.variables;
  d.columnas.push_back(c);
  if (AnchoMinimo(d) > kAnchoDeFila)
    throw base::Error("Las columnas de la tabla \"" + d.nombre + "\" no caben en una fila");
  if (c.EsLarga()) {
    d.columnas.back().lv_propias = NuevoMapa(paginas);
    d.columnas.back().lv_libres = NuevoMapa(paginas);
  }
}

void AgregarPropiedades(Propiedades& propiedades, const NuevaColumna& columna) {
  std::vector<Propiedad> suyas;
  const auto agregar = [&](const char* nombre, TipoColumna tipo, Dato valor) {
    suyas.push_back({nombre, static_cast<std::uint8_t>(tipo), true, std::move(valor)});
  };
  if (columna.requerida) agregar("Required", TipoColumna::Booleano, true);
  if (columna.tipo == TipoColumna::Texto || columna.tipo == TipoColumna::Memo)
    agregar("AllowZeroLength", TipoColumna::Booleano, columna.permite_vacio);
  if (columna.tipo == TipoColumna::Texto)
    agregar("UnicodeCompression", TipoColumna::Booleano, columna.comprime);
  if (columna.autonumerica && columna.tipo == TipoColumna::Guid)
    agregar("DefaultValue", TipoColumna::Texto, std::string("GenGUID()"));
  else if (!columna.defecto.empty())
    agregar("DefaultValue", TipoColumna::Memo, columna.defecto);
  if (!suyas.empty()) propiedades[columna.nombre] = std::move(suyas);
}

}  // namespace mdb::internal
