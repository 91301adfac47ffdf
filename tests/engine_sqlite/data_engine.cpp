// Cases over the embedded engine. A file starts with a new base in memory; statements end at a line that ends
// in ";".
//
//   exec [types]            runs the statements; the rows that the last one changed
//   query [rowsort] [head]  the rows of the last statement (the others are run before it); head: its columns
//   first error [read]            the text of the last statement's failure; read: asked as one that may only
//   read tables                  for each table named, a line a row, sorted open key=value …        a new
//   base: clock=AAAA-MM-DD[Thh:mm:ss] locale=en mode=dao order=general|traditional begin, commit, rollback
//   the transaction; "ok" or the failure
#include <iostream>
#include <memory>
#include <sstream>

#include "base/date.h"
#include "engine_sqlite/sqlite_connection.h"
#include "render.h"
#include "support/data_test.h"

namespace {

using support::Bloque;

struct Mesa {
  std::unique_ptr<ports::RelojFijo> reloj;
  std::unique_ptr<db::Connection> base;
};

base::Fecha LeerReloj(const std::string& texto) {
  int a = 0, m = 0, d = 0, h = 0, n = 0, s = 0;
  if (std::sscanf(texto.c_str(), "%d-%d-%dT%d:%d:%d", &a, &m, &d, &h, &n, &s) < 3)
    throw std::runtime_error("bad clock " + texto);
  return {base::FechaDe(a, m, d).serie + base::HoraDe(h, n, s).serie};
}

void Abrir(Mesa& mesa, const Bloque& bloque) {
  mesa.base = nullptr;
  mesa.reloj = std::make_unique<ports::RelojFijo>(LeerReloj(bloque.Opcion("clock", "2024-03-15T10:20:30")));
  engine_sqlite::Opciones opciones;
  opciones.reloj = mesa.reloj.get();
  if (bloque.Opcion("locale") == "en") opciones.locale = &base::Locale::ingles();
  opciones.comodines_dao = bloque.Opcion("mode") == "dao";
  const std::string orden = bloque.Opcion("order");
  if (orden == "general") opciones.orden = base::Orden::General;
  if (orden == "traditional") opciones.orden = base::Orden::EspanolTradicional;
  mesa.base = engine_sqlite::Abrir(":memory:", opciones);
}

std::vector<std::string> Sentencias(const std::string& entrada) {
  std::vector<std::string> todas;
  std::istringstream lineas(entrada);
  std::string actual;
  for (std::string linea; std::getline(lineas, linea);) {
    if (!actual.empty()) actual += '\n';
    actual += linea;
    if (linea.empty() || linea.back() != ';') continue;
    actual.pop_back();
    todas.push_back(actual);
    actual.clear();
  }
  if (!actual.empty()) todas.push_back(actual);
  if (todas.empty()) throw std::runtime_error("a block without statements");
  return todas;
}

// Runs all but the last one.
std::string Ultima(Mesa& mesa, const Bloque& bloque) {
  std::vector<std::string> todas = Sentencias(bloque.entrada);
  for (std::size_t i = 0; i + 1 < todas.size(); ++i) mesa.base->Ejecutar(todas[i]);
  return todas.back();
}

std::string Consultar(Mesa& mesa, const Bloque& bloque) {
  const db::Recordset filas = mesa.base->Ejecutar(Ultima(mesa, bloque));
  std::string salida;
  if (bloque.Tiene("head")) salida = support::Cabecera(filas);
  if (!salida.empty() && !filas.Vacio()) salida += '\n';
  salida += support::Filas(filas, bloque.Tiene("rowsort"));
  return salida;
}

std::string Fallar(Mesa& mesa, const Bloque& bloque) {
  const std::string sql = Ultima(mesa, bloque);
  try {
    bloque.Tiene("read") ? mesa.base->Consultar(sql) : mesa.base->Ejecutar(sql);
  } catch (const db::Error& e) {
    return support::TextoDeError(e);
  }
  return "no error";
}

std::string Tablas(Mesa& mesa, const Bloque& bloque) {
  std::string salida;
  std::istringstream nombres(bloque.entrada);
  for (std::string nombre; std::getline(nombres, nombre);) {
    std::string sql = "SELECT * FROM [";
    sql += nombre;
    sql += ']';
    const db::Recordset filas = mesa.base->Ejecutar(sql);
    if (!salida.empty()) salida += '\n';
    salida += nombre;
    salida += ':';
    if (!filas.Vacio()) salida += '\n';
    salida += support::Filas(filas, true);
  }
  return salida;
}

template <typename Paso>
std::string Transaccion(Paso&& paso) {
  try {
    paso();
  } catch (const db::Error& e) {
    return support::TextoDeError(e);
  }
  return "ok";
}

support::Verbos Preparar() {
  const auto mesa = std::make_shared<Mesa>();
  Abrir(*mesa, {});
  support::Verbos verbos;
  verbos["open"] = [mesa](const Bloque& b) {
    Abrir(*mesa, b);
    return std::string();
  };
  verbos["exec"] = [mesa](const Bloque& b) {
    mesa->base->Ejecutar(Ultima(*mesa, b));
    return std::to_string(mesa->base->FilasAfectadas());
  };
  verbos["query"] = [mesa](const Bloque& b) { return Consultar(*mesa, b); };
  verbos["error"] = [mesa](const Bloque& b) { return Fallar(*mesa, b); };
  verbos["tables"] = [mesa](const Bloque& b) { return Tablas(*mesa, b); };
  verbos["begin"] = [mesa](const Bloque&) { return Transaccion([&] { mesa->base->BeginTrans(); }); };
  verbos["commit"] = [mesa](const Bloque&) { return Transaccion([&] { mesa->base->CommitTrans(); }); };
  verbos["rollback"] = [mesa](const Bloque&) { return Transaccion([&] { mesa->base->RollbackTrans(); }); };
  return verbos;
}

}  // namespace

int main(int argc, char** argv) { return support::EjecutarArchivos(argc, argv, Preparar); }
