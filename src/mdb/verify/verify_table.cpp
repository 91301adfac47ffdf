#include <algorithm>
#include <limits>
#include <optional>

#include "mdb/indexes/index_key.h"
#include "mdb/pages/data_page_internal.h"
#include "mdb/rows/row_internal.h"
#include "mdb/rows/table.h"
#include "mdb/verify/verify_internal.h"

namespace mdb::internal {
namespace {

std::uint64_t Numero(Puntero p) { return static_cast<std::uint64_t>(p.pagina) << 8 | p.fila; }

// Characters whose places in the accent section are not sure, or that a text of ours does not tell apart.
bool TieneDudosos(const std::string& texto) {
  for (const char* c : {"ß", "Æ", "æ", "Þ", "þ", "Œ", "œ", "\xEF\xBF\xBD"})
    if (texto.find(c) != std::string::npos) return true;
  return texto.find('\0') != std::string::npos;
}

class RevisionDeTabla {
 public:
  RevisionDeTabla(Revision& r, const Definicion& d, const std::vector<std::size_t>& columnas,
                  const AlVer& al_ver)
      : r_(r), d_(d), al_ver_(al_ver), donde_("tabla " + Entre(d.nombre)), pedidas_(columnas) {}

  void Hacer() {
    ++r_.informe.tablas;
    const auto definicion = r_.NuevoDueno("la definición de la tabla " + Entre(d_.nombre));
    for (const NumPagina p : d_.paginas) r_.Tomar(p, definicion, donde_);
    RevisarDefinicion(r_, d_, donde_);
    dueno_mapas_ = r_.NuevoDueno("los mapas de la tabla " + Entre(d_.nombre));
    MapasDeLargos();
    PrepararIndices();
    Datos();
    Movidas();
    Piezas();
    Contadores();
    for (std::size_t i = 0; i < d_.reales.size(); ++i) RevisarIndice(r_, d_, i, filas_);
  }

 private:
  MapaVisto Mapas(Puntero propias, Puntero libres, const std::string& que) {
    MapaVisto mias = r_.Mapa(propias, dueno_mapas_, donde_);
    const MapaVisto con_lugar = r_.Mapa(libres, dueno_mapas_, donde_);
    for (const NumPagina p : con_lugar.paginas)
      if (mias.legible && !std::binary_search(mias.paginas.begin(), mias.paginas.end(), p))
        r_.Error(p, donde_, "figura con espacio libre " + que + " y no es suya");
    return mias;
  }

  // The pages of rows whose slots can be trusted.
  std::vector<NumPagina> Paginas(const MapaVisto& mapa, std::uint32_t dueno_escrito, Revision::Dueno dueno) {
    std::vector<NumPagina> buenas;
    for (const NumPagina p : mapa.paginas) {
      if (!r_.Tomar(p, dueno, donde_)) continue;
      r_.Probar(p, donde_, [&] {
        const Imagen imagen = r_.paginas.Leer(p);
        if ((*imagen)[0] != kPaginaDeDatos)
          r_.Error(p, donde_,
                   "figura entre sus páginas de datos y es de otra clase (" +
                       std::to_string(unsigned{(*imagen)[0]}) + ")");
        else if (U32(*imagen, 4) != dueno_escrito)
          r_.Error(p, donde_,
                   U32(*imagen, 4) == kLval ? "figura entre sus páginas de datos y es de valores largos"
                                            : "figura entre sus páginas y dice ser de la página " +
                                                  std::to_string(U32(*imagen, 4)));
        else if (r_.PaginaDeFilas(p, donde_))
          buenas.push_back(p);
      });
    }
    return buenas;
  }

  void MapasDeLargos() {
    largos_.resize(d_.columnas.size());
    for (std::size_t i = 0; i < d_.columnas.size(); ++i) {
      const Columna& c = d_.columnas[i];
      if (!c.EsLarga() || c.lv_propias.pagina == 0) continue;
      const MapaVisto mapa = Mapas(c.lv_propias, c.lv_libres, "para la columna " + Entre(c.nombre));
      const auto dueno = r_.NuevoDueno("los valores largos de la columna " + Entre(c.nombre) +
                                       " de la tabla " + Entre(d_.nombre));
      largos_[i] = mapa.paginas;
      for (const NumPagina p : Paginas(mapa, kLval, dueno)) paginas_largas_.push_back(p);
    }
  }

  void PrepararIndices() {
    std::vector<bool> elegida(d_.columnas.size(), false);
    for (const std::size_t i : pedidas_) elegida[i] = true;
    for (std::size_t i = 0; i < d_.columnas.size(); ++i)
      if (d_.columnas[i].Autonumerica() && d_.columnas[i].tipo == TipoColumna::Largo) {
        autonumerica_ = i;
        elegida[i] = true;
      }
    filas_.indices.resize(d_.reales.size());
    for (std::size_t k = 0; k < d_.reales.size(); ++k) {
      filas_.indices[k].con_claves = MotivoSinClaves(r_.paginas.Cab(), d_, d_.reales[k]).empty();
      for (const auto& parte : d_.reales[k].partes)
        if (const auto i = d_.PorNumero(parte.columna)) elegida[*i] = true;
    }
    for (std::size_t i = 0; i < elegida.size(); ++i)
      if (elegida[i]) elegidas_.push_back(i);
    fila_.resize(d_.columnas.size());
  }

  void Datos() {
    if (d_.propias.pagina == 0 || d_.libres.pagina == 0)
      r_.Error(d_.Pagina(), donde_, "la tabla no tiene los mapas de sus páginas");
    const MapaVisto mapa = Mapas(d_.propias, d_.libres, "");
    completas_ = mapa.legible;
    const auto dueno = r_.NuevoDueno("los datos de la tabla " + Entre(d_.nombre));
    const std::vector<NumPagina> buenas = Paginas(mapa, d_.Pagina(), dueno);
    completas_ = completas_ && buenas.size() == mapa.paginas.size();
    for (const NumPagina p : buenas)
      r_.Probar(p, donde_, [&] {
        const Imagen imagen = r_.paginas.Leer(p);
        const PaginaDeDatos datos(r_.paginas.Cab(), p, *imagen);
        for (unsigned i = 0; i < std::min(datos.Cantidad(), 256U); ++i) {
          const Ranura ranura = datos.En(i);
          const IdFila id{p, static_cast<std::uint8_t>(i)};
          if (ranura.Destino()) destinos_.push_back(id);
          if (!ranura.Salteada()) UnaFila(id, ranura.Movida() ? std::optional<Vista>() : ranura.bytes);
        }
      });
  }

  void UnaFila(IdFila id, std::optional<Vista> bytes) {
    filas_.ids.push_back(id);
    const std::string donde = donde_ + ", " + DeFila(id).substr(3);  // without "la"
    Imagen imagen;                                                   // keeps the bytes of a moved row
    const bool legible = r_.Probar(id.pagina, donde, [&] {
      if (!bytes) {
        const auto movida = BuscarFila(r_.paginas, d_, id);
        if (!movida) DanioEnPagina(id.pagina, "la fila movida no se encuentra");
        movidas_.push_back(movida->lugar);
        imagen = movida->imagen;
        bytes = movida->bytes;
      }
      Forma(*bytes);
      Valores(id, *bytes, donde);
    });
    filas_.legible.push_back(legible);
    ++r_.informe.filas;
    Claves(legible);
    if (legible && al_ver_) al_ver_(id, fila_);
  }

  // What a row says of itself, apart from its values.
  void Forma(Vista bytes) const {
    const bool jet3 = r_.paginas.Cab().Jet3();
    const std::size_t columnas = jet3 ? U8(bytes, 0) : U16(bytes, 0);
    if (columnas > d_.max_columnas)
      throw Danio("la fila dice tener " + std::to_string(columnas) + " columnas, y la tabla llega a " +
                  std::to_string(d_.max_columnas));
    if (jet3 || d_.variables == 0) return;
    const std::size_t mascara = (columnas + 7) / 8;
    if (mascara + 4 > bytes.size()) LanzarCorto();
    const std::size_t tabla = bytes.size() - mascara - 4, variables = U16(bytes, tabla + 2);
    if (variables > d_.variables || 2 * variables > tabla)
      throw Danio("la fila dice tener " + std::to_string(variables) + " columnas de largo variable");
    for (std::size_t i = 0; i < variables; ++i)
      if (U16(bytes, tabla - 2 * i) > U16(bytes, tabla - 2 * (i + 1)))
        throw Danio("las columnas de largo variable de la fila se pisan");
  }

  void Valores(IdFila id, Vista bytes, const std::string& donde) {
    const FilaAbierta abierta(r_.paginas.Cab(), d_, bytes);
    for (std::size_t i = 0; i < d_.columnas.size(); ++i) {
      const Columna& c = d_.columnas[i];
      const Crudo crudo = abierta.De(c);
      if (!crudo || c.Calculada()) continue;
      if (c.EsLarga())
        ValorLargo(id, i, *crudo, donde);
      else if (!c.Fija())
        Variable(c, *crudo);
    }
    for (const std::size_t i : elegidas_) {
      fila_[i] = base::Nulo{};
      if (const Crudo crudo = abierta.De(d_.columnas[i]))
        DecodificarEn(r_.paginas, d_.columnas[i], *crudo, fila_[i]);
    }
    if (!autonumerica_) return;
    if (const auto* n = std::get_if<std::int64_t>(&fila_[*autonumerica_])) mayor_ = std::max(mayor_, *n);
  }

  // The bytes of a column of variable length against its type.
  void Variable(const Columna& c, Vista crudo) const {
    const std::string que = "el valor de la columna " + Entre(c.nombre);
    if (c.tipo != TipoColumna::Texto && c.tipo != TipoColumna::Binario) {
      if (c.tipo != TipoColumna::BinarioFijo && crudo.size() != AnchoFijo(c))
        throw Danio(que + " no mide lo que su tipo");
      return;
    }
    const bool comprimido = c.tipo == TipoColumna::Texto && !r_.paginas.Cab().Jet3() && crudo.size() >= 2 &&
                            crudo[0] == 0xFF && crudo[1] == 0xFE;
    // A compressed text has a byte a character as long as it does not switch, which a 0 tells.
    std::size_t bytes = crudo.size();
    if (comprimido) {
      const Vista letras = crudo.subspan(2);
      if (std::find(letras.begin(), letras.end(), 0) != letras.end()) return;
      bytes = 2 * letras.size();
    }
    if (bytes > c.largo) throw Danio(que + " es más largo que la columna");
    if (c.tipo == TipoColumna::Texto && !r_.paginas.Cab().Jet3() && bytes % 2 != 0)
      throw Danio(que + " es un texto cortado por la mitad de una letra");
  }

  void ValorLargo(IdFila id, std::size_t columna, Vista campo, const std::string& donde) {
    constexpr std::uint32_t kEnLinea = 0x80000000, kUnaFila = 0x40000000, kLargo = 0x3FFFFFFF;
    const std::string que = "el valor largo de la columna " + Entre(d_.columnas[columna].nombre);
    if (campo.empty()) return;  // an empty text of old versions
    const std::uint32_t palabra = U32(campo, 0);
    const std::size_t largo = palabra & kLargo;
    Trozo(campo, 0, 12);
    std::size_t hay = campo.size() - 12;
    if ((palabra & kEnLinea) == 0) {
      ++r_.informe.valores_largos;
      hay = (palabra & kUnaFila) != 0 ? UnaPieza(LeerPuntero(campo, 4), columna, donde).size()
                                      : Cadena(LeerPuntero(campo, 4), columna, largo, donde);
    }
    if (hay != largo)
      r_.Error(id.pagina, donde,
               que + " dice medir " + std::to_string(largo) + " bytes y hay " + std::to_string(hay));
  }

  std::size_t Cadena(Puntero puntero, std::size_t columna, std::size_t largo, const std::string& donde) {
    std::size_t hay = 0;
    while (puntero.pagina != 0) {
      const std::size_t antes = r_.piezas.size();
      const Vista pieza = UnaPieza(puntero, columna, donde);
      if (r_.piezas.size() == antes) break;  // met before: told, and the chain may come back for ever
      hay += Trozo(pieza, 4, pieza.size() < 4 ? 4 : pieza.size() - 4).size();
      if (hay > largo) break;
      puntero = LeerPuntero(pieza, 0);
    }
    return hay;
  }

  // One row of a page of long values. The view holds as long as `pieza_`.
  Vista UnaPieza(Puntero puntero, std::size_t columna, const std::string& donde) {
    std::uint32_t dueno = 0;
    Lugar lugar = Seguir(r_.paginas, puntero, &dueno);
    if (dueno != kLval || lugar.ranura.banderas != 0)
      DanioEnPagina(puntero.pagina,
                    "un valor largo lleva a " + DeFila(puntero) + ", que no es de valores largos");
    if (!r_.piezas.insert(Numero(puntero)).second)
      r_.Error(puntero.pagina, donde, "dos valores largos usan " + DeFila(puntero));
    const auto& mias = largos_[columna];
    if (!std::binary_search(mias.begin(), mias.end(), puntero.pagina))
      r_.Error(
          puntero.pagina, donde,
          "un valor largo está en una página que no es de la columna " + Entre(d_.columnas[columna].nombre));
    pieza_ = std::move(lugar.imagen);
    return lugar.ranura.bytes;
  }

  void Claves(bool legible) {
    for (std::size_t k = 0; k < d_.reales.size(); ++k) {
      auto& de = filas_.indices[k];
      std::uint8_t marcas = FilasVistas::DeIndice::kSinClave;
      if (legible) marcas = Clave(k, de);
      de.fines.push_back(de.claves.size());
      de.marcas.push_back(marcas);
    }
  }

  std::uint8_t Clave(std::size_t k, FilasVistas::DeIndice& de) {
    using M = FilasVistas::DeIndice;
    const IndiceReal& indice = d_.reales[k];
    std::uint8_t marcas = 0;
    try {
      if (TodosNulos(d_, indice, fila_)) marcas |= M::kTodosNulos;
      if (AlgunNulo(d_, indice, fila_)) marcas |= M::kAlgunNulo;
      if (!de.con_claves) return marcas | M::kSinClave;
      ClaveDeFila(r_.paginas.Cab(), d_, indice, fila_, clave_);
    } catch (
        const base::Error&) {  // a character or a column without keys; what else is wrong was told before
      return marcas | M::kSinClave;
    }
    AgregarBytes(de.claves, clave_);
    for (const auto& parte : indice.partes)
      if (const auto i = d_.PorNumero(parte.columna))
        if (const auto* texto = std::get_if<std::string>(&fila_[*i]))
          if (TieneDudosos(*texto)) marcas |= M::kDudosa;
    return marcas;
  }

  // Each place of a moved row belongs to one row.
  void Movidas() {
    std::sort(movidas_.begin(), movidas_.end());
    for (std::size_t i = 1; i < movidas_.size(); ++i)
      if (movidas_[i] == movidas_[i - 1])
        r_.Error(movidas_[i].pagina, donde_, "dos filas movidas llevan a " + DeFila(movidas_[i]));
    if (!completas_) return;
    for (const IdFila& destino : destinos_)
      if (!std::binary_search(movidas_.begin(), movidas_.end(), destino))
        r_.Error(destino.pagina, donde_, DeFila(destino) + " es la de una fila movida que no existe");
  }

  void Piezas() {
    std::size_t sueltas = 0;
    NumPagina primera = 0;
    for (const NumPagina p : paginas_largas_)
      r_.Probar(p, donde_, [&] {
        const Imagen imagen = r_.paginas.Leer(p);
        const PaginaDeDatos datos(r_.paginas.Cab(), p, *imagen);
        for (unsigned i = 0; i < datos.Cantidad(); ++i) {
          const Ranura ranura = datos.En(i);
          if (ranura.banderas != 0 && ranura.banderas != (Ranura::kMovida | Ranura::kOculta))
            r_.Error(p, donde_,
                     "la fila " + std::to_string(i) + " de valores largos tiene marcas de otra clase");
          if (ranura.banderas != 0 || r_.piezas.contains(Numero({p, static_cast<std::uint8_t>(i)}))) continue;
          if (sueltas++ == 0) primera = p;
        }
      });
    if (sueltas != 0)
      r_.Nota(primera, donde_,
              Cuantas(sueltas, "un trozo de valor largo no es", "trozos de valores largos no son") +
                  " de ninguna fila");
  }

  void Contadores() {
    if (completas_ && d_.filas != filas_.ids.size())
      r_.Nota(d_.Pagina(), donde_,
              "la definición cuenta " + std::to_string(d_.filas) + " filas y hay " +
                  std::to_string(filas_.ids.size()));
    if (autonumerica_ && mayor_ > d_.ultimo_automatico)
      r_.Nota(d_.Pagina(), donde_,
              "el último autonumérico es " + std::to_string(d_.ultimo_automatico) + " y hay un " +
                  std::to_string(mayor_));
  }

  Revision& r_;
  const Definicion& d_;
  const AlVer& al_ver_;
  std::string donde_;
  std::vector<std::size_t> pedidas_, elegidas_;
  Revision::Dueno dueno_mapas_ = 0;
  std::vector<std::vector<NumPagina>> largos_;  // by column, the pages of its long values
  std::vector<NumPagina> paginas_largas_;
  std::vector<IdFila> movidas_, destinos_;
  bool completas_ = false;  // all pages of rows could be read
  std::optional<std::size_t> autonumerica_;
  std::int64_t mayor_ = std::numeric_limits<std::int32_t>::min();
  FilasVistas filas_;
  Fila fila_;
  Bytes clave_;
  Imagen pieza_;
};

}  // namespace

Vista FilasVistas::DeIndice::Clave(std::size_t fila) const {
  const std::size_t desde = fila == 0 ? 0 : fines[fila - 1];
  return Vista(claves).subspan(desde, fines[fila] - desde);
}

void RevisarTabla(Revision& revision, const Definicion& definicion, const std::vector<std::size_t>& columnas,
                  const AlVer& al_ver) {
  RevisionDeTabla(revision, definicion, columnas, al_ver).Hacer();
}

}  // namespace mdb::internal
