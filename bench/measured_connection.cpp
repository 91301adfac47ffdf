#include "measured_connection.h"

#include <array>
#include <utility>

#include "base/text.h"

namespace bench {
namespace {

struct Kind {
  std::string_view start, contains, name;
};

// The first that fits names the statement; those of each line come first.
constexpr std::array<Kind, 15> kKinds = {{
    {"Select id_Dato", "", "find datum"},
    {"insert into Datos_Liquidacion", "", "insert datum"},
    {"select max(", "id_Dato", "max id_Dato"},
    {"SELECT  TTL", "", "type of contract"},
    {"Update Datos_Liquidacion", "", "update datum"},
    {"select max(", "id_Encabezado", "max id_Encabezado"},
    {"Insert into Encabezados", "", "insert header"},
    {"Select id_Encabezado", "", "find header"},
    {"UPDATE Datos_Liquidacion INNER JOIN CDetaLiq", "", "final: days"},
    {"UPDATE Datos_Liquidacion INNER JOIN ACambiar", "", "final: amounts"},
    {"Update  ((Conceptos", "", "final: detail"},
    {"", "From Con_Contrato", "persons"},
    {"", "cLiq_HistoricoSimple", "preload"},
    {"", "inner join Contrato", "open headers"},
    {"", "", "other"},
}};

std::string_view NameOf(std::string_view sql) {
  for (const Kind& kind : kKinds) {
    if (!base::StartsWith(sql, kind.start)) continue;
    if (kind.contains.empty() || sql.find(kind.contains) != sql.npos) return kind.name;
  }
  return "other";
}

}  // namespace

template <typename Step>
auto MeasuredConnection::Measure(std::string_view sql, Step&& step) {
  const std::string_view name = NameOf(sql);
  auto it = costs_.find(name);
  if (it == costs_.end()) it = costs_.emplace(name, Cost{}).first;
  Cost& cost = it->second;
  const WallTimer clock;
  if (!IsFinalUpdate(name)) {
    auto result = step();
    cost.seconds += clock.Seconds();
    ++cost.times;
    return result;
  }
  const CpuTimer cpu_seconds;
  auto result = step();
  cost.cpu_seconds += cpu_seconds.Seconds();
  cost.seconds += clock.Seconds();
  ++cost.times;
  return result;
}

db::Recordset MeasuredConnection::Execute(std::string_view sql) {
  return Measure(sql, [&] { return other_->Execute(sql); });
}

db::Recordset MeasuredConnection::Query(std::string_view sql) {
  return Measure(sql, [&] { return other_->Query(sql); });
}

void MeasuredConnection::CommitTrans() {
  const WallTimer clock;
  const CpuTimer cpu_seconds;
  other_->CommitTrans();
  Cost& cost = costs_["commit"];
  cost.cpu_seconds += cpu_seconds.Seconds();
  cost.seconds += clock.Seconds();
  ++cost.times;
}

bool IsFinalUpdate(std::string_view name) { return base::StartsWith(name, "final: "); }

}  // namespace bench
