// What a statement is. Whoever must know it asks here.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

#include "jetsql/ast.h"

namespace jetsql {

// A SELECT … INTO is a definition: it makes a table.
enum class Kind : std::uint8_t { Query, Insert, Update, Delete, Definition };

constexpr bool ChangesRows(Kind kind) { return kind != Kind::Query && kind != Kind::Definition; }

// By its tree, which has the last word.
Kind KindOf(const Statement& statement);

// By its words, for texts that come by the thousand: what the tree says of every text that has one. A text
// without a tree may be called anything; nothing when no statement begins so. A change and a definition are
// known by their first word; a query is read to its end for an INTO.
std::optional<Kind> KindOfText(std::string_view sql);

// Whether a text begins as a query does, behind any brackets.
bool BeginsQuery(std::string_view sql);

}  // namespace jetsql
