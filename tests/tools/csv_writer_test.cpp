#include "formats/tables/csv_writer.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <string>
#include <vector>

#include "formats/tables/csv_reader.h"
#include "tests/support/full_disk.h"
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
  const std::unique_ptr<std::FILE, int (*)(std::FILE*)> full(std::fopen(ztbtest::kFullDisk, "wb"),
                                                             &std::fclose);
  formats::CsvWriter csv(full.get(), ztbtest::kFullDisk);
  csv.text("x");
  csv.endRow();
  try {
    csv.finish();
    FAIL();
  } catch (const tool::Failure& failure) {
    EXPECT_EQ(failure.what(),
              std::string(ztbtest::kFullDisk) + ": cannot be written: No space left on device");
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

TEST(CsvWriter, ReplacesAFileWhenItIsWhole) {
  const ztbtest::TempFolder folder;
  const std::string path = folder.file("out.csv");
  std::ofstream(path) << "old";
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
  EXPECT_EQ(namesIn(folder), std::vector<std::string>{"out.csv"});
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
