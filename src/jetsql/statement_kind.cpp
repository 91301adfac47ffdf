#include "jetsql/statement_kind.h"

#include "base/text.h"
#include "jetsql/scanner_internal.h"

namespace jetsql {
namespace {

class Words {
 public:
  explicit Words(std::string_view sql) : sql_(sql), scanner_(sql) { Next(); }

  bool AtEnd() const { return token_.kind == TokenKind::End || token_.kind == TokenKind::Malformed; }
  bool Is(std::string_view word_or_sign) const {
    const bool plain = token_.kind == TokenKind::Name || token_.kind == TokenKind::Sign;
    return plain &&
           base::EqualIgnoringCase(sql_.substr(token_.start, token_.end - token_.start), word_or_sign);
  }
  void Next() { token_ = scanner_.Next(); }

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
  Scanner scanner_;
  Token token_;
};

}  // namespace

Kind KindOf(const Statement& statement) {
  struct Of {
    Kind operator()(const QueryPtr& q) const {
      return q->parts[0].target.empty() ? Kind::Query : Kind::Definition;
    }
    Kind operator()(const Insert&) const { return Kind::Insert; }
    Kind operator()(const Update&) const { return Kind::Update; }
    Kind operator()(const Delete&) const { return Kind::Delete; }
    Kind operator()(const CreateTable&) const { return Kind::Definition; }
    Kind operator()(const CreateIndex&) const { return Kind::Definition; }
    Kind operator()(const CreateView&) const { return Kind::Definition; }
    Kind operator()(const Drop&) const { return Kind::Definition; }
    Kind operator()(const AlterTable&) const { return Kind::Definition; }
  };
  return std::visit(Of{}, statement);
}

std::optional<Kind> KindOfText(std::string_view sql) {
  Words words(sql);
  words.SkipToVerb();
  if (words.Is("INSERT")) return Kind::Insert;
  if (words.Is("UPDATE")) return Kind::Update;
  if (words.Is("DELETE")) return Kind::Delete;
  if (words.Is("CREATE") || words.Is("DROP") || words.Is("ALTER")) return Kind::Definition;
  if (!words.AtQuery()) return std::nullopt;
  while (!words.AtEnd() && !words.Is("INTO")) {
    // Any word may be a name there.
    if (words.Is(".") || words.Is("!") || words.Is("AS")) words.Next();
    words.Next();
  }
  return words.AtEnd() ? Kind::Query : Kind::Definition;
}

bool BeginsQuery(std::string_view sql) {
  Words words(sql);
  if (words.Is("PARAMETERS")) return true;
  words.SkipToVerb();
  return words.AtQuery();
}

}  // namespace jetsql
