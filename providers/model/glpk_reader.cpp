#include "providers/model/glpk_reader.h"

#include <algorithm>
#include <charconv>
#include <cstddef>
#include <optional>
#include <string_view>
#include <utility>
#include <vector>

#include "providers/model/file_bounds.h"
#include "providers/model/glpk_functions.h"
#include "providers/model/glpk_session.h"
#include "providers/model/lp_tokens.h"
#include "providers/model/model_error.h"

namespace lomu {

namespace {

// GLPK formats messages with a file name in them into 4096 bytes.
constexpr std::size_t kMaxFileName = 1000;
// MathProg expressions are parsed and evaluated by recursion, about 1 KB a level.
constexpr std::size_t kMathProgStack = 64 << 20;

struct Refusal {
  std::size_t line = 0;
  std::string text;
};

// The line of a message "<file>:<line>: <text>", unless it only warns.
std::optional<std::size_t> refusedLine(std::string_view message, const std::string& file) {
  if (file.empty() || !message.starts_with(file + ":")) return std::nullopt;
  message.remove_prefix(file.size() + 1);
  std::size_t line = 0;
  const auto [end, error] = std::from_chars(message.data(), message.data() + message.size(), line);
  if (error != std::errc{}) return std::nullopt;
  message.remove_prefix(static_cast<std::size_t>(end - message.data()));
  if (!message.starts_with(": ") || message.starts_with(": warning:")) return std::nullopt;
  return line;
}

// GLPK's own words for why it refused: its last message with a place in a file, else its last one.
Refusal refusalOf(std::string_view messages, const std::string& file, const std::string& dataFile) {
  Refusal placed;
  std::string last;
  while (!messages.empty()) {
    const std::string_view message = messages.substr(0, messages.find('\n'));
    messages.remove_prefix(std::min(messages.size(), message.size() + 1));
    auto line = refusedLine(message, file);
    if (!line) line = refusedLine(message, dataFile);
    if (line) placed = {*line, std::string(message)};
    if (!message.empty()) last = message;
  }
  if (!placed.text.empty()) return placed;
  return {0, file + ": " + (last.empty() ? "GLPK cannot read it" : last)};
}

std::string nameOr(const char* name, const std::string& otherwise) {
  return name == nullptr || *name == '\0' ? otherwise : name;
}

// Takes a problem over from GLPK.
class Conversion {
 public:
  Conversion(std::string file, glp_prob* problem) : file_(std::move(file)), problem_(problem) {}

  ModelData mathProg() {
    model_.objectiveConstant = glpk().get_obj_coef(problem_, 0);
    takeObjective();
    takeColumns();
    takeRows();
    return std::move(model_);
  }

 private:
  void takeObjective() {
    if (const char* const name = glpk().get_obj_name(problem_)) {
      model_.rows[0].name = name;
      hasObjective_ = true;
    }
    model_.maximize = glpk().get_obj_dir(problem_) == GLP_MAX;
  }

  void takeColumns() {
    const int count = glpk().get_num_cols(problem_);
    for (int j = 1; j <= count; ++j) {
      ColumnData column;
      column.name = nameOr(glpk().get_col_name(problem_, j), "C" + std::to_string(j));
      const int kind = glpk().get_col_kind(problem_, j);
      if (kind == GLP_IV) column.kind = ColumnKind::integer;
      if (kind == GLP_BV) column.kind = ColumnKind::binary;
      column.lower = fromFile(glpk().get_col_lb(problem_, j));
      column.upper = fromFile(glpk().get_col_ub(problem_, j));
      if (column.lower == kInfinity || column.upper == -kInfinity) {
        throw ModelError(
            file_ + ": variable " + shown(column.name) +
                " has an infinite bound that no value satisfies, expected a size below "
                "1e30",
            ZTB_ERROR_DAMAGED_FILE);
      }
      const double cost = glpk().get_obj_coef(problem_, j);
      if (cost != 0) model_.terms.push_back({0, j - 1, cost});
      model_.columns.push_back(std::move(column));
    }
  }

  void takeRows() {
    const int count = glpk().get_num_rows(problem_);
    for (int i = 1; i <= count; ++i) {
      RowData row{nameOr(glpk().get_row_name(problem_, i), "R" + std::to_string(i))};
      if (isObjective(i, row.name)) continue;
      if (const char* const wrong = setRowBounds(row, fromFile(glpk().get_row_lb(problem_, i)),
                                                 fromFile(glpk().get_row_ub(problem_, i)))) {
        throw ModelError(file_ + ": row " + shown(row.name) + " " + wrong, ZTB_ERROR_DAMAGED_FILE);
      }
      takeTerms(i, static_cast<int>(model_.rows.size()));
      model_.rows.push_back(std::move(row));
    }
  }

  // The objective of a MathProg model stands among the rows too, as a free one.
  bool isObjective(int i, const std::string& name) {
    if (!hasObjective_ || name != model_.rows[0].name) return false;
    if (glpk().get_row_type(problem_, i) != GLP_FR) return false;
    hasObjective_ = false;
    return true;
  }

  void takeTerms(int i, int row) {
    const int length = glpk().get_mat_row(problem_, i, nullptr, nullptr);
    const auto size = static_cast<std::size_t>(length) + 1;
    std::vector<int> columns(size);
    std::vector<double> values(size);
    glpk().get_mat_row(problem_, i, columns.data(), values.data());
    for (std::size_t k = size - 1; k > 0; --k) {
      model_.terms.push_back({row, columns[k] - 1, values[k]});
    }
  }

  std::string file_;
  glp_prob* problem_;
  ModelData model_;
  bool hasObjective_ = false;
};

struct MathProgStep {
  const char* file;
  const char* dataFile;
  glp_prob* problem;
  bool generated;
};

void runMathProgStep(void* argument) {
  auto& step = *static_cast<MathProgStep*>(argument);
  glp_tran* const translator = glpk().mpl_alloc_wksp();
  const int skipsOwnData = step.dataFile == nullptr ? 0 : 1;
  const bool read =
      glpk().mpl_read_model(translator, step.file, skipsOwnData) == 0 &&
      (step.dataFile == nullptr || glpk().mpl_read_data(translator, step.dataFile) == 0);
  if (read && glpk().mpl_generate(translator, nullptr) == 0) {
    step.problem = glpk().create_prob();
    glpk().mpl_build_prob(translator, step.problem);
    step.generated = true;
  }
  glpk().mpl_free_wksp(translator);
}

void openGlpk(const std::string& file) {
  try {
    glpk();
  } catch (const ModelError& error) {
    throw ModelError(file + ": " + error.what(), error.kind());
  }
}

void checkLength(const std::string& file) {
  if (file.size() <= kMaxFileName) return;
  throw ModelError(file + ": the file name has " + std::to_string(file.size()) +
                   " characters, expected at most " + std::to_string(kMaxFileName));
}

}  // namespace

ModelData readMathProg(const std::string& file, const std::string& dataFile) {
  openGlpk(file);
  checkLength(file);
  checkLength(dataFile);
  ModelData model;
  GlpkSession::run(kMathProgStack, [&](GlpkSession& session) {
    MathProgStep step{file.c_str(), dataFile.empty() ? nullptr : dataFile.c_str(), nullptr, false};
    if (!session.guarded(runMathProgStep, &step) || !step.generated) {
      throw ModelError(refusalOf(session.messages(), file, dataFile).text, ZTB_ERROR_DAMAGED_FILE);
    }
    model = Conversion(file, step.problem).mathProg();
  });
  return model;
}

}  // namespace lomu
