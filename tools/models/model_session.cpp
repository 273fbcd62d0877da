#include "tools/models/model_session.h"

#include <fmt/format.h>

#include <filesystem>
#include <optional>
#include <system_error>
#include <ztb/model_names.hpp>

#include "tools/text/failure.h"
#include "tools/text/output.h"

namespace tool {

ztb::Model openModel(const std::string& file, const std::string& dataFile, ModelFills* fills) {
  try {
    return fills == nullptr ? ztb::Model::open(file, dataFile)
                            : ztb::Model::open(file, dataFile, fills->all());
  } catch (const ztb::Error& error) {
    throw Failure(withFile(file, error.what()));
  }
}

ModelSession::ModelSession(const std::string& modelFile, const std::string& dataFile,
                           ModelFills* fills)
    : file_(modelFile), model_(openModel(modelFile, dataFile, fills)), tie_(database_, model_) {}

std::string ModelSession::standardSolver() {
  return solverOf(boundsCount_ ? model_.updatedKind() : model_.kind());
}

std::string ModelSession::standardSolverOfParameters() {
  return solverOf(model_.updatedKind());
}

std::string ModelSession::solverOf(int kind) const {
  switch (kind) {
    case ztbKindLinear:
      return "clp";
    case ztbKindMixedInteger:
      return "cbc";
    case ztbKindQuadratic:
      return "ipopt";
    default:
      throw Failure(
          withFile(file_,
                   "the model has integer columns and products of columns that can move; no solver "
                   "of the catalogue that comes with ZTB takes both. Name one with --solver"));
  }
}

bool ModelSession::drives(const std::string& name) const {
  const std::optional<ztb::Symbol> columns = database_.findSymbol(name + ztb::parameterSuffix);
  return columns && columns->type() == ztb::Type::variable;
}

ztb::Symbol ModelSession::parameter(const std::string& name, int dimension) {
  if (!drives(name)) {
    throw Failure(withFile(file_, "the model has no columns " + name + ztb::parameterSuffix));
  }
  const int columns = database_.symbol(name + ztb::parameterSuffix).dimension();
  if (columns != dimension) {
    throw Failure(withFile(file_, "the columns " + name + ztb::parameterSuffix + " have " +
                                      std::to_string(columns) + " positions, parameter " + name +
                                      " has " + std::to_string(dimension)));
  }
  if (const auto present = database_.findSymbol(name)) {
    if (present->type() == ztb::Type::parameter) return *present;
    throw Failure(withFile(file_, name + " is a variable or equation of the model, and " + name +
                                      ztb::parameterSuffix +
                                      " cannot be driven by a parameter of this name"));
  }
  const std::vector<ztb::DomainArgument> anyLabel(static_cast<std::size_t>(dimension), "*");
  return database_.addSymbol(name, ztb::Type::parameter, anyLabel);
}

int ModelSession::update(const ztb::Symbol& modelSymbol, ztb::Action action,
                         const ztb::Symbol& data, ztb::Missing missing) {
  boundsCount_ = modelSymbol.type() != ztb::Type::equation;
  return tie_.update(modelSymbol, action, data, missing);
}

int ModelSession::applyParameter(const ztb::Symbol& parameter) {
  return update(parameter, ztb::Action::fix, parameter, ztb::Missing::base);
}

void ModelSession::reportNotes(bool all) const {
  int first = 0;
  const int count = model_.noteCount();
  // Notes of the reading begin with the file, and there is at most one of a kind.
  for (; first < count && model_.note(first).starts_with(file_ + ":"); ++first) {
    printError(fmt::format("ztb: {}", model_.note(first)));
  }
  for (int n = first; n < count && (all || count == first + 1); ++n) {
    printError(fmt::format("ztb: {}: {}", file_, model_.note(n)));
  }
  if (!all && count > first + 1) {
    printError(fmt::format("ztb: {}: {} names had to be changed for the database: {}, ...", file_,
                           count - first, model_.note(first)));
  }
}

void refuseReplacing(std::initializer_list<std::string> inputs, const std::string& out) {
  for (const std::string& input : inputs) {
    std::error_code error;
    if (!input.empty() && std::filesystem::equivalent(input, out, error)) {
      throw UsageError(
          fmt::format("{}: would be replaced by the results; name another --out", out));
    }
  }
}

}  // namespace tool
