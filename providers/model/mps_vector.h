// The vector of a section of an MPS file whose lines count: the first that it names.
#ifndef ZTB_PROVIDERS_MODEL_MPS_VECTOR_H_
#define ZTB_PROVIDERS_MODEL_MPS_VECTOR_H_

#include <cstddef>
#include <string>
#include <string_view>

#include "providers/model/mps_model.h"

namespace lomu {

class FirstVector {
 public:
  explicit FirstVector(std::string_view section) : section_(section) {}

  // Whether the present line counts; `name` is that of its vector, in the field, or left out where
  // it is that of the line before.
  bool takes(MpsModel& model, std::string_view name, std::size_t field);

 private:
  std::string_view section_;
  std::string name_;  // empty until a line has one
  bool counts_ = true;
};

}  // namespace lomu

#endif  // ZTB_PROVIDERS_MODEL_MPS_VECTOR_H_
