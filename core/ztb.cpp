#include "core/ztb.h"

#include <cstdarg>
#include <cstdio>
#include <cstring>

#include "core/operations.h"
#include "peers/rgy_family.h"
#include "peers/rxf_family.h"
#include "store/symbol_factory.h"

namespace ztb {

constinit std::atomic<std::int32_t> debugLevel = 0;

ZTB::ZTB() : ZTB(nullptr) {}

ZTB::ZTB(const char* systemDirectory)
    : ztbRec{ZTB_ERROR_NONE, 0, ztbReadRecords, ztbValuesInPlace, ztbHoldValues},
      sysDir(systemDirectory == nullptr ? "" : systemDirectory) {
  SymbolDescription description;
  description.name = "*";
  description.dim = 1;
  description.type = dmap::typeSet;
  description.number = -1;
  description.text = "universe";
  universe = makeSymbol(recordStorage, this, std::move(description));

  const bool made = systemDirectory == nullptr
                        ? peers::rxfCreate(&rxf, peerMessage, sizeof peerMessage)
                        : peers::rxfCreateD(&rxf, sysDir.c_str(), peerMessage, sizeof peerMessage);
  if (!made) {
    rxf = nullptr;
    failAs(ZTB_ERROR_NO_LIBRARY, "RXF create did not succeed: %s", peerMessage);
  }
}

ZTB::~ZTB() {
  freeLiveSolver();
  if (rgy != nullptr) {
    peers::rgyFree(&rgy);
  }
  if (initFrom == Source::rxf) {
    CloseRXF(false);
  }
  if (rxf != nullptr) {
    peers::rxfFree(&rxf);
  }
}

void ZTB::freeLiveSolver() {
  if (solverNumber > 0 && solverLoaded && solverAlg != nullptr) {
    peers::rgyAlgFree(rgy, solverNumber, &solverAlg);
  }
  solverAlg = nullptr;
  solverLoaded = false;
  solverNumber = 0;
}

int ZTB::fail(const char* format, ...) {
  std::va_list arguments;
  va_start(arguments, format);
  std::vsnprintf(lastError, sizeof lastError, format, arguments);
  va_end(arguments);
  errorKind = ZTB_ERROR_REFUSED;
  return failure;
}

int ZTB::failAs(int kind, const char* format, ...) {
  std::va_list arguments;
  va_start(arguments, format);
  std::vsnprintf(lastError, sizeof lastError, format, arguments);
  va_end(arguments);
  errorKind = kind;
  return failure;
}

int ZTB::failOutOfMemory(const char* operation) {
  failAs(ZTB_ERROR_OUT_OF_MEMORY, "Out of memory in %s", operation);
  std::puts(lastError);
  return failure;
}

AbstractZTBSymbol* ZTB::lookUp(const char* name) {
  if (std::strcmp(name, "*") == 0) {
    return universe.get();
  }
  return symbols.contains(name) ? symbols.atName(name) : nullptr;
}

int ZTB::textNumber(const char* text) {
  if (!textPool.contains(text)) {
    textPool.add(text, textPool.size());
  }
  return textPool.value(text);
}

bool ZTB::emptySymbol(AbstractZTBSymbol& symbol) {
  if (!requireReadable(symbol)) {
    return false;
  }
  ++recordChanges;
  symbol.startRecordsAnew();
  symbol.loaded = true;
  return true;
}

bool ZTB::load(AbstractZTBSymbol& symbol) {
  if (!requireReadable(symbol)) {
    return false;
  }
  if (initFrom == Source::pbi && modelReplaced) {
    return failModelReplaced() == success;
  }
  if (initFrom == Source::rxf) {
    return loadFromRXF(symbol);
  }
  symbol.loaded = true;
  if (initFrom == Source::pbi) {
    LoadSymbolFromModel(symbol, nullptr);
    return true;
  }
  if (initFrom == Source::hvex) {
    return readSymbolFromHVEX(symbol, nullptr);
  }
  return fail("Symbol %s not initialized from RXF or PBI: %d", symbol.name.c_str(),
              static_cast<int>(initFrom)) == success;
}

}  // namespace ztb
