// Runs rows of the tables on an engine.
#pragma once

#include <map>
#include <memory>
#include <string>

#include "conformance/motor.h"
#include "conformance/tabla.h"

namespace conformance {

struct Resultado {
  enum class Que { Pasa, Falla, Salta } que = Que::Falla;
  std::string dio;     // what came out; of a skipped row: the rule
  std::string espera;  // what the table says
};

class Corredor {
 public:
  explicit Corredor(Motor& motor);

  // A row without a locale of its own must hold in all of them.
  Resultado Correr(const Fila& fila);
  Resultado Correr(const Sentencia& sentencia);

 private:
  Resultado EnLocale(const Fila& fila, const std::string& locale);
  Resultado PorDialecto(const Fila& fila, const std::string& sql, const std::string& locale);
  Resultado Ordenar(const Fila& fila);
  Ajustes Para(const std::string& locale, bool dao) const;
  // One base of each kind, kept for the expressions, which leave nothing behind.
  db::Connection& Guardada(const std::string& locale, bool dao);

  Motor& motor_;
  ports::RelojFijo reloj_;
  std::map<std::string, std::unique_ptr<db::Connection>> guardadas_;
};

struct Cuenta {
  int pasan = 0, fallan = 0;
  std::map<std::string, int> saltan;  // by rule

  int Saltadas() const;
  void Sumar(const Resultado& r);
  void Sumar(const Cuenta& otra);
  // "N passed, N failed, N skipped"
  std::string Texto() const;
};

}  // namespace conformance
