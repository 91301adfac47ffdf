// Runs one file of cases:
//
//   # comment
//   verb option key=value …
//   input lines
//   ----
//   expected lines
//   <blank line>
//
// Blocks are parted by a blank line; input or expected text holding a blank line writes it as "\". A "#"
// starts a comment only between blocks. A verb turns a block into a text that is compared with what is
// expected.
#pragma once

#include <functional>
#include <map>
#include <string>
#include <vector>

namespace support {

struct Block {
  std::string verb;
  std::vector<std::string> options;  // the words after the verb, in order
  std::string entry;                 // lines joined with LF, without a last LF
  int line = 0;                      // of the verb, from 1

  bool Has(const std::string& word) const;
  // The value of an option "key=value", or `if_missing`.
  std::string Option(const std::string& key, const std::string& if_missing = {}) const;
};

using Verb = std::function<std::string(const Block&)>;
using Verbs = std::map<std::string, Verb>;

// main() of a data test program: `prepare` makes the verbs anew for each file, so that a file starts fresh.
// Exit 1 when a block failed, 2 when no block ran. UPDATE_EXPECTED=1 rewrites the expected blocks instead.
int RunFiles(int argc, char** argv, const std::function<Verbs()>& prepare);

}  // namespace support
