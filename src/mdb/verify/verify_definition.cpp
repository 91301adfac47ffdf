#include <algorithm>
#include <set>

#include "mdb/verify/verify_internal.h"

namespace mdb::internal {
namespace {

constexpr std::uint32_t kConstant = 1625, kIndexConstant = 1923;
constexpr std::uint16_t kEnd = 0xFFFF;
constexpr std::size_t kHead = 8;  // of each page of a definition

Bytes Collect(PageFile& pages, const Definition& definition) {
  Bytes joined;
  for (const PageNumber p : definition.pages) {
    const Image image = pages.Read(p);
    AppendBytes(joined, View(*image).subspan(joined.empty() ? 0 : kHead));
  }
  return joined;
}

// Walks the pieces of a definition by their lengths; returns where they end, and whether the constants that
// Jet 4 writes into each of them are there.
class DefinitionWalk {
 public:
  DefinitionWalk(View v, bool jet3, const Definition& d) : v_(v), jet3_(jet3), d_(d) {}
  std::size_t End() {
    pos_ = (jet3_ ? 43U : 63U) + d_.reals.size() * (jet3_ ? 8 : 12);
    WalkFixed(d_.columns.size(), jet3_ ? 18 : 25, 1, kConstant);
    WalkNames(d_.columns.size());
    WalkFixed(d_.reals.size(), jet3_ ? 39 : 52, 0, kIndexConstant);
    WalkFixed(d_.logicals.size(), jet3_ ? 20 : 28, 0, kConstant);
    WalkNames(d_.logicals.size());
    while (U16(v_, pos_) != kEnd) pos_ += 10;
    if (!jet3_) constants_ = constants_ && U32(v_, 12) == kConstant;
    return pos_ + 2;
  }
  bool HasConstants() const { return constants_; }

 private:
  void WalkFixed(std::size_t count, std::size_t width, std::size_t field, std::uint32_t constant) {
    for (std::size_t i = 0; i < count; ++i, pos_ += width)
      if (!jet3_) constants_ = constants_ && U32(v_, pos_ + field) == constant;
  }
  void WalkNames(std::size_t count) {
    for (std::size_t i = 0; i < count; ++i) pos_ += jet3_ ? U8(v_, pos_) + 1U : U16(v_, pos_) + 2U;
  }
  View v_;
  bool jet3_;
  const Definition& d_;
  std::size_t pos_ = 0;
  bool constants_ = true;
};

bool IsKnownType(const FileHeader& header, ColumnType type) {
  const auto n = static_cast<std::uint8_t>(type);
  if (n == 0 || n == 13 || n == 14 || type > ColumnType::ExtendedDate) return false;
  return header.version == Version::Ace || type < ColumnType::Complex;
}

void CheckColumns(Revision& r, const Definition& d, const std::string& where) {
  std::set<std::uint16_t> numbers, variables;
  std::set<std::string> names;
  for (const Column& c : d.columns) {
    if (!numbers.insert(c.number).second || c.number >= d.max_columns)
      r.Error(d.Page(), where,
              "la columna " + Quoted(c.name) + " tiene el número " + std::to_string(c.number) +
                  (c.number >= d.max_columns ? ", y la tabla llega a " + std::to_string(d.max_columns)
                                             : ", que ya tiene otra"));
    if (!names.insert(c.name).second)
      r.Error(d.Page(), where, "hay dos columnas con el nombre " + Quoted(c.name));
    if (!IsKnownType(r.pages.Header(), c.type))
      r.Error(d.Page(), where,
              "la columna " + Quoted(c.name) + " es de un tipo que su versión no tiene (" +
                  std::to_string(unsigned{static_cast<std::uint8_t>(c.type)}) + ")");
    if (c.IsFixed()) continue;
    if (!variables.insert(c.variable).second || c.variable >= d.variables)
      r.Error(d.Page(), where,
              "la columna " + Quoted(c.name) + " tiene el lugar " + std::to_string(c.variable) +
                  " entre las de largo variable, " +
                  (c.variable >= d.variables ? "que no hay" : "que ya tiene otra"));
  }
  for (const RealIndex& index : d.reals)
    for (const auto& part : index.parts)
      if (!numbers.contains(part.column))
        r.Error(d.Page(), where,
                "un índice nombra la columna número " + std::to_string(part.column) + ", que no existe");
}

}  // namespace

void CheckDefinition(Revision& r, const Definition& d, const std::string& where) {
  const PageNumber page = d.Page();
  const bool jet3 = r.pages.Header().Jet3();
  r.Try(page, where, [&] {
    const Bytes joined = Collect(r.pages, d);
    DefinitionWalk walk(joined, jet3, d);
    const std::size_t end = walk.End(), length = U32(joined, 8);
    if (length != end)
      r.Error(page, where,
              "la definición dice medir " + std::to_string(length) + " bytes y mide " + std::to_string(end));
    if (!walk.HasConstants()) r.Error(page, where, "la definición no tiene las marcas que llevan todas");
    const std::size_t place = r.pages.PageSize() - kHead;
    if (!jet3 && d.pages.size() == 1 && end <= place && U16(joined, 2) != place - end)
      r.Note(page, where,
             "la página de la definición dice tener " + std::to_string(U16(joined, 2)) +
                 " bytes libres y tiene " + std::to_string(place - end));
  });
  CheckColumns(r, d, where);
}

}  // namespace mdb::internal
