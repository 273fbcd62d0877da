#include "providers/model/model_writer.h"

#include <cmath>
#include <optional>

#include "providers/model/file_bounds.h"
#include "providers/model/format_writers.h"
#include "providers/model/lp_tokens.h"
#include "providers/model/model_error.h"
#include "providers/model/number_text.h"
#include "providers/model/text_source.h"
#include "providers/model/text_target.h"
#include "providers/model/written_names.h"

namespace lomu {

namespace {

void checkNumber(const std::string& file, double number, const std::string& what) {
  if (std::abs(number) < kFileInfinity) return;
  throw ModelError(file + ": " + what + " is " + numberText(number) +
                   ", which model files take for infinite; expected a size below 1e30");
}

// What every format takes for something else.
void checkNumbers(const ModelData& model, const std::string& file) {
  const auto row = [&](int number) {
    return shown(model.rows[static_cast<std::size_t>(number)].name);
  };
  checkNumber(file, model.objectiveConstant, "the constant of the objective");
  for (const Term& term : model.terms) {
    checkNumber(file, term.value, "a coefficient of row " + row(term.row));
  }
  for (const Product& product : model.products) {
    checkNumber(file, 2 * product.value, "a coefficient of row " + row(product.row));
  }
  for (const RowData& data : model.rows) {
    checkNumber(file, data.rhs, "the right-hand side of row " + shown(data.name));
    checkNumber(file, data.range, "the range of row " + shown(data.name));
  }
  for (const ColumnData& data : model.columns) {
    const auto check = [&](double bound, const char* which) {
      if (std::abs(bound) < kFileInfinity || std::isinf(bound)) return;
      checkNumber(file, bound, which + shown(data.name));
    };
    check(data.lower, "the lower bound of column ");
    check(data.upper, "the upper bound of column ");
  }
}

}  // namespace

std::string writeModelFile(const ModelData& model, const std::string& file) {
  const bool isLp = hasEnding(file, ".lp");
  if (!isLp && !hasEnding(file, ".mps")) {
    throw ModelError(file + ": unknown ending, expected .lp or .mps");
  }
  checkNumbers(model, file);
  TextTarget target(file);
  const std::optional<WrittenNames> changed = writtenNames(model, isLp);
  if (changed) target << changed->comments;
  const ModelData& written = changed ? changed->model : model;
  if (isLp) {
    writeLp(written, target);
  } else {
    writeMps(written, file, target);
  }
  target.publish();
  return changed ? file + ": " + changed->note : std::string();
}

}  // namespace lomu
