#include "bench/duckdb.h"

#include <dlfcn.h>

#include <array>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <stdexcept>
#include <utility>

namespace bench {
namespace {

// Its interface, as it documents it. What gives a state gives 0 for success.
struct Result {
  std::array<std::uint64_t, 3> counts;
  void* columns;
  char* errorMessage;
  void* internal;
};

struct Api {
  int (*open)(const char*, void**);
  void (*close)(void**);
  int (*connect)(void*, void**);
  void (*disconnect)(void**);
  int (*query)(void*, const char*, Result*);
  const char* (*result_error)(Result*);
  void (*destroy_result)(Result*);
  int (*prepare)(void*, const char*, void**);
  const char* (*prepare_error)(void*);
  void (*destroy_prepare)(void**);
  int (*bind_int32)(void*, std::uint64_t, std::int32_t);
  int (*bind_varchar)(void*, std::uint64_t, const char*);
  int (*execute_prepared)(void*, Result*);
  void* (*fetch_chunk)(Result);
  void (*destroy_data_chunk)(void**);
  std::uint64_t (*data_chunk_get_size)(void*);
  void* (*data_chunk_get_vector)(void*, std::uint64_t);
  void* (*vector_get_data)(void*);
  int (*appender_create)(void*, const char*, const char*, void**);
  int (*append_int32)(void*, std::int32_t);
  int (*append_double)(void*, double);
  int (*append_varchar)(void*, const char*);
  int (*appender_end_row)(void*);
  int (*appender_destroy)(void**);
};

void* openLibrary() {
  const char* named = std::getenv("ZTB_DUCKDB");
  if (named == nullptr) {
    return nullptr;
  }
  std::filesystem::path path = named;
  if (std::filesystem::is_directory(path)) {
    path /= "libduckdb.so";
  }
  return dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL);
}

void* library() {
  static void* const opened = openLibrary();
  return opened;
}

Api openApi() {
  Api api{};
  const auto find = [](const char* name, auto& function) {
    void* found = dlsym(library(), name);
    if (found == nullptr) {
      throw std::runtime_error(std::string("DuckDB's library has no function ") + name);
    }
    function = reinterpret_cast<std::remove_reference_t<decltype(function)>>(found);
  };
  find("duckdb_open", api.open);
  find("duckdb_close", api.close);
  find("duckdb_connect", api.connect);
  find("duckdb_disconnect", api.disconnect);
  find("duckdb_query", api.query);
  find("duckdb_result_error", api.result_error);
  find("duckdb_destroy_result", api.destroy_result);
  find("duckdb_prepare", api.prepare);
  find("duckdb_prepare_error", api.prepare_error);
  find("duckdb_destroy_prepare", api.destroy_prepare);
  find("duckdb_bind_int32", api.bind_int32);
  find("duckdb_bind_varchar", api.bind_varchar);
  find("duckdb_execute_prepared", api.execute_prepared);
  find("duckdb_fetch_chunk", api.fetch_chunk);
  find("duckdb_destroy_data_chunk", api.destroy_data_chunk);
  find("duckdb_data_chunk_get_size", api.data_chunk_get_size);
  find("duckdb_data_chunk_get_vector", api.data_chunk_get_vector);
  find("duckdb_vector_get_data", api.vector_get_data);
  find("duckdb_appender_create", api.appender_create);
  find("duckdb_append_int32", api.append_int32);
  find("duckdb_append_double", api.append_double);
  find("duckdb_append_varchar", api.append_varchar);
  find("duckdb_appender_end_row", api.appender_end_row);
  find("duckdb_appender_destroy", api.appender_destroy);
  return api;
}

const Api& duck() {
  static const Api api = openApi();
  return api;
}

void require(int state, const std::string& what) {
  if (state != 0) {
    throw std::runtime_error("DuckDB: " + what);
  }
}

void requireResult(int state, Result& result) {
  if (state != 0) {
    const char* text = duck().result_error(&result);
    throw std::runtime_error(std::string("DuckDB: ") + (text == nullptr ? "no text" : text));
  }
}

// Rows into a table; they are there when it has ended.
class Appender {
 public:
  Appender(void* connection, const std::string& table) {
    require(duck().appender_create(connection, nullptr, table.c_str(), &appender_), table);
  }
  Appender(const Appender&) = delete;
  Appender& operator=(const Appender&) = delete;
  ~Appender() { duck().appender_destroy(&appender_); }

  void add(int number) { duck().append_int32(appender_, number); }
  void add(double value) { duck().append_double(appender_, value); }
  void add(const std::string& text) { duck().append_varchar(appender_, text.c_str()); }
  void endRow() { require(duck().appender_end_row(appender_), "a row cannot be added"); }

 private:
  void* appender_ = nullptr;
};

}  // namespace

bool Duckdb::isThere() {
  return library() != nullptr;
}

Duckdb::Duckdb() {
  require(duck().open(nullptr, &database_), "cannot open");
  require(duck().connect(database_, &connection_), "cannot connect");
  execute("SET threads = 1");
}

Duckdb::~Duckdb() {
  duck().disconnect(&connection_);
  duck().close(&database_);
}

void Duckdb::execute(const std::string& sql) {
  Result result{};
  requireResult(duck().query(connection_, sql.c_str(), &result), result);
  duck().destroy_result(&result);
}

void Duckdb::createNumberTable(const std::string& name) {
  execute("CREATE TABLE " + name + "(plant INTEGER, customer INTEGER, week INTEGER, value DOUBLE)");
}

void Duckdb::createLabelTable(const std::string& name) {
  execute("CREATE TABLE " + name +
          "(plant VARCHAR, customer VARCHAR, week VARCHAR, value DOUBLE,"
          " PRIMARY KEY(plant, customer, week))");
}

void Duckdb::addByNumbers(const std::string& table, const Data& data, std::size_t first,
                          std::size_t last) {
  Appender rows(connection_, table);
  for (std::size_t i = first; i < last; ++i) {
    for (const int number : data.keys[i]) {
      rows.add(number);
    }
    rows.add(data.values[i]);
    rows.endRow();
  }
}

void Duckdb::addByLabels(const std::string& table, const Data& data) {
  Appender rows(connection_, table);
  for (const LabelledRecord& record : data.shuffled) {
    for (const std::string* label : record.labels) {
      rows.add(*label);
    }
    rows.add(record.value);
    rows.endRow();
  }
}

void Duckdb::addLabels(const Data& data) {
  execute("CREATE TABLE labels(label VARCHAR)");
  Appender rows(connection_, "labels");
  for (const std::string& label : data.labels) {
    rows.add(label);
    rows.endRow();
  }
}

DuckdbQuery::DuckdbQuery(const Duckdb& database, const std::string& sql) {
  if (duck().prepare(database.connection_, sql.c_str(), &statement_) != 0) {
    throw std::runtime_error(std::string("DuckDB: ") + duck().prepare_error(statement_));
  }
}

DuckdbQuery::~DuckdbQuery() {
  duck().destroy_prepare(&statement_);
}

void DuckdbQuery::bind(int parameter, int value) {
  require(duck().bind_int32(statement_, static_cast<std::uint64_t>(parameter), value), "bind");
}

void DuckdbQuery::bind(int parameter, const std::string& value) {
  require(duck().bind_varchar(statement_, static_cast<std::uint64_t>(parameter), value.c_str()),
          "bind");
}

double DuckdbQuery::sum() {
  Result result{};
  requireResult(duck().execute_prepared(statement_, &result), result);
  double total = 0;
  while (void* chunk = duck().fetch_chunk(result)) {
    const std::uint64_t rows = duck().data_chunk_get_size(chunk);
    const auto* values =
        static_cast<const double*>(duck().vector_get_data(duck().data_chunk_get_vector(chunk, 0)));
    for (std::uint64_t row = 0; row < rows; ++row) {
      total += values[row];
    }
    duck().destroy_data_chunk(&chunk);
  }
  duck().destroy_result(&result);
  return total;
}

Contest withDuckdb(Contest contest, Measured run) {
  if (Duckdb::isThere()) {
    contest.contestants.push_back({duckdbName, std::move(run)});
  }
  return contest;
}

Duckdb& duckdbByNumbers(const Data& data) {
  static Shared<Duckdb> shared;
  return shared.get(data, [](const Data& wanted) {
    auto database = std::make_unique<Duckdb>();
    database->createNumberTable("supply");
    database->addByNumbers("supply", wanted, 0, wanted.size());
    return database;
  });
}

Duckdb& duckdbByLabels(const Data& data) {
  static Shared<Duckdb> shared;
  return shared.get(data, [](const Data& wanted) {
    auto database = std::make_unique<Duckdb>();
    database->createLabelTable("supply");
    database->addByLabels("supply", wanted);
    return database;
  });
}

}  // namespace bench
