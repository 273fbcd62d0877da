// ztb/arrow.h with DuckDB's C interface as the other side: it reads our streams, and gives Arrow
// data that symbols are made from. scripts/duckdb gets its library.

#include <dlfcn.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <ztb/arrow.h>

#include <array>
#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <limits>
#include <memory>
#include <string>
#include <ztb/ztb.hpp>

#include "tests/formats/arrow_batches.h"

namespace {

using formatstest::Batches;
using testing::ElementsAre;

// The functions of DuckDB's C interface that are used here, as it documents them.
struct Functions {
  int (*open)(const char* path, void** database);
  void (*close)(void** database);
  int (*connect)(void* database, void** connection);
  void (*disconnect)(void** connection);
  int (*arrow_scan)(void* connection, const char* name, ArrowArrayStream* stream);
  int (*query_arrow)(void* connection, const char* query, void** result);
  int (*query_arrow_schema)(void* result, ArrowSchema** schema);
  int (*query_arrow_array)(void* result, ArrowArray** array);
  const char* (*query_arrow_error)(void* result);
  void (*destroy_arrow)(void** result);
};

const Functions& functions() {
  static const Functions found = [] {
    const char* named = std::getenv("ZTB_DUCKDB");
    std::filesystem::path path = named == nullptr || *named == '\0' ? ZTB_DUCKDB_FOLDER : named;
    if (std::filesystem::is_directory(path)) path /= ZTB_DUCKDB_FILE;
    void* library = dlopen(path.string().c_str(), RTLD_NOW | RTLD_LOCAL);
    Functions result{};
    if (library == nullptr) return result;
    const auto bind = [&](const char* name, auto& function) {
      function = reinterpret_cast<std::remove_reference_t<decltype(function)>>(
          dlsym(library, (std::string("duckdb_") + name).c_str()));
      EXPECT_NE(function, nullptr) << name;
    };
    bind("open", result.open);
    bind("close", result.close);
    bind("connect", result.connect);
    bind("disconnect", result.disconnect);
    bind("arrow_scan", result.arrow_scan);
    bind("query_arrow", result.query_arrow);
    bind("query_arrow_schema", result.query_arrow_schema);
    bind("query_arrow_array", result.query_arrow_array);
    bind("query_arrow_error", result.query_arrow_error);
    bind("destroy_arrow", result.destroy_arrow);
    return result;
  }();
  return found;
}

// The result of a query as a stream, batch by batch as DuckDB gives it.
class Result {
 public:
  Result(void* connection, const std::string& query) {
    EXPECT_EQ(functions().query_arrow(connection, query.c_str(), &result_), 0)
        << functions().query_arrow_error(result_);
    stream_.get_schema = [](ArrowArrayStream* self, ArrowSchema* out) {
      return functions().query_arrow_schema(of(self).result_, &out);
    };
    stream_.get_next = [](ArrowArrayStream* self, ArrowArray* out) {
      *out = ArrowArray{};
      return functions().query_arrow_array(of(self).result_, &out);
    };
    stream_.get_last_error = [](ArrowArrayStream* self) {
      return functions().query_arrow_error(of(self).result_);
    };
    stream_.release = [](ArrowArrayStream* self) { self->release = nullptr; };
    stream_.private_data = this;
  }
  Result(const Result&) = delete;
  Result& operator=(const Result&) = delete;
  ~Result() { functions().destroy_arrow(&result_); }

  ArrowArrayStream* stream() { return &stream_; }

 private:
  static Result& of(ArrowArrayStream* self) { return *static_cast<Result*>(self->private_data); }

  void* result_ = nullptr;
  ArrowArrayStream stream_{};
};

// A stream as DuckDB takes it: it asks for the schema many times and never frees one.
class Lent {
 public:
  explicit Lent(ArrowArrayStream& source) : source_(source) {
    EXPECT_EQ(source_.get_schema(&source_, &schema_), 0);
    stream_.get_schema = [](ArrowArrayStream* self, ArrowSchema* out) {
      *out = of(self).schema_;
      out->release = [](ArrowSchema* schema) { schema->release = nullptr; };
      return 0;
    };
    stream_.get_next = [](ArrowArrayStream* self, ArrowArray* out) {
      return of(self).source_.get_next(&of(self).source_, out);
    };
    stream_.get_last_error = [](ArrowArrayStream* self) {
      return of(self).source_.get_last_error(&of(self).source_);
    };
    stream_.release = [](ArrowArrayStream* self) { self->release = nullptr; };
    stream_.private_data = this;
  }
  Lent(const Lent&) = delete;
  Lent& operator=(const Lent&) = delete;
  ~Lent() {
    schema_.release(&schema_);
    source_.release(&source_);
  }

  ArrowArrayStream* stream() { return &stream_; }

 private:
  static Lent& of(ArrowArrayStream* self) { return *static_cast<Lent*>(self->private_data); }

  ArrowArrayStream& source_;
  ArrowSchema schema_{};
  ArrowArrayStream stream_{};
};

class ArrowDuckdbTest : public testing::Test {
 protected:
  void SetUp() override {
    ASSERT_NE(functions().open, nullptr) << "scripts/duckdb gets the library";
    ASSERT_EQ(functions().open(nullptr, &duckdb_), 0);
    ASSERT_EQ(functions().connect(duckdb_, &connection_), 0);
  }
  void TearDown() override {
    if (connection_ != nullptr) functions().disconnect(&connection_);
    if (duckdb_ != nullptr) functions().close(&duckdb_);
  }

  void run(const std::string& statement) const { const Result result(connection_, statement); }

  // The rows of a query over a symbol, which DuckDB reads as table `t`.
  std::unique_ptr<Batches> queried(const ztb::Symbol& symbol, const std::string& query) const {
    ArrowArrayStream stream{};
    ztbArrowOptions options{};
    options.batchRecords = 2;
    std::array<char, 256> message{};
    EXPECT_EQ(ztbArrowExport(symbol.database(), symbol.handle(), &options, &stream, message.data(),
                             static_cast<int>(message.size())),
              1)
        << message.data();
    Lent lent(stream);
    // DuckDB asks a stream for the columns and rows of a query, and takes it that it gets no
    // others: streams in C know of no such question, so that all is read first.
    EXPECT_EQ(functions().arrow_scan(connection_, "s", lent.stream()), 0);
    run("create table t as from s");
    run("drop view s");
    std::unique_ptr<Batches> batches;
    {
      Result result(connection_, query);
      batches = std::make_unique<Batches>(*result.stream());
    }
    run("drop table t");
    return batches;
  }

  // A symbol made from the rows of a query.
  ztb::Symbol made(const std::string& query, const char* name, int nulls = 0) {
    Result result(connection_, query);
    const ztbArrowImportOptions options{.keys = nullptr, .keyCount = 0, .nulls = nulls};
    std::array<char, 256> message{};
    void* symbol = nullptr;
    EXPECT_EQ(ztbArrowMake(database_.handle(), name, -1, result.stream(), &options, &symbol,
                           message.data(), static_cast<int>(message.size())),
              1)
        << message.data();
    return {database_.handle(), symbol};
  }

  void* duckdb_ = nullptr;
  void* connection_ = nullptr;
  ztb::Database database_;
};

TEST_F(ArrowDuckdbTest, ReadsASymbolInBatchesWithDictionaries) {
  ztb::Symbol price = database_.addParameter("price", {"food", "*"});
  price.add("Milk", "a").setLevel(1.5);
  price.add("K\xC3\xA4se", "b").setLevel(std::numeric_limits<double>::infinity());
  price.add("Milk", "b").setLevel(-2);
  price.add("Tofu", "a").setLevel(0.1 + 0.2);
  price.add("Tofu", "c").setLevel(4);
  const auto all =
      queried(price, "select food::varchar, dim_2::varchar, value from t order by all");
  EXPECT_THAT(all->labels(0), ElementsAre("K\xC3\xA4se", "Milk", "Milk", "Tofu", "Tofu"));
  EXPECT_THAT(all->labels(1), ElementsAre("b", "a", "b", "a", "c"));
  EXPECT_THAT(all->numbers(2),
              ElementsAre(std::numeric_limits<double>::infinity(), 1.5, -2, 0.1 + 0.2, 4));
  const auto sums = queried(price,
                            "select food::varchar, sum(value) from t where dim_2 <> 'b' "
                            "group by food order by food");
  EXPECT_THAT(sums->labels(0), ElementsAre("Milk", "Tofu"));
  EXPECT_THAT(sums->numbers(1), ElementsAre(1.5, 0.1 + 0.2 + 4));
}

// Values that lie in the store, in many batches, while the database changes behind them.
TEST_F(ArrowDuckdbTest, ReadsValuesWhereTheyLie) {
  database_.selectStore(ztb::Store::vector);
  ztb::Symbol p = database_.addParameter("p", {"*", "*"});
  std::array<int, 2> keys{};
  for (int i = 0; i < 100; ++i) database_.mergeLabel("l" + std::to_string(i));
  for (keys[0] = 1; keys[0] <= 100; ++keys[0]) {
    for (keys[1] = 1; keys[1] <= 100; ++keys[1]) p.put(keys, keys[0] + keys[1] / 128.0);
  }
  ArrowArrayStream stream{};
  ztbArrowOptions options{};
  options.batchRecords = 1000;
  ASSERT_EQ(ztbArrowExport(database_.handle(), p.handle(), &options, &stream, nullptr, 0), 1);
  Batches held(stream);
  const double* values = nullptr;
  ASSERT_EQ(ztbValuesInPlace(database_.handle(), p.handle(), &values), 1);
  EXPECT_EQ(held.addresses(2)[9], values + 9000);
  for (ztb::Record& record : p.records()) record.setLevel(-1);
  p.clear();
  ArrowArrayStream handed = held.handedOn();
  Lent lent(handed);
  ASSERT_EQ(functions().arrow_scan(connection_, "s", lent.stream()), 0);
  run("create table t as from s");
  Result result(connection_,
                "select count(*)::double, sum(value), "
                "count(*) filter (value = (dim_1::varchar)[2:]::double + 1 + "
                "((dim_2::varchar)[2:]::double + 1) / 128)"
                "::double from t");
  const Batches read(*result.stream());
  EXPECT_THAT(read.numbers(0), ElementsAre(10000));
  // 100 times the sum of 1 to 100, and 1/128 of the same.
  EXPECT_THAT(read.numbers(1), ElementsAre(505000 + 505000 / 128.0));
  EXPECT_THAT(read.numbers(2), ElementsAre(10000));
}

TEST_F(ArrowDuckdbTest, ReadsFieldsAndTexts) {
  ztb::Symbol food = database_.addSet("food", {"*"});
  food.add("Milk").setText("1 qt.");
  food.add("Tofu");
  const auto texts = queried(food, "select * from t order by all");
  EXPECT_THAT(texts->labels(1), ElementsAre("1 qt.", ""));
  ztb::Symbol buy = database_.addVariable("buy", 3, {food});
  buy.add("Milk").setLevel(3);
  const auto fields = queried(buy, "select level, lower, upper, scale from t");
  EXPECT_THAT(fields->numbers(0), ElementsAre(3));
  EXPECT_THAT(fields->numbers(1), ElementsAre(0));
  EXPECT_THAT(fields->numbers(2), ElementsAre(std::numeric_limits<double>::infinity()));
}

TEST_F(ArrowDuckdbTest, MakesSymbolsOfQueries) {
  const ztb::Symbol price = made(
      "select 'l' || (i % 3) as food, i::integer as year, i / 4 as value from range(5000) r(i)",
      "price");
  EXPECT_EQ(price.recordCount(), 5000);
  EXPECT_EQ(price.find("l2", "4997")->level(), 1249.25);
  EXPECT_EQ(price.domains().front().name.str(), "food");
  // Texts of a few words are dictionaries here.
  run("create table kinds as select (case when i < 2 then 'x' else 'y' end)::enum('y', 'x') as k, "
      "date '2024-02-28' + i::integer as day, true as value from range(4) r(i)");
  const ztb::Symbol kinds = made("from kinds", "kinds");
  EXPECT_EQ(kinds.recordCount(), 4);
  EXPECT_EQ(kinds.find("y", "2024-03-01")->level(), 1);
  EXPECT_EQ(kinds.find("x", "2024-02-29")->level(), 1);
  const ztb::Symbol some = made(
      "select i::varchar as n, case when i = 1 then null else i end::double as value "
      "from range(3) r(i)",
      "some", ZTB_ARROW_NULLS_SKIPPED);
  EXPECT_EQ(some.recordCount(), 2);
  EXPECT_FALSE(some.find("1").has_value());
}

// Literals with a point are decimals here, sums of whole numbers too, and times are of their own.
TEST_F(ArrowDuckdbTest, MakesSymbolsOfDecimalsAndTimes) {
  const ztb::Symbol sums = made(
      "select i % 2 as odd, sum(i::integer) as value from range(101) r(i) group by 1 order by 1",
      "sums");
  EXPECT_EQ(sums.find("0")->level(), 2550);
  EXPECT_EQ(sums.find("1")->level(), 2500);
  const ztb::Symbol costs = made(
      "select time '12:34:56.5' as at, -1234.56 as value union all "
      "select time '00:00:00', 99999999999999999999.125",
      "costs");
  EXPECT_EQ(costs.find("12:34:56.500000")->level(), -1234.56);
  EXPECT_EQ(costs.find("00:00:00")->level(), 1e20);
}

TEST_F(ArrowDuckdbTest, GoesOutAndComesBackTheSame) {
  ztb::Symbol before = database_.addParameter("before", {"*", "*"});
  for (int record = 0; record < 3000; ++record) {
    before.add("i" + std::to_string(record % 70), "j" + std::to_string(record))
        .setLevel(record / 7.0);
  }
  ArrowArrayStream stream{};
  ASSERT_EQ(ztbArrowExport(database_.handle(), before.handle(), nullptr, &stream, nullptr, 0), 1);
  Lent lent(stream);
  ASSERT_EQ(functions().arrow_scan(connection_, "t", lent.stream()), 0);
  run("create table copy as from t");
  const ztb::Symbol after = made("from copy", "after");
  EXPECT_EQ(after.recordCount(), 3000);
  for (int record = 0; record < 3000; ++record) {
    const auto found = after.find("i" + std::to_string(record % 70), "j" + std::to_string(record));
    ASSERT_TRUE(found.has_value()) << record;
    EXPECT_EQ(found->level(), record / 7.0);
  }
}

}  // namespace
