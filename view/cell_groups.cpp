#include "view/cell_groups.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <filesystem>
#include <system_error>

#include "formats/sets/groups.h"
#include "formats/sets/key_packing.h"
#include "tools/text/words.h"

namespace view {

namespace {

using formats::Statistic;

Statistic statisticOf(const RecordScan& scan, const Parameters& parameters) {
  struct Known {
    std::string_view word;
    Statistic statistic;
  };
  static constexpr std::array<Known, 5> all{{{"sum", Statistic::sum},
                                             {"mean", Statistic::mean},
                                             {"count", Statistic::count},
                                             {"min", Statistic::min},
                                             {"max", Statistic::max}}};
  const bool isSet = scan.symbol().type == ztb::Type::set;
  const std::string word = parameters.text("how", isSet ? "count" : "sum");
  const auto* const found = std::ranges::find(all, word, &Known::word);
  if (found == all.end()) {
    throw RequestError(
        400, fmt::format("how: {} is none of sum, mean, count, min and max", tool::inQuotes(word)));
  }
  return found->statistic;
}

std::string temporaryFolder() {
  std::error_code error;
  const std::filesystem::path folder = std::filesystem::temp_directory_path(error);
  return error ? "/tmp" : folder.string();
}

}  // namespace

void visitCells(RecordScan& scan, const Parameters& parameters,
                const std::vector<std::size_t>& positions,
                const std::function<void(std::span<const int> labels, double value)>& visit) {
  const Statistic statistic = statisticOf(scan, parameters);
  const int slot = statistic == Statistic::count ? 0 : scan.slot(parameters);
  const formats::KeyPacking packing(positions.size(), scan.file().exchange().labelCount());
  const std::size_t words = std::max<std::size_t>(packing.words(), 1);
  formats::Groups groups(words, temporaryFolder(), mostCells + ZTB_RXF_BLOCK_RECORDS + 1);
  std::vector<std::uint64_t> key(words);
  std::vector<std::span<const int>> columns(positions.size());
  while (scan.next()) {
    for (std::size_t at = 0; at < positions.size(); ++at) {
      columns[at] = scan.block().keys(static_cast<int>(positions[at]));
    }
    const std::span<const double> values = scan.block().values(slot);
    for (std::size_t record = 0; record < values.size(); ++record) {
      if (scan.chosen()[record] == 0) continue;
      std::ranges::fill(key, 0U);
      for (std::size_t at = 0; at < positions.size(); ++at) {
        packing.put(key.data(), at, columns[at][record]);
      }
      groups.add(key.data(), values[record]);
    }
    if (groups.held() > mostCells) {
      throw RequestError(413, fmt::format("These positions have more than {} combinations of "
                                          "labels: filter the records or take fewer positions.",
                                          mostCells));
    }
  }
  std::vector<int> labels(positions.size());
  groups.walk([&](const std::uint64_t* packed, const formats::Amount& amount) {
    for (std::size_t at = 0; at < positions.size(); ++at) labels[at] = packing.label(packed, at);
    visit(labels, amount.result(statistic));
  });
}

}  // namespace view
