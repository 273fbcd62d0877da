#include "tools/models/model_input.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <optional>
#include <utility>
#include <ztb/model_names.hpp>

#include "tools/files/memory_room.h"
#include "tools/files/record_walk.h"
#include "tools/text/failure.h"
#include "tools/text/number_text.h"
#include "tools/text/output.h"

namespace tool {

namespace {

std::vector<ztb::DomainArgument> anyLabels(int dimension) {
  return {static_cast<std::size_t>(dimension), ztb::DomainArgument("*")};
}

std::string_view trimmed(std::string_view text) {
  while (text.starts_with(' ')) text.remove_prefix(1);
  while (text.ends_with(' ')) text.remove_suffix(1);
  return text;
}

// An element as it was typed: blanks around it, and around its symbol's name, do not count.
ztb::ElementText typedElement(std::string_view text, std::string& problem) {
  ztb::ElementText element = ztb::readElement(trimmed(text), problem);
  element.symbol = trimmed(element.symbol);
  return element;
}

// Labels of the record at which a walk stands.
std::vector<const char*> keysOf(const ExchangeFile& file, const RecordWalk& walk) {
  std::vector<const char*> keys;
  for (const int key : walk.keys()) keys.push_back(file.label(key).data());
  return keys;
}

std::vector<const char*> pointersTo(const std::vector<std::string>& labels) {
  std::vector<const char*> pointers;
  for (const std::string& label : labels) pointers.push_back(label.c_str());
  return pointers;
}

// A symbol of the model in messages, such as "buy(*)".
// As the user writes it: the columns that a parameter drives are known by its name.
std::string signature(const ztb::Symbol& symbol, bool drives) {
  std::string name = symbol.name().str();
  if (drives) name.resize(name.size() - std::string_view(ztb::parameterSuffix).size());
  if (symbol.dimension() == 0) return name;
  std::vector<std::string> names;
  for (const ztb::Domain& domain : symbol.domains()) names.push_back(domain.name.str());
  return fmt::format("{}({})", name, fmt::join(names, ", "));
}

std::string keysText(const std::vector<const char*>& keys) {
  return keys.size() == 1 ? keys.front() : fmt::format("({})", fmt::join(keys, ", "));
}

// The first record that a symbol of the model has no element for.
std::string firstUnmatched(const ExchangeFile& file, const FileSymbol& source,
                           const ztb::Symbol& target) {
  for (RecordWalk walk(file, source); walk.next();) {
    const std::vector<const char*> keys = keysOf(file, walk);
    if (!target.find(ztb::Keys(keys))) return ": " + keysText(keys);
  }
  return "";
}

// The first elements of a symbol of the model, to be put behind a message that it lacks one.
std::string elementsText(const ztb::Symbol& symbol) {
  constexpr std::size_t kRead = 11;
  std::vector<std::string> texts;
  for (ztb::Record& record : symbol.records()) {
    std::vector<std::string> labels;
    for (int position = 0; position < symbol.dimension(); ++position) {
      labels.push_back(record.key(position).str());
    }
    texts.push_back(keysText(pointersTo(labels)));
    if (texts.size() == kRead) break;
  }
  if (texts.empty() || symbol.dimension() == 0) return "";
  if (texts.size() < kRead) return "; there is " + listed(texts);
  texts.pop_back();
  return fmt::format("; there is {}, ...", fmt::join(texts, ", "));
}

// Places of the fields of a record.
constexpr std::size_t levelField = 0;
constexpr std::size_t marginalField = 1;
constexpr std::size_t lowerField = 2;
constexpr std::size_t upperField = 3;

}  // namespace

ModelInput::ModelInput(ModelSession& session) : session_(session) {
  const ztb::Database& database = session.database();
  for (int label = 1; label <= database.labelCount(); ++label) {
    scratch_.mergeLabel(database.label(label).str());
  }
}

void ModelInput::applyFile(const std::string& path) {
  applyFile(ExchangeFile(path), nullptr);
}

void ModelInput::applyFile(const ExchangeFile& file, const ModelFills* fills) {
  const std::string& path = file.path();
  MemoryRoom room(file);
  std::vector<const FileSymbol*> parameters;
  std::vector<std::pair<const FileSymbol*, ztb::Symbol>> variables;
  std::vector<std::pair<const FileSymbol*, ztb::Symbol>> equations;
  for (const FileSymbol& source : file.symbols()) {
    if (fills != nullptr && fills->took(source.name)) continue;
    if (source.isAlias() || source.type == ztb::Type::set) {
      if (session_.drives(source.name)) {
        printError(fmt::format("ztb: {}: {} is {}, and drives nothing: a parameter is expected",
                               path, source.name, source.isAlias() ? "an alias" : "a set"));
      }
      continue;
    }
    if (source.type == ztb::Type::parameter) {
      if (session_.drives(source.name)) {
        room.take(source);
        parameters.push_back(&source);
      } else {
        printError(fmt::format("ztb: {}: the model has no columns {}_var for parameter {}{}", path,
                               source.name, source.name, session_.drivingText()));
      }
      continue;
    }
    const std::optional<ztb::Symbol> target = session_.database().findSymbol(source.name);
    if (target && target->type() == source.type && target->dimension() == source.dimension) {
      room.take(source);
      (source.type == ztb::Type::variable ? variables : equations).emplace_back(&source, *target);
    } else {
      printError(fmt::format("ztb: {}: the model has no {} like it", path, signature(source)));
    }
  }
  // The last update before a solve decides whether bounds that were set count; one of an equation
  // decides that they do not.
  for (const auto& [source, target] : equations) applySolution(file, *source, target);
  for (const auto& [source, target] : variables) applySolution(file, *source, target);
  for (const FileSymbol* source : parameters) applyParameter(file, *source);
}

void ModelInput::applyStart(const std::string& path) {
  const ExchangeFile file(path);
  MemoryRoom room(file);
  bool found = false;
  for (const FileSymbol& source : file.symbols()) {
    if (source.isAlias() || source.type != ztb::Type::variable) continue;
    const std::optional<ztb::Symbol> target = session_.database().findSymbol(source.name);
    const bool fits =
        target && target->type() == ztb::Type::variable && target->dimension() == source.dimension;
    if (!fits) continue;
    room.take(source);
    applyField(file, source, *target, ztb::Action::level, levelField);
    found = true;
  }
  if (!found) throw Failure(withFile(path, "has no variable of the model to start from"));
  session_.model().setOption("UseStart", "1");
}

void ModelInput::applyParameter(const ExchangeFile& file, const FileSymbol& source) {
  try {
    ztb::Symbol target = session_.parameter(source.name, source.dimension);
    for (RecordWalk walk(file, source); walk.next();) {
      std::vector<const char*> keys = keysOf(file, walk);
      target.merge(ztb::Keys(keys)).setLevel(walk.values()[levelField]);
    }
    const int unmatched = session_.applyParameter(target);
    reportUnmatched(file, source, unmatched,
                    session_.database().symbol(source.name + ztb::parameterSuffix));
  } catch (const std::exception& error) {
    throw Failure(withFile(file.path(), fmt::format("{}: {}", signature(source), error.what())));
  }
}

void ModelInput::applySolution(const ExchangeFile& file, const FileSymbol& source,
                               const ztb::Symbol& target) {
  try {
    if (source.type == ztb::Type::variable) {
      applyField(file, source, target, ztb::Action::lower, lowerField);
      applyField(file, source, target, ztb::Action::upper, upperField);
    }
    applyField(file, source, target, ztb::Action::level, levelField);
    applyField(file, source, target, ztb::Action::marginal, marginalField);
  } catch (const std::exception& error) {
    throw Failure(withFile(file.path(), fmt::format("{}: {}", signature(source), error.what())));
  }
}

// What an error names is the symbol that the user knows.
ztb::Symbol ModelInput::emptyValues(const std::string& name, int dimension) {
  const std::optional<ztb::Symbol> last = scratch_.findSymbol(name);
  if (!last) return scratch_.addSymbol(name, ztb::Type::parameter, anyLabels(dimension));
  ztb::Symbol values = *last;
  values.clear();
  return values;
}

void ModelInput::applyField(const ExchangeFile& file, const FileSymbol& source,
                            const ztb::Symbol& target, ztb::Action action, std::size_t field) {
  ztb::Symbol values = emptyValues(target.name().str(), source.dimension);
  for (RecordWalk walk(file, source); walk.next();) {
    std::vector<const char*> keys = keysOf(file, walk);
    values.merge(ztb::Keys(keys)).setLevel(walk.values()[field]);
  }
  const int unmatched = session_.update(target, action, values, ztb::Missing::keep);
  if (field == levelField) reportUnmatched(file, source, unmatched, target);
}

void ModelInput::reportUnmatched(const ExchangeFile& file, const FileSymbol& source, int count,
                                 const ztb::Symbol& target) const {
  if (count == 0) return;
  printError(fmt::format("ztb: {}: {} of {} stand{} for nothing in the model{}", file.path(),
                         count == 1 ? "1 record" : fmt::format("{} records", count),
                         signature(source), count == 1 ? "s" : "",
                         firstUnmatched(file, source, target)));
}

void ModelInput::applySetting(const std::string& setting) {
  const std::size_t equals = setting.rfind('=');
  std::string problem;
  double value = 0;
  ztb::ElementText element;
  if (equals == std::string::npos) {
    problem = "an \"=\" and a number are missing";
  } else {
    element = typedElement(std::string_view(setting).substr(0, equals), problem);
    if (problem.empty()) {
      value = parseNumber(std::string_view(setting).substr(equals + 1), problem);
    }
  }
  if (!problem.empty()) {
    throw UsageError(
        fmt::format("--set \"{}\": {}; write it as \"demand[oslo]=30\"", setting, problem));
  }

  const bool drives = session_.drives(element.symbol);
  const auto symbol = session_.database().findSymbol(drives ? element.symbol + ztb::parameterSuffix
                                                            : element.symbol);
  if (!symbol || symbol->type() != ztb::Type::variable) {
    throw Failure(
        withFile(session_.file(),
                 fmt::format("--set \"{}\": the model has no columns {} or {}_var{}", setting,
                             element.symbol, element.symbol, session_.settableText())));
  }
  std::vector<const char*> keys = pointersTo(element.labels);
  if (symbol->dimension() != static_cast<int>(keys.size()) || !symbol->find(ztb::Keys(keys))) {
    throw Failure(withFile(
        session_.file(), fmt::format("--set \"{}\": the model has no such element "
                                     "of {}{}",
                                     setting, signature(*symbol, drives), elementsText(*symbol))));
  }
  try {
    if (!drives) {
      fixVariable(*symbol, keys, value);
      return;
    }
    ztb::Symbol parameter = session_.parameter(element.symbol, symbol->dimension());
    parameter.merge(ztb::Keys(keys)).setLevel(value);
    session_.applyParameter(parameter);
  } catch (const std::exception& error) {
    throw Failure(fmt::format("--set \"{}\": {}", setting, error.what()));
  }
}

void ModelInput::fixVariable(const ztb::Symbol& variable, const std::vector<const char*>& keys,
                             double value) {
  ztb::Symbol values = emptyValues(variable.name().str(), variable.dimension());
  values.merge(ztb::Keys(keys)).setLevel(value);
  session_.update(variable, ztb::Action::fix, values, ztb::Missing::keep);
}

}  // namespace tool
