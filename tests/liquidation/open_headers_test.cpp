// The table of open headers, over a query whose rows are given: which one a key finds, and whose it is.
#include "liquidation/open_headers.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "liquidation/sql.h"
#include "support/quiet_connection.h"

namespace {

using base::Value;
using liquidation::OpenHeaders;

// Answers every statement with the rows that stand ready, and keeps the statements.
class Canned final : public support::QuietConnection {
 public:
  std::vector<std::string> columns = {"id_Encabezado",      "id_Contrato", "id_TipoLiq",
                                      "Terminado",          "Tarjeta",     "NUMERO",
                                      "Numero_Alternativo", "Dat",         "id_Persona"};
  std::vector<Value> cells;
  std::vector<std::string> asked;

  // The key stands in every key column but the contract's.
  void Row(std::int32_t header, std::int32_t contract, std::int32_t type, const Value& key,
           bool finished = false) {
    cells.insert(cells.end(), {Value(header), Value(contract), Value(type), Value(finished)});
    cells.insert(cells.end(), 5, key);
  }

  db::Recordset Execute(std::string_view sql) override {
    asked.emplace_back(sql);
    auto of = std::make_shared<db::Columns>();
    for (const std::string& name : columns) of->push_back({name, base::Type::Null});
    return {std::move(of), std::exchange(cells, {})};
  }
};

struct Headers : ::testing::Test {
  Headers() {
    auto own = std::make_unique<Canned>();
    base = own.get();
    session.conexion = std::move(own);
    session.idEmpresa = 3;
  }
  void Open(int kind) { headers.Abrir(session, base::MakeDate(2026, 10, 1), "TL", kind); }
  // The header that the key finds for the contract, 0 when none.
  std::int32_t Found(std::string_view key, std::int32_t contract = 10) const {
    const auto* header = headers.Buscar(key, contract);
    return header == nullptr ? 0 : header->id_Encabezado;
  }

  Canned* base = nullptr;
  sesion::DbSession session;
  OpenHeaders headers;
};

TEST_F(Headers, AKeyOfDigitsIsANumber) {
  base->Row(50, 10, 1, Value(210.5));
  base->Row(51, 10, 1, Value("0012"));
  base->Row(52, 10, 1, Value("abc"));
  base->Row(53, 10, 1, Value());
  Open(2);
  EXPECT_EQ(Found("210,5"), 50);
  EXPECT_EQ(Found("210.50"), 50);
  EXPECT_EQ(Found("12"), 51);
  EXPECT_EQ(Found("abc"), 0);
  EXPECT_EQ(Found(""), 0);
  EXPECT_EQ(Found("0"), 0);
  EXPECT_EQ(Found("211"), 0);
}

TEST_F(Headers, AKeyOfTextIsATextWithoutCase) {
  for (const int kind : {1, 3}) {
    base->Row(50, 10, 1, Value("Ñu  "));
    base->Row(51, 10, 1, Value("7"));
    base->Row(52, 10, 1, Value("007"));
    base->Row(53, 10, 1, Value());
    Open(kind);
    EXPECT_EQ(Found("ñU"), 50) << kind;
    EXPECT_EQ(Found("ÑU "), 50) << kind;
    EXPECT_EQ(Found(" ÑU"), 0) << kind;
    EXPECT_EQ(Found("7"), 51) << kind;
    EXPECT_EQ(Found("007"), 52) << kind;
    EXPECT_EQ(Found("7,0"), 0) << kind;
    EXPECT_EQ(Found(""), 0) << kind;
  }
  base->Row(54, 10, 1, Value("  "));
  Open(1);
  EXPECT_EQ(Found(""), 54);
}

// The first record is the one of the lowest contract and, of one contract, the lowest type; it is found by
// its own contract alone.
TEST_F(Headers, TheFirstRecordDecides) {
  base->Row(50, 9, 2, Value(1));
  base->Row(51, 10, 1, Value(1));
  Open(2);
  EXPECT_EQ(Found("1", 9), 50);
  EXPECT_EQ(Found("1", 10), 0);
  EXPECT_EQ(headers.Buscar("1", 9)->id_TipoLiq, 2);
  EXPECT_FALSE(headers.Buscar("1", 9)->Terminado);

  base->Row(52, 9, 1, Value(1), true);
  headers.Reabrir(session, 52);
  EXPECT_EQ(Found("1", 9), 52);
  EXPECT_TRUE(headers.Buscar("1", 9)->Terminado);
  base->Row(53, 9, 1, Value(1));
  headers.Reabrir(session, 53);
  EXPECT_EQ(Found("1", 9), 52);
  base->Row(54, 8, 7, Value(1));
  headers.Reabrir(session, 54);
  EXPECT_EQ(Found("1", 8), 54);
  EXPECT_EQ(Found("1", 9), 0);
}

TEST_F(Headers, ANewHeaderIsReadAlone) {
  Open(5);
  headers.Reabrir(session, 52);
  ASSERT_EQ(base->asked.size(), 2U);
  const base::Date month = base::MakeDate(2026, 10, 1);
  EXPECT_EQ(base->asked[0], liquidation::sql::EncabezadosAbiertos(3, month, "TL"));
  EXPECT_EQ(base->asked[1], liquidation::sql::EncabezadosAbiertos(3, month, "TL", 52));
}

// What was there before the mark stays, also under the key of what goes.
TEST_F(Headers, GoesBackToItsMark) {
  base->Row(50, 10, 2, Value(1));
  Open(2);
  base->Row(51, 10, 1, Value(1));
  headers.Reabrir(session, 51);
  headers.Marcar();
  base->Row(52, 9, 1, Value(1));
  base->Row(53, 10, 1, Value(2));
  headers.Reabrir(session, 52);
  EXPECT_EQ(Found("2"), 53);
  headers.Deshacer();
  EXPECT_EQ(Found("1"), 51);
  EXPECT_EQ(Found("2"), 0);
  headers.Deshacer();
  EXPECT_EQ(Found("1"), 51);
}

TEST_F(Headers, OpeningForgetsWhatWasThere) {
  base->Row(50, 10, 2, Value(1));
  Open(2);
  base->Row(51, 10, 1, Value(2));
  headers.Reabrir(session, 51);
  base->Row(51, 10, 1, Value(2));
  Open(2);
  EXPECT_EQ(Found("1"), 0);
  headers.Deshacer();
  EXPECT_EQ(Found("2"), 51);
}

TEST_F(Headers, AQueryWithoutItsColumnsIsRefused) {
  base->columns.pop_back();
  try {
    Open(5);
    FAIL();
  } catch (const db::Error& error) {
    EXPECT_EQ(error.Description(), "La consulta de encabezados abiertos no tiene la columna id_Persona");
  }
}

TEST(KeyField, OfEachKind) {
  const std::vector<std::string> names = {"id_Contrato", "Numero_Alternativo", "Tarjeta", "Dat", "NUMERO"};
  for (int kind = 0; kind < 5; ++kind)
    EXPECT_EQ(liquidation::KeyField(kind), names[static_cast<std::size_t>(kind)]);
  EXPECT_EQ(liquidation::KeyField(5), "id_Persona");
  EXPECT_EQ(liquidation::KeyField(6), "id_Persona");
  EXPECT_EQ(liquidation::KeyField(-1), "id_Persona");
}

}  // namespace
