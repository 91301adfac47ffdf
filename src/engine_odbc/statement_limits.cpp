#include "engine_odbc/statement_limits_internal.h"

#include <algorithm>

namespace engine_odbc {
namespace {

// A statement's whole budget is three seconds: a driver has its own start and end beside the work.
constexpr std::int64_t kStepsASecond = 10'000'000;

void Ask(const Cursor& cursor, SQLINTEGER attribute, std::int64_t value) {
  SQLSetStmtAttrW(cursor.Raw(), attribute, reinterpret_cast<SQLPOINTER>(static_cast<SQLULEN>(value)),
                  SQL_IS_UINTEGER);
}

}  // namespace

StatementLimits::StatementLimits(const Cursor& cursor, db::QueryBudget* budget)
    : cursor_(cursor), budget_(budget) {
  if (budget_ == nullptr) return;
  if (budget_->steps <= 0) throw db::QueryInterrupted(db::QueryInterrupted::By::Work);
  Ask(cursor_, SQL_ATTR_QUERY_TIMEOUT, (budget_->steps + kStepsASecond - 1) / kStepsASecond);
  Ask(cursor_, SQL_ATTR_MAX_ROWS, std::max<std::int64_t>(budget_->rows, 0) + 1);  // one more tells
  start_ = std::chrono::steady_clock::now();
}

StatementLimits::~StatementLimits() {
  if (budget_ == nullptr) return;
  budget_->steps -= Spent();
  if (!cursor_) return;  // gone with the connection
  Ask(cursor_, SQL_ATTR_QUERY_TIMEOUT, 0);
  Ask(cursor_, SQL_ATTR_MAX_ROWS, 0);
}

std::int64_t StatementLimits::Spent() const {
  const std::chrono::duration<double> time = std::chrono::steady_clock::now() - start_;
  return static_cast<std::int64_t>(time.count() * static_cast<double>(kStepsASecond));
}

void StatementLimits::Row(const std::vector<base::Value>& cells, std::size_t width) {
  if (budget_ == nullptr) return;
  --budget_->rows;
  for (std::size_t i = cells.size() - width; i < cells.size(); ++i)
    if (const auto* text = cells[i].GetIf<std::string>())
      budget_->bytes -= static_cast<std::int64_t>(text->size());
  if (budget_->rows < 0 || budget_->bytes < 0) throw db::QueryInterrupted(db::QueryInterrupted::By::Size);
  if (Spent() > budget_->steps) throw db::QueryInterrupted(db::QueryInterrupted::By::Work);
}

}  // namespace engine_odbc
