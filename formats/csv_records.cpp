#include "formats/csv_records.h"

#include <atomic>
#include <condition_variable>
#include <exception>
#include <mutex>
#include <span>
#include <string>
#include <string_view>
#include <thread>
#include <utility>
#include <vector>
#include <ztb/rxf.hpp>

#include "formats/tables/processors.h"
#include "tools/text/failure.h"

namespace formats {

namespace {

// From here on threads are worth their beginning.
constexpr std::size_t leastRecords = 65536;

// The most labels that are made into fields before the first record is; more are made as they come.
constexpr int mostFields = 1 << 20;

// Labels as fields of a record, quoted where they have to be.
class LabelFields {
 public:
  LabelFields(const tool::ExchangeFile& file, CsvForm form) : file_(file) {
    if (file.labelCount() > mostFields) return;
    CsvText text(form);
    ends_.push_back(0);
    for (int number = 1; number <= file.labelCount(); ++number) {
      text.label(file.label(number));
      // A row ends behind each, so that no separator stands between them.
      text.endRow();
      ends_.push_back(text.chars().size());
    }
    chars_ = text.chars();
  }

  void add(int number, CsvText& text) const {
    if (ends_.empty()) return text.label(file_.label(number));
    const auto at = static_cast<std::size_t>(number);
    text.field(std::string_view(chars_).substr(ends_[at - 1], ends_[at] - ends_[at - 1] - 1));
  }

 private:
  const tool::ExchangeFile& file_;
  std::string chars_;
  std::vector<std::size_t> ends_;
};

struct BlockColumns {
  std::size_t rows = 0;
  std::vector<std::vector<int>> keys;
  std::vector<std::vector<double>> values;
};

class BlockWriting {
 public:
  BlockWriting(CsvWriter& writer, const tool::ExchangeFile& file, const tool::FileSymbol& symbol,
               tool::Progress& progress)
      : writer_(writer),
        file_(file),
        records_(file.file(), file.file().symbol(symbol.number)),
        isSet_(symbol.type == ztb::Type::set),
        labels_(file, writer.rows().form()),
        progress_(progress) {}

  // What each thread does.
  void run() {
    try {
      BlockColumns block;
      CsvText text(writer_.rows().form());
      for (std::size_t number = 0; take(block, number);) {
        put(block, text);
        if (!write(number, text, block.rows)) return;
      }
    } catch (...) {
      fail(std::current_exception());
    }
  }

  [[nodiscard]] std::size_t finish() const {
    if (error_) std::rethrow_exception(error_);
    return rows_;
  }

 private:
  // False behind the last block, or when a thread has failed.
  bool take(BlockColumns& block, std::size_t& number) {
    const std::lock_guard lock(reading_);
    if (failed_) return false;
    try {
      if (!records_.next()) return false;
    } catch (const ztb::Error& error) {
      throw tool::failureOf(file_.path(), error);
    }
    number = taken_++;
    block.rows = records_.size();
    block.keys.resize(static_cast<std::size_t>(records_.dimension()));
    for (std::size_t position = 0; position < block.keys.size(); ++position) {
      const std::span<const int> keys = records_.keys(static_cast<int>(position));
      block.keys[position].assign(keys.begin(), keys.end());
    }
    block.values.resize(static_cast<std::size_t>(records_.valueCount()));
    for (std::size_t slot = 0; slot < block.values.size(); ++slot) {
      const std::span<const double> values = records_.values(static_cast<int>(slot));
      block.values[slot].assign(values.begin(), values.end());
    }
    return true;
  }

  void put(const BlockColumns& block, CsvText& text) const {
    text.clear();
    for (std::size_t row = 0; row < block.rows; ++row) {
      for (const std::vector<int>& keys : block.keys) labels_.add(keys[row], text);
      for (const std::vector<double>& values : block.values) {
        if (isSet_) {
          text.text(file_.file().text(static_cast<int>(values[row])));
        } else {
          text.number(values[row]);
        }
      }
      text.endRow();
    }
  }

  bool write(std::size_t number, const CsvText& text, std::size_t rows) {
    {
      std::unique_lock lock(writing_);
      turn_.wait(lock, [&] { return failed_ || written_ == number; });
      if (failed_) return false;
      writer_.addRows(text.chars());
      ++written_;
      rows_ += rows;
      progress_.count(rows_);
    }
    turn_.notify_all();
    return true;
  }

  void fail(std::exception_ptr error) {
    {
      const std::lock_guard lock(writing_);
      if (!failed_) error_ = std::move(error);
      failed_ = true;
    }
    turn_.notify_all();
  }

  CsvWriter& writer_;
  const tool::ExchangeFile& file_;
  ztb::RxfRecords records_;
  bool isSet_;
  LabelFields labels_;
  tool::Progress& progress_;
  std::mutex reading_;
  std::size_t taken_ = 0;
  std::mutex writing_;
  std::condition_variable turn_;
  std::size_t written_ = 0;
  std::size_t rows_ = 0;
  std::exception_ptr error_;
  std::atomic<bool> failed_{false};
};

}  // namespace

bool writesInBlocks(const CsvWriter& writer, const tool::FileSymbol& symbol) {
  return symbol.recordCount >= leastRecords && !writer.rows().spellsOut();
}

std::size_t writeCsvRecords(CsvWriter& writer, const tool::ExchangeFile& file,
                            const tool::FileSymbol& symbol, tool::Progress& progress) {
  progress.expect(symbol.recordCount);
  BlockWriting writing(writer, file, symbol, progress);
  {
    std::vector<std::jthread> helpers;
    const unsigned threads = processors();
    for (unsigned thread = 1; thread < threads; ++thread) {
      helpers.emplace_back([&writing] { writing.run(); });
    }
    writing.run();
  }
  return writing.finish();
}

}  // namespace formats
