// A reader of JSON texts for the tables that tests run over.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace conformance {

struct JsonMiembro;

struct Json {
  enum class Clase { Nulo, Booleano, Numero, Texto, Lista, Objeto };

  Clase clase = Clase::Nulo;
  bool booleano = false;
  double numero = 0;
  bool entero = false;  // a number written without point and exponent
  std::string texto;    // UTF-8; of a number: as it was written
  std::vector<Json> lista;
  std::vector<JsonMiembro> miembros;  // in their order

  bool EsNulo() const { return clase == Clase::Nulo; }
  bool EsTexto() const { return clase == Clase::Texto; }
  bool EsNumero() const { return clase == Clase::Numero; }
  bool EsLista() const { return clase == Clase::Lista; }
  bool EsObjeto() const { return clase == Clase::Objeto; }
  // The member of that name, or null when there is none.
  const Json* Miembro(std::string_view nombre) const;

  // The value as one text again, without blanks, for messages.
  std::string Escrito() const;
};

struct JsonMiembro {
  std::string nombre;
  Json valor;
};

// The whole text is one value. Throws std::runtime_error with the byte where it goes wrong.
Json LeerJson(std::string_view texto);

}  // namespace conformance
