// A reader of JSON texts for the tables that tests run over.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace conformance {

struct JsonMember;

struct Json {
  enum class Kind { Null, Boolean, Number, Text, List, Object };

  Kind kind = Kind::Null;
  bool boolean = false;
  double number = 0;
  bool integer = false;  // a number written without point and exponent
  std::string text;      // UTF-8; of a number: as it was written
  std::vector<Json> list;
  std::vector<JsonMember> members;  // in their order

  bool IsNull() const { return kind == Kind::Null; }
  bool IsText() const { return kind == Kind::Text; }
  bool IsNumber() const { return kind == Kind::Number; }
  bool IsList() const { return kind == Kind::List; }
  bool IsObject() const { return kind == Kind::Object; }
  // The member of that name, or null when there is none.
  const Json* Member(std::string_view name) const;

  // The value as one text again, without blanks, for messages.
  std::string Written() const;
};

struct JsonMember {
  std::string name;
  Json value;
};

// The whole text is one value. Throws std::runtime_error with the byte where it goes wrong.
Json ReadJson(std::string_view text);

}  // namespace conformance
