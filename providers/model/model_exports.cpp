// The C functions of ztb/model.h. No exception passes them.

#include <ztb/model.h>

#include <exception>
#include <memory>
#include <new>
#include <span>
#include <string>
#include <vector>

#include "providers/model/fixed_text.h"
#include "providers/model/fresh_solve.h"
#include "providers/model/model.h"
#include "providers/model/model_builder.h"
#include "providers/model/model_error.h"
#include "providers/model/model_file.h"
#include "providers/model/model_shape.h"
#include "providers/model/model_writer.h"
#include "providers/model/status_texts.h"

#define MODEL_EXPORT extern "C" [[gnu::visibility("default")]]

using lomu::copyText;
using lomu::Environment;
using lomu::Model;
using lomu::ModelBuilder;
using lomu::ModelError;

struct ztbModelRec {
  ModelBuilder builder;
  std::shared_ptr<Environment> environment = std::make_shared<Environment>();
  std::unique_ptr<Model> model;  // once it is built
  std::string message;
  std::unique_ptr<lomu::ModelShape> shape;  // of the builder's model, while that stays as it is
};

namespace {

// The kind of the latest failure of the calling thread, a ZTB_ERROR_ code.
thread_local int latestErrorKind = ZTB_ERROR_NONE;

// Runs `body` and hands the text of what it throws to `refused`; true when it threw nothing. The
// kind of the failure is that of the thread then.
template <typename Body, typename Refused>
bool attempt(const Body& body, const Refused& refused) noexcept {
  try {
    body();
    return true;
  } catch (const ModelError& error) {
    latestErrorKind = error.kind();
    refused(error.what());
  } catch (const std::bad_alloc&) {
    latestErrorKind = ZTB_ERROR_OUT_OF_MEMORY;
    refused("out of memory");
  } catch (const std::exception& error) {
    latestErrorKind = ZTB_ERROR_INTERNAL;
    refused(error.what());
  }
  return false;
}

// Where the last refusal or failed solve stands.
std::string& messageOf(ztbModelRec& model) {
  return model.model == nullptr ? model.message : model.model->message;
}

const std::vector<std::string>& notesOf(const ztbModelRec& model) {
  return model.model == nullptr ? model.builder.data().notes : model.model->notes;
}

// The same for a model that exists, the text going into its message.
template <typename Body>
bool change(ztbModel* model, const Body& body) noexcept {
  if (model == nullptr) return false;
  return attempt(body, [&](const char* text) {
    std::string& message = messageOf(*model);
    try {
      message = text;
    } catch (const std::bad_alloc&) {
      message.clear();
    }
  });
}

void requireOpen(const ztbModel& model, const std::string& what = "built further") {
  if (model.model != nullptr) throw ModelError("the model is in use and cannot be " + what);
}

// A number that `add` gives, -1 when it throws.
template <typename Add>
int added(ztbModel* model, const Add& add) noexcept {
  int number = -1;
  change(model, [&] {
    requireOpen(*model);
    model->shape.reset();
    number = add(model->builder);
  });
  return number;
}

template <typename Body>
int built(ztbModel* model, const Body& body) noexcept {
  return change(model, [&] {
    requireOpen(*model);
    model->shape.reset();
    body(model->builder);
  });
}

const lomu::ModelShape& shapeOf(ztbModel& model) {
  requireOpen(model, "described any more");
  if (model.shape == nullptr) {
    model.shape = std::make_unique<lomu::ModelShape>(model.builder.data());
  }
  return *model.shape;
}

// A model of a file, of none for a null `file`.
int make(ztbModel** model, const char* file, const char* dataFile, std::span<ztbModelFill> fills,
         char* message, int messageSize) noexcept {
  copyText("", message, messageSize);
  return attempt(
      [&] {
        if (model == nullptr) throw ModelError("there is no place for the model");
        *model = nullptr;
        auto made = std::make_unique<ztbModelRec>();
        if (file != nullptr) {
          made->builder =
              ModelBuilder(lomu::readModelFile(file, dataFile == nullptr ? "" : dataFile, fills));
        }
        *model = made.release();
      },
      [&](const char* text) { copyText(text, message, messageSize); });
}

int takeRange(const std::vector<double>& lowers, const std::vector<double>& uppers, int number,
              double* lower, double* upper) {
  if (number < 0 || static_cast<std::size_t>(number) >= lowers.size()) return 0;
  *lower = lowers[static_cast<std::size_t>(number)];
  *upper = uppers[static_cast<std::size_t>(number)];
  return 1;
}

const char* takeElement(const lomu::Dictionary& dictionary, const lomu::Dictionary::Place& place,
                        int* dimension, const char** labels) {
  *dimension = place.dimension;
  for (int k = 0; k < place.dimension; ++k) {
    labels[k] = dictionary.labels()[static_cast<std::size_t>(place.keys[k]) - 1].c_str();
  }
  return dictionary.symbols()[static_cast<std::size_t>(place.symbol) - 1].name.c_str();
}

}  // namespace

MODEL_EXPORT int ztbModelOpen(ztbModel** model, const char* file, const char* dataFile,
                              char* message, int messageSize) {
  return ztbModelOpenFilled(model, file, dataFile, nullptr, 0, message, messageSize);
}

MODEL_EXPORT int ztbModelOpenFilled(ztbModel** model, const char* file, const char* dataFile,
                                    ztbModelFill* fills, int fillCount, char* message,
                                    int messageSize) {
  if (model != nullptr) *model = nullptr;
  if (file == nullptr || *file == '\0') {
    latestErrorKind = ZTB_ERROR_REFUSED;
    copyText("no model file was named", message, messageSize);
    return 0;
  }
  const auto count = static_cast<std::size_t>(fills == nullptr ? 0 : fillCount);
  return make(model, file, dataFile, {fills, count}, message, messageSize);
}

MODEL_EXPORT int ztbModelCreate(ztbModel** model, char* message, int messageSize) {
  return make(model, nullptr, nullptr, {}, message, messageSize);
}

MODEL_EXPORT int ztbModelErrorKind() {
  return latestErrorKind;
}

MODEL_EXPORT void ztbModelFree(ztbModel** model) {
  if (model == nullptr) return;
  delete *model;
  *model = nullptr;
}

MODEL_EXPORT int ztbModelSetObjective(ztbModel* model, const char* name, int maximize,
                                      double constant) {
  return built(model, [&](ModelBuilder& b) { b.setObjective(name, maximize != 0, constant); });
}

MODEL_EXPORT int ztbModelAddColumn(ztbModel* model, const char* name, int kind, double lower,
                                   double upper) {
  return added(model, [&](ModelBuilder& b) { return b.addColumn(name, kind, lower, upper); });
}

MODEL_EXPORT int ztbModelAddRow(ztbModel* model, const char* name, int type, double rhs,
                                double range) {
  return added(model, [&](ModelBuilder& b) { return b.addRow(name, type, rhs, range); });
}

MODEL_EXPORT int ztbModelAddSet(ztbModel* model, const char* name, int kind, int count,
                                const int* columns, const double* weights) {
  return built(model, [&](ModelBuilder& b) {
    if (count < 0 || (count > 0 && (columns == nullptr || weights == nullptr))) {
      throw ModelError("a set has columns and weights, as many as are told");
    }
    const auto size = static_cast<std::size_t>(count);
    b.addSet(name, kind, {columns, size}, {weights, size});
  });
}

MODEL_EXPORT int ztbModelAddTerm(ztbModel* model, int row, int column, double value) {
  return built(model, [&](ModelBuilder& b) { b.addTerm(row, column, value); });
}

MODEL_EXPORT int ztbModelAddProduct(ztbModel* model, int row, int column1, int column2,
                                    double value) {
  return built(model, [&](ModelBuilder& b) { b.addProduct(row, column1, column2, value); });
}

MODEL_EXPORT int ztbModelDrive(ztbModel* model, const char* statement) {
  return change(model, [&] {
    if (model->model != nullptr) {
      throw ModelError(
          "the model is in use and can be driven by no further symbols; say what they drive "
          "before");
    }
    model->builder.drive(statement);
    model->shape.reset();
  });
}

MODEL_EXPORT void* ztbModelPbi(ztbModel* model) {
  change(model, [&] {
    if (model->model != nullptr) return;
    model->model =
        std::make_unique<Model>(model->builder.data(), model->environment, model->builder.driven());
    model->builder = ModelBuilder();
    model->shape.reset();
    model->model->message.swap(model->message);
  });
  return model == nullptr ? nullptr : model->model.get();
}

MODEL_EXPORT int ztbModelSetOption(ztbModel* model, const char* name, const char* value) {
  return change(model, [&] {
    if (name == nullptr || value == nullptr) throw ModelError("an option needs a name and a value");
    model->environment->options().set(name, value);
  });
}

MODEL_EXPORT int ztbModelGetOption(ztbModel* model, const char* name, char* value, int size) {
  return change(model, [&] {
    if (name == nullptr) throw ModelError("an option needs a name");
    copyText(model->environment->options().get(name), value, size);
  });
}

MODEL_EXPORT int ztbModelKind(ztbModel* model) {
  const bool inUse = model != nullptr && model->model != nullptr;
  return inUse ? static_cast<int>(model->model->instance.type()) : 0;
}

MODEL_EXPORT int ztbModelUpdatedKind(ztbModel* model) {
  const bool inUse = model != nullptr && model->model != nullptr;
  return inUse ? static_cast<int>(model->model->instance.alternativeType()) : 0;
}

MODEL_EXPORT int ztbModelSolve(ztbModel* model, const char* solver) {
  return change(model, [&] {
    if (solver == nullptr) throw ModelError("no solver was named");
    if (ztbModelPbi(model) == nullptr) throw ModelError(model->message);
    lomu::solveFresh(*model->model, solver);
  });
}

MODEL_EXPORT int ztbModelStatus(ztbModel* model) {
  const bool inUse = model != nullptr && model->model != nullptr;
  return inUse ? model->model->instance.modelStatus() : int{ztbModelNoSolution};
}

MODEL_EXPORT int ztbModelSolveStatus(ztbModel* model) {
  const bool inUse = model != nullptr && model->model != nullptr;
  return inUse ? model->model->instance.solveStatus() : int{ztbSolveFailed};
}

MODEL_EXPORT double ztbModelObjective(ztbModel* model) {
  const bool inUse = model != nullptr && model->model != nullptr;
  return inUse ? model->model->instance.row(0).level : 0;
}

MODEL_EXPORT double ztbModelIterations(ztbModel* model) {
  const bool inUse = model != nullptr && model->model != nullptr;
  return inUse ? model->model->instance.iterations() : 0;
}

MODEL_EXPORT double ztbModelBound(ztbModel* model) {
  const bool inUse = model != nullptr && model->model != nullptr;
  return inUse ? model->model->instance.bound() : 0;
}

MODEL_EXPORT int ztbModelGetField(ztbModel* model, const char* symbol, int field, double* values,
                                  int count) {
  int there = -1;
  change(model, [&] {
    if (model->model == nullptr) throw ModelError("the model is tied to no database yet");
    if (symbol == nullptr) throw ModelError("a field needs the name of its variable or equation");
    const auto room = static_cast<std::size_t>(values == nullptr || count < 0 ? 0 : count);
    there = model->model->copyField(symbol, field, {values, room});
  });
  return there;
}

MODEL_EXPORT double ztbModelSeconds(ztbModel* model) {
  const bool inUse = model != nullptr && model->model != nullptr;
  return inUse ? model->model->seconds : 0;
}

MODEL_EXPORT double ztbModelProcessorSeconds(ztbModel* model) {
  const bool inUse = model != nullptr && model->model != nullptr;
  return inUse ? model->model->processorSeconds : 0;
}

MODEL_EXPORT int ztbModelStartTaken(ztbModel* model) {
  const bool inUse = model != nullptr && model->model != nullptr;
  return inUse && model->model->startTaken ? 1 : 0;
}

MODEL_EXPORT int ztbModelColdSolves(ztbModel* model) {
  const bool inUse = model != nullptr && model->model != nullptr;
  return inUse ? model->model->coldSolves : 0;
}

MODEL_EXPORT int ztbModelWriteBasis(ztbModel* model, const char* file) {
  return change(model, [&] {
    if (file == nullptr || *file == '\0') throw ModelError("no file to write was named");
    if (model->model == nullptr) throw ModelError("the model was not solved yet");
    model->model->saveBasis(file);
  });
}

MODEL_EXPORT int ztbModelReadBasis(ztbModel* model, const char* file) {
  return change(model, [&] {
    if (file == nullptr || *file == '\0') throw ModelError("no file to read was named");
    if (model->model == nullptr) throw ModelError("the model is not tied to a database yet");
    model->model->loadBasis(file);
  });
}

MODEL_EXPORT int ztbModelBasisTaken(ztbModel* model) {
  const bool inUse = model != nullptr && model->model != nullptr;
  return inUse && model->model->basisTaken ? 1 : 0;
}

MODEL_EXPORT int ztbModelResetLevels(ztbModel* model) {
  return change(model, [&] {
    if (model->model != nullptr) model->model->instance.resetLevels();
  });
}

MODEL_EXPORT const char* ztbModelStatusText(int status) {
  return lomu::modelStatusText(status);
}

MODEL_EXPORT const char* ztbModelSolveStatusText(int status) {
  return lomu::solveStatusText(status);
}

MODEL_EXPORT void ztbModelTerminate(ztbModel* model) {
  if (model != nullptr) model->environment->terminate();
}

MODEL_EXPORT int ztbModelProgress(ztbModel* model, double* objective, double* bound) {
  if (model == nullptr) return 0;
  const Environment::Progress progress = model->environment->progress();
  if (objective != nullptr) *objective = progress.objective;
  if (bound != nullptr) *bound = progress.bound;
  return progress.isKnown() ? 1 : 0;
}

MODEL_EXPORT void ztbModelSetWatch(ztbModel* model, int (*watch)(void*), void* context) {
  if (model != nullptr) model->environment->setWatch(watch, context);
}

MODEL_EXPORT int ztbModelRanging(ztbModel* model) {
  return change(model, [&] {
    if (model->model == nullptr) throw ModelError("the model was not solved yet");
    model->model->findRanges();
  });
}

MODEL_EXPORT int ztbModelCostRange(ztbModel* model, int column, double* lower, double* upper) {
  const bool inUse = model != nullptr && model->model != nullptr;
  if (!inUse) return 0;
  const lomu::Ranging& ranging = model->model->ranging;
  return takeRange(ranging.costLower, ranging.costUpper, column, lower, upper);
}

MODEL_EXPORT int ztbModelRhsRange(ztbModel* model, int row, double* lower, double* upper) {
  const bool inUse = model != nullptr && model->model != nullptr;
  if (!inUse) return 0;
  const lomu::Ranging& ranging = model->model->ranging;
  return takeRange(ranging.rhsLower, ranging.rhsUpper, row, lower, upper);
}

MODEL_EXPORT const char* ztbModelColumnElement(ztbModel* model, int column, int* dimension,
                                               const char** labels) {
  if (column < 0 || column >= ztbModelColumnCount(model)) return nullptr;
  const lomu::Dictionary& dictionary = model->model->dictionary;
  return takeElement(dictionary, dictionary.columnPlace(column), dimension, labels);
}

MODEL_EXPORT const char* ztbModelRowElement(ztbModel* model, int row, int* dimension,
                                            const char** labels) {
  if (row < 0 || row >= ztbModelRowCount(model)) return nullptr;
  const lomu::Dictionary& dictionary = model->model->dictionary;
  return takeElement(dictionary, dictionary.rowPlace(row), dimension, labels);
}

MODEL_EXPORT int ztbModelColumnCount(ztbModel* model) {
  const bool inUse = model != nullptr && model->model != nullptr;
  return inUse ? model->model->instance.columnCount() : 0;
}

MODEL_EXPORT int ztbModelRowCount(ztbModel* model) {
  const bool inUse = model != nullptr && model->model != nullptr;
  return inUse ? model->model->instance.rowCount() : 0;
}

MODEL_EXPORT int ztbModelExplain(ztbModel* model, double seconds) {
  return change(model, [&] {
    if (model->model == nullptr) throw ModelError("the model was not solved yet");
    model->model->explain(seconds);
  });
}

MODEL_EXPORT int ztbModelConflictCount(ztbModel* model) {
  const bool inUse = model != nullptr && model->model != nullptr;
  return inUse ? static_cast<int>(model->model->conflictTexts.size()) : 0;
}

MODEL_EXPORT const char* ztbModelConflictText(ztbModel* model, int member) {
  if (member < 0 || member >= ztbModelConflictCount(model)) return "";
  return model->model->conflictTexts[static_cast<std::size_t>(member)].c_str();
}

MODEL_EXPORT int ztbModelConflictMember(ztbModel* model, int member, int* part, int* number) {
  if (member < 0 || member >= ztbModelConflictCount(model)) return 0;
  const lomu::ConflictMember& found =
      model->model->conflict.members[static_cast<std::size_t>(member)];
  *part = static_cast<int>(found.part);
  *number = found.number;
  return 1;
}

MODEL_EXPORT int ztbModelConflictIsIrreducible(ztbModel* model) {
  return ztbModelConflictCount(model) > 0 && model->model->conflict.irreducible ? 1 : 0;
}

MODEL_EXPORT int ztbModelConflictIsByIntegers(ztbModel* model) {
  return ztbModelConflictCount(model) > 0 && model->model->conflict.byIntegers ? 1 : 0;
}

MODEL_EXPORT const char* ztbModelConflictCondition(ztbModel* model) {
  return ztbModelConflictCount(model) > 0 ? model->model->conflict.condition.c_str() : "";
}

MODEL_EXPORT const char* ztbModelMessage(ztbModel* model) {
  return model == nullptr ? "" : messageOf(*model).c_str();
}

MODEL_EXPORT int ztbModelNoteCount(ztbModel* model) {
  return model == nullptr ? 0 : static_cast<int>(notesOf(*model).size());
}

MODEL_EXPORT const char* ztbModelNote(ztbModel* model, int number) {
  if (number < 0 || number >= ztbModelNoteCount(model)) return "";
  return notesOf(*model)[static_cast<std::size_t>(number)].c_str();
}

MODEL_EXPORT int ztbModelGetSize(ztbModel* model, ztbModelSize* size) {
  return change(model, [&] {
    if (size == nullptr) throw ModelError("there is no place for the size");
    *size = shapeOf(*model).size;
  });
}

MODEL_EXPORT int ztbModelGetFamily(ztbModel* model, int number, ztbModelFamily* family) {
  return change(model, [&] {
    if (family == nullptr) throw ModelError("there is no place for the family");
    const auto& families = shapeOf(*model).families;
    if (number < 0 || static_cast<std::size_t>(number) >= families.size()) {
      throw ModelError("there is no family " + std::to_string(number) + ", the model has " +
                       std::to_string(families.size()));
    }
    *family = families[static_cast<std::size_t>(number)];
  });
}

MODEL_EXPORT int ztbModelWrite(ztbModel* model, const char* file) {
  return change(model, [&] {
    if (file == nullptr || *file == '\0') throw ModelError("no file to write was named");
    requireOpen(*model, "written any more");
    if (model->builder.driven().carrierCount > 0) {
      throw ModelError("the model is driven by symbols and cannot be written any more");
    }
    std::string note = lomu::writeModelFile(model->builder.data(), file);
    if (!note.empty()) model->builder.note(std::move(note));
  });
}

MODEL_EXPORT int ztbCatalogueSolver(const char* file, const char* solver, char* message,
                                    int messageSize) {
  copyText("", message, messageSize);
  return attempt(
      [&] {
        if (file == nullptr) throw ModelError("no catalogue file was named");
        if (solver == nullptr) throw ModelError("no solver was named");
        const std::string path = file;
        const lomu::Catalogue catalogue =
            lomu::Catalogue::read(path, path.substr(0, path.rfind('/') + 1));
        const std::string reason = catalogue.whyNot(solver);
        if (!reason.empty()) throw ModelError(reason);
      },
      [&](const char* text) { copyText(text, message, messageSize); });
}

MODEL_EXPORT int ztbCatalogueCheck(const char* file, char* message, int messageSize) {
  copyText("", message, messageSize);
  return attempt(
      [&] {
        if (file == nullptr) throw ModelError("no catalogue file was named");
        lomu::Catalogue::read(file, "");
      },
      [&](const char* text) { copyText(text, message, messageSize); });
}
