#include "providers/model/solvers/bonmin_search.h"

#include <signal.h>

#include <BonBonminSetup.hpp>
#include <BonCbc.hpp>
#include <BonTNLPSolver.hpp>
#include <CbcEventHandler.hpp>
#include <CbcModel.hpp>
#include <CoinError.hpp>
#include <CoinMessageHandler.hpp>
#include <IpException.hpp>
#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <memory>
#include <mutex>

#include "providers/model/solvers/bonmin_problem.h"
#include "providers/model/solvers/ipopt_turn.h"

// Ends Bonmin's runs of Ipopt and its search; its handler of SIGINT sets it. No header has it.
extern bool BonminAbortAll;

namespace lomu {

namespace {

// Bonmin sets a handler of SIGINT when it begins, and leaves it there: this one puts that of the
// process back, as soon as Bonmin evaluates anything and once more at the end.
class SignalKeeper {
 public:
  SignalKeeper() { sigaction(SIGINT, nullptr, &kept_); }
  ~SignalKeeper() { putBack(); }
  SignalKeeper(const SignalKeeper&) = delete;
  SignalKeeper& operator=(const SignalKeeper&) = delete;

  void putBack() {
    if (isBack_) return;
    sigaction(SIGINT, &kept_, nullptr);
    isBack_ = true;
  }
  // Bonmin is about to begin.
  void expect() { isBack_ = false; }

 private:
  struct sigaction kept_ {};
  bool isBack_ = true;
};

// What the handler of events of a search, which Cbc copies, and the evaluations share.
struct Search {
  Watch& watch;
  bool boundHolds;
  SignalKeeper signals = {};
  double bound = -HUGE_VAL;

  void evaluated() {
    signals.putBack();
    if (watch.mustStop()) BonminAbortAll = true;
  }
};

class SearchHandler : public CbcEventHandler {
 public:
  explicit SearchHandler(Search* search) : search_(search) {}
  CbcAction event(CbcEvent) override {
    const CbcModel* model = getModel();
    // What is left of a problem that was broken off bounds nothing.
    if (search_->watch.mustStop()) return stop;
    if (model == nullptr) return noAction;
    constexpr double kNoBound = 1e30;
    const bool hasPoint = model->bestSolution() != nullptr;
    const double objective = hasPoint ? model->getObjValue() : HUGE_VAL;
    const double bound = model->getBestPossibleObjValue();
    // Where the search has no bound it gives the best point's objective for one.
    if (search_->boundHolds && bound < objective && std::abs(bound) < kNoBound) {
      search_->bound = std::max(search_->bound, bound);
    }
    search_->watch.tell(objective, search_->bound);
    return noAction;
  }
  [[nodiscard]] CbcEventHandler* clone() const override { return new SearchHandler(*this); }

 private:
  Search* search_;
};

// Bonmin prints some of its messages at every level of its log.
class SilentHandler : public CoinMessageHandler {
 public:
  int print() override { return 0; }
  [[nodiscard]] CoinMessageHandler* clone() const override { return new SilentHandler(*this); }
};

std::string optionsOf(const Watch& watch, int iterations) {
  // A better solution counts however little it is better by. A fixed column that a run of Ipopt
  // leaves a little beside its integer is none to branch on.
  constexpr const char* kOptions =
      "bonmin.algorithm B-BB\n"
      "bonmin.allowable_gap 0\n"
      "bonmin.allowable_fraction_gap %.17g\n"
      "bonmin.cutoff_decr 1e-9\n"
      "bonmin.heuristic_dive_MIP_fractional no\n"
      "bonmin.heuristic_dive_MIP_vectorLength no\n"
      "bonmin.integer_tolerance 1e-5\n"
      "bonmin.iteration_limit %d\n"
      "bonmin.num_retry_unsolved_random_point 3\n"
      "bonmin.bb_log_level 0\n"
      "bonmin.fp_log_level 0\n"
      "bonmin.lp_log_level 0\n"
      "bonmin.milp_log_level 0\n"
      "bonmin.nlp_log_at_root 0\n"
      "bonmin.nlp_log_level 0\n"
      "bonmin.oa_log_level 0\n"
      "bound_relax_factor 1e-9\n"
      "diverging_iterates_tol 1e12\n"
      "linear_solver mumps\n"
      "print_level 0\n"
      "sb yes\n"
      "tol 1e-9\n";
  std::array<char, 1024> text{};
  std::snprintf(text.data(), text.size(), kOptions, watch.relativeGap(), iterations);
  return text.data();
}

void takeOutcome(const Bonmin::Bab& tree, int mostIterations, const Watch& watch,
                 SolverResult& result) {
  using Tree = Bonmin::Bab;
  if (watch.stopped()) {
    result.outcome = watch.reason();
  } else if (BonminAbortAll) {
    // By a SIGINT that came before the process had its handler back.
    result.outcome = Outcome::terminated;
  } else if (tree.mipStatus() == Tree::FeasibleOptimal) {
    result.outcome = Outcome::optimal;
  } else if (tree.mipStatus() == Tree::ProvenInfeasible) {
    result.outcome = Outcome::infeasible;
  } else if (const_cast<Tree&>(tree).iterationCount() >= mostIterations) {
    result.outcome = Outcome::iterationLimit;
  } else {
    result.outcome = Outcome::failed;
    result.reason = "bonmin gave up with status " + std::to_string(tree.mipStatus());
  }
}

// What ended it where Bonmin throws.
void fail(const std::string& reason, const Watch& watch, SolverResult& result) {
  result.outcome = watch.stopped() ? watch.reason() : Outcome::failed;
  result.reason = "bonmin: " + reason;
}

void search(const SolverProblem& problem, Search& search, SolverResult& result) {
  const Ipopt::SmartPtr<IpoptProblem> asked = new IpoptProblem(problem, search.watch);
  const Ipopt::SmartPtr<Bonmin::TMINLP> handedOver =
      new BonminProblem(problem, asked, [&] { search.evaluated(); });
  const int iterations = search.watch.iterationsLeft(result.iterations);
  const SilentHandler silent;
  Bonmin::BonminSetup setup(&silent);
  setup.initializeOptionsAndJournalist();
  setup.readOptionsString(optionsOf(search.watch, iterations));
  setup.initialize(handedOver);
  Bonmin::Bab tree;
  const SearchHandler handler(&search);
  tree.model().passInEventHandler(&handler);
  search.signals.expect();
  tree(setup);

  result.iterations += tree.iterationCount();
  takeOutcome(tree, iterations, search.watch, result);
  const bool isBest = result.outcome == Outcome::optimal && search.boundHolds;
  result.bound = isBest ? tree.bestBound() : search.bound;
  if (tree.bestSolution() == nullptr) return;
  result.hasPoint = true;
  asked->takePoint(tree.bestSolution());
  result.level = asked->level();
}

}  // namespace

void searchByBonmin(const SolverProblem& problem, bool boundHolds, Watch& watch,
                    SolverResult& result) {
  result.hasPoint = false;
  std::unique_lock<std::mutex> turn(ipoptTurn(), std::defer_lock);
  if (!watch.waitFor(turn)) {
    result.outcome = watch.reason();
    return;
  }
  Search state{watch, boundHolds};
  BonminAbortAll = false;
  try {
    search(problem, state, result);
  } catch (CoinError& error) {
    fail(error.message(), watch, result);
  } catch (Bonmin::TNLPSolver::UnsolvedError* error) {
    fail(std::unique_ptr<Bonmin::TNLPSolver::UnsolvedError>(error)->errorName(), watch, result);
  } catch (Ipopt::IpoptException& error) {
    fail(error.Message(), watch, result);
  }
  BonminAbortAll = false;
}

}  // namespace lomu
