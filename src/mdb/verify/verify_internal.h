// The check of a whole file: what its parts share.
#pragma once

#include <functional>
#include <map>
#include <set>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "mdb/definitions/definition.h"
#include "mdb/rows/value.h"
#include "mdb/verify/verify.h"

namespace mdb::internal {

std::string Quoted(const std::string& name);                               // 'name'
std::string Counted(std::size_t n, const char* one, const char* several);  // "una", or "7 varias"
std::string OfRow(RowId row);                                              // "la fila 3 de la página 12"

// A page map, and the range of pages that it can name.
struct SeenMap {
  bool readable = false;
  PageNumber start = 0;
  std::uint64_t end = 0;
  std::vector<PageNumber> pages;  // of those that the file has, rising
};

// The findings so far and who owns which page.
class Revision {
 public:
  Revision(PageFile& from, std::size_t limit);
  PageFile& pages;
  Report report;

  // `where` names the table, and the index ("tabla 'Clientes', índice 'PrimaryKey'"); may be empty.
  void Error(PageNumber page, const std::string& where, const std::string& reason);
  void Note(PageNumber page, const std::string& where, const std::string& reason);
  // Runs a step; what it throws becomes a finding. True when it ended well.
  template <typename Step>
  bool Try(PageNumber page, const std::string& where, Step&& step) {
    try {
      step();
      return true;
    } catch (const Damage& d) {
      AddFinding(page, where, d);
      return false;
    } catch (const base::Error& e) {
      Error(page, where, e.Description());
      return false;
    }
  }

  using Owner = std::uint32_t;
  static constexpr Owner kNobody = 0, kMaps = 1, kSystem = 2;
  Owner AddOwner(std::string name);
  // Claims a page. False, with a finding, for a page that the file does not have or that somebody else has;
  // pages of maps may be claimed as such again.
  bool Take(PageNumber page, Owner owner, const std::string& where);
  bool IsTaken(PageNumber page) const { return owners_[page] != kNobody; }
  const std::string& NameOf(PageNumber page) const { return names_[owners_[page]]; }

  // Reads a map, whose own pages are claimed. A pointer with page 0 is an empty one.
  SeenMap CheckMap(Pointer map, Owner owner, const std::string& where);
  // The slots of a page of rows: their offsets, flags and the free-space field. False when its rows cannot be
  // trusted.
  bool IsSoundRowPage(PageNumber number, const std::string& where);
  // The pages of maps, once each.
  void CheckMapPages();

  std::unordered_set<std::uint64_t> pieces;  // rows of long values that some row has named

 private:
  void AddFinding(PageNumber page, const std::string& where, const Damage& damage);
  void Add(Finding::Severity severity, PageNumber page, const std::string& where, const std::string& reason);
  void ReadBits(Pointer map, const std::string& where, Owner owner, SeenMap& seen);
  std::size_t limit_;
  std::vector<Owner> owners_;
  std::vector<std::string> names_;
  std::set<Pointer> maps_;
};

// One entry of the catalog as the check needs it.
struct SeenObject {
  std::int64_t id = 0, parent = 0, type = 0;
  std::string name;
  RowId row;
};

// A row's values go here; only the columns that were asked for are there.
using OnRow = std::function<void(RowId, const Row&)>;

// The definition's own bytes: length, constants, numbers of columns.
void CheckDefinition(Revision& revision, const Definition& definition, const std::string& where);
// Everything of one table: definition, maps, pages, rows, long values, indexes. `columns` are decoded for
// `on_row` in addition to what the check itself needs.
void CheckTable(Revision& revision, const Definition& definition,
                const std::vector<std::size_t>& columns = {}, const OnRow& on_row = {});

// The rows of a table that have been seen, in the order of their identities, with what each index must hold.
struct SeenRows {
  struct IndexKeys {
    bool has_keys = false;            // keys of this index can be made
    Bytes keys;                       // one after another
    std::vector<std::size_t> ends;    // where each row's key ends
    std::vector<std::uint8_t> marks;  // per row
    static constexpr std::uint8_t kAllNull = 1, kNoKey = 2, kDoubtful = 4, kEntry = 8, kAnyNull = 16;
    View Key(std::size_t row) const;
  };
  std::vector<RowId> ids;
  std::vector<bool> readable;
  std::vector<IndexKeys> indexes;
};
// The tree of one real index, and its entries against the rows.
void CheckIndex(Revision& revision, const Definition& definition, std::size_t index, SeenRows& rows);

// Between the tables.
using Tables = std::map<PageNumber, Definition>;
void CheckRelationships(Revision& revision, const Tables& tables, const std::vector<SeenObject>& objects);
void CheckQueries(Revision& revision, const std::vector<SeenObject>& objects);

}  // namespace mdb::internal
