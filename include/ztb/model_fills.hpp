// Records for the sets and parameters that a MathProg model declares itself, out of a database or
// put together one by one.
//
//   ztb::DatabaseFills fills(ztb::Database::open("plan.rxf"));
//   ztb::Model model = ztb::Model::open("plan.mod", "", fills.all());
//   if (!fills.took("demand")) ...
#ifndef ZTB_MODEL_FILLS_HPP_
#define ZTB_MODEL_FILLS_HPP_

#include <ztb/model.h>

#include <algorithm>
#include <cstddef>
#include <limits>
#include <span>
#include <string>
#include <string_view>
#include <vector>
#include <ztb/case_folding.hpp>
#include <ztb/cpp20.hpp>
#include <ztb/ztb.hpp>

#ifdef ZTB_CPP20

namespace ztb::inline client {

class ModelFillList {
 public:
  // Begins a set or parameter, to which records are added until the next one begins.
  void begin(std::string_view name, bool isSet, int dimension) {
    entries_.push_back({std::string(name), isSet, dimension, 0, {}, {}});
    fills_.clear();
  }
  // Adds a record of as many labels as there are positions. They stay where they are as long as
  // this object is used. A set has no values.
  void add(std::span<const char* const> labels, double value = 0) {
    Entry& entry = entries_.back();
    entry.labels.insert(entry.labels.end(), labels.begin(), labels.end());
    if (!entry.isSet) entry.values.push_back(plain(value));
    ++entry.count;
  }

  // For Model::open, which marks those that the model takes.
  [[nodiscard]] std::span<ztbModelFill> all() {
    if (!fills_.empty()) return fills_;
    for (const Entry& entry : entries_) {
      fills_.push_back({entry.name.c_str(), entry.isSet ? 1 : 0, entry.dimension, entry.count,
                        entry.labels.data(), entry.isSet ? nullptr : entry.values.data(), 0});
    }
    return fills_;
  }
  // Whether the model took the symbol.
  [[nodiscard]] bool took(std::string_view symbol) const {
    return std::ranges::any_of(fills_, [&](const ztbModelFill& fill) {
      return fill.taken != 0 && sameFolded(fill.name, symbol);
    });
  }
  // The parameters that it did not take.
  [[nodiscard]] std::vector<std::string> parametersLeft() const {
    std::vector<std::string> names;
    for (const ztbModelFill& fill : fills_) {
      if (fill.isSet == 0 && fill.taken == 0) names.emplace_back(fill.name);
    }
    return names;
  }

 private:
  struct Entry {
    std::string name;
    bool isSet;
    int dimension;
    long long count;
    std::vector<const char*> labels;
    std::vector<double> values;
  };

  // The value as a number: one that is none becomes an infinity, which the model library refuses.
  static double plain(double value) {
    static const SpecialValues special = Database().specialValues();
    if (value == special[ZTB_EPSILON]) return 0;
    const bool isNone =
        std::ranges::any_of(special, [&](double spelled) { return value == spelled; });
    return isNone ? std::numeric_limits<double>::infinity() : value;
  }

  std::vector<Entry> entries_;
  std::vector<ztbModelFill> fills_;
};

// All sets and parameters of a database as it is now.
class DatabaseFills : public ModelFillList {
 public:
  explicit DatabaseFills(const Database& database) {
    texts_.resize(static_cast<std::size_t>(database.labelCount()) + 1);
    for (int number = 1; number <= database.labelCount(); ++number) {
      texts_[static_cast<std::size_t>(number)] = database.label(number).str();
    }
    for (const Symbol& symbol : database.symbols()) {
      if (symbol.type() == Type::set || symbol.type() == Type::parameter) take(symbol);
    }
  }

 private:
  void take(const Symbol& symbol) {
    const auto dimension = static_cast<std::size_t>(symbol.dimension());
    begin(symbol.name().view(), symbol.type() == Type::set, symbol.dimension());
    std::vector<const char*> labels(dimension);
    std::vector<int> keys(std::max<std::size_t>(1, dimension));
    std::vector<double> values(fieldCount);
    for (const Record& record : symbol.records()) {
      record.raw(keys.data(), values.data());
      for (std::size_t k = 0; k < dimension; ++k) {
        labels[k] = texts_[static_cast<std::size_t>(keys[k])].c_str();
      }
      add(labels, values[0]);
    }
  }

  std::vector<std::string> texts_;
};

}  // namespace ztb::inline client

#endif  // ZTB_CPP20

#endif  // ZTB_MODEL_FILLS_HPP_
