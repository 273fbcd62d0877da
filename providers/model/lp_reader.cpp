#include "providers/model/lp_reader.h"

#include <algorithm>
#include <cstddef>
#include <utility>
#include <ztb/case_folding.hpp>

#include "providers/model/file_bounds.h"
#include "providers/model/file_notes.h"
#include "providers/model/lp_expression.h"
#include "providers/model/lp_rows.h"
#include "providers/model/lp_sections.h"
#include "providers/model/lp_sets.h"
#include "providers/model/lp_tokens.h"

namespace lomu {

namespace {

class LpReader {
 public:
  LpReader(const std::string& file, std::string_view text)
      : notes_(file),
        tokens_(file, text),
        columns_(model_.columns),
        rows_(tokens_, columns_, model_) {}

  ModelData read() {
    const auto sense = lpSection(tokens_);
    if (sense == LpSection::unsupported) failUnsupported();
    if (sense != LpSection::minimize && sense != LpSection::maximize) {
      tokens_.failExpecting("Minimize or Maximize first");
    }
    takeLpSection(tokens_);
    model_.maximize = sense == LpSection::maximize;
    rows_.readObjective();
    while (!over_) readSection();
    rows_.nameTheRest();
    bindBinaries();
    model_.notes = notes_.texts();
    return std::move(model_);
  }

 private:
  void readSection() {
    if (tokens_.next().kind == LpTokenKind::end) {
      tokens_.failExpecting("another section or End: the file is cut off");
    }
    const LpSection section = lpSection(tokens_).value_or(LpSection::unsupported);
    switch (section) {
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
      case LpSection::semiContinuous:
        takeLpSection(tokens_);
        while (!sectionEnds()) at(takeColumn()).semiContinuous = true;
        return;
      case LpSection::sets:
      case LpSection::sets1:
      case LpSection::sets2:
        takeLpSection(tokens_);
        return readLpSets(tokens_, columns_, section, model_);
      case LpSection::end:
        return end();
      case LpSection::minimize:
      case LpSection::maximize:
        tokens_.failExpecting("one objective only");
      case LpSection::unsupported:
        failUnsupported();
    }
  }

  void end() {
    over_ = true;
    if (const auto& behind = tokens_.behindEnd()) {
      notes_.add("behind", behind->line, behind->column, "what stands behind End is passed over");
    }
  }

  [[noreturn]] void failUnsupported() const {
    tokens_.fail(tokens_.next().position,
                 "a section " + shown(tokens_.next().text) +
                     " is not supported, expected Subject To, Bounds, Generals, Binaries, "
                     "Semi-Continuous, SOS or End");
  }

  [[nodiscard]] bool sectionEnds() const {
    return tokens_.next().kind == LpTokenKind::end || lpSection(tokens_);
  }

  [[nodiscard]] ColumnData& at(int column) {
    return model_.columns[static_cast<std::size_t>(column)];
  }

  // The column that is named next; it may be new here.
  int takeColumn() {
    if (tokens_.next().kind != LpTokenKind::name || isInfinityWord(tokens_.next())) {
      tokens_.failExpecting("the name of a variable");
    }
    const LpToken name = tokens_.take();
    if (const auto known = columns_.find(name.text)) return *known;
    constexpr std::string_view kSubject = "only here";
    if (!notes_.count(kSubject)) {
      notes_.add(kSubject, name.position.line, name.position.column,
                 "the variable " + shown(name.text) +
                     " stands in no row and not in the objective; it is taken all the same");
    }
    return columns_.findOrAdd(name.text);
  }

  void readBound() {
    const LpTokenKind kind = tokens_.next().kind;
    if (kind != LpTokenKind::name || isInfinityWord(tokens_.next())) return readBoundFromValue();
    const int column = takeColumn();
    if (tokens_.next().kind == LpTokenKind::name && ztb::sameFolded(tokens_.next().text, "free")) {
      tokens_.take();
      setBound(column, LpRelation::greaterOrEqual, -kInfinity, {});
      setBound(column, LpRelation::lessOrEqual, kInfinity, {});
      return;
    }
    const LpRelation relation = takeRelation(tokens_);
    const LpPosition position = tokens_.next().position;
    setBound(column, relation, takeValue(), position);
  }

  // value <= x, or value <= x <= value.
  void readBoundFromValue() {
    const LpPosition position = tokens_.next().position;
    const double first = takeValue();
    const LpRelation relation = takeRelation(tokens_);
    const int column = takeColumn();
    setBound(column, mirrored(relation), first, position);
    const LpPosition secondPosition = tokens_.next().position;
    const auto second = takeRelationIf(tokens_);
    if (!second) return;
    if (*second != relation || relation == LpRelation::equal) {
      tokens_.fail(secondPosition,
                   "the two relations of the bound do not go together, expected two \"<=\" or two "
                   "\">=\"");
    }
    setBound(column, *second, takeValue(), secondPosition);
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

  void setBound(int column, LpRelation relation, double value, LpPosition position) {
    ColumnData& data = at(column);
    if (relation != LpRelation::lessOrEqual) {
      if (value == kInfinity) failInfinite(data, "lower", position);
      data.lower = value;
    }
    if (relation != LpRelation::greaterOrEqual) {
      if (value == -kInfinity) failInfinite(data, "upper", position);
      data.upper = value;
    }
  }

  [[noreturn]] void failInfinite(const ColumnData& data, const std::string& side,
                                 LpPosition position) const {
    tokens_.fail(position, "the " + side + " bound of " + shown(data.name) +
                               " is infinite on the wrong side, expected a value that can be "
                               "reached");
  }

  void readInteger() {
    ColumnData& data = at(takeColumn());
    if (data.kind != ColumnKind::binary) data.kind = ColumnKind::integer;
  }

  void readBinary() { at(takeColumn()).kind = ColumnKind::binary; }

  // Bounds that are given narrow those of a binary variable, so that it can be fixed.
  void bindBinaries() {
    for (ColumnData& column : model_.columns) {
      if (column.kind != ColumnKind::binary) continue;
      column.lower = std::max(column.lower, 0.0);
      column.upper = std::min(column.upper, 1.0);
    }
  }

  ModelData model_;
  FileNotes notes_;
  LpTokens tokens_;
  LpColumns columns_;
  LpRowReader rows_;
  bool hasRows_ = false;
  bool over_ = false;
};

}  // namespace

ModelData readLp(const std::string& file, std::string_view text) {
  return LpReader(file, text).read();
}

}  // namespace lomu
