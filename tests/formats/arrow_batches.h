// Arrow streams as tests read and make them: by the words of the interface's own description, with
// nothing of the code under test.
#ifndef ZTB_TESTS_FORMATS_ARROW_BATCHES_H_
#define ZTB_TESTS_FORMATS_ARROW_BATCHES_H_

#include <ztb/arrow.h>

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace formatstest {

// All batches of a stream, which is released when this goes.
class Batches {
 public:
  explicit Batches(ArrowArrayStream stream);
  Batches(const Batches&) = delete;
  Batches& operator=(const Batches&) = delete;
  ~Batches();

  [[nodiscard]] std::vector<std::string> names() const;
  // Format strings, "i:u" for a dictionary.
  [[nodiscard]] std::vector<std::string> formats() const;
  [[nodiscard]] std::vector<std::int64_t> lengths() const;
  // Texts of a column, looked up in its dictionary where it has one.
  [[nodiscard]] std::vector<std::string> labels(std::size_t column) const;
  [[nodiscard]] std::vector<double> numbers(std::size_t column) const;
  [[nodiscard]] std::vector<bool> nulls(std::size_t column) const;
  // For each batch.
  [[nodiscard]] std::vector<std::int64_t> dictionarySizes(std::size_t column) const;
  [[nodiscard]] std::vector<const double*> addresses(std::size_t column) const;

  // The batches as a stream, whose reader they belong to then. Ends before this.
  ArrowArrayStream handedOn();

 private:
  ArrowArrayStream stream_;
  ArrowSchema schema_{};
  std::vector<ArrowArray> batches_;
  std::size_t handed_ = 0;
};

// A column that was made by hand. Bytes of its buffers are written as the interface wants them.
struct Column {
  using Nulls = std::vector<bool>;
  static Column texts(std::string name, const std::vector<std::string>& texts, Nulls nulls = {});
  static Column largeTexts(std::string name, const std::vector<std::string>& texts);
  static Column textViews(std::string name, const std::vector<std::string>& texts);
  static Column dictionary(std::string name, const std::vector<std::string>& texts,
                           const std::vector<int>& places);
  static Column doubles(std::string name, const std::vector<double>& values, Nulls nulls = {});
  static Column floats(std::string name, const std::vector<float>& values);
  static Column halves(std::string name, const std::vector<std::uint16_t>& bits);
  static Column whole(std::string name, const std::vector<std::int64_t>& values);
  static Column days(std::string name, const std::vector<std::int32_t>& days);
  static Column times(std::string name, std::string format, const std::vector<std::int64_t>& units);
  static Column truths(std::string name, const std::vector<bool>& values);
  static Column lists(std::string name, const std::vector<std::int32_t>& lengths);
  // Of 64 bits for each word of a value, the least ones first.
  static Column decimals(std::string name, std::string format,
                         const std::vector<std::vector<std::uint64_t>>& values);

  std::string name;
  std::string format;
  std::int64_t length = 0;
  Nulls nulls;
  // Behind that of nulls.
  std::vector<std::vector<char>> buffers;
  std::shared_ptr<Column> entries;
};

// A stream of such columns, a batch of them or more.
class HandMade {
 public:
  HandMade();
  HandMade(const HandMade&) = delete;
  HandMade& operator=(const HandMade&) = delete;
  ~HandMade();

  // A column of the first batch.
  HandMade& add(Column column);
  // Of the first batch, only these rows.
  void slice(std::int64_t first, std::int64_t count);
  // Marks a row of the first batch, before slicing, as null, of which it tells so many; -1 for not
  // counted.
  void nullRow(std::size_t row, std::int64_t count);
  // Another batch, with the columns of the first.
  void addBatch(std::vector<Column> columns);
  // The stream then fails with this text where it would end.
  void failAfterBatches(std::string text);

  ArrowArrayStream* stream();

 private:
  struct State;
  std::shared_ptr<State> state_;
  ArrowArrayStream stream_{};
};

}  // namespace formatstest

#endif  // ZTB_TESTS_FORMATS_ARROW_BATCHES_H_
