// What is written comes back: every kind of symbol, every dimension, odd labels and texts, and the
// bits of every value.
#include <gtest/gtest.h>

#include <array>
#include <bit>
#include <cstdint>
#include <limits>
#include <string>
#include <vector>

#include "tests/support/database.h"
#include "tests/support/temp_folder.h"
#include "tests/support/text_buffer.h"

namespace ztbtest {
namespace {

class RoundTrip : public testing::Test {
 protected:
  std::string write(const Database& db) {
    const std::string file = folder.file(numbered("file", ++count) + ".rxf");
    EXPECT_EQ(1, lib().c__ztbwriterxf(db, file.c_str(), 0)) << db.lastError();
    return file;
  }

  static std::vector<std::uint64_t> slots(const Database& db, void* record, size_t slotCount) {
    std::array<double, 5> values{};
    std::array<int, 20> keys{};
    EXPECT_EQ(1, lib().c__ztbgetrecordraw(db, record, 20, keys.data(), values.data()));
    std::vector<std::uint64_t> result;
    for (size_t slot = 0; slot < slotCount; ++slot) {
      result.push_back(std::bit_cast<std::uint64_t>(values.at(slot)));
    }
    return result;
  }

  TempFolder folder;
  int count = 0;
};

TEST_F(RoundTrip, keepsSetsWithTheirTexts) {
  Database source;
  void* const set = source.addSet("i", 2);
  const auto put = [&](const char* one, const char* two, const char* text) {
    ASSERT_EQ(1, lib().c__ztbsetelemtext(source, source.put(set, {one, two}), text));
  };
  put("a", "b", "first");
  put("a", "c", "");
  put("b", "a", "first");
  put("c", "c", std::string(255, 'z').c_str());
  put("c", "a", "caf\xC3\xA9 \xFF");
  Database db(write(source));
  void* const read = db.find("i");
  EXPECT_EQ(source.rows(set), db.rows(read)) << "text numbers are the same";
  EXPECT_EQ("first", db.elementText(db.record(read, {"a", "b"})));
  EXPECT_EQ("", db.elementText(db.record(read, {"a", "c"})));
  EXPECT_EQ("first", db.elementText(db.record(read, {"b", "a"})));
  EXPECT_EQ(std::string(255, 'z'), db.elementText(db.record(read, {"c", "c"})));
  EXPECT_EQ("caf\xC3\xA9 \xFF", db.elementText(db.record(read, {"c", "a"})));
}

TEST_F(RoundTrip, keepsTextsThatNoRecordUses) {
  Database source;
  void* const set = source.addSet("i");
  const Record element = source.put(set, {"a"});
  lib().c__ztbsetelemtext(source, element, "unused");
  lib().c__ztbsetelemtext(source, element, "used");
  Database db(write(source));
  EXPECT_EQ(2.0, db.level(db.first(db.find("i"))));
  EXPECT_EQ("used", db.elementText(db.first(db.find("i"))));
  lib().c__ztbsetelemtext(db, db.put(db.find("i"), {"b"}), "UNUSED");
  EXPECT_EQ(1.0, db.level(db.record(db.find("i"), {"b"})));
}

TEST_F(RoundTrip, keepsOddLabels) {
  Database source;
  const Labels labels{"it's",        "6\" pipe", " leading",           "inner  blank",
                      "caf\xC3\xA9", "\xFF\x80", std::string(63, 'x'), "*",
                      "0",           "%s"};
  for (const std::string& label : labels) {
    source.uel(label.c_str());
  }
  const Database db(write(source));
  ASSERT_EQ(static_cast<int>(labels.size()), db.info(ZTB_INFO_UEL_COUNT));
  for (size_t i = 0; i < labels.size(); ++i) {
    TextBuffer label;
    ASSERT_EQ(1, lib().c__ztbgetuelbyindex(db, static_cast<int>(i) + 1, label));
    EXPECT_EQ(labels[i], label.str());
  }
}

TEST_F(RoundTrip, keepsTheEmptyLabel) {
  Database source;
  source.put(source.addParameter("p"), {""}, 1.0);
  Database db(write(source));
  EXPECT_EQ((std::vector<Row>{{{""}, 1.0}}), db.rows(db.find("p")));
}

TEST_F(RoundTrip, keepsTheBitsOfEveryValue) {
  const std::vector<std::uint64_t> patterns{
      0x0000000000000000, 0x8000000000000000, 0x3FF0000000000000, 0x3FB999999999999A,
      0x7E37E43C8800759C, 0x7FF8000000000000, 0x7FF0000000000000, 0xFFF0000000000000,
      0x0000000000000001, 0x8000000000000001, 0x000FFFFFFFFFFFFF, 0x7FEFFFFFFFFFFFFF,
      0x7FF8000000000001, 0xFFF8000000000000, 0x7E47E43C8800759C, 0x7E5DDD4BAA009303};
  Database source;
  void* const data = source.addParameter("p");
  void* const variable = source.addVariable("v");
  for (size_t i = 0; i < patterns.size(); ++i) {
    const std::string label = numbered("n", static_cast<int>(i));
    source.put(data, {label.c_str()}, std::bit_cast<double>(patterns[i]));
    const Record record = source.put(variable, {label.c_str()});
    lib().c__ztbsetscale(source, record, std::bit_cast<double>(patterns[i]));
  }
  Database db(write(source));
  for (size_t i = 0; i < patterns.size(); ++i) {
    const std::string label = numbered("n", static_cast<int>(i));
    EXPECT_EQ(patterns[i], slots(db, db.record(db.find("p"), {label.c_str()}), 1)[0]);
    EXPECT_EQ(patterns[i], slots(db, db.record(db.find("v"), {label.c_str()}), 5)[4]);
  }
}

TEST_F(RoundTrip, keepsEveryTypeAtEveryDimension) {
  Database source;
  const std::array<double, 5> values{1.5, -2.5, 3.5, 4.5, 5.5};
  for (int n = 1; n <= 20; ++n) {
    source.uel(numbered("u", n).c_str());
  }
  for (int type = ZTB_PARAMETER; type <= ZTB_EQUATION; ++type) {
    for (int dim = 0; dim <= 20; ++dim) {
      void* const symbol =
          source.add((numbered("s", type) + numbered("_", dim)).c_str(), dim, type);
      std::vector<int> keys;
      for (int d = 0; d < 20; ++d) {
        keys.push_back(d % 7 + 1);
      }
      ASSERT_EQ(1, lib().c__ztbmergerecordint(source, symbol, keys.data(), 1, 0, nullptr, 1,
                                              values.data()));
      keys[static_cast<size_t>(dim > 0 ? dim - 1 : 0)] = 20;
      ASSERT_EQ(1, lib().c__ztbmergerecordint(source, symbol, keys.data(), 1, 0, nullptr, 1,
                                              values.data()));
    }
  }
  Database db(write(source));
  for (int number = 0; number < source.info(ZTB_INFO_SYMBOL_COUNT); ++number) {
    void* written = nullptr;
    void* read = nullptr;
    ASSERT_EQ(1, lib().c__ztbgetsymbolbyindex(source, number, &written));
    ASSERT_EQ(1, lib().c__ztbgetsymbolbyindex(db, number, &read));
    EXPECT_EQ(source.rows(written), db.rows(read));
    const int type = db.symbolInfo(read, ZTB_SYMBOL_INFO_TYPE);
    const size_t slotCount = type == ZTB_PARAMETER ? 1 : 5;
    EXPECT_EQ(slots(source, source.last(written), slotCount), slots(db, db.last(read), slotCount));
  }
}

TEST_F(RoundTrip, keepsManyRecordsInOrder) {
  Database source;
  void* const data = source.addParameter("p", 2);
  constexpr int side = 150;
  for (int n = 1; n <= side; ++n) {
    source.uel(numbered("u", n).c_str());
  }
  std::array<double, 5> values{};
  for (int i = side; i >= 1; --i) {
    for (int j = 1; j <= side; ++j) {
      const std::array<int, 2> keys{i, j};
      values[0] = i * 1000 + j;
      ASSERT_EQ(1, lib().c__ztbmergerecordint(source, data, keys.data(), 0, 0, nullptr, 1,
                                              values.data()));
    }
  }
  Database db(write(source));
  const std::vector<Row> rows = db.rows(db.find("p"));
  ASSERT_EQ(static_cast<size_t>(side) * side, rows.size());
  EXPECT_EQ(source.rows(data), rows);
  EXPECT_EQ((Row{{"u1", "u1"}, 1001}), rows.front());
  EXPECT_EQ((Row{{"u150", "u150"}, 150150}), rows.back());
}

TEST_F(RoundTrip, ofARoundTripIsTheSame) {
  Database source;
  void* const set = source.addSet("i");
  source.put(set, {"a"});
  source.addAlias("j", set);
  source.put(source.addOver("p", ZTB_PARAMETER, {set}), {"a"}, 2.0);
  source.put(source.addEquation("e", 0, 3), {}, 1.0);
  Database first(write(source));
  Database second(write(first));
  EXPECT_EQ(4, second.info(ZTB_INFO_SYMBOL_COUNT_WITH_ALIAS));
  EXPECT_EQ(second.find("i"), second.find("j"));
  EXPECT_EQ(3, second.symbolInfo(second.find("e"), ZTB_SYMBOL_INFO_USER_INFO));
  EXPECT_EQ((std::vector<Row>{{{"a"}, 2.0}}), second.rows(second.find("p")));
  std::array<void*, 1> domains{};
  TextBuffers names;
  ASSERT_EQ(1, lib().c__ztbgetdomain(second, second.find("p"), 1, domains.data(), names));
  EXPECT_EQ(second.find("i"), domains[0]);
}

TEST_F(RoundTrip, anAliasedDomainIsCheckedThroughItsAlias) {
  Database source;
  void* const set = source.addSet("i");
  source.put(set, {"a"});
  void* const alias = source.addAlias("j", set);
  source.put(source.addOver("p", ZTB_PARAMETER, {alias}), {"a"}, 2.0);
  Database db(write(source));
  std::array<void*, 1> domains{};
  TextBuffers names;
  ASSERT_EQ(1, lib().c__ztbgetdomain(db, db.find("p"), 1, domains.data(), names));
  EXPECT_EQ(db.find("i"), domains[0]);
  EXPECT_EQ("j", names[0].str());
}

}  // namespace
}  // namespace ztbtest
