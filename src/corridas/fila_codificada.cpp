#include "corridas/fila_codificada.h"

#include <bit>

#include "base/error.h"

namespace corridas {

void CodificarEntero(std::uint64_t numero, int octetos, std::string& bytes) {
  for (int i = 0; i < octetos; ++i, numero >>= 8U) bytes.push_back(static_cast<char>(numero & 0xFFU));
}

void CodificarTexto(std::string_view texto, std::string& bytes) {
  CodificarEntero(texto.size(), 4, bytes);
  bytes.append(texto);
}

std::uint64_t Picada(std::string_view bytes, std::uint64_t semilla) {
  std::uint64_t h = 0xCBF29CE484222325ULL ^ semilla;
  for (const char c : bytes) h = (h ^ static_cast<unsigned char>(c)) * 0x100000001B3ULL;
  h ^= h >> 32U;
  h *= 0x9E3779B97F4A7C15ULL;
  return h ^ h >> 29U;
}

void Codificar(const base::Value& valor, std::string& bytes) {
  const auto doble = [&](double d) {
    CodificarEntero(std::bit_cast<std::uint64_t>(d == 0 ? 0.0 : d), 8, bytes);
  };
  bytes.push_back(static_cast<char>(valor.type()));
  switch (valor.type()) {
    case base::Type::Null:
      return;
    case base::Type::Boolean:
      return CodificarEntero(*valor.GetIf<bool>() ? 1 : 0, 1, bytes);
    case base::Type::Integer:
      return CodificarEntero(static_cast<std::uint64_t>(*valor.GetIf<std::int64_t>()), 8, bytes);
    case base::Type::Single: {
      const float f = *valor.GetIf<float>();
      return CodificarEntero(std::bit_cast<std::uint32_t>(f == 0 ? 0.0F : f), 4, bytes);
    }
    case base::Type::Number:
      return doble(*valor.GetIf<double>());
    case base::Type::Currency:
      return CodificarEntero(static_cast<std::uint64_t>(valor.GetIf<base::Currency>()->ten_thousandths), 8,
                             bytes);
    case base::Type::Date:
      return doble(valor.GetIf<base::Date>()->serial);
    case base::Type::Text:
      return CodificarTexto(*valor.GetIf<std::string>(), bytes);
  }
}

std::string_view Lector::Tomar(std::size_t octetos) {
  if (octetos > resto_.size()) throw base::Error("El registro está cortado");
  const std::string_view tomado = resto_.substr(0, octetos);
  resto_.remove_prefix(octetos);
  return tomado;
}

std::uint64_t Lector::Entero(int octetos) {
  const std::string_view bytes = Tomar(static_cast<std::size_t>(octetos));
  std::uint64_t numero = 0;
  for (std::size_t i = bytes.size(); i > 0; --i)
    numero = numero << 8U | static_cast<unsigned char>(bytes[i - 1]);
  return numero;
}

std::string_view Lector::Texto() { return Tomar(static_cast<std::size_t>(Entero(4))); }

base::Value Lector::Valor() {
  switch (static_cast<base::Type>(Entero(1))) {
    case base::Type::Null:
      return {};
    case base::Type::Boolean:
      return Entero(1) != 0;
    case base::Type::Integer:
      return static_cast<std::int64_t>(Entero(8));
    case base::Type::Single:
      return std::bit_cast<float>(static_cast<std::uint32_t>(Entero(4)));
    case base::Type::Number:
      return std::bit_cast<double>(Entero(8));
    case base::Type::Currency:
      return base::Currency{static_cast<std::int64_t>(Entero(8))};
    case base::Type::Date:
      return base::Date{std::bit_cast<double>(Entero(8))};
    case base::Type::Text:
      return std::string(Texto());
  }
  throw base::Error("El registro tiene un valor de una clase desconocida");
}

Fila Lector::Valores(std::size_t cuantos) {
  Fila fila;
  fila.reserve(cuantos);
  for (std::size_t i = 0; i < cuantos; ++i) fila.push_back(Valor());
  return fila;
}

}  // namespace corridas
