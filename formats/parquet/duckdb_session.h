// A database of DuckDB in memory, to read and write Parquet files with.
#ifndef ZTB_FORMATS_PARQUET_DUCKDB_SESSION_H_
#define ZTB_FORMATS_PARQUET_DUCKDB_SESSION_H_

#include <ztb/arrow.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "formats/parquet/duckdb_api.h"

namespace formats {

// A text in single quotes, as SQL takes it, and a name in double ones.
std::string sqlText(std::string_view text);
std::string sqlName(std::string_view name);
// The name of a Parquet file as DuckDB's functions take it, whatever chars it has, and the source
// of a query that reads just this file.
std::string parquetName(const std::string& path);
std::string parquetSource(const std::string& path);

// A block of rows of a result, by columns of texts and doubles.
class DuckdbRows {
 public:
  DuckdbRows() = default;
  DuckdbRows(DuckdbChunk chunk, std::size_t columns);
  DuckdbRows(DuckdbRows&& other) noexcept;
  DuckdbRows& operator=(DuckdbRows&& other) noexcept;
  DuckdbRows(const DuckdbRows&) = delete;
  DuckdbRows& operator=(const DuckdbRows&) = delete;
  ~DuckdbRows();

  [[nodiscard]] std::size_t count() const { return count_; }
  [[nodiscard]] bool isNull(std::size_t column, std::size_t row) const {
    const std::uint64_t* marks = columns_[column].marks;
    return marks != nullptr && (marks[row / 64] >> (row % 64) & 1U) == 0;
  }
  [[nodiscard]] bool hasNulls(std::size_t column) const {
    return columns_[column].marks != nullptr;
  }
  // REQUIRES: the column is one of doubles, or of texts.
  [[nodiscard]] const double* doubles(std::size_t column) const {
    return static_cast<const double*>(columns_[column].data);
  }
  [[nodiscard]] std::string_view text(std::size_t column, std::size_t row) const {
    const DuckdbText& text = static_cast<const DuckdbText*>(columns_[column].data)[row];
    return text.length <= DuckdbText::longestInPlace ? std::string_view(text.start, text.length)
                                                     : std::string_view(text.chars, text.length);
  }

 private:
  struct Column {
    const void* data = nullptr;
    const std::uint64_t* marks = nullptr;
  };
  DuckdbChunk chunk_ = nullptr;
  std::size_t count_ = 0;
  std::vector<Column> columns_;
};

// The rows of a query, block by block.
class DuckdbQuery {
 public:
  DuckdbQuery(DuckdbConnection connection, const std::string& sql, const std::string& shown);
  DuckdbQuery(const DuckdbQuery&) = delete;
  DuckdbQuery& operator=(const DuckdbQuery&) = delete;
  ~DuckdbQuery();

  // An empty block behind the last row. Throws Failure for what cannot be read.
  DuckdbRows next();

 private:
  [[noreturn]] void fail(const char* reason) const;

  std::string shown_;
  DuckdbStatement statement_ = nullptr;
  DuckdbResult result_{};
};

class DuckdbSession {
 public:
  // Throws Failure, as all members do, where there is no DuckDB.
  DuckdbSession();
  DuckdbSession(const DuckdbSession&) = delete;
  DuckdbSession& operator=(const DuckdbSession&) = delete;
  ~DuckdbSession();

  // What fails is told with the name of the file that it is about.
  void run(const std::string& sql, const std::string& shown);
  [[nodiscard]] std::unique_ptr<DuckdbQuery> query(const std::string& sql,
                                                   const std::string& shown) const;

  // Writes a stream, which stays the caller's, into a Parquet file that takes its name when it is
  // whole: the columns of a select list over the stream, with further options of "copy".
  void writeParquet(ArrowArrayStream& stream, const std::string& list, const std::string& path,
                    const std::string& options = "");

 private:
  DuckdbDatabase database_ = nullptr;
  DuckdbConnection connection_ = nullptr;
};

}  // namespace formats

#endif  // ZTB_FORMATS_PARQUET_DUCKDB_SESSION_H_
