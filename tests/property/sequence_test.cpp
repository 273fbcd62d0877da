// Random sequences of operations on the library and on a plain model: every result, every text and
// every value agrees at every step, and in the end the two hold the same.
//
// Without RC_PARAMS in the environment the sequences are always the same ones. Others come with
// another seed, as in RC_PARAMS="seed=2 max_success=10000 max_size=200" property_tests.
#include <gtest/gtest.h>
#include <rapidcheck.h>

#include <cstdlib>
#include <functional>
#include <string>
#include <vector>

#include "tests/property/library_side.h"
#include "tests/property/model.h"
#include "tests/property/steps.h"

namespace ztbtest {
namespace {

class Comparison {
 public:
  void run(const std::vector<Step>& steps) {
    for (const Step& step : steps) {
      take(step);
      RC_ASSERT(library_.hasCursor() == model_.cursor.has_value());
    }
    compareAll();
  }

 private:
  void expectSame(const Answer& library, const Answer& model) {
    RC_ASSERT(library.result == model.result);
    RC_ASSERT(library.out == model.out);
    expectSameError();
  }

  void expectSameError() {
    std::string text = library_.lastError();
    if (model_.lastErrorIsStart) {
      text = text.substr(0, model_.lastError.size());
    }
    RC_ASSERT(text == model_.lastError);
  }

  std::vector<std::string> labelsFor(size_t symbol, const Step& step) const {
    std::vector<std::string> labels;
    for (int d = 0; d < model_.symbols[symbol].dim; ++d) {
      labels.push_back(pick(someLabels(), step.picks.at(static_cast<size_t>(d))));
    }
    return labels;
  }

  // Numbers around those of the labels that are there.
  Key keyFor(size_t symbol, const Step& step) const {
    Key key;
    const int range = static_cast<int>(model_.labels.size()) + 2;
    for (int d = 0; d < model_.symbols[symbol].dim; ++d) {
      const int number = step.picks.at(static_cast<size_t>(d)) % range;
      key.push_back(step.otherFlag && number == 0 ? 1 : number);
    }
    return key;
  }

  static Slots slotsFor(const Step& step) {
    Slots slots{};
    for (size_t i = 0; i < slots.size(); ++i) {
      slots.at(i) = pick(someValues(), step.number + static_cast<int>(i) * step.picks[0]);
    }
    return slots;
  }

  void take(const Step& step) {
    if (takeDatabaseStep(step)) {
      return;
    }
    if (model_.cursor && takeCursorStep(step)) {
      return;
    }
    if (!model_.symbols.empty()) {
      takeSymbolStep(step, static_cast<size_t>(step.symbol) % model_.symbols.size());
    }
  }

  bool takeDatabaseStep(const Step& step) {
    const std::string& label = pick(someLabels(), step.picks[0]);
    const std::string& name = pick(someNames(), step.picks[0]);
    switch (step.operation) {
      case Operation::mergeLabel:
        expectSame(library_.mergeLabel(label), model_.mergeLabel(label));
        return true;
      case Operation::findLabel:
        expectSame(library_.findLabel(label), model_.findLabel(label));
        return true;
      case Operation::labelOf:
        expectSame(library_.labelOf(step.number % 20 - 2), model_.labelOf(step.number % 20 - 2));
        return true;
      case Operation::addSymbol:
        addSymbol(step, name);
        return true;
      case Operation::findSymbol:
        expectSame(library_.findSymbol(name, step.flag), model_.findSymbol(name, step.flag));
        return true;
      case Operation::symbolByIndex:
        expectSame(library_.symbolByIndex(step.number % 12 - 2),
                   model_.symbolByIndex(step.number % 12 - 2));
        return true;
      case Operation::symbolByNumber:
        expectSame(library_.symbolByNumber(step.number % 12 - 2),
                   model_.symbolByNumber(step.number % 12 - 2));
        return true;
      case Operation::setSpecialValues:
        library_.setSpecialValues(pick(someSpellings(), step.number));
        model_.setSpecialValues(pick(someSpellings(), step.number));
        return true;
      case Operation::closeFile:
        expectSame(library_.closeFile(step.flag), model_.closeFile(step.flag));
        return true;
      case Operation::reopen:
        writeAndReopen();
        return true;
      default:
        return false;
    }
  }

  void addSymbol(const Step& step, const std::string& name) {
    // Mostly small dimensions; a subtype outside its table now and then.
    const int dim = step.number % 17 == 0 ? 21 : step.picks[1] % 4 - (step.number % 13 == 0);
    const int userInfo = step.number % 11 == 0 ? 99 : step.picks[2] % 10;
    const std::string& text = pick(someTexts(), step.number);
    const int type = step.symbol % 5;
    expectSame(library_.addSymbol(name, dim, type, userInfo, text),
               model_.addSymbol(name, dim, type, userInfo, text));
  }

  void writeAndReopen() {
    const int refused = model_.unwritableRecords();
    const Answer written = library_.write();
    if (refused > 0) {
      RC_ASSERT(written.result == 0);
      model_.lastError = numberText(refused) + " RXF Error(s). First Error: ";
      model_.lastErrorIsStart = true;
      expectSameError();
      return;
    }
    RC_ASSERT(written.result == 1);
    expectSameError();
    library_.reopen();
    model_ = model_.reopened();
    expectSameError();
  }

  bool takeCursorStep(const Step& step) {
    const int slot = step.number % 5;
    const double value = pick(someValues(), step.picks[0]);
    const std::string& text = pick(someTexts(), step.picks[0]);
    switch (step.operation) {
      case Operation::moveNext:
        expectSame(library_.moveNext(), model_.moveNext());
        return true;
      case Operation::movePrev:
        expectSame(library_.movePrev(), model_.movePrev());
        return true;
      case Operation::hasNext:
        expectSame(library_.hasNext(), model_.hasNext());
        return true;
      case Operation::hasPrev:
        expectSame(library_.hasPrev(), model_.hasPrev());
        return true;
      case Operation::readSlot:
        expectSame(library_.readSlot(slot), model_.readSlot(slot));
        return true;
      case Operation::writeSlot:
        expectSame(library_.writeSlot(slot, value), model_.writeSlot(slot, value));
        return true;
      case Operation::readText:
        expectSame(library_.readText(), model_.readText());
        return true;
      case Operation::writeText:
        expectSame(library_.writeText(text), model_.writeText(text));
        return true;
      case Operation::readKey:
        expectSame(library_.readKey(slot - 1), model_.readKey(slot - 1));
        return true;
      case Operation::erase:
        expectSame(library_.erase(), model_.erase());
        return true;
      case Operation::copyCursor:
        expectSame(library_.copyCursor(), Answer{1, ""});
        model_.cursor->mask.reset();
        return true;
      default:
        return false;
    }
  }

  void takeSymbolStep(const Step& step, size_t symbol) {
    const Slots slots = slotsFor(step);
    const std::string& text = pick(someTexts(), step.number % 9);
    switch (step.operation) {
      case Operation::countRecords:
        expectSame(library_.countRecords(symbol), model_.countRecords(symbol));
        break;
      case Operation::clear:
        if (model_.cursor && model_.cursor->symbol == symbol) {
          library_.dropCursor();
        }
        expectSame(library_.clear(symbol), model_.clear(symbol));
        break;
      case Operation::setUserInfo:
        library_.setUserInfo(symbol, step.number % 12);
        model_.setUserInfo(symbol, step.number % 12);
        break;
      case Operation::addRecord: {
        const auto labels = labelsFor(symbol, step);
        expectSame(library_.addRecord(symbol, labels), model_.addRecord(symbol, labels));
        break;
      }
      case Operation::mergeRecord: {
        const auto labels = labelsFor(symbol, step);
        expectSame(library_.mergeRecord(symbol, labels), model_.mergeRecord(symbol, labels));
        break;
      }
      case Operation::findRecord: {
        const auto labels = labelsFor(symbol, step);
        expectSame(library_.findRecord(symbol, labels), model_.findRecord(symbol, labels));
        break;
      }
      case Operation::findInSlice: {
        auto labels = labelsFor(symbol, step);
        for (size_t d = 0; d < labels.size(); ++d) {
          labels[d] = (step.number >> d) % 2 == 0 ? labels[d] : " ";
        }
        expectSame(library_.findInSlice(symbol, labels, step.flag),
                   model_.findInSlice(symbol, labels, step.flag));
        break;
      }
      case Operation::findFirstOrLast:
        expectSame(library_.findFirstOrLast(symbol, step.flag),
                   model_.findFirstOrLast(symbol, step.flag));
        break;
      case Operation::storeByNumber: {
        const Key key = keyFor(symbol, step);
        const Slots* const values = step.flag ? &slots : nullptr;
        expectSame(library_.storeByNumber(symbol, key, step.otherFlag, values),
                   model_.storeByNumber(symbol, key, step.otherFlag, values));
        break;
      }
      case Operation::storeSetByNumber: {
        const Key key = keyFor(symbol, step);
        const std::string* const given = step.flag ? &text : nullptr;
        expectSame(library_.storeSetByNumber(symbol, key, step.otherFlag, given),
                   model_.storeSetByNumber(symbol, key, step.otherFlag, given));
        break;
      }
      default:
        break;
    }
  }

  void compareAll() {
    RC_ASSERT(library_.info(ZTB_INFO_UEL_COUNT) == static_cast<int>(model_.labels.size()) - 1);
    RC_ASSERT(library_.info(ZTB_INFO_SYMBOL_COUNT_WITH_ALIAS) ==
              static_cast<int>(model_.symbols.size()));
    for (size_t i = 1; i < model_.labels.size(); ++i) {
      expectSame(library_.labelOf(static_cast<int>(i)), model_.labelOf(static_cast<int>(i)));
    }
    for (size_t symbol = 0; symbol < model_.symbols.size(); ++symbol) {
      const ModelSymbol& wanted = model_.symbols[symbol];
      RC_ASSERT(library_.description(symbol) ==
                wanted.name + "|" + wanted.text + "|" + numberText(wanted.dim) + "|" +
                    numberText(wanted.type) + "|" + numberText(wanted.userInfo) + "|" +
                    numberText(wanted.number));
      compareRecords(symbol, false);
      compareRecords(symbol, true);
    }
  }

  // Walks all records forwards or backwards.
  void compareRecords(size_t symbol, bool backwards) {
    const Answer found = model_.findFirstOrLast(symbol, backwards);
    expectSame(library_.findFirstOrLast(symbol, backwards), found);
    for (Answer moved = found; moved.result == 1;) {
      std::string wanted;
      for (const int number : *model_.cursor->key) {
        wanted += numberText(number) + ",";
      }
      RC_ASSERT(library_.rawRecord(model_.symbols[symbol].dim) == wanted + model_.readSlot(0).out);
      moved = backwards ? model_.movePrev() : model_.moveNext();
      expectSame(backwards ? library_.movePrev() : library_.moveNext(), moved);
    }
  }

  // The handle of the library must end before its database.
  LibrarySide library_;
  Model model_;
};

rc::Gen<Step> anyStep() {
  const auto number = rc::gen::inRange(0, 100000);
  return rc::gen::build<Step>(
      rc::gen::set(&Step::operation, rc::gen::map(rc::gen::inRange(0, operationCount),
                                                  [](int i) { return static_cast<Operation>(i); })),
      rc::gen::set(&Step::symbol, rc::gen::inRange(0, 1000)),
      rc::gen::set(&Step::picks, rc::gen::container<std::array<int, 3>>(number)),
      rc::gen::set(&Step::number, number), rc::gen::set(&Step::flag, rc::gen::arbitrary<bool>()),
      rc::gen::set(&Step::otherFlag, rc::gen::arbitrary<bool>()));
}

// A database with something in it is the start of every sequence, so that few steps go nowhere.
std::vector<Step> opening() {
  std::vector<Step> steps;
  for (int symbol = 0; symbol < 6; ++symbol) {
    Step add;
    add.operation = Operation::addSymbol;
    add.symbol = symbol;
    add.picks = {symbol, symbol % 3 + 1, symbol % 2};
    add.number = 1;
    steps.push_back(add);
  }
  for (int record = 0; record < 12; ++record) {
    Step merge;
    merge.operation = Operation::mergeRecord;
    merge.symbol = record;
    merge.picks = {record % 4, record / 4, record % 3};
    steps.push_back(merge);
  }
  return steps;
}

bool holds(const std::function<void()>& property) {
  setenv("RC_PARAMS", "seed=1 max_success=200", 0);
  return rc::check(property);
}

TEST(Sequences, theLibraryAgreesWithThePlainModelAtEveryStep) {
  EXPECT_TRUE(holds([] {
    const auto steps = *rc::gen::container<std::vector<Step>>(anyStep());
    std::vector<Step> all = opening();
    all.insert(all.end(), steps.begin(), steps.end());
    Comparison().run(all);
  }));
}

TEST(Sequences, theLibraryAgreesWithThePlainModelFromAnEmptyDatabase) {
  EXPECT_TRUE(holds([] { Comparison().run(*rc::gen::container<std::vector<Step>>(anyStep())); }));
}

}  // namespace
}  // namespace ztbtest
