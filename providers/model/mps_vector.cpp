#include "providers/model/mps_vector.h"

#include "providers/model/lp_tokens.h"

namespace lomu {

bool FirstVector::takes(MpsModel& model, std::string_view name, std::size_t field) {
  if (name.empty()) return counts_;
  if (name_.empty()) name_ = name;
  counts_ = name == name_;
  if (counts_) return true;
  if (model.notes.count(section_)) return false;
  model.notes.add(section_, model.lines.line(), model.lines.columnOf(field),
                  "the vector " + shown(name) + " of " + std::string(section_) +
                      " is passed over: the first, " + shown(name_) + ", counts");
  return false;
}

}  // namespace lomu
