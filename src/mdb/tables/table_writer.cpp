#include "mdb/tables/table_writer.h"

#include <algorithm>

#include "mdb/indexes/index_key.h"
#include "mdb/tables/index_changes_internal.h"
#include "mdb/tables/row_writer_internal.h"

namespace mdb {
namespace {

using internal::CambiosDeIndices;

bool SeEscribe(const Columna& c) {
  if ((c.banderas_ext & Columna::kCalculada) != 0) return false;  // one bit of the two: nobody knows what
  switch (c.tipo) {
    case TipoColumna::Booleano:
    case TipoColumna::Byte:
    case TipoColumna::Entero:
    case TipoColumna::Largo:
    case TipoColumna::Moneda:
    case TipoColumna::Simple:
    case TipoColumna::Doble:
    case TipoColumna::Fecha:
    case TipoColumna::Guid:
    case TipoColumna::Decimal:
    case TipoColumna::BinarioFijo:
      return true;
    // Nobody has seen one of a fixed length, so how it is filled up is not known.
    case TipoColumna::Binario:
    case TipoColumna::Texto:
    case TipoColumna::Ole:
    case TipoColumna::Memo:
      return !c.Fija();
    default:
      return false;
  }
}

void RevisarForma(const Definicion& d, const Cambios& cambios) {
  for (const auto& fila : cambios.nuevas)
    if (fila.size() != d.columnas.size())
      throw base::Error("Una fila nueva de la tabla \"" + d.nombre + "\" no tiene todas sus columnas");
  std::vector<IdFila> tocadas = cambios.borradas;
  for (const auto& c : cambios.cambiadas) {
    tocadas.push_back(c.fila);
    for (const auto& [columna, dato] : c.valores)
      if (columna >= d.columnas.size())
        throw base::Error("La tabla \"" + d.nombre + "\" no tiene la columna que se quiere cambiar");
  }
  std::sort(tocadas.begin(), tocadas.end());
  if (std::adjacent_find(tocadas.begin(), tocadas.end()) != tocadas.end())
    throw base::Error("Una fila de la tabla \"" + d.nombre + "\" se cambia dos veces a la vez");
}

// The stored values of the columns that indexes have; the others are Null.
void LeerColumnas(Paginas& paginas, const Definicion& d, IdFila id, const std::vector<std::size_t>& columnas,
                  Fila& fila) {
  const auto bytes = internal::ExigirFila(paginas, d, id);
  const auto crudos = PartirFila(paginas.Cab(), d, bytes.bytes);
  fila.assign(d.columnas.size(), base::Nulo{});
  for (const std::size_t c : columnas)
    if (crudos[c]) fila[c] = Decodificar(paginas, d.columnas[c], *crudos[c]);
}

void ReunirIndices(Paginas& paginas, const Definicion& d, const Cambios& cambios, CambiosDeIndices& indices) {
  Fila antes, despues;
  for (const IdFila id : cambios.borradas) {
    LeerColumnas(paginas, d, id, indices.Columnas(), antes);
    indices.Sale(id, antes);
  }
  std::vector<bool> cambiadas;
  for (const auto& cambio : cambios.cambiadas) {
    LeerColumnas(paginas, d, cambio.fila, indices.Columnas(), antes);
    despues = antes;
    cambiadas.assign(d.columnas.size(), false);
    for (const auto& [columna, dato] : cambio.valores) {
      despues[columna] = dato;
      cambiadas[columna] = true;
    }
    indices.Cambia(cambio.fila, antes, despues, cambiadas);
  }
  for (std::size_t i = 0; i < cambios.nuevas.size(); ++i) indices.Entra(i, cambios.nuevas[i]);
}

void Contar(Definicion& d, const Cambios& cambios) {
  const std::size_t filas = d.filas + cambios.nuevas.size();
  // Files of other programs may say too few.
  d.filas = static_cast<std::uint32_t>(filas - std::min(filas, cambios.borradas.size()));
  // The next number is one step on from the last, which goes down where the step does.
  const auto ver = [&](std::size_t columna, const Dato& dato) {
    const Columna& c = d.columnas[columna];
    const auto* n = std::get_if<std::int64_t>(&dato);
    if (!c.Autonumerica() || c.tipo != TipoColumna::Largo || n == nullptr) return;
    if (d.incremento < 0 ? *n < d.ultimo_automatico : *n > d.ultimo_automatico)
      d.ultimo_automatico = static_cast<std::int32_t>(*n);
  };
  for (const auto& fila : cambios.nuevas)
    for (std::size_t i = 0; i < fila.size(); ++i) ver(i, fila[i]);
  for (const auto& cambio : cambios.cambiadas)
    for (const auto& [columna, dato] : cambio.valores) ver(columna, dato);
}

}  // namespace

std::string MotivoNoEscribible(const Cabecera& cabecera, const Definicion& definicion) {
  const std::string tabla = "La tabla \"" + definicion.nombre + "\" solo se lee: ";
  if (cabecera.Jet3()) return tabla + "los archivos de Access 97 no se escriben";
  if (cabecera.version != Version::Jet4) return tabla + "los archivos .accdb no se escriben";
  if (definicion.propias.pagina == 0) return tabla + "no tiene mapa de páginas";
  for (const auto& c : definicion.columnas) {
    if (c.Calculada()) return tabla + "la columna \"" + c.nombre + "\" es calculada";
    if (!SeEscribe(c)) return tabla + "la columna \"" + c.nombre + "\" es de un tipo que no se escribe";
  }
  for (const auto& indice : definicion.reales)
    if (const std::string motivo = MotivoSinClaves(cabecera, definicion, indice); !motivo.empty())
      return tabla + motivo;
  return {};
}

std::vector<IdFila> Aplicar(Paginas& paginas, Definicion& definicion, const Cambios& cambios) {
  if (const std::string motivo = MotivoNoEscribible(paginas.Cab(), definicion); !motivo.empty())
    throw base::Error(motivo);
  RevisarForma(definicion, cambios);
  CambiosDeIndices indices(paginas, definicion);
  ReunirIndices(paginas, definicion, cambios, indices);
  indices.QuitarYRevisar();
  std::vector<IdFila> nuevas;
  nuevas.reserve(cambios.nuevas.size());
  {
    internal::EscritorDeFilas filas(paginas, definicion);
    for (const IdFila id : cambios.borradas) filas.Borrar(id);
    for (const auto& cambio : cambios.cambiadas) filas.Cambiar(cambio);
    for (const auto& fila : cambios.nuevas) nuevas.push_back(filas.Insertar(fila));
  }
  indices.Poner(nuevas);
  Contar(definicion, cambios);
  EscribirContadores(paginas, definicion);
  return nuevas;
}

}  // namespace mdb
