// Forms with choices: the search over integers, which knows nothing of them, and where its best
// point breaks one, a search on each side of that choice. No number is made up for a bound that
// there is not, so the answer is exact; the price is a whole search for each part.
#ifndef ZTB_PROVIDERS_MODEL_SOLVERS_CHOICE_SEARCH_H_
#define ZTB_PROVIDERS_MODEL_SOLVERS_CHOICE_SEARCH_H_

#include "providers/model/solvers/integer_solve.h"

namespace lomu {

inline constexpr std::size_t kNoChoice = static_cast<std::size_t>(-1);

// The number of the choice that the levels break most; kNoChoice when they break none.
std::size_t brokenChoice(const LinearForm& form, const std::vector<double>& level);

// Leaves the column of the choice where its binary columns may all be 0.
void keepFromSide(LinearForm& form, const Choice& choice);

// As solveWithIntegers, with the choices of the form kept. The bound is that of all parts.
void solveWithChoices(IntegerEngine& engine, const LinearForm& form, Watch& watch,
                      SolverResult& result);

}  // namespace lomu

#endif  // ZTB_PROVIDERS_MODEL_SOLVERS_CHOICE_SEARCH_H_
