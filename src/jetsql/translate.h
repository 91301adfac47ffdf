// From a statement of the Access dialect to SQLite text.
//
// Literals are lifted out: the text speaks of literal i (in the order of the source) as ?i+1, so that all
// statements of one shape share one translation. A literal that decides the translation itself (TOP n, a
// column position in ORDER BY) is named in `fixed`; a translation serves another statement of the shape only
// when those are equal.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "base/error.h"
#include "base/locale.h"
#include "base/value.h"
#include "jetsql/ast.h"
#include "jetsql/catalog.h"
#include "jetsql/statement_kind.h"

namespace jetsql {

// A statement that is not understood: a readable Spanish description with line and column, both from 1.
class SyntaxError : public base::Error {
 public:
  SyntaxError(std::string description, int line, int column);
};

// The shape of a statement: its text with every literal replaced by a mark for its kind, letters outside
// literals and [names] in upper case, runs of white space as one blank.
struct Shape {
  struct Place {  // of a literal in the text, its quotes or # included
    std::size_t start = 0, end = 0;
  };
  std::string key;
  std::vector<base::Value> literals;  // numbers, texts, dates; True, False and Null stay in the shape
  std::vector<Place> places;          // one a literal
};
// Cheap (one pass, no tree). False when the text has a malformed literal: then Translate says what is wrong.
bool SeparateLiterals(std::string_view sql, Shape& shape);

struct ResultColumn {
  std::string name;
  base::Type type = base::Type::Null;  // Null: each value's storage class decides
};

struct Definition {  // what a definition statement does, for the engine's catalog
  enum class What {
    None,
    CreateTable,
    CreateIndex,
    CreateView,
    DropTable,
    DropIndex,
    DropView,
    AddColumn,
    DropColumn
  };
  What what = What::None;
  std::string name;       // of the table, index or view
  std::string table;      // of an index
  std::string view_text;  // the dialect text of the SELECT of a view, as written
  std::vector<TableColumn> columns;
};

struct Translation {
  Kind kind = Kind::Query;
  // Run in order, all or none. The affected rows of a change are those of the last one.
  std::vector<std::string> steps;
  bool fills = false;  // SELECT … INTO: the last step fills the table that those before it make
  std::vector<ResultColumn> columns;  // of a query
  std::vector<int> fixed;             // indexes of literals that the translation depends on
  std::vector<std::string> writes;    // tables whose rows an INSERT, UPDATE or DELETE changes
  Definition definition;
  bool deterministic = true;
  // A crosstab whose columns are values of the rows, the statement itself or a saved query that it reads: the
  // only step gives those values, and TranslateCrosstab goes on with them.
  bool crosstab = false;
  std::string crosstab_query;  // the saved query; empty: the statement
};

struct TranslationOptions {
  bool dao_wildcards = false;  // LIKE with * ? # instead of % _
  const base::Locale* locale =
      nullptr;  // of the names that a crosstab gives its columns; spanish() when null
};

// Throws SyntaxError, or base::Error for an unknown table, column or function.
Translation Translate(std::string_view sql, Catalog& catalog, const TranslationOptions& options = {});

// The same of a tree, whose literals must be in the text (see parser.h). What is found out is noted in the
// tree, which is no longer one to be printed.
Translation Translate(Statement& statement, Catalog& catalog, const TranslationOptions& options = {});

// Gives the SELECT of a view the names that the view lists for its columns, as a translation does; its text
// follows. Throws base::Error when they do not fit.
void NameColumns(CreateView& view);

// SQLite text of a value that stands alone, the default of a column of type `target` for one. Throws as
// Translate.
std::string TranslateValue(std::string_view expression, base::Type target);

// The values of a crosstab's pivot, in the order in which the step gave them.
struct CrosstabColumns {
  std::string query;  // the saved query; empty: the statement
  std::vector<base::Value> values;
};
// A statement with crosstabs of which these are known. It may turn out to need those of one more.
Translation TranslateCrosstab(std::string_view sql, Catalog& catalog, const TranslationOptions& options,
                              const std::vector<CrosstabColumns>& columns);

}  // namespace jetsql
