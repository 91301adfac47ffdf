#include "render.h"

#include <algorithm>
#include <vector>

#include "support/escapes.h"

namespace support {
namespace {

const char* NombreDeTipo(base::Tipo tipo) {
  switch (tipo) {
    case base::Tipo::Nulo:
      return "?";
    case base::Tipo::Booleano:
      return "bool";
    case base::Tipo::Entero:
      return "int";
    case base::Tipo::Simple:
      return "single";
    case base::Tipo::Numero:
      return "number";
    case base::Tipo::Moneda:
      return "currency";
    case base::Tipo::Fecha:
      return "date";
    case base::Tipo::Texto:
      return "text";
  }
  return "";
}

std::string Unir(const std::vector<std::string>& lineas) {
  std::string salida;
  for (std::size_t i = 0; i < lineas.size(); ++i) {
    if (i > 0) salida += '\n';
    salida += lineas[i];
  }
  return salida;
}

}  // namespace

std::string Celda(const base::Valor& valor) {
  if (valor.EsNulo()) return "NULL";
  const std::string texto = valor.TextoCsv();
  return texto.empty() ? "(empty)" : Escapado(texto);
}

std::string Filas(const db::Recordset& filas, bool ordenar) {
  std::vector<std::string> lineas;
  const std::size_t ancho = filas.Campos().size();
  for (std::size_t f = 0; f < filas.Cantidad(); ++f) {
    std::string linea;
    for (std::size_t c = 0; c < ancho; ++c) {
      if (c > 0) linea += '|';
      linea += Celda(filas.En(c, f));
    }
    lineas.push_back(linea);
  }
  if (ordenar) std::sort(lineas.begin(), lineas.end());
  return Unir(lineas);
}

std::string Cabecera(const db::Recordset& filas) {
  std::string salida;
  for (const db::Columna& c : filas.Campos()) {
    if (!salida.empty()) salida += '|';
    salida += c.nombre;
    salida += ':';
    salida += NombreDeTipo(c.tipo);
  }
  return salida;
}

std::string TextoDeError(const base::Error& error) {
  if (error.Numero() == 0) return error.Descripcion();
  std::string salida = "[";
  salida += std::to_string(error.Numero());
  salida += "] ";
  salida += error.Descripcion();
  return salida;
}

}  // namespace support
