#include <algorithm>
#include <limits>
#include <optional>

#include "mdb/indexes/index_key.h"
#include "mdb/pages/data_page_internal.h"
#include "mdb/rows/row_internal.h"
#include "mdb/rows/table.h"
#include "mdb/verify/verify_internal.h"

namespace mdb::internal {
namespace {

std::uint64_t Number(Pointer p) { return static_cast<std::uint64_t>(p.page) << 8 | p.row; }

// Characters whose places in the accent section are not sure, or that a text of ours does not tell apart.
bool HasDoubtful(const std::string& text) {
  for (const char* c : {"ß", "Æ", "æ", "Þ", "þ", "Œ", "œ", "\xEF\xBF\xBD"})
    if (text.find(c) != std::string::npos) return true;
  return text.find('\0') != std::string::npos;
}

class TableCheck {
 public:
  TableCheck(Revision& r, const Definition& d, const std::vector<std::size_t>& columns, const OnRow& on_row)
      : r_(r), d_(d), on_row_(on_row), where_("tabla " + Quoted(d.name)), requested_(columns) {}

  void Run() {
    ++r_.report.tables;
    const auto definition = r_.AddOwner("la definición de la tabla " + Quoted(d_.name));
    for (const PageNumber p : d_.pages) r_.Take(p, definition, where_);
    CheckDefinition(r_, d_, where_);
    maps_owner_ = r_.AddOwner("los mapas de la tabla " + Quoted(d_.name));
    CheckLongValueMaps();
    PrepareIndexes();
    Data();
    CheckMoved();
    Pieces();
    CheckCounters();
    for (std::size_t i = 0; i < d_.reals.size(); ++i) CheckIndex(r_, d_, i, rows_);
  }

 private:
  SeenMap CheckMaps(Pointer owned_pages, Pointer free_pages, const std::string& what) {
    SeenMap mine = r_.CheckMap(owned_pages, maps_owner_, where_);
    const SeenMap with_room = r_.CheckMap(free_pages, maps_owner_, where_);
    for (const PageNumber p : with_room.pages)
      if (mine.readable && !std::binary_search(mine.pages.begin(), mine.pages.end(), p))
        r_.Error(p, where_, "figura con espacio libre " + what + " y no es suya");
    return mine;
  }

  // The pages of rows whose slots can be trusted.
  std::vector<PageNumber> Pages(const SeenMap& map, std::uint32_t written_owner, Revision::Owner owner) {
    std::vector<PageNumber> good;
    for (const PageNumber p : map.pages) {
      if (!r_.Take(p, owner, where_)) continue;
      r_.Try(p, where_, [&] {
        const Image image = r_.pages.Read(p);
        if ((*image)[0] != kDataPage)
          r_.Error(p, where_,
                   "figura entre sus páginas de datos y es de otra clase (" +
                       std::to_string(unsigned{(*image)[0]}) + ")");
        else if (U32(*image, 4) != written_owner)
          r_.Error(p, where_,
                   U32(*image, 4) == kLval ? "figura entre sus páginas de datos y es de valores largos"
                                           : "figura entre sus páginas y dice ser de la página " +
                                                 std::to_string(U32(*image, 4)));
        else if (r_.IsSoundRowPage(p, where_))
          good.push_back(p);
      });
    }
    return good;
  }

  void CheckLongValueMaps() {
    long_pages_of_.resize(d_.columns.size());
    for (std::size_t i = 0; i < d_.columns.size(); ++i) {
      const Column& c = d_.columns[i];
      if (!c.IsLong() || c.lv_owned_pages.page == 0) continue;
      const SeenMap map = CheckMaps(c.lv_owned_pages, c.lv_free_pages, "para la columna " + Quoted(c.name));
      const auto owner = r_.AddOwner("los valores largos de la columna " + Quoted(c.name) + " de la tabla " +
                                     Quoted(d_.name));
      long_pages_of_[i] = map.pages;
      for (const PageNumber p : Pages(map, kLval, owner)) long_pages_.push_back(p);
    }
  }

  void PrepareIndexes() {
    std::vector<bool> chosen(d_.columns.size(), false);
    for (const std::size_t i : requested_) chosen[i] = true;
    for (std::size_t i = 0; i < d_.columns.size(); ++i)
      if (d_.columns[i].IsAutoNumber() && d_.columns[i].type == ColumnType::Long) {
        auto_number_ = i;
        chosen[i] = true;
      }
    rows_.indexes.resize(d_.reals.size());
    for (std::size_t k = 0; k < d_.reals.size(); ++k) {
      rows_.indexes[k].has_keys = NoKeysReason(r_.pages.Header(), d_, d_.reals[k]).empty();
      for (const auto& part : d_.reals[k].parts)
        if (const auto i = d_.ByNumber(part.column)) chosen[*i] = true;
    }
    for (std::size_t i = 0; i < chosen.size(); ++i)
      if (chosen[i]) chosen_.push_back(i);
    row_.resize(d_.columns.size());
  }

  void Data() {
    if (d_.owned_pages.page == 0 || d_.free_pages.page == 0)
      r_.Error(d_.Page(), where_, "la tabla no tiene los mapas de sus páginas");
    const SeenMap map = CheckMaps(d_.owned_pages, d_.free_pages, "");
    complete_ = map.readable;
    const auto owner = r_.AddOwner("los datos de la tabla " + Quoted(d_.name));
    const std::vector<PageNumber> good = Pages(map, d_.Page(), owner);
    complete_ = complete_ && good.size() == map.pages.size();
    for (const PageNumber p : good)
      r_.Try(p, where_, [&] {
        const Image image = r_.pages.Read(p);
        const DataPage data(r_.pages.Header(), p, *image);
        for (unsigned i = 0; i < std::min(data.Count(), 256U); ++i) {
          const SlotView slot = data.At(i);
          const RowId id{p, static_cast<std::uint8_t>(i)};
          if (slot.IsTarget()) targets_.push_back(id);
          if (!slot.IsSkipped()) CheckRow(id, slot.IsMoved() ? std::optional<View>() : slot.bytes);
        }
      });
  }

  void CheckRow(RowId id, std::optional<View> bytes) {
    rows_.ids.push_back(id);
    const std::string where = where_ + ", " + OfRow(id).substr(3);  // without "la"
    Image image;                                                    // keeps the bytes of a moved row
    const bool readable = r_.Try(id.page, where, [&] {
      if (!bytes) {
        const auto moved = FindRow(r_.pages, d_, id);
        if (!moved) ThrowPageDamage(id.page, "la fila movida no se encuentra");
        moved_.push_back(moved->place);
        image = moved->image;
        bytes = moved->bytes;
      }
      CheckShape(*bytes);
      CheckValues(id, *bytes, where);
    });
    rows_.readable.push_back(readable);
    ++r_.report.rows;
    MakeKeys(readable);
    if (readable && on_row_) on_row_(id, row_);
  }

  // What a row says of itself, apart from its values.
  void CheckShape(View bytes) const {
    const bool jet3 = r_.pages.Header().Jet3();
    const std::size_t columns = jet3 ? U8(bytes, 0) : U16(bytes, 0);
    if (columns > d_.max_columns)
      throw Damage("la fila dice tener " + std::to_string(columns) + " columnas, y la tabla llega a " +
                   std::to_string(d_.max_columns));
    if (jet3 || d_.variables == 0) return;
    const std::size_t mask = (columns + 7) / 8;
    if (mask + 4 > bytes.size()) ThrowTooShort();
    const std::size_t table = bytes.size() - mask - 4, variables = U16(bytes, table + 2);
    if (variables > d_.variables || 2 * variables > table)
      throw Damage("la fila dice tener " + std::to_string(variables) + " columnas de largo variable");
    for (std::size_t i = 0; i < variables; ++i)
      if (U16(bytes, table - 2 * i) > U16(bytes, table - 2 * (i + 1)))
        throw Damage("las columnas de largo variable de la fila se pisan");
  }

  void CheckValues(RowId id, View bytes, const std::string& where) {
    const OpenRow open_query(r_.pages.Header(), d_, bytes);
    for (std::size_t i = 0; i < d_.columns.size(); ++i) {
      const Column& c = d_.columns[i];
      const Raw raw = open_query.Of(c);
      if (!raw || c.IsCalculated()) continue;
      if (c.IsLong())
        CheckLongValue(id, i, *raw, where);
      else if (!c.IsFixed())
        Variable(c, *raw);
    }
    for (const std::size_t i : chosen_) {
      row_[i] = base::Null{};
      if (const Raw raw = open_query.Of(d_.columns[i])) DecodeInto(r_.pages, d_.columns[i], *raw, row_[i]);
    }
    if (!auto_number_) return;
    if (const auto* n = std::get_if<std::int64_t>(&row_[*auto_number_])) largest_ = std::max(largest_, *n);
  }

  // The bytes of a column of variable length against its type.
  void Variable(const Column& c, View raw) const {
    const std::string what = "el valor de la columna " + Quoted(c.name);
    if (c.type != ColumnType::Text && c.type != ColumnType::Binary) {
      if (c.type != ColumnType::FixedBinary && raw.size() != FixedWidth(c))
        throw Damage(what + " no mide lo que su tipo");
      return;
    }
    const bool compressed = c.type == ColumnType::Text && !r_.pages.Header().Jet3() && raw.size() >= 2 &&
                            raw[0] == 0xFF && raw[1] == 0xFE;
    // A compressed text has a byte a character as long as it does not switch, which a 0 tells.
    std::size_t bytes = raw.size();
    if (compressed) {
      const View letters = raw.subspan(2);
      if (std::find(letters.begin(), letters.end(), 0) != letters.end()) return;
      bytes = 2 * letters.size();
    }
    if (bytes > c.length) throw Damage(what + " es más largo que la columna");
    if (c.type == ColumnType::Text && !r_.pages.Header().Jet3() && bytes % 2 != 0)
      throw Damage(what + " es un texto cortado por la mitad de una letra");
  }

  void CheckLongValue(RowId id, std::size_t column, View field, const std::string& where) {
    constexpr std::uint32_t kInline = 0x80000000, kOneRow = 0x40000000, kLength = 0x3FFFFFFF;
    const std::string what = "el valor largo de la columna " + Quoted(d_.columns[column].name);
    if (field.empty()) return;  // an empty text of old versions
    const std::uint32_t word = U32(field, 0);
    const std::size_t length = word & kLength;
    Slice(field, 0, 12);
    std::size_t found = field.size() - 12;
    if ((word & kInline) == 0) {
      ++r_.report.long_values;
      found = (word & kOneRow) != 0 ? ReadPiece(ReadPointer(field, 4), column, where).size()
                                    : ReadChain(ReadPointer(field, 4), column, length, where);
    }
    if (found != length)
      r_.Error(id.page, where,
               what + " dice medir " + std::to_string(length) + " bytes y hay " + std::to_string(found));
  }

  std::size_t ReadChain(Pointer pointer, std::size_t column, std::size_t length, const std::string& where) {
    std::size_t found = 0;
    while (pointer.page != 0) {
      const std::size_t before = r_.pieces.size();
      const View piece = ReadPiece(pointer, column, where);
      if (r_.pieces.size() == before) break;  // met before: told, and the chain may come back for ever
      found += Slice(piece, 4, piece.size() < 4 ? 4 : piece.size() - 4).size();
      if (found > length) break;
      pointer = ReadPointer(piece, 0);
    }
    return found;
  }

  // One row of a page of long values. The view holds as long as `piece_`.
  View ReadPiece(Pointer pointer, std::size_t column, const std::string& where) {
    std::uint32_t owner = 0;
    Place place = Follow(r_.pages, pointer, &owner);
    if (owner != kLval || place.slot.flags != 0)
      ThrowPageDamage(pointer.page,
                      "un valor largo lleva a " + OfRow(pointer) + ", que no es de valores largos");
    if (!r_.pieces.insert(Number(pointer)).second)
      r_.Error(pointer.page, where, "dos valores largos usan " + OfRow(pointer));
    const auto& mine = long_pages_of_[column];
    if (!std::binary_search(mine.begin(), mine.end(), pointer.page))
      r_.Error(
          pointer.page, where,
          "un valor largo está en una página que no es de la columna " + Quoted(d_.columns[column].name));
    piece_ = std::move(place.image);
    return place.slot.bytes;
  }

  void MakeKeys(bool readable) {
    for (std::size_t k = 0; k < d_.reals.size(); ++k) {
      auto& index_keys = rows_.indexes[k];
      std::uint8_t marks = SeenRows::IndexKeys::kNoKey;
      if (readable) marks = Key(k, index_keys);
      index_keys.ends.push_back(index_keys.keys.size());
      index_keys.marks.push_back(marks);
    }
  }

  std::uint8_t Key(std::size_t k, SeenRows::IndexKeys& index_keys) {
    using M = SeenRows::IndexKeys;
    const RealIndex& index = d_.reals[k];
    std::uint8_t marks = 0;
    try {
      if (AllNull(d_, index, row_)) marks |= M::kAllNull;
      if (AnyNull(d_, index, row_)) marks |= M::kAnyNull;
      if (!index_keys.has_keys) return marks | M::kNoKey;
      MakeRowKey(r_.pages.Header(), d_, index, row_, key_);
    } catch (
        const base::Error&) {  // a character or a column without keys; what else is wrong was told before
      return marks | M::kNoKey;
    }
    AppendBytes(index_keys.keys, key_);
    for (const auto& part : index.parts)
      if (const auto i = d_.ByNumber(part.column))
        if (const auto* text = std::get_if<std::string>(&row_[*i]))
          if (HasDoubtful(*text)) marks |= M::kDoubtful;
    return marks;
  }

  // Each place of a moved row belongs to one row.
  void CheckMoved() {
    std::sort(moved_.begin(), moved_.end());
    for (std::size_t i = 1; i < moved_.size(); ++i)
      if (moved_[i] == moved_[i - 1])
        r_.Error(moved_[i].page, where_, "dos filas movidas llevan a " + OfRow(moved_[i]));
    if (!complete_) return;
    for (const RowId& target : targets_)
      if (!std::binary_search(moved_.begin(), moved_.end(), target))
        r_.Error(target.page, where_, OfRow(target) + " es la de una fila movida que no existe");
  }

  void Pieces() {
    std::size_t loose = 0;
    PageNumber first = 0;
    for (const PageNumber p : long_pages_)
      r_.Try(p, where_, [&] {
        const Image image = r_.pages.Read(p);
        const DataPage data(r_.pages.Header(), p, *image);
        for (unsigned i = 0; i < data.Count(); ++i) {
          const SlotView slot = data.At(i);
          if (slot.flags != 0 && slot.flags != (SlotView::kMoved | SlotView::kHidden))
            r_.Error(p, where_,
                     "la fila " + std::to_string(i) + " de valores largos tiene marcas de otra clase");
          if (slot.flags != 0 || r_.pieces.contains(Number({p, static_cast<std::uint8_t>(i)}))) continue;
          if (loose++ == 0) first = p;
        }
      });
    if (loose != 0)
      r_.Note(first, where_,
              Counted(loose, "un trozo de valor largo no es", "trozos de valores largos no son") +
                  " de ninguna fila");
  }

  void CheckCounters() {
    if (complete_ && d_.rows != rows_.ids.size())
      r_.Note(d_.Page(), where_,
              "la definición cuenta " + std::to_string(d_.rows) + " filas y hay " +
                  std::to_string(rows_.ids.size()));
    if (auto_number_ && largest_ > d_.last_auto_number)
      r_.Note(d_.Page(), where_,
              "el último autonumérico es " + std::to_string(d_.last_auto_number) + " y hay un " +
                  std::to_string(largest_));
  }

  Revision& r_;
  const Definition& d_;
  const OnRow& on_row_;
  std::string where_;
  std::vector<std::size_t> requested_, chosen_;
  Revision::Owner maps_owner_ = 0;
  std::vector<std::vector<PageNumber>> long_pages_of_;  // by column, the pages of its long values
  std::vector<PageNumber> long_pages_;
  std::vector<RowId> moved_, targets_;
  bool complete_ = false;  // all pages of rows could be read
  std::optional<std::size_t> auto_number_;
  std::int64_t largest_ = std::numeric_limits<std::int32_t>::min();
  SeenRows rows_;
  Row row_;
  Bytes key_;
  Image piece_;
};

}  // namespace

View SeenRows::IndexKeys::Key(std::size_t row) const {
  const std::size_t from = row == 0 ? 0 : ends[row - 1];
  return View(keys).subspan(from, ends[row] - from);
}

void CheckTable(Revision& revision, const Definition& definition, const std::vector<std::size_t>& columns,
                const OnRow& on_row) {
  TableCheck(revision, definition, columns, on_row).Run();
}

}  // namespace mdb::internal
