// Links, pipes and permission bits where a CSV file is to be.
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include "formats/tables/csv_writer.h"
#include "tests/support/temp_folder.h"
#include "tools/text/failure.h"

namespace {

std::string contentOf(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

std::vector<std::string> namesIn(const ztbtest::TempFolder& folder) {
  std::vector<std::string> names;
  for (const auto& entry : std::filesystem::directory_iterator(folder.path())) {
    names.push_back(entry.path().filename().string());
  }
  std::ranges::sort(names);
  return names;
}

std::string refusal(const std::string& path) {
  try {
    const formats::CsvWriter csv(path);
  } catch (const tool::Failure& failure) {
    return failure.what();
  }
  return "";
}

TEST(CsvWriterPlace, KeepsThePermissionBitsOfAFileThatItReplaces) {
  const ztbtest::TempFolder folder;
  const std::string path = folder.file("out.csv");
  std::ofstream(path) << "old";
  ASSERT_EQ(chmod(path.c_str(), 0640), 0);
  formats::CsvWriter csv(path);
  csv.text("new");
  csv.endRow();
  csv.finish();
  EXPECT_EQ(contentOf(path), "new\n");
  EXPECT_EQ(std::filesystem::status(path).permissions(), std::filesystem::perms{0640});
}

TEST(CsvWriterPlace, GivesANewFileTheBitsThatTheMaskLeaves) {
  const ztbtest::TempFolder folder;
  const mode_t before = umask(027);
  formats::CsvWriter csv(folder.file("out.csv"));
  csv.finish();
  umask(before);
  EXPECT_EQ(std::filesystem::status(folder.file("out.csv")).permissions(),
            std::filesystem::perms{0640});
}

TEST(CsvWriterPlace, WritesThroughNoLinkPipeOrDevice) {
  const ztbtest::TempFolder folder;
  std::ofstream(folder.file("victim")) << "precious";
  std::filesystem::create_symlink("victim", folder.file("link"));
  std::filesystem::create_symlink("nothing", folder.file("dangling"));
  ASSERT_EQ(mkfifo(folder.file("pipe").c_str(), 0600), 0);
  for (const std::string name : {"link", "dangling"}) {
    EXPECT_EQ(refusal(folder.file(name)),
              folder.file(name) + ": is a symbolic link, nothing is written through it");
  }
  EXPECT_EQ(refusal(folder.file("pipe")),
            folder.file("pipe") + ": is no regular file, nothing is written to it");
  EXPECT_EQ(refusal("/dev/null"), "/dev/null: is no regular file, nothing is written to it");
  EXPECT_EQ(contentOf(folder.file("victim")), "precious");
  EXPECT_EQ(namesIn(folder), (std::vector<std::string>{"dangling", "link", "pipe", "victim"}));
}

TEST(CsvWriterPlace, ReplacesALinkThatIsPutThereMeanwhileAndNotWhatItLeadsTo) {
  const ztbtest::TempFolder folder;
  std::ofstream(folder.file("victim")) << "precious";
  formats::CsvWriter csv(folder.file("out.csv"));
  std::filesystem::create_symlink("victim", folder.file("out.csv"));
  csv.text("new");
  csv.endRow();
  csv.finish();
  EXPECT_EQ(contentOf(folder.file("victim")), "precious");
  EXPECT_FALSE(std::filesystem::is_symlink(folder.file("out.csv")));
  EXPECT_EQ(contentOf(folder.file("out.csv")), "new\n");
}

TEST(CsvWriterPlace, PassesOverANameThatIsTakenAndCannotBeOpened) {
  // As that of a writer whose file has got its own name in between.
  const ztbtest::TempFolder folder;
  std::filesystem::create_symlink("nowhere", folder.file(".out.csv.0.ztbtmp"));
  formats::CsvWriter csv(folder.file("out.csv"));
  csv.text("x");
  csv.endRow();
  csv.finish();
  EXPECT_EQ(contentOf(folder.file("out.csv")), "x\n");
}

}  // namespace
