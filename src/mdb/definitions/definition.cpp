#include "mdb/definitions/definition.h"

#include <algorithm>
#include <numeric>
#include <tuple>

#include "base/text.h"
#include "mdb/pages/data_page_internal.h"
#include "mdb/pages/text.h"

namespace mdb {
namespace {

// More pages than the largest table (255 columns with long names, 32 indexes) could need.
constexpr std::size_t kMasPaginas = 256;
constexpr unsigned kMasColumnas = 255, kColumnasDeIndice = 10;
constexpr std::uint16_t kNingunaColumna = 0xFFFF;

// The pages of a definition as one text: the first whole, the others without their first 8 bytes.
Bytes Juntar(Paginas& paginas, NumPagina primera, std::vector<NumPagina>& numeros) {
  Bytes juntas;
  for (NumPagina numero = primera; numero != 0;) {
    const Imagen imagen = paginas.Leer(numero);
    if (imagen->at(0) != internal::kPaginaDeDefinicion)
      DanioEnPagina(numero, "no es una definición de tabla");
    if (std::find(numeros.begin(), numeros.end(), numero) != numeros.end() || numeros.size() >= kMasPaginas)
      DanioEnPagina(numero, "la definición de la tabla vuelve sobre sus páginas");
    AgregarBytes(juntas, Vista(*imagen).subspan(numeros.empty() ? 0 : 8));
    numeros.push_back(numero);
    numero = U32(*imagen, 4);
  }
  return juntas;
}

// Reads a definition from its start to its end.
class Lector {
 public:
  Lector(const Cabecera& cabecera, Vista bytes) : cabecera_(cabecera), v_(bytes), jet3_(cabecera.Jet3()) {}

  void Leer(Definicion& d) {
    LeerCabeza(d);
    LeerColumnas(d);
    LeerIndices(d);
    LeerMapasLargos(d);
  }

 private:
  void LeerCabeza(Definicion& d) {
    d.filas = U32(v_, jet3_ ? 12 : 16);
    d.ultimo_automatico = I32(v_, jet3_ ? 16 : 20);
    if (!jet3_) d.incremento = I32(v_, 24);
    const std::size_t p = jet3_ ? 20 : 40;
    d.clase = U8(v_, p);
    d.max_columnas = U16(v_, p + 1);
    d.variables = U16(v_, p + 3);
    columnas_ = U16(v_, p + 5);
    logicos_ = U32(v_, p + 7);
    reales_ = U32(v_, p + 11);
    d.propias = internal::LeerPuntero(v_, p + 15);
    d.libres = internal::LeerPuntero(v_, p + 19);
    if (columnas_ > kMasColumnas) throw Danio("Demasiadas columnas");
    contadores_ = p + 23;
    pos_ = contadores_ + static_cast<std::size_t>(reales_) * (jet3_ ? 8 : 12);
  }

  Columna LeerColumna(std::size_t p) const {
    Columna c;
    c.tipo = static_cast<TipoColumna>(U8(v_, p));
    const std::size_t q = jet3_ ? p + 1 : p + 5;
    c.numero = U16(v_, q);
    c.variable = U16(v_, q + 2);
    c.posicion = U16(v_, q + 4);
    if (c.tipo != TipoColumna::Decimal) c.lcid = U16(v_, jet3_ ? p + 9 : p + 11);
    if (c.tipo == TipoColumna::Decimal) {
      c.precision = U8(v_, p + 11);
      c.escala = U8(v_, p + 12);
    }
    if (!jet3_) {
      if (c.EsTexto()) c.version_orden = U8(v_, p + 14);
      c.banderas_ext = U8(v_, p + 16);
    }
    c.banderas = U8(v_, jet3_ ? p + 13 : p + 15);
    c.desplazamiento = U16(v_, jet3_ ? p + 14 : p + 21);
    c.largo = U16(v_, jet3_ ? p + 16 : p + 23);
    return c;
  }

  void LeerColumnas(Definicion& d) {
    const std::size_t ancho = jet3_ ? 18 : 25;
    for (unsigned i = 0; i < columnas_; ++i, pos_ += ancho) d.columnas.push_back(LeerColumna(pos_));
    for (auto& c : d.columnas) c.nombre = LeerNombre();
  }

  std::string LeerNombre() {
    const std::size_t largo = jet3_ ? U8(v_, pos_) : U16(v_, pos_);
    pos_ += jet3_ ? 1 : 2;
    const Vista bytes = Trozo(v_, pos_, largo);
    pos_ += largo;
    std::string nombre;
    internal::LeerNombre(cabecera_, bytes, nombre);
    return nombre;
  }

  IndiceReal LeerReal(unsigned i) {
    IndiceReal r;
    const std::size_t contador = contadores_ + static_cast<std::size_t>(i) * (jet3_ ? 8 : 12);
    r.entradas = U32(v_, contador);
    r.distintas = U32(v_, contador + 4);
    std::size_t p = jet3_ ? pos_ : pos_ + 4;
    for (unsigned k = 0; k < kColumnasDeIndice; ++k, p += 3)
      if (const auto columna = U16(v_, p); columna != kNingunaColumna)
        r.partes.push_back({columna, U8(v_, p + 2) == 0});
    r.mapa = internal::LeerPuntero(v_, p);
    r.raiz = U32(v_, p + 4);
    r.banderas = U8(v_, jet3_ ? p + 8 : p + 12);
    pos_ += jet3_ ? 39 : 52;
    return r;
  }

  IndiceLogico LeerLogico() {
    IndiceLogico l;
    const std::size_t p = jet3_ ? pos_ : pos_ + 4;
    l.numero = U32(v_, p);
    l.real = U32(v_, p + 4);
    l.lado = U8(v_, p + 8);
    l.otro_indice = I32(v_, p + 9);
    l.otra_tabla = U32(v_, p + 13);
    l.actualiza_en_cascada = U8(v_, p + 17);
    l.borra_en_cascada = U8(v_, p + 18);
    l.clase = U8(v_, p + 19);
    pos_ += jet3_ ? 20 : 28;
    if (l.real >= reales_) throw Danio("Un índice sin su árbol");
    return l;
  }

  void LeerIndices(Definicion& d) {
    for (unsigned i = 0; i < reales_; ++i) d.reales.push_back(LeerReal(i));
    for (unsigned i = 0; i < logicos_; ++i) d.logicos.push_back(LeerLogico());
    for (auto& l : d.logicos) l.nombre = LeerNombre();
  }

  void LeerMapasLargos(Definicion& d) {
    while (pos_ + 2 <= v_.size()) {
      const auto numero = U16(v_, pos_);
      if (numero == kNingunaColumna) break;
      for (auto& c : d.columnas) {
        if (c.numero != numero) continue;
        c.lv_propias = internal::LeerPuntero(v_, pos_ + 2);
        c.lv_libres = internal::LeerPuntero(v_, pos_ + 6);
      }
      pos_ += 10;
    }
  }

  const Cabecera& cabecera_;
  Vista v_;
  bool jet3_;
  std::size_t pos_ = 0, contadores_ = 0;
  unsigned columnas_ = 0;
  std::uint32_t logicos_ = 0, reales_ = 0;
};

}  // namespace

Definicion LeerDefinicion(Paginas& paginas, NumPagina pagina) {
  Definicion d;
  const Bytes juntas = Juntar(paginas, pagina, d.paginas);
  internal::NombrandoPagina(pagina, "la definición de la tabla no se puede leer",
                            [&] { Lector(paginas.Cab(), juntas).Leer(d); });
  return d;
}

std::vector<std::size_t> Definicion::EnOrden() const {
  std::vector<std::size_t> orden(columnas.size());
  std::iota(orden.begin(), orden.end(), std::size_t{0});
  const auto clave = [&](std::size_t i) { return std::tuple(columnas[i].posicion, columnas[i].numero); };
  std::stable_sort(orden.begin(), orden.end(),
                   [&](std::size_t a, std::size_t b) { return clave(a) < clave(b); });
  return orden;
}

std::optional<std::size_t> Definicion::PorNumero(std::uint16_t numero) const {
  for (std::size_t i = 0; i < columnas.size(); ++i)
    if (columnas[i].numero == numero) return i;
  return {};
}

std::optional<std::size_t> Definicion::PorNombre(std::string_view buscado) const {
  for (std::size_t i = 0; i < columnas.size(); ++i)
    if (base::IgualSinCaso(columnas[i].nombre, buscado)) return i;
  return {};
}

const IndiceLogico* Definicion::ClavePrimaria() const {
  for (const auto& l : logicos)
    if (l.clase == IndiceLogico::Primario) return &l;
  return nullptr;
}

}  // namespace mdb
