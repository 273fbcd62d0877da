#include "providers/model/mps_reader.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <initializer_list>
#include <limits>
#include <optional>
#include <string_view>
#include <utility>
#include <vector>
#include <ztb/case_folding.hpp>

#include "providers/model/lp_tokens.h"
#include "providers/model/mps_bounds.h"
#include "providers/model/mps_extras.h"
#include "providers/model/mps_model.h"
#include "providers/model/mps_sides.h"

namespace lomu {

namespace {

constexpr std::size_t kMaxCount = std::numeric_limits<int>::max();

class MpsReader {
 public:
  MpsReader(const std::string& file, MpsFormat format)
      : model_(file, format), lines_(model_.lines), data_(model_.data) {}

  ModelData read() {
    data_.rows[0].name.clear();
    while (!over_) {
      if (!lines_.next()) failAtEnd();
      if (lines_.isHeader()) {
        readHeader();
      } else {
        (this->*readData_)();
      }
    }
    if (lines_.skipToText()) {
      model_.notes.add("behind", lines_.line(), 1, "what stands behind ENDATA is passed over");
    }
    finish();
    return std::move(data_);
  }

 private:
  using Read = void (MpsReader::*)();
  struct Section {
    std::string_view name;
    Read header;
    Read data;
    bool hasTypes;  // fixed format has a field for them
  };

  static std::optional<Section> sectionOf(std::string_view name) {
    using R = MpsReader;
    static constexpr std::array<Section, 14> kSections{{
        {"NAME", &R::readNothing, &R::refuseData, false},
        {"ROWS", &R::readNothing, &R::readRow, true},
        {"COLUMNS", &R::beginColumns, &R::readColumn, false},
        {"RHS", &R::readNothing, &R::readRhs, false},
        {"RANGES", &R::readNothing, &R::readRange, false},
        {"BOUNDS", &R::readNothing, &R::readBound, true},
        {"SOS", &R::readNothing, &R::readSet, true},
        {"OBJSENSE", &R::readSenseOfHeader, &R::readSense, false},
        {"OBJNAME", &R::readObjectiveOfHeader, &R::readObjective, false},
        {"QUADOBJ", &R::beginTriangle, &R::readProduct, false},
        {"QSECTION", &R::beginTriangle, &R::readProduct, false},
        {"QMATRIX", &R::beginMatrix, &R::readProduct, false},
        {"QCMATRIX", &R::beginMatrixOfRow, &R::readProduct, false},
        {"ENDATA", &R::end, &R::refuseData, false},
    }};
    for (const Section& section : kSections) {
      if (ztb::sameFolded(section.name, name)) return section;
    }
    return std::nullopt;
  }

  [[noreturn]] void failAtEnd() const {
    const std::size_t line = lines_.line() + 1;
    throw MpsError(lines_.file() + ":" + std::to_string(line) +
                       ":1: found the end of the file, expected ENDATA",
                   line);
  }

  void readHeader() {
    const auto section = sectionOf(lines_[0]);
    if (!section) {
      lines_.failExpecting(0,
                           "a section: NAME, OBJSENSE, OBJNAME, ROWS, COLUMNS, RHS, RANGES, "
                           "BOUNDS, SOS, QUADOBJ, QMATRIX, QSECTION, QCMATRIX or ENDATA");
    }
    lines_.expectTypes(section->hasTypes);
    readData_ = section->data;
    (this->*section->header)();
  }

  void readNothing() {}
  void end() { over_ = true; }
  void refuseData() { lines_.failExpecting(0, "a section such as ROWS, in the first column"); }

  void readSenseOfHeader() {
    if (lines_.count() > 1) takeSense(1);
  }
  void readSense() { takeSense(lines_[0].empty() ? 1 : 0); }
  void takeSense(std::size_t field) {
    const std::string_view word = field < lines_.count() ? lines_[field] : std::string_view();
    const auto isAny = [&](std::initializer_list<std::string_view> words) {
      return std::any_of(words.begin(), words.end(),
                         [&](std::string_view known) { return ztb::sameFolded(known, word); });
    };
    data_.maximize = isAny({"MAX", "MAXIMIZE", "MAXIMISE", "MAXIMUM"});
    if (!data_.maximize && !isAny({"MIN", "MINIMIZE", "MINIMISE", "MINIMUM"})) {
      lines_.failExpecting(field, "MAX or MIN");
    }
  }

  void readObjectiveOfHeader() {
    if (lines_.count() > 1) objectiveName_ = lines_[1];
  }
  void readObjective() { objectiveName_ = lines_[lines_[0].empty() ? 1 : 0]; }

  void beginTriangle() { products_.beginTriangle(); }
  void beginMatrix() { products_.beginMatrix(); }
  void beginMatrixOfRow() { products_.beginMatrixOfRow(); }
  void readProduct() { products_.read(); }
  void readSet() { sets_.read(); }
  void readRhs() { sides_.readRhs(); }
  void readRange() { sides_.readRange(); }

  // Room for about as many entries and columns as a file of this size may have: what is not used
  // costs nothing, and growing costs as much as reading.
  void beginColumns() {
    constexpr std::size_t kEntryBytes = 32;
    constexpr std::size_t kColumnBytes = 128;
    data_.terms.reserve(lines_.fileSize() / kEntryBytes);
    data_.columns.reserve(lines_.fileSize() / kColumnBytes);
  }

  void readRow() {
    if (lines_.count() < 2 || lines_[1].empty()) lines_.failExpecting(1, "the name of a row");
    model_.dropComment(2);
    model_.endAt(2);
    RowData row{std::string(lines_[1])};
    switch (lines_[0].size() == 1 ? ztb::foldedChar(lines_[0][0]) : ' ') {
      case 'n':
        break;
      case 'e':
        row.type = RowType::equal;
        break;
      case 'l':
        row.type = RowType::lessOrEqual;
        break;
      case 'g':
        row.type = RowType::greaterOrEqual;
        break;
      default:
        lines_.failExpecting(0, "the type of a row: N, E, L or G");
    }
    const bool isObjective = row.type == RowType::free && !hasObjective_ &&
                             (objectiveName_.empty() || objectiveName_ == row.name);
    if (data_.rows.size() >= kMaxCount) lines_.fail(0, "the model has as many rows as it can");
    const int number = isObjective ? 0 : static_cast<int>(data_.rows.size());
    if (model_.rows.enter(data_.rows, row.name, number) != number) {
      lines_.fail(1, "the row name " + shown(row.name) + " stands twice, expected another one");
    }
    hasObjective_ = hasObjective_ || isObjective;
    if (isObjective) {
      data_.rows[0].name = std::move(row.name);
    } else {
      data_.rows.push_back(std::move(row));
    }
  }

  void readColumn() {
    if (lines_.count() > 2 && lines_[1] == "'MARKER'") return readMarker();
    model_.dropComment(1);
    const std::size_t begin = isUnnamed() ? 0 : 1;
    if (begin == 1 && !lines_[0].empty() &&
        (data_.columns.empty() ||
         lines_[0] != data_.columns[static_cast<std::size_t>(column_)].name)) {
      beginColumn();
    }
    if (data_.columns.empty()) lines_.failExpecting(0, "the name of a column");
    if (lines_.count() < 2) lines_.failExpecting(1, "the name of a row");
    model_.endAt(4 + begin);
    const int number = column_;
    for (std::size_t field = begin; field < lines_.count(); field += 2) {
      const int row = model_.row(field);
      const double value = model_.coefficient(field + 1);
      if (data_.terms.size() >= kMaxCount) {
        lines_.fail(field, "the model has as many coefficients as it can");
      }
      data_.terms.push_back({row, number, value});
    }
  }

  void readMarker() {
    const std::string_view word = lines_[lines_.count() - 1];
    if (word == "'INTORG'") {
      integers_ = true;
    } else if (word == "'INTEND'") {
      integers_ = false;
    } else {
      lines_.failExpecting(lines_.count() - 1, "'INTORG' or 'INTEND'");
    }
  }

  void beginColumn() {
    const std::string_view name = lines_[0];
    if (data_.columns.size() >= kMaxCount) {
      lines_.fail(0, "the model has as many columns as it can");
    }
    const int number = static_cast<int>(data_.columns.size());
    column_ = model_.columns.enter(data_.columns, name, number);
    if (column_ != number) {
      constexpr std::string_view kSubject = "column in two blocks";
      if (model_.notes.count(kSubject)) return;
      model_.notes.add(kSubject, lines_.line(), lines_.columnOf(0),
                       "the column " + shown(name) + " stands in two blocks, which are added");
      return;
    }
    ColumnData column{std::string(name)};
    if (integers_) column.kind = ColumnKind::integer;
    data_.columns.push_back(std::move(column));
  }

  // Whether a line of a free file, which has no empty fields, leaves out the name of its column:
  // then it has pairs alone.
  [[nodiscard]] bool isUnnamed() const {
    return lines_.count() % 2 == 0 && !data_.columns.empty() && model_.isRow(0) &&
           !lines_[0].empty();
  }

  // A type, a vector, a column and a number; the vector may be missing, and the number where the
  // type needs none.
  void readBound() {
    const std::string_view type = lines_[0];
    const auto value = MpsBounds::valueOf(type);
    if (value == MpsBounds::Value::noType) {
      lines_.failExpecting(0, "the type of a bound: UP, LO, FX, FR, MI, PL, BV, LI, UI, SC or SI");
    }
    model_.dropComment(2);
    const bool needed = value == MpsBounds::Value::needed;
    std::size_t column = needed && lines_.count() < 4 ? 1 : 2;
    if (!needed && (lines_.count() < 3 ||
                    (lines_.count() == 3 && !model_.isColumn(2) && model_.isColumn(1)))) {
      column = 1;
    }
    model_.endAt(4);
    const std::string_view name = column == 2 ? lines_[1] : std::string_view();
    if (!vectorOfBounds_.takes(model_, name, 1)) return;
    const int number = model_.column(column);
    if (needed && column + 1 >= lines_.count()) lines_.failExpecting(column + 1, "a number");
    bounds_.apply(lines_, type, number, column + 1);
  }

  void finish() {
    if (!hasObjective_) nameObjective();
    bounds_.settle();
    sides_.settle();
    data_.notes = model_.notes.texts();
  }

  void nameObjective() {
    if (!objectiveName_.empty()) {
      throw ModelError(lines_.file() + ": there is no free row " + shown(objectiveName_) +
                           ", which OBJNAME names",
                       ZTB_ERROR_DAMAGED_FILE);
    }
    std::string& name = data_.rows[0].name;
    name = "objective";
    while (model_.rows.find(data_.rows, name) > 0) name += '_';
  }

  MpsModel model_;
  MpsLines& lines_;
  ModelData& data_;
  MpsBounds bounds_{data_.columns, model_.notes};
  MpsProducts products_{model_};
  MpsSets sets_{model_};
  MpsSides sides_{model_};
  FirstVector vectorOfBounds_{"BOUNDS"};

  Read readData_ = &MpsReader::refuseData;
  bool over_ = false;
  bool hasObjective_ = false;
  std::string objectiveName_;  // as OBJNAME gives it
  int column_ = 0;             // of the present block of COLUMNS
  bool integers_ = false;      // between markers
};

}  // namespace

ModelData readMps(const std::string& file) {
  std::optional<MpsError> free;
  try {
    return MpsReader(file, MpsFormat::free).read();
  } catch (const MpsError& error) {
    free = error;
  }
  try {
    return MpsReader(file, MpsFormat::fixed).read();
  } catch (const MpsError& error) {
    throw error.line() > free->line() ? error : *free;
  }
}

}  // namespace lomu
