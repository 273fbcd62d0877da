// One knapsack, and inequalities that all of its packings satisfy: not all things of a cover fit
// in. What the things outside may count for is found by going through the packings, so that it is
// right and as much as can be, in the order in which they are taken.
#ifndef ZTB_PROVIDERS_MODEL_SOLVERS_KNAPSACK_COVER_H_
#define ZTB_PROVIDERS_MODEL_SOLVERS_KNAPSACK_COVER_H_

#include <vector>

namespace lomu {

// Things of weights above 0, of which those that are taken weigh at most `capacity`, and how much
// of each a point takes, between 0 and 1.
struct Knapsack {
  std::vector<double> weight, level;
  double capacity = 0;

  // Things that weigh no more than this above the capacity are taken to fit in.
  double room = 0;
};

// The sum of count * level over the things is at most `most`.
struct KnapsackCover {
  std::vector<double> count;
  double most = 0;
};

// A cover whose inequality the point violates, or violates after what is outside counts. False when
// none is found.
bool findCover(const Knapsack& knapsack, KnapsackCover& cover);

}  // namespace lomu

#endif  // ZTB_PROVIDERS_MODEL_SOLVERS_KNAPSACK_COVER_H_
