// The files that the command and the library of tables write and sort by, on Windows.

#include <gtest/gtest.h>
#include <windows.h>

#include <cerrno>
#include <filesystem>
#include <string>
#include <vector>

#include "formats/tables/row_sorter.h"
#include "providers/windows/device_name.h"
#include "tests/support/temp_folder.h"
#include "tools/files/new_file.h"
#include "tools/files/system_files.h"
#include "tools/text/failure.h"

namespace {

using tool::NewFile;

void write(const std::string& path, const std::string& text) {
  NewFile file(path);
  std::fwrite(text.data(), 1, text.size(), file.stream());
  file.publish();
}

std::string contentOf(const std::string& path) {
  std::FILE* const file = tool::openStream(path, "rb");
  EXPECT_NE(nullptr, file) << path;
  if (file == nullptr) return "";
  std::string text(100, '\0');
  text.resize(std::fread(text.data(), 1, text.size(), file));
  std::fclose(file);
  return text;
}

std::vector<std::string> namesIn(const std::string& folder) {
  std::vector<std::string> names;
  for (const auto& entry : std::filesystem::directory_iterator(tool::pathOf(folder))) {
    names.push_back(tool::nameOf(entry.path().filename()));
  }
  return names;
}

std::string failureOf(const std::string& path) {
  try {
    write(path, "new");
  } catch (const tool::Failure& failure) {
    return failure.what();
  }
  return "";
}

// U+017E, U+6570, and U+1F600 in two halves.
const std::string kName = "\xC5\xBE\xE6\x95\xB0\xF0\x9F\x98\x80.csv";

TEST(NewFileOnWindows, hasItsBytesAndAUtf8Name) {
  const ztbtest::TempFolder folder;
  write(folder.file(kName), "one\ntwo\r\n\x1A");
  EXPECT_EQ("one\ntwo\r\n\x1A", contentOf(folder.file(kName)));
  EXPECT_EQ(std::vector<std::string>{kName}, namesIn(folder.file("")));
  const std::wstring wanted =
      std::filesystem::path(folder.file("")).wstring() + L"\u017E\u6570\xD83D\xDE00.csv";
  EXPECT_NE(INVALID_FILE_ATTRIBUTES, GetFileAttributesW(wanted.c_str()));
}

TEST(NewFileOnWindows, whatIsNotPublishedIsGone) {
  const ztbtest::TempFolder folder;
  {
    NewFile file(folder.file("x"));
    EXPECT_EQ(1U, namesIn(folder.file("")).size());
  }
  EXPECT_EQ(0U, namesIn(folder.file("")).size());
}

TEST(NewFileOnWindows, whatAKilledWriterLeftIsRemovedAndAnotherWriterIsLeftAlone) {
  const ztbtest::TempFolder folder;
  NewFile other(folder.file("x"));
  const int left = posix::open(folder.file(".x.1.ztbtmp").c_str(), O_WRONLY | O_CREAT | O_EXCL);
  ASSERT_GE(left, 0);
  posix::close(left);
  write(folder.file("x"), "second");
  EXPECT_EQ("second", contentOf(folder.file("x")));
  EXPECT_EQ((std::vector<std::string>{".x.0.ztbtmp", "x"}), namesIn(folder.file("")));
  other.publish();
  EXPECT_EQ("", contentOf(folder.file("x")));
}

TEST(NewFileOnWindows, aFileThatAnotherProgramHasOpenStays) {
  const ztbtest::TempFolder folder;
  const std::string path = folder.file("x");
  write(path, "old");
  const HANDLE held =
      CreateFileA(path.c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING, 0, nullptr);
  ASSERT_NE(INVALID_HANDLE_VALUE, held);
  EXPECT_EQ(path + ": cannot be written: another program has it open", failureOf(path));
  CloseHandle(held);
  EXPECT_EQ("old", contentOf(path));
  EXPECT_EQ(std::vector<std::string>{"x"}, namesIn(folder.file("")));
}

TEST(NewFileOnWindows, placesWhereNoneCanBeAreToldApart) {
  const ztbtest::TempFolder folder;
  write(folder.file("plain"), "");
  EXPECT_EQ(folder.file("none/x") + ": cannot be written: No such file or directory",
            failureOf(folder.file("none/x")));
  EXPECT_EQ(folder.file("plain/x") + ": cannot be written: Not a directory",
            failureOf(folder.file("plain/x")));
  // No names of devices that are there: Wine would let them be replaced.
  for (const char* device : {"LPT9", "lpt9.csv"}) {
    EXPECT_EQ(std::string(device) + ": is no regular file, nothing is written to it",
              failureOf(device));
  }
  ASSERT_NE(0, SetFileAttributesA(folder.file("plain").c_str(), FILE_ATTRIBUTE_READONLY));
  EXPECT_EQ(folder.file("plain") + ": cannot be written: Permission denied",
            failureOf(folder.file("plain")));
  ASSERT_NE(0, SetFileAttributesA(folder.file("plain").c_str(), FILE_ATTRIBUTE_NORMAL));
}

TEST(DevicesOnWindows, areKnownByTheirNames) {
  for (const wchar_t* name :
       {L"CONOUT$", L"z:\\a\\conin$.txt", L"com\u00b9", L"LPT\u00b3 .x", L"Aux"}) {
    EXPECT_TRUE(ztbwindows::isDeviceName(name)) << name;
  }
  for (const wchar_t* name : {L"conout", L"com\u2074", L"conin$x", L"aux\\x"}) {
    EXPECT_FALSE(ztbwindows::isDeviceName(name)) << name;
  }
}

TEST(CallsOnWindows, doNotReplaceOrRemoveDevices) {
  const ztbtest::TempFolder folder;
  write(folder.file("x"), "kept");
  for (const char* device : {"lpt9", "LPT9.txt", "C:/lpt9:x"}) {
    errno = 0;
    EXPECT_EQ(-1, posix::rename(folder.file("x").c_str(), device));
    EXPECT_EQ(EACCES, errno) << device;
    errno = 0;
    EXPECT_EQ(-1, posix::unlink(device));
    EXPECT_EQ(EACCES, errno) << device;
  }
  EXPECT_EQ("kept", contentOf(folder.file("x")));
  // Names that only begin as one.
  for (const char* name : {"lpt", "lpt0", "lpt10", "null"}) {
    EXPECT_EQ(-1, posix::unlink(name));
    EXPECT_EQ(ENOENT, errno) << name;
  }
}

TEST(TemporaryOnWindows, isOpenedByItsNameAndGoesWhenItIsClosed) {
  const ztbtest::TempFolder folder;
  std::string name;
  const int file = tool::openTemporary(folder.file(""), name);
  ASSERT_GE(file, 0);
  ASSERT_EQ(3, posix::write(file, "a\nb", 3));
  EXPECT_EQ("a\nb", contentOf(name));
  posix::close(file);
  EXPECT_EQ(0U, namesIn(folder.file("")).size());
  EXPECT_EQ(-1, tool::openTemporary(folder.file("none"), name));
  EXPECT_EQ(ENOENT, errno);
}

// More rows than the limit lets stay in memory: they go to a file, in several runs.
TEST(SortingOnWindows, ofMoreRowsThanMemoryHoldsGoesByAFile) {
  const ztbtest::TempFolder folder;
  formats::RowSorter::Limits limits;
  limits.bytes = 64000;
  formats::RowSorter sorter(1, 2, folder.file(""), limits);
  constexpr std::uint64_t count = 20000;
  for (std::uint64_t row = 0; row < count; ++row) {
    const std::uint64_t words[] = {(row * 7919) % count, row};
    sorter.add(words);
  }
  EXPECT_EQ(1U, namesIn(folder.file("")).size());
  for (std::uint64_t row = 0; row < count; ++row) {
    ASSERT_TRUE(sorter.next());
    ASSERT_EQ(row, sorter.row()[0]);
    ASSERT_EQ(row, (sorter.row()[1] * 7919) % count);
  }
  EXPECT_FALSE(sorter.next());
}

}  // namespace
