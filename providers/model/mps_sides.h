// The sections RHS and RANGES of an MPS file.
#ifndef ZTB_PROVIDERS_MODEL_MPS_SIDES_H_
#define ZTB_PROVIDERS_MODEL_MPS_SIDES_H_

#include <vector>

#include "providers/model/mps_model.h"
#include "providers/model/mps_vector.h"

namespace lomu {

class MpsSides {
 public:
  explicit MpsSides(MpsModel& model) : model_(model) {}

  // A line of the section.
  void readRhs();
  void readRange();
  // To be called when all lines are read.
  void settle();

 private:
  template <typename Take>
  void readPairs(FirstVector& vector, const Take& take);

  MpsModel& model_;
  FirstVector rhs_{"RHS"};
  FirstVector ranges_{"RANGES"};
  std::vector<double> rangeOf_;  // of each row; NaN: none
};

}  // namespace lomu

#endif  // ZTB_PROVIDERS_MODEL_MPS_SIDES_H_
