#include "tests/property/model.h"

#include <bit>
#include <cstdint>
#include <limits>
#include <utility>

namespace ztbtest {

namespace {

std::string folded(std::string text) {
  for (char& c : text) {
    if (c >= 'A' && c <= 'Z') {
      c = static_cast<char>(c - 'A' + 'a');
    }
  }
  return text;
}

bool sameBits(double one, double other) {
  return std::bit_cast<std::uint64_t>(one) == std::bit_cast<std::uint64_t>(other);
}

bool isValidName(const std::string& name) {
  const auto isLetter = [](char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'); };
  if (name.empty() || name.size() > 63 || !isLetter(name[0])) {
    return false;
  }
  for (const char c : name) {
    if (!isLetter(c) && !(c >= '0' && c <= '9') && c != '_') {
      return false;
    }
  }
  return true;
}

}  // namespace

const std::array<double, 5>& internalSpecialValues() {
  static const std::array<double, 5> values{
      1e300, std::bit_cast<double>(std::uint64_t{0x7FF8000000000000}),
      std::numeric_limits<double>::infinity(), -std::numeric_limits<double>::infinity(), 5e-324};
  return values;
}

std::string numberText(int number) {
  return std::to_string(number);
}

std::string valueText(double value) {
  return std::to_string(std::bit_cast<std::uint64_t>(value));
}

Model::Model() : spelling_(internalSpecialValues()) {}

Answer Model::fail(const std::string& text) {
  lastError = text.substr(0, 255);
  lastErrorIsStart = false;
  return {0, ""};
}

Answer Model::failUnexpected(const std::string& operation) {
  lastError = "Unexpected exception in " + operation + ": ";
  lastErrorIsStart = true;
  return {0, ""};
}

Model Model::reopened() const {
  Model file;
  file.labels = labels;
  file.labelNumbers_ = labelNumbers_;
  file.texts = texts;
  file.textNumbers_ = textNumbers_;
  file.source_ = 1;
  for (const ModelSymbol& symbol : symbols) {
    ModelSymbol read = symbol;
    read.number = static_cast<int>(file.symbols.size()) + 1;
    read.loaded = false;
    if (symbol.type == 4) {
      read.userInfo = symbol.target + 1;
      read.text.clear();
      read.dim = symbol.target < 0 ? 1 : symbols[static_cast<size_t>(symbol.target)].dim;
    }
    const bool lost = !symbol.loaded && source_ != 1;
    if (symbol.type == 4 || lost) {
      read.records.clear();
    }
    file.symbols.push_back(std::move(read));
  }
  return file;
}

int Model::unwritableRecords() const {
  int count = 0;
  for (const ModelSymbol& symbol : symbols) {
    if (symbol.type == 4 || (!symbol.loaded && source_ != 1)) {
      continue;
    }
    for (const auto& [key, slots] : symbol.records) {
      for (const int number : key) {
        if (number < 1 || number >= static_cast<int>(labels.size())) {
          ++count;
          break;
        }
      }
    }
  }
  return count;
}

std::optional<std::string> Model::normalised(const std::string& label) {
  bool singleQuote = false;
  bool doubleQuote = false;
  for (const char c : label) {
    if (static_cast<unsigned char>(c) < 32) {
      return {};
    }
    singleQuote = singleQuote || c == '\'';
    doubleQuote = doubleQuote || c == '"';
    if (singleQuote && doubleQuote) {
      fail("Label with single and double quote not allowed >" + label + "<");
      return {};
    }
  }
  if (label.empty()) {
    return label;
  }
  const size_t lastChar = label.find_last_not_of(' ');
  if (lastChar == std::string::npos) {
    return " ";
  }
  if (lastChar + 1 > 63) {
    fail("Label exceeds maximum size of 63: >" + label + "<");
    return {};
  }
  return label.substr(0, lastChar + 1);
}

std::optional<int> Model::knownNumber(const std::string& label) {
  const std::optional<std::string> stored = normalised(label);
  if (!stored) {
    return {};
  }
  if (*stored == " ") {
    return 0;
  }
  const auto found = labelNumbers_.find(folded(*stored));
  return found == labelNumbers_.end() ? -1 : found->second;
}

std::optional<int> Model::mergedNumber(const std::string& label) {
  const std::optional<int> known = knownNumber(label);
  if (!known || *known >= 0) {
    return known;
  }
  const std::string stored = *normalised(label);
  const int number = static_cast<int>(labels.size());
  labels.push_back(stored);
  labelNumbers_[folded(stored)] = number;
  return number;
}

Answer Model::mergeLabel(const std::string& label) {
  const std::optional<int> number = mergedNumber(label);
  return number ? Answer{1, numberText(*number)} : Answer{};
}

Answer Model::findLabel(const std::string& label) {
  const std::optional<int> number = knownNumber(label);
  return number ? Answer{1, numberText(*number)} : Answer{};
}

Answer Model::labelOf(int number) {
  const int count = static_cast<int>(labels.size()) - 1;
  if (number < 1 || number > count) {
    return fail("Uel index " + numberText(number) + " out of range [1," + numberText(count) + "]");
  }
  return {1, labels[static_cast<size_t>(number)]};
}

int Model::textNumber(const std::string& text) {
  const auto [place, added] = textNumbers_.emplace(folded(text), static_cast<int>(texts.size()));
  if (added) {
    texts.push_back(text);
  }
  return place->second;
}

int Model::positionOf(const std::string& name) const {
  for (size_t i = 0; i < symbols.size(); ++i) {
    if (folded(symbols[i].name) == folded(name)) {
      return static_cast<int>(i);
    }
  }
  return -1;
}

Answer Model::addSymbol(const std::string& name, int dim, int type, int userInfo,
                        const std::string& text) {
  if (dim == 0 && type == 0) {
    return fail("Dimension must be greater than 0 for a Set");
  }
  if (dim < 0 || dim > 20) {
    return fail("Dimension must be greater or equal 0 and smaller or equal 20 (saw " +
                numberText(dim) + ")");
  }
  if (!isValidName(name)) {
    return fail("'" + name + "' is not a valid name for a VELT symbol");
  }
  if (text.size() > 255) {
    return fail("Explanatory text too long. Max length is 255");
  }
  if (source_ == 0) {
    source_ = 3;
  }
  if (positionOf(name) >= 0) {
    return fail("Symbol " + name + " exists already");
  }
  ModelSymbol symbol;
  symbol.name = name;
  symbol.text = text;
  symbol.dim = dim;
  symbol.type = type;
  symbol.userInfo = userInfo;
  symbol.number = static_cast<int>(symbols.size());
  const bool namesSet = userInfo >= 0 && userInfo < static_cast<int>(symbols.size()) &&
                        symbols[static_cast<size_t>(userInfo)].type == 0;
  symbol.target = type == 4 && namesSet ? userInfo : -1;
  symbols.push_back(symbol);
  return {1, numberText(static_cast<int>(symbols.size()) - 1)};
}

Answer Model::findSymbol(const std::string& name, bool resolveAlias) {
  if (name == "*") {
    return {1, "-1"};
  }
  const int position = positionOf(name);
  if (position < 0) {
    return fail("Cannot find symbol " + name);
  }
  const ModelSymbol& symbol = symbols[static_cast<size_t>(position)];
  return {1, numberText(resolveAlias && symbol.type == 4 ? symbol.target : position)};
}

Answer Model::symbolByIndex(int index) {
  if (index == -1) {
    return {1, "-1"};
  }
  int seen = 0;
  for (size_t i = 0; i < symbols.size() && index >= 0; ++i) {
    if (symbols[i].type != 4 && seen++ == index) {
      return {1, numberText(static_cast<int>(i))};
    }
  }
  return fail("Symbol index " + numberText(index) + " is out of range");
}

Answer Model::symbolByNumber(int number) {
  if (number >= -1 && number < static_cast<int>(symbols.size())) {
    return {1, numberText(number)};
  }
  return fail("Symbol index " + numberText(number) + " is out of range");
}

bool Model::ensureLoaded(ModelSymbol& symbol) {
  if (symbol.loaded) {
    return true;
  }
  symbol.loaded = true;
  if (source_ == 1 && symbol.type != 4) {
    return true;
  }
  symbol.records.clear();
  fail(source_ == 1
           ? "Cannot load alias " + symbol.name
           : "Symbol " + symbol.name + " not initialized from RXF or PBI: " + numberText(source_));
  return false;
}

Answer Model::countRecords(size_t position) {
  ModelSymbol& symbol = symbols[position];
  if (symbol.type == 4) {
    return {1, "0"};
  }
  if (!ensureLoaded(symbol)) {
    return {0, "0"};
  }
  return {1, numberText(static_cast<int>(symbol.records.size()))};
}

Answer Model::clear(size_t position) {
  symbols[position].loaded = true;
  symbols[position].records.clear();
  if (cursor && cursor->symbol == position) {
    cursor.reset();
  }
  return {1, ""};
}

Answer Model::closeFile(bool loadRemain) {
  if (source_ != 1) {
    return fail("Database not initialized from RXF");
  }
  for (ModelSymbol& symbol : symbols) {
    if (loadRemain && symbol.type != 4) {
      symbol.loaded = true;
    }
  }
  source_ = 3;
  return {1, ""};
}

void Model::setSpecialValues(const std::array<double, 5>& spelling) {
  spelling_ = spelling;
  mode_ = sameBits(spelling[4], internalSpecialValues()[4]) ? 0 : 1;
  for (size_t i = 0; i < 4; ++i) {
    if (!sameBits(spelling.at(i), internalSpecialValues().at(i))) {
      mode_ = 2;
    }
  }
}

double Model::mappedOut(double value) const {
  for (size_t i = mode_ == 2 ? 0 : 4; i < 5 && mode_ > 0; ++i) {
    if (sameBits(value, internalSpecialValues().at(i))) {
      return spelling_.at(i);
    }
  }
  return value;
}

double Model::mappedIn(double value) const {
  for (size_t i = mode_ == 2 ? 0 : 4; i < 5 && mode_ > 0; ++i) {
    if (sameBits(value, spelling_.at(i))) {
      return internalSpecialValues().at(i);
    }
  }
  return value;
}

}  // namespace ztbtest
