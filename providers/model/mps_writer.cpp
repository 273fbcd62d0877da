#include <algorithm>
#include <cmath>
#include <cstddef>
#include <string_view>
#include <vector>

#include "providers/model/file_signs.h"
#include "providers/model/format_writers.h"
#include "providers/model/lp_tokens.h"
#include "providers/model/model_error.h"
#include "providers/model/sparse_matrix.h"

namespace lomu {

bool isMpsName(const std::string& name) {
  const auto isPlain = [](char c) { return static_cast<unsigned char>(c) > ' ' && c != 0x7F; };
  return !name.empty() && name.size() <= kMaxFileName && name != "'MARKER'" &&
         std::all_of(name.begin(), name.end(), isPlain);
}

namespace {

class MpsWriter {
 public:
  MpsWriter(const ModelData& model, const std::string& file, TextTarget& out)
      : model_(model), file_(file), out_(out) {}

  void write() {
    out_ << "NAME\n";
    if (model_.maximize) out_ << "OBJSENSE\n    MAX\n";
    writeRows();
    writeColumns();
    writeSides();
    writeRanges();
    writeBounds();
    writeSets();
    writeProducts();
    out_ << "ENDATA\n";
  }

 private:
  [[nodiscard]] const std::string& nameOfRow(std::size_t row) const {
    return model_.rows[row].name;
  }
  [[nodiscard]] const std::string& nameOfColumn(int column) const {
    return model_.columns[static_cast<std::size_t>(column)].name;
  }

  void writeRows() {
    out_ << "ROWS\n N " << nameOfRow(0) << "\n";
    for (std::size_t i = 1; i < model_.rows.size(); ++i) {
      constexpr std::string_view kLetters = "EGLN";
      const RowData& row = model_.rows[i];
      out_ << " " << kLetters.substr(static_cast<std::size_t>(row.type), 1) << " " << row.name
           << "\n";
    }
  }

  void writeColumns() {
    out_ << "COLUMNS\n";
    const SparseMatrix matrix(model_);
    bool integers = false;
    for (std::size_t j = 0; j < model_.columns.size(); ++j) {
      const ColumnData& column = model_.columns[j];
      if (integers != (column.kind != ColumnKind::continuous)) {
        integers = !integers;
        out_ << " M 'MARKER' " << (integers ? "'INTORG'\n" : "'INTEND'\n");
      }
      bool isThere = false;
      for (std::size_t e = matrix.start[j]; e < matrix.start[j + 1]; ++e) {
        if (matrix.value[e] == 0) continue;
        writeEntry(column.name, nameOfRow(static_cast<std::size_t>(matrix.rowOf[e])),
                   matrix.value[e]);
        isThere = true;
      }
      if (!isThere) writeEntry(column.name, nameOfRow(0), 0);
    }
    if (integers) out_ << " M 'MARKER' 'INTEND'\n";
  }

  void writeEntry(std::string_view first, std::string_view second, double value) {
    out_ << " " << first << " " << second << " " << value << "\n";
  }

  void writeSides() {
    out_ << "RHS\n";
    if (model_.objectiveConstant != 0) writeEntry("RHS", nameOfRow(0), -model_.objectiveConstant);
    for (std::size_t i = 1; i < model_.rows.size(); ++i) {
      if (model_.rows[i].rhs != 0) writeEntry("RHS", nameOfRow(i), model_.rows[i].rhs);
    }
  }

  void writeRanges() {
    bool begun = false;
    for (const RowData& row : model_.rows) {
      if (row.range == 0) continue;
      if (row.range < 0) {
        throw ModelError(file_ + ": the bounds of row " + shown(row.name) +
                         " contradict each other, which an MPS file cannot hold; an LP file may");
      }
      if (!begun) out_ << "RANGES\n";
      begun = true;
      writeEntry("RANGES", row.name, row.range);
    }
  }

  void writeBound(std::string_view type, const ColumnData& column) {
    out_ << " " << type << " BOUNDS " << column.name << "\n";
  }
  void writeBound(std::string_view type, const ColumnData& column, double value) {
    out_ << " " << type << " BOUNDS " << column.name << " ";
    if (std::isinf(value)) {
      out_ << (value > 0 ? "1e30" : "-1e30");
    } else {
      out_ << value;
    }
    out_ << "\n";
  }

  void writeBounds() {
    out_ << "BOUNDS\n";
    for (const ColumnData& column : model_.columns) {
      if (column.semiContinuous) {
        if (column.upper == 0) {
          throw ModelError(
              file_ + ": the semi-continuous column " + shown(column.name) +
              " has the upper bound 0, which an MPS file takes for none; an LP file may "
              "hold it");
        }
        writeBound("SC", column, column.upper);
        if (column.lower != 0 || column.upper < 0) writeBound("LO", column, column.lower);
      } else {
        writeBoundsOf(column);
      }
    }
  }

  void writeBoundsOf(const ColumnData& column) {
    const bool isInteger = column.kind != ColumnKind::continuous;
    if (column.kind == ColumnKind::binary) {
      writeBound("BV", column);
      if (column.lower == 0 && column.upper == 1) return;
    }
    if (column.lower == column.upper) {
      writeBound("FX", column, column.lower);
    } else if (column.lower == -kInfinity && column.upper == kInfinity) {
      writeBound("FR", column);
    } else {
      // Without any bound an integer column would end at 1, and with a negative upper one alone any
      // column would be free below.
      if (column.lower == -kInfinity) {
        writeBound("MI", column);
      } else if (column.lower != 0 || column.upper < 0) {
        writeBound("LO", column, column.lower);
      }
      if (column.upper != kInfinity) {
        writeBound("UP", column, column.upper);
      } else if (isInteger && column.lower == 0) {
        writeBound("PL", column);
      }
    }
  }

  void writeSets() {
    if (model_.sets.empty()) return;
    out_ << "SOS\n";
    for (const OrderedSet& set : model_.sets) {
      out_ << (set.kind == 1 ? " S1" : " S2") << " SOS " << set.name << "\n";
      for (const SetMember& member : set.members) {
        writeEntry("SOS", nameOfColumn(member.column), member.weight);
      }
    }
  }

  // The objective's as one triangle of the matrix that is halved, those of rows as all of it.
  void writeProducts() {
    std::size_t row = model_.rows.size();
    std::vector<const Product*> sorted;
    for (const Product& product : model_.products) sorted.push_back(&product);
    std::stable_sort(sorted.begin(), sorted.end(),
                     [](const Product* a, const Product* b) { return a->row < b->row; });
    for (const Product* product : sorted) {
      const auto at = static_cast<std::size_t>(product->row);
      if (at != row) {
        row = at;
        out_ << (row == 0 ? "QUADOBJ" : "QCMATRIX " + nameOfRow(row)) << "\n";
      }
      const std::string& name1 = nameOfColumn(product->column1);
      const std::string& name2 = nameOfColumn(product->column2);
      const bool isSquare = product->column1 == product->column2;
      if (row == 0) {
        writeEntry(name1, name2, isSquare ? 2 * product->value : product->value);
      } else if (isSquare) {
        writeEntry(name1, name2, product->value);
      } else {
        writeEntry(name1, name2, product->value / 2);
        writeEntry(name2, name1, product->value / 2);
      }
    }
  }

  const ModelData& model_;
  const std::string& file_;
  TextTarget& out_;
};

}  // namespace

void writeMps(const ModelData& model, const std::string& file, TextTarget& out) {
  MpsWriter(model, file, out).write();
}

}  // namespace lomu
