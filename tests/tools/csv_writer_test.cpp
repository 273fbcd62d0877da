#include "formats/tables/csv_writer.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <string>
#include <vector>

#include "formats/tables/csv_reader.h"
#include "tests/support/temp_folder.h"
#include "tools/text/failure.h"

namespace {

std::string contentOf(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

TEST(CsvWriter, QuotesOnlyWhatNeedsIt) {
  const ztbtest::TempFolder folder;
  formats::CsvWriter csv(folder.file("out.csv"));
  for (const char* text : {"plain", "a,b", "say \"hi\"", "two\nlines", " first", "last ", "5' x"}) {
    csv.text(text);
  }
  csv.endRow();
  csv.finish();
  EXPECT_EQ(contentOf(folder.file("out.csv")),
            "plain,\"a,b\",\"say \"\"hi\"\"\",\"two\nlines\",\" first\",\"last \",5' x\n");
}

TEST(CsvWriter, WritesAnEmptyLabelAsTwoQuotesAndAnEmptyFieldAsNothing) {
  const ztbtest::TempFolder folder;
  formats::CsvWriter csv(folder.file("out.csv"));
  csv.label("");
  csv.text("");
  csv.endRow();
  csv.finish();
  EXPECT_EQ(contentOf(folder.file("out.csv")), "\"\",\n");
}

TEST(CsvWriter, IsReadBackByteForByte) {
  const ztbtest::TempFolder folder;
  std::string allBytes;
  for (int byte = 1; byte < 256; ++byte) {
    allBytes += static_cast<char>(byte);
  }
  const std::vector<std::string> texts{"",   " ",  "\"",  "\"\"",         ",",     "\r\n",
                                       "\n", "\r", "a\r", "\xEF\xBB\xBF", allBytes};
  formats::CsvWriter csv(folder.file("out.csv"));
  csv.text("header");
  csv.endRow();
  for (const std::string& text : texts) {
    csv.label(text);
    csv.endRow();
  }
  csv.finish();
  formats::CsvReader reader(folder.file("out.csv"), ',');
  formats::ProblemList problems(10);
  ASSERT_TRUE(reader.next(problems));
  for (const std::string& text : texts) {
    ASSERT_TRUE(reader.next(problems));
    EXPECT_EQ(reader.fields()[0].text, text);
  }
  EXPECT_FALSE(reader.next(problems));
  EXPECT_TRUE(problems.empty());
}

TEST(CsvWriter, FailsOnAFullDisk) {
  const std::unique_ptr<std::FILE, int (*)(std::FILE*)> full(std::fopen("/dev/full", "wb"),
                                                             &std::fclose);
  formats::CsvWriter csv(full.get(), "/dev/full");
  csv.text("x");
  csv.endRow();
  try {
    csv.finish();
    FAIL();
  } catch (const tool::Failure& failure) {
    EXPECT_STREQ(failure.what(), "/dev/full: cannot be written: No space left on device");
  }
}

TEST(CsvWriter, FailsInAFolderThatIsNotThere) {
  const ztbtest::TempFolder folder;
  EXPECT_THROW(formats::CsvWriter(folder.file("none/out.csv")), tool::Failure);
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

TEST(CsvWriter, ReplacesAFileWhenItIsWholeAndKeepsItsPermissionBits) {
  const ztbtest::TempFolder folder;
  const std::string path = folder.file("out.csv");
  std::ofstream(path) << "old";
  ASSERT_EQ(chmod(path.c_str(), 0640), 0);
  {
    formats::CsvWriter csv(path);
    csv.text("half");
    csv.endRow();
  }
  EXPECT_EQ(contentOf(path), "old");
  EXPECT_EQ(namesIn(folder), std::vector<std::string>{"out.csv"});
  formats::CsvWriter csv(path);
  csv.text("new");
  csv.endRow();
  EXPECT_EQ(contentOf(path), "old");
  csv.finish();
  EXPECT_EQ(contentOf(path), "new\n");
  EXPECT_EQ(std::filesystem::status(path).permissions(), std::filesystem::perms{0640});
  EXPECT_EQ(namesIn(folder), std::vector<std::string>{"out.csv"});
}

TEST(CsvWriter, GivesANewFileTheBitsThatTheMaskLeaves) {
  const ztbtest::TempFolder folder;
  const mode_t before = umask(027);
  formats::CsvWriter csv(folder.file("out.csv"));
  csv.finish();
  umask(before);
  EXPECT_EQ(std::filesystem::status(folder.file("out.csv")).permissions(),
            std::filesystem::perms{0640});
}

TEST(CsvWriter, WritesThroughNoLinkPipeOrDevice) {
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

TEST(CsvWriter, ReplacesALinkThatIsPutThereMeanwhileAndNotWhatItLeadsTo) {
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

TEST(CsvWriter, RemovesWhatAKilledWriterLeftAndNothingOfOneThatLives) {
  const ztbtest::TempFolder folder;
  const std::string path = folder.file("out.csv");
  std::ofstream(folder.file(".out.csv.0.ztbtmp")) << "left";
  std::ofstream(folder.file(".out.csv.1.ztbtmp")) << "left";
  std::ofstream(folder.file(".other.csv.0.ztbtmp")) << "of another file";
  formats::CsvWriter csv(path);
  csv.text("first");
  csv.endRow();
  {
    formats::CsvWriter second(path);
    EXPECT_EQ(namesIn(folder), (std::vector<std::string>{".other.csv.0.ztbtmp", ".out.csv.0.ztbtmp",
                                                         ".out.csv.1.ztbtmp"}));
    second.text("second");
    second.endRow();
    second.finish();
  }
  EXPECT_EQ(contentOf(path), "second\n");
  csv.finish();
  EXPECT_EQ(contentOf(path), "first\n");
  EXPECT_EQ(namesIn(folder), (std::vector<std::string>{".other.csv.0.ztbtmp", "out.csv"}));
}

TEST(CsvWriter, PassesOverANameThatIsTakenAndCannotBeOpened) {
  // As that of a writer whose file has got its own name in between.
  const ztbtest::TempFolder folder;
  std::filesystem::create_symlink("nowhere", folder.file(".out.csv.0.ztbtmp"));
  formats::CsvWriter csv(folder.file("out.csv"));
  csv.text("x");
  csv.endRow();
  csv.finish();
  EXPECT_EQ(contentOf(folder.file("out.csv")), "x\n");
}

TEST(CsvWriter, TakesTheLongestNamesOfFiles) {
  const ztbtest::TempFolder folder;
  const std::string name(255, 'n');
  formats::CsvWriter csv(folder.file(name));
  csv.text("x");
  csv.endRow();
  csv.finish();
  EXPECT_EQ(contentOf(folder.file(name)), "x\n");
  EXPECT_EQ(namesIn(folder), std::vector<std::string>{name});
}

}  // namespace
