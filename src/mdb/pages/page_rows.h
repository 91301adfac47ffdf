// Rows of one page of type 1: data, long values and page maps alike (Jet 4).
//
// Rows lie from the end of the page downwards in the order of their slots, without gaps between them, so the
// room of a page is one piece between the table of slots and the last row. Whatever is changed here keeps
// that, and the page's free-space field exact. Slots are never renumbered or removed: a row's number is its
// identity.
//
// The views given must not lie in the page that is changed.
#pragma once

#include "mdb/pages/page_file.h"

namespace mdb {

struct Slot {
  static constexpr std::uint16_t kMoved = 0x4000, kTarget = 0x8000, kDeleted = 0xC000, kMask = 0xC000;
  static constexpr std::size_t kFirst = 14;  // offset of the first slot
  static constexpr unsigned kMax = 255;      // slots a page

  std::size_t from = 0, length = 0;
  std::uint16_t marks = 0;
  bool IsDeleted() const { return marks == kDeleted; }
};

constexpr std::uint32_t kMapsOwner = 0, kLongValuesOwner = 0x4C41564C;  // "LVAL"

// Makes an empty page of rows of these bytes.
void InitializeRowPage(std::span<std::uint8_t> page, std::uint32_t owner);
inline std::uint32_t OwnerOf(View page) { return U32(page, 4); }
// Throws Damage when the page is none of rows, or its slots do not fall or reach out of it.
void CheckRowPage(PageNumber number, View page);

unsigned SlotCount(View page);
// Throws Damage for a row that the page does not have.
Slot ReadSlot(PageNumber number, View page, unsigned row);
// Bytes between the slots and the last row.
std::size_t Gap(View page);
// Whether one more row of this length has its place.
bool RowFits(View page, std::size_t length);
// Whether every row is deleted.
bool HasNoRows(View page);

// The caller has made sure of the room. Returns the number of the new row.
std::uint8_t AddRow(PageNumber number, std::span<std::uint8_t> page, View bytes, std::uint16_t marks = 0);
// Gives a row other bytes and flags and moves the rows behind it. False, and nothing changed, when the page
// has no room for it.
bool ChangeRow(PageNumber number, std::span<std::uint8_t> page, unsigned row, View bytes,
               std::uint16_t marks = 0);
// Deletes a row and takes its bytes back.
void RemoveRow(PageNumber number, std::span<std::uint8_t> page, unsigned row);

}  // namespace mdb
