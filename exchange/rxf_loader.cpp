#include "exchange/rxf_loader.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstring>
#include <memory>
#include <new>

#include "exchange/progress.h"
#include "exchange/rxf_peer.h"
#include "store/symbol_factory.h"

namespace ztb {
int RxfLoader::open(const std::string& fileName) {
  printProgress("Open rxf file for reading");
  int error = 0;
  peers::rxfOpenRead(db_.rxf, fileName.c_str(), &error);
  if (error != 0) {
    printProgress("Error opening rxf file");
    char text[peerTextSize] = {};
    peers::rxfErrorStr(db_.rxf, error, text);
    return db_.failAs(ztbErrorKindOfRxf(error), "Error opening RXF file: %s", text);
  }
  printProgress("Opening rxf file was successful");
  return success;
}

int RxfLoader::mapSpecialValues() {
  printDetail("using special values from ZTB");
  if (setInternalSpecialValues(db_.rxf, peers::rxfSetReadSpecialValues) == 0) {
    return db_.fail("Error setting special values");
  }
  return success;
}

void RxfLoader::loadTexts() {
  printProgress("Start loading string table");
  printProgress("loading strings");
  char text[peerTextSize] = {};
  int node = 0;
  for (int number = 1; peers::rxfGetElemText(db_.rxf, number, text, &node) != 0; ++number) {
    printDetail("reading string: ", text);
    if (db_.textPool.contains(text)) {
      printDetail("Text already exists");
    } else {
      printDetail("Adding text");
      db_.textPool.add(text, db_.textPool.size());
    }
  }
  printProgress("loading strings done");
}

int RxfLoader::loadLabels() {
  printProgress("start loading uels");
  int labelCount = 0;
  int highMap = 0;
  peers::rxfUMUelInfo(db_.rxf, &labelCount, &highMap);
  for (int i = 1; i <= labelCount; ++i) {
    printDetail("Get uel");
    char label[peerTextSize] = {};
    int map = 0;
    int number = 0;
    peers::rxfUMUelGet(db_.rxf, i, label, &map);
    if (!db_.uels.merge(label, &number)) {
      return failure;
    }
    printDetail("Uel loaded: ", label);
  }
  printProgress("loading uels done");
  return success;
}

void RxfLoader::makeSymbols() {
  int symbolCount = 0;
  int labelCount = 0;
  peers::rxfSystemInfo(db_.rxf, &symbolCount, &labelCount);
  printProgress("creating symbols");
  for (int number = 1; number <= symbolCount; ++number) {
    makeSymbol(number);
  }
}

void RxfLoader::makeSymbol(int number) {
  printDetail("creating symbol");
  char name[peerTextSize] = {};
  char text[peerTextSize] = {};
  int recordCount = 0;
  SymbolDescription description;
  peers::rxfSymbolInfo(db_.rxf, number, name, &description.dim, &description.type);
  peers::rxfSymbolInfoX(db_.rxf, number, &recordCount, &description.userInfo, text);
  if (description.type == dmap::typeEquation) {
    description.userInfo -= equationSubtypeBase;
  }
  description.name = name;
  description.number = number;
  description.text = text;
  const int userInfo = description.userInfo;
  AbstractZTBSymbol* symbol =
      db_.symbols.add(name, ztb::makeSymbol(db_.recordStorage, &db_, std::move(description)));
  symbol->loaded = false;
  printDetail("symbol created: ", name);
  if (symbol->type == dmap::typeAlias) {
    symbol->aliasTarget = aliasTargetOf(userInfo);
  }
}

AbstractZTBSymbol* RxfLoader::aliasTargetOf(int number) {
  if (number == 0) {
    return db_.universe.get();
  }
  char name[peerTextSize] = {};
  int dim = 0;
  int type = 0;
  peers::rxfSymbolInfo(db_.rxf, number, name, &dim, &type);
  return db_.symbols.atName(name);
}

void RxfLoader::resolveDomains() {
  for (int position = 0; position < db_.symbols.size(); ++position) {
    AbstractZTBSymbol* symbol = db_.symbols.atNumber(position);
    if (symbol->type != dmap::typeAlias) {
      resolveDomainsOf(*symbol, position + 1);
    }
  }
}

void RxfLoader::resolveDomainsOf(AbstractZTBSymbol& symbol, int number) {
  std::array<std::array<char, peerTextSize>, dmap::maxDimension> buffers = {};
  std::array<char*, dmap::maxDimension> names = {};
  for (std::size_t d = 0; d < names.size(); ++d) {
    names[d] = buffers[d].data();
  }
  const bool hasDomain = peers::rxfSymbolGetDomainX(db_.rxf, number, names.data()) != 0;
  for (std::size_t d = 0; d < names.size() && static_cast<int>(d) < symbol.dim; ++d) {
    AbstractZTBSymbol* domain = hasDomain ? domainNamed(names[d]) : db_.universe.get();
    symbol.domainSymbols.push_back(domain);
    symbol.domainNames.emplace_back(domain == nullptr ? names[d] : "");
  }
}

AbstractZTBSymbol* RxfLoader::domainNamed(const char* name) {
  if (std::strcmp(name, "*") == 0) {
    return db_.universe.get();
  }
  AbstractZTBSymbol* domain = db_.symbols.contains(name) ? db_.symbols.atName(name) : nullptr;
  const bool isDomain = domain != nullptr && domain->dim == 1 &&
                        (domain->type == dmap::typeSet || domain->type == dmap::typeAlias);
  if (!isDomain) {
    return nullptr;
  }
  domain->markUsedAsDomain();
  return domain;
}

int ZTB::InitFromRXF(const std::string& fileName) {
  printProgress("---- Entering InitFromRXF ----");
  if (initFrom != Source::none) {
    printDetail("FROM_NOSOURCE!=initFrom");
    return fail("Database has been initialized, cannot initialize from %s", fileName.c_str());
  }
  if (rxf == nullptr) {
    return failAs(ZTB_ERROR_NO_LIBRARY, "RXF create did not succeed: %s", peerMessage);
  }
  initFrom = Source::rxf;
  rxfFileName = fileName;

  RxfLoader loader(*this);
  if (loader.open(fileName) != success || loader.mapSpecialValues() != success) {
    return failure;
  }
  loader.loadTexts();
  if (loader.loadLabels() != success) {
    return failure;
  }
  loader.makeSymbols();
  loader.resolveDomains();
  printProgress("---- Leaving InitFromRXF ----");
  return success;
}

bool ZTB::readSymbolFromRXF(AbstractZTBSymbol& symbol, void* target) {
  if (symbol.type == dmap::typeAlias) {
    return fail("Cannot load alias %s", symbol.name.c_str()) == success;
  }
  const char* name = symbol.name.c_str();
  char reason[peerTextSize] = {};
  const int valueCount = dmap::slotCount(symbol.type);
  const auto keep = [&symbol](const int* keys, const double* values, int count) {
    symbol.appendRecords(keys, values, count);
  };
  const auto passOn = [&symbol, target, valueCount](const int* keys, const double* values,
                                                    int count) {
    for (int record = 0; record < count; ++record) {
      peers::rxfDataWriteRaw(target, keys, values);
      keys += symbol.dim;
      values += valueCount;
    }
  };
  int error = 0;
  const bool whole = target == nullptr
                         ? readRecords(rxf, name, symbol.dim, valueCount, reason, error, keep)
                         : readRecords(rxf, name, symbol.dim, valueCount, reason, error, passOn);
  return whole || failReading(symbol, kindOfReadError(error), reason);
}

bool ZTB::failReading(const AbstractZTBSymbol& symbol, int kind, const char* reason) {
  // The reason stands at the end of a text that is cut there, so a long path makes room for it.
  constexpr std::size_t shortestPath = 24;
  constexpr std::size_t dots = 3;
  const char* format = "Symbol %s could not be read from %s%s: %s";
  const char* name = symbol.name.c_str();
  const auto others =
      static_cast<std::size_t>(std::snprintf(nullptr, 0, format, name, "", "", reason));
  const std::size_t left = messageSize - 1 - std::min(messageSize - 1, others);
  const std::size_t room = std::max(left, shortestPath);
  const char* path = rxfFileName.c_str();
  if (rxfFileName.size() <= room) {
    return failAs(kind, format, name, "", path, reason) == success;
  }
  path += rxfFileName.size() - (room - dots);
  // A cut never leaves a part of a UTF-8 sequence.
  while ((static_cast<unsigned char>(*path) & 0xC0U) == 0x80U) {
    ++path;
  }
  return failAs(kind, format, name, "...", path, reason) == success;
}

bool ZTB::loadFromRXF(AbstractZTBSymbol& symbol) {
  // Taken before anything is read, so that a failure can be kept when no memory is left.
  auto unreadable = std::make_unique<AbstractZTBSymbol::Unreadable>();
  unreadable->text.reserve(messageSize);
  symbol.loaded = true;
  try {
    if (readSymbolFromRXF(symbol, nullptr)) {
      return true;
    }
  } catch (const std::bad_alloc&) {
    failReading(symbol, ZTB_ERROR_OUT_OF_MEMORY, "out of memory");
  } catch (const std::exception& e) {
    failReading(symbol, ZTB_ERROR_INTERNAL, e.what());
  }
  if (symbol.type != dmap::typeAlias) {
    symbol.releaseRecords();
    unreadable->text.assign(lastError);
    unreadable->kind = errorKind;
    symbol.unreadable = std::move(unreadable);
  }
  return false;
}

bool ZTB::allReadable() {
  return symbols.forEach([this](AbstractZTBSymbol* symbol) { return requireReadable(*symbol); });
}

bool ZTB::loadAllSymbols() {
  return symbols.forEach([this](AbstractZTBSymbol* symbol) {
    return symbol->type == dmap::typeAlias || ensureLoaded(*symbol);
  });
}

int ZTB::CloseRXF(bool loadRemain) {
  if (initFrom != Source::rxf) {
    return fail("Database not initialized from RXF");
  }
  if (loadRemain && !loadAllSymbols()) {
    return failure;
  }
  peers::rxfClose(rxf);
  initFrom = Source::db;
  return success;
}

}  // namespace ztb
