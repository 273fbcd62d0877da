// Records from the execution engine that hosts the library, fetched through its callbacks at the
// first access to a symbol.

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>

#include "core/frame.h"
#include "core/handles.h"
#include "core/operations.h"
#include "exchange/progress.h"
#include "peers/rxf_family.h"

namespace ztb {
namespace {

// The host engine's doubles for the five special values: 1e300, 2e300, 3e300, 4e300 and 5e300.
constexpr SpecialValues hostSpecialValues = {
    std::bit_cast<double>(std::uint64_t{0x7E37E43C8800759C}),
    std::bit_cast<double>(std::uint64_t{0x7E47E43C8800759C}),
    std::bit_cast<double>(std::uint64_t{0x7E51EB2D66005835}),
    std::bit_cast<double>(std::uint64_t{0x7E57E43C8800759C}),
    std::bit_cast<double>(std::uint64_t{0x7E5DDD4BAA009303}),
};

constexpr int hostTextSize = 255;

// Reads one symbol from the host.
class HostReader {
 public:
  HostReader(ZTB& db, AbstractZTBSymbol& symbol, void* target)
      : db_(db), symbol_(symbol), target_(target) {}

  bool read() {
    if (symbol_.type == ZTB_ALIAS) {
      return db_.fail("Cannot load alias %s", symbol_.name.c_str()) == success;
    }
    int number = 0;
    int count = 0;
    if (db_.hvexEntries.findSymbol(shortName().data(), &number, db_.hvexUserMem) != 0) {
      return failAt("findSymbol");
    }
    if (db_.hvexEntries.dataReadRawStart(number, &count, db_.hvexUserMem) != 0) {
      return failAt("dataReadRawStart");
    }
    if (!readRecords(count)) {
      return false;
    }
    return db_.hvexEntries.dataReadDone(db_.hvexUserMem) == 0 || failAt("dataReadDone");
  }

 private:
  bool failAt(const char* entry) {
    return db_.fail("Problems with %s for symbol %s", entry, symbol_.name.c_str()) == success;
  }

  [[nodiscard]] std::array<char, ZTB_TEXT_BUFFER_SIZE> shortName() const {
    std::array<char, ZTB_TEXT_BUFFER_SIZE> text = {};
    const std::size_t length = std::min(symbol_.name.size(), text.size() - 1);
    text[0] = static_cast<char>(length);
    std::copy_n(symbol_.name.data(), length, text.data() + 1);
    return text;
  }

  bool readRecords(int count) {
    KeyBuffer keys = {};
    double values[dmap::maxSlots] = {};
    for (int record = 0; record < count; ++record) {
      int unused = 0;
      if (db_.hvexEntries.dataReadRaw(keys.data(), values, &unused, db_.hvexUserMem) != 0) {
        // A scalar that the host cannot deliver is a scalar without a record.
        return symbol_.dim == 0 || failAt("dataReadRaw");
      }
      if (!mapValues(values)) {
        return false;
      }
      if (target_ != nullptr) {
        peers::rxfDataWriteRaw(target_, keys.data(), values);
      } else {
        symbol_.appendRecord(keys.data(), values);
      }
    }
    return true;
  }

  bool mapValues(double* values) {
    if (symbol_.type == ZTB_SET) {
      return values[0] == 0.0 || mapText(values[0]);
    }
    for (int slot = 0; slot < dmap::slotCount(symbol_.type); ++slot) {
      values[slot] = mapSpecialValue(SpecialValueMode::all, db_.hvexSpecialValues,
                                     internalSpecialValues, values[slot]);
    }
    return true;
  }

  // Replaces the host's text number by the pool's.
  bool mapText(double& value) {
    const bool isNumber = std::abs(value) < 2147483648.0;
    char text[hostTextSize + 2] = {};
    if (!isNumber || db_.hvexEntries.getElemText(static_cast<int>(value), text, hostTextSize,
                                                 db_.hvexUserMem) != 0) {
      return false;
    }
    text[1 + static_cast<unsigned char>(text[0])] = '\0';
    if (db_.textPool.contains(text + 1)) {
      printDetail("Text already exists");
    }
    value = db_.textNumber(text + 1);
    return true;
  }

  ZTB& db_;
  AbstractZTBSymbol& symbol_;
  void* target_;
};

}  // namespace

bool ZTB::readSymbolFromHVEX(AbstractZTBSymbol& symbol, void* target) {
  return HostReader(*this, symbol, target).read();
}

int ztbInitFromHVEX(ztbRec* handle, ztbHostFindSymbol findSymbol,
                    ztbHostDataReadRawStart dataReadRawStart, ztbHostDataReadRaw dataReadRaw,
                    ztbHostDataReadDone dataReadDone, ztbHostGetElemText getElemText,
                    ztbHostLog logCallback, void* userMem) {
  return operation(handle, "ztbInitFromHVEX", [&](ZTB& db) {
    db.hvexEntries = {findSymbol, dataReadRawStart, dataReadRaw, dataReadDone, getElemText};
    db.logCallback = logCallback;
    db.hvexUserMem = userMem;
    db.initFrom = Source::hvexSetup;
    db.hvexSpecialValues = hostSpecialValues;
    ++db.recordChanges;
    db.symbols.clearAll();
    db.initFrom = Source::hvex;
    return success;
  });
}

}  // namespace ztb
