#include "tests/formats/arrow_batches.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <utility>

namespace formatstest {

namespace {

bool isNull(const ArrowArray& array, std::int64_t row) {
  const auto* marks = static_cast<const std::uint8_t*>(array.buffers[0]);
  return marks != nullptr && (marks[row / 8] >> (row % 8) & 1) == 0;
}

std::string textAt(const ArrowArray& array, std::int64_t row) {
  const auto* offsets = static_cast<const std::int32_t*>(array.buffers[1]);
  const auto* chars = static_cast<const char*>(array.buffers[2]);
  return {chars + offsets[row], chars + offsets[row + 1]};
}

template <class T>
std::vector<char> bytesOf(const std::vector<T>& values) {
  std::vector<char> bytes(values.size() * sizeof(T));
  if (!values.empty()) std::memcpy(bytes.data(), values.data(), bytes.size());
  return bytes;
}

template <class Offset>
Column offsetTexts(std::string name, const char* format, const std::vector<std::string>& texts) {
  std::vector<Offset> offsets{0};
  std::string chars;
  for (const std::string& text : texts) {
    chars += text;
    offsets.push_back(static_cast<Offset>(chars.size()));
  }
  return {std::move(name),
          format,
          static_cast<std::int64_t>(texts.size()),
          {},
          {bytesOf(offsets), {chars.begin(), chars.end()}},
          nullptr};
}

template <class T>
Column plain(std::string name, std::string format, const std::vector<T>& values) {
  return {std::move(name),
          std::move(format),
          static_cast<std::int64_t>(values.size()),
          {},
          {bytesOf(values)},
          nullptr};
}

std::vector<char> bitsOf(const std::vector<bool>& values) {
  std::vector<char> bits((values.size() + 7) / 8);
  for (std::size_t i = 0; i < values.size(); ++i) {
    if (values[i]) bits[i / 8] = static_cast<char>(bits[i / 8] | 1 << (i % 8));
  }
  return bits;
}

// ---- structures with what they own --------------------------------------------------------------

struct SchemaParts {
  std::string format;
  std::string name;
  std::vector<ArrowSchema> children;
  std::vector<ArrowSchema*> pointers;
  ArrowSchema dictionary{};
};

struct ArrayParts {
  std::vector<std::vector<char>> memory;
  std::vector<const void*> buffers;
  std::vector<ArrowArray> children;
  std::vector<ArrowArray*> pointers;
  ArrowArray dictionary{};
};

template <class Structure, class Parts>
void release(Structure* structure) {
  auto* parts = static_cast<Parts*>(structure->private_data);
  for (Structure& child : parts->children) {
    if (child.release != nullptr) child.release(&child);
  }
  if (parts->dictionary.release != nullptr) parts->dictionary.release(&parts->dictionary);
  delete parts;
  structure->release = nullptr;
}

ArrowSchema schemaOf(const Column& column) {
  auto* parts = new SchemaParts{column.format, column.name, {}, {}, {}};
  ArrowSchema schema{};
  if (column.entries) {
    parts->dictionary = schemaOf(*column.entries);
    schema.dictionary = &parts->dictionary;
  }
  if (column.format == "+l") {
    parts->children.push_back(schemaOf(Column::whole("item", {})));
    parts->pointers = {parts->children.data()};
    schema.n_children = 1;
    schema.children = parts->pointers.data();
  }
  schema.format = parts->format.c_str();
  schema.name = parts->name.c_str();
  schema.release = release<ArrowSchema, SchemaParts>;
  schema.private_data = parts;
  return schema;
}

ArrowArray arrayOf(const Column& column) {
  auto* parts = new ArrayParts;
  parts->memory = column.buffers;
  std::vector<bool> there = column.nulls;
  there.flip();
  ArrowArray array{};
  parts->memory.push_back(bitsOf(there));
  parts->buffers.push_back(column.nulls.empty() ? nullptr : parts->memory.back().data());
  for (std::size_t i = 0; i < column.buffers.size(); ++i) {
    parts->buffers.push_back(parts->memory[i].data());
  }
  if (column.entries) {
    parts->dictionary = arrayOf(*column.entries);
    array.dictionary = &parts->dictionary;
  }
  array.length = column.length;
  array.null_count = column.nulls.empty() ? 0 : -1;
  array.n_buffers = static_cast<std::int64_t>(parts->buffers.size());
  array.buffers = parts->buffers.data();
  array.release = release<ArrowArray, ArrayParts>;
  array.private_data = parts;
  return array;
}

}  // namespace

// ---- reading ------------------------------------------------------------------------------------

Batches::Batches(ArrowArrayStream stream) : stream_(stream) {
  EXPECT_EQ(stream_.get_schema(&stream_, &schema_), 0);
  EXPECT_STREQ(schema_.format, "+s");
  while (true) {
    ArrowArray batch{};
    EXPECT_EQ(stream_.get_next(&stream_, &batch), 0) << stream_.get_last_error(&stream_);
    if (batch.release == nullptr) break;
    EXPECT_EQ(batch.n_children, schema_.n_children);
    batches_.push_back(batch);
  }
}

Batches::~Batches() {
  // Batches stay when their stream has gone, and a child that is taken out when its batch has.
  stream_.release(&stream_);
  schema_.release(&schema_);
  for (ArrowArray& batch : batches_) {
    if (batch.release == nullptr) continue;
    ArrowArray last = *batch.children[batch.n_children - 1];
    batch.children[batch.n_children - 1]->release = nullptr;
    batch.release(&batch);
    EXPECT_EQ(batch.release, nullptr);
    last.release(&last);
  }
}

std::vector<std::string> Batches::names() const {
  std::vector<std::string> names;
  for (std::int64_t i = 0; i < schema_.n_children; ++i)
    names.emplace_back(schema_.children[i]->name);
  return names;
}

std::vector<std::string> Batches::formats() const {
  std::vector<std::string> formats;
  for (std::int64_t i = 0; i < schema_.n_children; ++i) {
    const ArrowSchema& child = *schema_.children[i];
    formats.push_back(child.format + (child.dictionary == nullptr
                                          ? ""
                                          : std::string(":") + child.dictionary->format));
  }
  return formats;
}

std::vector<std::int64_t> Batches::lengths() const {
  std::vector<std::int64_t> lengths;
  for (const ArrowArray& batch : batches_) lengths.push_back(batch.length);
  return lengths;
}

std::vector<std::string> Batches::labels(std::size_t column) const {
  std::vector<std::string> labels;
  for (const ArrowArray& batch : batches_) {
    const ArrowArray& child = *batch.children[column];
    for (std::int64_t row = 0; row < child.length; ++row) {
      labels.push_back(
          child.dictionary == nullptr
              ? textAt(child, row)
              : textAt(*child.dictionary, static_cast<const std::int32_t*>(child.buffers[1])[row]));
    }
  }
  return labels;
}

std::vector<double> Batches::numbers(std::size_t column) const {
  std::vector<double> numbers;
  for (const ArrowArray& batch : batches_) {
    const ArrowArray& child = *batch.children[column];
    const auto* values = static_cast<const double*>(child.buffers[1]);
    numbers.insert(numbers.end(), values, values + child.length);
  }
  return numbers;
}

std::vector<bool> Batches::nulls(std::size_t column) const {
  std::vector<bool> nulls;
  for (const ArrowArray& batch : batches_) {
    const ArrowArray& child = *batch.children[column];
    std::int64_t count = 0;
    for (std::int64_t row = 0; row < child.length; ++row) {
      nulls.push_back(isNull(child, row));
      count += nulls.back() ? 1 : 0;
    }
    EXPECT_EQ(child.null_count, count);
  }
  return nulls;
}

std::vector<std::int64_t> Batches::dictionarySizes(std::size_t column) const {
  std::vector<std::int64_t> sizes;
  for (const ArrowArray& batch : batches_) {
    sizes.push_back(batch.children[column]->dictionary->length);
  }
  return sizes;
}

std::vector<const double*> Batches::addresses(std::size_t column) const {
  std::vector<const double*> addresses;
  for (const ArrowArray& batch : batches_) {
    addresses.push_back(static_cast<const double*>(batch.children[column]->buffers[1]));
  }
  return addresses;
}

ArrowArrayStream Batches::handedOn() {
  ArrowArrayStream stream{};
  stream.get_schema = [](ArrowArrayStream* self, ArrowSchema* out) {
    *out = static_cast<Batches*>(self->private_data)->schema_;
    out->release = [](ArrowSchema* schema) { schema->release = nullptr; };
    return 0;
  };
  stream.get_next = [](ArrowArrayStream* self, ArrowArray* out) {
    Batches& batches = *static_cast<Batches*>(self->private_data);
    *out = batches.handed_ == batches.batches_.size()
               ? ArrowArray{}
               : std::exchange(batches.batches_[batches.handed_++], ArrowArray{});
    return 0;
  };
  stream.release = [](ArrowArrayStream* self) { self->release = nullptr; };
  stream.private_data = this;
  return stream;
}

// ---- making -------------------------------------------------------------------------------------

Column Column::texts(std::string name, const std::vector<std::string>& texts, Nulls nulls) {
  Column column = offsetTexts<std::int32_t>(std::move(name), "u", texts);
  column.nulls = std::move(nulls);
  return column;
}

Column Column::largeTexts(std::string name, const std::vector<std::string>& texts) {
  return offsetTexts<std::int64_t>(std::move(name), "U", texts);
}

Column Column::textViews(std::string name, const std::vector<std::string>& texts) {
  constexpr std::size_t inside = 12;
  std::vector<char> views;
  std::vector<char> chars;
  for (const std::string& text : texts) {
    std::vector<char> view(16);
    const auto length = static_cast<std::int32_t>(text.size());
    std::memcpy(view.data(), &length, 4);
    std::memcpy(view.data() + 4, text.data(), std::min(text.size(), inside));
    if (text.size() > inside) {
      const std::array<std::int32_t, 2> place{0, static_cast<std::int32_t>(chars.size())};
      std::memcpy(view.data() + 8, place.data(), 8);
      chars.insert(chars.end(), text.begin(), text.end());
    }
    views.insert(views.end(), view.begin(), view.end());
  }
  const std::vector<std::int64_t> lengths{static_cast<std::int64_t>(chars.size())};
  return {std::move(name),
          "vu",
          static_cast<std::int64_t>(texts.size()),
          {},
          {views, chars, bytesOf(lengths)},
          nullptr};
}

Column Column::dictionary(std::string name, const std::vector<std::string>& texts,
                          const std::vector<int>& places) {
  std::vector<std::int8_t> small(places.begin(), places.end());
  Column column = plain(std::move(name), "c", small);
  column.entries = std::make_shared<Column>(Column::texts("", texts));
  return column;
}

Column Column::doubles(std::string name, const std::vector<double>& values, Nulls nulls) {
  Column column = plain(std::move(name), "g", values);
  column.nulls = std::move(nulls);
  return column;
}

Column Column::floats(std::string name, const std::vector<float>& values) {
  return plain(std::move(name), "f", values);
}

Column Column::halves(std::string name, const std::vector<std::uint16_t>& bits) {
  return plain(std::move(name), "e", bits);
}

Column Column::whole(std::string name, const std::vector<std::int64_t>& values) {
  return plain(std::move(name), "l", values);
}

Column Column::days(std::string name, const std::vector<std::int32_t>& days) {
  return plain(std::move(name), "tdD", days);
}

Column Column::times(std::string name, std::string format, const std::vector<std::int64_t>& units) {
  return plain(std::move(name), std::move(format), units);
}

Column Column::truths(std::string name, const std::vector<bool>& values) {
  return {std::move(name),  "b",    static_cast<std::int64_t>(values.size()), {},
          {bitsOf(values)}, nullptr};
}

Column Column::lists(std::string name, const std::vector<std::int32_t>& lengths) {
  return plain(std::move(name), "+l", lengths);
}

Column Column::decimals(std::string name, std::string format,
                        const std::vector<std::vector<std::uint64_t>>& values) {
  std::vector<std::uint64_t> words;
  for (const auto& value : values) words.insert(words.end(), value.begin(), value.end());
  Column column = plain(std::move(name), std::move(format), words);
  column.length = static_cast<std::int64_t>(values.size());
  return column;
}

struct HandMade::State {
  std::vector<std::vector<Column>> batches{1};
  std::size_t next = 0;
  std::int64_t first = 0;
  std::int64_t count = -1;
  std::uint8_t marks = 0xFF;  // of the first eight rows
  std::int64_t nullCount = 0;
  std::string failure;
};

HandMade::HandMade() : state_(std::make_shared<State>()) {
  stream_.private_data = new std::shared_ptr<State>(state_);
  stream_.get_schema = [](ArrowArrayStream* self, ArrowSchema* out) {
    const State& state = **static_cast<std::shared_ptr<State>*>(self->private_data);
    auto* parts = new SchemaParts{"+s", "", {}, {}, {}};
    for (const Column& column : state.batches.front()) parts->children.push_back(schemaOf(column));
    for (ArrowSchema& child : parts->children) parts->pointers.push_back(&child);
    *out = {};
    out->format = parts->format.c_str();
    out->name = parts->name.c_str();
    out->n_children = static_cast<std::int64_t>(parts->pointers.size());
    out->children = parts->pointers.data();
    out->release = release<ArrowSchema, SchemaParts>;
    out->private_data = parts;
    return 0;
  };
  stream_.get_next = [](ArrowArrayStream* self, ArrowArray* out) {
    State& state = **static_cast<std::shared_ptr<State>*>(self->private_data);
    *out = {};
    if (state.next == state.batches.size()) return state.failure.empty() ? 0 : EIO;
    const std::vector<Column>& columns = state.batches[state.next];
    auto* parts = new ArrayParts;
    for (const Column& column : columns) parts->children.push_back(arrayOf(column));
    for (ArrowArray& child : parts->children) parts->pointers.push_back(&child);
    parts->buffers = {nullptr};
    const bool sliced = state.next++ == 0 && state.count >= 0;
    out->length = sliced ? state.count : columns.empty() ? 0 : columns.front().length;
    out->offset = sliced ? state.first : 0;
    if (state.marks != 0xFF) parts->buffers = {&state.marks};
    out->null_count = state.nullCount;
    out->n_buffers = 1;
    out->buffers = parts->buffers.data();
    out->n_children = static_cast<std::int64_t>(parts->pointers.size());
    out->children = parts->pointers.data();
    out->release = release<ArrowArray, ArrayParts>;
    out->private_data = parts;
    return 0;
  };
  stream_.get_last_error = [](ArrowArrayStream* self) {
    return (**static_cast<std::shared_ptr<State>*>(self->private_data)).failure.c_str();
  };
  stream_.release = [](ArrowArrayStream* self) {
    delete static_cast<std::shared_ptr<State>*>(self->private_data);
    self->release = nullptr;
  };
}

HandMade::~HandMade() {
  if (stream_.release != nullptr) stream_.release(&stream_);
}

HandMade& HandMade::add(Column column) {
  state_->batches.front().push_back(std::move(column));
  return *this;
}

void HandMade::slice(std::int64_t first, std::int64_t count) {
  state_->first = first;
  state_->count = count;
}

void HandMade::nullRow(std::size_t row, std::int64_t count) {
  state_->marks = static_cast<std::uint8_t>(~(1U << row));
  state_->nullCount = count;
}

void HandMade::addBatch(std::vector<Column> columns) {
  state_->batches.push_back(std::move(columns));
}

void HandMade::failAfterBatches(std::string text) {
  state_->failure = std::move(text);
}

ArrowArrayStream* HandMade::stream() {
  return &stream_;
}

}  // namespace formatstest
