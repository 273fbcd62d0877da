#include "bench/transfer_scene.h"

#include <algorithm>
#include <memory>
#include <utility>

namespace bench {
namespace {

// The labels of a position stand side by side: those up to the largest that the keys hold.
std::array<std::pair<int, int>, dimension> labelRanges(const Data& data) {
  std::array<std::pair<int, int>, dimension> ranges;
  ranges.fill({static_cast<int>(data.labels.size()), 0});
  for (const Key& key : data.keys) {
    for (std::size_t d = 0; d < dimension; ++d) {
      ranges[d] = {std::min(ranges[d].first, key[d]), std::max(ranges[d].second, key[d])};
    }
  }
  return ranges;
}

}  // namespace

TransferScene& transferScene(const Data& data) {
  static Shared<TransferScene> shared;
  return shared.get(data, [](const Data& wanted) {
    auto scene = std::make_unique<TransferScene>();
    Database& database = scene->database;
    database.addLabels(wanted);
    scene->ranks.resize(wanted.labels.size() + 1);
    const auto ranges = labelRanges(wanted);
    const std::array names = {"plants", "customers", "weeks"};
    for (std::size_t d = 0; d < dimension; ++d) {
      database.require(
          c__ztbaddsymbol(database.handle(), names[d], 1, ZTB_SET, 0, "", &scene->domains[d]));
      for (int label = ranges[d].first; label <= ranges[d].second; ++label) {
        database.require(c__ztbmergesetrecordint(database.handle(), scene->domains[d], &label, 0, 0,
                                                 nullptr, nullptr));
        scene->ranks[static_cast<std::size_t>(label)] = scene->sizes[d]++;
      }
    }
    database.require(c__ztbaddsymbolx(database.handle(), "supply", dimension, ZTB_PARAMETER, 0, "",
                                      scene->domains.data(), nullptr, &scene->symbol));
    database.addRecords(scene->symbol, wanted, 0, wanted.size());
    return scene;
  });
}

}  // namespace bench
