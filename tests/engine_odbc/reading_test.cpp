// What may only read never reaches a driver that would do more.
#include "odbc_settings.h"

namespace {

class ReadOnly : public tests::TestDriver {
 protected:
  void SetUp() override { Open(); }
  std::string Query(const std::string& sql) {
    try {
      return base_->Query(sql).Field("texto").Text();
    } catch (const db::Error& e) {
      return "! " + e.Description();
    }
  }
};

TEST_F(ReadOnly, QueriesPass) {
  for (const char* sql :
       {"Select 1", "Select 1;", "Select * From a Union All Select * From b Order by 1",
        "Select Count(*), Max(IIf(IsNull(x),0,Val(y))) From t Where z Like 'a%' and Left$(w,2)='b;c'",
        "Select 'it''s -- ; /* fine', a - -1 From (Select * From t) as d Where Exists(Select 1 From u)"})
    EXPECT_EQ(Query(sql), sql);
}

TEST_F(ReadOnly, TheRestDoesNot) {
  for (const char* sql :
       {"Delete From t", "Update t Set a=1", "Insert into t Values (1)", "Select * Into u From t",
        "Create Table t (a Long)", "Drop Table t", "Create View v as Select 1 as x",
        "Alter Table t Add Column a Long", "Create Index i On t (a)"})
    EXPECT_EQ(Query(sql), "! La sentencia no es de consulta: aquí solo se puede leer.") << sql;
}

TEST_F(ReadOnly, NorWhatIsNotUnderstood) {
  for (const char* sql :
       {"Select 1; Delete From t", "Exec borrar", "{call borrar}", "With x as (Select 1) Delete From t",
        "Select 'sin fin", "", "Pragma writable_schema=1", "Call f()", "Select 1 limit 1"}) {
    const std::string answer = Query(sql);
    EXPECT_EQ(answer.rfind("! La sentencia no se entiende, y aquí solo se puede leer. ", 0), 0U)
        << sql << ": " << answer;
  }
}

// A driver's own functions may do anything.
TEST_F(ReadOnly, NorFunctionsThatAreNotOfTheDialect) {
  for (const char* sql :
       {"Select load_extension('x')", "Select 1 From t Where 1=Shell('x')",
        "Select 1 From t Order by writefile('a','b')", "Select (Select nextval('s'))",
        "Select 1 From (Select shell('x') as y) as d", "Select 1 From a Inner Join b On shell('x')=1",
        "Select 1 From a Group by shell(1)", "Select 1 Union Select shell('x')",
        "Select IIf(1=1,shell('x'),0)", "Select 1 From a Having shell(1)=1", "Select DLookup('shell(1)','a')",
        "Transform Sum(shell(1)) Select a From t Group by a Pivot b",
        "Transform Sum(1) Select a From t Group by a Pivot shell(b)"}) {
    const std::string answer = Query(sql);
    EXPECT_NE(answer.find(" no es del dialecto: aquí solo se puede leer."), std::string::npos)
        << sql << ": " << answer;
  }
}

// Where another dialect ends a text or starts a comment, the rest would be a statement of its own.
TEST_F(ReadOnly, NorMarksThatOthersReadOtherwise) {
  EXPECT_EQ(Query("Select 1 --'\n;Delete From t --'"),
            "! La sentencia tiene '--', que otras bases entienden de otra manera: aquí solo se puede leer.");
  EXPECT_EQ(Query("Select 'a\\', ';Delete From t; '"),
            "! La sentencia tiene '\\'', que otras bases entienden de otra manera: aquí solo se puede leer.");
  EXPECT_EQ(Query("Select [a/*b]"),
            "! La sentencia tiene '/*', que otras bases entienden de otra manera: aquí solo se puede leer.");
}

TEST_F(ReadOnly, NorDoesAReadOnlyBaseExecute) {
  engine_odbc::Options options;
  options.read_only = true;
  Open({}, options);
  EXPECT_EQ(ErrorOf("Delete From t"), "La sentencia no es de consulta: aquí solo se puede leer.");
  EXPECT_EQ(Arrives("Select 1"), "Select 1");
}

}  // namespace
