// Cuts of our own as Cbc asks for them.
#ifndef ZTB_PROVIDERS_MODEL_SOLVERS_CUT_GENERATOR_H_
#define ZTB_PROVIDERS_MODEL_SOLVERS_CUT_GENERATOR_H_

#include <CglCutGenerator.hpp>
#include <cstddef>
#include <memory>
#include <vector>

#include "providers/model/solvers/cut_problem.h"
#include "providers/model/solvers/root_cuts.h"

namespace lomu {

class CutGenerator : public CglCutGenerator {
 public:
  using Find = RootCuts::Find;

  CutGenerator(std::shared_ptr<const CutProblem> problem, Find find)
      : problem_(std::move(problem)), find_(find) {}
  // Begins with what `atRoot` finds, whose way `way` is the same, and finds nothing where that is
  // of no use.
  CutGenerator(std::shared_ptr<const CutProblem> problem, Find find,
               std::shared_ptr<RootCuts> atRoot, std::size_t way)
      : problem_(std::move(problem)), find_(find), atRoot_(std::move(atRoot)), way_(way) {}

  void generateCuts(const OsiSolverInterface& solver, OsiCuts& cuts,
                    const CglTreeInfo info) override;
  [[nodiscard]] CglCutGenerator* clone() const override { return new CutGenerator(*this); }

 private:
  [[nodiscard]] bool isPartOf(const OsiSolverInterface& solver) const;
  [[nodiscard]] std::vector<Cut> cutsAt(const OsiSolverInterface& solver, bool inTree) const;

  std::shared_ptr<const CutProblem> problem_;
  Find find_;
  std::shared_ptr<RootCuts> atRoot_;
  std::size_t way_ = 0;
};

}  // namespace lomu

#endif  // ZTB_PROVIDERS_MODEL_SOLVERS_CUT_GENERATOR_H_
