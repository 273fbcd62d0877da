// Makes symbols drive numbers of a model that was written without them: each number gets a column
// of its own, a carrier, which stands still at what the model had until data move it.
#ifndef ZTB_PROVIDERS_MODEL_DRIVING_H_
#define ZTB_PROVIDERS_MODEL_DRIVING_H_

#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <tuple>
#include <unordered_map>
#include <vector>

#include "providers/model/dictionary.h"
#include "providers/model/drive_statement.h"
#include "providers/model/model_data.h"

namespace lomu {

// Where more pairs of rows and columns fit a statement, those are driven that have a coefficient.
inline constexpr std::size_t kMostPairs = 1000000;

class Driving {
 public:
  // REQUIRES: the model gets no further rows or columns but those of add.
  explicit Driving(const ModelData& data) : dictionary_(data) {}

  // Adds the carriers of a statement to the model and says what they drive. `price` is carried by
  // columns price_var. Throws ModelError for what the model does not have and for what another
  // statement drives, and leaves everything as it was.
  void add(ModelData& data, DrivenNumbers& driven, std::string_view text);

 private:
  // A number that the statement drives: its place, and the labels of the symbol's positions.
  struct Target {
    DrivenNumber number;
    std::vector<std::string> labels;
    double base = 0;
  };
  // A family of the model with what its positions are matched with.
  struct Family {
    const DictionarySymbol* symbol;
    std::vector<FamilyPosition> positions;
    std::vector<int> labels;  // the number of each position's label; 0 where it is not given
  };
  using Place = std::tuple<DrivenKind, int, int>;

  void requireFree(const DriveStatement& statement) const;
  [[nodiscard]] Family resolve(const DriveStatement& statement, const FamilyReference& reference,
                               SymbolType type) const;
  [[nodiscard]] std::vector<std::string> names(SymbolType type) const;
  // The number of a label that a position of a family has. Throws with those that it has.
  [[nodiscard]] int labelAt(const DictionarySymbol& symbol, std::size_t position,
                            const std::string& label) const;
  [[nodiscard]] const int* keysOf(const DictionarySymbol& symbol, int element) const;
  // The label numbers that an element gives to the symbol's positions, 0 to those that it does not
  // name; nothing where it does not fit.
  [[nodiscard]] std::optional<std::vector<int>> bind(const Family& family, int element,
                                                     std::size_t positions) const;
  // Puts the labels of an element in the places of the symbol's positions.
  static void spell(const ModelData& data, const Family& family, int element,
                    std::vector<std::string>& labels);
  [[nodiscard]] std::vector<Target> targets(const ModelData& data,
                                            const DriveStatement& statement) const;
  [[nodiscard]] std::vector<Target> pairs(const ModelData& data, std::size_t positions,
                                          const Family& columns, const Family& rows) const;
  static void readBases(const ModelData& data, std::vector<Target>& targets);

  struct Carrier {
    int column;
    double base;
    DrivenNumber first;  // of the numbers that it drives
  };

  Dictionary dictionary_;                              // without carriers
  std::map<std::string, std::size_t> symbols_;         // folded, with the number of their positions
  std::unordered_map<std::string, Carrier> carriers_;  // by folded name
  std::map<Place, std::string> drivenBy_;              // the symbol
};

}  // namespace lomu

#endif  // ZTB_PROVIDERS_MODEL_DRIVING_H_
