#include "providers/model/driving.h"

#include <algorithm>
#include <cstdint>
#include <iterator>
#include <unordered_set>
#include <utility>
#include <ztb/case_folding.hpp>
#include <ztb/model_names.hpp>
#include <ztb/nearest_name.hpp>

#include "providers/model/at.h"
#include "providers/model/element_name.h"
#include "providers/model/model_error.h"
#include "providers/model/number_text.h"

namespace lomu {

namespace {

constexpr std::size_t kMostListed = 12;

const char* typeWord(SymbolType type) {
  return type == SymbolType::variable ? "variable" : "equation";
}

std::string counted(std::size_t count, const char* word) {
  return std::to_string(count) + " " + word + (count == 1 ? "" : "s");
}

// The first of the names, in words.
std::string listed(const std::vector<std::string>& names) {
  std::string text;
  for (std::size_t n = 0; n < names.size() && n < kMostListed; ++n) {
    text += (n == 0 ? "" : ", ") + names[n];
  }
  if (names.size() > kMostListed) text += ", ...";
  return names.empty() ? "none" : text;
}

// A label as it stands in the name of a row or column, in quotes.
std::string quoted(const std::string& label) {
  std::string text = "'";
  for (const char c : label) {
    text += c;
    if (c == '\'') text += c;
  }
  return text + "'";
}

std::string carrierName(const std::string& symbol, const std::vector<std::string>& labels) {
  std::string name = symbol + ztb::parameterSuffix;
  for (std::size_t k = 0; k < labels.size(); ++k) name += (k == 0 ? "[" : ",") + quoted(labels[k]);
  return labels.empty() ? name : name + "]";
}

std::string placeText(const ModelData& data, const DrivenNumber& number) {
  const auto columnName = [&] { return data.columns[at(number.column)].name; };
  const auto rowName = [&] { return data.rows[at(number.row)].name; };
  switch (number.kind) {
    case DrivenKind::rhs:
      return "the right-hand side of " + rowName();
    case DrivenKind::lower:
      return "the lower bound of " + columnName();
    case DrivenKind::upper:
      return "the upper bound of " + columnName();
    default:
      return number.row == 0 ? "the cost of " + columnName()
                             : "the coefficient of " + columnName() + " in " + rowName();
  }
}

// A family with as many positions of the statement's symbol as there are, any label in the rest.
std::string exampleOf(const DictionarySymbol& family, const DriveStatement& statement) {
  std::string text = family.name;
  for (std::size_t k = 0; k < at(family.dimension); ++k) {
    text += (k == 0 ? "(" : ", ") +
            (k < statement.positions.size() ? statement.positions[k] : std::string("*"));
  }
  return family.dimension == 0 ? text : text + ")";
}

// "; buy has: buy(x), buy(y)", the first elements of a family.
std::string elementsText(const ModelData& data, const DictionarySymbol& family) {
  std::vector<std::string> names;
  for (const int element : family.elements) {
    const bool isColumn = family.type == SymbolType::variable;
    names.push_back(isColumn ? data.columns[at(element)].name : data.rows[at(element)].name);
    if (names.size() > kMostListed) break;
  }
  return "; " + family.name + " has: " + listed(names);
}

std::uint64_t pairKey(int row, int column) {
  return static_cast<std::uint64_t>(static_cast<std::uint32_t>(row)) << 32U |
         static_cast<std::uint32_t>(column);
}

}  // namespace

void Driving::add(ModelData& data, DrivenNumbers& driven, std::string_view text) {
  const DriveStatement statement = parseDriveStatement(text);
  try {
    requireFree(statement);
    const std::vector<Target> found = targets(data, statement);

    // All is looked at before anything is added.
    const auto known = symbols_.find(ztb::folded(statement.symbol));
    const bool isKnown = known != symbols_.end();
    if (isKnown && known->second != statement.positions.size()) {
      throw ModelError(statement.symbol + " has " + counted(known->second, "position") +
                       " in the statement before");
    }
    std::unordered_map<std::string, Carrier> carriers;
    std::map<Place, std::string> drivenBy;
    std::vector<ColumnData> columns;
    std::vector<DrivenNumber> numbers;
    std::vector<Term> terms;
    for (const Target& target : found) {
      DrivenNumber number = target.number;
      const Place place{number.kind, number.row, number.column};
      if (const auto other = drivenBy_.find(place); other != drivenBy_.end()) {
        throw ModelError(placeText(data, number) + " is driven by " + other->second + " already");
      }
      drivenBy.emplace(place, statement.symbol);
      const std::string name = carrierName(statement.symbol, target.labels);
      const std::string key = ztb::folded(name);
      const auto earlier = carriers_.find(key);
      const auto fresh = static_cast<int>(data.columns.size() + columns.size());
      const Carrier* carrier =
          earlier != carriers_.end()
              ? &earlier->second
              : &carriers.try_emplace(key, Carrier{fresh, target.base, number}).first->second;
      if (carrier->base != target.base) {
        throw ModelError(
            name + " would drive numbers that differ: " + placeText(data, carrier->first) + " is " +
            numberText(carrier->base) + ", " + placeText(data, number) + " is " +
            numberText(target.base) + "; name more positions, so that each has a value of its own");
      }
      if (carrier->column == fresh) {
        columns.push_back({.name = name, .lower = target.base, .upper = target.base});
      }
      number.carrier = carrier->column;
      numbers.push_back(number);
      if (number.kind == DrivenKind::coefficient) terms.push_back({number.row, number.column, 0});
    }

    data.columns.reserve(data.columns.size() + columns.size());
    driven.numbers.reserve(driven.numbers.size() + numbers.size());
    data.terms.reserve(data.terms.size() + terms.size());
    carriers_.reserve(carriers_.size() + carriers.size());
    symbols_.try_emplace(ztb::folded(statement.symbol), statement.positions.size());
    carriers_.merge(carriers);
    drivenBy_.merge(drivenBy);
    driven.carrierCount += static_cast<int>(columns.size());
    std::ranges::move(columns, std::back_inserter(data.columns));
    std::ranges::copy(numbers, std::back_inserter(driven.numbers));
    std::ranges::copy(terms, std::back_inserter(data.terms));
  } catch (const ModelError& error) {
    throw ModelError("drive \"" + std::string(text) + "\": " + error.what(), error.kind());
  }
}

void Driving::requireFree(const DriveStatement& statement) const {
  const std::string carrier = statement.symbol + ztb::parameterSuffix;
  if (dictionary_.find(carrier) > 0) {
    throw ModelError("the model has " + carrier + ", which " + statement.symbol +
                     " drives without a statement; give the symbol another name");
  }
}

std::vector<std::string> Driving::names(SymbolType type) const {
  std::vector<std::string> result;
  for (const DictionarySymbol& symbol : dictionary_.symbols()) {
    if (symbol.type == type) result.push_back(symbol.name);
  }
  return result;
}

Driving::Family Driving::resolve(const DriveStatement& statement, const FamilyReference& reference,
                                 SymbolType type) const {
  const int number = dictionary_.find(reference.name);
  if (number == 0) {
    const std::vector<std::string> known = names(type);
    throw ModelError(std::string("the model has no ") + typeWord(type) + " " + reference.name +
                     ztb::suggestion(reference.name, known) + "; its " + typeWord(type) +
                     "s are: " + listed(known));
  }
  const DictionarySymbol& symbol = dictionary_.symbols()[at(number) - 1];
  if (symbol.type != type) {
    throw ModelError(symbol.name + " is " + (type == SymbolType::variable ? "an " : "a ") +
                     typeWord(symbol.type) + " of the model, expected " +
                     (type == SymbolType::variable ? "a " : "an ") + typeWord(type) + "; its " +
                     typeWord(type) + "s are: " + listed(names(type)));
  }
  Family family{&symbol, {}, std::vector<int>(at(symbol.dimension), 0)};
  if (reference.positions) {
    family.positions = *reference.positions;
  } else if (at(symbol.dimension) == statement.positions.size()) {
    for (std::size_t k = 0; k < statement.positions.size(); ++k) {
      family.positions.push_back({FamilyPosition::Kind::named, k, ""});
    }
  }
  if (family.positions.size() != at(symbol.dimension)) {
    throw ModelError(symbol.name + " has " + counted(at(symbol.dimension), "position") + ", " +
                     (reference.positions
                          ? std::to_string(family.positions.size()) + " are given"
                          : statement.symbol + " has " +
                                std::to_string(statement.positions.size()) +
                                "; write which they are, as in " + exampleOf(symbol, statement)));
  }
  for (std::size_t k = 0; k < family.positions.size(); ++k) {
    const FamilyPosition& position = family.positions[k];
    if (position.kind == FamilyPosition::Kind::label) {
      family.labels[k] = labelAt(symbol, k, position.label);
    }
  }
  return family;
}

int Driving::labelAt(const DictionarySymbol& symbol, std::size_t position,
                     const std::string& label) const {
  std::unordered_set<int> seen;
  std::vector<std::string> known;
  for (const int element : symbol.elements) {
    const int number = keysOf(symbol, element)[position];
    if (!seen.insert(number).second) continue;
    known.push_back(dictionary_.labels()[at(number) - 1]);
    if (ztb::sameFolded(known.back(), label)) return number;
  }
  const std::string place =
      symbol.dimension == 1 ? "" : " at position " + std::to_string(position + 1);
  throw ModelError(symbol.name + " has no label " + quoted(label) + place +
                   ztb::suggestion(label, known) + "; its labels " +
                   (symbol.dimension == 1 ? "" : "there ") + "are: " + listed(known));
}

const int* Driving::keysOf(const DictionarySymbol& symbol, int element) const {
  return symbol.type == SymbolType::variable ? dictionary_.columnPlace(element).keys
                                             : dictionary_.rowPlace(element).keys;
}

std::optional<std::vector<int>> Driving::bind(const Family& family, int element,
                                              std::size_t positions) const {
  const int* keys = keysOf(*family.symbol, element);
  std::vector<int> bound(positions, 0);
  for (std::size_t k = 0; k < family.positions.size(); ++k) {
    const FamilyPosition& position = family.positions[k];
    if (position.kind == FamilyPosition::Kind::label && family.labels[k] != keys[k]) {
      return std::nullopt;
    }
    if (position.kind != FamilyPosition::Kind::named) continue;
    int& wanted = bound[position.position];
    if (wanted == 0) wanted = keys[k];
    if (wanted != keys[k]) return std::nullopt;
  }
  return bound;
}

// In the spelling of the model, which names a carrier so that it gets the same labels.
void Driving::spell(const ModelData& data, const Family& family, int element,
                    std::vector<std::string>& labels) {
  const bool isColumn = family.symbol->type == SymbolType::variable;
  ElementName name =
      parseElementName(isColumn ? data.columns[at(element)].name : data.rows[at(element)].name);
  for (std::size_t k = 0; k < family.positions.size(); ++k) {
    const FamilyPosition& position = family.positions[k];
    if (position.kind != FamilyPosition::Kind::named) continue;
    labels[position.position] = std::move(name.labels[k]);
  }
}

std::vector<Driving::Target> Driving::targets(const ModelData& data,
                                              const DriveStatement& statement) const {
  const bool ofRows = statement.kind == DrivenKind::rhs;
  const Family family =
      resolve(statement, statement.family, ofRows ? SymbolType::equation : SymbolType::variable);
  std::vector<Family> families{family};
  if (statement.row) families.push_back(resolve(statement, *statement.row, SymbolType::equation));
  for (std::size_t p = 0; p < statement.positions.size(); ++p) {
    const bool isNamed = std::ranges::any_of(families, [&](const Family& one) {
      return std::ranges::any_of(one.positions, [&](const FamilyPosition& position) {
        return position.kind == FamilyPosition::Kind::named && position.position == p;
      });
    });
    if (!isNamed) {
      throw ModelError("position " + statement.positions[p] + " of " + statement.symbol +
                       " is none of " + family.symbol->name +
                       (statement.row ? " or " + families[1].symbol->name : ""));
    }
  }

  std::vector<Target> found;
  if (statement.row) {
    found = pairs(data, statement.positions.size(), family, families[1]);
  } else {
    for (const int element : family.symbol->elements) {
      if (!bind(family, element, statement.positions.size())) continue;
      if (ofRows && data.rows[at(element)].type == RowType::free) continue;
      DrivenNumber number{statement.kind, 0, ofRows ? element : 0, ofRows ? 0 : element};
      if (statement.kind == DrivenKind::cost) number.kind = DrivenKind::coefficient;
      Target target{number, std::vector<std::string>(statement.positions.size())};
      spell(data, family, element, target.labels);
      found.push_back(std::move(target));
    }
  }
  if (found.empty()) {
    throw ModelError(ofRows &&
                             std::ranges::all_of(
                                 family.symbol->elements,
                                 [&](int row) { return data.rows[at(row)].type == RowType::free; })
                         ? family.symbol->name + " has no right-hand side: its rows are free"
                         : "nothing in the model fits it" + elementsText(data, *family.symbol) +
                               (statement.row ? elementsText(data, *families[1].symbol) : ""));
  }
  readBases(data, found);
  return found;
}

std::vector<Driving::Target> Driving::pairs(const ModelData& data, std::size_t positions,
                                            const Family& columns, const Family& rows) const {
  // Rows by the labels of the positions that both families name.
  std::vector<char> shared(positions, 0);
  for (const FamilyPosition& position : columns.positions) {
    if (position.kind == FamilyPosition::Kind::named) shared[position.position] = 1;
  }
  std::vector<char> ofRow(positions, 0);
  for (const FamilyPosition& position : rows.positions) {
    if (position.kind == FamilyPosition::Kind::named) ofRow[position.position] = 1;
  }
  const auto sharedLabels = [&](std::vector<int> bound) {
    for (std::size_t p = 0; p < positions; ++p) {
      if (shared[p] == 0 || ofRow[p] == 0) bound[p] = 0;
    }
    return bound;
  };
  std::map<std::vector<int>, std::vector<int>> rowsOf;
  for (const int row : rows.symbol->elements) {
    if (const auto bound = bind(rows, row, positions)) rowsOf[sharedLabels(*bound)].push_back(row);
  }

  std::unordered_set<std::uint64_t> present;
  std::size_t count = 0;
  std::vector<std::pair<int, const std::vector<int>*>> fitting;
  for (const int column : columns.symbol->elements) {
    const auto bound = bind(columns, column, positions);
    if (!bound) continue;
    const auto found = rowsOf.find(sharedLabels(*bound));
    if (found == rowsOf.end()) continue;
    fitting.emplace_back(column, &found->second);
    count += found->second.size();
  }
  if (count > kMostPairs) {
    for (const Term& term : data.terms) present.insert(pairKey(term.row, term.column));
  }

  std::vector<Target> result;
  for (const auto& [column, itsRows] : fitting) {
    for (const int row : *itsRows) {
      if (count > kMostPairs && !present.contains(pairKey(row, column))) continue;
      Target target{{DrivenKind::coefficient, 0, row, column}, std::vector<std::string>(positions)};
      spell(data, columns, column, target.labels);
      spell(data, rows, row, target.labels);
      result.push_back(std::move(target));
    }
  }
  return result;
}

void Driving::readBases(const ModelData& data, std::vector<Target>& targets) {
  std::unordered_map<std::uint64_t, double> sums;
  for (const Target& target : targets) {
    if (target.number.kind == DrivenKind::coefficient) {
      sums.try_emplace(pairKey(target.number.row, target.number.column), 0.0);
    }
  }
  if (!sums.empty()) {
    for (const Term& term : data.terms) {
      const auto found = sums.find(pairKey(term.row, term.column));
      if (found != sums.end()) found->second += term.value;
    }
  }
  for (Target& target : targets) {
    const DrivenNumber& number = target.number;
    switch (number.kind) {
      case DrivenKind::rhs:
        target.base = data.rows[at(number.row)].rhs;
        break;
      case DrivenKind::lower:
        target.base = data.columns[at(number.column)].lower;
        break;
      case DrivenKind::upper:
        target.base = data.columns[at(number.column)].upper;
        break;
      default:
        target.base = sums[pairKey(number.row, number.column)];
    }
  }
}

}  // namespace lomu
