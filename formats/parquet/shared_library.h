// A library of somebody else that is opened at run time: what differs between systems stands in
// shared_library_linux.cpp and shared_library_windows.cpp.
#ifndef ZTB_FORMATS_PARQUET_SHARED_LIBRARY_H_
#define ZTB_FORMATS_PARQUET_SHARED_LIBRARY_H_

#include <filesystem>
#include <string>

namespace formats {

// What the file of DuckDB's library is called, the npm package that has it, and where
// scripts/duckdb puts that beside a build tree.
extern const char* const duckdbFile;
extern const char* const duckdbPackage;
extern const char* const duckdbModules;

// What the environment has under a name; empty for nothing.
std::filesystem::path environmentPath(const char* name);

// The file of the library, or of the program, that this function is in; empty where nobody knows.
std::filesystem::path ownFile();

// Opens a library, and keeps it to the end of the process; one without a folder is looked for where
// the system does. nullptr with a reason, which names the file, where there is none.
void* openSharedLibrary(const std::filesystem::path& file, std::string& reason);

// nullptr where the library has no function of the name.
void* functionOf(void* library, const char* name);

}  // namespace formats

#endif  // ZTB_FORMATS_PARQUET_SHARED_LIBRARY_H_
