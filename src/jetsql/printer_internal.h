// From a tree that is not resolved to text of the dialect.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "jetsql/ast.h"

namespace jetsql {

class Printer {
 public:
  void Write(const Expr& e, int minimum = 0);
  void Write(const Query& c);
  void WriteSelect(const Select& s);
  void Write(const Insert& s);
  void Write(const Update& s);
  void Write(const Delete& s);
  void Write(const CreateTable& s);
  void Write(const CreateIndex& s);
  void Write(const CreateView& s);
  void Write(const Drop& s);
  void Write(const AlterTable& s);

  std::string Text() && { return std::move(t_); }

 private:
  void Name(std::string_view name);
  void Names(const std::vector<std::string>& names);
  void Literal(const base::Value& v);
  void Unary(const Expr& e);
  void Binary(const Expr& e, int strength);
  void Predicate(const Expr& e);
  void List(const Expr& e, std::size_t from);
  void Item(const ListItem& i);
  void From(const std::vector<BranchPtr>& from);
  void Branch(const jetsql::Branch& r);
  void Column(const ColumnDefinition& c);
  void Type(const ColumnDefinition& c);
  void WriteReference(const Reference& r);
  void WriteConstraint(const Constraint& r);

  std::string t_;
};

}  // namespace jetsql
