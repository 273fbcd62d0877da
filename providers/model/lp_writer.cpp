#include <algorithm>
#include <cmath>
#include <cstddef>
#include <string_view>
#include <vector>
#include <ztb/case_folding.hpp>

#include "providers/model/format_writers.h"
#include "providers/model/lp_expression.h"
#include "providers/model/lp_sections.h"
#include "providers/model/lp_tokens.h"
#include "providers/model/model_error.h"

namespace lomu {

bool isLpName(const std::string& name) {
  if (ztb::sameFolded(name, "free") || beginsLpKeyword(name)) return false;
  try {
    const LpTokens tokens("", name);
    return tokens.next().kind == LpTokenKind::name && tokens.next().text == name &&
           tokens.second().kind == LpTokenKind::end && !isInfinityWord(tokens.next());
  } catch (const ModelError&) {
    return false;
  }
}

namespace {

class LpWriter {
 public:
  LpWriter(const ModelData& model, TextTarget& out) : model_(model), out_(out) {}

  void write() {
    sortTerms();
    out_ << (model_.maximize ? "Maximize\n" : "Minimize\n");
    writeObjective();
    out_ << "Subject To\n";
    for (std::size_t i = 1; i < model_.rows.size(); ++i) writeRow(i);
    out_ << "Bounds\n";
    for (const ColumnData& column : model_.columns) writeBounds(column);
    writeNames("Generals\n", [](const ColumnData& c) { return c.kind == ColumnKind::integer; });
    writeNames("Binaries\n", [](const ColumnData& c) { return c.kind == ColumnKind::binary; });
    writeNames("Semi-Continuous\n", [](const ColumnData& c) { return c.semiContinuous; });
    writeSets();
    out_ << "End\n";
  }

 private:
  [[nodiscard]] const std::string& nameOfColumn(int column) const {
    return model_.columns[static_cast<std::size_t>(column)].name;
  }

  // Terms and products by rows, each in the order in which it stands in the model.
  void sortTerms() {
    terms_.resize(model_.rows.size());
    products_.resize(model_.rows.size());
    for (const Term& term : model_.terms) {
      terms_[static_cast<std::size_t>(term.row)].push_back(&term);
    }
    for (const Product& product : model_.products) {
      products_[static_cast<std::size_t>(product.row)].push_back(&product);
    }
  }

  // Whether columns come in their order when they are numbered as they first stand in the rows.
  [[nodiscard]] bool comeInOrder() const {
    std::vector<bool> known(model_.columns.size());
    std::size_t next = 0;
    const auto meet = [&](int column) {
      const auto at = static_cast<std::size_t>(column);
      if (known[at]) return true;
      known[at] = true;
      return at == next++;
    };
    for (std::size_t i = 0; i < terms_.size(); ++i) {
      for (const Term* term : terms_[i]) {
        if (!meet(term->column)) return false;
      }
      for (const Product* product : products_[i]) {
        if (!meet(product->column1) || !meet(product->column2)) return false;
      }
    }
    return next == model_.columns.size();
  }

  void writeObjective() {
    out_ << " " << model_.rows[0].name << ":";
    if (comeInOrder()) {
      writeSum(0);
    } else {
      std::vector<double> costs(model_.columns.size());
      for (const Term* term : terms_[0])
        costs[static_cast<std::size_t>(term->column)] += term->value;
      for (std::size_t j = 0; j < costs.size(); ++j) {
        writeTerm(static_cast<int>(j), costs[j]);
      }
      writeProducts(0);
    }
    if (model_.objectiveConstant != 0) {
      writeSign(model_.objectiveConstant);
      out_ << std::abs(model_.objectiveConstant);
    }
    out_ << "\n";
  }

  // A sign begins each line but the first of a sum, so that no name does.
  void writeSign(double value) { out_ << (std::signbit(value) ? "\n - " : "\n + "); }

  void writeTerm(int column, double value) {
    writeSign(value);
    out_ << std::abs(value) << " " << nameOfColumn(column);
  }

  void writeSum(std::size_t row) {
    for (const Term* term : terms_[row]) writeTerm(term->column, term->value);
    writeProducts(row);
  }

  void writeProducts(std::size_t row) {
    if (products_[row].empty()) return;
    out_ << "\n + [";
    for (const Product* product : products_[row]) {
      const double value = row == 0 ? 2 * product->value : product->value;
      writeSign(value);
      out_ << std::abs(value) << " " << nameOfColumn(product->column1);
      if (product->column1 == product->column2) {
        out_ << " ^ 2";
      } else {
        out_ << " * " << nameOfColumn(product->column2);
      }
    }
    out_ << (row == 0 ? " ] / 2" : " ]");
  }

  void writeRow(std::size_t number) {
    const RowData& row = model_.rows[number];
    const bool isEmpty = terms_[number].empty() && products_[number].empty();
    out_ << " " << row.name << ":";
    const bool isGreater = row.type == RowType::greaterOrEqual;
    const bool isRanged = row.range != 0;
    if (row.type == RowType::free) {
      out_ << " -inf <=";
    } else if (isRanged) {
      out_ << " " << (isGreater ? row.rhs : row.rhs - row.range) << " <=";
    }
    if (isEmpty) out_ << " 0";
    writeSum(number);
    if (row.type == RowType::free) {
      out_ << " <= inf\n";
    } else if (isRanged) {
      out_ << " <= " << (isGreater ? row.rhs + row.range : row.rhs) << "\n";
    } else {
      out_ << (isGreater ? " >= " : row.type == RowType::equal ? " = " : " <= ") << row.rhs << "\n";
    }
  }

  // The value of a bound, on a line that begins with it.
  void writeBound(double value) {
    if (std::isinf(value)) {
      out_ << (value > 0 ? "+inf" : "-inf");
    } else {
      out_ << value;
    }
  }

  void writeBounds(const ColumnData& column) {
    const double usual = column.kind == ColumnKind::binary ? 1 : kInfinity;
    if (column.lower == 0 && column.upper == usual) return;
    out_ << " ";
    writeBound(column.lower);
    out_ << " <= " << column.name << " <= ";
    writeBound(column.upper);
    out_ << "\n";
  }

  template <typename Takes>
  void writeNames(std::string_view header, const Takes& takes) {
    if (std::none_of(model_.columns.begin(), model_.columns.end(), takes)) return;
    out_ << header;
    for (const ColumnData& column : model_.columns) {
      if (takes(column)) out_ << " " << column.name << "\n";
    }
  }

  void writeSets() {
    if (model_.sets.empty()) return;
    out_ << "SOS\n";
    for (const OrderedSet& set : model_.sets) {
      out_ << " " << set.name << ": S" << (set.kind == 1 ? "1" : "2") << " ::\n";
      for (const SetMember& member : set.members) {
        out_ << "  " << nameOfColumn(member.column) << " : " << member.weight << "\n";
      }
    }
  }

  const ModelData& model_;
  TextTarget& out_;
  std::vector<std::vector<const Term*>> terms_;  // of each row
  std::vector<std::vector<const Product*>> products_;
};

}  // namespace

void writeLp(const ModelData& model, TextTarget& out) {
  LpWriter(model, out).write();
}

}  // namespace lomu
