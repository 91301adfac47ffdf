// One page of an index, node or leaf: its entries as whole bytes, in order.
//
// Leaf entry: key, page (3 bytes, highest first), row. Node entry: the same of the last leaf entry below its
// child, then the child's page (4 bytes, highest first). The last child of a node, its tail, has no entry.
#pragma once

#include <compare>
#include <vector>

#include "mdb/pages/pages.h"

namespace mdb {

class PaginaDeIndice {
 public:
  static constexpr std::size_t kCapacidad = 3616;  // bytes of entries on a page of Jet 4
  // So long that two entries always have room on a page.
  static constexpr std::size_t kClaveMaxima = kCapacidad / 2 - 8;

  // An empty page, not yet written.
  PaginaDeIndice(NumPagina pagina, bool es_hoja) : numero(pagina), hoja(es_hoja) {}
  // Throws Danio for a page of another type or table, or whose entries do not fit together. `tabla` 0: any.
  static PaginaDeIndice Leer(Paginas& paginas, NumPagina numero, NumPagina tabla);

  NumPagina numero = 0;
  bool hoja = true;
  std::uint8_t nivel = 0;                           // 0 in leaves, else the distance from them
  NumPagina anterior = 0, siguiente = 0, cola = 0;  // neighbours on the level, last child of a node
  std::size_t prefijo = 0;                          // as stored: bytes left out of all entries but the first
  std::size_t libres = 0, libres_segun_pagina = 0;  // of a page just read: as counted, as its field says
  NumPagina duena = 0;                              // the definition it says it belongs to

  std::size_t Cantidad() const { return fines_.size(); }
  Vista Completa(std::size_t i) const;
  Vista Clave(std::size_t i) const;
  IdFila FilaDe(std::size_t i) const;
  NumPagina Hijo(std::size_t i) const;  // of a node; `Cantidad()` is the tail
  // Of entry `i` with (key, row).
  std::strong_ordering Comparar(std::size_t i, Vista clave, IdFila fila) const;
  // First entry that is not before (key, row); `Cantidad()` when all are.
  std::size_t Primera(Vista clave, IdFila fila) const;

  // Changes stay here until Escribir.
  void Insertar(std::size_t i, Vista completa);
  void Reemplazar(std::size_t i, Vista completa);
  void Quitar(std::size_t desde, std::size_t hasta);
  // All entries of `otra` from `desde` to before `hasta`, behind those that are here.
  void Agregar(const PaginaDeIndice& otra, std::size_t desde, std::size_t hasta);
  std::size_t BytesSinPrefijo() const { return fines_.empty() ? 0 : fines_.back(); }
  bool Cabe() const { return BytesSinPrefijo() <= kCapacidad || BytesConPrefijo() <= kCapacidad; }
  // Leaves out the common part of the keys where the page had it left out, or where it must be. Jet 4 only.
  void Escribir(Paginas& paginas, NumPagina tabla);

 private:
  std::size_t Comun() const;  // bytes that all keys begin with; 0 in nodes
  std::size_t BytesConPrefijo() const;
  Vista Datos() const { return propia_ ? Vista(datos_) : ajenos_; }
  void Apropiar();  // makes the entries this object's own, for a change
  void DeshacerPrefijo();

  Imagen imagen_;  // while the entries are those of the page as read
  Vista ajenos_;
  Bytes datos_;
  std::vector<std::size_t> fines_;  // where each entry ends
  bool propia_ = true;
};

// Byte by byte; a key that begins another comes first.
std::strong_ordering CompararClaves(Vista a, Vista b);
// (key, row) as the bytes of an entry; with a child, of a node's.
Bytes EntradaCompleta(Vista clave, IdFila fila);
Bytes EntradaCompleta(Vista clave, IdFila fila, NumPagina hijo);

}  // namespace mdb
