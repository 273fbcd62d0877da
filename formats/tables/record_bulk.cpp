// The way of big tables into a database: read by columns, stored where nothing is to be told of
// them.

#include <algorithm>
#include <array>
#include <bit>
#include <filesystem>
#include <limits>
#include <memory>
#include <optional>
#include <span>
#include <system_error>
#include <thread>
#include <utility>

#include "formats/file_name.h"
#include "formats/tables/csv_bulk.h"
#include "formats/tables/processors.h"
#include "formats/tables/record_import.h"

namespace formats {

// Where the keys and values of a target stand in the pieces of a file.
struct BulkColumns {
  const ImportTarget& target;
  std::vector<std::size_t> keys;
  std::vector<std::size_t> values;
};

namespace {

// The place of a column among some, which it joins if it is not there.
std::size_t placeAmong(std::size_t column, std::vector<std::size_t>& columns) {
  const auto found = std::ranges::find(columns, column);
  if (found == columns.end()) {
    columns.push_back(column);
    return columns.size() - 1;
  }
  return static_cast<std::size_t>(found - columns.begin());
}

struct OrderEntry {
  std::uint64_t key;
  std::uint32_t row;
};

// Whether the keys of all rows ascend.
bool ascends(const BulkRows& bulk, const std::vector<std::size_t>& columns) {
  std::vector<int> last;
  std::vector<int> keys(columns.size());
  for (std::size_t number = 0; number < bulk.pieceCount(); ++number) {
    const BulkRows::Piece& piece = bulk.piece(number);
    for (std::size_t row = 0; row < piece.rows; ++row) {
      for (std::size_t key = 0; key < keys.size(); ++key) {
        keys[key] = piece.labels[columns[key]][row];
      }
      if (last >= keys) return false;
      last = keys;
    }
  }
  return true;
}

// Sorts both halves at once.
void sortEntries(std::vector<OrderEntry>& entries) {
  const auto less = [](const OrderEntry& left, const OrderEntry& right) {
    return left.key != right.key ? left.key < right.key : left.row < right.row;
  };
  const auto middle = entries.begin() + static_cast<std::ptrdiff_t>(entries.size() / 2);
  {
    const std::jthread other([&] { std::sort(entries.begin(), middle, less); });
    std::sort(middle, entries.end(), less);
  }
  std::inplace_merge(entries.begin(), middle, entries.end(), less);
}

// The columns of a CSV file that is worth it; null where it is read row by row.
std::unique_ptr<BulkRows> columnsOfCsv(const PartedFile& file, CsvBulkForm form,
                                       tool::Progress& progress) {
  std::error_code error;
  if (std::filesystem::file_size(tool::pathOf(file.path), error) < 2 * form.chunkBytes || error)
    return nullptr;
  form.separator = file.separator;
  form.threads = processors();
  auto bulk = std::make_unique<CsvBulk>();
  return bulk->read(file.path, form, progress) ? std::move(bulk) : nullptr;
}

}  // namespace

bool RecordImport::readBulk(TableReader& reader, const std::vector<ImportTarget>& targets) {
  if (std::ranges::any_of(targets, [](const ImportTarget& target) {
        return target.textColumn.has_value() || target.keyColumns.empty();
      })) {
    return false;
  }
  BulkColumnPlaces wanted;
  std::vector<BulkColumns> columns;
  for (const ImportTarget& target : targets) {
    BulkColumns& places =
        columns.emplace_back(BulkColumns{.target = target, .keys = {}, .values = {}});
    for (const std::size_t column : target.keyColumns) {
      places.keys.push_back(placeAmong(column, wanted.labels));
    }
    for (const std::size_t column : target.valueColumns) {
      places.values.push_back(placeAmong(column, wanted.numbers));
    }
  }
  const std::optional<PartedFile> file = reader.partedFile();
  const std::unique_ptr<BulkRows> read = file ? columnsOfCsv(*file,
                                                             {.decimal = decimal_,
                                                              .columnCount = columns_->size(),
                                                              .columns = wanted,
                                                              .chunkBytes = chunkBytes_},
                                                             progress_)
                                              : reader.columns(wanted, progress_);
  if (read == nullptr) return false;
  BulkRows& bulk = *read;
  // What is numbered now has the same numbers when rows are read one by one.
  bulk.numberLabels([this](const std::string& label) { return database_.mergeLabel(label); });
  std::vector<std::vector<std::uint32_t>> orders(columns.size());
  for (std::size_t target = 0; target < columns.size(); ++target) {
    if (!orderBulk(bulk, columns[target], orders[target])) return false;
    if (checkDomains_ && !insideDomains(bulk, columns[target])) return false;
  }
  for (std::size_t target = 0; target < columns.size(); ++target) {
    storeBulk(bulk, columns[target], orders[target]);
  }
  return true;
}

bool RecordImport::orderBulk(const BulkRows& bulk, const BulkColumns& columns,
                             std::vector<std::uint32_t>& order) const {
  const auto bits = static_cast<unsigned>(
      std::bit_width(static_cast<unsigned>(std::max(database_.labelCount(), 1))));
  // Keys that no word holds are not sorted here.
  if (bits * columns.keys.size() > 64) return ascends(bulk, columns.keys);
  // Calls use with the key of each row until it gives false.
  const auto eachKey = [&](auto use) {
    for (std::size_t number = 0; number < bulk.pieceCount(); ++number) {
      const BulkRows::Piece& piece = bulk.piece(number);
      for (std::size_t row = 0; row < piece.rows; ++row) {
        std::uint64_t key = 0;
        for (const std::size_t column : columns.keys) {
          key = key << bits | static_cast<std::uint64_t>(piece.labels[column][row]);
        }
        if (!use(key)) return false;
      }
    }
    return true;
  };
  // No label has the number 0, so that every key is above it.
  if (eachKey([last = std::uint64_t{0}](std::uint64_t key) mutable {
        return std::exchange(last, key) < key;
      })) {
    return true;
  }
  std::size_t rows = 0;
  for (std::size_t number = 0; number < bulk.pieceCount(); ++number) {
    rows += bulk.piece(number).rows;
  }
  if (rows > std::numeric_limits<std::uint32_t>::max()) return false;
  std::vector<OrderEntry> entries;
  entries.reserve(rows);
  eachKey([&entries](std::uint64_t key) {
    entries.push_back({.key = key, .row = static_cast<std::uint32_t>(entries.size())});
    return true;
  });
  sortEntries(entries);
  const auto isTwice = [](const OrderEntry& left, const OrderEntry& right) {
    return left.key == right.key;
  };
  if (columns.target.distinct) {
    entries.erase(std::unique(entries.begin(), entries.end(), isTwice), entries.end());
  } else if (std::ranges::adjacent_find(entries, isTwice) != entries.end()) {
    return false;
  }
  order.reserve(entries.size());
  for (const OrderEntry& entry : entries) order.push_back(entry.row);
  return true;
}

bool RecordImport::insideDomains(const BulkRows& bulk, const BulkColumns& columns) {
  const std::vector<ztb::Domain> domains = columns.target.symbol.domains();
  for (std::size_t position = 0; position < domains.size(); ++position) {
    const Member* member = memberOf(domains[position]);
    if (member == nullptr) continue;
    for (std::size_t number = 0; number < bulk.pieceCount(); ++number) {
      for (const int label : bulk.piece(number).labels[columns.keys[position]]) {
        const auto at = static_cast<std::size_t>(label);
        if (at >= member->labels.size() || !member->labels[at]) return false;
      }
    }
  }
  if (columns.target.symbol.type() == ztb::Type::set && domains.size() == 1) {
    std::vector<bool>& labels = members_[columns.target.symbol.handle()].labels;
    labels.resize(static_cast<std::size_t>(database_.labelCount()) + 1);
    for (std::size_t number = 0; number < bulk.pieceCount(); ++number) {
      for (const int label : bulk.piece(number).labels[columns.keys.front()]) {
        labels[static_cast<std::size_t>(label)] = true;
      }
    }
  }
  return true;
}

void RecordImport::storeBulk(const BulkRows& bulk, const BulkColumns& columns,
                             const std::vector<std::uint32_t>& order) {
  const ImportTarget& target = columns.target;
  ztb::Symbol symbol = target.symbol;
  progress_.step("storing " + symbol.name().str());
  // The first row of each piece, to find that of a record.
  std::vector<std::size_t> begins;
  std::size_t rows = 0;
  for (std::size_t number = 0; number < bulk.pieceCount(); ++number) {
    begins.push_back(rows);
    rows += bulk.piece(number).rows;
  }
  progress_.expect(order.empty() ? rows : order.size());
  std::size_t stored = 0;
  const bool isSet = symbol.type() == ztb::Type::set;
  std::array<int, ZTB_MAX_DIMENSION> keys{};
  std::array<double, ztb::fieldCount> values = target.defaults;
  const auto put = [&](const BulkRows::Piece& piece, std::size_t row) {
    for (std::size_t position = 0; position < columns.keys.size(); ++position) {
      keys[position] = piece.labels[columns.keys[position]][row];
    }
    for (std::size_t value = 0; value < columns.values.size(); ++value) {
      values[target.valueFields[value]] = piece.numbers[columns.values[value]][row];
    }
    const std::span<const int> record(keys.data(), columns.keys.size());
    if (isSet) {
      symbol.putElementUnchecked(record, static_cast<const char*>(nullptr));
    } else {
      symbol.putUnchecked(record, values);
    }
    ++recordCount_;
    progress_.count(++stored);
  };
  if (order.empty()) {
    for (std::size_t number = 0; number < bulk.pieceCount(); ++number) {
      const BulkRows::Piece& piece = bulk.piece(number);
      for (std::size_t row = 0; row < piece.rows; ++row) put(piece, row);
    }
    return;
  }
  for (const std::uint32_t row : order) {
    const auto number =
        static_cast<std::size_t>(std::ranges::upper_bound(begins, row) - begins.begin()) - 1;
    put(bulk.piece(number), row - begins[number]);
  }
}

}  // namespace formats
