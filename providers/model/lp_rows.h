// The objective and the rows of an LP file.
#ifndef ZTB_PROVIDERS_MODEL_LP_ROWS_H_
#define ZTB_PROVIDERS_MODEL_LP_ROWS_H_

#include <cstddef>
#include <optional>
#include <string>
#include <unordered_map>

#include "providers/model/lp_expression.h"
#include "providers/model/lp_tokens.h"
#include "providers/model/model_data.h"

namespace lomu {

enum class LpRelation { lessOrEqual, greaterOrEqual, equal };

// The relation as it reads from its other side.
LpRelation mirrored(LpRelation relation);

// Takes the next token if it is a relation.
std::optional<LpRelation> takeRelationIf(LpTokens& tokens);
// Takes the next token, which has to be a relation.
LpRelation takeRelation(LpTokens& tokens);

class LpRowReader {
 public:
  LpRowReader(LpTokens& tokens, LpColumns& columns, ModelData& model)
      : tokens_(tokens), columns_(columns), model_(model) {}

  // Reads the objective, up to the keyword of the next section.
  void readObjective();
  // Reads rows up to the keyword of the next section.
  void readRows();
  // Names the objective and the rows that the file did not name. To be called when all are read.
  void nameTheRest();

 private:
  void readRow();
  LpExpression readSide(LpPlace place);
  std::optional<std::string> takeLabel();
  [[nodiscard]] std::string shownRow(const std::string& name) const;
  void enterName(const std::string& name, LpPosition position);
  // Adds row: lower <= expression <= upper; the constant of the expression goes into the bounds.
  // A row without a label has no name yet.
  void addRow(LpPosition position, std::string name, const LpExpression& expression, double lower,
              double upper);
  void addTerms(const LpExpression& expression, int row);

  LpTokens& tokens_;
  LpColumns& columns_;
  ModelData& model_;
  std::unordered_map<std::string, std::size_t> lineOfName_;
};

}  // namespace lomu

#endif  // ZTB_PROVIDERS_MODEL_LP_ROWS_H_
