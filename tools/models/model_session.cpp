#include "tools/models/model_session.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <cmath>
#include <filesystem>
#include <optional>
#include <string_view>
#include <system_error>
#include <utility>
#include <ztb/case_folding.hpp>
#include <ztb/model_names.hpp>

#include "tools/files/system_files.h"
#include "tools/text/failure.h"

namespace tool {

ztb::Model openModel(const std::string& file, const std::string& dataFile, ModelFills* fills) {
  try {
    return fills == nullptr ? ztb::Model::open(file, dataFile)
                            : ztb::Model::open(file, dataFile, fills->all());
  } catch (const ztb::Error& error) {
    throw Failure(withFile(file, error.what()));
  }
}

namespace {

ztb::Model openDriven(const std::string& file, const std::string& dataFile, ModelFills* fills,
                      const std::vector<std::string>& drives) {
  ztb::Model model = openModel(file, dataFile, fills);
  try {
    for (const std::string& statement : drives) model.drive(statement);
  } catch (const ztb::Error& error) {
    throw Failure(withFile(file, error.what()));
  }
  return model;
}

}  // namespace

std::string listed(const std::vector<std::string>& names) {
  constexpr std::size_t kNamed = 10;
  std::string text = names.front();
  for (std::size_t k = 1; k < names.size() && k < kNamed; ++k) {
    text += (k + 1 == names.size() ? " and " : ", ") + names[k];
  }
  return names.size() > kNamed ? text + fmt::format(" and {} more", names.size() - kNamed) : text;
}

ModelSession::ModelSession(const std::string& modelFile, const std::string& dataFile,
                           ModelFills* fills, const std::vector<std::string>& drives, Tied tied)
    : file_(modelFile), model_(openDriven(modelFile, dataFile, fills, drives)) {
  if (tied == Tied::atOnce) (void)tie();
  // From here on the model has the names that a database knows, and notes of those.
  (void)model_.pbi();
}

ztb::Database& ModelSession::database() {
  (void)tie();
  return *database_;
}

ztb::ModelTie& ModelSession::tie() {
  if (!tie_) tie_.emplace(database_.emplace(), model_);
  return *tie_;
}

void ModelSession::solve(const std::string& solver) {
  if (tie_) {
    tie_->solve(solver);
  } else {
    model_.solve(solver);
  }
}

std::string ModelSession::standardSolver() {
  return ztb::standardSolver(tie_ ? tie_->kind() : model_.kind());
}

std::string ModelSession::standardSolverOfParameters() {
  return ztb::standardSolver(model_.updatedKind());
}

bool ModelSession::drives(const std::string& name) const {
  const std::optional<ztb::Symbol> columns = database_->findSymbol(name + ztb::parameterSuffix);
  return columns && columns->type() == ztb::Type::variable;
}

std::vector<std::string> ModelSession::driving() const {
  constexpr std::string_view suffix = ztb::parameterSuffix;
  std::vector<std::string> names;
  for (const ztb::Symbol& symbol : database_->symbols()) {
    std::string name = symbol.name().str();
    if (symbol.type() != ztb::Type::variable || !name.ends_with(suffix)) continue;
    name.resize(name.size() - suffix.size());
    names.push_back(std::move(name));
  }
  return names;
}

std::string ModelSession::drivingText() const {
  const std::vector<std::string> names = driving();
  return names.empty() ? "; data drive nothing in it: say what they do with --drive"
                       : "; data drive " + listed(names);
}

std::string ModelSession::settableText() const {
  std::vector<std::string> names = driving();
  for (const ztb::Symbol& symbol : database_->symbols()) {
    std::string name = symbol.name().str();
    if (symbol.type() != ztb::Type::variable || name.ends_with(ztb::parameterSuffix)) continue;
    names.push_back(std::move(name));
  }
  return names.empty() ? "" : "; there is " + listed(names);
}

std::string ModelSession::solvedText() const {
  std::vector<std::string> names;
  for (const ztb::Symbol& symbol : database_->symbols()) {
    if (symbol.type() == ztb::Type::variable || symbol.type() == ztb::Type::equation) {
      names.push_back(symbol.name().str());
    }
  }
  return "; there is " + listed(names);
}

ztb::Symbol ModelSession::parameter(const std::string& name, int dimension) {
  if (!drives(name)) {
    throw Failure(withFile(file_, fmt::format("the model has no columns {}{}{}", name,
                                              ztb::parameterSuffix, drivingText())));
  }
  const ztb::Symbol columns = database_->symbol(name + ztb::parameterSuffix);
  if (columns.dimension() != dimension) {
    throw Failure(withFile(file_, "the columns " + name + ztb::parameterSuffix + " have " +
                                      std::to_string(columns.dimension()) +
                                      " positions, parameter " + name + " has " +
                                      std::to_string(dimension)));
  }
  const auto known = parameters_.find(ztb::folded(name));
  if (known != parameters_.end()) return known->second;
  std::string own = name;
  for (int number = 1; database_->findSymbol(own); ++number) {
    own = fmt::format("{}_data{}", name, number == 1 ? "" : std::to_string(number));
  }
  const std::vector<ztb::DomainArgument> anyLabel(static_cast<std::size_t>(dimension), "*");
  const ztb::Symbol parameter = database_->addSymbol(own, ztb::Type::parameter, anyLabel);
  parameters_.emplace(ztb::folded(name), parameter);
  columns_.emplace(own, columns);
  return parameter;
}

int ModelSession::update(const ztb::Symbol& modelSymbol, ztb::Action action,
                         const ztb::Symbol& data, ztb::Missing missing) {
  return tie_->update(modelSymbol, action, data, missing);
}

int ModelSession::applyParameter(const ztb::Symbol& parameter) {
  try {
    return update(columns_.at(parameter.name().str()), ztb::Action::fix, parameter,
                  ztb::Missing::base);
  } catch (const ztb::Error& error) {
    throw Failure(error.what());
  }
}

std::vector<std::string> ModelSession::notes(bool all) const {
  std::vector<std::string> notes;
  int first = 0;
  const int count = model_.noteCount();
  // Notes of the reading begin with the file, and there is at most one of a kind.
  for (; first < count && model_.note(first).starts_with(file_ + ":"); ++first) {
    notes.push_back(model_.note(first));
  }
  for (int n = first; n < count && (all || count == first + 1); ++n) {
    notes.push_back(fmt::format("{}: {}", file_, model_.note(n)));
  }
  if (!all && count > first + 1) {
    notes.push_back(fmt::format("{}: {} names had to be changed for the database: {}, ...", file_,
                                count - first, model_.note(first)));
  }
  return notes;
}

void ModelSession::renew() {
  for (auto& [name, parameter] : parameters_) {
    parameter.clear();
    applyParameter(parameter);
  }
  model_.resetLevels();
  parameters_.clear();
  columns_.clear();
  tie_.reset();
  tie_.emplace(database_.emplace(), model_);
}

std::string conflictText(const ztb::Model::Conflict& conflict, const std::string& separator) {
  std::string text;
  for (const ztb::Model::Conflict::Member& member : conflict.members) {
    text += (text.empty() ? "" : separator) + ztb::displayText(member.text);
  }
  if (!conflict.condition.empty()) text += separator + "with " + conflict.condition;
  if (!conflict.irreducible)
    text += separator + "some may not be needed: not all were tried to the end";
  return text;
}

void requirePlace(const std::string& out) {
  posix::FileStatus status{};
  const bool isThere = posix::stat(out.c_str(), &status) == 0;
  if (isThere && S_ISDIR(status.st_mode)) throw Failure("Is a folder: " + out);
  if (isThere && !S_ISREG(status.st_mode)) throw Failure("Not a regular file: " + out);
  const std::filesystem::path parent = pathOf(out).parent_path();
  const std::filesystem::path folder = parent.empty() ? "." : parent;
  std::error_code error;
  if (!std::filesystem::is_directory(folder, error)) {
    throw Failure("No such file: the folder does not exist: " + out);
  }
  if (posix::access(nameOf(folder).c_str(), W_OK) != 0) {
    throw Failure("No permission to write into the folder: " + out);
  }
}

void refuseReplacing(std::initializer_list<std::string> inputs, const std::string& out) {
  for (const std::string& input : inputs) {
    std::error_code error;
    // By name where there is none yet, as of a basis that is to be written; "-" is two streams.
    const bool isSame = (input == out && out != "-") ||
                        std::filesystem::equivalent(pathOf(input), pathOf(out), error);
    if (!input.empty() && isSame) {
      throw UsageError(
          fmt::format("{}: would be replaced by the results; name another --out", out));
    }
  }
}

}  // namespace tool
