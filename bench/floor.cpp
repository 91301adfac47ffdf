#include "floor.h"

#include <sqlite3.h>

#include <memory>
#include <stdexcept>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "base/file.h"
#include "measured_connection.h"

namespace bench {
namespace {

struct Cerrar {
  void operator()(sqlite3* db) const { sqlite3_close_v2(db); }
  void operator()(sqlite3_stmt* st) const { sqlite3_finalize(st); }
  void operator()(sqlite3_value* v) const { sqlite3_value_free(v); }
};
using Base = std::unique_ptr<sqlite3, Cerrar>;
using Sentencia = std::unique_ptr<sqlite3_stmt, Cerrar>;

[[noreturn]] void Fallo(sqlite3* db) {
  throw std::runtime_error(std::string("floor: ") + sqlite3_errmsg(db));
}

Base Abrir(const std::string& ruta) {
  sqlite3* db = nullptr;
  const int rc = sqlite3_open(ruta.c_str(), &db);
  Base base(db);
  if (rc != SQLITE_OK) Fallo(db);
  return base;
}

Sentencia Preparar(sqlite3* db, const std::string& sql) {
  sqlite3_stmt* st = nullptr;
  if (sqlite3_prepare_v2(db, sql.c_str(), -1, &st, nullptr) != SQLITE_OK) Fallo(db);
  return Sentencia(st);
}

void Ejecutar(sqlite3* db, const std::string& sql) {
  if (sqlite3_exec(db, sql.c_str(), nullptr, nullptr, nullptr) != SQLITE_OK) Fallo(db);
}

// Rows of a table held apart.
struct Filas {
  int ancho = 0;
  std::vector<std::unique_ptr<sqlite3_value, Cerrar>> celdas;
};

Filas Leer(sqlite3* db, const std::string& sql) {
  const Sentencia st = Preparar(db, sql);
  Filas filas;
  filas.ancho = sqlite3_column_count(st.get());
  int rc = 0;
  while ((rc = sqlite3_step(st.get())) == SQLITE_ROW)
    for (int c = 0; c < filas.ancho; ++c)
      filas.celdas.emplace_back(sqlite3_value_dup(sqlite3_column_value(st.get(), c)));
  if (rc != SQLITE_DONE) Fallo(db);
  return filas;
}

std::size_t Insertar(sqlite3* db, const std::string& tabla, const Filas& filas) {
  std::string marcas = "?";
  for (int c = 1; c < filas.ancho; ++c) marcas += ",?";
  const Sentencia st = Preparar(db, "INSERT INTO " + tabla + " VALUES(" + marcas + ")");
  std::size_t n = 0;
  for (std::size_t i = 0; i < filas.celdas.size(); ++n) {
    for (int c = 1; c <= filas.ancho; ++c, ++i) sqlite3_bind_value(st.get(), c, filas.celdas[i].get());
    if (sqlite3_step(st.get()) != SQLITE_DONE) Fallo(db);
    sqlite3_reset(st.get());
  }
  return n;
}

using Indice = std::unordered_map<std::string, std::int64_t>;

Indice LeerContratos(sqlite3* db) {
  Indice indice;
  const Sentencia st =
      Preparar(db, "SELECT Tarjeta, id_Contrato FROM Contrato WHERE idEmpresa=1 AND Tarjeta IS NOT NULL");
  while (sqlite3_step(st.get()) == SQLITE_ROW)
    indice.emplace(reinterpret_cast<const char*>(sqlite3_column_text(st.get(), 0)),
                   sqlite3_column_int64(st.get(), 1));
  return indice;
}

struct LineaHallada {
  std::int64_t contrato;
  int concepto;
  double cantidad;
};

std::vector<LineaHallada> Cargar(const std::string& archivo, const Indice& contratos, std::size_t& lineas) {
  const std::unordered_map<std::string_view, int> conceptos = {
      {"HC", 7}, {"HE", 2}, {"HN", 3}, {"HF", 4}, {"VI", 9}};
  const std::string texto = base::LeerArchivo(archivo).value();
  std::vector<LineaHallada> halladas;
  for (std::size_t desde = 0; desde < texto.size(); ++lineas) {
    const std::size_t fin = texto.find("\r\n", desde);
    const std::string_view linea = std::string_view(texto).substr(desde, fin - desde);
    const std::size_t a = linea.find(';'), b = linea.find(';', a + 1);
    std::string_view clave = linea.substr(0, a);
    clave.remove_prefix(std::min(clave.find_first_not_of('0'), clave.size()));
    std::string cantidad(linea.substr(b + 1));
    if (const std::size_t coma = cantidad.find(','); coma != cantidad.npos) cantidad[coma] = '.';
    const auto contrato = contratos.find(std::string(clave));
    const auto concepto = conceptos.find(linea.substr(a + 1, b - a - 1));
    if (contrato != contratos.end() && concepto != conceptos.end())
      halladas.push_back({contrato->second, concepto->second, std::strtod(cantidad.c_str(), nullptr)});
    desde = fin == texto.npos ? texto.size() : fin + 2;
  }
  return halladas;
}

}  // namespace

Suelo MedirSuelo(const std::string& base_final, const std::string& archivo, double mes) {
  Suelo suelo;
  const Base base = Abrir(base_final);
  sqlite3* const db = base.get();
  const std::string del_mes = " WHERE MesDeLiq=" + std::to_string(mes);
  const std::string datos_del_mes =
      " WHERE id_Encabezado IN (SELECT id_Encabezado FROM Encabezados" + del_mes + ")";
  const Filas datos = Leer(db, "SELECT * FROM Datos_Liquidacion" + datos_del_mes + " ORDER BY id_Dato");
  const Filas encabezados = Leer(db, "SELECT * FROM Encabezados" + del_mes + " ORDER BY id_Encabezado");
  Ejecutar(db, "DELETE FROM Datos_Liquidacion" + datos_del_mes);
  Ejecutar(db, "DELETE FROM Encabezados" + del_mes);
  Ejecutar(db, "PRAGMA wal_checkpoint(TRUNCATE)");

  const Reloj personas;
  const Indice contratos = LeerContratos(db);
  suelo.personas = personas.Segundos();

  const Reloj carga;
  suelo.halladas = Cargar(archivo, contratos, suelo.lineas).size();
  suelo.carga = carga.Segundos();

  const Reloj filas;
  Ejecutar(db, "BEGIN IMMEDIATE");
  suelo.insertadas = Insertar(db, "Encabezados", encabezados) + Insertar(db, "Datos_Liquidacion", datos);
  suelo.filas = filas.Segundos();
  const Reloj commit;
  Ejecutar(db, "COMMIT");
  suelo.commit = commit.Segundos();
  return suelo;
}

}  // namespace bench
