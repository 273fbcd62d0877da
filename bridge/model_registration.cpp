// Ties a database to a model instance and fills it from the model's dictionary.

#include <algorithm>
#include <array>
#include <limits>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "bridge/dictionary.h"
#include "core/frame.h"
#include "core/operations.h"
#include "exchange/progress.h"
#include "peers/pbi_family.h"
#include "store/symbol_factory.h"

namespace ztb {
namespace {

// With the prefix of the text it goes into, a peer's message fills the last error.
constexpr int readyMessageSize = 234;

// Makes a family ready, from the system directory if there is one.
template <class GetReady, class GetReadyD>
bool makeReady(const ZTB& db, GetReady getReady, GetReadyD getReadyD, char* message) {
  return db.sysDir.empty() ? getReady(message, readyMessageSize)
                           : getReadyD(db.sysDir.c_str(), message, readyMessageSize);
}

// Runs `body` and repeats the text of its failure on standard output while tracing is on. Some
// failures have no text: an older one, which then stays in the last error, is not theirs.
template <class Body>
int tracingFailure(ZTB& db, const Body& body) {
  const auto olderText = std::to_array(db.lastError);
  const int olderKind = db.errorKind;
  db.lastError[0] = '\0';
  const int result = body();
  if (db.lastError[0] == '\0') {
    std::ranges::copy(olderText, db.lastError);
    db.errorKind = olderKind;
  } else if (result != success) {
    printProgress(db.lastError);
  }
  return result;
}

bool isModelSymbol(const AbstractZTBSymbol& symbol) {
  return symbol.type == ZTB_VARIABLE || symbol.type == ZTB_EQUATION;
}

// Takes labels and symbols out of a model's dictionary.
class DictionaryLoader {
 public:
  explicit DictionaryLoader(ZTB& db) : db_(db) {}

  bool loadLabels() {
    const int count = peers::nmtNUels(db_.nmt);
    for (int i = 1; i <= count; ++i) {
      char label[dictionaryNameSize] = {};
      char quote = ' ';
      int number = 0;
      peers::nmtUelLabel(db_.nmt, i, &quote, label, dictionaryNameSize);
      if (!db_.uels.merge(label, &number)) {
        return false;
      }
    }
    return true;
  }

  // Variables and equations that the database has already must be in the model.
  bool checkPresentSymbols() {
    return db_.symbols.forEachNamed([this](const std::string& name, AbstractZTBSymbol* symbol) {
      if (!isModelSymbol(*symbol) || peers::nmtSymIndex(db_.nmt, name.c_str()) >= 1) {
        return true;
      }
      return db_.fail("Variable/Equation symbol %s does not exist in model", name.c_str()) ==
             success;
    });
  }

  bool loadSymbols() {
    const int count = peers::nmtNLSyms(db_.nmt);
    for (int i = 1; i <= count; ++i) {
      if (!loadSymbol(i)) {
        return false;
      }
    }
    return true;
  }

 private:
  bool loadSymbol(int index) {
    const std::string name = dictionarySymbolName(db_.nmt, index);
    int type = 0;
    switch (peers::nmtSymType(db_.nmt, index)) {
      case dictionaryVariable:
        type = ZTB_VARIABLE;
        break;
      case dictionaryEquation:
        type = ZTB_EQUATION;
        break;
      default:
        return db_.fail("PBI symbol type not variable or equation of symbol %s", name.c_str()) ==
               success;
    }
    if (db_.symbols.contains(name)) {
      const AbstractZTBSymbol* symbol = db_.symbols.atName(name);
      if (symbol == nullptr) {
        throw std::logic_error("there is no record store for symbol " + name);
      }
      return matches(*symbol, index, type);
    }
    makeSymbol(name, index, type);
    return true;
  }

  bool matches(const AbstractZTBSymbol& symbol, int index, int type) {
    if (symbol.dim != peers::nmtSymDim(db_.nmt, index)) {
      return db_.fail("Mismatch in dimension for symbol %s", symbol.name.c_str()) == success;
    }
    if (symbol.type != type) {
      return db_.fail("Mismatch in type for symbol %s", symbol.name.c_str()) == success;
    }
    return true;
  }

  void makeSymbol(const std::string& name, int index, int type) {
    char text[ZTB_TEXT_BUFFER_SIZE] = {};
    char quote = ' ';
    peers::nmtSymText(db_.nmt, index, &quote, text, ZTB_TEXT_BUFFER_SIZE);
    SymbolDescription description;
    description.name = name;
    description.dim = peers::nmtSymDim(db_.nmt, index);
    description.type = type;
    description.number = db_.symbols.size();
    description.userInfo = peers::nmtSymUserInfo(db_.nmt, index);
    description.text = text;
    const auto positions = static_cast<std::size_t>(std::max(description.dim, 0));
    std::vector<AbstractZTBSymbol*> domains(positions, db_.universe.get());
    std::vector<std::string> domainNames(positions);
    AbstractZTBSymbol* symbol =
        db_.symbols.add(name, ztb::makeSymbol(db_.recordStorage, &db_, std::move(description)));
    symbol->loaded = false;
    symbol->domainSymbols.swap(domains);
    symbol->domainNames.swap(domainNames);
  }

  ZTB& db_;
};

}  // namespace

int ZTB::RegisterPBI(void* model) {
  char message[readyMessageSize] = {};
  if (!makeReady(*this, peers::pbiGetReady, peers::pbiGetReadyD, message)) {
    return failAs(ZTB_ERROR_NO_LIBRARY, "Error in pbiGetReady: %s", message);
  }
  if (!makeReady(*this, peers::nmtGetReady, peers::nmtGetReadyD, message)) {
    return failAs(ZTB_ERROR_NO_LIBRARY, "Error in nmtGetReady: %s", message);
  }
  if (snv != nullptr && !isPreparedModel(model)) {
    undoPreparation();
  }
  pbi = model;
  nmt = peers::pbiDict(pbi);
  constexpr double infinity = std::numeric_limits<double>::infinity();
  peers::pbiPinfSet(pbi, infinity);
  peers::pbiMinfSet(pbi, -infinity);
  return nmt == nullptr ? fail("No dictionary available") : success;
}

int ZTB::InitFromDict(void* model) {
  if (uels.size() > 1) {
    return fail("Uels present. Cannot load Uels from dictionary.");
  }
  if (initFrom != Source::none && initFrom != Source::db) {
    return fail("Database incorrectly initialized.");
  }
  initFrom = Source::db;
  if (RegisterPBI(model) != success) {
    return failure;
  }
  DictionaryLoader loader(*this);
  return loader.loadLabels() && loader.checkPresentSymbols() && loader.loadSymbols() ? success
                                                                                     : failure;
}

int ztbRegisterPBI(ztbRec* handle, void* pbi) {
  return operation(handle, "ztbRegisterPBI", [&](ZTB& db) {
    return tracingFailure(db, [&] { return db.RegisterPBI(pbi); });
  });
}

int ztbInitFromDict(ztbRec* handle, void* pbi) {
  return operation(handle, "ztbInitFromDict", [&](ZTB& db) {
    printProgress("---- Entering InitFromDict ----");
    return tracingFailure(db, [&] { return db.InitFromDict(pbi); });
  });
}

}  // namespace ztb
