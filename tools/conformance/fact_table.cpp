#include "conformance/fact_table.h"

#include <algorithm>
#include <cstdio>
#include <fstream>
#include <iterator>
#include <stdexcept>

#include "base/text.h"

namespace conformance {
namespace {

std::vector<std::string> Lines(const std::filesystem::path& path) {
  std::ifstream f(path, std::ios::binary);
  if (!f) throw std::runtime_error(path.string() + ": cannot be read");
  std::string all(std::istreambuf_iterator<char>(f), {});
  if (base::StartsWith(all, "\xEF\xBB\xBF")) all.erase(0, 3);
  std::vector<std::string> lines = base::Split(all, "\n");
  for (std::string& l : lines)
    if (!l.empty() && l.back() == '\r') l.pop_back();
  return lines;
}

std::size_t Column(const std::vector<std::string>& header, std::string_view name) {
  const auto it = std::find(header.begin(), header.end(), name);
  if (it == header.end()) throw std::runtime_error("no column '" + std::string(name) + "'");
  return static_cast<std::size_t>(it - header.begin());
}

Json SingleArgument(Json j) {
  Json list;
  list.kind = Json::Kind::List;
  list.list.push_back(std::move(j));
  return list;
}

void ReadRows(const std::vector<std::string>& lines, std::vector<Row>& rows) {
  const auto header = base::Split(lines.at(0), "\t");
  const std::size_t id = Column(header, "id"), function = Column(header, "function"),
                    args = Column(header, "args"), locale = Column(header, "locale"),
                    expected = Column(header, "expected");
  for (std::size_t i = 1; i < lines.size(); ++i) {
    if (lines[i].empty()) continue;
    try {
      const auto c = base::Split(lines[i], "\t");
      Json a = ReadJson(c.at(args));
      if (!a.IsList()) a = SingleArgument(std::move(a));
      rows.push_back({c.at(id), c.at(function), std::move(a.list), c.at(locale), ReadJson(c.at(expected))});
    } catch (const std::exception& e) {
      throw std::runtime_error("line " + std::to_string(i + 1) + ": " + e.what());
    }
  }
}

const Json& Required(const Json& j, std::string_view name) {
  const Json* m = j.Member(name);
  if (m == nullptr) throw std::runtime_error("no member '" + std::string(name) + "'");
  return *m;
}

Statement ReadStatement(const Json& j) {
  Statement s;
  s.id = Required(j, "id").text;
  s.sql = Required(j, "query").text;
  if (const Json* before = j.Member("setup"))
    for (const Json& sql : before->list) s.before.push_back(sql.text);
  if (const Json* l = j.Member("locale"); l != nullptr && l->IsText()) s.locale = l->text;
  if (const Json* m = j.Member("mode")) s.dao_wildcards = m->text == "ansi89";
  if (const Json* m = j.Member("any_case")) s.ignore_case = m->boolean;
  if (const Json* m = j.Member("ordered")) s.sorted = m->boolean;
  if (const Json* m = j.Member("columns"))
    for (const Json& c : m->list) s.columns.push_back(c.text);
  if (const Json* m = j.Member("expected_rows"))
    s.rows = *m;
  else
    s.effect = Required(j, "expected_effect");
  return s;
}

}  // namespace

bool IsTable(const std::filesystem::path& path) {
  return path.extension() == ".tsv" || path.extension() == ".jsonl";
}

Table ReadTable(const std::filesystem::path& path) {
  Table t;
  t.name = path.stem().string();
  const auto lines = Lines(path);
  try {
    if (path.extension() == ".tsv") {
      ReadRows(lines, t.rows);
    } else {
      for (const auto& line : lines)
        if (!line.empty()) t.statements.push_back(ReadStatement(ReadJson(line)));
    }
  } catch (const std::exception& e) {
    throw std::runtime_error(path.string() + ": " + e.what());
  }
  return t;
}

base::Date Today() { return base::MakeDate(2026, 5, 20); }

double SerialOf(std::string text) {
  text = base::Replace(text, "{YEAR}", std::to_string(base::PartsOf(Today()).year));
  int a = 0, m = 0, d = 0, h = 0, n = 0, s = 0;
  const int read_count = std::sscanf(text.c_str(), "%d-%d-%d %d:%d:%d", &a, &m, &d, &h, &n, &s);
  if (read_count != 3 && read_count != 6) throw std::runtime_error("bad date " + text);
  // A year below 100 is that year here.
  const double day = base::MakeDate(a < 100 ? a + 400 : a, m, d).serial - (a < 100 ? 146097 : 0);
  const double time = base::MakeTime(h, n, s).serial;
  return day < 0 ? day - time : day + time;
}

}  // namespace conformance
