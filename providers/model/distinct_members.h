// Whether the members of a special ordered set are distinct, in columns and in weights.
#ifndef ZTB_PROVIDERS_MODEL_DISTINCT_MEMBERS_H_
#define ZTB_PROVIDERS_MODEL_DISTINCT_MEMBERS_H_

#include <unordered_set>

namespace lomu {

class DistinctMembers {
 public:
  // False when the column or the weight was taken before.
  bool take(int column, double weight) {
    return columns_.insert(column).second && weights_.insert(weight).second;
  }

 private:
  std::unordered_set<int> columns_;
  std::unordered_set<double> weights_;
};

}  // namespace lomu

#endif  // ZTB_PROVIDERS_MODEL_DISTINCT_MEMBERS_H_
