// Copying a symbol by the strings of its labels and texts, across databases, and counting labels.

#include <algorithm>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "core/default_records.h"
#include "core/frame.h"
#include "core/handles.h"
#include "core/operations.h"

namespace ztb {
namespace {

// Takes records of a source symbol into a target symbol, which is empty, or labels into the
// universe of the target's database.
class SymbolCopy {
 public:
  SymbolCopy(AbstractZTBSymbol& source, AbstractZTBSymbol& target)
      : source_(source),
        target_(target),
        from_(*source.database),
        to_(*target.database),
        targetIsUniverse_(isUniverse(to_, &target)) {
    requireKeyRoom(source);
  }

  bool run() {
    if (isUniverse(from_, &source_)) {
      return copyLabels();
    }
    return from_.ensureLoaded(source_) &&
           source_.forEachRecordWhile(
               [this](const int* keys, const double* values) { return take(keys, values); });
  }

 private:
  bool copyLabels() {
    for (int number = 1; number < from_.uels.size(); ++number) {
      KeyBuffer keys = {};
      if (!to_.uels.merge(from_.uels.at(number), keys.data())) {
        return false;
      }
      if (!targetIsUniverse_ && !mergeInTarget(keys).first) {
        return false;
      }
    }
    return true;
  }

  bool take(const int* keys, const double* values) {
    // The source's key may stand in a buffer that the target's store uses, too.
    KeyBuffer targetKeys = {};
    const int labels = targetIsUniverse_ ? 1 : source_.dim;
    for (int d = 0; d < labels; ++d) {
      if (!mergeLabel(keys[d], targetKeys[static_cast<std::size_t>(d)])) {
        return false;
      }
    }
    if (targetIsUniverse_) {
      return true;
    }
    const auto [merged, slots] = mergeInTarget(targetKeys);
    if (!merged) {
      return false;
    }
    if (slots == nullptr) {
      throw std::logic_error("the copied record stands nowhere in symbol " + target_.name);
    }
    if (target_.type == ZTB_SET) {
      slots[0] = source_.type == ZTB_SET ? mergeText(values[0]) : to_.textNumber("");
    } else {
      std::copy_n(values, dmap::slotCount(target_.type), slots);
    }
    return true;
  }

  // The default values are asked for with the first record: without any, no subtype is wrong.
  std::pair<bool, double*> mergeInTarget(const KeyBuffer& keys) {
    if (defaults_ == nullptr) {
      defaults_ = defaultRecord(target_);
    }
    return target_.mergeRecord(keys.data(), defaults_, defaults_, nullptr);
  }

  // The target's number of a label of the source. The string is looked at once: neither list ever
  // changes a number.
  bool mergeLabel(int label, int& number) {
    const auto place = static_cast<std::size_t>(label);
    if (place < labelNumbers_.size() && labelNumbers_[place] != unknown) {
      number = labelNumbers_[place];
      return true;
    }
    if (!to_.uels.merge(from_.uels.labelOf(label), &number)) {
      return false;
    }
    entryOf(labelNumbers_, label) = number;
    return true;
  }

  // The same for the text of a set record, which is the empty one where the record names none.
  int mergeText(double level) {
    const bool namesText = level >= 1.0 && level < from_.textPool.size();
    const int text = namesText ? static_cast<int>(level) : 0;
    int& known = entryOf(textNumbers_, text);
    if (known == unknown) {
      known = to_.textNumber(namesText ? from_.textPool.at(text) : "");
    }
    return known;
  }

  static int& entryOf(std::vector<int>& numbers, int entry) {
    const auto place = static_cast<std::size_t>(entry);
    if (place >= numbers.size()) {
      numbers.resize(place + 1, unknown);
    }
    return numbers[place];
  }

  static constexpr int unknown = -1;

  AbstractZTBSymbol& source_;
  AbstractZTBSymbol& target_;
  ZTB& from_;
  ZTB& to_;
  bool targetIsUniverse_;
  const double* defaults_ = nullptr;
  // By the source's number.
  std::vector<int> labelNumbers_;
  std::vector<int> textNumbers_;
};

// A source that its file does not give whole takes no records from the target.
bool requireReadableSource(ZTB& db, AbstractZTBSymbol& source) {
  ZTB& from = *source.database;
  const bool inFile = !source.loaded && from.initFrom == Source::rxf && source.type != ZTB_ALIAS;
  if (!isUniverse(from, &source) && (inFile || source.unreadable != nullptr)) {
    from.ensureLoaded(source);
  }
  return db.requireReadable(source);
}

int copySymbol(ZTB& db, AbstractZTBSymbol* target, AbstractZTBSymbol* source) {
  if (source == nullptr) {
    return db.fail("No source symbol handle specified");
  }
  if (target == nullptr) {
    return db.fail("No target symbol handle specified");
  }
  if (target->dim != source->dim) {
    return db.fail("Inconsistent symbol dimensions");
  }
  if (target->type != source->type && target->type != ZTB_SET) {
    return db.fail("Inconsistent symbol types");
  }
  if (source != target && !requireReadableSource(db, *source)) {
    return failure;
  }
  if (!db.requireReadable(*target)) {
    return failure;
  }
  if (!isUniverse(*target->database, target) && !target->database->emptySymbol(*target)) {
    return failure;
  }
  if (!SymbolCopy(*source, *target).run()) {
    return failure;
  }
  markWritten(*target->database, *target);
  return success;
}

int countLabels(ZTB& db, void* const* symbols, int symbolCount, int* uelCounts, int listSize) {
  if (listSize < db.uels.size()) {
    return db.fail("Uel list size (%d) too short for %d uels", listSize, db.uels.size());
  }
  std::fill_n(uelCounts, listSize, 0);
  for (int i = 0; i < symbolCount; ++i) {
    AbstractZTBSymbol& symbol = requireSymbol(symbols[i]);
    if (symbol.dim == 0 || symbol.type == ZTB_ALIAS) {
      continue;
    }
    if (!db.ensureLoaded(symbol)) {
      return failure;
    }
    symbol.forEachKey([&](const int* keys) {
      for (int d = 0; d < symbol.dim; ++d) {
        if (keys[d] < 0 || keys[d] >= listSize) {
          throw std::logic_error("symbol " + symbol.name + " holds the unknown label number " +
                                 std::to_string(keys[d]));
        }
        ++uelCounts[keys[d]];
      }
    });
  }
  return success;
}

}  // namespace

int ztbCopySymbol(ztbRec* handle, void* target, void* source) {
  return operation(handle, "ztbCopySymbol",
                   [&](ZTB& db) { return copySymbol(db, symbolOf(target), symbolOf(source)); });
}

int ztbGetSymbolsUels(ztbRec* handle, void** symbols, int symbolCount, int* uelCounts,
                      int listSize) {
  return operation(handle, "ztbGetSymbolsUels", [&](ZTB& db) {
    return countLabels(db, symbols, symbolCount, uelCounts, listSize);
  });
}

}  // namespace ztb
