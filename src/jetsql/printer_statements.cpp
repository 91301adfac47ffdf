#include "jetsql/printer_internal.h"

namespace jetsql {

void Impresor::Escribir(const Consulta& c) {
  if (c.cruce) {
    t_ += "TRANSFORM ";
    Escribir(*c.cruce->valor);
    t_ += ' ';
  }
  for (std::size_t i = 0; i < c.partes.size(); ++i) {
    if (i > 0) t_ += c.todas[i - 1] ? " UNION ALL " : " UNION ";
    Seleccionar(c.partes[i]);
  }
  for (std::size_t i = 0; i < c.orden.size(); ++i) {
    t_ += i == 0 ? " ORDER BY " : ", ";
    Escribir(*c.orden[i].expr);
    if (c.orden[i].descendente) t_ += " DESC";
  }
  if (!c.cruce) return;
  t_ += " PIVOT ";
  Escribir(*c.cruce->pivote, 8);
  for (std::size_t i = 0; i < c.cruce->lista.size(); ++i) {
    t_ += i == 0 ? " IN (" : ", ";
    Escribir(*c.cruce->lista[i]);
  }
  if (c.cruce->con_lista) t_ += ')';
}

void Impresor::Escribir(const Insercion& s) {
  t_ += "INSERT INTO ";
  Nombre(s.tabla);
  t_ += ' ';
  if (!s.columnas.empty()) {
    Nombres(s.columnas);
    t_ += ' ';
  }
  if (s.consulta) {
    Escribir(*s.consulta);
    return;
  }
  t_ += "VALUES (";
  for (std::size_t i = 0; i < s.valores.size(); ++i) {
    if (i > 0) t_ += ", ";
    Escribir(*s.valores[i]);
  }
  t_ += ')';
}

void Impresor::Escribir(const Actualizacion& s) {
  t_ += "UPDATE ";
  De(s.de);
  for (std::size_t i = 0; i < s.cambios.size(); ++i) {
    t_ += i == 0 ? " SET " : ", ";
    Escribir(*s.cambios[i].columna);
    t_ += " = ";
    Escribir(*s.cambios[i].valor);
  }
  if (!s.donde) return;
  t_ += " WHERE ";
  Escribir(*s.donde);
}

void Impresor::Escribir(const Borrado& s) {
  t_ += "DELETE ";
  if (s.objetivo.empty()) {
    t_ += "*";
  } else {
    Nombre(s.objetivo);
    t_ += ".*";
  }
  t_ += " FROM ";
  De(s.de);
  if (!s.donde) return;
  t_ += " WHERE ";
  Escribir(*s.donde);
}

void Impresor::Tipo(const DefColumna& c) {
  static constexpr std::string_view kNombres[] = {"YESNO",  "BYTE",     "SHORT",    "LONG",    "COUNTER",
                                                  "SINGLE", "DOUBLE",   "CURRENCY", "DECIMAL", "DATETIME",
                                                  "TEXT",   "LONGTEXT", "BINARY",   "GUID",    "LONGBINARY"};
  t_ += kNombres[static_cast<std::size_t>(c.clase)];
  if (c.clase == ClaseColumna::Contador && c.semilla != 1)
    t_.append("(").append(std::to_string(c.semilla)).append(", 1)");
  if (c.largo > 0) t_.append("(").append(std::to_string(c.largo)).append(")");
  if (c.clase == ClaseColumna::Decimal && (c.precision != 18 || c.escala != 0))
    t_.append("(")
        .append(std::to_string(c.precision))
        .append(", ")
        .append(std::to_string(c.escala))
        .append(")");
}

void Impresor::Referir(const Referencia& r) {
  t_ += " REFERENCES ";
  Nombre(r.tabla);
  if (!r.columnas.empty()) {
    t_ += ' ';
    Nombres(r.columnas);
  }
  if (r.actualiza_en_cascada) t_ += " ON UPDATE CASCADE";
  if (r.borra_en_cascada) t_ += " ON DELETE CASCADE";
}

void Impresor::Columna(const DefColumna& c) {
  Nombre(c.nombre);
  t_ += ' ';
  Tipo(c);
  if (c.defecto) {
    t_ += " DEFAULT ";
    Escribir(*c.defecto, 8);
  }
  if (c.no_nulo) t_ += " NOT NULL";
  if (!c.nombre_restriccion.empty()) {
    t_ += " CONSTRAINT ";
    Nombre(c.nombre_restriccion);
  }
  if (c.clave) t_ += " PRIMARY KEY";
  if (c.unica) t_ += " UNIQUE";
  if (c.referencia) Referir(*c.referencia);
}

void Impresor::Restringir(const Restriccion& r) {
  if (!r.nombre.empty()) {
    t_ += "CONSTRAINT ";
    Nombre(r.nombre);
    t_ += ' ';
  }
  static constexpr std::string_view kNombres[] = {"PRIMARY KEY ", "UNIQUE ", "NOT NULL ", "FOREIGN KEY "};
  t_ += kNombres[static_cast<std::size_t>(r.que)];
  Nombres(r.columnas);
  if (r.que == Restriccion::Que::Foranea) Referir(r.referencia);
}

void Impresor::Escribir(const CrearTabla& s) {
  t_ += "CREATE TABLE ";
  Nombre(s.nombre);
  t_ += " (";
  bool coma = false;
  for (const auto& c : s.columnas) {
    if (coma) t_ += ", ";
    coma = true;
    Columna(c);
  }
  for (const auto& r : s.restricciones) {
    if (coma) t_ += ", ";
    coma = true;
    Restringir(r);
  }
  t_ += ')';
}

void Impresor::Escribir(const CrearIndice& s) {
  t_ += s.unico ? "CREATE UNIQUE INDEX " : "CREATE INDEX ";
  Nombre(s.nombre);
  t_ += " ON ";
  Nombre(s.tabla);
  t_ += " (";
  for (std::size_t i = 0; i < s.columnas.size(); ++i) {
    if (i > 0) t_ += ", ";
    Nombre(s.columnas[i].nombre);
    if (s.columnas[i].descendente) t_ += " DESC";
  }
  t_ += ')';
  if (s.primario) t_ += " WITH PRIMARY";
  if (s.sin_nulos) t_ += s.primario ? ", DISALLOW NULL" : " WITH DISALLOW NULL";
  if (s.ignora_nulos) t_ += s.primario || s.sin_nulos ? ", IGNORE NULL" : " WITH IGNORE NULL";
}

void Impresor::Escribir(const CrearVista& s) {
  t_ += "CREATE VIEW ";
  Nombre(s.nombre);
  if (!s.columnas.empty()) {
    t_ += ' ';
    Nombres(s.columnas);
  }
  t_ += " AS ";
  Escribir(*s.consulta);
}

void Impresor::Escribir(const Quitar& s) {
  static constexpr std::string_view kNombres[] = {"DROP TABLE ", "DROP INDEX ", "DROP VIEW "};
  t_ += kNombres[static_cast<std::size_t>(s.que)];
  Nombre(s.nombre);
  if (s.que != Quitar::Que::Indice) return;
  t_ += " ON ";
  Nombre(s.tabla);
}

void Impresor::Escribir(const AlterarTabla& s) {
  t_ += "ALTER TABLE ";
  Nombre(s.tabla);
  switch (s.que) {
    case AlterarTabla::Que::Agregar:
      t_ += " ADD COLUMN ";
      Columna(s.columna);
      break;
    case AlterarTabla::Que::Quitar:
      t_ += " DROP COLUMN ";
      Nombre(s.nombre);
      break;
    case AlterarTabla::Que::AgregarRestriccion:
      t_ += " ADD ";
      Restringir(s.restriccion);
      break;
    case AlterarTabla::Que::QuitarRestriccion:
      t_ += " DROP CONSTRAINT ";
      Nombre(s.nombre);
      break;
  }
}

}  // namespace jetsql
