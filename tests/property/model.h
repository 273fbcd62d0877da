// A database as a client may picture it, on standard containers: what every operation should answer
// and leave, worked out without any of the library's own structures. The property tests hold the
// library against it.
#ifndef ZTB_TESTS_PROPERTY_MODEL_H_
#define ZTB_TESTS_PROPERTY_MODEL_H_

#include <array>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace ztbtest {

using Key = std::vector<int>;
using Slots = std::array<double, 5>;

// What an operation answers. Every operation also leaves Model::lastError behind.
struct Answer {
  int result = 0;
  // Number, text or values that the operation hands out; empty when it hands out nothing.
  std::string out;

  bool operator==(const Answer&) const = default;
};

struct ModelSymbol {
  std::string name;
  std::string text;
  int dim = 0;
  int type = 0;
  int userInfo = 0;
  int number = 0;
  // Position of the symbol that an alias stands for; -1 is the universe.
  int target = -1;
  bool loaded = true;
  std::map<Key, Slots> records;

  int slotCount() const { return type < 2 ? 1 : 5; }
};

// A record handle: on a record, or past the end after the last record was deleted through it.
struct Cursor {
  size_t symbol = 0;
  // One number for each position, 0 for any; none for a walk through the whole symbol.
  std::optional<Key> mask;
  std::optional<Key> key;
};

class Model {
 public:
  Model();

  // The state that opening the file written from this database has.
  Model reopened() const;
  // How many records the exchange file refuses: those with numbers that are no labels.
  int unwritableRecords() const;

  // Labels.
  Answer mergeLabel(const std::string& label);
  Answer findLabel(const std::string& label);
  Answer labelOf(int number);

  // Symbols. A position addresses `symbols`.
  Answer addSymbol(const std::string& name, int dim, int type, int userInfo,
                   const std::string& text);
  Answer findSymbol(const std::string& name, bool resolveAlias);
  Answer symbolByIndex(int index);
  Answer symbolByNumber(int number);
  Answer countRecords(size_t symbol);
  Answer clear(size_t symbol);
  void setUserInfo(size_t symbol, int userInfo) { symbols[symbol].userInfo = userInfo; }

  // Records.
  Answer addRecord(size_t symbol, const std::vector<std::string>& labels);
  Answer mergeRecord(size_t symbol, const std::vector<std::string>& labels);
  Answer findRecord(size_t symbol, const std::vector<std::string>& labels);
  Answer storeByNumber(size_t symbol, const Key& key, bool check, const Slots* values);
  Answer storeSetByNumber(size_t symbol, const Key& key, bool check, const std::string* text);
  // First or last record of the slice; on success the cursor stands there.
  Answer findInSlice(size_t symbol, const std::vector<std::string>& labels, bool last);
  Answer findFirstOrLast(size_t symbol, bool last);

  // The record under the cursor, which must stand somewhere.
  Answer moveNext();
  Answer movePrev();
  Answer hasNext();
  Answer hasPrev();
  Answer readSlot(int slot);
  Answer writeSlot(int slot, double value);
  Answer readText();
  Answer writeText(const std::string& text);
  Answer readKey(int index);
  Answer erase();

  Answer closeFile(bool loadRemain);
  void setSpecialValues(const std::array<double, 5>& spelling);

  std::vector<std::string> labels{" "};
  std::vector<std::string> texts{""};
  std::vector<ModelSymbol> symbols;
  std::optional<Cursor> cursor;
  // The text of the last failure. With `lastErrorIsStart` set, only how it starts is known.
  std::string lastError;
  bool lastErrorIsStart = false;

 private:
  Answer fail(const std::string& text);
  Answer failUnexpected(const std::string& operation);

  // The label as it is stored; nothing, with the text, when it is refused.
  std::optional<std::string> normalised(const std::string& label);
  std::optional<int> mergedNumber(const std::string& label);
  // -1 when the label is acceptable but unknown.
  std::optional<int> knownNumber(const std::string& label);
  int textNumber(const std::string& text);
  int positionOf(const std::string& name) const;

  bool ensureLoaded(ModelSymbol& symbol);
  std::optional<Key> mergedKey(const ModelSymbol& symbol, const std::vector<std::string>& labels);
  static std::optional<Slots> defaults(const ModelSymbol& symbol);
  bool numbersAreKnown(const ModelSymbol& symbol, const Key& key);
  static void store(ModelSymbol& symbol, const Key& key, const Slots& values, bool replace);
  void standOn(size_t symbol, const Key& key, std::optional<Key> mask = {});

  double mappedOut(double value) const;
  double mappedIn(double value) const;

  ModelSymbol& current() { return symbols[cursor->symbol]; }
  // The record under the cursor; null past the end.
  Slots* currentSlots();
  bool inSlice(const Key& key) const;
  std::optional<Key> following();
  std::optional<Key> preceding();

  std::map<std::string, int> labelNumbers_;
  std::map<std::string, int> textNumbers_{{"", 0}};
  // 0 new, 1 a file, 3 in memory.
  int source_ = 0;
  std::array<double, 5> spelling_;
  int mode_ = 0;
};

// The library's own five special values.
const std::array<double, 5>& internalSpecialValues();

// Text forms in which outcomes are compared.
std::string numberText(int number);
std::string valueText(double value);

}  // namespace ztbtest

#endif  // ZTB_TESTS_PROPERTY_MODEL_H_
