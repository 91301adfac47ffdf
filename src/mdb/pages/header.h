// Page 0 of an Access file.
#pragma once

#include <string>

#include "mdb/pages/bytes.h"

namespace mdb {

enum class Version { Jet3, Jet4, Ace };  // Access 97; 2000 to 2003; 2007 and later (.accdb)

// Where a row of a data page stands: a "data pointer", and a row's identity for life. Page 0 is "none".
struct RowId {
  PageNumber page = 0;
  std::uint8_t row = 0;
  auto operator<=>(const RowId&) const = default;
};
using Pointer = RowId;

struct FileHeader {
  Version version = Version::Jet4;
  std::size_t page_size = 4096;
  std::uint16_t code_page = 1252;  // of all text of a Jet 3 file
  std::uint16_t order = 3082;      // LCID: 1033 General, 3082 Modern Spanish, 1034 Traditional, …
  std::uint8_t order_version = 0;
  std::uint32_t key = 0;            // of the page encryption of Jet 3 and 4; 0: plain
  bool foreign_encryption = false;  // encrypted by a provider we do not have (.accdb)
  std::string password;             // UTF-8; empty: none
  double created = 0;               // day serial
  std::uint32_t stamp = 0;          // differs from file to file; its meaning is not known
  PageNumber objects = 2, permissions = 3, queries = 4,
             relationships = 5;  // definitions of the system tables
  bool Jet3() const { return version == Version::Jet3; }
};

// From the stored bytes of page 0 (2048 bytes or more). Throws base::Error for a file of another kind, with
// its reason.
FileHeader ReadHeader(View first);
// The stored bytes of page 0 of a new Jet 4 file.
Bytes MakeHeader(const FileHeader& header);

// Encrypts or decrypts (the same) a page's bytes in place; page 0 and files without a key are left alone.
void EncryptPage(const FileHeader& header, PageNumber number, std::span<std::uint8_t> bytes);

}  // namespace mdb
