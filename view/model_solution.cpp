#include "view/model_solution.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <span>
#include <unordered_map>
#include <utility>
#include <ztb/model.hpp>

#include "tools/files/record_walk.h"
#include "tools/models/model_session.h"
#include "tools/text/failure.h"
#include "tools/text/number_text.h"
#include "tools/text/words.h"
#include "view/api.h"
#include "view/model_text.h"

namespace view {

namespace {

constexpr std::size_t mostSeconds = 1'000'000;

// Closer to a bound than this, beside its size, is at it.
constexpr double atBound = 1e-9;

std::string wordsOf(const ztb::Model::Progress& progress) {
  std::string words;
  const auto add = [&](const char* name, double value) {
    if (!std::isfinite(value)) return;
    words += fmt::format("{}{} {:.6g}", words.empty() ? "" : ", ", name, value);
  };
  if (progress.isKnown) {
    add("best", progress.objective);
    add("bound", progress.bound);
  }
  return words.empty() ? "solving" : "solving: " + words;
}

// What stands between a symbol and its labels, and these, as one key.
std::string keyOf(std::string_view symbol, std::span<const std::string_view> labels) {
  std::string key = tool::folded(std::string(symbol));
  for (const std::string_view label : labels) {
    key += '\0';
    key += tool::folded(std::string(label));
  }
  return key;
}

using SidesOfRows = std::unordered_map<std::string, RowSides>;

// The sides of the rows by the symbols and labels that they have in the database.
SidesOfRows sidesOf(ztb::Model& model, const std::vector<RowSides>& sides) {
  SidesOfRows result;
  std::array<const char*, ZTB_MAX_DIMENSION> labels{};
  for (std::size_t row = 0; row < sides.size(); ++row) {
    int dimension = 0;
    const char* symbol =
        ztbModelRowElement(model.handle(), static_cast<int>(row), &dimension, labels.data());
    if (symbol == nullptr) continue;
    const std::vector<std::string_view> views(labels.begin(), labels.begin() + dimension);
    result.emplace(keyOf(symbol, views), sides[row]);
  }
  return result;
}

// Copies a solution with the sides of each row as the bounds of its record: the database gives all
// rows of an equation those that suit the type of the first.
void writeWithSides(const std::string& from, const std::string& path, const SidesOfRows& sides) {
  const tool::ExchangeFile file(from);
  ztb::RxfOutput output(path, "ztb view");
  for (int number = 1; number <= file.labelCount(); ++number) {
    output.addLabel(std::string(file.label(number)));
  }
  for (const tool::FileSymbol& symbol : file.symbols()) {
    ztbRxfSymbolInfo info{};
    info.name = symbol.name.c_str();
    info.text = symbol.text.c_str();
    info.type = static_cast<int>(symbol.type);
    info.dimension = symbol.dimension;
    info.userInfo = symbol.userInfo;
    output.addSymbol(info, tool::domainNames(symbol));
    ztb::RxfRecords records(file.file(), file.file().symbol(symbol.number));
    std::vector<std::string_view> labels(static_cast<std::size_t>(symbol.dimension));
    while (records.next()) {
      std::vector<double> lower(records.values(2).begin(), records.values(2).end());
      std::vector<double> upper(records.values(3).begin(), records.values(3).end());
      for (std::size_t at = 0; symbol.type == ztb::Type::equation && at < records.size(); ++at) {
        for (int position = 0; position < symbol.dimension; ++position) {
          labels[static_cast<std::size_t>(position)] = file.label(records.keys(position)[at]);
        }
        const auto found = sides.find(keyOf(symbol.name, labels));
        if (found == sides.end()) continue;
        lower[at] = found->second.lower;
        upper[at] = found->second.upper;
      }
      std::vector<const int*> keyColumns;
      for (int position = 0; position < symbol.dimension; ++position) {
        keyColumns.push_back(records.keys(position).data());
      }
      // A scalar has no keys, but the address of its keys is handed on all the same.
      keyColumns.push_back(nullptr);
      output.addRecords(records.size(), keyColumns,
                        {records.values(0).data(), records.values(1).data(), lower.data(),
                         upper.data(), records.values(4).data()});
    }
  }
  output.publish();
}

std::shared_ptr<const ModelSolution> solved(const OpenedFile& file, const std::string& asked,
                                            std::size_t seconds, Job& job) {
  auto result = std::make_shared<ModelSolution>();
  result->asked = asked;
  result->seconds = seconds;
  job.tell("reading the model");
  std::vector<RowSides> sides;
  {
    ztb::Model plain = tool::openModel(file.path(), "");
    sides = ModelText(plain).sides();
  }
  job.count(0);
  tool::ModelSession session(file.path(), "");
  ztb::Model& model = session.model();
  if (seconds > 0) model.setOption("TimeLimit", std::to_string(seconds));
  result->solver = asked.empty() ? session.standardSolver() : asked;
  job.tell("solving with " + result->solver);
  model.setWatch([&](const ztb::Model::Progress& progress) {
    job.tell(wordsOf(progress));
    job.count(0);
    return true;
  });
  try {
    session.tie().solve(result->solver);
  } catch (const ztb::Error& error) {
    throw RequestError(400, fmt::format("{}: {}", file.name(), error.what()));
  }
  model.setWatch({});
  job.count(0);
  result->status = ztbModelStatusText(model.status());
  result->solveStatus = ztbModelSolveStatusText(model.solveStatus());
  result->objective = model.objective();
  result->bound = model.bound();
  result->time = model.seconds();
  result->iterations = model.iterations();
  if (model.hasSolution()) {
    const std::string written = result->folder.file("written.rxf");
    session.database().write(written);
    const std::string path = result->folder.file("solution.rxf");
    writeWithSides(written, path, sidesOf(model, sides));
    result->file.emplace(path, fmt::format("{}, solved", file.name()));
  }
  return result;
}

// What the records of a variable or equation come to.
struct SymbolFigures {
  std::size_t levels = 0;     // that are not 0
  std::size_t marginals = 0;  // likewise
  std::size_t bound = 0;      // records at one of their bounds
  double least = HUGE_VAL;
  double greatest = -HUGE_VAL;

  void add(std::span<const double> fields) {
    const double level = fields[0];
    levels += level != 0 ? 1 : 0;
    marginals += fields[1] != 0 ? 1 : 0;
    least = std::min(least, level);
    greatest = std::max(greatest, level);
    bound +=
        slackOf(level, fields[2], fields[3]) <= atBound * std::max(1.0, std::abs(level)) ? 1 : 0;
  }
};

void writeSymbol(const tool::ExchangeFile& file, const tool::FileSymbol& symbol, Job& job,
                 formats::JsonText& answer) {
  SymbolFigures figures;
  job.expect(symbol.recordCount);
  for (tool::RecordWalk walk(file, symbol); walk.next();) {
    figures.add(walk.values());
    job.count(1);
  }
  const auto number = [&](const char* name, std::size_t value) {
    answer.name(name);
    answer.count(value);
  };
  answer.beginObject();
  answer.name("name");
  answer.text(symbol.name);
  answer.name("type");
  answer.text(tool::typeWord(symbol.type));
  number("records", symbol.recordCount);
  number("levels", figures.levels);
  number("marginals", figures.marginals);
  number("bound", figures.bound);
  for (const auto& [name, value] :
       {std::pair("least", figures.least), std::pair("greatest", figures.greatest)}) {
    answer.name(name);
    if (symbol.recordCount == 0) {
      answer.null();
    } else {
      answer.number(value);
    }
  }
  answer.endObject();
}

}  // namespace

double slackOf(double level, double lower, double upper) {
  return std::min(level - lower, upper - level);
}

void answerSolve(Question& question) {
  const Parameters& parameters = question.parameters;
  const std::size_t number = parameters.number("f", 0, question.session.files.size() - 1);
  const OpenedFile& file = *question.session.files[number];
  if (file.kind() != FileKind::model) {
    throw RequestError(400, fmt::format("{} is no model", file.name()));
  }
  const std::string asked = tool::folded(parameters.text("solver", ""));
  const std::size_t seconds = parameters.number("seconds", 0, mostSeconds);
  std::shared_ptr<const ModelSolution> known = question.session.solution(number);
  if (!known || known->asked != asked || known->seconds != seconds) {
    known = solved(file, asked, seconds, question.job);
    question.session.keepSolution(number, known);
  }
  formats::JsonText& answer = question.answer;
  const auto text = [&](const char* name, const std::string& value) {
    answer.name(name);
    answer.text(value);
  };
  const auto amount = [&](const char* name, double value) {
    answer.name(name);
    answer.number(value);
  };
  answer.beginObject();
  text("solver", known->solver);
  text("status", known->status);
  text("ended", known->solveStatus);
  answer.name("solved");
  answer.boolean(known->file.has_value());
  if (known->file) amount("objective", known->objective);
  amount("bound", known->bound);
  amount("seconds", known->time);
  amount("iterations", known->iterations);
  answer.name("symbols");
  answer.beginArray();
  if (known->file) {
    const tool::ExchangeFile& solution = known->file->exchange();
    for (const tool::FileSymbol& symbol : solution.symbols()) {
      const bool isSolved =
          symbol.type == ztb::Type::variable || symbol.type == ztb::Type::equation;
      if (isSolved) writeSymbol(solution, symbol, question.job, answer);
    }
  }
  answer.endArray();
  if (known->file) {
    answer.name("file");
    writeFile(*known->file, answer);
  }
  answer.endObject();
}

}  // namespace view
