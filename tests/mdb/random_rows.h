// Random changes of a table with a model beside it: what the table must hold after each batch.
#pragma once

#include <map>
#include <random>
#include <string>

#include "mdb/tables/table_writer.h"

namespace mdb_test {

class Random {
 public:
  explicit Random(unsigned seed) : generator_(seed) {}
  unsigned Below(unsigned n) { return static_cast<unsigned>(generator_()) % n; }  // 0 to n-1
  bool One(unsigned from) { return Below(from) == 0; }

 private:
  std::mt19937 generator_;
};

// A value for a column, now and then Null. With `sortable`, a text has only characters that an index takes.
mdb::Datum RandomDatum(Random& random, const mdb::Column& column, bool sortable);

struct Counts {
  unsigned inserted = 0, changed = 0, deleted = 0, rejected = 0;
  unsigned Done() const { return inserted + changed + deleted; }
};

class ModelledTable {
 public:
  // Takes the rows that are there as the model's first.
  ModelledTable(mdb::PageFile& pages, mdb::PageNumber definition, std::string name);
  // One batch through Apply, of about `length` rows. Some batches pay no heed to unique and required
  // indexes: where these do not allow one, it must be refused, and the pages go back.
  void Change(Random& random, unsigned length);
  // Rows and index entries as read back are the model's; reports through GoogleTest.
  void Compare();
  void DeleteAll();
  void Rotate();  // each row gets the values of the next

  const mdb::Definition& Def() const { return definition_; }
  const std::map<mdb::RowId, mdb::Row>& Rows() const { return rows_; }
  Counts counts;
  unsigned many_rows = 400;  // above it, batches delete more than they insert

 private:
  using Contents = std::map<mdb::RowId, mdb::Row>;
  mdb::PageFile& pages_;
  mdb::Definition definition_;
  std::vector<bool> sortable_;
  Contents rows_;

  mdb::Row RandomRow(Random& random);
  bool IsAdmitted(const Contents& rows, const std::vector<mdb::Row>& inserted) const;
  void Apply(const mdb::Changes& changes, Contents after);
};

}  // namespace mdb_test
