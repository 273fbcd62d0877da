#include "providers/model/fresh_solve.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "providers/model/live_solver.h"
#include "providers/model/model_error.h"

namespace lomu {

namespace {

// Both statuses of a model stand on this until its solver writes its own.
constexpr int kStatusBeforeSolve = 13;

// The form that a database presents a model in: its linear kinds with their products evaluated at
// the present levels, and the right-hand sides shifted by what that leaves out.
class PresentedForm {
 public:
  explicit PresentedForm(Instance& instance) : instance_(instance), view_(instance.storeView()) {
    std::vector<double> offset(static_cast<std::size_t>(instance.rowCount()));
    instance.linearize(offset.data(), true);
    const ModelType type = instance.type();
    if (type != ModelType::linear && type != ModelType::mixedInteger) return;
    for (int row = 0; row < instance.rowCount(); ++row) {
      instance.setAlternativeRhs(row, instance.rhs(row) - offset[static_cast<std::size_t>(row)]);
    }
    instance.useAlternativeRhs(true);
    instance.forceLinear(true);
  }
  PresentedForm(const PresentedForm&) = delete;
  PresentedForm& operator=(const PresentedForm&) = delete;
  ~PresentedForm() { instance_.restoreView(view_); }

 private:
  Instance& instance_;
  void* view_;
};

const Catalogue& catalogueOf(Model& model) {
  try {
    return model.environment->catalogueAsOfNow();
  } catch (const ModelError& error) {
    throw ModelError(std::string("Could not read configuration file: ") + error.what(),
                     ZTB_ERROR_SOLVER);
  }
}

// The words of the operation in front are those that a database has for it.
template <class Step>
void step(Model& model, const CatalogueRow& row, const char* operation, const Step& step) {
  try {
    step();
  } catch (const std::exception& error) {
    model.noteFailure(error);
    throw ModelError("solver " + row.name + " did not solve the model: " +
                         (row.inPlace ? operation : "") + failureText(error),
                     ZTB_ERROR_SOLVER);
  }
}

}  // namespace

void solveFresh(Model& model, const char* solver) {
  const Catalogue& catalogue = catalogueOf(model);
  const CatalogueRow* const row = catalogue.row(catalogue.number(solver));
  if (row == nullptr) {
    const bool isForBoth = model.instance.type() == ModelType::mixedIntegerQuadratic &&
                           std::string_view(solver) == "bonmin";
    throw ModelError(std::string(isForBoth ? "The model has integer columns and products of "
                                             "columns that can move. "
                                           : "") +
                         "Invalid solver name: " + solver + ": " + catalogue.whyNot(solver),
                     ZTB_ERROR_NOT_FOUND);
  }
  const PresentedForm form(model.instance);
  model.environment->clearTerminate();
  if (row->inPlace) {
    model.instance.setModelStatus(kStatusBeforeSolve);
    model.instance.setSolveStatus(kStatusBeforeSolve);
  }
  std::optional<LiveSolver> live;
  step(model, *row, "", [&] { live.emplace(*row); });
  step(model, *row, "readyapi failed: ", [&] { live->load(model); });
  step(model, *row, "callsolver failed: ", [&] { live->solve(model.environment->limits()); });
  model.message.clear();
}

}  // namespace lomu
