#include "formats/tables/csv_reader.h"

#include <gtest/gtest.h>

#include <fstream>
#include <string>
#include <vector>

#include "tests/support/temp_folder.h"
#include "tools/text/failure.h"

namespace {

using Records = std::vector<std::vector<std::string>>;

class CsvReaderTest : public testing::Test {
 protected:
  // All records of a file with this content.
  Records readAll(const std::string& content, char separator = ',') {
    std::ofstream(folder_.file("in.csv"), std::ios::binary) << content;
    formats::CsvReader reader(folder_.file("in.csv"), separator);
    Records records;
    while (reader.next(problems_)) {
      std::vector<std::string>& record = records.emplace_back();
      for (const formats::TableField& field : reader.fields()) {
        record.emplace_back(field.text);
      }
    }
    return records;
  }

  // The problems met so far, without the path in front.
  [[nodiscard]] std::string problems() const {
    std::string report = problems_.report();
    const std::string path = folder_.file("in.csv");
    for (std::size_t at = report.find(path); at != std::string::npos; at = report.find(path)) {
      report.erase(at, path.size());
    }
    return report;
  }

  ztbtest::TempFolder folder_;
  formats::ProblemList problems_{10};
};

TEST_F(CsvReaderTest, ReadsPlainFields) {
  EXPECT_EQ(readAll("a,b\n1,2\n"), (Records{{"a", "b"}, {"1", "2"}}));
}

TEST_F(CsvReaderTest, ReadsALastLineWithoutALineEnd) {
  EXPECT_EQ(readAll("a,b\n1,2"), (Records{{"a", "b"}, {"1", "2"}}));
  EXPECT_EQ(readAll("a,b\r\n1,2\r"), (Records{{"a", "b"}, {"1", "2"}}));
}

TEST_F(CsvReaderTest, TakesCrLfAsOneLineEnd) {
  EXPECT_EQ(readAll("a,b\r\n1,\"2\"\r\n"), (Records{{"a", "b"}, {"1", "2"}}));
}

TEST_F(CsvReaderTest, SkipsAByteOrderMark) {
  EXPECT_EQ(readAll("\xEF\xBB\xBF"
                    "a\n1\n"),
            (Records{{"a"}, {"1"}}));
}

TEST_F(CsvReaderTest, RefusesUtf16) {
  EXPECT_THROW(readAll(std::string("\xFF\xFE"
                                   "a\0",
                                   4)),
               tool::Failure);
}

TEST_F(CsvReaderTest, KeepsCommasQuotesAndLineEndsInQuotedFields) {
  EXPECT_EQ(readAll("\"Ham, smoked\",\"say \"\"hi\"\"\",\"two\r\nlines\"\n"),
            (Records{{"Ham, smoked", "say \"hi\"", "two\r\nlines"}}));
}

TEST_F(CsvReaderTest, TakesAQuoteInsideAPlainFieldAsItIs) {
  EXPECT_EQ(readAll("5\" pipe,x\"y\"\n"), (Records{{"5\" pipe", "x\"y\""}}));
}

TEST_F(CsvReaderTest, KeepsBlanksHighBytesAndLoneCarriageReturns) {
  EXPECT_EQ(readAll(" a ,\xE9t\xE9,x\ry\n"), (Records{{" a ", "\xE9t\xE9", "x\ry"}}));
}

TEST_F(CsvReaderTest, PassesOverEmptyLinesButNotOverEmptyFields) {
  EXPECT_EQ(readAll("a\n\n\r\n\"\"\n,\n"), (Records{{"a"}, {""}, {"", ""}}));
}

TEST_F(CsvReaderTest, TellsQuotedEmptyFieldsFromPlainOnes) {
  std::ofstream(folder_.file("in.csv")) << "\"\",\n";
  formats::CsvReader reader(folder_.file("in.csv"), ',');
  ASSERT_TRUE(reader.next(problems_));
  EXPECT_TRUE(reader.fields()[0].quoted);
  EXPECT_FALSE(reader.fields()[1].quoted);
}

TEST_F(CsvReaderTest, ReadsNothingFromAnEmptyFile) {
  EXPECT_EQ(readAll(""), Records{});
  EXPECT_EQ(readAll("\xEF\xBB\xBF"), Records{});
}

TEST_F(CsvReaderTest, TakesAnotherSeparator) {
  EXPECT_EQ(readAll("a;b,c\n", ';'), (Records{{"a", "b,c"}}));
  EXPECT_EQ(readAll("a\tb\n", '\t'), (Records{{"a", "b"}}));
}

TEST_F(CsvReaderTest, TellsLineAndColumnOfEachField) {
  std::ofstream(folder_.file("in.csv")) << "h\n\nab,\"x\ny\",c\n";
  formats::CsvReader reader(folder_.file("in.csv"), ',');
  ASSERT_TRUE(reader.next(problems_));
  ASSERT_TRUE(reader.next(problems_));
  EXPECT_EQ(reader.position().line, 3U);
  EXPECT_EQ(reader.fields()[1].at.line, 3U);
  EXPECT_EQ(reader.fields()[1].at.column, 4U);
  EXPECT_EQ(reader.fields()[2].at.line, 4U);
  EXPECT_EQ(reader.fields()[2].at.column, 4U);
}

TEST_F(CsvReaderTest, ReportsAQuoteThatIsNeverClosed) {
  EXPECT_EQ(readAll("a,b\n1,\"x\n2,y\n"), (Records{{"a", "b"}}));
  EXPECT_EQ(problems(), ":2:3: the quote that opens here is never closed\n");
}

TEST_F(CsvReaderTest, ReportsACharBehindAClosingQuoteAndGoesOn) {
  EXPECT_EQ(readAll("a,b\n\"1\"x,2\n3,4\n"), (Records{{"a", "b"}, {"3", "4"}}));
  EXPECT_EQ(problems(),
            ":2:4: a char stands behind a closing quote; a quote inside a quoted field is written "
            "twice\n");
}

// The block size of the reader is a power of two above 1 KiB; every alignment of a line end, a
// quote and a carriage return against its end must read alike.
TEST_F(CsvReaderTest, ReadsAlikeWhereverABlockEnds) {
  const std::size_t block = std::size_t{1} << 18U;
  const std::string tail = "\"p\"\"q\r\n\",r\r\ns,t\r\n";
  for (std::size_t before = block - tail.size() - 2; before <= block + 2; ++before) {
    const std::string padding(before - 2, 'x');
    EXPECT_EQ(readAll(padding + "\r\n" + tail), (Records{{padding}, {"p\"q\r\n", "r"}, {"s", "t"}}))
        << before;
  }
}

TEST_F(CsvReaderTest, NamesAFileThatCannotBeOpened) {
  const std::string path = folder_.file("none.csv");
  try {
    formats::CsvReader reader(path, ',');
    FAIL();
  } catch (const tool::Failure& failure) {
    EXPECT_EQ(failure.what(), path + ": cannot be read: No such file or directory");
  }
}

TEST_F(CsvReaderTest, NamesAFolder) {
  const std::string path = folder_.path().string();
  try {
    formats::CsvReader reader(path, ',');
    FAIL();
  } catch (const tool::Failure& failure) {
    EXPECT_EQ(failure.what(), path + ": cannot be read: Is a directory");
  }
}

}  // namespace
