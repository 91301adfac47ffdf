// Random changes of a table with a model beside it: what the table must hold after each batch.
#pragma once

#include <map>
#include <random>
#include <string>

#include "mdb/tables/table_writer.h"

namespace mdb_test {

class Azar {
 public:
  explicit Azar(unsigned semilla) : motor_(semilla) {}
  unsigned Hasta(unsigned n) { return static_cast<unsigned>(motor_()) % n; }  // 0 to n-1
  bool Uno(unsigned de) { return Hasta(de) == 0; }

 private:
  std::mt19937 motor_;
};

// A value for a column, now and then Null. With `ordenable`, a text has only characters that an index takes.
mdb::Dato DatoAlAzar(Azar& azar, const mdb::Columna& columna, bool ordenable);

struct Cuentas {
  unsigned nuevas = 0, cambiadas = 0, borradas = 0, rechazadas = 0;
  unsigned Hechas() const { return nuevas + cambiadas + borradas; }
};

class TablaConModelo {
 public:
  // Takes the rows that are there as the model's first.
  TablaConModelo(mdb::Paginas& paginas, mdb::NumPagina definicion, std::string nombre);
  // One batch through Aplicar, of about `largo` rows. Some batches pay no heed to unique and required
  // indexes: where these do not allow one, it must be refused, and the pages go back.
  void Cambiar(Azar& azar, unsigned largo);
  // Rows and index entries as read back are the model's; reports through GoogleTest.
  void Comparar();
  void BorrarTodo();
  void Rotar();  // each row gets the values of the next

  const mdb::Definicion& Def() const { return definicion_; }
  const std::map<mdb::IdFila, mdb::Fila>& Filas() const { return filas_; }
  Cuentas cuentas;
  unsigned filas_de_mas = 400;  // above it, batches delete more than they insert

 private:
  using Contenido = std::map<mdb::IdFila, mdb::Fila>;
  mdb::Paginas& paginas_;
  mdb::Definicion definicion_;
  std::vector<bool> ordenable_;
  Contenido filas_;

  mdb::Fila FilaAlAzar(Azar& azar);
  bool SeAdmite(const Contenido& filas, const std::vector<mdb::Fila>& nuevas) const;
  void Aplicar(const mdb::Cambios& cambios, Contenido despues);
};

}  // namespace mdb_test
