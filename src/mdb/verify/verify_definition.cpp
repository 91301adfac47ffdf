#include <algorithm>
#include <set>

#include "mdb/verify/verify_internal.h"

namespace mdb::internal {
namespace {

constexpr std::uint32_t kConstante = 1625, kConstanteDeIndice = 1923;
constexpr std::uint16_t kFin = 0xFFFF;
constexpr std::size_t kCabeza = 8;  // of each page of a definition

Bytes Juntar(Paginas& paginas, const Definicion& definicion) {
  Bytes juntas;
  for (const NumPagina p : definicion.paginas) {
    const Imagen imagen = paginas.Leer(p);
    AgregarBytes(juntas, Vista(*imagen).subspan(juntas.empty() ? 0 : kCabeza));
  }
  return juntas;
}

// Walks the pieces of a definition by their lengths; returns where they end, and whether the constants that
// Jet 4 writes into each of them are there.
class Paseo {
 public:
  Paseo(Vista v, bool jet3, const Definicion& d) : v_(v), jet3_(jet3), d_(d) {}
  std::size_t Fin() {
    pos_ = (jet3_ ? 43U : 63U) + d_.reales.size() * (jet3_ ? 8 : 12);
    Fijas(d_.columnas.size(), jet3_ ? 18 : 25, 1, kConstante);
    Nombres(d_.columnas.size());
    Fijas(d_.reales.size(), jet3_ ? 39 : 52, 0, kConstanteDeIndice);
    Fijas(d_.logicos.size(), jet3_ ? 20 : 28, 0, kConstante);
    Nombres(d_.logicos.size());
    while (U16(v_, pos_) != kFin) pos_ += 10;
    if (!jet3_) constantes_ = constantes_ && U32(v_, 12) == kConstante;
    return pos_ + 2;
  }
  bool Constantes() const { return constantes_; }

 private:
  void Fijas(std::size_t cantidad, std::size_t ancho, std::size_t campo, std::uint32_t constante) {
    for (std::size_t i = 0; i < cantidad; ++i, pos_ += ancho)
      if (!jet3_) constantes_ = constantes_ && U32(v_, pos_ + campo) == constante;
  }
  void Nombres(std::size_t cantidad) {
    for (std::size_t i = 0; i < cantidad; ++i) pos_ += jet3_ ? U8(v_, pos_) + 1U : U16(v_, pos_) + 2U;
  }
  Vista v_;
  bool jet3_;
  const Definicion& d_;
  std::size_t pos_ = 0;
  bool constantes_ = true;
};

bool TipoConocido(const Cabecera& cabecera, TipoColumna tipo) {
  const auto n = static_cast<std::uint8_t>(tipo);
  if (n == 0 || n == 13 || n == 14 || tipo > TipoColumna::FechaExtendida) return false;
  return cabecera.version == Version::Ace || tipo < TipoColumna::Complejo;
}

void RevisarColumnas(Revision& r, const Definicion& d, const std::string& donde) {
  std::set<std::uint16_t> numeros, variables;
  std::set<std::string> nombres;
  for (const Columna& c : d.columnas) {
    if (!numeros.insert(c.numero).second || c.numero >= d.max_columnas)
      r.Error(d.Pagina(), donde,
              "la columna " + Entre(c.nombre) + " tiene el número " + std::to_string(c.numero) +
                  (c.numero >= d.max_columnas ? ", y la tabla llega a " + std::to_string(d.max_columnas)
                                              : ", que ya tiene otra"));
    if (!nombres.insert(c.nombre).second)
      r.Error(d.Pagina(), donde, "hay dos columnas con el nombre " + Entre(c.nombre));
    if (!TipoConocido(r.paginas.Cab(), c.tipo))
      r.Error(d.Pagina(), donde,
              "la columna " + Entre(c.nombre) + " es de un tipo que su versión no tiene (" +
                  std::to_string(unsigned{static_cast<std::uint8_t>(c.tipo)}) + ")");
    if (c.Fija()) continue;
    if (!variables.insert(c.variable).second || c.variable >= d.variables)
      r.Error(d.Pagina(), donde,
              "la columna " + Entre(c.nombre) + " tiene el lugar " + std::to_string(c.variable) +
                  " entre las de largo variable, " +
                  (c.variable >= d.variables ? "que no hay" : "que ya tiene otra"));
  }
  for (const IndiceReal& indice : d.reales)
    for (const auto& parte : indice.partes)
      if (!numeros.contains(parte.columna))
        r.Error(d.Pagina(), donde,
                "un índice nombra la columna número " + std::to_string(parte.columna) + ", que no existe");
}

}  // namespace

void RevisarDefinicion(Revision& r, const Definicion& d, const std::string& donde) {
  const NumPagina pagina = d.Pagina();
  const bool jet3 = r.paginas.Cab().Jet3();
  r.Probar(pagina, donde, [&] {
    const Bytes juntas = Juntar(r.paginas, d);
    Paseo paseo(juntas, jet3, d);
    const std::size_t fin = paseo.Fin(), largo = U32(juntas, 8);
    if (largo != fin)
      r.Error(pagina, donde,
              "la definición dice medir " + std::to_string(largo) + " bytes y mide " + std::to_string(fin));
    if (!paseo.Constantes()) r.Error(pagina, donde, "la definición no tiene las marcas que llevan todas");
    const std::size_t lugar = r.paginas.Tamano() - kCabeza;
    if (!jet3 && d.paginas.size() == 1 && fin <= lugar && U16(juntas, 2) != lugar - fin)
      r.Nota(pagina, donde,
             "la página de la definición dice tener " + std::to_string(U16(juntas, 2)) +
                 " bytes libres y tiene " + std::to_string(lugar - fin));
  });
  RevisarColumnas(r, d, donde);
}

}  // namespace mdb::internal
