#include "conformance/json.h"

#include <cstdlib>
#include <stdexcept>

#include "base/text.h"

namespace conformance {
namespace {

class Reader {
 public:
  explicit Reader(std::string_view text) : text_(text) {}

  Json Whole() {
    Json value = Value();
    SkipBlanks();
    if (i_ != text_.size()) Fail("text after the value");
    return value;
  }

 private:
  [[noreturn]] void Fail(const std::string& what) const {
    throw std::runtime_error("json: " + what + " at byte " + std::to_string(i_));
  }

  char Peek() const { return i_ < text_.size() ? text_[i_] : '\0'; }

  void SkipBlanks() {
    while (Peek() == ' ' || Peek() == '\t' || Peek() == '\n' || Peek() == '\r') ++i_;
  }

  bool Consume(std::string_view what) {
    if (text_.substr(i_, what.size()) != what) return false;
    i_ += what.size();
    return true;
  }

  void Require(std::string_view what) {
    SkipBlanks();
    if (!Consume(what)) Fail("expected " + std::string(what));
  }

  Json Value() {
    SkipBlanks();
    Json v;
    if (Peek() == '"') {
      v.kind = Json::Kind::Text;
      v.text = Text();
    } else if (Peek() == '[') {
      List(v);
    } else if (Peek() == '{') {
      Object(v);
    } else if (Consume("true")) {
      v.kind = Json::Kind::Boolean;
      v.boolean = true;
    } else if (Consume("false")) {
      v.kind = Json::Kind::Boolean;
    } else if (!Consume("null")) {
      Number(v);
    }
    return v;
  }

  void Number(Json& v) {
    const std::size_t start = i_;
    while (i_ < text_.size() && std::string_view("+-.eE0123456789").find(text_[i_]) != std::string_view::npos)
      ++i_;
    v.kind = Json::Kind::Number;
    v.text = std::string(text_.substr(start, i_ - start));
    v.integer = v.text.find_first_of(".eE") == std::string::npos;
    char* end = nullptr;
    v.number = std::strtod(v.text.c_str(), &end);
    if (v.text.empty() || *end != '\0') Fail("no value");
  }

  void List(Json& v) {
    v.kind = Json::Kind::List;
    Require("[");
    SkipBlanks();
    if (Consume("]")) return;
    do {
      v.list.push_back(Value());
      SkipBlanks();
    } while (Consume(","));
    Require("]");
  }

  void Object(Json& v) {
    v.kind = Json::Kind::Object;
    Require("{");
    SkipBlanks();
    if (Consume("}")) return;
    do {
      SkipBlanks();
      std::string name = Text();
      Require(":");
      v.members.push_back({std::move(name), Value()});
      SkipBlanks();
    } while (Consume(","));
    Require("}");
  }

  unsigned Hexadecimal() {
    if (i_ + 4 > text_.size()) Fail("short \\u");
    const unsigned point =
        static_cast<unsigned>(std::strtoul(std::string(text_.substr(i_, 4)).c_str(), nullptr, 16));
    i_ += 4;
    return point;
  }

  char32_t CodePoint() {
    const unsigned high = Hexadecimal();
    if (high < 0xD800 || high > 0xDBFF || !Consume("\\u")) return high;
    return 0x10000 + ((high - 0xD800) << 10) + (Hexadecimal() - 0xDC00);
  }

  std::string Text() {
    if (!Consume("\"")) Fail("expected a text");
    std::string output;
    while (Peek() != '"') {
      if (i_ >= text_.size()) Fail("text without end");
      const char c = text_[i_++];
      output += c == '\\' ? Escape() : std::string(1, c);
    }
    ++i_;
    return output;
  }

  std::string Escape() {
    const char c = Peek();
    ++i_;
    switch (c) {
      case 'n':
        return "\n";
      case 't':
        return "\t";
      case 'r':
        return "\r";
      case 'b':
        return "\b";
      case 'f':
        return "\f";
      case 'u': {
        const char32_t point = CodePoint();
        return base::FromPoints({&point, 1});
      }
      case '"':
      case '\\':
      case '/':
        return std::string(1, c);
      default:
        Fail("unknown escape");
    }
  }

  std::string_view text_;
  std::size_t i_ = 0;
};

std::string Quote(const std::string& text) {
  std::string output = "\"";
  for (const char c : text) {
    if (c == '"' || c == '\\') output += '\\';
    output += c;
  }
  return output += '"';
}

}  // namespace

const Json* Json::Member(std::string_view name) const {
  for (const auto& m : members)
    if (m.name == name) return &m.value;
  return nullptr;
}

std::string Json::Written() const {
  switch (kind) {
    case Kind::Null:
      return "null";
    case Kind::Boolean:
      return boolean ? "true" : "false";
    case Kind::Number:
      return text;
    case Kind::Text:
      return Quote(text);
    case Kind::List:
    case Kind::Object:
      break;
  }
  std::string output(1, kind == Kind::List ? '[' : '{');
  const auto separate = [&] {
    if (output.size() > 1) output += ',';
  };
  for (const auto& v : list) {
    separate();
    output += v.Written();
  }
  for (const auto& m : members) {
    separate();
    output.append(Quote(m.name)).append(":").append(m.value.Written());
  }
  return output += kind == Kind::List ? ']' : '}';
}

Json ReadJson(std::string_view text) { return Reader(text).Whole(); }

}  // namespace conformance
