#include "mdb/tables/row_writer_internal.h"

namespace mdb::internal {

BytesDeFila ExigirFila(Paginas& paginas, const Definicion& definicion, IdFila fila) {
  auto bytes = BuscarFila(paginas, definicion, fila);
  if (!bytes) throw base::StorageFault("La fila ya no está en la tabla \"" + definicion.nombre + "\"", 3167);
  return std::move(*bytes);
}

EscritorDeFilas::EscritorDeFilas(Paginas& paginas, const Definicion& definicion)
    : paginas_(paginas),
      definicion_(definicion),
      armador_(definicion),
      almacen_(paginas, definicion.Pagina(), definicion.propias, definicion.libres),
      bytes_(definicion.columnas.size()) {}

ValoresLargos& EscritorDeFilas::Largos(std::size_t columna) {
  auto& l = largos_[columna];
  if (!l) l = std::make_unique<ValoresLargos>(paginas_, definicion_, definicion_.columnas[columna]);
  return *l;
}

void EscritorDeFilas::PonerValor(std::size_t columna, const Dato& dato) {
  const Columna& c = definicion_.columnas[columna];
  Bytes& bytes = bytes_[columna];
  bytes.clear();
  crudos_[columna].reset();
  if (EsNulo(dato)) return;
  CodificarValor(definicion_, c, dato, bytes);
  if (c.EsLarga()) bytes = Largos(columna).Guardar(bytes);
  crudos_[columna] = bytes;
}

// Long values that stand in the row leave it, the longest first, until the row has its place on a page.
void EscritorDeFilas::Acortar() {
  std::size_t largo = armador_.Largo(crudos_);
  while (largo > kFilaMasLarga) {
    std::size_t cual = crudos_.size();
    for (std::size_t i = 0; i < crudos_.size(); ++i)
      if (crudos_[i] && definicion_.columnas[i].EsLarga() && EstaEnLinea(*crudos_[i]) &&
          (cual == crudos_.size() || crudos_[i]->size() > crudos_[cual]->size()))
        cual = i;
    if (cual == crudos_.size())
      throw base::Error("La fila es demasiado larga para la tabla \"" + definicion_.nombre + "\": ocupa " +
                            std::to_string(largo) + " bytes y caben " + std::to_string(kFilaMasLarga),
                        3047);
    Bytes afuera = Largos(cual).Guardar(crudos_[cual]->subspan(kCampoLargo), false);
    bytes_[cual] = std::move(afuera);
    crudos_[cual] = bytes_[cual];
    largo = armador_.Largo(crudos_);
  }
}

void EscritorDeFilas::Armar() {
  Acortar();
  armador_.Armar(crudos_, fila_);
}

IdFila EscritorDeFilas::Insertar(const Fila& fila) {
  crudos_.assign(definicion_.columnas.size(), {});
  for (std::size_t i = 0; i < fila.size(); ++i) PonerValor(i, fila[i]);
  Armar();
  return almacen_.Agregar(fila_);
}

void EscritorDeFilas::Cambiar(const CambioDeFila& cambio) {
  IdFila lugar;
  {
    // The image must be gone before its page is written, or the page would be copied.
    const auto vieja = ExigirFila(paginas_, definicion_, cambio.fila);
    lugar = vieja.lugar;
    crudos_ = PartirFila(paginas_.Cab(), definicion_, vieja.bytes);
    for (const auto& [columna, dato] : cambio.valores) {
      if (definicion_.columnas[columna].EsLarga() && crudos_[columna])
        Largos(columna).Soltar(*crudos_[columna]);
      PonerValor(columna, dato);
    }
    Armar();
  }
  Colocar(cambio.fila, lugar);
}

// The row goes home when it has room there, else it stays where it was moved to, else it moves on. Its
// identity always is its first slot, which then only says where the row is.
void EscritorDeFilas::Colocar(IdFila fila, IdFila lugar) {
  const bool movida = lugar != fila;
  if (almacen_.Cambiar(fila, fila_)) {
    if (movida) almacen_.Quitar(lugar);
    return;
  }
  if (movida && almacen_.Cambiar(lugar, fila_, Ranura::kDestino)) return;
  const IdFila nuevo = almacen_.Agregar(fila_, Ranura::kDestino);
  if (!almacen_.Cambiar(fila, Puntero4(nuevo), Ranura::kMovida))
    throw base::StorageFault("Una fila de la tabla \"" + definicion_.nombre +
                             "\" no cabe en su página: compacte la base");
  if (movida) almacen_.Quitar(lugar);
}

void EscritorDeFilas::Borrar(IdFila fila) {
  IdFila lugar;
  {
    const auto vieja = ExigirFila(paginas_, definicion_, fila);
    lugar = vieja.lugar;
    const auto crudos = PartirFila(paginas_.Cab(), definicion_, vieja.bytes);
    for (std::size_t i = 0; i < crudos.size(); ++i)
      if (definicion_.columnas[i].EsLarga() && crudos[i]) Largos(i).Soltar(*crudos[i]);
  }
  if (lugar != fila) almacen_.Quitar(lugar);
  almacen_.Quitar(fila);
}

}  // namespace mdb::internal
