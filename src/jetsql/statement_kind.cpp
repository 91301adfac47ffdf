#include "jetsql/statement_kind.h"

#include "base/text.h"
#include "jetsql/scanner_internal.h"

namespace jetsql {
namespace {

class Words {
 public:
  explicit Words(std::string_view sql) : sql_(sql), scanner_(sql) { Next(); }

  bool AtEnd() const { return token_.clase == ClaseToken::Fin || token_.clase == ClaseToken::Malo; }
  bool Is(std::string_view word_or_sign) const {
    const bool plain = token_.clase == ClaseToken::Nombre || token_.clase == ClaseToken::Signo;
    return plain && base::IgualSinCaso(sql_.substr(token_.inicio, token_.fin - token_.inicio), word_or_sign);
  }
  void Next() { token_ = scanner_.Siguiente(); }

  // To the word that tells the statement.
  void SkipToVerb() {
    if (Is("PARAMETERS")) {
      while (!AtEnd() && !Is(";")) Next();
      if (!AtEnd()) Next();
    }
    while (Is("(")) Next();
  }
  bool AtQuery() const { return Is("SELECT") || Is("TABLE") || Is("TRANSFORM"); }

 private:
  std::string_view sql_;
  Escaner scanner_;
  Token token_;
};

}  // namespace

Clase KindOf(const Sentencia& statement) {
  struct Of {
    Clase operator()(const ConsultaPtr& q) const {
      return q->partes[0].destino.empty() ? Clase::Consulta : Clase::Definicion;
    }
    Clase operator()(const Insercion&) const { return Clase::Insercion; }
    Clase operator()(const Actualizacion&) const { return Clase::Actualizacion; }
    Clase operator()(const Borrado&) const { return Clase::Borrado; }
    Clase operator()(const CrearTabla&) const { return Clase::Definicion; }
    Clase operator()(const CrearIndice&) const { return Clase::Definicion; }
    Clase operator()(const CrearVista&) const { return Clase::Definicion; }
    Clase operator()(const Quitar&) const { return Clase::Definicion; }
    Clase operator()(const AlterarTabla&) const { return Clase::Definicion; }
  };
  return std::visit(Of{}, statement);
}

std::optional<Clase> KindOfText(std::string_view sql) {
  Words words(sql);
  words.SkipToVerb();
  if (words.Is("INSERT")) return Clase::Insercion;
  if (words.Is("UPDATE")) return Clase::Actualizacion;
  if (words.Is("DELETE")) return Clase::Borrado;
  if (words.Is("CREATE") || words.Is("DROP") || words.Is("ALTER")) return Clase::Definicion;
  if (!words.AtQuery()) return std::nullopt;
  while (!words.AtEnd() && !words.Is("INTO")) {
    // Any word may be a name there.
    if (words.Is(".") || words.Is("!") || words.Is("AS")) words.Next();
    words.Next();
  }
  return words.AtEnd() ? Clase::Consulta : Clase::Definicion;
}

bool BeginsQuery(std::string_view sql) {
  Words words(sql);
  if (words.Is("PARAMETERS")) return true;
  words.SkipToVerb();
  return words.AtQuery();
}

}  // namespace jetsql
