#include "core/string_hash_list.h"

#include <gtest/gtest.h>

#include <cstring>
#include <stdexcept>
#include <string>

namespace rxf::collections::strhash {
namespace {

class List : public TXStrHashList<int> {
 public:
  using TXStrHashList::compareEntries;
  using TXStrHashList::entryEqual;
  using TXStrHashList::hash;
  using TXStrHashList::TXStrHashList;

  int put(const std::string& key, int object = 0) { return store(key.c_str(), key.size(), object); }

  // Stores keys k0, k1, ... until the list has this many entries.
  void fill(int count) {
    while (size() < count) {
      put("k" + std::to_string(size()), size());
    }
  }
};

TEST(StringHashList, isEmptyAndWithoutTableAtFirst) {
  const List list;
  EXPECT_EQ(0, list.size());
  EXPECT_EQ(0, list.hashTableSize());
}

TEST(StringHashList, numbersEntriesInOrderOfFirstStore) {
  List list;
  EXPECT_EQ(0, list.put("wheat", 7));
  EXPECT_EQ(1, list.put("milk", 8));
  EXPECT_EQ(0, list.put("wheat", 9));
  EXPECT_EQ(2, list.size());
  EXPECT_STREQ("wheat", list.textByNumber(0));
  EXPECT_STREQ("milk", list.textByNumber(1));
  EXPECT_EQ(7, list.refByNumber(0));
  EXPECT_EQ(8, list.refByNumber(1));
}

TEST(StringHashList, keepsFirstSpellingAndFirstObject) {
  List list;
  EXPECT_EQ(0, list.put("Alpha", 1));
  EXPECT_EQ(0, list.put("ALPHA", 2));
  EXPECT_EQ(1, list.size());
  EXPECT_STREQ("Alpha", list.textByNumber(0));
  EXPECT_EQ(1, list.refByKey("aLPHa"));
}

TEST(StringHashList, comparesEntriesByTheirFirstDifferenceWithCaseFolded) {
  const List list;
  EXPECT_EQ(0, list.compareEntries("Milk", "mILK"));
  EXPECT_EQ('A' - 'C', list.compareEntries("ma", "MC"));
  EXPECT_EQ('C' - 'A', list.compareEntries("mcx", "may"));
  // As unsigned bytes, of which small letters alone are folded.
  EXPECT_EQ(0xE4 - 'Z', list.compareEntries("\xE4", "z"));
  EXPECT_EQ('[' - 'A', list.compareEntries("[", "a"));
}

TEST(StringHashList, comparesTheBeginningOfAnEntryByTheLengthThatItLacks) {
  const List list;
  EXPECT_EQ(-3, list.compareEntries("mi", "MILKY"));
  EXPECT_EQ(3, list.compareEntries("milky", "mi"));
  EXPECT_GT(0, list.compareEntries("", "a"));
  EXPECT_EQ(0, list.compareEntries("", ""));
}

TEST(StringHashList, copiesTheKey) {
  List list;
  char key[] = "milk";
  list.store(key, 4, 0);
  std::strcpy(key, "silk");
  EXPECT_STREQ("milk", list.textByNumber(0));
  EXPECT_EQ(-1, list.indexOf("silk"));
}

TEST(StringHashList, foldsLettersOnly) {
  List list;
  // Pairs that differ in the bit that tells small letters from capitals, and are no letters.
  const char* pairs[][2] = {{"[", "{"}, {"@", "`"}, {"^", "~"}, {"\\", "|"}, {"]", "}"}};
  for (const auto& pair : pairs) {
    EXPECT_NE(list.put(pair[0]), list.put(pair[1])) << pair[0];
  }
  EXPECT_EQ(10, list.size());
  EXPECT_EQ(list.put("az"), list.put("AZ"));
}

TEST(StringHashList, bytesAbove127AreNotFoldedAndAreFound) {
  List list;
  EXPECT_EQ(0, list.put("\xE4pfel"));
  EXPECT_EQ(1, list.put("\xC4pfel"));
  EXPECT_EQ(2, list.put("\x80"));
  EXPECT_EQ(3, list.put("\xFF"));
  EXPECT_EQ(0, list.indexOf("\xE4PFEL"));
  EXPECT_EQ(1, list.indexOf("\xC4Pfel"));
  EXPECT_EQ(2, list.indexOf("\x80"));
  EXPECT_EQ(3, list.indexOf("\xFF"));
}

// Worked out outside with integers of any size: h = h * 211 + byte, bytes of 128 and above as
// negative numbers, small letters as capitals; the lowest 31 bits.
TEST(StringHashList, hashesAreThoseWorkedOutByHand) {
  EXPECT_EQ(0U, hashOf(""));
  EXPECT_EQ(65U, hashOf("a"));
  EXPECT_EQ(13781U, hashOf("ab"));
  EXPECT_EQ(706260478U, hashOf("alpha"));
  EXPECT_EQ(706260478U, hashOf("ALPHA"));
  EXPECT_EQ(2147483520U, hashOf("\x80"));
  EXPECT_EQ(2147483647U, hashOf("\xFF"));
  EXPECT_EQ(2147470685U, hashOf("\xC3\xA4"));
  EXPECT_EQ(2888023U, hashOf("a\xE4"
                             "b"));
}

TEST(StringHashList, hashSumsWrapAroundIn32Bits) {
  EXPECT_EQ(1841274512U, hashOf("Wheat flour (enriched)"));
  EXPECT_EQ(547980802U, hashOf(std::string(255, 'z').c_str()));
}

TEST(StringHashList, wrappingKeysAreStableBetweenStoreAndLookup) {
  List list;
  const std::string small(255, 'z');
  const std::string capital(255, 'Z');
  const std::string high(255, '\xFE');
  EXPECT_EQ(0, list.put(small));
  EXPECT_EQ(1, list.put(high));
  EXPECT_EQ(0, list.indexOf(capital.c_str()));
  EXPECT_EQ(1, list.indexOf(high.c_str()));
}

TEST(StringHashList, chainIsTheRemainderByTheTableSize) {
  List list;
  list.put("x");
  EXPECT_EQ(65U, list.hash("a"));
  EXPECT_EQ(820U, list.hash("ab"));
  EXPECT_EQ(633U, list.hash("alpha"));
  EXPECT_EQ(355U, list.hash("\x80"));
  EXPECT_EQ(954U, list.hash("Wheat flour (enriched)"));
  list.fill(1501);
  EXPECT_EQ(3808U, list.hash("ab"));
  EXPECT_EQ(2537U, list.hash("alpha"));
}

TEST(StringHashList, keysInOneChainAreToldApart) {
  List list;
  EXPECT_EQ(0, list.put("eb"));
  EXPECT_EQ(1, list.put("agf"));
  EXPECT_EQ(list.hash("eb"), list.hash("agf"));
  EXPECT_EQ(list.hash("eb"), list.hash("faa"));
  EXPECT_EQ(-1, list.indexOf("faa"));
  EXPECT_EQ(2, list.put("faa"));
  EXPECT_EQ(0, list.indexOf("eb"));
  EXPECT_EQ(1, list.indexOf("agf"));
}

TEST(StringHashList, prefixesAndTheEmptyKeyAreKeysOfTheirOwn) {
  List list;
  EXPECT_EQ(0, list.put("ab"));
  EXPECT_EQ(-1, list.indexOf("a"));
  EXPECT_EQ(-1, list.indexOf("abc"));
  EXPECT_FALSE(list.contains(""));
  EXPECT_EQ(1, list.put(""));
  EXPECT_EQ(1, list.indexOf(""));
  EXPECT_STREQ("", list.textByNumber(1));
}

TEST(StringHashList, nullKeysEqualEachOtherAndNothingElse) {
  const List list;
  EXPECT_TRUE(list.entryEqual(nullptr, nullptr));
  EXPECT_FALSE(list.entryEqual(nullptr, ""));
  EXPECT_FALSE(list.entryEqual("", nullptr));
}

TEST(StringHashList, firstStoreBuilds997Heads) {
  List list;
  list.put("a");
  EXPECT_EQ(997, list.hashTableSize());
}

TEST(StringHashList, lookupInAnEmptyListBuilds997Heads) {
  List list;
  EXPECT_EQ(-1, list.indexOf("a"));
  EXPECT_EQ(997, list.hashTableSize());
  EXPECT_EQ(0, list.put("a"));
  EXPECT_EQ(997, list.hashTableSize());
}

TEST(StringHashList, storeAfter1500EntriesRebuildsAt9973AndLookupAloneDoesNot) {
  List list;
  list.fill(1500);
  EXPECT_EQ(997, list.hashTableSize());
  EXPECT_TRUE(list.contains("k1499"));
  EXPECT_EQ(-1, list.indexOf("absent"));
  EXPECT_EQ(750, list.refByKey("K750"));
  EXPECT_EQ(997, list.hashTableSize());
  EXPECT_EQ(1500, list.put("one more"));
  EXPECT_EQ(9973, list.hashTableSize());
}

TEST(StringHashList, storeOfAPresentKeyRebuildsToo) {
  List list;
  list.fill(1500);
  EXPECT_EQ(12, list.put("k12"));
  EXPECT_EQ(9973, list.hashTableSize());
  EXPECT_EQ(1500, list.size());
}

TEST(StringHashList, everyStepOfTheTableKeepsNumbers) {
  List list;
  list.fill(15'000);
  EXPECT_EQ(9973, list.hashTableSize());
  list.fill(15'001);
  EXPECT_EQ(99'991, list.hashTableSize());
  list.fill(150'000);
  EXPECT_EQ(99'991, list.hashTableSize());
  list.fill(150'001);
  EXPECT_EQ(999'979, list.hashTableSize());
  for (int i = 0; i < 150'001; i += 997) {
    const std::string key = "K" + std::to_string(i);
    EXPECT_EQ(i, list.indexOf(key.c_str()));
    EXPECT_EQ(i, list.refByNumber(i));
  }
}

TEST(StringHashList, steps) {
  EXPECT_EQ(9'999'991, tableSizes[4].hashTableSize);
  EXPECT_EQ(1'500'000, tableSizes[4].fromCount);
  EXPECT_EQ(15'000'000, tableSizes[4].reHashCount);
  EXPECT_EQ(99'999'989, tableSizes[5].hashTableSize);
  EXPECT_EQ(15'000'000, tableSizes[5].fromCount);
  EXPECT_EQ(2'147'483'647, tableSizes[5].reHashCount);
}

TEST(StringHashList, oneBasedNumbersAreHandedOutAndTaken) {
  List list(true);
  EXPECT_EQ(1, list.put("a", 10));
  EXPECT_EQ(2, list.put("b", 20));
  EXPECT_EQ(1, list.put("A", 30));
  EXPECT_EQ(2, list.indexOf("b"));
  EXPECT_EQ(-1, list.indexOf("c"));
  EXPECT_STREQ("a", list.textByNumber(1));
  EXPECT_EQ(20, list.refByNumber(2));
  EXPECT_EQ(2, list.size());
}

TEST(StringHashList, objectsCanBeWrittenThroughBothReferences) {
  List list;
  list.put("a", 1);
  list.refByNumber(0) = 2;
  EXPECT_EQ(2, list.refByKey("a"));
  list.refByKey("A") = 3;
  EXPECT_EQ(3, list.refByNumber(0));
}

TEST(StringHashList, referenceByAnAbsentKeyThrows) {
  List list;
  list.put("a");
  EXPECT_THROW(list.refByKey("b"), std::logic_error);
  EXPECT_EQ(1, list.size());
}

}  // namespace
}  // namespace rxf::collections::strhash
