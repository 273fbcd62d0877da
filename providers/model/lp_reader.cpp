#include "providers/model/lp_reader.h"

#include <cstddef>
#include <utility>
#include <vector>
#include <ztb/case_folding.hpp>

#include "providers/model/file_bounds.h"
#include "providers/model/lp_expression.h"
#include "providers/model/lp_rows.h"
#include "providers/model/lp_sections.h"
#include "providers/model/lp_tokens.h"

namespace lomu {

namespace {

class LpReader {
 public:
  LpReader(const std::string& file, std::string_view text)
      : tokens_(file, text), columns_(model_.columns), rows_(tokens_, columns_, model_) {}

  ModelData read() {
    const auto sense = lpSection(tokens_);
    if (sense == LpSection::unsupported) failUnsupported();
    if (sense != LpSection::minimize && sense != LpSection::maximize) {
      tokens_.failExpecting("Minimize or Maximize first");
    }
    takeLpSection(tokens_);
    model_.maximize = sense == LpSection::maximize;
    rows_.readObjective();
    while (tokens_.next().kind != LpTokenKind::end) readSection();
    rows_.nameObjective();
    bindBinaries();
    return std::move(model_);
  }

 private:
  struct Binary {
    int column;
    std::size_t line;
  };

  void readSection() {
    switch (lpSection(tokens_).value_or(LpSection::unsupported)) {
      case LpSection::rows:
        if (std::exchange(hasRows_, true)) tokens_.failExpecting("one section of rows only");
        takeLpSection(tokens_);
        return rows_.readRows();
      case LpSection::bounds:
        takeLpSection(tokens_);
        while (!sectionEnds()) readBound();
        return;
      case LpSection::integers:
        takeLpSection(tokens_);
        while (!sectionEnds()) readInteger();
        return;
      case LpSection::binaries:
        takeLpSection(tokens_);
        while (!sectionEnds()) readBinary();
        return;
      case LpSection::end:
        takeLpSection(tokens_);
        if (tokens_.next().kind != LpTokenKind::end) tokens_.failExpecting("nothing after End");
        return;
      case LpSection::minimize:
      case LpSection::maximize:
        tokens_.failExpecting("one objective only");
      case LpSection::unsupported:
        failUnsupported();
    }
  }

  [[noreturn]] void failUnsupported() const {
    tokens_.fail(tokens_.next().line,
                 "a section " + shown(tokens_.next().text) +
                     " is not supported, expected Subject To, Bounds, Generals, Binaries or End");
  }

  [[nodiscard]] bool sectionEnds() const {
    return tokens_.next().kind == LpTokenKind::end || lpSection(tokens_);
  }

  int takeColumn() {
    if (tokens_.next().kind != LpTokenKind::name || isInfinityWord(tokens_.next())) {
      tokens_.failExpecting("the name of a variable");
    }
    const LpToken name = tokens_.take();
    const auto column = columns_.find(name.text);
    if (!column) {
      tokens_.fail(name.line, shown(name.text) +
                                  " is no variable so far, expected one of the objective or a row");
    }
    return *column;
  }

  void readBound() {
    const LpTokenKind kind = tokens_.next().kind;
    if (kind != LpTokenKind::name || isInfinityWord(tokens_.next())) return readBoundFromValue();
    const int column = takeColumn();
    if (tokens_.next().kind == LpTokenKind::name && ztb::sameFolded(tokens_.next().text, "free")) {
      tokens_.take();
      setBound(column, LpRelation::greaterOrEqual, -kInfinity, 0);
      setBound(column, LpRelation::lessOrEqual, kInfinity, 0);
      return;
    }
    const LpRelation relation = takeRelation(tokens_);
    const std::size_t line = tokens_.next().line;
    setBound(column, relation, takeValue(), line);
  }

  // value <= x, or value <= x <= value.
  void readBoundFromValue() {
    const std::size_t line = tokens_.next().line;
    const double first = takeValue();
    const LpRelation relation = takeRelation(tokens_);
    const int column = takeColumn();
    setBound(column, mirrored(relation), first, line);
    const std::size_t secondLine = tokens_.next().line;
    const auto second = takeRelationIf(tokens_);
    if (!second) return;
    if (*second != relation || relation == LpRelation::equal) {
      tokens_.fail(secondLine,
                   "the two relations of the bound do not go together, expected two \"<=\" or two "
                   "\">=\"");
    }
    setBound(column, *second, takeValue(), secondLine);
    const ColumnData& data = model_.columns[static_cast<std::size_t>(column)];
    if (data.lower > data.upper) {
      tokens_.fail(secondLine, "the lower bound of " + shown(data.name) +
                                   " is above the upper one, expected the smaller first");
    }
  }

  double takeValue() {
    double sign = 1;
    while (true) {
      const LpTokenKind kind = tokens_.next().kind;
      if (kind != LpTokenKind::plus && kind != LpTokenKind::minus) break;
      if (tokens_.take().kind == LpTokenKind::minus) sign = -sign;
    }
    if (isInfinityWord(tokens_.next())) {
      tokens_.take();
      return sign * kInfinity;
    }
    if (tokens_.next().kind != LpTokenKind::number) {
      tokens_.failExpecting("a number or infinity as bound");
    }
    return fromFile(sign * tokens_.take().number);
  }

  void setBound(int column, LpRelation relation, double value, std::size_t line) {
    const auto at = static_cast<std::size_t>(column);
    ColumnData& data = model_.columns[at];
    if (relation != LpRelation::lessOrEqual) {
      if (value == kInfinity) failInfinite(data, "lower", line);
      data.lower = value;
    }
    if (relation != LpRelation::greaterOrEqual) {
      if (value == -kInfinity) failInfinite(data, "upper", line);
      data.upper = value;
      if (upperGiven_.size() <= at) upperGiven_.resize(model_.columns.size());
      upperGiven_[at] = true;
    }
  }

  [[noreturn]] void failInfinite(const ColumnData& data, const std::string& side,
                                 std::size_t line) const {
    tokens_.fail(line, "the " + side + " bound of " + shown(data.name) +
                           " is infinite on the wrong side, expected a value that can be reached");
  }

  void readInteger() {
    ColumnData& data = model_.columns[static_cast<std::size_t>(takeColumn())];
    if (data.kind != ColumnKind::binary) data.kind = ColumnKind::integer;
  }

  void readBinary() {
    const std::size_t line = tokens_.next().line;
    const int column = takeColumn();
    model_.columns[static_cast<std::size_t>(column)].kind = ColumnKind::binary;
    binaries_.push_back({column, line});
  }

  // Bounds that are given stay, so that a binary variable can be fixed.
  void bindBinaries() {
    upperGiven_.resize(model_.columns.size());
    for (const Binary& binary : binaries_) {
      const auto at = static_cast<std::size_t>(binary.column);
      ColumnData& data = model_.columns[at];
      if (!upperGiven_[at]) data.upper = 1;
      if (data.lower < 0 || data.upper > 1) {
        tokens_.fail(binary.line, shown(data.name) +
                                      " is binary but has bounds beyond 0 and 1, expected bounds "
                                      "within them or none");
      }
    }
  }

  ModelData model_;
  LpTokens tokens_;
  LpColumns columns_;
  LpRowReader rows_;
  std::vector<bool> upperGiven_;
  std::vector<Binary> binaries_;
  bool hasRows_ = false;
};

}  // namespace

ModelData readLp(const std::string& file, std::string_view text) {
  return LpReader(file, text).read();
}

}  // namespace lomu
