#include <algorithm>
#include <limits>

#include "mdb/pages/data_page_internal.h"
#include "mdb/verify/verify_internal.h"

namespace mdb::internal {
namespace {

constexpr std::uint16_t kPosicion = 0x1FFF;
constexpr std::size_t kFilasPorPagina = 255;
constexpr NumPagina kPaginaGlobal = 1;

// "El archivo está dañado, página 12: motivo" taken apart; page 0 when the text names none.
std::pair<NumPagina, std::string> Partes(const std::string& descripcion) {
  constexpr std::string_view kDanado = "El archivo está dañado", kPagina = ", página ";
  if (descripcion.compare(0, kDanado.size(), kDanado) != 0) return {0, descripcion};
  std::string resto = descripcion.substr(kDanado.size());
  NumPagina pagina = 0;
  if (resto.compare(0, kPagina.size(), kPagina) == 0) {
    std::size_t i = kPagina.size();
    for (; i < resto.size() && resto[i] >= '0' && resto[i] <= '9'; ++i)
      pagina = pagina * 10 + static_cast<NumPagina>(resto[i] - '0');
    resto.erase(0, i);
  }
  if (resto.compare(0, 2, ": ") == 0) resto.erase(0, 2);
  return {pagina, resto};
}

std::string ConMayuscula(std::string texto) {
  if (!texto.empty() && texto[0] >= 'a' && texto[0] <= 'z')
    texto[0] = static_cast<char>(texto[0] - 'a' + 'A');
  return texto;
}

// "de" before the name of an owner.
std::string De(const std::string& nombre) {
  return nombre.compare(0, 3, "el ") == 0 ? "d" + nombre : "de " + nombre;
}

}  // namespace

std::string Entre(const std::string& nombre) { return "«" + nombre + "»"; }

std::string Cuantas(std::size_t n, const char* una, const char* varias) {
  return n == 1 ? una : std::to_string(n) + " " + varias;
}

std::string DeFila(IdFila fila) {
  return "la fila " + std::to_string(fila.fila) + " de la página " + std::to_string(fila.pagina);
}

Revision::Revision(Paginas& de, std::size_t tope)
    : paginas(de),
      tope_(std::max<std::size_t>(tope, 1)),
      duenos_(de.Cantidad(), kNadie),
      nombres_({"nadie", "los mapas de páginas", "el comienzo del archivo"}) {}

void Revision::Agregar(Hallazgo::Grado grado, NumPagina pagina, const std::string& donde,
                       const std::string& motivo) {
  auto& lista = informe.hallazgos;
  if (lista.size() >= tope_) {
    // An error is worth more than a note.
    if (grado != Hallazgo::Grado::Error) return;
    const auto nota = std::find_if(lista.rbegin(), lista.rend(),
                                   [](const Hallazgo& h) { return h.grado == Hallazgo::Grado::Nota; });
    if (nota == lista.rend()) return;
    lista.erase(std::next(nota).base());
  }
  std::string lugar = pagina == 0 ? "" : "página " + std::to_string(pagina);
  if (!donde.empty()) lugar += (lugar.empty() ? "" : ", ") + donde;
  lista.push_back({grado, pagina, ConMayuscula(lugar.empty() ? motivo : lugar + ": " + motivo)});
}

void Revision::Error(NumPagina pagina, const std::string& donde, const std::string& motivo) {
  Agregar(Hallazgo::Grado::Error, pagina, donde, motivo);
}

void Revision::Nota(NumPagina pagina, const std::string& donde, const std::string& motivo) {
  Agregar(Hallazgo::Grado::Nota, pagina, donde, motivo);
}

void Revision::Anotar(NumPagina pagina, const std::string& donde, const std::string& descripcion) {
  const auto [nombrada, motivo] = Partes(descripcion);
  Error(nombrada != 0 ? nombrada : pagina, donde, motivo);
}

Revision::Dueno Revision::NuevoDueno(std::string nombre) {
  nombres_.push_back(std::move(nombre));
  return static_cast<Dueno>(nombres_.size() - 1);
}

bool Revision::Tomar(NumPagina pagina, Dueno dueno, const std::string& donde) {
  if (pagina >= duenos_.size()) {
    Error(0, donde,
          "nombra la página " + std::to_string(pagina) + ", y el archivo tiene " +
              std::to_string(duenos_.size()));
    return false;
  }
  const Dueno antes = duenos_[pagina];
  if (antes == kNadie) {
    duenos_[pagina] = dueno;
    return true;
  }
  if (antes == dueno && dueno == kMapas) return true;
  Error(pagina, donde,
        antes == dueno ? "está dos veces entre las páginas " + De(nombres_[dueno])
                       : "la reclaman dos: " + nombres_[antes] + " y " + nombres_[dueno]);
  return false;
}

void Revision::LeerBits(Puntero mapa, const std::string& donde, Dueno dueno, MapaVisto& visto) {
  const Lugar lugar = Seguir(paginas, mapa);
  const Vista fila = lugar.ranura.bytes;
  const NumPagina cantidad = paginas.Cantidad();
  std::uint64_t fuera = 0;
  const auto bits = [&](Vista v, std::uint64_t primera) {
    for (std::size_t i = 0; i < v.size(); ++i)
      for (unsigned b = v[i]; b != 0; b &= b - 1) {
        const std::uint64_t p = primera + 8 * i + static_cast<unsigned>(std::countr_zero(b));
        if (p < cantidad)
          visto.paginas.push_back(static_cast<NumPagina>(p));
        else if (fuera == 0)
          fuera = p;
      }
  };
  if (lugar.ranura.banderas != 0 || fila.empty() || fila[0] > 1 || (fila[0] == 0 && fila.size() < 5))
    DanioEnPagina(mapa.pagina, "la fila " + std::to_string(mapa.fila) + " no es un mapa de páginas");
  visto.legible = true;
  if (fila[0] == 0) {
    visto.inicio = U32(fila, 1);
    visto.fin = visto.inicio + std::uint64_t{8} * (fila.size() - 5);
    bits(fila.subspan(5), visto.inicio);
  } else {
    const std::uint64_t por_pagina = (paginas.Tamano() - 4) * 8;
    visto.fin = std::numeric_limits<std::uint64_t>::max();
    for (std::size_t k = 0; 4 * k + 5 <= fila.size(); ++k) {
      const std::int32_t numero = I32(fila, 1 + 4 * k);
      if (numero <= 0 || !Tomar(static_cast<NumPagina>(numero), dueno, donde)) continue;
      const Imagen imagen = paginas.Leer(static_cast<NumPagina>(numero));
      if ((*imagen)[0] != kPaginaDeMapa)
        DanioEnPagina(static_cast<NumPagina>(numero), "se esperaba una página de un mapa de páginas");
      bits(Vista(*imagen).subspan(4), k * por_pagina);
    }
  }
  // The map of free pages says of all pages to come that they are free.
  if (fuera != 0 && mapa != Puntero{kPaginaGlobal, 0})
    Error(mapa.pagina, donde,
          "un mapa nombra la página " + std::to_string(fuera) + ", y el archivo tiene " +
              std::to_string(cantidad));
}

MapaVisto Revision::Mapa(Puntero mapa, Dueno dueno, const std::string& donde) {
  MapaVisto visto;
  if (mapa.pagina == 0) {
    visto.legible = true;
    return visto;
  }
  if (!Tomar(mapa.pagina, kMapas, donde)) return visto;
  if (!mapas_.insert(mapa).second)
    Error(mapa.pagina, donde,
          "el mapa de la fila " + std::to_string(mapa.fila) + " sirve a dos cosas a la vez");
  Probar(mapa.pagina, donde, [&] { LeerBits(mapa, donde, dueno, visto); });
  std::sort(visto.paginas.begin(), visto.paginas.end());
  return visto;
}

bool Revision::PaginaDeFilas(NumPagina numero, const std::string& donde) {
  const Imagen imagen = paginas.Leer(numero);
  const Vista v = *imagen;
  const bool jet3 = paginas.Cab().Jet3();
  const std::size_t cuenta = U16(v, jet3 ? 8 : 12), tabla = jet3 ? 10 : 14, fin = tabla + 2 * cuenta;
  if (fin > v.size()) {
    Error(numero, donde, "dice tener " + std::to_string(cuenta) + " filas, que no caben");
    return false;
  }
  std::size_t bajo = v.size();
  for (std::size_t i = 0; i < cuenta; ++i) {
    const std::size_t desde = U16(v, tabla + 2 * i) & kPosicion;
    if (desde > bajo || desde < fin) {
      Error(numero, donde,
            "la fila " + std::to_string(i) + " empieza en el byte " + std::to_string(desde) + ", " +
                (desde < fin ? "dentro de la lista de filas" : "detrás de donde debe terminar"));
      return false;
    }
    bajo = desde;
  }
  if (U16(v, 2) != bajo - fin)
    Error(numero, donde,
          "dice tener " + std::to_string(U16(v, 2)) + " bytes libres y tiene " + std::to_string(bajo - fin));
  if (cuenta > kFilasPorPagina)
    Error(numero, donde, "tiene " + std::to_string(cuenta) + " filas, y el máximo es 255");
  return true;
}

void Revision::PaginasDeMapas() {
  for (NumPagina p = 0; p < duenos_.size(); ++p) {
    if (duenos_[p] != kMapas) continue;
    Probar(p, "mapas de páginas", [&] {
      const Imagen imagen = paginas.Leer(p);
      if ((*imagen)[0] != kPaginaDeDatos)
        return;  // a page of bits, or one that was named as a map by mistake
      const std::uint32_t dueno = U32(*imagen, 4);
      if (dueno != (p == kPaginaGlobal ? 1U : 0U))
        Error(p, "mapas de páginas", "dice ser de la tabla de la página " + std::to_string(dueno));
      PaginaDeFilas(p, "mapas de páginas");
    });
  }
}

}  // namespace mdb::internal
