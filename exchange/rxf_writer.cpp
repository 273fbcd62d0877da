#include "exchange/rxf_writer.h"

#include <algorithm>
#include <cmath>
#include <stdexcept>

#include "core/string_hash_list.h"
#include "exchange/rxf_peer.h"

namespace ztb {
namespace {

constexpr const char* universeName = "*";

// Domain lists have one entry a position; a symbol moved to another store has none.
AbstractZTBSymbol* domainAt(const AbstractZTBSymbol& symbol, std::size_t position) {
  return position < symbol.domainSymbols.size() ? symbol.domainSymbols[position] : nullptr;
}

// Positions of a symbol. Throws std::logic_error for more than the peer has room for.
std::size_t positionsOf(const AbstractZTBSymbol& symbol) {
  if (symbol.dim < 0 || symbol.dim > dmap::maxDimension) {
    throw std::logic_error("dimension " + std::to_string(symbol.dim) + " of symbol " + symbol.name +
                           " is outside [0," + std::to_string(dmap::maxDimension) + "]");
  }
  return static_cast<std::size_t>(symbol.dim);
}

}  // namespace

RxfWriter::~RxfWriter() {
  if (target_ != nullptr) {
    peers::rxfFree(&target_);
  }
}

int RxfWriter::create() {
  char message[ZTB::peerMessageSize] = {};
  const bool made = db_.sysDir.empty()
                        ? peers::rxfCreate(&target_, message, sizeof message)
                        : peers::rxfCreateD(&target_, db_.sysDir.c_str(), message, sizeof message);
  return made ? success
              : db_.failAs(ZTB_ERROR_NO_LIBRARY, "RXF create did not succeed: %s", message);
}

int RxfWriter::open(const std::string& fileName) {
  int error = 0;
  peers::rxfOpenWrite(target_, fileName.c_str(), "", &error);
  if (error != 0) {
    char text[peerTextSize] = {};
    peers::rxfErrorStr(target_, error, text);
    return db_.failAs(ztbErrorKindOfRxf(error), "%s: %s", text, fileName.c_str());
  }
  peers::rxfStoreDomainSetsSet(target_, 0);
  return success;
}

int RxfWriter::mapSpecialValues() {
  if (setInternalSpecialValues(target_, peers::rxfSetSpecialValues) == 0) {
    return db_.fail("Error setting special values");
  }
  return success;
}

void RxfWriter::writeLabels() {
  peers::rxfUELRegisterRawStart(target_);
  for (int number = 1; number < db_.uels.size(); ++number) {
    peers::rxfUELRegisterRaw(target_, db_.uels.at(number));
  }
  peers::rxfUELRegisterDone(target_);
}

int RxfWriter::writeSymbols() {
  for (int position = 0; position < db_.symbols.size(); ++position) {
    AbstractZTBSymbol* symbol = db_.symbols.atNumber(position);
    if (symbol == nullptr) {
      return db_.fail("Symbol number %d has no record storage, cannot write it to RXF", position);
    }
    if (writeSymbol(*symbol, position) != success) {
      return failure;
    }
  }
  return success;
}

int RxfWriter::writeAlias(const AbstractZTBSymbol& alias) {
  const char* name = alias.name.c_str();
  const char* targetName = alias.aliasTarget->name.c_str();
  if (alias.aliasTarget == &alias) {
    return db_.fail(
        "Error writing alias %s of set %s to RXF: the alias lost its set when it was "
        "moved to another record storage",
        name, targetName);
  }
  if (peers::rxfAddAlias(target_, name, targetName) == 0) {
    return db_.fail("Error writing alias %s of set %s to RXF", name, targetName);
  }
  return success;
}

int RxfWriter::writeSymbol(AbstractZTBSymbol& symbol, int position) {
  if (symbol.type == dmap::typeAlias) {
    return writeAlias(symbol);
  }
  if (symbol.type < dmap::typeSet || symbol.type > dmap::typeAlias) {
    return db_.fail("Error writing symbol %s to RXF: a file holds no symbol of type %d",
                    symbol.name.c_str(), symbol.type);
  }
  const int userInfo =
      symbol.type == dmap::typeEquation ? symbol.userInfo + equationSubtypeBase : symbol.userInfo;
  if (peers::rxfDataWriteRawStart(target_, symbol.name.c_str(), symbol.text.c_str(), symbol.dim,
                                  symbol.type, userInfo) == 0) {
    return db_.fail("Error writing symbol %s to RXF", symbol.name.c_str());
  }
  const bool strict = checkDomains_ && setStrictDomain(symbol);
  if (writeRecords(symbol) != success) {
    return failure;
  }
  peers::rxfDataWriteDone(target_);
  if (!strict) {
    recordDomainNames(symbol, position);
  }
  return success;
}

bool RxfWriter::setStrictDomain(const AbstractZTBSymbol& symbol) {
  Names names = {};
  bool allKnown = true;
  bool allUniverse = true;
  for (std::size_t d = 0; d < positionsOf(symbol); ++d) {
    const AbstractZTBSymbol* domain = domainAt(symbol, d);
    names[d] = universeName;
    if (domain == nullptr) {
      allKnown = false;
    } else if (domain != db_.universe.get()) {
      names[d] = domain->name.c_str();
      allUniverse = false;
    }
  }
  if (!allKnown || allUniverse) {
    return false;
  }
  const int errorsBefore = peers::rxfErrorCount(target_);
  if (peers::rxfSymbolSetDomain(target_, names.data()) != 0) {
    return true;
  }
  const int refused = peers::rxfErrorCount(target_) - errorsBefore;
  ignoredErrors_ += refused;
  for (int error = 0; error < refused; ++error) {
    peers::rxfGetLastError(target_);
  }
  return false;
}

void RxfWriter::recordDomainNames(const AbstractZTBSymbol& symbol, int position) {
  Names names = {};
  bool anyNamed = false;
  for (std::size_t d = 0; d < positionsOf(symbol); ++d) {
    const AbstractZTBSymbol* domain = domainAt(symbol, d);
    if (domain != nullptr) {
      names[d] = domain->name.c_str();
    } else {
      names[d] = d < symbol.domainNames.size() ? symbol.domainNames[d].c_str() : universeName;
    }
    anyNamed = anyNamed || names[d][0] != '*';
  }
  if (anyNamed) {
    peers::rxfSymbolSetDomainX(target_, position + 1, names.data());
  }
}

// The number of the text that a set record shows. A record may hold the number of another
// database's text, or any number at all, and then shows the empty text; a file names no text that
// it has not.
double RxfWriter::textNumberInFile(double level) const {
  return level >= 1.0 && level < db_.textPool.size() ? std::trunc(level) : 0.0;
}

int RxfWriter::writeRecords(AbstractZTBSymbol& symbol) {
  if (symbol.loaded) {
    std::array<int, dmap::maxDimension> keysForPeer = {};
    const std::size_t dim = positionsOf(symbol);
    const bool isSet = symbol.type == dmap::typeSet;
    symbol.forEachRecord([&](const int* keys, const double* values) {
      std::copy_n(keys, dim, keysForPeer.data());
      if (isSet) {
        const double text = textNumberInFile(values[0]);
        peers::rxfDataWriteRaw(target_, keysForPeer.data(), &text);
      } else {
        peers::rxfDataWriteRaw(target_, keysForPeer.data(), values);
      }
    });
  } else if (db_.initFrom == Source::rxf) {
    if (!db_.readSymbolFromRXF(symbol, target_)) {
      return failure;
    }
  } else if (db_.initFrom == Source::pbi) {
    if (db_.modelReplaced) {
      return db_.failModelReplaced();
    }
    db_.LoadSymbolFromModel(symbol, target_);
  } else if (db_.initFrom == Source::hvex && !db_.readSymbolFromHVEX(symbol, target_)) {
    return db_.failAs(ZTB_ERROR_IO, "Problems writing symbol %s to RXF", symbol.name.c_str());
  }
  return success;
}

void RxfWriter::writeTexts() {
  for (int entry = 1; entry < db_.textPool.size(); ++entry) {
    int number = 0;
    peers::rxfAddSetText(target_, db_.textPool.at(entry), &number);
  }
}

int RxfWriter::finish() {
  const int errors = peers::rxfErrorCount(target_);
  const int result = errors > ignoredErrors_ ? failPeerErrors(errors) : success;
  peers::rxfClose(target_);
  return result;
}

int RxfWriter::failPeerErrors(int told) {
  int code = peers::rxfGetLastError(target_);
  int count = 1;
  if (const PeerErrors more(target_, std::max(told, mostErrorsTaken) - 1); more.count > 0) {
    count += more.count;
    code = more.first;
  }
  char text[peerTextSize] = {};
  peers::rxfErrorStr(target_, code, text);
  return db_.failAs(code == 0 ? ZTB_ERROR_IO : ztbErrorKindOfRxf(code),
                    "%d RXF Error(s). First Error: %s", count, text);
}

int ZTB::WriteRXF(const std::string& fileName, int noDomainCheck) {
  RxfWriter writer(*this, noDomainCheck == 0);
  if (writer.create() != success) {
    return failure;
  }
  const bool overSource = initFrom == Source::rxf && rxf::collections::strhash::equalFolded(
                                                         fileName.c_str(), rxfFileName.c_str());
  if (overSource) {
    CloseRXF(true);
  }
  if (!allReadable()) {
    return failure;
  }
  if (writer.open(fileName) != success || writer.mapSpecialValues() != success) {
    return failure;
  }
  writer.writeLabels();
  if (writer.writeSymbols() != success) {
    return failure;
  }
  writer.writeTexts();
  return writer.finish();
}

}  // namespace ztb
