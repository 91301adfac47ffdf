// Cases over one engine, whichever this program is linked with (see engine.h). A file starts with a new,
// empty base; statements end at a line that ends in ";".
//
//   exec             runs the statements; the rows that the last one changed
//   query            the rows of the last statement (the others are run before it); "rowsort" where their
//                    order is free, "head" for the columns and their types
//   error            the text of the last statement's failure; "read": asked as one that may only read
//   bounded          the statements as bounded queries that share a budget (steps= rows= bytes=, else its own
//                    sizes): the rows of the last one, or the text of a failure
//   tables           for each table named, a line a row, sorted
//   open             a new base: clock=AAAA-MM-DD[Thh:mm:ss] locale=en mode=dao order=general|traditional
//   reopen           the same base, closed and opened again
//   begin, commit, rollback
//                    the transaction; "ok" or the failure
//   savepoint, undo, release
//                    the mark inside it, likewise
#include <iostream>
#include <memory>
#include <sstream>

#include "base/date.h"
#include "engine.h"
#include "render.h"
#include "support/data_test.h"

namespace {

using support::Bloque;

struct Mesa {
  std::unique_ptr<ports::RelojFijo> reloj;
  std::unique_ptr<pruebas::BaseDePrueba> prueba;
  db::Connection* base = nullptr;
};

base::Fecha LeerReloj(const std::string& texto) {
  int a = 0, m = 0, d = 0, h = 0, n = 0, s = 0;
  if (std::sscanf(texto.c_str(), "%d-%d-%dT%d:%d:%d", &a, &m, &d, &h, &n, &s) < 3)
    throw std::runtime_error("bad clock " + texto);
  return {base::FechaDe(a, m, d).serie + base::HoraDe(h, n, s).serie};
}

void Abrir(Mesa& mesa, const Bloque& bloque) {
  mesa.prueba = nullptr;
  mesa.reloj = std::make_unique<ports::RelojFijo>(LeerReloj(bloque.Opcion("clock", "2024-03-15T10:20:30")));
  pruebas::Deseos deseos;
  deseos.reloj = mesa.reloj.get();
  if (bloque.Opcion("locale") == "en") deseos.locale = &base::Locale::ingles();
  deseos.comodines_dao = bloque.Opcion("mode") == "dao";
  const std::string orden = bloque.Opcion("order");
  if (orden == "general") deseos.orden = base::Orden::General;
  if (orden == "traditional") deseos.orden = base::Orden::EspanolTradicional;
  mesa.prueba = pruebas::Crear(deseos);
  mesa.base = &mesa.prueba->Conexion();
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

std::string Bounded(Mesa& mesa, const Bloque& bloque) {
  db::QueryBudget budget;
  const auto size = [&](const char* name, std::int64_t& part) {
    if (const std::string text = bloque.Opcion(name); !text.empty()) part = std::stoll(text);
  };
  size("steps", budget.steps);
  size("rows", budget.rows);
  size("bytes", budget.bytes);
  db::Recordset rows;
  try {
    for (const std::string& sql : Sentencias(bloque.entrada)) rows = mesa.base->QueryBounded(sql, budget);
  } catch (const db::QueryInterrupted& e) {
    return e.IsStorageFault() ? "a fault of the storage" : support::TextoDeError(e);
  } catch (const db::Error& e) {
    return "no interruption: " + support::TextoDeError(e);
  }
  return support::Filas(rows, bloque.Tiene("rowsort"));
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
  verbos["reopen"] = [mesa](const Bloque&) {
    mesa->prueba->Reabrir();
    mesa->base = &mesa->prueba->Conexion();
    return std::string();
  };
  verbos["exec"] = [mesa](const Bloque& b) {
    mesa->base->Ejecutar(Ultima(*mesa, b));
    return std::to_string(mesa->base->FilasAfectadas());
  };
  verbos["query"] = [mesa](const Bloque& b) { return Consultar(*mesa, b); };
  verbos["error"] = [mesa](const Bloque& b) { return Fallar(*mesa, b); };
  verbos["bounded"] = [mesa](const Bloque& b) { return Bounded(*mesa, b); };
  verbos["tables"] = [mesa](const Bloque& b) { return Tablas(*mesa, b); };
  verbos["begin"] = [mesa](const Bloque&) { return Transaccion([&] { mesa->base->BeginTrans(); }); };
  verbos["commit"] = [mesa](const Bloque&) { return Transaccion([&] { mesa->base->CommitTrans(); }); };
  verbos["rollback"] = [mesa](const Bloque&) { return Transaccion([&] { mesa->base->RollbackTrans(); }); };
  verbos["savepoint"] = [mesa](const Bloque&) { return Transaccion([&] { mesa->base->SetSavepoint(); }); };
  verbos["undo"] = [mesa](const Bloque&) { return Transaccion([&] { mesa->base->RollbackToSavepoint(); }); };
  verbos["release"] = [mesa](const Bloque&) { return Transaccion([&] { mesa->base->ReleaseSavepoint(); }); };
  return verbos;
}

}  // namespace

int main(int argc, char** argv) { return support::EjecutarArchivos(argc, argv, Preparar); }
