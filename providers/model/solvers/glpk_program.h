// A problem in GLPK that lives from solve to solve: the first simplex is that of GLPK's own
// program, with its presolver, and so is the first search over integers where all numbers are
// whole; then what changed is handed over, and the next one begins at the
// basis where the last one ended. After an error inside of GLPK the problem is given up and made
// afresh: at once where it was the first simplex of a solve, else for the next. It is also made
// afresh when the next solve is on another thread: GLPK binds it to its own.
#ifndef ZTB_PROVIDERS_MODEL_SOLVERS_GLPK_PROGRAM_H_
#define ZTB_PROVIDERS_MODEL_SOLVERS_GLPK_PROGRAM_H_

#include <glpk.h>

#include <cstdint>
#include <string>

#include "providers/model/solvers/glpk_guard.h"
#include "providers/model/solvers/integer_solve.h"

namespace lomu {

class GlpkProgram : public IntegerEngine {
 public:
  GlpkProgram() = default;
  ~GlpkProgram() override;

  // Takes a form over; one of the same shape as the form before keeps the basis.
  void take(const LinearForm& form) override;

  // Has the next take make the problem afresh.
  void forget() { keeps_ = false; }
  // Has the first solve begin with a basis, as ztb/solver.h has one; false when it does not fit.
  // REQUIRES that what take made was not solved yet.
  bool begin(const std::int32_t* position, const std::int32_t* rowPosition);
  // The ranges of the last linear solve; false unless it found an optimum.
  bool ranges(SolverRanges& ranges);

  void solveLinear(Watch& watch, SolverResult& result) override;
  void searchIntegers(Watch& watch, SolverResult& result) override;
  [[nodiscard]] bool needsLinearFirst() const override { return !presolvesIntegers_; }

 private:
  enum class Task { build, change, presolved, simplex, proof, search, drop, basis, ranges };
  // What a guarded call works on; without destructors.
  struct Job {
    GlpkProgram* program;
    Task task;
    Watch* watch;
    int method;
    int iterationLimit;
    int code;
    SolverResult* result;
    const std::int32_t* position = nullptr;
    const std::int32_t* rowPosition = nullptr;
    SolverRanges* ranges = nullptr;
    int selected = 0;     // nodes of a search since its bound was asked for
    bool inTree = false;  // a search has its first node
  };

  static void perform(void* context);
  static void askInSearch(glp_tree* tree, void* context);
  static bool stopsAtLine(void* context);
  void build();
  bool buildAgain();
  [[nodiscard]] bool isOfThisThread() const { return thread_ == glpkThread(); }
  void change();
  void setColumn(int j);
  void setRow(int i);
  void setMatrixColumn(int j);
  int setBasis(const Job& job);
  void rangeColumn(int j, SolverRanges& ranges);
  void rangeRow(int i, SolverRanges& ranges);
  int rangeAll(const Job& job);
  int presolved(const Job& job);
  int simplex(const Job& job);
  void rowRay(SolverResult& result);
  void columnRay(SolverResult& result);
  bool weighRows(SolverResult& result);
  int search(Job& job);
  bool call(Job& job);
  Outcome runPresolved(Watch& watch);
  // Whether what the presolver left as an optimum is one; its point is in `result` then.
  bool presolvedHolds(SolverResult& result) const;
  Outcome runLive(Watch& watch);
  Outcome runSimplex(Watch& watch, int method);
  void leavePoint(SolverResult& result) const;

  glp_prob* problem_ = nullptr;
  std::uint64_t thread_ = 0;        // on which problem_ was made
  bool keeps_ = false;              // the next form may keep the basis
  bool isFresh_ = true;             // problem_ was not solved yet
  bool presolvesIntegers_ = false;  // the next search is of the problem as GLPK presolves it
  LinearForm form_;                 // what problem_ holds
  LinearForm next_;                 // what it is to hold
  std::vector<int> indexes_;
  std::vector<double> values_;
  double iterations_ = 0;
  std::string reason_;
};

}  // namespace lomu

#endif  // ZTB_PROVIDERS_MODEL_SOLVERS_GLPK_PROGRAM_H_
