// A table's definition (pages of type 2): its columns, indexes and page maps.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "mdb/pages/pages.h"

namespace mdb {

enum class TipoColumna : std::uint8_t {
  Booleano = 1,
  Byte = 2,
  Entero = 3,  // 16 bits
  Largo = 4,   // 32 bits
  Moneda = 5,
  Simple = 6,
  Doble = 7,
  Fecha = 8,
  Binario = 9,
  Texto = 10,
  Ole = 11,
  Memo = 12,
  Guid = 15,
  Decimal = 16,
  BinarioFijo = 17,
  Complejo = 18,       // .accdb: key of another table's rows
  EnteroGrande = 19,   // .accdb
  FechaExtendida = 20  // .accdb: read as its text
};

struct Columna {
  static constexpr std::uint8_t kFija = 0x01, kActualizable = 0x02, kAutonumerica = 0x04, kDeSistema = 0x10,
                                kGuidAutomatico = 0x40, kHipervinculo = 0x80;
  static constexpr std::uint8_t kComprime = 0x01, kCalculada = 0xC0;  // of banderas_ext

  std::string nombre;
  TipoColumna tipo = TipoColumna::Largo;
  std::uint16_t numero = 0;    // bit of the null mask; what indexes name it by
  std::uint16_t variable = 0;  // its place among the variable columns
  std::uint16_t posicion = 0;  // for display
  std::uint16_t lcid = 0;      // sort order of Text and Memo; in others it says nothing
  std::uint8_t version_orden = 0;
  std::uint8_t precision = 0, escala = 0;  // of Numeric
  std::uint8_t banderas = kActualizable, banderas_ext = 0;
  std::uint16_t desplazamiento = 0;  // of a fixed one
  std::uint16_t largo = 0;           // bytes; 0 for Memo and OLE
  Puntero lv_propias, lv_libres;     // page maps of a Memo's or OLE's long values

  bool Fija() const { return (banderas & kFija) != 0; }  // never told by the type
  bool Autonumerica() const { return (banderas & kAutonumerica) != 0; }
  bool EsTexto() const { return tipo == TipoColumna::Texto || tipo == TipoColumna::Memo; }
  // Of an .accdb: each value is wrapped, and stands in the row even for a Boolean.
  bool Calculada() const { return (banderas_ext & kCalculada) == kCalculada; }
  bool EsLarga() const { return tipo == TipoColumna::Memo || tipo == TipoColumna::Ole; }
};

struct IndiceReal {
  static constexpr std::uint8_t kUnico = 0x01, kIgnoraNulos = 0x02, kRequerido = 0x08, kSiempre = 0x80;
  struct Parte {
    std::uint16_t columna = 0;  // its `numero`
    bool descendente = false;
  };
  std::vector<Parte> partes;
  Puntero mapa;
  NumPagina raiz = 0;
  std::uint8_t banderas = kSiempre;
  std::uint32_t entradas = 0, distintas = 0;  // counters of the definition; not exact in files of Access

  bool Unico() const { return (banderas & kUnico) != 0; }
  bool IgnoraNulos() const { return (banderas & kIgnoraNulos) != 0; }
  bool Requerido() const { return (banderas & kRequerido) != 0; }
};

// A name over a real index; several may share one.
struct IndiceLogico {
  enum Clase : std::uint8_t { Normal = 0, Primario = 1, Foraneo = 2 };
  enum Lado : std::uint8_t { Ninguno = 0, Padre = 1, Hijo = 2 };
  static constexpr std::uint8_t kSinRelacion =
      4;  // both cascade bytes of an index that is in no relationship
  std::string nombre;
  std::uint32_t numero = 0;
  std::uint32_t real = 0;  // in `reales`
  std::uint8_t lado = Ninguno;
  std::int32_t otro_indice = -1;  // its number in the other table
  NumPagina otra_tabla = 0;
  std::uint8_t actualiza_en_cascada = kSinRelacion, borra_en_cascada = kSinRelacion;
  std::uint8_t clase = Normal;
};

struct Definicion {
  static constexpr std::uint8_t kDeUsuario = 0x4E, kDeSistema = 0x53;
  static constexpr std::size_t kColumnas = 255, kIndices = 32;  // the most that a table can have

  std::string nombre;              // of the catalog; not in the definition itself
  std::vector<NumPagina> paginas;  // of the definition; the first is the table's identity
  std::uint32_t filas = 0;
  std::int32_t ultimo_automatico = 0, incremento = 1;
  std::uint8_t clase = kDeUsuario;
  std::uint16_t max_columnas = 0, variables = 0;  // deleted columns included
  std::vector<Columna> columnas;                  // as stored
  std::vector<IndiceReal> reales;
  std::vector<IndiceLogico> logicos;
  Puntero propias, libres;  // page maps of the data pages

  NumPagina Pagina() const { return paginas.empty() ? 0 : paginas.front(); }
  // Positions in `columnas` in the order in which Access shows them.
  std::vector<std::size_t> EnOrden() const;
  // Position in `columnas` by `numero`, or by name whatever its case.
  std::optional<std::size_t> PorNumero(std::uint16_t numero) const;
  std::optional<std::size_t> PorNombre(std::string_view nombre) const;
  const IndiceLogico* ClavePrimaria() const;
};

// Throws Danio naming the page; never loops over a chain of definition pages that comes back.
Definicion LeerDefinicion(Paginas& paginas, NumPagina pagina);

// Writes the definition over its pages; takes more pages, or frees those that it no longer needs, and keeps
// the first. A definition without pages gets its first here.
void EscribirDefinicion(Paginas& paginas, Definicion& definicion);
// Writes only the row count, the last autonumber and the indexes' counters, in place: what each change of
// rows touches.
void EscribirContadores(Paginas& paginas, const Definicion& definicion);

}  // namespace mdb
