#include "providers/model/lp_rows.h"

#include <cmath>
#include <utility>

#include "providers/model/file_bounds.h"
#include "providers/model/lp_sections.h"

namespace lomu {

LpRelation mirrored(LpRelation relation) {
  switch (relation) {
    case LpRelation::lessOrEqual:
      return LpRelation::greaterOrEqual;
    case LpRelation::greaterOrEqual:
      return LpRelation::lessOrEqual;
    default:
      return relation;
  }
}

std::optional<LpRelation> takeRelationIf(LpTokens& tokens) {
  if (tokens.takeIf(LpTokenKind::lessOrEqual)) return LpRelation::lessOrEqual;
  if (tokens.takeIf(LpTokenKind::greaterOrEqual)) return LpRelation::greaterOrEqual;
  if (tokens.takeIf(LpTokenKind::equal)) return LpRelation::equal;
  return std::nullopt;
}

LpRelation takeRelation(LpTokens& tokens) {
  const auto relation = takeRelationIf(tokens);
  if (!relation) tokens.failExpecting(R"("<=", ">=" or "=")");
  return *relation;
}

void LpRowReader::readObjective() {
  const LpPosition position = tokens_.next().position;
  std::string& name = model_.rows[0].name;
  name.clear();
  if (auto label = takeLabel()) {
    enterName(*label, position);
    name = std::move(*label);
  }
  const LpExpression sum = readLpExpression(tokens_, columns_, LpPlace::objective);
  if (tokens_.next().kind != LpTokenKind::end && !lpSection(tokens_)) {
    tokens_.failExpecting(R"("+", "-" or a section such as Subject To after the objective)");
  }
  if (!std::isfinite(fromFile(sum.constant))) {
    tokens_.fail(position, "the constant of the objective is infinite, expected a size below 1e30");
  }
  model_.objectiveConstant = sum.constant;
  addTerms(sum, 0);
}

void LpRowReader::readRows() {
  while (tokens_.next().kind != LpTokenKind::end && !lpSection(tokens_)) readRow();
}

void LpRowReader::nameTheRest() {
  for (std::size_t i = 0; i < model_.rows.size(); ++i) {
    std::string& name = model_.rows[i].name;
    if (!name.empty()) continue;
    name = i == 0 ? "objective" : "R" + std::to_string(i);
    while (!lineOfName_.try_emplace(name, 0).second) name += '_';
  }
}

void LpRowReader::readRow() {
  const LpPosition position = tokens_.next().position;
  const auto label = takeLabel();
  if (label) enterName(*label, position);
  const std::string name = label.value_or("");
  LpExpression left = readSide(LpPlace::leftSide);
  LpRelation relation = takeRelation(tokens_);
  LpExpression right = readSide(LpPlace::rightSide);
  const LpPosition second = tokens_.next().position;
  if (const auto secondRelation = takeRelationIf(tokens_)) {
    const LpExpression third = readSide(LpPlace::rightSide);
    if (!left.isConstant() || !third.isConstant()) {
      tokens_.fail(second, "a second relation in row " + shownRow(name) +
                               ", whose first and last side are not both numbers; expected "
                               "such as -3 <= x + y <= 5, or a label before a new row");
    }
    if (*secondRelation != relation || relation == LpRelation::equal) {
      tokens_.fail(second, "the two relations of row " + shownRow(name) +
                               R"( do not go together, expected two "<=" or two ">=")");
    }
    const bool ascends = relation == LpRelation::lessOrEqual;
    const double lower = ascends ? left.constant : third.constant;
    const double upper = ascends ? third.constant : left.constant;
    return addRow(position, name, right, lower, upper);
  }
  if (left.isConstant() && !right.isConstant()) {
    std::swap(left, right);
    relation = mirrored(relation);
  }
  const double rhs = std::exchange(right.constant, 0);
  left.add(right, -1);
  double lower = rhs;
  double upper = rhs;
  if (relation == LpRelation::lessOrEqual) lower = -kInfinity;
  if (relation == LpRelation::greaterOrEqual) upper = kInfinity;
  addRow(position, name, left, lower, upper);
}

// The name that the row has or would have.
std::string LpRowReader::shownRow(const std::string& name) const {
  return shown(name.empty() ? "R" + std::to_string(model_.rows.size()) : name);
}

LpExpression LpRowReader::readSide(LpPlace place) {
  switch (tokens_.next().kind) {
    case LpTokenKind::plus:
    case LpTokenKind::minus:
    case LpTokenKind::number:
    case LpTokenKind::openBracket:
      break;
    case LpTokenKind::name:
      if (tokens_.second().kind != LpTokenKind::colon && !lpSection(tokens_)) break;
      [[fallthrough]];
    default:
      tokens_.failExpecting("a number, a name or a bracket");
  }
  return readLpExpression(tokens_, columns_, place);
}

std::optional<std::string> LpRowReader::takeLabel() {
  if (tokens_.next().kind != LpTokenKind::name) return std::nullopt;
  if (tokens_.second().kind != LpTokenKind::colon) return std::nullopt;
  std::string label(tokens_.take().text);
  tokens_.take();
  return label;
}

void LpRowReader::enterName(const std::string& name, LpPosition position) {
  const auto [entry, isNew] = lineOfName_.try_emplace(name, position.line);
  if (isNew) return;
  tokens_.fail(position, "the row name " + shown(name) + " stands in line " +
                             std::to_string(entry->second) + " already, expected another one");
}

void LpRowReader::addRow(LpPosition position, std::string name, const LpExpression& expression,
                         double lower, double upper) {
  RowData row{std::move(name)};
  lower = fromFile(lower - expression.constant);
  upper = fromFile(upper - expression.constant);
  if (const char* const wrong = setRowBounds(row, lower, upper)) {
    tokens_.fail(position, "row " + shownRow(row.name) + " " + wrong);
  }
  addTerms(expression, static_cast<int>(model_.rows.size()));
  model_.rows.push_back(std::move(row));
}

void LpRowReader::addTerms(const LpExpression& expression, int row) {
  for (const Term& term : expression.terms) {
    model_.terms.push_back({row, term.column, term.value});
  }
  for (const Product& product : expression.products) {
    model_.products.push_back({row, product.column1, product.column2, product.value});
  }
}

}  // namespace lomu
