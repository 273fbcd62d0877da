// What is used of DuckDB's C interface, declared as it documents it. The library is opened at run
// time, so these are types of its functions and no prototypes that anything is linked with.
#ifndef ZTB_FORMATS_PARQUET_DUCKDB_API_H_
#define ZTB_FORMATS_PARQUET_DUCKDB_API_H_

#include <cstdint>

struct ArrowArrayStream;

namespace formats {

// Handles are pointers whose content is the library's own.
using DuckdbDatabase = struct DuckdbDatabaseRec*;
using DuckdbConnection = struct DuckdbConnectionRec*;
using DuckdbStatement = struct DuckdbStatementRec*;
using DuckdbChunk = struct DuckdbChunkRec*;
using DuckdbVector = struct DuckdbVectorRec*;

struct DuckdbResult {
  std::uint64_t columnCount;
  std::uint64_t rowCount;
  std::uint64_t rowsChanged;
  void* columns;
  char* errorMessage;
  void* internal;
};

// A text of 12 bytes or fewer stands in place.
struct DuckdbText {
  static constexpr std::uint32_t longestInPlace = 12;
  std::uint32_t length;
  char start[4];
  union {
    char rest[8];
    const char* chars;
  };
};

// The functions under their names there, without "duckdb_". Those that give a state give 0 for
// success.
struct DuckdbApi {
  const char* (*library_version)();
  int (*open)(const char* path, DuckdbDatabase* database);
  void (*close)(DuckdbDatabase* database);
  int (*connect)(DuckdbDatabase database, DuckdbConnection* connection);
  void (*disconnect)(DuckdbConnection* connection);
  int (*query)(DuckdbConnection connection, const char* sql, DuckdbResult* result);
  void (*destroy_result)(DuckdbResult* result);
  const char* (*result_error)(DuckdbResult* result);
  int (*prepare)(DuckdbConnection connection, const char* sql, DuckdbStatement* statement);
  const char* (*prepare_error)(DuckdbStatement statement);
  void (*destroy_prepare)(DuckdbStatement* statement);
  int (*execute_prepared_streaming)(DuckdbStatement statement, DuckdbResult* result);
  std::uint64_t (*column_count)(DuckdbResult* result);
  DuckdbChunk (*fetch_chunk)(DuckdbResult result);
  void (*destroy_data_chunk)(DuckdbChunk* chunk);
  std::uint64_t (*data_chunk_get_size)(DuckdbChunk chunk);
  DuckdbVector (*data_chunk_get_vector)(DuckdbChunk chunk, std::uint64_t column);
  void* (*vector_get_data)(DuckdbVector vector);
  // A bit for each row, set where it is not null; null where no row is.
  std::uint64_t* (*vector_get_validity)(DuckdbVector vector);
  // Makes a view of a stream, which stays the caller's and is read once.
  int (*arrow_scan)(DuckdbConnection connection, const char* name, ArrowArrayStream* stream);
};

// The functions of the library, which is opened with the first call. Throws tool::Failure that says
// where it was looked for and how to get it.
const DuckdbApi& duckdbApi();

}  // namespace formats

#endif  // ZTB_FORMATS_PARQUET_DUCKDB_API_H_
