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
  bool isIndexed = false;
  int elementPositions = 0;  // of the elements of a set, as far as the declaration tells; else 0
};

// One statement of a section of data, with its semicolon unless the text ends before.
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

// What is given data from elsewhere: its name, and the labels of a record.
struct MathProgFilled {
  std::string name;
  int labels = 0;
};

// A data file that was put together.
struct MathProgData {
  std::string text;
  std::size_t ownLines = 0;  // so many of its lines are as in the file that they come from
};

// The data of `text` without what they give to those that are filled, and then `added`, as a data
// file. Throws ModelError where one statement gives data to such a name and to others in another
// form than a plain table, and where the text ends within a statement.
MathProgData replacedData(const std::string& file, std::string_view text, bool isDataFile,
                          const std::vector<MathProgFilled>& filled, std::string_view added);

}  // namespace lomu

#endif  // ZTB_PROVIDERS_MODEL_MATHPROG_TEXT_H_
