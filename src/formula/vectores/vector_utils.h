// The table utilities: grow and shrink, fill from SQL, sort, join, find.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "base/error.h"
#include "formula/vectores/list_control.h"
#include "formula/vectores/vector.h"
#include "sesion/db_session.h"

namespace formula {

// Insert (insertar true): posicion -1 appends and receives the new record's index; another inserts there. In
// two dimensions the value is split at "*" into fields; a part that is exactly "^" keeps what the place held
// before (nothing, at the end). On what is not yet an array, or is empty, it makes a one-record vector of the
// value, of two dimensions when the value holds "*". Remove (insertar false): drops the record at posicion. A
// position outside does nothing.
void ManejoVector(Vector& vector, std::string_view valor, std::ptrdiff_t& posicion, bool insertar);
void AgregarRegistro(Vector& vector, std::string_view valor);  // ManejoVector at -1
// The shape of a record one of whose fields may hold anything, stars and "^" too: that field is what stands
// between those before it and those after it.
struct FormaDeRegistro {
  std::size_t campos = 0;
  std::size_t libre = 0;  // its place, from 0
};
void AgregarRegistro(Vector& vector, std::string_view valor, const FormaDeRegistro& forma);
void QuitarRegistro(Vector& vector, std::ptrdiff_t posicion);

// Fills a list, and a vector when given, from a table or a SELECT. `campos` starting with "++" appends.
// Returns 0, or -1 when the statement failed (the control is then as far as it was filled). With a vector the
// first field feeds it (a "*"-joined record) and the item shows the remaining ones; without one the item
// shows all. The item's datum is the number of the record's first "*" part. `forma`: how the record is cut,
// when a field of it may hold anything. A result with fewer columns than are listed is a failing statement.
// Why it failed is noted in `errores`; a fault of the storage travels on, with nothing added.
int LlenarLista(ListControl& control, std::string_view tabla, std::string_view campos,
                std::string_view condicion, std::string_view separador, Vector* vector,
                const sesion::DbSession& sesion, base::ErrorSink* errores = nullptr,
                const FormaDeRegistro* forma = nullptr);
// The statement that LlenarLista runs.
std::string SentenciaDeLista(std::string_view tabla, std::string_view campos, std::string_view condicion);

// Records joined with sep_registro, fields with sep_campo; campo -1: all of them, else that one.
std::string UnirVector(const Vector& vector, int campo, std::string_view sep_campo,
                       std::string_view sep_registro);

// '%' numbers, '#' dates, '$' text, by the weights of the column's values.
char ClaseDeColumna(const std::vector<std::string_view>& valores, base::Date hoy);
// The stable ascending order of the records by a column of that kind: element i is the record that goes to
// place i.
std::vector<std::size_t> OrdenDeColumna(const std::vector<std::string_view>& valores, base::Date hoy);
void OrdenarVector(Vector& vector, int columna, base::Date hoy);

// First record whose column equals the value as text, or -1; over items, the position.
std::ptrdiff_t FindInColumn(std::string_view valor, const Vector& vector, std::size_t columna);
std::ptrdiff_t FindInColumn(std::string_view valor, const std::vector<std::string>& lista);

}  // namespace formula
