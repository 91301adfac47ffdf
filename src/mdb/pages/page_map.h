// Page maps: which pages are free, and which belong to a table, a long column or an index.
//
// A map is a row of a data page with owner 0 (the global one: row 0 of page 1), either a bitmap from a start
// page or a list of bitmap pages; see docs/formats/mdb.md.
#pragma once

#include <vector>

#include "mdb/pages/page_file.h"

namespace mdb {

// The pages of the map, rising. A pointer with page 0 is an empty map. Numbers beyond the end of the file are
// left out. Throws Damage.
std::vector<PageNumber> ReadMap(PageFile& pages, Pointer map);
// The same of a map whose pages must all be there, as the data pages of a table: a number beyond the end of
// the file is damage. A file cut short must not pass for one with fewer rows.
std::vector<PageNumber> ReadWholeMap(PageFile& pages, Pointer map);
// The bitmap pages that a map of the second kind stands on (none for the first).
std::vector<PageNumber> PagesOfMap(PageFile& pages, Pointer map);
bool IsInMap(PageFile& pages, Pointer map, PageNumber page);
// Adds and removes; a map that cannot name the page grows (moves its window, or becomes a list of bitmap
// pages).
void AddToMap(PageFile& pages, Pointer map, PageNumber page);
void RemoveFromMap(PageFile& pages, Pointer map, PageNumber page);
// A new, empty map: a row on a page of maps (one with room that the file has, else a new page).
Pointer CreateMap(PageFile& pages);
void DeleteMap(PageFile& pages, Pointer map);  // frees its bitmap pages and its row

// A page for use, zeroed: a free one of the global map, else a new one at the end; taken out of the global
// map.
PageNumber ReservePage(PageFile& pages);
// Back to the global map; its first bytes are marked as those of a free page.
void FreePage(PageFile& pages, PageNumber page);

}  // namespace mdb
