#include <fmt/format.h>

#include <filesystem>
#include <mutex>
#include <string>
#include <system_error>

#include "formats/parquet/duckdb_api.h"
#include "formats/parquet/shared_library.h"
#include "tools/text/failure.h"

namespace formats {

namespace {

// What scripts/duckdb put beside a build tree that this library lies in; empty for any other place.
std::filesystem::path fileOfBuildTree(const std::filesystem::path& own) {
  std::error_code error;
  const std::filesystem::path tree = own.parent_path();
  if (!std::filesystem::exists(tree / "CMakeCache.txt", error)) return {};
  return tree.parent_path() / duckdbModules / duckdbPackage / duckdbFile;
}

// Opens the library that ZTB_DUCKDB names, or else the first of those that may be it; one without a
// folder is looked for where the system does.
void* openLibrary() {
  std::string reasons;
  const auto opened = [&](const std::filesystem::path& path) {
    std::string reason;
    void* library = path.empty() ? nullptr : openSharedLibrary(path, reason);
    if (!reason.empty()) reasons += (reasons.empty() ? "" : "; ") + reason;
    return library;
  };
  void* library = nullptr;
  const std::filesystem::path named = environmentPath("ZTB_DUCKDB");
  if (!named.empty()) {
    std::error_code error;
    library = opened(std::filesystem::is_directory(named, error) ? named / duckdbFile : named);
  } else {
    const std::filesystem::path own = ownFile().parent_path();
    library = opened(own / duckdbFile);
    if (library == nullptr) library = opened(fileOfBuildTree(own));
    if (library == nullptr) library = opened(duckdbFile);
  }
  if (library != nullptr) return library;
  throw tool::Failure(fmt::format("Parquet files need DuckDB's library {}, which cannot be opened "
                                  "({}); get it from DuckDB, or by the npm package {}, and name "
                                  "the file or its folder in the environment variable ZTB_DUCKDB",
                                  duckdbFile, reasons, duckdbPackage),
                      ZTB_ERROR_NO_LIBRARY);
}

template <class Function>
void find(void* library, const char* name, Function*& function) {
  void* found = functionOf(library, name);
  if (found == nullptr) {
    throw tool::Failure(
        fmt::format("DuckDB's library has no function {}: its version is not fit for this", name),
        ZTB_ERROR_NO_LIBRARY);
  }
  function = reinterpret_cast<Function*>(found);
}

DuckdbApi openApi() {
  void* library = openLibrary();
  DuckdbApi api{};
  find(library, "duckdb_library_version", api.library_version);
  find(library, "duckdb_open", api.open);
  find(library, "duckdb_close", api.close);
  find(library, "duckdb_connect", api.connect);
  find(library, "duckdb_disconnect", api.disconnect);
  find(library, "duckdb_query", api.query);
  find(library, "duckdb_destroy_result", api.destroy_result);
  find(library, "duckdb_result_error", api.result_error);
  find(library, "duckdb_prepare", api.prepare);
  find(library, "duckdb_prepare_error", api.prepare_error);
  find(library, "duckdb_destroy_prepare", api.destroy_prepare);
  find(library, "duckdb_execute_prepared_streaming", api.execute_prepared_streaming);
  find(library, "duckdb_column_count", api.column_count);
  find(library, "duckdb_fetch_chunk", api.fetch_chunk);
  find(library, "duckdb_destroy_data_chunk", api.destroy_data_chunk);
  find(library, "duckdb_data_chunk_get_size", api.data_chunk_get_size);
  find(library, "duckdb_data_chunk_get_vector", api.data_chunk_get_vector);
  find(library, "duckdb_vector_get_data", api.vector_get_data);
  find(library, "duckdb_vector_get_validity", api.vector_get_validity);
  find(library, "duckdb_arrow_scan", api.arrow_scan);
  return api;
}

}  // namespace

const DuckdbApi& duckdbApi() {
  // A failed opening is tried again. What was opened stays so to the end of the process.
  static const DuckdbApi api = openApi();
  return api;
}

}  // namespace formats
