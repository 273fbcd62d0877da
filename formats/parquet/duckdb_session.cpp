#include "formats/parquet/duckdb_session.h"

#include <fmt/format.h>
#include <ztb/rxf.h>

#include <algorithm>
#include <utility>

#include "tools/files/new_file.h"
#include "tools/files/system_files.h"
#include "tools/text/failure.h"

namespace formats {

namespace {

std::string quoted(std::string_view text, char quote) {
  std::string result(1, quote);
  for (const char c : text) result.append(c == quote ? 2 : 1, c);
  return result + quote;
}

// The first line of what DuckDB tells; the others show the query.
std::string firstLine(const char* text) {
  const std::string_view all = text == nullptr ? "no reason is told" : text;
  return std::string(all.substr(0, all.find_first_of("\r\n")));
}

}  // namespace

std::string sqlText(std::string_view text) {
  return quoted(text, '\'');
}

std::string sqlName(std::string_view name) {
  return quoted(name, '"');
}

std::string parquetName(const std::string& path) {
  // Chars that would match many files stand in brackets of their own, and a name is one in this
  // folder, whatever it begins with.
  std::string exact = tool::pathOf(path).has_root_path() ? "" : "./";
  for (const char c : path) {
    const bool isPattern = c == '*' || c == '?' || c == '[';
    exact += isPattern ? fmt::format("[{}]", c) : std::string(1, c);
  }
  return sqlText(exact);
}

std::string parquetSource(const std::string& path) {
  return fmt::format("read_parquet({}, hive_partitioning = false)", parquetName(path));
}

// ---- rows ---------------------------------------------------------------------------------------

DuckdbRows::DuckdbRows(DuckdbChunk chunk, std::size_t columns) : chunk_(chunk) {
  const DuckdbApi& api = duckdbApi();
  count_ = api.data_chunk_get_size(chunk);
  for (std::size_t column = 0; column < columns; ++column) {
    DuckdbVector vector = api.data_chunk_get_vector(chunk, column);
    columns_.push_back(
        {.data = api.vector_get_data(vector), .marks = api.vector_get_validity(vector)});
  }
}

DuckdbRows::DuckdbRows(DuckdbRows&& other) noexcept
    : chunk_(std::exchange(other.chunk_, nullptr)),
      count_(std::exchange(other.count_, 0)),
      columns_(std::move(other.columns_)) {}

DuckdbRows& DuckdbRows::operator=(DuckdbRows&& other) noexcept {
  std::swap(chunk_, other.chunk_);
  std::swap(count_, other.count_);
  std::swap(columns_, other.columns_);
  return *this;
}

DuckdbRows::~DuckdbRows() {
  if (chunk_ != nullptr) duckdbApi().destroy_data_chunk(&chunk_);
}

// ---- queries ------------------------------------------------------------------------------------

DuckdbQuery::DuckdbQuery(DuckdbConnection connection, const std::string& sql,
                         const std::string& shown)
    : shown_(shown) {
  const DuckdbApi& api = duckdbApi();
  if (api.prepare(connection, sql.c_str(), &statement_) != 0) {
    const std::string reason = firstLine(api.prepare_error(statement_));
    api.destroy_prepare(&statement_);
    fail(reason.c_str());
  }
  if (api.execute_prepared_streaming(statement_, &result_) != 0) {
    const std::string reason = firstLine(api.result_error(&result_));
    api.destroy_result(&result_);
    api.destroy_prepare(&statement_);
    fail(reason.c_str());
  }
}

DuckdbQuery::~DuckdbQuery() {
  duckdbApi().destroy_result(&result_);
  duckdbApi().destroy_prepare(&statement_);
}

void DuckdbQuery::fail(const char* reason) const {
  throw tool::Failure(tool::withFile(shown_, reason), ZTB_ERROR_DAMAGED_FILE);
}

DuckdbRows DuckdbQuery::next() {
  const DuckdbApi& api = duckdbApi();
  DuckdbChunk chunk = api.fetch_chunk(result_);
  if (chunk == nullptr) {
    if (const char* error = api.result_error(&result_); error != nullptr && *error != '\0') {
      fail(firstLine(error).c_str());
    }
    return {};
  }
  return {chunk, api.column_count(&result_)};
}

// ---- the session --------------------------------------------------------------------------------

DuckdbSession::DuckdbSession() {
  const DuckdbApi& api = duckdbApi();
  if (api.open(nullptr, &database_) != 0 || api.connect(database_, &connection_) != 0) {
    if (database_ != nullptr) api.close(&database_);
    throw tool::Failure("DuckDB cannot be started");
  }
  // Nothing is fetched, and no file is put where nobody looks for one.
  for (const char* setting : {"set autoinstall_known_extensions = false",
                              "set autoload_known_extensions = false", "set temp_directory = ''"}) {
    run(setting, "DuckDB");
  }
}

DuckdbSession::~DuckdbSession() {
  duckdbApi().disconnect(&connection_);
  duckdbApi().close(&database_);
}

void DuckdbSession::run(const std::string& sql, const std::string& shown) {
  const DuckdbApi& api = duckdbApi();
  DuckdbResult result{};
  const int state = api.query(connection_, sql.c_str(), &result);
  const std::string reason = state == 0 ? "" : firstLine(api.result_error(&result));
  api.destroy_result(&result);
  if (state != 0) throw tool::Failure(tool::withFile(shown, reason));
}

std::unique_ptr<DuckdbQuery> DuckdbSession::query(const std::string& sql,
                                                  const std::string& shown) const {
  return std::make_unique<DuckdbQuery>(connection_, sql, shown);
}

namespace {

// A stream as DuckDB takes it: it asks for the schema again and again and leaves it to whoever made
// the stream to free it. So one is made, lent, and freed in the end. Lives as long as views of it.
class LentStream {
 public:
  explicit LentStream(ArrowArrayStream& stream) : stream_(stream) {
    lent_.get_schema = [](ArrowArrayStream* self, ArrowSchema* out) {
      return of(self).lendSchema(out);
    };
    lent_.get_next = [](ArrowArrayStream* self, ArrowArray* out) {
      ArrowArrayStream& lender = of(self).stream_;
      return lender.get_next(&lender, out);
    };
    lent_.get_last_error = [](ArrowArrayStream* self) {
      ArrowArrayStream& lender = of(self).stream_;
      return lender.get_last_error(&lender);
    };
    lent_.release = [](ArrowArrayStream* self) { self->release = nullptr; };
    lent_.private_data = this;
  }
  LentStream(const LentStream&) = delete;
  LentStream& operator=(const LentStream&) = delete;
  ~LentStream() {
    if (schema_.release != nullptr) schema_.release(&schema_);
  }

  ArrowArrayStream* get() { return &lent_; }

 private:
  static LentStream& of(ArrowArrayStream* self) {
    return *static_cast<LentStream*>(self->private_data);
  }

  int lendSchema(ArrowSchema* out) {
    if (schema_.release == nullptr) {
      const int fault = stream_.get_schema(&stream_, &schema_);
      if (fault != 0) return fault;
    }
    *out = schema_;
    out->release = [](ArrowSchema* schema) { schema->release = nullptr; };
    return 0;
  }

  ArrowArrayStream& stream_;
  ArrowArrayStream lent_{};
  ArrowSchema schema_{};
};

}  // namespace

void DuckdbSession::writeParquet(ArrowArrayStream& stream, const std::string& list,
                                 const std::string& path, const std::string& options) {
  tool::NewFile published(path);
  LentStream lent(stream);
  if (duckdbApi().arrow_scan(connection_, "records", lent.get()) != 0) {
    throw tool::Failure(fmt::format("{}: DuckDB does not take the columns", path));
  }
  // A group of rows is a batch of the stream, which DuckDB would otherwise copy into others.
  run(fmt::format("copy (select {} from records) to {} (format parquet, compression zstd, "
                  "row_group_size {}, use_tmp_file false{})",
                  list, sqlText(published.lend()), static_cast<int>(ZTB_RXF_BLOCK_RECORDS),
                  options),
      path);
  run("drop view records", path);
  published.publish();
}

}  // namespace formats
