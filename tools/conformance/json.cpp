#include "conformance/json.h"

#include <cstdlib>
#include <stdexcept>

#include "base/text.h"

namespace conformance {
namespace {

class Lector {
 public:
  explicit Lector(std::string_view texto) : texto_(texto) {}

  Json Todo() {
    Json valor = Valor();
    Blancos();
    if (i_ != texto_.size()) Fallar("text after the value");
    return valor;
  }

 private:
  [[noreturn]] void Fallar(const std::string& que) const {
    throw std::runtime_error("json: " + que + " at byte " + std::to_string(i_));
  }

  char Ver() const { return i_ < texto_.size() ? texto_[i_] : '\0'; }

  void Blancos() {
    while (Ver() == ' ' || Ver() == '\t' || Ver() == '\n' || Ver() == '\r') ++i_;
  }

  bool Consumir(std::string_view que) {
    if (texto_.substr(i_, que.size()) != que) return false;
    i_ += que.size();
    return true;
  }

  void Exigir(std::string_view que) {
    Blancos();
    if (!Consumir(que)) Fallar("expected " + std::string(que));
  }

  Json Valor() {
    Blancos();
    Json v;
    if (Ver() == '"') {
      v.clase = Json::Clase::Texto;
      v.texto = Texto();
    } else if (Ver() == '[') {
      Lista(v);
    } else if (Ver() == '{') {
      Objeto(v);
    } else if (Consumir("true")) {
      v.clase = Json::Clase::Booleano;
      v.booleano = true;
    } else if (Consumir("false")) {
      v.clase = Json::Clase::Booleano;
    } else if (!Consumir("null")) {
      Numero(v);
    }
    return v;
  }

  void Numero(Json& v) {
    const std::size_t inicio = i_;
    while (i_ < texto_.size() &&
           std::string_view("+-.eE0123456789").find(texto_[i_]) != std::string_view::npos)
      ++i_;
    v.clase = Json::Clase::Numero;
    v.texto = std::string(texto_.substr(inicio, i_ - inicio));
    v.entero = v.texto.find_first_of(".eE") == std::string::npos;
    char* fin = nullptr;
    v.numero = std::strtod(v.texto.c_str(), &fin);
    if (v.texto.empty() || *fin != '\0') Fallar("no value");
  }

  void Lista(Json& v) {
    v.clase = Json::Clase::Lista;
    Exigir("[");
    Blancos();
    if (Consumir("]")) return;
    do {
      v.lista.push_back(Valor());
      Blancos();
    } while (Consumir(","));
    Exigir("]");
  }

  void Objeto(Json& v) {
    v.clase = Json::Clase::Objeto;
    Exigir("{");
    Blancos();
    if (Consumir("}")) return;
    do {
      Blancos();
      std::string nombre = Texto();
      Exigir(":");
      v.miembros.push_back({std::move(nombre), Valor()});
      Blancos();
    } while (Consumir(","));
    Exigir("}");
  }

  unsigned Hexadecimal() {
    if (i_ + 4 > texto_.size()) Fallar("short \\u");
    const unsigned punto =
        static_cast<unsigned>(std::strtoul(std::string(texto_.substr(i_, 4)).c_str(), nullptr, 16));
    i_ += 4;
    return punto;
  }

  char32_t Punto() {
    const unsigned alto = Hexadecimal();
    if (alto < 0xD800 || alto > 0xDBFF || !Consumir("\\u")) return alto;
    return 0x10000 + ((alto - 0xD800) << 10) + (Hexadecimal() - 0xDC00);
  }

  std::string Texto() {
    if (!Consumir("\"")) Fallar("expected a text");
    std::string salida;
    while (Ver() != '"') {
      if (i_ >= texto_.size()) Fallar("text without end");
      const char c = texto_[i_++];
      salida += c == '\\' ? Escape() : std::string(1, c);
    }
    ++i_;
    return salida;
  }

  std::string Escape() {
    const char c = Ver();
    ++i_;
    switch (c) {
      case 'n':
        return "\n";
      case 't':
        return "\t";
      case 'r':
        return "\r";
      case 'b':
        return "\b";
      case 'f':
        return "\f";
      case 'u': {
        const char32_t punto = Punto();
        return base::DePuntos({&punto, 1});
      }
      case '"':
      case '\\':
      case '/':
        return std::string(1, c);
      default:
        Fallar("unknown escape");
    }
  }

  std::string_view texto_;
  std::size_t i_ = 0;
};

std::string Entrecomillar(const std::string& texto) {
  std::string salida = "\"";
  for (const char c : texto) {
    if (c == '"' || c == '\\') salida += '\\';
    salida += c;
  }
  return salida += '"';
}

}  // namespace

const Json* Json::Miembro(std::string_view nombre) const {
  for (const auto& m : miembros)
    if (m.nombre == nombre) return &m.valor;
  return nullptr;
}

std::string Json::Escrito() const {
  switch (clase) {
    case Clase::Nulo:
      return "null";
    case Clase::Booleano:
      return booleano ? "true" : "false";
    case Clase::Numero:
      return texto;
    case Clase::Texto:
      return Entrecomillar(texto);
    case Clase::Lista:
    case Clase::Objeto:
      break;
  }
  std::string salida(1, clase == Clase::Lista ? '[' : '{');
  const auto separar = [&] {
    if (salida.size() > 1) salida += ',';
  };
  for (const auto& v : lista) {
    separar();
    salida += v.Escrito();
  }
  for (const auto& m : miembros) {
    separar();
    salida.append(Entrecomillar(m.nombre)).append(":").append(m.valor.Escrito());
  }
  return salida += clase == Clase::Lista ? ']' : '}';
}

Json LeerJson(std::string_view texto) { return Lector(texto).Todo(); }

}  // namespace conformance
