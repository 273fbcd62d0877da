#include "tools/csv_writer.h"

#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include "tests/support/temp_folder.h"
#include "tools/csv_reader.h"
#include "tools/failure.h"

namespace {

std::string contentOf(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

TEST(CsvWriter, QuotesOnlyWhatNeedsIt) {
  const ztbtest::TempFolder folder;
  tool::CsvWriter csv(folder.file("out.csv"));
  for (const char* text : {"plain", "a,b", "say \"hi\"", "two\nlines", " first", "last ", "5' x"}) {
    csv.field(text);
  }
  csv.endRecord();
  csv.close();
  EXPECT_EQ(contentOf(folder.file("out.csv")),
            "plain,\"a,b\",\"say \"\"hi\"\"\",\"two\nlines\",\" first\",\"last \",5' x\n");
}

TEST(CsvWriter, WritesAnEmptyLabelAsTwoQuotesAndAnEmptyFieldAsNothing) {
  const ztbtest::TempFolder folder;
  tool::CsvWriter csv(folder.file("out.csv"));
  csv.label("");
  csv.field("");
  csv.endRecord();
  csv.close();
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
  tool::CsvWriter csv(folder.file("out.csv"));
  csv.field("header");
  csv.endRecord();
  for (const std::string& text : texts) {
    csv.label(text);
    csv.endRecord();
  }
  csv.close();
  tool::CsvReader reader(folder.file("out.csv"), ',');
  tool::ProblemList problems(10);
  ASSERT_TRUE(reader.next(problems));
  for (const std::string& text : texts) {
    ASSERT_TRUE(reader.next(problems));
    EXPECT_EQ(reader.fields()[0].text, text);
  }
  EXPECT_FALSE(reader.next(problems));
  EXPECT_TRUE(problems.empty());
}

TEST(CsvWriter, FailsOnAFullDisk) {
  tool::CsvWriter csv("/dev/full");
  csv.field("x");
  csv.endRecord();
  try {
    csv.close();
    FAIL();
  } catch (const tool::Failure& failure) {
    EXPECT_STREQ(failure.what(), "/dev/full: cannot be written: No space left on device");
  }
}

TEST(CsvWriter, FailsInAFolderThatIsNotThere) {
  const ztbtest::TempFolder folder;
  EXPECT_THROW(tool::CsvWriter(folder.file("none/out.csv")), tool::Failure);
}

}  // namespace
