#include "engine_sqlite/work_limit_internal.h"

namespace engine_sqlite {
namespace {

constexpr int kStepsBetweenLooks = 1000;

int Look(void* steps) {
  auto& left = *static_cast<std::int64_t*>(steps);
  left -= kStepsBetweenLooks;
  return left < 0 ? 1 : 0;
}

}  // namespace

WorkLimit::WorkLimit(sqlite3* base, sqlite3_stmt* statement, Environment& environment,
                     db::QueryBudget* budget)
    : base_(base), environment_(environment), budget_(budget) {
  if (budget_ == nullptr) return;
  budget_->steps -= kStepsBetweenLooks;  // what comes before the first look, and so for every statement
  if (budget_->steps < 0) throw db::QueryInterrupted(db::QueryInterrupted::By::Work);
  environment_.steps_left = &budget_->steps;
  sqlite3_stmt_status(statement, SQLITE_STMTSTATUS_VM_STEP, 1);  // the looks go by this count
  sqlite3_progress_handler(base_, kStepsBetweenLooks, Look, &budget_->steps);
}

WorkLimit::~WorkLimit() {
  if (budget_ == nullptr) return;
  sqlite3_progress_handler(base_, 0, nullptr, nullptr);
  environment_.steps_left = nullptr;
}

void WorkLimit::Row(const std::vector<base::Value>& cells, std::size_t width) {
  if (budget_ == nullptr) return;
  --budget_->rows;
  for (std::size_t i = cells.size() - width; i < cells.size(); ++i)
    if (const auto* text = cells[i].GetIf<std::string>())
      budget_->bytes -= static_cast<std::int64_t>(text->size());
  if (budget_->rows < 0 || budget_->bytes < 0) throw db::QueryInterrupted(db::QueryInterrupted::By::Size);
}

void WorkLimit::ThrowIfInterrupted() const {
  if (budget_ != nullptr && budget_->steps < 0) throw db::QueryInterrupted(db::QueryInterrupted::By::Work);
}

}  // namespace engine_sqlite
