// How the core finds its peers on Windows, by its exported names: file names, messages, and that
// nothing else is exported. The folder of this program has no peer in it.

#include <gtest/gtest.h>
#include <windows.h>

#include <array>
#include <cstdint>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <set>
#include <string>
#include <utility>

#include "tests/support/database.h"
#include "tests/support/temp_folder.h"

namespace ztbtest {
namespace {

// Names in the export table of an open library, as the format of its file has them.
std::set<std::string> exportsOf(const void* library) {
  const auto* const base = static_cast<const char*>(library);
  const auto* const dos = reinterpret_cast<const IMAGE_DOS_HEADER*>(base);
  const auto* const headers = reinterpret_cast<const IMAGE_NT_HEADERS64*>(base + dos->e_lfanew);
  EXPECT_EQ(IMAGE_FILE_MACHINE_AMD64, headers->FileHeader.Machine);
  const IMAGE_DATA_DIRECTORY& place =
      headers->OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_EXPORT];
  const auto* const table =
      reinterpret_cast<const IMAGE_EXPORT_DIRECTORY*>(base + place.VirtualAddress);
  EXPECT_EQ(table->NumberOfNames, table->NumberOfFunctions);
  const auto* const names = reinterpret_cast<const DWORD*>(base + table->AddressOfNames);
  std::set<std::string> result;
  for (DWORD i = 0; i < table->NumberOfNames; ++i) result.insert(base + names[i]);
  return result;
}

// Names of a file that lists exports.
std::set<std::string> listed(const std::string& path) {
  std::ifstream in(path);
  std::set<std::string> names;
  for (std::string line; std::getline(in, line);) {
    if (line.starts_with("  ")) names.insert(line.substr(2));
  }
  return names;
}

// The first tests: no peer is open yet, and one attempt after another fails.
TEST(WindowsLoader, namesTheFileThatItLookedForAndGivesTheOneReason) {
  Database without{SystemDirectory{"Z:\\no such folder"}};
  EXPECT_EQ(
      "RXF create did not succeed: Could not load shared library "
      "Z:\\no such folder\\rxfcclib64.dll: Windows error",
      without.lastError());
  // What ends in a separator gets another, which Windows takes for one.
  Database doubled{SystemDirectory{"Z:\\no such folder\\"}};
  EXPECT_EQ(
      "RXF create did not succeed: Could not load shared library "
      "Z:\\no such folder\\\\rxfcclib64.dll: Windows error",
      doubled.lastError());
}

TEST(WindowsLoader, withoutAFolderLooksWhereWindowsDoes) {
  Database database;
  EXPECT_EQ(
      "RXF create did not succeed: Could not load shared library rxfcclib64.dll: Windows error",
      database.lastError());
}

TEST(WindowsLoader, aLibraryWithoutAnEntryPointIsNamedByIt) {
  const TempFolder folder;
  std::filesystem::copy_file(EMPTY_PEER, folder.file("rxfcclib64.dll"));
  Database database{SystemDirectory{folder.path().string().c_str()}};
  EXPECT_EQ("RXF create did not succeed: Could not load symbol 'XCreate': (null)",
            database.lastError());
}

// From here on the peer is there.
TEST(WindowsLoaderAtLast, opensAPeerOfAFolderAndKeepsIt) {
  const std::string folder = std::filesystem::path(RXF_LIBRARY).parent_path().string();
  {
    Database database{SystemDirectory{folder.c_str()}};
    EXPECT_EQ("", database.lastError());
  }
  Database again{SystemDirectory{"Z:\\no such folder"}};
  EXPECT_EQ("", again.lastError());
}

TEST(WindowsLibraries, exportTheNamesOfTheirListsAndNothingElse) {
  const std::set<std::string> core = exportsOf(lib().handle);
  EXPECT_TRUE(core.contains("c__ztbaddrecord"));
  EXPECT_EQ(listed(ZTB_SOURCE_FOLDER "/core/exports/ztbcclib64.def"), core);
  const std::string folder = std::filesystem::path(RXF_LIBRARY).parent_path().string() + "\\";
  const std::pair<const char*, const char*> others[] = {
      {"rxfcclib64.dll", "providers/rxf/rxf.def"},
      {"lomudclib64.dll", "providers/model/lomu.def"},
      {"nmtmdclib64.dll", "providers/model/nmt.def"},
      {"ztbclp.dll", "providers/model/solvers/solver.def"},
      {"ztbcbc.dll", "providers/model/solvers/solver.def"},
      {"ztbglpk.dll", "providers/model/solvers/solver.def"},
      {"ztbformats.dll", "formats/formats.def"},
      {"ztbsql.dll", "formats/sql/sql.def"},
      {"ztbsqlite.dll", "formats/sql/extension.def"},
  };
  for (const auto& [file, list] : others) {
    void* const library =
        LoadLibraryExA((folder + file).c_str(), nullptr, LOAD_WITH_ALTERED_SEARCH_PATH);
    ASSERT_NE(nullptr, library) << file;
    EXPECT_EQ(listed(std::string(ZTB_SOURCE_FOLDER "/") + list), exportsOf(library)) << file;
  }
}

}  // namespace
}  // namespace ztbtest
