#include "mdb/samples_internal.h"

namespace mdb_test::internal {
namespace {

using Rows = std::vector<mdb::QueryRow>;
using Text = std::optional<std::string>;

mdb::QueryRow R(int attribute, int order, Text name1 = {}, Text name2 = {}, Text expression = {},
                std::optional<std::int16_t> flag = {}) {
  return {static_cast<std::uint8_t>(attribute),
          static_cast<std::uint32_t>(order),
          std::move(name1),
          std::move(name2),
          std::move(expression),
          flag,
          {}};
}

void Add(Sample& s, const std::string& name, std::uint32_t flags, Rows rows, const std::string& text) {
  s.file.queries.push_back({name, flags, std::move(rows)});
  s.query_texts[name] = text;
}

void AddThoseThatGiveRows(Sample& s) {
  Add(s, "Horas de cada uno", 0,
      {R(3, 1, {}, {}, {}, 2), R(5, 1, "Personas"), R(5, 2, "Horas"), R(5, 3, "Conceptos", "C"),
       R(6, 1, {}, {}, "Personas.Nombre"), R(6, 2, "Lo suyo", {}, "[Cantidad]*2"),
       R(6, 3, {}, {}, "C.Nombre"), R(7, 1, "Personas", "Horas", "Personas.Id = Horas.Persona", 2),
       R(7, 2, "Horas", "C", "Horas.Concepto = C.Id", 1), R(7, 3, "Horas", "C", "Horas.Concepto = C.Otro", 1),
       R(8, 1, {}, {}, "((Horas.Cantidad)>0 Or (Personas.Nombre)=\"Ana\")"),
       R(11, 1, "D", {}, "Personas.Nombre"), R(11, 2, {}, {}, "C.Nombre")},
      "SELECT DISTINCT Personas.Nombre, [Cantidad]*2 AS [Lo suyo], C.Nombre FROM (Personas LEFT JOIN Horas "
      "ON "
      "Personas.Id = Horas.Persona) INNER JOIN Conceptos AS C ON (Horas.Concepto = C.Otro) AND "
      "(Horas.Concepto = C.Id) "
      "WHERE ((Horas.Cantidad)>0 Or (Personas.Nombre)=\"Ana\") ORDER BY Personas.Nombre DESC, C.Nombre");
  Add(s, "Las primeras", 0,
      {R(3, 1, "3", {}, {}, 16), R(5, 1, "Horas"), R(6, 1, {}, {}, "Horas.Persona"),
       R(6, 2, "Suma", {}, "Sum(Horas.Cantidad)"), R(9, 1, {}, {}, "Horas.Persona"),
       R(10, 1, {}, {}, "Sum(Horas.Cantidad)>1"), R(11, 1, {}, {}, "Horas.Persona")},
      "SELECT TOP 3 Horas.Persona, Sum(Horas.Cantidad) AS Suma FROM Horas GROUP BY Horas.Persona HAVING "
      "Sum(Horas.Cantidad)>1 ORDER BY Horas.Persona");
  Add(s, "De todas", 0x80,
      {R(1, 1, {}, {}, {}, 9), R(3, 1, {}, {}, {}, 2),
       R(5, 1, {}, "X7YZ_____1", "Select Nombre From Personas"),
       R(5, 2, {}, "X7YZ_____2", "Select Nombre From Conceptos")},
      "Select Nombre From Personas UNION Select Nombre From Conceptos");
  Add(s, "Por concepto", 0x10,
      {R(1, 1, {}, {}, {}, 6), R(5, 1, "Horas"), R(6, 1, "Total", {}, "Sum(Horas.Cantidad)", 0),
       R(6, 2, {}, {}, "Horas.Persona", 2), R(6, 3, {}, {}, "Horas.Concepto", 1),
       R(9, 1, {}, {}, "Horas.Persona", 2), R(9, 2, {}, {}, "Horas.Concepto", 1)},
      "TRANSFORM Sum(Horas.Cantidad) AS Total SELECT Horas.Persona FROM Horas GROUP BY Horas.Persona PIVOT "
      "Horas.Concepto");
  Add(s, "~sq_cOculta", 3, {R(5, 1, "Personas"), R(3, 1, {}, {}, {}, 1)}, "SELECT * FROM Personas");
}

void AddThoseThatAct(Sample& s) {
  Add(s, "Sube", 0x30,
      {R(1, 1, {}, {}, {}, 4), R(2, 1, "Cuánto", {}, {}, 7), R(5, 1, "Horas"),
       R(6, 1, {}, "Cantidad", "[Cantidad]+[Cuánto]"), R(8, 1, {}, {}, "((Horas.Persona) Is Not Null)")},
      "PARAMETERS [Cuánto] IEEEDouble; UPDATE Horas SET Cantidad = [Cantidad]+[Cuánto] WHERE "
      "((Horas.Persona) Is Not Null)");
  Add(s, "Agrega", 0x40,
      {R(1, 1, "Conceptos", {}, {}, 3), R(5, 1, "Personas"), R(6, 1, {}, "Id", "Personas.Id"),
       R(6, 2, {}, "Nombre", "Personas.Nombre")},
      "INSERT INTO Conceptos (Id, Nombre) SELECT Personas.Id, Personas.Nombre FROM Personas");
  Add(s, "Borra", 0x20,
      {R(1, 1, {}, {}, {}, 5), R(5, 1, "Horas"), R(6, 1, {}, {}, "Horas.*"),
       R(8, 1, {}, {}, "((Horas.Cantidad)=0)")},
      "DELETE Horas.* FROM Horas WHERE ((Horas.Cantidad)=0)");
  Add(s, "Hace otra", 0x50,
      {R(1, 1, "Copia", {}, {}, 2), R(5, 1, "Personas"), R(6, 1, {}, {}, "Personas.Id")},
      "SELECT Personas.Id INTO Copia FROM Personas");
  Add(s, "Define", 0x60, {R(1, 1, {}, {}, "CREATE TABLE Otra (a LONG)", 7)}, "CREATE TABLE Otra (a LONG)");
  Add(s, "Directa", 0x70, {R(1, 1, "ODBC;DSN=x", {}, "exec algo 1", 8)}, "exec algo 1");
}

}  // namespace

Sample Queries(const std::string& name, Format format) {
  Sample s;
  s.name = name;
  s.file.format = format;
  Table persons, concepts, hours;
  persons.name = "Personas";
  persons.columns = {Col("Id", ColumnType::Long), Col("Nombre", ColumnType::Text, 40)};
  concepts = persons;
  concepts.name = "Conceptos";
  concepts.columns.push_back(Col("Otro", ColumnType::Long));
  hours.name = "Horas";
  hours.columns = {Col("Persona", ColumnType::Long), Col("Concepto", ColumnType::Long),
                   Col("Cantidad", ColumnType::Double)};
  const char* people[] = {"Ana", "Bruno", "Ñata"};
  for (int i = 0; i < 3; ++i) {
    persons.rows.push_back({{N(i + 1), T(people[i])}});
    concepts.rows.push_back({{N(7 + i), T("Concepto " + std::to_string(7 + i)), N(7 + i)}});
    hours.rows.push_back({{N(i + 1), N(7 + i % 2), 4.5 + i}});
  }
  persons.indexes = {Primary({"Id"})};
  s.file.tables = {persons, concepts, hours};
  AddThoseThatGiveRows(s);
  AddThoseThatAct(s);
  s.file.links = {{"Vinculada", 6, "C:\\datos\\Año.mdb", "Original", {}},
                  {"Remota", 4, {}, "dbo.Remota", "ODBC;DSN=Nómina"}};
  return s;
}

// Names that only stand between brackets.
Sample OddNames() {
  Sample s;
  s.name = "names.mdb";
  Table t;
  t.name = "Ñandú & Cía (2), \"la\" de 'O''Brien'";
  t.columns = {Col("¿Qué?", ColumnType::Long), Col("Año/mes", ColumnType::Text, 20),
               Col("SELECT", ColumnType::Text, 20), Col("con  dos blancos", ColumnType::Memo),
               Col("%_*#", ColumnType::Double)};
  for (int i = 0; i < 8; ++i)
    t.rows.push_back({{N(i), T("2026/1" + std::to_string(i)), i % 2 == 0 ? Datum{} : T("'"),
                       T("nota " + std::to_string(i)), i / 2.0}});
  t.indexes = {Primary({"¿Qué?"}), Over("Índice & más", {"Año/mes", "-%_*#"})};
  t.properties = {{"¿Qué?", "Caption", T("«ésta»")}};
  Table key = t;
  key.name = "Order";
  key.columns[0].name = "rowid";
  key.indexes = {Unique("id", {"rowid"})};
  key.properties.clear();
  s.file.tables = {t, key};
  s.file.queries = {{"Consulta, con «todo»",
                     0,
                     {R(5, 1, t.name), R(6, 1, {}, {}, "[¿Qué?]"), R(6, 2, "a b", {}, "[SELECT]")}}};
  s.query_texts = {{"Consulta, con «todo»", "SELECT [¿Qué?], [SELECT] AS [a b] FROM [" + t.name + "]"}};
  return s;
}

}  // namespace mdb_test::internal
