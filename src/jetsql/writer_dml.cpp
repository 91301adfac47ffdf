#include <algorithm>

#include "base/error.h"
#include "jetsql/types_internal.h"
#include "jetsql/writer_parts_internal.h"

namespace jetsql {
namespace {

const ColumnaFuente& ColumnaCambiada(const Asignacion& a) {
  return a.columna->fuente->columnas[static_cast<std::size_t>(a.columna->columna)];
}

// "(r0, …, v0, …)": the rows of the tables to change, and the values.
std::string Columnas(std::size_t filas, std::size_t valores) {
  std::string texto = " (";
  for (std::size_t i = 0; i < filas; ++i) texto += (i > 0 ? ", \"r" : "\"r") + std::to_string(i) + "\"";
  for (std::size_t i = 0; i < valores; ++i) texto += ", \"v" + std::to_string(i) + "\"";
  return texto + ")";
}

}  // namespace

void ChangeWriter::Escribir(const Insercion& s) {
  std::vector<ColumnaTabla> columnas;
  for (const int i : s.destinos) columnas.push_back(s.info->columnas[static_cast<std::size_t>(i)]);
  if (s.consulta) {
    InsertarConsulta(s.info->nombre, columnas, *s.consulta);
    return;
  }
  t_ += "INSERT INTO ";
  d_.Nombre(s.info->nombre);
  for (std::size_t i = 0; i < columnas.size(); ++i) {
    t_ += i == 0 ? " (" : ", ";
    d_.Nombre(columnas[i].nombre);
  }
  t_ += ") VALUES (";
  for (std::size_t i = 0; i < s.valores.size(); ++i) {
    if (i > 0) t_ += ", ";
    Asignado(*s.valores[i], columnas[i].tipo);
  }
  t_ += ')';
}

void ChangeWriter::InsertarConsulta(std::string_view tabla, const std::vector<ColumnaTabla>& columnas,
                                    const Consulta& c) {
  std::vector<base::Tipo> tipos;
  t_ += "INSERT INTO ";
  d_.Nombre(tabla);
  for (std::size_t i = 0; i < columnas.size(); ++i) {
    t_ += i == 0 ? " (" : ", ";
    d_.Nombre(columnas[i].nombre);
    tipos.push_back(columnas[i].tipo);
  }
  t_ += ") ";
  const Seleccion& s = c.partes[0];
  if (c.partes.size() == 1 && !s.tope && s.distincion == Distincion::Ninguna) {
    ModoLista modo;
    modo.destinos = &tipos;
    d_.query.Parte(s, c.orden, modo, false);
    return;
  }
  // The values are told apart and counted before they are converted.
  Fuente fuente;
  fuente.alias_sql = "jet_s";
  fuente.columnas = c.salida;
  t_ += "SELECT ";
  for (std::size_t i = 0; i < columnas.size(); ++i) {
    Expr e(Nodo::Columna);
    e.fuente = &fuente;
    e.columna = static_cast<int>(i);
    e.tipo = c.salida[i].tipo;
    if (i > 0) t_ += ", ";
    Asignado(e, tipos[i]);
  }
  t_ += " FROM (";
  ModoLista modo;
  modo.nombres = modo.cotejar = true;
  d_.query.EscribirConsulta(c, modo);
  t_ += ") AS \"jet_s\"";
}

void ChangeWriter::Escribir(const Borrado& s) {
  const Fuente& f = *s.fuente;
  t_ += "DELETE FROM ";
  d_.Nombre(f.tabla->nombre);
  if (s.fuentes.size() == 1) {
    if (f.alias_sql != f.tabla->nombre) {
      t_ += " AS ";
      d_.Nombre(f.alias_sql);
    }
    if (s.donde) {
      t_ += " WHERE ";
      d_.expr.Condicion(*s.donde);
    }
    return;
  }
  if (!d_.from.Alcanzable(s.de, f))
    throw base::Error("La operación debe usar una consulta actualizable", 3073);
  Fuente fila;
  fila.columnas = f.columnas;
  fila.alias_sql = f.tabla->nombre;
  t_ += " WHERE ";
  d_.from.FilaDe(fila);
  t_ += " IN (SELECT ";
  d_.from.FilaDe(f);
  d_.from.DeYDonde(s.de, s.donde);
  t_ += ')';
}

// The column of a change and what it is set to: the value itself, or with `instantanea` its column there.
void ChangeWriter::Asignar(const Actualizacion& s, const Fuente& tabla, bool instantanea) {
  bool coma = false;
  for (std::size_t i = 0; i < s.cambios.size(); ++i) {
    if (s.cambios[i].columna->fuente != &tabla) continue;
    t_ += coma ? ", " : " SET ";
    coma = true;
    d_.Nombre(ColumnaCambiada(s.cambios[i]).nombre_sql);
    t_ += " = ";
    if (instantanea)
      t_ += "\"jet_v\".\"v" + std::to_string(i) + "\"";
    else
      Asignado(*s.cambios[i].valor, ColumnaCambiada(s.cambios[i]).tipo.tipo);
  }
}

// The rows that change, by number, and their new values.
void ChangeWriter::Instantanea(const Actualizacion& s, const std::vector<const Fuente*>& tablas) {
  t_ += "SELECT ";
  for (std::size_t i = 0; i < tablas.size(); ++i) {
    if (!d_.from.Alcanzable(s.de, *tablas[i]))
      throw base::Error("La operación debe usar una consulta actualizable", 3073);
    if (i > 0) t_ += ", ";
    d_.from.FilaDe(*tablas[i]);
    t_ += " AS \"r" + std::to_string(i) + "\"";
  }
  for (std::size_t i = 0; i < s.cambios.size(); ++i) {
    t_ += ", ";
    Asignado(*s.cambios[i].valor, ColumnaCambiada(s.cambios[i]).tipo.tipo);
    t_ += " AS \"v" + std::to_string(i) + "\"";
  }
  d_.from.DeYDonde(s.de, s.donde);
}

// The new values are computed before anything changes, and wait in a temporary table, one for each number of
// columns. Emptying it last counts the rows that were changed as often as they were matched.
std::vector<std::string> ChangeWriter::Pasos(const Actualizacion& s, const OpcionesTraduccion& opciones) {
  SqlDraft valores(opciones);
  if (s.fuentes.size() == 1) {
    valores.text = "UPDATE ";
    valores.from.Hoja(*s.fuentes[0]);
    valores.change.Asignar(s, *s.fuentes[0], false);
    if (s.donde) {
      valores.text += " WHERE ";
      valores.expr.Condicion(*s.donde);
    }
    return {std::move(valores.text)};
  }
  std::vector<const Fuente*> tablas;
  for (const auto& a : s.cambios)
    if (std::find(tablas.begin(), tablas.end(), a.columna->fuente) == tablas.end())
      tablas.push_back(a.columna->fuente);
  valores.change.Instantanea(s, tablas);
  const std::string espera =
      "temp.\"jet_" + std::to_string(tablas.size()) + "_" + std::to_string(s.cambios.size()) + "\"";
  std::vector<std::string> pasos = {
      "CREATE TABLE IF NOT EXISTS " + espera + Columnas(tablas.size(), s.cambios.size()),
      "INSERT INTO " + espera + " " + valores.text};
  for (std::size_t t = 0; t < tablas.size(); ++t) {
    SqlDraft e(opciones);
    Fuente fila;
    fila.columnas = tablas[t]->columnas;
    fila.alias_sql = tablas[t]->tabla->nombre;
    e.text = "UPDATE ";
    e.Nombre(fila.alias_sql);
    e.change.Asignar(s, *tablas[t], true);
    e.text += " FROM " + espera + " AS \"jet_v\" WHERE ";
    e.from.FilaDe(fila);
    e.text += " = \"jet_v\".\"r" + std::to_string(t) + "\"";
    pasos.push_back(std::move(e.text));
  }
  pasos.push_back("DELETE FROM " + espera);
  return pasos;
}

}  // namespace jetsql
