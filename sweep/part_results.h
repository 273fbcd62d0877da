// Results of neighbouring scenarios in a database: what a part file holds.
//
//   SET(*)                    the set swept over, with the scenarios of the part
//   sweep_status(SET)         model status of each scenario that was run
//   sweep_solve_status(SET)   its solve status
//   sweep_objective(SET)      objective of each scenario with a solution
//   sweep_inputs              a set without elements; its text says what the results come from
//   SYM_level(SET, ...), SYM_marginal(SET, ...)   of each symbol reported
//   sweep_reason(SET)         scenarios whose solve failed; the text of each says why
//   sweep_unmatched           a set without elements; its text has the parameters with records that
//                             met no column of the model, with blanks between
#ifndef ZTB_SWEEP_PART_RESULTS_H_
#define ZTB_SWEEP_PART_RESULTS_H_

#include <memory>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>
#include <ztb/ztb.hpp>

namespace sweep {

inline constexpr const char* kInputs = "sweep_inputs";
inline constexpr const char* kStatus = "sweep_status";
inline constexpr const char* kSolveStatus = "sweep_solve_status";
inline constexpr const char* kObjective = "sweep_objective";
inline constexpr const char* kReason = "sweep_reason";
inline constexpr const char* kUnmatched = "sweep_unmatched";

// What is said behind what is wrong with a part.
inline constexpr const char* kRemovePart = "; remove this file, and what it held is solved again";

struct Outcome {
  int status = 0;
  int solveStatus = 0;  // 0: there is no outcome
  std::optional<double> objective = std::nullopt;

  [[nodiscard]] bool isThere() const { return solveStatus != 0; }
  // A solve that failed may go well the next time.
  [[nodiscard]] bool hasFailed() const;
};

class PartResults {
 public:
  // No results yet. `reports` are symbols with their dimensions. Throws Failure for a name that is
  // too long or taken.
  PartResults(const std::string& over, const std::string& inputs,
              const std::vector<std::pair<std::string, int>>& reports);
  PartResults(const PartResults&) = delete;
  PartResults& operator=(const PartResults&) = delete;
  ~PartResults();

  // Makes an element of the set, with its outcome and, where its solve failed, the reason.
  void add(std::string_view label, std::string_view text, const Outcome& outcome,
           const std::string& reason);
  // Takes levels and marginals, zeros too, of the symbols reported out of the solved database for
  // the scenario that was added last.
  void takeSolution(const ztb::Database& solved);
  // The next solution is taken out of another database, with labels of its own.
  void changeDatabase();

  // Publishes the file as a whole.
  void write(const std::string& file, const std::set<std::string>& unmatched);

 private:
  struct Report {
    std::string symbol;
    ztb::Symbol level;
    ztb::Symbol marginal;
  };
  class Labels;

  ztb::Symbol add(const std::string& name, int dimension);

  ztb::Database database_;
  ztb::Symbol set_;
  ztb::Symbol status_;
  ztb::Symbol solveStatus_;
  ztb::Symbol objective_;
  ztb::Symbol reason_;
  std::vector<Report> reports_;
  int last_ = 0;  // number of the label that was added last
  std::unique_ptr<Labels> labels_;
};

}  // namespace sweep

#endif  // ZTB_SWEEP_PART_RESULTS_H_
