// The text of a MathProg model, looked at as far as its data go: which sets and parameters it
// declares, and where its data stand. GLPK reads all the rest.
#ifndef ZTB_PROVIDERS_MODEL_MATHPROG_TEXT_H_
#define ZTB_PROVIDERS_MODEL_MATHPROG_TEXT_H_

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace lomu {

// A set or parameter that a model declares.
struct MathProgSymbol {
  std::string name;
  bool isSet = false;
  bool isComputed = false;  // by the model itself, so that it takes no data
};

// One statement of a section of data, with its semicolon.
struct MathProgStatement {
  std::string_view text;
  std::vector<std::string_view> words;  // names, signs and numbers; labels in quotes are left out
};

// Takes a text apart; it has to live on.
class MathProgText {
 public:
  explicit MathProgText(std::string_view text);

  // In the model's part.
  [[nodiscard]] const std::vector<MathProgSymbol>& symbols() const { return symbols_; }
  // Behind "data;", or all of a text that is a data file.
  [[nodiscard]] std::vector<MathProgStatement> dataStatements(bool isDataFile) const;

 private:
  std::vector<MathProgStatement> statements_;
  std::size_t firstOfData_ = 0;  // in statements_
  std::vector<MathProgSymbol> symbols_;
};

// The data of `text` without those statements that give data to one of `names`, and then `added`,
// as a data file. Throws ModelError where one statement gives data to such a name and to others.
std::string replacedData(const std::string& file, std::string_view text, bool isDataFile,
                         const std::vector<std::string>& names, std::string_view added);

}  // namespace lomu

#endif  // ZTB_PROVIDERS_MODEL_MATHPROG_TEXT_H_
