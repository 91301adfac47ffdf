// One table of an Access file as it stands in the memory of SQLite.
//
// The rows of the mirror are known by their hidden number: those that were read have 1 to n in the order of
// the file's pages, new ones what SQLite gives them, and `filas` tells which row of the file each of them is.
#pragma once

#include <sqlite3.h>

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "engine_sqlite/mirror.h"
#include "jetsql/catalog.h"
#include "mdb/schema/database.h"

namespace engine_mdb {

struct TablaEspejo {
  // Fixed while the mirror lives.
  int numero = 0;              // names the table to the functions that SQLite calls
  mdb::Base* base = nullptr;   // the file that holds its rows: ours, or that of a link
  std::string nombre_en_base;  // its name there
  mdb::Definicion definicion;
  std::vector<std::size_t> columnas;  // positions in the definition, in the order shown
  jetsql::TablaInfo info;             // its name and columns for the dialect
  std::string motivo;                 // why its rows cannot be written; empty when they can
  bool base_refuses = false;          // and that is so of every table of the base
  std::shared_ptr<mdb::Base> linked;  // keeps `base` open when it is not ours
  int automatica = -1;                // in `columnas`, the autonumber; -1: none

  // What a rollback takes back, since SQLite takes back the tables, indexes and triggers that it speaks of.
  struct Estado {
    bool cargada = false;
    bool indices = false;
    bool listo_para_insertar = false, listo_para_todo = false;  // the relationships are watched
    std::int64_t ultimo_automatico = 0;
    std::shared_ptr<std::vector<mdb::IdFila>> filas;  // by number of the row; page 0: none of the file
  };
  Estado estado, guardado, at_mark;

  std::vector<sqlite3_int64> tocadas;  // rows written since the last write-back; may repeat
  std::size_t touched_at_mark = 0;     // the first so many of them, until the next write-back
  engine_sqlite::Sentencia por_fila;   // reads a row by its number
};

// The statement that makes the table, without its unique indexes.
std::string TextoDeCrear(const TablaEspejo& tabla, const mdb::Propiedades& propiedades);
// Fills the empty table; returns the number of rows. Throws base::Error.
std::int64_t Llenar(sqlite3* espejo, TablaEspejo& tabla);
// Makes what CREATE INDEX would. A unique index that the rows do not obey makes the table one that can only
// be read.
void CrearIndices(sqlite3* espejo, TablaEspejo& tabla);
// Reads a row by its number, as the columns of the mirror.
sqlite3_stmt* LectorPorFila(sqlite3* espejo, TablaEspejo& tabla);

// Which of SQLite's names for the number of a row no column has taken. Throws base::Error when none is left.
std::string NombreDeFila(const TablaEspejo& tabla);

// "name" with its quotes doubled; 'text' likewise.
std::string Citado(std::string_view nombre);
std::string EnComillas(std::string_view texto);
// "a", "b" …
std::string ListaCitada(const std::vector<std::string>& nombres);

}  // namespace engine_mdb
