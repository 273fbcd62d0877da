// 10^5 random operations on each store through the wrapper, beside a plain dictionary: each gives
// what it gives there, or throws where the store is stated to and leaves everything as it was.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <functional>
#include <iterator>
#include <memory>
#include <optional>
#include <random>
#include <utility>

#include "tests/support/stdout_capture.h"
#include "tests/support/temp_folder.h"
#include "tests/wrapper/dictionary.h"

namespace wrappertest {
namespace {

// A tenth where every operation takes ten times as long.
const int operations = std::getenv("ZTB_SHORT_SERIES") ? 10'000 : 100'000;
constexpr int labelsInUse = 9;

class Player {
 public:
  Player(ztb::Store store, const Shape& shape, unsigned seed)
      : store_(store), shape_(shape), random_(seed), database_(std::make_unique<ztb::Database>()) {
    database_->selectStore(store);
    symbol_ = addSymbol(*database_, shape);
  }

  // One operation, with all checks. False once something differed.
  bool play(int step) {
    using Operation = void (Player::*)();
    static constexpr std::array<std::pair<int, Operation>, 16> chances = {{
        {18, &Player::make},
        {14, &Player::put},
        {10, &Player::change},
        {10, &Player::find},
        {10, &Player::remove},
        {5, &Player::eraseByHandle},
        {2, &Player::eraseOnTheWay},
        {2, &Player::removeChosen},
        {6, &Player::walkBack},
        {6, &Player::slice},
        {8, &Player::refuseLabel},
        {6, &Player::hold},
        {6, &Player::useHeld},
        {4, &Player::addNewLabel},
        {1, &Player::clear},
        {2, &Player::copyHandle},
    }};
    int chance = pick(100);
    for (const auto& [weight, operation] : chances) {
      chance -= weight;
      if (chance < 0) {
        (this->*operation)();
        break;
      }
    }
    if (step % 1000 == 999) {
      writeAndOpen();
    }
    EXPECT_EQ(symbol_->recordCount(), static_cast<int>(entries_.size()));
    EXPECT_EQ(database_->labelCount(), static_cast<int>(labels_.size()));
    if (std::exchange(refused_, false) || step % 5 == 0) {
      EXPECT_EQ(read(*symbol_), entries_);
    }
    return !testing::Test::HasFailure();
  }

 private:
  using Labels = std::vector<std::string>;

  int pick(int count) { return static_cast<int>(random_() % static_cast<unsigned>(count)); }
  [[nodiscard]] bool onMap() const { return store_ == ztb::Store::map; }

  Labels anyLabels() {
    Labels labels;
    for (int position = 0; position < shape_.dimension; ++position) {
      labels.push_back("l" + std::to_string(pick(labelsInUse)));
    }
    return labels;
  }
  // The number of each label, those that are not there numbered on from the last one.
  Key keyOf(const Labels& labels, Labels& all) {
    Key key;
    for (const std::string& label : labels) {
      const auto place = std::find(all.begin(), all.end(), label);
      key.push_back(static_cast<int>(place - all.begin()) + 1);
      if (place == all.end()) {
        all.push_back(label);
      }
    }
    return key;
  }
  Key keyOf(const Labels& labels) {
    Labels all = labels_;
    return keyOf(labels, all);
  }
  [[nodiscard]] Labels labelsOf(const Key& key) const {
    Labels labels;
    for (const int number : key) {
      labels.push_back(labels_[static_cast<std::size_t>(number) - 1]);
    }
    return labels;
  }
  Entries::iterator anyEntry() {
    return std::next(entries_.begin(), pick(static_cast<int>(entries_.size())));
  }
  double anyValue() {
    static constexpr std::array values = {0.0,      -0.5,      1e300,
                                          HUGE_VAL, -HUGE_VAL, 4.9406564584124654e-324};
    const int place = pick(12);
    return place < 6 ? values[static_cast<std::size_t>(place)] : pick(1000) / 4.0;
  }

  // Whether the store is stated to refuse a key that is not there.
  [[nodiscard]] bool outOfOrder(const Key& key) const {
    return store_ == ztb::Store::vector && !entries_.empty() && !entries_.contains(key) &&
           key < entries_.rbegin()->first;
  }
  // What `call` throws, or "" if it does not.
  std::string failure(const std::function<void()>& call) {
    try {
      call();
    } catch (const ztb::Error& error) {
      refused_ = true;
      return error.what();
    }
    return "";
  }
  void expectRefusedOrder(const std::function<void()>& call) {
    EXPECT_TRUE(failure(call).starts_with("records reach this store in ascending order; (\""));
  }
  // Handles on records of the vector and the trie end with any removal.
  void noteRemoval() { ++removals_; }

  void make() { makeWith(anyLabels()); }
  void addNewLabel() {
    Labels labels = anyLabels();
    if (labels.empty() || labels_.size() > 60) {
      return;
    }
    labels[static_cast<std::size_t>(pick(shape_.dimension))] = "n" + std::to_string(labels_.size());
    makeWith(labels);
  }
  void makeWith(const Labels& labels) {
    Labels all = labels_;
    const Key key = keyOf(labels, all);
    const auto pointers = pointersTo(labels);
    const bool adds = pick(2) == 0;
    if (outOfOrder(key)) {
      expectRefusedOrder(
          [&] { adds ? symbol_->add(ztb::Keys(pointers)) : symbol_->merge(ztb::Keys(pointers)); });
      return;
    }
    if (adds && entries_.contains(key)) {
      EXPECT_TRUE(failure([&] {
                    symbol_->add(ztb::Keys(pointers));
                  }).ends_with("exists already for symbol p"));
      return;
    }
    const auto [place, isNew] = entries_.try_emplace(key, defaults(shape_));
    labels_ = all;
    ztb::Record record =
        adds ? symbol_->add(ztb::Keys(pointers)) : symbol_->merge(ztb::Keys(pointers));
    EXPECT_EQ(read(record, *symbol_), *place);
    if (pick(2) == 0) {
      write(record, place->second);
    }
  }

  // Writes one field or the text through a handle.
  void write(ztb::Record& record, Entry& entry) {
    if (shape_.type == ztb::Type::set) {
      entry.text = pick(3) == 0 ? "" : "text " + std::to_string(pick(5));
      record.setText(entry.text);
      return;
    }
    const double value = anyValue();
    const int field = shape_.type == ztb::Type::parameter ? 0 : pick(5);
    entry.values[static_cast<std::size_t>(field)] = value;
    switch (field) {
      case 0:
        return record.setLevel(value);
      case 1:
        return record.setMarginal(value);
      case 2:
        return record.setLower(value);
      case 3:
        return record.setUpper(value);
      default:
        return record.setScale(value);
    }
  }

  void put() {
    if (shape_.dimension > 0 && labels_.empty()) {
      return;
    }
    Key key;
    for (int position = 0; position < shape_.dimension; ++position) {
      key.push_back(pick(static_cast<int>(labels_.size())) + 1);
    }
    const auto present = entries_.find(key);
    Entry entry = present == entries_.end() ? defaults(shape_) : present->second;
    std::function<void()> call;
    if (shape_.type == ztb::Type::set) {
      const bool withText = pick(2) == 0;
      const std::string text = pick(3) == 0 ? "" : "text " + std::to_string(pick(5));
      entry.text = withText ? text : entry.text;
      call = [=, this] { symbol_->putElement(key, withText ? text.c_str() : nullptr); };
    } else if (shape_.type == ztb::Type::parameter) {
      entry.values[0] = anyValue();
      const bool checked = pick(2) == 0;
      call = [=, this] {
        checked ? symbol_->put(key, entry.values[0]) : symbol_->putUnchecked(key, entry.values[0]);
      };
    } else {
      std::ranges::generate(entry.values, [&] { return anyValue(); });
      call = [=, this] { symbol_->put(key, entry.values); };
    }
    if (outOfOrder(key)) {
      expectRefusedOrder(call);
      return;
    }
    call();
    entries_[key] = entry;
  }

  void change() {
    if (entries_.empty()) {
      return;
    }
    const auto place = anyEntry();
    auto record = symbol_->find(ztb::Keys(pointersTo(labelsOf(place->first))));
    ASSERT_TRUE(record);
    write(*record, place->second);
  }

  void find() {
    const Labels labels = anyLabels();
    const auto place = entries_.find(keyOf(labels));
    const auto record = symbol_->find(ztb::Keys(pointersTo(labels)));
    ASSERT_EQ(record.has_value(), place != entries_.end());
    if (record) {
      EXPECT_EQ(read(*record, *symbol_), *place);
    }
  }

  void remove() {
    const Labels labels =
        pick(3) == 0 || entries_.empty() ? anyLabels() : labelsOf(anyEntry()->first);
    const bool there = entries_.erase(keyOf(labels)) > 0;
    EXPECT_EQ(symbol_->remove(ztb::Keys(pointersTo(labels))), there);
    if (there) {
      noteRemoval();
      held_.reset();
    }
  }

  // Removes a record by a handle, which then stands on the record behind it.
  void eraseByHandle() {
    if (entries_.empty()) {
      return;
    }
    const auto place = anyEntry();
    const auto record = symbol_->find(ztb::Keys(pointersTo(labelsOf(place->first))));
    ASSERT_TRUE(record);
    erase(const_cast<ztb::Record&>(*record), place);
  }
  Entries::iterator erase(ztb::Record& record, Entries::iterator place) {
    if (held_ && held_->second == place->first) {
      held_.reset();
    }
    place = entries_.erase(place);
    record.erase();
    noteRemoval();
    if (place == entries_.end()) {
      EXPECT_NE(failure([&] { static_cast<void>(record.level()); }), "");
      EXPECT_FALSE(record.hasNext());
      EXPECT_FALSE(record.moveNext());
      EXPECT_EQ(record.hasPrevious(), !entries_.empty());
      if (pick(2) == 0) {
        EXPECT_EQ(record.movePrevious(), !entries_.empty());
        if (!entries_.empty()) {
          EXPECT_EQ(read(record, *symbol_), *entries_.rbegin());
        }
      }
    } else {
      EXPECT_EQ(read(record, *symbol_), *place);
    }
    return place;
  }

  // One handle walks over all records and removes some of them.
  void eraseOnTheWay() {
    if (entries_.empty()) {
      return;
    }
    auto record = symbol_->find(ztb::Keys(pointersTo(labelsOf(entries_.begin()->first))));
    ASSERT_TRUE(record);
    for (auto place = entries_.begin(); place != entries_.end();) {
      ASSERT_EQ(read(*record, *symbol_), *place);
      if (pick(3) == 0) {
        place = erase(*record, place);
      } else {
        ++place;
        EXPECT_EQ(record->moveNext(), place != entries_.end());
      }
    }
  }

  void removeChosen() {
    const int divisor = 2 + pick(4);
    const auto chosen = [=](const Key& key) {
      int sum = 0;
      for (const int number : key) {
        sum += number;
      }
      return sum % divisor == 1;
    };
    const std::size_t removed = symbol_->removeIf(
        [&](const ztb::Row& row) { return chosen(Key(row.keys.begin(), row.keys.end())); });
    EXPECT_EQ(removed, std::erase_if(entries_, [&](const auto& one) { return chosen(one.first); }));
    if (removed > 0) {
      noteRemoval();
      held_.reset();
    }
  }

  void walkBack() {
    const Labels last = entries_.empty() ? anyLabels() : labelsOf(entries_.rbegin()->first);
    EXPECT_EQ(readBackward(*symbol_, last), entries_);
  }

  void slice() {
    Labels labels = anyLabels();
    for (std::string& label : labels) {
      label = pick(2) == 0 ? ztb::anyLabel : label;
    }
    Entries expected = entries_;
    std::erase_if(expected, [&](const auto& one) {
      const Labels present = labelsOf(one.first);
      return !std::ranges::equal(labels, present,
                                 [](const std::string& wanted, const std::string& label) {
                                   return wanted == ztb::anyLabel || wanted == label;
                                 });
    });
    EXPECT_EQ(readSlice(*symbol_, labels), expected);
  }

  // A label that is refused stands among others that may be new.
  void refuseLabel() {
    Labels labels = anyLabels();
    if (labels.empty()) {
      return;
    }
    static const std::array<std::string, 6> refused = {" ",    "   ", "",
                                                       "a\tb", "'\"", std::string(64, 'x')};
    const auto bad = static_cast<std::size_t>(pick(6));
    const auto place = static_cast<std::size_t>(pick(shape_.dimension));
    labels[place] = refused[bad];
    labels[(place + 1) % labels.size()] = labels.size() > 1 ? "never there" : refused[bad];
    const auto pointers = pointersTo(labels);
    EXPECT_NE(failure([&] { symbol_->merge(ztb::Keys(pointers)); }), "");
    EXPECT_NE(failure([&] { symbol_->add(ztb::Keys(pointers)); }), "");
    if (!refused[bad].empty()) {
      EXPECT_NE(failure([&] { database_->mergeLabel(refused[bad]); }), "");
    }
    if (bad < 3) {
      EXPECT_FALSE(symbol_->find(ztb::Keys(pointers)));
      EXPECT_FALSE(symbol_->remove(ztb::Keys(pointers)));
      EXPECT_FALSE(database_->findLabel(refused[bad]));
    }
  }

  void hold() {
    if (!entries_.empty()) {
      const Key key = anyEntry()->first;
      held_.emplace(*symbol_->find(ztb::Keys(pointersTo(labelsOf(key)))), key);
      removalsWhenHeld_ = removals_;
    }
  }
  void useHeld() {
    if (!held_) {
      return;
    }
    auto& [held, key] = *held_;
    // A lambda takes no structured binding everywhere.
    ztb::Record& record = held;
    if (!onMap() && removals_ != removalsWhenHeld_) {
      EXPECT_TRUE(failure([&] {
                    static_cast<void>(record.level());
                  }).ends_with("were removed since this handle was made; find its record again"));
      EXPECT_NE(failure([&] { record.moveNext(); }), "");
      EXPECT_NE(failure([&] { record.erase(); }), "");
      held_.reset();
      return;
    }
    const auto place = entries_.find(key);
    EXPECT_EQ(read(record, *symbol_), *place);
    write(record, place->second);
    EXPECT_EQ(record.hasNext(), std::next(place) != entries_.end());
    EXPECT_EQ(record.hasPrevious(), place != entries_.begin());
  }

  void clear() {
    symbol_->clear();
    entries_.clear();
    noteRemoval();
    held_.reset();
  }

  void copyHandle() {
    if (entries_.empty()) {
      return;
    }
    const auto place = anyEntry();
    const auto record = symbol_->find(ztb::Keys(pointersTo(labelsOf(place->first))));
    database_->selectStore(static_cast<ztb::Store>(pick(3)));
    const ztb::Store chosen = database_->store();
    const ztb::Record copy = record->copy();
    EXPECT_EQ(database_->store(), chosen);
    database_->selectStore(store_);
    EXPECT_TRUE(copy.sameAs(*record));
    EXPECT_EQ(read(copy, *symbol_), *place);
  }

  void writeAndOpen() {
    const std::string path = folder_.file("p.rxf");
    database_->write(path);
    held_.reset();
    symbol_.reset();
    auto opened = std::make_unique<ztb::Database>();
    opened->selectStore(store_);
    opened->openFile(path);
    database_ = std::move(opened);
    symbol_ = database_->symbol("p");
    EXPECT_EQ(symbol_->store(), store_);
  }

  ztb::Store store_;
  Shape shape_;
  std::mt19937 random_;
  ztbtest::TempFolder folder_;
  std::unique_ptr<ztb::Database> database_;
  std::optional<ztb::Symbol> symbol_;
  Entries entries_;
  Labels labels_;
  std::optional<std::pair<ztb::Record, Key>> held_;
  bool refused_ = false;
  int removals_ = 0;
  int removalsWhenHeld_ = 0;
};

void playOn(ztb::Store store) {
  static constexpr std::array shapes = {
      Shape{0, ztb::Type::parameter}, Shape{0, ztb::Type::variable}, Shape{1, ztb::Type::set},
      Shape{1, ztb::Type::parameter}, Shape{1, ztb::Type::equation}, Shape{2, ztb::Type::set},
      Shape{2, ztb::Type::parameter}, Shape{2, ztb::Type::variable}, Shape{3, ztb::Type::set},
      Shape{3, ztb::Type::parameter}};
  ztbtest::StdoutCapture output;
  for (const Shape& shape : shapes) {
    Player player(store, shape,
                  static_cast<unsigned>(shape.dimension) * 10 + static_cast<unsigned>(shape.type));
    for (int step = 0; step < operations / static_cast<int>(shapes.size()); ++step) {
      ASSERT_TRUE(player.play(step)) << "step " << step << ", dimension " << shape.dimension
                                     << ", type " << static_cast<int>(shape.type);
    }
  }
  EXPECT_EQ(output.text(), "");
}

TEST(WrapperProperties, TheMapIsADictionary) {
  playOn(ztb::Store::map);
}
TEST(WrapperProperties, TheVectorIsADictionaryForAscendingKeys) {
  playOn(ztb::Store::vector);
}
TEST(WrapperProperties, TheTrieIsADictionary) {
  playOn(ztb::Store::trie);
}

}  // namespace
}  // namespace wrappertest
