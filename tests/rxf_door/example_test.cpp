// The examples of docs/reference/rxf.md, compiled from there and run.
#include <gtest/gtest.h>

#include <array>
#include <cstdio>
#include <string>

#include "tests/rxf/content.h"
#include "tests/rxf/peer_file.h"
#include "tests/rxf/temp_folder.h"

namespace rxftest {
namespace {

class RxfExampleTest : public testing::Test {
 protected:
  void SetUp() override {
    Content content;
    content.labels = {"Milk", "Tofu"};
    Symbol price{"price", kParameter, 1, 0, "", {}, 0, {}, ""};
    price.records = {record({1}, {11}), record({2}, {30.5})};
    content.symbols = {price};
    PeerFile file;
    ASSERT_EQ(file.openWrite(path_), 0);
    writeContent(file, content);
    ASSERT_EQ(file.close(), 0);
  }

  // What a program prints for the file, both streams together.
  std::string outputOf(const std::string& program, int& status) const {
    FILE* pipe = popen(("'" + program + "' '" + path_ + "' 2>&1").c_str(), "r");
    std::string output;
    std::array<char, 512> line{};
    while (fgets(line.data(), line.size(), pipe) != nullptr) output += line.data();
    status = pclose(pipe);
    return output;
  }

  TempFolder folder_;
  std::string path_ = folder_.file("diet.rxf");
};

// A node of the map takes 64 bytes for one position and one value.
TEST_F(RxfExampleTest, TheProgramsOfTheDocumentRead) {
  int status = -1;
  EXPECT_EQ(outputOf(RXF_EXAMPLE_c, status), "Milk 11\nTofu 30.5\n");
  EXPECT_EQ(status, 0);
  EXPECT_EQ(outputOf(RXF_EXAMPLE_cpp, status),
            "price: 2 records, about 128 bytes in a database\nMilk 11\nTofu 30.5\n");
  EXPECT_EQ(status, 0);
}

TEST_F(RxfExampleTest, TheProgramsOfTheDocumentTellDamage) {
  std::string bytes = readFile(path_);
  bytes[140] = static_cast<char>(~bytes[140]);
  writeFile(path_, bytes);
  for (const char* program : {RXF_EXAMPLE_c, RXF_EXAMPLE_cpp}) {
    int status = 0;
    const std::string output = outputOf(program, status);
    EXPECT_NE(output.find("File is damaged: block 1 of 1 of symbol price in "), std::string::npos)
        << output;
    EXPECT_NE(status, 0);
  }
}

}  // namespace
}  // namespace rxftest
