// What the SQLite text written by Translate expects of the connection that runs it, besides the dialect's
// functions (jet_<name>, see functions.h) and SQLite's own.
//
// Storage: dates are REAL day serials, booleans INTEGER -1/0, single, currency and numbers REAL, integers
// INTEGER, texts TEXT. A parameter ?n is literal n-1 of the Shape: integers INTEGER, numbers REAL, dates REAL
// serial, texts TEXT.
//
// Collation JET: the Access sort order of the connection. Columns of texts are created with it.
//
// `tags`: a text with one letter an argument, its static type: D date, B boolean, I integer, N number, S
// single, C currency, T text, ? unknown (the storage class decides). All scalar helpers are deterministic and
// must be registered as such. Unless said otherwise a NULL argument gives NULL. Errors are base::Error
// numbers.
//
// jet_concat(tags, a, b, …): the "&" chain. Texts of the arguments by the locale and the tag, joined; a NULL
// is the empty text; NULL when all are NULL. With one argument: its text (as CStr), or NULL; a value going
// into a text column is written so.
//
// jet_add(tags, a, b): "+" where a type is text or unknown. Two texts are joined; otherwise both are read as
// numbers (error 13 for a text that is none) and added: INTEGER when both are.
//
// jet_num(a): a number. Numbers pass through unchanged, a text is read by the locale as CDbl reads it
// (INTEGER when it is a whole number of 64 bits), error 13 otherwise.
//
// jet_div(a, b), jet_idiv(a, b), jet_mod(a, b), jet_pow(a, b): a / b as REAL, with error 11 for b = 0; both
// rounded half to even to 32 bits (error 6 outside), then truncated division or the remainder, which has a's
// sign, error 11; a ^ b as REAL, error 5 where there is no real result, 6 on overflow. Texts as jet_num.
//
// jet_like(a, pattern, mode): 1 or 0. Mode 0: % _ [a-z] [^a] [!a] (ADO), mode 1: * ? # [a-z] [!a] (DAO).
// Without case, accents count. A number is compared by its text. Error 93 for a bad pattern.
//
// jet_to_int(a): what an integer column stores: half to even; text as jet_num; error 6 outside 64 bits.
//
// jet_to_single(a): what a single column stores: the nearest float as its shortest 7-digit decimal
// (base::DoubleOfSingle), error 6 on overflow; text as jet_num.
//
// jet_as_single(a): a double that is compared with a single: the same, but what is too large stays as it is.
//
// jet_to_currency(a), jet_to_number(a): REAL, rounded half to even at 4 decimals or as it is; text as
// jet_num.
//
// jet_to_date(a): REAL serial. A number passes, a text is read as CDate reads it, error 13.
//
// jet_to_bool(a): -1 or 0: not zero; a text "True"/"Verdadero"/number, error 13.
//
// Aggregates: jet_first(a), jet_last(a) (of the rows in the order met, NULLs counted as values),
// jet_stdev(a), jet_stdevp(a), jet_var(a), jet_varp(a) (NULLs skipped; NULL when there is no row left, or for
// the sample forms a single one). Arguments of the last four are numbers already.
//
// Names made by definition statements, for readable messages: an index i of table t is "t.i" in the file; a
// CHECK is named "jet_largo" (a text longer than its column) or "jet_rango" (an integer outside its column's
// size), with "." and the column after it; triggers that refuse NULL are "t.i.nulo1"… and raise
// "jet_nulo.<column>". They are Spanish because they stand in files made long ago, which must go on being
// understood.
#pragma once

#include <string_view>

#include "base/value.h"

namespace jetsql {

// The tag letter of a type.
constexpr char TypeLetter(base::Type type) {
  switch (type) {
    case base::Type::Boolean:
      return 'B';
    case base::Type::Integer:
      return 'I';
    case base::Type::Single:
      return 'S';
    case base::Type::Number:
      return 'N';
    case base::Type::Currency:
      return 'C';
    case base::Type::Date:
      return 'D';
    case base::Type::Text:
      return 'T';
    case base::Type::Null:
      break;
  }
  return '?';
}

// The type of a column from its declared type in the file ("LONG_INT", "TEXT(20)", …), the inverse of what a
// CREATE TABLE is translated to; Null for a declaration that is none of ours and says nothing.
base::Type DeclaredType(std::string_view declaration);

}  // namespace jetsql
