// Tests of the ODBC engine: drivers by their path, and a configuration of ODBC that is the test's own.
#pragma once

#include <gtest/gtest.h>

#include <cstdlib>
#include <memory>
#include <string>

#include "engine_odbc/odbc_connection.h"
#include "engine_sqlite/render.h"
#include "support/temp_folder.h"

namespace pruebas {

// The description of the failure, or "no error".
template <typename Paso>
std::string Falla(Paso&& paso) {
  try {
    paso();
  } catch (const db::Error& e) {
    return support::TextoDeError(e);
  }
  return "no error";
}

// Connections over the driver that the tests tell what to do (see fake_driver.h).
class DriverDePrueba : public testing::Test {
 protected:
  static std::string Cadena(const std::string& opciones = {}) {
    return "Driver=" IDM_ODBC_PRUEBA ";" + opciones;
  }
  void Abrir(const std::string& opciones = {}, const engine_odbc::Opciones& de_conexion = {}) {
    base_ = engine_odbc::Abrir(Cadena(opciones), de_conexion);
  }
  db::Recordset Correr(const std::string& sql) { return base_->Ejecutar(sql); }
  std::string Filas(const std::string& sql) { return support::Filas(base_->Ejecutar(sql)); }
  // What the driver was sent.
  std::string Llega(const std::string& sql) { return base_->Ejecutar(sql).Campo("texto").Texto(); }
  std::string ErrorDe(const std::string& sql) {
    return Falla([&] { base_->Ejecutar(sql); });
  }

  std::unique_ptr<db::Connection> base_;
};

// What ODBC takes for the system's configuration: the texts of odbcinst.ini (drivers) and odbc.ini (data
// sources).
inline void Configurar(const std::string& drivers, const std::string& origenes = {}) {
  static const support::CarpetaTemporal kCarpeta;
  kCarpeta.Escribir("odbcinst.ini", drivers);
  kCarpeta.Escribir("odbc.ini", origenes);
  setenv("ODBCSYSINI", kCarpeta.Carpeta().c_str(), 1);
  setenv("ODBCINI", kCarpeta.Ruta("odbc.ini").c_str(), 1);
}
// unixODBC remembers the folder from its first look on: it must be ours from the beginning.
inline const bool kConfigurado = (Configurar({}), true);

}  // namespace pruebas
