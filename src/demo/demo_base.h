// A payroll base to try the program on: two companies, their contracts and concepts, and liquidations of a
// chosen month, with the files of hours and settings that go with it. Everything is carried inside the
// program; demo/README.md says what is there.
#pragma once

#include <string>
#include <vector>

#include "base/date.h"
#include "db/connection.h"

namespace demo {

// The engine of a demo base.
enum class Motor { Mdb, Sqlite };

// The name that ConfBase.cfg gives to the base; the maker of a demo folder creates the base under it.
const char* NombreDeBase(Motor motor);

struct ArchivoDemo {
  std::string nombre;
  std::string bytes;  // CP1252, lines parted by CR LF, none after the last
};

// Tables, indexes and stored queries, into an empty base. All or nothing; throws db::Error.
void CrearEsquema(db::Connection& conexion);

// The schema and the rows, placed around the month of `mes`, in one transaction: on failure the base is left
// as it was. Throws db::Error.
void LlenarBase(db::Connection& conexion, base::Date mes);

// The files of a demo folder beside its base: ConfBase.cfg (the reference to open), ImportDeMarcas.ini
// (settings with relations), horas.txt (delimited) and horas_ancho_fijo.txt (the same hours in fixed width).
std::vector<ArchivoDemo> ArchivosDemo(base::Date mes, Motor motor = Motor::Mdb);

// The settings of ArchivosDemo for the other file: fixed width when `ancho_fijo`, delimited otherwise.
std::string AjustesDemo(base::Date mes, bool ancho_fijo);

}  // namespace demo
