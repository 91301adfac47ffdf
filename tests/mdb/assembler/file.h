// The whole file under way.
#pragma once

#include <memory>

#include "mdb/assembler/bytes.h"

namespace assembler {

class Builder {
 public:
  explicit Builder(const File& file) : file_(file), pages_{file.format, {}}, maps_(pages_, 0) {}
  Bytes Make();

 private:
  struct Real {
    PageNumber root = 0;
    RowId map;
    std::size_t entries = 0, distinct = 0;
  };
  // A name over a real index.
  struct Logical {
    std::string name;
    std::uint32_t number = 0, real = 0, other_index = 0xFFFFFFFF;
    PageNumber other_table = 0;
    std::uint8_t side = 0, updates = 4, deletes = 4, kind = 0;
  };
  struct Stored {
    std::vector<RowId> rows;  // one a row of the description
    RowId own, room;
    struct LongMaps {
      unsigned column;
      RowId own, room;
    };
    std::vector<LongMaps> long_maps;
    std::vector<Real> reals;
  };

  static unsigned Number(const Table& table, const std::string& column);
  RowId Map(const std::vector<PageNumber>& set, bool bitmap_page = false);
  void Rows(const Table& table, PageNumber page, Stored& stored);
  void Indexes(const Table& table, PageNumber page, Stored& stored);
  void Definition(const Table& table, PageNumber page, const Stored& stored);
  void OverPages(PageNumber first, const Bytes& definition);
  void Write(const Table& table, PageNumber page);

  std::vector<Logical> Logicals(const Table& table) const;
  const Table& TableOf(const std::string& name) const;
  PageNumber PageOf(const std::string& table) const;

  Table Objects() const;
  Table Permissions() const;
  Table Queries() const;
  Table Relationships() const;
  void FreeMap();
  void Header();

  const File& file_;
  Pages pages_;
  RowPages maps_;
  std::vector<PageNumber> table_pages_, free_;
};

}  // namespace assembler
