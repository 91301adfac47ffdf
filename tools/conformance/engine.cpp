#include "conformance/engine.h"

#include <filesystem>
#include <random>
#include <stdexcept>

#include "engine_sqlite/sqlite_connection.h"
#ifdef IDM_ENGINE_MDB
#include "engine_mdb/mdb_connection.h"
#endif
#ifdef IDM_ENGINE_ODBC
#include "engine_odbc/odbc_connection.h"
#endif

namespace conformance {
namespace {

class SqliteEngine final : public Engine {
 public:
  std::unique_ptr<db::Connection> NewDatabase(const Settings& settings) override {
    engine_sqlite::Options options;
    options.clock = settings.clock;
    options.locale = settings.locale;
    options.dao_wildcards = settings.dao_wildcards;
    options.order = settings.order;
    return engine_sqlite::Open(":memory:", options);
  }
};

#ifdef IDM_ENGINE_MDB

// A folder for the files of one run, gone with it.
class Folder {
 public:
  Folder() {
    std::random_device random;
    path_ = std::filesystem::temp_directory_path() / ("idm_conformance_" + std::to_string(random()));
    std::filesystem::create_directory(path_);
  }
  ~Folder() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
  }
  Folder(const Folder&) = delete;
  Folder& operator=(const Folder&) = delete;
  std::string NewPath() {  // in UTF-8
    const auto path = (path_ / ("base" + std::to_string(++count_) + ".mdb")).u8string();
    return {path.begin(), path.end()};
  }

 private:
  std::filesystem::path path_;
  int count_ = 0;
};

std::unique_ptr<db::Connection> CreateMdb(const std::string& path, const Settings& settings) {
  engine_mdb::Options options;
  options.clock = settings.clock;
  options.locale = settings.locale;
  options.dao_wildcards = settings.dao_wildcards;
  return engine_mdb::Create(path, options, base::LanguageOf(settings.order));
}

class MdbEngine final : public Engine {
 public:
  std::unique_ptr<db::Connection> NewDatabase(const Settings& settings) override {
    return CreateMdb(folder_.NewPath(), settings);
  }

 private:
  Folder folder_;
};

#ifdef IDM_ENGINE_ODBC
// Files of our own making, opened by the Access driver, whose locale and clock are the machine's.
class OdbcEngine final : public Engine {
 public:
  OdbcEngine() {
    if (!engine_odbc::HasAccessDriver())
      throw std::runtime_error(
          "the engine 'odbc' needs a driver for Access files, and none is installed here");
  }
  std::unique_ptr<db::Connection> NewDatabase(const Settings& settings) override {
    const std::string path = folder_.NewPath();
    CreateMdb(path, settings)->Close();
    return engine_odbc::Open(engine_odbc::ConnectionStringForFile(path));
  }

 private:
  Folder folder_;
};
#endif
#endif

}  // namespace

std::unique_ptr<Engine> EngineByName(std::string_view name) {
  if (name == "sqlite") return std::make_unique<SqliteEngine>();
#ifdef IDM_ENGINE_MDB
  if (name == "mdb") return std::make_unique<MdbEngine>();
#endif
#ifdef IDM_ENGINE_ODBC
  if (name == "odbc") return std::make_unique<OdbcEngine>();
#endif
  if (name == "mdb" || name == "odbc")
    throw std::runtime_error("the engine '" + std::string(name) + "' is not built into this program");
  throw std::invalid_argument("no engine is called '" + std::string(name) + "'");
}

}  // namespace conformance
