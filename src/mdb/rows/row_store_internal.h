// The pages of one owner: where its rows find room, and what becomes of pages that empty.
#pragma once

#include <unordered_set>
#include <vector>

#include "mdb/pages/page_rows.h"

namespace mdb::internal {

// Keeps the owner's two page maps: a page leaves the map of those with room when little is left on it, and
// comes back when a row goes or shrinks; a page without rows is given back to the file. Lives for one batch
// of changes, during which nobody else may take rows from these pages.
class RowStore {
 public:
  // `owner` is what stands in the pages: the table's definition page, or kLongValuesOwner. `free_pages` may
  // be none.
  RowStore(PageFile& pages, std::uint32_t owner, Pointer owned_pages, Pointer free_pages)
      : pages_(pages), owner_(owner), owned_pages_(owned_pages), free_pages_(free_pages) {}

  // On a page with room, or a new one. The cost does not depend on how many pages there are.
  RowId Add(View bytes, std::uint16_t marks = 0);
  // Other bytes and flags for a row in its place; false, and nothing changed, when its page has no room.
  bool Change(RowId row, View bytes, std::uint16_t marks = 0);
  void Remove(RowId row);

 private:
  struct OpenPage {
    PageNumber number = 0;
    std::size_t gap = 0;
  };
  PageFile& pages_;
  std::uint32_t owner_;
  Pointer owned_pages_, free_pages_;
  std::vector<OpenPage> open_;       // with room, the last used behind
  std::vector<PageNumber> pending_;  // of the map, not looked at yet
  bool loaded_ = false;
  std::unordered_set<PageNumber> released_;  // given back meanwhile

  Bytes& Open(PageNumber number);
  PageNumber Choose(std::size_t length);
  PageNumber FindPending(std::size_t length);
  PageNumber NewPage();
  void Note(PageNumber number, View page);
  void Close(PageNumber number);
  void Release(PageNumber number);
};

}  // namespace mdb::internal
