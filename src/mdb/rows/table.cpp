#include "mdb/rows/table.h"

#include "mdb/pages/data_page_internal.h"
#include "mdb/pages/page_map.h"
#include "mdb/rows/row_internal.h"

namespace mdb {
namespace {

using internal::DataPage;
using internal::SlotView;

DataPage OpenPage(const PageFile& pages, const Definition& definition, PageNumber number,
                  const Image& image) {
  const DataPage data(pages.Header(), number, *image);
  if (data.Owner() != definition.Page()) ThrowPageDamage(number, "es de otra tabla");
  return data;
}

// The place of a moved row. Only such a place may be pointed at, so that no row leads on to another.
RowBytes FollowMoved(PageFile& pages, const Definition& definition, View slot) {
  const RowId place = internal::ReadPointer(slot, 0);
  RowBytes row{pages.Read(place.page), {}, place};
  const SlotView r = OpenPage(pages, definition, place.page, row.image).At(place.row);
  if (!r.IsTarget()) ThrowPageDamage(place.page, "una fila movida no está donde debe");
  row.bytes = r.bytes;
  return row;
}

[[noreturn]] void ThrowUnreadableRow(RowId id, const Damage& d) {
  if (d.NamesPage()) throw d;
  ThrowPageDamage(id.page, "la fila " + std::to_string(id.row) + " no se puede leer");
}

// Decodes chosen columns of one row after another into the same values.
class Decoder {
 public:
  Decoder(PageFile& pages, const Definition& definition, const std::vector<std::size_t>& columns)
      : pages_(pages), definition_(definition), chosen_(columns), row_(definition.columns.size()) {
    if (!chosen_.empty()) return;
    for (std::size_t i = 0; i < definition.columns.size(); ++i) chosen_.push_back(i);
  }

  const Row& Read(View bytes) {
    const internal::OpenRow open_query(pages_.Header(), definition_, bytes);
    for (const std::size_t i : chosen_) {
      const Column& column = definition_.columns[i];
      if (const Raw raw = open_query.Of(column)) {
        internal::DecodeInto(pages_, column, *raw, row_[i]);
      } else {
        row_[i] = base::Null{};
      }
    }
    return row_;
  }

 private:
  PageFile& pages_;
  const Definition& definition_;
  std::vector<std::size_t> chosen_;
  Row row_;
};

}  // namespace

void WalkRows(PageFile& pages, const Definition& definition, const Visitor& visit,
              const std::vector<std::size_t>& columns) {
  Decoder decoder(pages, definition, columns);
  const auto read = [&](RowId id, View bytes) -> const Row& {
    try {
      return decoder.Read(bytes);
    } catch (const Damage& d) {
      ThrowUnreadableRow(id, d);
    }
  };
  for (const PageNumber number : ReadWholeMap(pages, definition.owned_pages)) {
    const Image image = pages.Read(number);
    const DataPage data = OpenPage(pages, definition, number, image);
    for (unsigned i = 0; i < data.Count(); ++i) {
      const SlotView r = data.At(i);
      if (r.IsSkipped()) continue;
      const RowId id{number, static_cast<std::uint8_t>(i)};
      if (r.IsMoved()) {
        const auto moved = internal::NamingPage(number, "una fila movida no se puede seguir",
                                                [&] { return FollowMoved(pages, definition, r.bytes); });
        if (!visit(id, read(moved.place, moved.bytes))) return;
      } else if (!visit(id, read(id, r.bytes))) {
        return;
      }
    }
  }
}

std::optional<RowBytes> FindRow(PageFile& pages, const Definition& definition, RowId id) {
  RowBytes row{pages.Read(id.page), {}, id};
  const DataPage data = OpenPage(pages, definition, id.page, row.image);
  if (id.row >= data.Count()) return {};
  const SlotView r = data.At(id.row);
  if (r.IsSkipped()) return {};
  if (r.IsMoved())
    return internal::NamingPage(id.page, "una fila movida no se puede seguir",
                                [&] { return FollowMoved(pages, definition, r.bytes); });
  row.bytes = r.bytes;
  return row;
}

std::optional<Row> ReadRow(PageFile& pages, const Definition& definition, RowId id) {
  const auto bytes = FindRow(pages, definition, id);
  if (!bytes) return {};
  try {
    return Decoder(pages, definition, {}).Read(bytes->bytes);
  } catch (const Damage& d) {
    ThrowUnreadableRow(bytes->place, d);
  }
}

}  // namespace mdb
