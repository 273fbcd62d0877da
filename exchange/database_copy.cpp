// A deep copy of another database: labels, symbols with their attributes, and records. Texts,
// special values, the record store and model handles are not copied, so the text numbers of set
// records point into the copy's own pool.

#include <cstdio>

#include "core/frame.h"
#include "core/handles.h"
#include "core/operations.h"
#include "exchange/progress.h"
#include "store/symbol_factory.h"

namespace ztb {
namespace {

class DatabaseCopy {
 public:
  DatabaseCopy(ZTB& source, ZTB& target) : source_(source), target_(target) {}

  // False, with the text in the source's last error, when a symbol of the source cannot be read; of
  // an unreadable one it is the target's last error, too.
  bool copySymbols() {
    return source_.symbols.forEach(
        [this](AbstractZTBSymbol* symbol) { return copySymbol(*symbol); });
  }

  // Once all symbols are there: a domain may stand behind the symbols that name it.
  void copyDomains() {
    source_.symbols.forEach([this](AbstractZTBSymbol* symbol) {
      if (symbol->type != ZTB_ALIAS) {
        copyDomainsOf(*symbol);
      }
      return true;
    });
  }

 private:
  AbstractZTBSymbol* counterpartOf(const AbstractZTBSymbol* symbol) {
    return isUniverse(source_, symbol) ? target_.universe.get()
                                       : target_.symbols.atName(symbol->name);
  }

  bool copySymbol(AbstractZTBSymbol& symbol) {
    SymbolDescription description;
    description.name = symbol.name;
    description.dim = symbol.dim;
    description.type = symbol.type;
    description.number = symbol.symbolNumber;
    description.userInfo = symbol.userInfo;
    description.text = symbol.text;
    AbstractZTBSymbol* copy = target_.symbols.add(
        symbol.name, makeSymbol(target_.recordStorage, &target_, std::move(description)));
    if (symbol.type == ZTB_ALIAS) {
      copy->aliasTarget = counterpartOf(symbol.aliasTarget);
      return true;
    }
    // The records of a model are not read for a copy: such symbols arrive empty.
    const bool readable = source_.initFrom == Source::rxf || source_.initFrom == Source::hvex;
    if ((readable || symbol.unreadable != nullptr) && !source_.ensureLoaded(symbol)) {
      // The text is that of the source; both can be asked for it.
      target_.requireReadable(symbol);
      return false;
    }
    copy->assignRecords(symbol);
    return true;
  }

  void copyDomainsOf(const AbstractZTBSymbol& symbol) {
    AbstractZTBSymbol& copy = *target_.symbols.atName(symbol.name);
    for (std::size_t d = 0; d < symbol.domainSymbols.size(); ++d) {
      const AbstractZTBSymbol* domain = symbol.domainSymbols[d];
      AbstractZTBSymbol* copiedDomain = domain == nullptr ? nullptr : counterpartOf(domain);
      if (copiedDomain != nullptr && !isUniverse(target_, copiedDomain)) {
        copiedDomain->markUsedAsDomain();
      }
      copy.domainSymbols.push_back(copiedDomain);
      copy.domainNames.push_back(domain == nullptr ? symbol.domainNames[d] : std::string());
    }
  }

  ZTB& source_;
  ZTB& target_;
};

int refuse(ZTB& db, const char* text) {
  printProgress(text);
  return db.fail("%s", text);
}

}  // namespace

int ZTB::InitFromDB(ZTB& source) {
  printProgress("---- Entering InitFromDB ----");
  if (uels.size() > 1) {
    return refuse(*this, "Uels present. Cannot load Uels from other database.");
  }
  if (!symbols.empty()) {
    return refuse(*this, "Symbols present. Cannot load symbols from other database.");
  }
  if (initFrom != Source::none && initFrom != Source::db) {
    return refuse(*this, "Database incorrectly initialized.");
  }
  initFrom = Source::db;
  uels.assign(source.uels);
  DatabaseCopy copy(source, *this);
  if (!copy.copySymbols()) {
    return failure;
  }
  copy.copyDomains();
  return success;
}

int ztbInitFromDB(ztbRec* handle, ztbRec* sourceHandle) {
  return operation(handle, "ztbInitFromDB",
                   [&](ZTB& db) { return db.InitFromDB(databaseOf(sourceHandle)); });
}

}  // namespace ztb
