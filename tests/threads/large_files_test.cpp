// Large symbols read by threads at the same time, each with one of the exchange-file library's
// that decodes ahead. The thread sanitizer watches in a build of its own.
#include <gtest/gtest.h>

#include <array>
#include <memory>
#include <string>
#include <vector>
#include <ztb/rxf.hpp>
#include <ztb/ztb.hpp>

#include "tests/support/environment_setting.h"
#include "tests/support/temp_folder.h"
#include "tests/threads/together.h"

namespace threadtest {
namespace {

constexpr int kSide = 1000;
constexpr int kLarge = 6 * ZTB_RXF_BLOCK_RECORDS + 5;
constexpr ztb::Store kEach[] = {ztb::Store::map, ztb::Store::vector, ztb::Store::trie};

double largeLevel(int i) {
  return i * 0.5 - i % 11;
}

class LargeFiles : public testing::TestWithParam<int> {
 protected:
  static void SetUpTestSuite() {
    folder_ = std::make_unique<ztbtest::TempFolder>();
    std::array<std::vector<int>, 2> keys;
    std::vector<double> values;
    for (int i = 0; i < kLarge; ++i) {
      keys[0].push_back(1 + i / kSide);
      keys[1].push_back(1 + i % kSide);
      values.push_back(largeLevel(i));
    }
    ztb::RxfOutput output(folder_->file("large.rxf"));
    for (int i = 1; i <= kSide; ++i) output.addLabel("l" + std::to_string(i));
    ztbRxfSymbolInfo p{};
    p.name = "p";
    p.text = "";
    p.type = ZTB_PARAMETER;
    p.dimension = 2;
    output.addSymbol(p, {});
    output.addRecords(kLarge, {keys[0].data(), keys[1].data()}, {values.data()});
    output.publish();
  }
  static void TearDownTestSuite() { folder_.reset(); }

  // As on any machine with processors enough; asked for when a symbol is read.
  const ztbtest::EnvironmentSetting helped_{"ZTB_RXF_THREADS", "2"};

  static inline std::unique_ptr<ztbtest::TempFolder> folder_;
};

TEST_P(LargeFiles, areLoadedByThreadsTogether) {
  together(GetParam(), [&](int thread) {
    ztb::Database database;
    database.selectStore(kEach[thread % 3]);
    ASSERT_EQ(1, c__ztbinitfromrxf(database.handle(), folder_->file("large.rxf").c_str()));
    const ztb::Symbol p = database.symbol("p");
    int at = 0;
    for (const ztb::Record& record : p.records()) ASSERT_EQ(largeLevel(at++), record.level());
    ASSERT_EQ(kLarge, at);
  });
}

// Some blocks, once again from the first, and then left in the middle.
TEST_P(LargeFiles, areLookedThroughAndLeftByThreadsTogether) {
  together(GetParam(), [&](int thread) {
    const ztb::RxfFile file(folder_->file("large.rxf"));
    for (int most = 1; most <= 8; ++most) {
      ztb::RxfRecords records(file, file.symbol("p"));
      for (const int blocks : {(most + thread) % 8, most}) {
        records.rewind();
        int at = 0;
        for (int block = 0; block < blocks && records.next(); ++block) {
          for (std::size_t i = 0; i < records.size(); i += 97) {
            ASSERT_EQ(largeLevel(at + static_cast<int>(i)), records.values(0)[i]);
          }
          at += static_cast<int>(records.size());
        }
      }
    }
  });
}

INSTANTIATE_TEST_SUITE_P(Two, LargeFiles, testing::Values(2));
INSTANTIATE_TEST_SUITE_P(Six, LargeFiles, testing::Values(6));

}  // namespace
}  // namespace threadtest
