// A file whose bytes were put together by hand from the description of the format.

#include <gtest/gtest.h>

#include <sstream>
#include <string>

#include "tests/rxf/content.h"
#include "tests/rxf/peer_file.h"
#include "tests/rxf/reseal.h"
#include "tests/rxf/temp_folder.h"

namespace rxftest {
namespace {

// Bytes from hexadecimal pairs; checksums are left zero and filled in.
std::string bytesOf(const std::string& hex) {
  std::istringstream in(hex);
  std::string bytes;
  for (std::string pair; in >> pair;) bytes += static_cast<char>(std::stoi(pair, nullptr, 16));
  reseal(bytes);
  return bytes;
}

constexpr const char* kChecksum = "00 00 00 00 00 00 00 00 ";

std::string frame(const std::string& front) {
  return front + kChecksum + kChecksum;
}

std::string exampleOfTheDescription() {
  return bytesOf(
      // Header: magic, version, counts, length, tables.
      "89 52 58 46 0D 0A 1A 0A 01 00 00 00 02 00 00 00 01 00 00 00 01 00 00 00 "
      "84 01 00 00 00 00 00 00 AA 00 00 00 00 00 00 00 2F 00 00 00 00 00 00 00 "
      "30 00 00 00 00 00 00 00 30 00 00 00 00 00 00 00 4B 00 00 00 00 00 00 00 "
      "00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 " +
      std::string(kChecksum) +
      // The block of the two records.
      frame("52 45 43 53 01 00 00 00 00 00 00 00 02 00 00 00 22 00 00 00 00 00 00 00 ") +
      "01 00 00 00 00 00 00 00 00 01 00 00 00 "
      "00 01 01 01 00 0F 00 00 00 00 00 00 00 0A 00 00 00 00 00 00 00 " +
      // The tables.
      frame("49 4E 46 4F 00 00 00 00 00 00 00 00 01 00 00 00 07 00 00 00 00 00 00 00 ") +
      "03 00 00 00 02 6D 65 " +
      frame("4C 41 42 4C 00 00 00 00 00 00 00 00 02 00 00 00 08 00 00 00 00 00 00 00 ") +
      "04 00 00 00 01 61 01 62 " +
      frame("54 45 58 54 00 00 00 00 00 00 00 00 01 00 00 00 08 00 00 00 00 00 00 00 ") +
      "04 00 00 00 03 6F 6E 65 " +
      frame("53 59 4D 42 00 00 00 00 00 00 00 00 01 00 00 00 23 00 00 00 00 00 00 00 ") +
      "1F 00 00 00 01 70 01 07 00 00 00 01 74 01 02 00 00 00 "
      "60 00 00 00 00 00 00 00 4A 00 00 00 00 00 00 00 00");
}

Content exampleContent() {
  return {{"a", "b"},
          {"one"},
          {{"p", kParameter, 1, 7, "t", {record({1}, {1}), record({2}, {2.5})}, 0, {}, ""}}};
}

TEST(Golden, theExampleOfTheDescriptionIsWrittenByteForByte) {
  const TempFolder folder;
  PeerFile file;
  ASSERT_EQ(file.openWrite(folder.file("x"), "me"), 0);
  writeContent(file, exampleContent());
  ASSERT_EQ(file.close(), 0);
  EXPECT_EQ(readFile(folder.file("x")), exampleOfTheDescription());
}

TEST(Golden, theExampleOfTheDescriptionIsRead) {
  const TempFolder folder;
  writeFile(folder.file("x"), exampleOfTheDescription());
  PeerFile file;
  ASSERT_EQ(file.openRead(folder.file("x")), 0);
  EXPECT_TRUE(readContent(file) == exampleContent());
}

// Forms that the library would not choose for these records, but has to read: one plane a byte,
// special values, a dictionary, plain doubles.
TEST(Golden, everyFormOfAColumnIsRead) {
  // Three records of a variable over labels 1 to 3: keys 1, 2, 3 by a plain plane of growth.
  const std::string body =
      "01 00 00 00 00 00 00 00 01 01 01 01 "
      // Level: constant 1.0.
      "00 00 00 00 00 00 00 00 F0 3F "
      // Marginal: decimal, order 0, width 1, base -1, numbers 0, 1, 2, by 10^1: -0.1, 0, 0.1.
      "00 01 01 00 01 FF FF FF FF FF FF FF FF 01 00 01 02 "
      // Lower: dictionary of 2.0 and 0.5, places 1, 0, 1.
      "00 02 02 00 00 00 00 00 00 00 00 00 00 40 00 00 00 00 00 00 E0 3F 01 01 00 01 "
      // Upper: plus infinity by code, otherwise constant 0.
      "01 01 00 03 00 00 00 00 00 00 00 00 00 00 "
      // Scale: plain, all zero but the highest byte.
      "00 03 00 00 00 00 00 00 00 00 00 00 00 00 00 00 01 40 C0 40 ";
  const std::string bytes = bytesOf(
      "89 52 58 46 0D 0A 1A 0A 01 00 00 00 03 00 00 00 00 00 00 00 01 00 00 00 "
      "AD 01 00 00 00 00 00 00 EB 00 00 00 00 00 00 00 2D 00 00 00 00 00 00 00 "
      "32 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 63 00 00 00 00 00 00 00 "
      "00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 " +
      std::string(kChecksum) +
      frame("52 45 43 53 01 00 00 00 00 00 00 00 03 00 00 00 63 00 00 00 00 00 00 00 ") + body +
      frame("49 4E 46 4F 00 00 00 00 00 00 00 00 01 00 00 00 05 00 00 00 00 00 00 00 ") +
      "01 00 00 00 00 " +
      frame("4C 41 42 4C 00 00 00 00 00 00 00 00 03 00 00 00 0A 00 00 00 00 00 00 00 ") +
      "06 00 00 00 01 61 01 62 01 63 " +
      frame("53 59 4D 42 00 00 00 00 00 00 00 00 01 00 00 00 3B 00 00 00 00 00 00 00 ") +
      "37 00 00 00 03 76 61 72 02 00 00 00 00 00 01 03 00 00 00 "
      "60 00 00 00 00 00 00 00 8B 00 00 00 00 00 00 00 02 "
      // One domain name of 22 letters.
      "16 61 61 61 61 61 61 61 61 61 61 61 61 61 61 61 61 61 61 61 61 61 61");
  const TempFolder folder;
  writeFile(folder.file("x"), bytes);
  PeerFile file;
  ASSERT_EQ(file.openRead(folder.file("x")), 0) << file.errorText(file.takeLastError());
  const Content content = readContent(file);
  ASSERT_EQ(content.symbols.size(), 1U);
  EXPECT_EQ(content.symbols[0].domain, std::vector<std::string>{std::string(22, 'a')});
  const double infinity = std::bit_cast<double>(0x7FF0000000000000U);
  const std::vector<Record> expected = {record({1}, {1, -0.1, 0.5, 0, 2}),
                                        record({2}, {1, 0, 2, infinity, -2}),
                                        record({3}, {1, 0.1, 0.5, 0, 2})};
  EXPECT_EQ(content.symbols[0].records, expected);
}

}  // namespace
}  // namespace rxftest
