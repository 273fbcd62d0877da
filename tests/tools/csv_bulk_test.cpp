// Big CSV files through all processors, held against the reader that reads row by row.

#include "formats/tables/csv_bulk.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <optional>
#include <string>
#include <vector>

#include "formats/tables/csv_reader.h"
#include "tests/support/temp_folder.h"
#include "tools/text/progress.h"

namespace {

// Labels of the columns 2 and 1, numbered as rows have them first, and numbers of column 3.
using Table = std::vector<std::string>;

class CsvBulkTest : public testing::Test {
 protected:
  std::optional<Table> bulk(const std::string& text, std::size_t chunkBytes, unsigned threads = 3) {
    std::ofstream(folder_.file("a.csv"), std::ios::binary) << text;
    tool::Progress progress(false);
    formats::CsvBulk reader;
    const formats::CsvBulkForm form{.separator = ',',
                                    .decimal = '.',
                                    .columnCount = 4,
                                    .columns = {.labels = {1, 0}, .numbers = {2}},
                                    .chunkBytes = chunkBytes,
                                    .threads = threads};
    if (!reader.read(folder_.file("a.csv"), form, progress)) return std::nullopt;
    std::vector<std::string> labels;
    // A label that several threads met is asked for by each.
    reader.numberLabels([&](const std::string& label) {
      const auto found = std::find(labels.begin(), labels.end(), label);
      const auto number = found - labels.begin() + 1;
      if (found == labels.end()) labels.push_back(label);
      return static_cast<int>(number);
    });
    Table table;
    for (std::size_t number = 0; number < reader.pieceCount(); ++number) {
      const formats::CsvBulk::Piece& piece = reader.piece(number);
      for (std::size_t row = 0; row < piece.rows; ++row) {
        const auto numbers = {piece.labels[0][row], piece.labels[1][row]};
        std::string line;
        for (const int label : numbers) {
          line += std::to_string(label) + "=" + labels[static_cast<std::size_t>(label) - 1] + "|";
        }
        table.push_back(line + std::to_string(piece.numbers[0][row]));
      }
    }
    return table;
  }

  // The same by the reader that reads row by row.
  Table oneByOne() {
    formats::CsvReader reader(folder_.file("a.csv"), ',');
    formats::ProblemList problems(20);
    reader.next(problems);
    std::vector<std::string> labels;
    Table table;
    while (reader.next(problems)) {
      std::string line;
      for (const std::size_t column : {1U, 0U}) {
        const std::string label(reader.fields()[column].text);
        const auto found = std::find(labels.begin(), labels.end(), label);
        const auto number = found - labels.begin() + 1;
        if (found == labels.end()) labels.push_back(label);
        line += std::to_string(number) + "=" + label + "|";
      }
      table.push_back(line + std::to_string(std::stod(std::string(reader.fields()[2].text))));
    }
    EXPECT_TRUE(problems.empty()) << problems.report();
    return table;
  }

  ztbtest::TempFolder folder_;
};

TEST_F(CsvBulkTest, ReadsWhatIsReadRowByRowWhateverAChunkHolds) {
  // The fourth column is nobody's.
  std::string text = "\xEF\xBB\xBF\"i\n\",\"j\"\"\",v,note\r\n\n";
  for (int row = 0; row < 60; ++row) {
    const std::string number = std::to_string(row % 7);
    text += row % 3 == 0 ? "\"a" + number + ",b\"" : "i" + number;
    text += ",\"x,\"\"" + number + "\"," + number + (row % 2 == 0 ? ".5" : "");
    text += row % 4 == 0 ? ",\"of\n\"\"two\r\nlines,\n\"" : ",";
    text += row % 2 == 0 ? "\r\n" : "\n";
    text += row % 5 == 0 ? "\n\r\n" : "";
  }
  text += "last,one,1e3,\"\"";
  ASSERT_TRUE(bulk(text, 1U << 20U).has_value());
  const Table expected = oneByOne();
  EXPECT_EQ(expected.size(), 61U);
  for (const std::size_t chunkBytes : {1U, 2U, 3U, 7U, 64U, 100U, 1000U}) {
    EXPECT_EQ(bulk(text, chunkBytes), expected) << chunkBytes;
    EXPECT_EQ(bulk(text, chunkBytes, 1), expected) << chunkBytes;
  }
}

TEST_F(CsvBulkTest, LeavesToTheOtherReaderWhatIsToBeTold) {
  const std::string good = "i,j,v,w\na,b,1,\n";
  EXPECT_TRUE(bulk(good, 4));
  for (const std::string bad : {"a,b,1\n", "a,b,1,2,3\n", "a,b,x,\n", "a,b,,\n", ",b,1,\n",
                                "\"\",b,1,\n", "\" \",b,1,\n", "a,b,1e999,\n", "a\"b,c,1,\n",
                                "\"a\"b,c,1,\n", "\"a,b,1,\n", "a\rb,c,1,\n", "a\tb,c,1,\n"}) {
    EXPECT_FALSE(bulk(good + bad, 4)) << bad;
    EXPECT_FALSE(bulk(good + bad + "a,b,1,\n", 1000)) << bad;
  }
  EXPECT_FALSE(bulk("i,j,v\na,b,1,\n", 4));
  EXPECT_FALSE(bulk("", 4));
}

TEST(Progress, TellsRateAndTimeLeft) {
  EXPECT_EQ(tool::recordsText(5, 0.5, 0.1), "5 records");
  EXPECT_EQ(tool::recordsText(3000, 2, 0), "3000 records, 1500 a second");
  EXPECT_EQ(tool::bytesText(1500000, 0.5), "1.5 MB");
  EXPECT_EQ(tool::bytesText(30000000, 2), "30.0 MB, 15.0 MB a second");
  EXPECT_EQ(tool::recordsText(3000, 2, 0.25), "3000 records, 1500 a second, 6 s left");
}

}  // namespace
