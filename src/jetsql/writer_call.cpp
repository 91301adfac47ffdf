#include <algorithm>

#include "jetsql/runtime.h"
#include "jetsql/types_internal.h"
#include "jetsql/writer_parts_internal.h"

namespace jetsql {
namespace {

using base::Type;

std::string LowerCase(std::string_view s) {
  std::string r(s);
  for (char& c : r)
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
  return r;
}

// The values among which an IIf, Switch or Choose chooses.
std::vector<const Expr*> BranchesOf(const Expr& e) {
  std::vector<const Expr*> branches;
  const std::size_t step = e.special == Special::Switch ? 2 : 1;
  for (std::size_t i = 1; i < e.children.size(); i += step) branches.push_back(e.children[i].get());
  return branches;
}

// A date or a boolean among texts becomes its text: afterwards nothing would tell it from a number.
bool BecomesText(const Expr& branch, const std::vector<const Expr*>& branches) {
  if (branch.type.type != Type::Date && branch.type.type != Type::Boolean) return false;
  return std::any_of(branches.begin(), branches.end(),
                     [](const Expr* r) { return r->type.type == Type::Text; });
}

std::string_view TotalName(Special e) {
  switch (e) {
    case Special::Count:
      return "count";
    case Special::Sum:
      return "sum";
    case Special::Avg:
      return "avg";
    case Special::Min:
      return "min";
    case Special::Max:
      return "max";
    case Special::First:
      return "jet_first";
    case Special::Last:
      return "jet_last";
    case Special::StDev:
      return "jet_stdev";
    case Special::StDevP:
      return "jet_stdevp";
    case Special::Var:
      return "jet_var";
    default:
      return "jet_varp";
  }
}

}  // namespace

void CallWriter::ResultOfIf(const Expr& branch, const std::vector<const Expr*>& branches) {
  if (BecomesText(branch, branches))
    d_.expr.Text(branch);
  else
    d_.expr.Value(branch);
}

// CASE takes the ELSE on Null, as IIf takes its false part. An IIf in that part goes on in the same CASE.
void CallWriter::IIf(const Expr& e) {
  t_ += "CASE";
  const Expr* iif = &e;
  for (;;) {
    const auto branches = BranchesOf(*iif);
    t_ += " WHEN ";
    d_.expr.Condition(*iif->children[0]);
    t_ += " THEN ";
    ResultOfIf(*iif->children[1], branches);
    if (iif->children.size() < 3) break;
    const Expr& no = *iif->children[2];
    if (no.node == Node::Call && no.special == Special::IIf && !BecomesText(no, branches)) {
      iif = &no;
      continue;
    }
    t_ += " ELSE ";
    ResultOfIf(no, branches);
    break;
  }
  t_ += " END";
}

void CallWriter::SpecialCall(const Expr& e) {
  const auto branches = BranchesOf(e);
  switch (e.special) {
    case Special::IIf:
      IIf(e);
      return;
    case Special::Switch:
      t_ += "CASE";
      for (std::size_t i = 0; i + 1 < e.children.size(); i += 2) {
        t_ += " WHEN ";
        d_.expr.Condition(*e.children[i]);
        t_ += " THEN ";
        ResultOfIf(*e.children[i + 1], branches);
      }
      t_ += " END";
      return;
    case Special::Choose:
      t_ += "CASE jet_idiv(";
      d_.expr.Value(*e.children[0]);
      t_ += ", 1)";
      for (std::size_t i = 1; i < e.children.size(); ++i) {
        t_.append(" WHEN ").append(std::to_string(i)).append(" THEN ");
        ResultOfIf(*e.children[i], branches);
      }
      t_ += " END";
      return;
    default:
      Aggregate(e);
  }
}

// A crosstab's cell without rows is Null, of Count too.
void CallWriter::Aggregate(const Expr& e) {
  const auto filter = [&] {
    t_ += " FILTER (WHERE ";
    d_.expr.Condition(*e.filter);
    t_ += ')';
  };
  const bool is_cell = e.filter && e.special == Special::Count;
  if (is_cell) {
    t_ += "CASE WHEN count(*)";
    filter();
    t_ += " > 0 THEN ";
  }
  Total(e);
  if (e.filter) filter();
  if (is_cell) t_ += " END";
}

void CallWriter::Total(const Expr& e) {
  const Expr& x = *e.children[0];
  t_.append(TotalName(e.special)).append(e.distinct ? "(DISTINCT " : "(");
  switch (e.special) {
    case Special::Count:
      if (x.node == Node::Star)
        t_ += '*';
      else if (e.distinct)
        d_.compare.Collated(x, 0);
      else
        d_.expr.Value(x);
      break;
    case Special::Min:
    case Special::Max:
      d_.compare.Collated(x, 0);
      break;
    case Special::First:
    case Special::Last:
      d_.expr.Value(x);
      break;
    default:
      d_.expr.Number(x, 0);
  }
  t_ += ')';
}

void CallWriter::Call(const Expr& e) {
  if (e.special != Special::None) {
    SpecialCall(e);
    return;
  }
  t_.append("jet_").append(LowerCase(e.function->name)).append("(");
  if (e.function->tagged) d_.expr.Tags(e.children, 0, e.children.size());
  for (std::size_t i = 0; i < e.children.size(); ++i) {
    if (i > 0 || e.function->tagged) t_ += ", ";
    d_.expr.Value(*e.children[i]);
  }
  t_ += ')';
}

}  // namespace jetsql
