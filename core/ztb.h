// The whole database: labels, texts, symbols, special values, and the handles of the peers it uses.
//
// One thread at a time may use a database, for reading too: lazy loads and late-built tables change
// it. Two databases may be used from two threads: what they share is the trace level, and the peer
// families, which guard their loading. The object owns its labels, texts, symbols, the universe
// symbol, the exchange-file object, the solver catalogue and a live solver; a model with its
// environment and dictionary stays the caller's. A failure leaves its text in `lastError` and its
// kind in `errorKind`, which a success does not clear.
#ifndef ZTB_CORE_ZTB_H_
#define ZTB_CORE_ZTB_H_

#include <ztb/types.h>

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "core/string_pool.h"
#include "core/symbol_table.h"
#include "core/uel_list.h"
#include "exchange/special_values.h"
#include "store/abstract_symbol.h"

namespace ztb {

inline constexpr int success = 1;
inline constexpr int failure = 0;

// Where symbols that are not loaded take their records from. The codes show in messages.
enum class Source : std::int32_t {
  none = 0,       // FROM_NOSOURCE: just created
  rxf = 1,        // FROM_RXF: the exchange file that is open in `rxf`
  pbi = 2,        // FROM_PBI: the registered model
  db = 3,         // FROM_DB: nowhere, everything is in memory
  hvex = 4,       // FROM_HVEX: the host engine's callbacks
  hvexSetup = 6,  // FROM_HVEX_SETUP: while the host engine is being attached
};

// Trace level of the process; above 0 every operation prints its name. Any thread may set it.
extern std::atomic<std::int32_t> debugLevel;
inline std::int32_t traceLevel() {
  return debugLevel.load(std::memory_order_relaxed);
}

// The host engine's entry points that deliver records.
struct HvexEntries {
  ztbHostFindSymbol findSymbol = nullptr;
  ztbHostDataReadRawStart dataReadRawStart = nullptr;
  ztbHostDataReadRaw dataReadRaw = nullptr;
  ztbHostDataReadDone dataReadDone = nullptr;
  ztbHostGetElemText getElemText = nullptr;
};

class ZTB : public ztbRec {
 public:
  static constexpr std::size_t messageSize = 256;
  static constexpr std::size_t peerMessageSize = 228;

  // Makes an empty database with its universe and its exchange-file object. With a system
  // directory, the peers are looked for there. When the exchange-file object cannot be made,
  // `rxf` is null and `lastError` says "RXF create did not succeed: %s"; the database is usable.
  ZTB();
  explicit ZTB(const char* systemDirectory);
  ZTB(const ZTB&) = delete;
  ZTB& operator=(const ZTB&) = delete;
  ~ZTB();

  // Puts a formatted text, cut to 255 chars, into `lastError`, and its kind beside it: a ZTB_ERROR_
  // code, ZTB_ERROR_REFUSED where none is given; `failure`.
  [[gnu::format(printf, 2, 3)]] int fail(const char* format, ...);
  [[gnu::format(printf, 3, 4)]] int failAs(int kind, const char* format, ...);
  // The same for running out of memory: "Out of memory in OPERATION", also on standard output.
  int failOutOfMemory(const char* operation);

  // Makes a symbol and takes it into the table. `domains` and `domainNames` have `dim` entries:
  // a one-dimensional set or alias of this database, or null and a name. Null, with the text in
  // `lastError`, when the name exists or a domain is refused. Moves a database without a source to
  // `Source::db`.
  AbstractZTBSymbol* addSymbol(const SymbolDescription& description,
                               AbstractZTBSymbol* const* domains, const char* const* domainNames);

  // The symbol of a name, an alias unresolved; "*" is the universe. Null if there is none.
  AbstractZTBSymbol* lookUp(const char* name);

  // Whether the symbol's records may be used: reads them from the source if that has not been
  // done. A symbol counts as loaded from then on, also when reading failed. One that its file did
  // not give whole stays unreadable: each use fails with the same text.
  bool ensureLoaded(AbstractZTBSymbol& symbol) {
    return (symbol.loaded && symbol.unreadable == nullptr) || load(symbol);
  }
  // Fails with the text that an unreadable symbol keeps; true, with nothing done, for another.
  bool requireReadable(const AbstractZTBSymbol& symbol) {
    return symbol.unreadable == nullptr ||
           failAs(symbol.unreadable->kind, "%s", symbol.unreadable->text.c_str()) == success;
  }
  // Empties a symbol that is about to get other records; those that are still in a source are given
  // up without being read. False for an unreadable one, as above.
  bool emptySymbol(AbstractZTBSymbol& symbol);

  // The number of an explanatory text, which enters the pool if it is new.
  int textNumber(const char* text);

  // Maps a value of a caller to the internal coding, and back.
  [[nodiscard]] double mapIn(double value) const {
    return mapSpecialValue(specialValueMode, userSpecialValues, internalSpecialValues, value);
  }
  [[nodiscard]] double mapOut(double value) const {
    if (isOrdinary(value)) {
      return value;
    }
    return mapSpecialValue(specialValueMode, internalSpecialValues, specialValues, value);
  }

  // Exchange files; defined with the exchange room.

  // Makes this new database the mirror of a file, which stays open; the records stay in the file.
  int InitFromRXF(const std::string& fileName);
  // Closes the file; with `loadRemain` every symbol still out is read first.
  int CloseRXF(bool loadRemain);
  // Writes the database to a file; `noDomainCheck` 0 has records checked against their domains.
  int WriteRXF(const std::string& fileName, int noDomainCheck);
  // Reads all records of a symbol from the open file into the symbol, or, with a `target`, on to
  // that exchange-file object. When the file does not give them all, "Symbol %s could not be read
  // from %s: %s", and the symbol is left empty and unreadable; with a `target` it stays as it was.
  bool readSymbolFromRXF(AbstractZTBSymbol& symbol, void* target);

  // Other sources; defined with the exchange room.

  // Makes this empty database a deep copy of another one's labels, symbols and records.
  int InitFromDB(ZTB& source);
  // Reads all records of a symbol from the host engine, as `readSymbolFromRXF` does from a file.
  bool readSymbolFromHVEX(AbstractZTBSymbol& symbol, void* target);

  // Models and solvers; defined in the bridge room.

  // Ties the database to a model, which stays the caller's, and reaches its dictionary. Where
  // another one was prepared, that is undone, and the new one has to be prepared before it is used.
  int RegisterPBI(void* model);
  // Registers a model and fills this empty database with its labels and symbols.
  int InitFromDict(void* model);
  // Reaches the solver environment and catalogue and keeps the model's present levels and
  // marginals.
  int InitUpdate();
  // Reads all records of a symbol from the model into the symbol, or, with an `rxfFile`, on to that
  // exchange-file object. A symbol that the model does not have gets no records. Throws
  // std::logic_error when the model has it with another dimension.
  void LoadSymbolFromModel(AbstractZTBSymbol& symbol, void* rxfFile);
  // The failure of whatever would use a registered model by what belongs to the one before it.
  int failModelReplaced();
  // Ends the live solver, if there is one; the next solve starts without any.
  void freeLiveSolver();
  // One of the model's base values. Throws std::logic_error when they were not read, or when there
  // is none for that place.
  static double baseValue(const std::unique_ptr<double[]>& base, int count, int place);

  dmap::StorageKind recordStorage = dmap::StorageKind::dMap;  // store of new symbols
  void* rxf = nullptr;
  std::string rxfFileName;
  void* solverAlg = nullptr;
  void* pbi = nullptr;
  void* snv = nullptr;
  void* nmt = nullptr;
  void* rgy = nullptr;
  Source initFrom = Source::none;
  std::string sysDir;
  std::int32_t colCount = 0;
  std::int32_t rowCount = 0;
  std::unique_ptr<double[]> initVarLevels;  // colCount + 1 elements, as the marginals
  std::unique_ptr<double[]> initVarMarginals;
  std::unique_ptr<double[]> initEquLevels;  // rowCount + 1 elements, as the marginals
  std::unique_ptr<double[]> initEquMarginals;
  bool altBounds = false;
  bool modelReplaced = false;     // another model than the one that was prepared is registered
  std::int32_t solverNumber = 0;  // 0: none loaded
  bool solverLoaded = false;
  HvexEntries hvexEntries;
  ztbHostLog logCallback = nullptr;
  void* hvexUserMem = nullptr;
  strpool::TStrHashPool textPool{{"", 0}};
  std::int32_t dvState = 0;  // 1: a check of the whole database is under way
  std::unique_ptr<AbstractZTBSymbol> universe;
  SpecialValues specialValues = internalSpecialValues;      // what the caller is shown
  SpecialValues userSpecialValues = internalSpecialValues;  // what the caller means by them
  SpecialValues hvexSpecialValues = {};
  SpecialValueMode specialValueMode = SpecialValueMode::none;
  symtable::TSymbolTable symbols;
  // Symbols that another took the place of, without their records. Domains and aliases of other
  // symbols still point to them.
  std::vector<std::unique_ptr<AbstractZTBSymbol>> retiredSymbols;
  bool writeRecording = false;
  char peerMessage[peerMessageSize] = {};
  char lastError[messageSize] = {};
  uellist::UELList uels{lastError, messageSize, &errorKind};

 private:
  bool isPreparedModel(void* model) const;
  void undoPreparation();
  bool load(AbstractZTBSymbol& symbol);
  bool loadAllSymbols();
  bool loadFromRXF(AbstractZTBSymbol& symbol);
  bool failReading(const AbstractZTBSymbol& symbol, int kind, const char* reason);
  bool allReadable();
  void markAliasTarget(AbstractZTBSymbol& alias);
  bool setDomains(AbstractZTBSymbol& symbol, AbstractZTBSymbol* const* domains,
                  const char* const* domainNames);
  bool acceptDomain(const AbstractZTBSymbol& domain);
};

}  // namespace ztb

#endif  // ZTB_CORE_ZTB_H_
