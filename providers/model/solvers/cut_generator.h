// Cuts of our own as Cbc asks for them.
#ifndef ZTB_PROVIDERS_MODEL_SOLVERS_CUT_GENERATOR_H_
#define ZTB_PROVIDERS_MODEL_SOLVERS_CUT_GENERATOR_H_

#include <CglCutGenerator.hpp>
#include <memory>
#include <vector>

#include "providers/model/solvers/cut_problem.h"

namespace lomu {

class CutGenerator : public CglCutGenerator {
 public:
  // Adds cuts that hold at every point of the problem and that `point` violates.
  using Find = void (*)(const CutProblem& problem, const double* point, std::vector<Cut>& cuts);

  CutGenerator(std::shared_ptr<const CutProblem> problem, Find find)
      : problem_(std::move(problem)), find_(find) {}

  void generateCuts(const OsiSolverInterface& solver, OsiCuts& cuts,
                    const CglTreeInfo info) override;
  [[nodiscard]] CglCutGenerator* clone() const override { return new CutGenerator(*this); }

 private:
  [[nodiscard]] bool isPartOf(const OsiSolverInterface& solver) const;

  std::shared_ptr<const CutProblem> problem_;
  Find find_;
};

}  // namespace lomu

#endif  // ZTB_PROVIDERS_MODEL_SOLVERS_CUT_GENERATOR_H_
