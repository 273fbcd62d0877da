#include "providers/model/model.h"

#include <algorithm>
#include <new>
#include <utility>

#include "providers/model/model_error.h"
#include "providers/model/number_text.h"

namespace lomu {

Model::Model(const ModelData& data, std::shared_ptr<Environment> itsEnvironment,
             const DrivenNumbers& driven)
    : instance(data, driven),
      dictionary(data),
      environment(std::move(itsEnvironment)),
      notes(data.notes) {
  for (const std::string& note : notes) environment->log(note);
  notes.insert(notes.end(), dictionary.notes().begin(), dictionary.notes().end());
}

void Model::requireUsableData() const {
  const int carrier = instance.unusableCarrier();
  if (carrier < 0) return;
  throw ModelError(columnName(carrier) + " has to stand at one number, and at a finite one where " +
                   "it drives a coefficient, but stands from " +
                   numberText(instance.lower(carrier)) + " to " +
                   numberText(instance.upper(carrier)));
}

void Model::explain(double mostSeconds) {
  conflict = {};
  conflictTexts.clear();
  requireUsableData();
  SolverLimits limits = environment->limits();
  limits.seconds = std::min(limits.seconds, mostSeconds);
  limits.progress = nullptr;  // the searches of a filter are of other problems
  environment->clearTerminate();
  Conflict found = findConflict(instance.solverProblem(), environment->catalogue(), limits);
  // Rows of the problem begin behind the objective.
  for (ConflictMember& member : found.members) {
    if (member.part <= ConflictPart::rowUpper) ++member.number;
  }
  std::vector<std::string> texts;
  for (const ConflictMember& member : found.members) texts.push_back(memberText(member));
  conflict = std::move(found);
  conflictTexts = std::move(texts);
}

void Model::findRanges() {
  ranging = {};
  requireUsableData();
  const Catalogue& catalogue = environment->catalogue();
  const CatalogueRow* const row = catalogue.row(catalogue.number(solver));
  if (row == nullptr) throw ModelError("the model was not solved yet");
  environment->clearTerminate();
  ranging = lomu::findRanges(instance, *row, environment->limits());
}

Basis Model::basis() const {
  constexpr std::uint64_t kFnvBegin = 14695981039346656037U;
  constexpr std::uint64_t kFnvFactor = 1099511628211U;
  Basis basis;
  basis.names = kFnvBegin;
  const auto addName = [&](const std::string& name) {
    for (const char letter : name) {
      basis.names = (basis.names ^ static_cast<unsigned char>(letter)) * kFnvFactor;
    }
    basis.names *= kFnvFactor;
  };
  for (int j = 0; j < instance.solverColumnCount(); ++j) {
    basis.columns.push_back(instance.column(j).status);
    addName(columnName(j));
  }
  for (int i = 1; i < instance.rowCount(); ++i) {
    basis.rows.push_back(instance.row(i).status);
    addName(rowName(i));
  }
  return basis;
}

void Model::saveBasis(const std::string& file) const {
  constexpr int kOptimal = 1;
  const Basis now = basis();
  if (instance.modelStatus() != kOptimal || instance.type() != ModelType::linear ||
      !now.isWhole()) {
    throw ModelError(
        "the last solve left no basis, as clp and glpk leave one with the optimum of a linear "
        "model");
  }
  writeBasis(now, file);
}

void Model::loadBasis(const std::string& file) {
  Basis read = readBasis(file);
  const Basis own = basis();
  const bool fits = read.names == own.names && read.columns.size() == own.columns.size() &&
                    read.rows.size() == own.rows.size() && read.isWhole();
  instance.beginAtBasis(fits ? std::move(read) : Basis{});
}

std::string Model::memberText(const ConflictMember& member) const {
  const bool ofRow = member.part <= ConflictPart::rowUpper;
  const bool isLower =
      member.part == ConflictPart::rowLower || member.part == ConflictPart::columnLower;
  const bool isUpper =
      member.part == ConflictPart::rowUpper || member.part == ConflictPart::columnUpper;
  const double value =
      !ofRow ? (isUpper ? instance.upper(member.number) : instance.lower(member.number))
             : instance.rowSide(member.number, isUpper);
  std::string text = ofRow ? rowName(member.number) : columnName(member.number);
  text += (isLower ? " >= " : isUpper ? " <= " : " = ") + numberText(value);
  const std::vector<DrivenKind> kinds =
      ofRow ? std::vector{DrivenKind::rhs} : std::vector{DrivenKind::lower, DrivenKind::upper};
  for (const DrivenKind kind : kinds) {
    if ((isLower && kind == DrivenKind::upper) || (isUpper && kind == DrivenKind::lower)) continue;
    const int carrier = instance.carrierOf(kind, member.number);
    if (carrier >= 0) text += ", driven by " + columnName(carrier);
  }
  return text;
}

namespace {

std::string nameOf(const Dictionary& dictionary, const Dictionary::Place& place) {
  const auto nameAt = [](const auto& list, int number) -> const auto& {
    return list[static_cast<std::size_t>(number) - 1];
  };
  std::string name = nameAt(dictionary.symbols(), place.symbol).name;
  for (int k = 0; k < place.dimension; ++k) {
    name += (k == 0 ? "(" : ", ") + nameAt(dictionary.labels(), place.keys[k]);
  }
  return place.dimension > 0 ? name + ")" : name;
}

}  // namespace

std::string Model::columnName(int column) const {
  return nameOf(dictionary, dictionary.columnPlace(column));
}

std::string Model::rowName(int row) const {
  return nameOf(dictionary, dictionary.rowPlace(row));
}

void Model::noteFailure(const std::exception& error) noexcept {
  const char* text = failureText(error);
  try {
    message = text;
  } catch (const std::bad_alloc&) {
    message.clear();
  }
  environment->log(text);
}

const char* failureText(const std::exception& error) noexcept {
  return dynamic_cast<const std::bad_alloc*>(&error) == nullptr ? error.what() : "out of memory";
}

}  // namespace lomu
