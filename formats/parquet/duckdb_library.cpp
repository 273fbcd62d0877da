#include <dlfcn.h>
#include <fmt/format.h>

#include <cstdlib>
#include <filesystem>
#include <mutex>
#include <string>
#include <system_error>

#include "formats/parquet/duckdb_api.h"
#include "tools/text/failure.h"

namespace formats {

namespace {

constexpr const char* libraryName = "libduckdb.so";

// Where the library for tables itself lies.
std::filesystem::path ownFolder() {
  Dl_info info{};
  if (dladdr(reinterpret_cast<const void*>(&duckdbApi), &info) == 0) return {};
  std::error_code error;
  return std::filesystem::weakly_canonical(info.dli_fname, error).parent_path();
}

// What scripts/duckdb put beside a build tree that this library lies in; empty for any other place.
std::filesystem::path fileOfBuildTree(const std::filesystem::path& own) {
  std::error_code error;
  const std::filesystem::path tree = own.parent_path();
  if (!std::filesystem::exists(tree / "CMakeCache.txt", error)) return {};
  return tree.parent_path() / "duckdb/node_modules/@duckdb/node-bindings-linux-x64" / libraryName;
}

// Opens the library that ZTB_DUCKDB names, or else the first of those that may be it; one without a
// folder is looked for by the loader.
void* openLibrary() {
  std::string reasons;
  const auto opened = [&](const std::filesystem::path& path) {
    void* library = path.empty() ? nullptr : dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL);
    if (library == nullptr && !path.empty()) {
      reasons += fmt::format("{}{}", reasons.empty() ? "" : "; ", dlerror());
    }
    return library;
  };
  void* library = nullptr;
  const char* named = std::getenv("ZTB_DUCKDB");
  if (named != nullptr && *named != '\0') {
    const std::filesystem::path path = named;
    std::error_code error;
    library = opened(std::filesystem::is_directory(path, error) ? path / libraryName : path);
  } else {
    const std::filesystem::path own = ownFolder();
    library = opened(own / libraryName);
    if (library == nullptr) library = opened(fileOfBuildTree(own));
    if (library == nullptr) library = opened(libraryName);
  }
  if (library != nullptr) return library;
  throw tool::Failure(fmt::format("Parquet files need DuckDB's library {}, which cannot be opened "
                                  "({}); get it from DuckDB, or "
                                  "by the npm package @duckdb/node-bindings-linux-x64, and name "
                                  "the file or its folder in the "
                                  "environment variable ZTB_DUCKDB",
                                  libraryName, reasons),
                      ZTB_ERROR_NO_LIBRARY);
}

template <class Function>
void find(void* library, const char* name, Function*& function) {
  void* found = dlsym(library, name);
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
