// The domain against which the records of a symbol are held while they are written.
#ifndef ZTB_PROVIDERS_RXF_STRICT_DOMAIN_H_
#define ZTB_PROVIDERS_RXF_STRICT_DOMAIN_H_

#include <array>
#include <cstdint>
#include <memory>

#include "providers/rxf/label_set.h"
#include "providers/rxf/limits.h"

namespace rxffile {

class StrictDomain {
 public:
  [[nodiscard]] bool active() const { return active_; }

  // Takes the members of each position; null stands for the universe.
  void set(const std::array<std::shared_ptr<const LabelBits>, kMaxDimension>& members) {
    members_ = members;
    active_ = true;
  }

  void clear() {
    members_.fill(nullptr);
    active_ = false;
  }

  // First position from `from` on whose label is not in its set; `dim` when all are.
  [[nodiscard]] int firstOutside(const int* keys, int from, int dim) const {
    for (int j = from; j < dim; ++j) {
      const LabelBits* members = members_[static_cast<unsigned>(j)].get();
      if (members != nullptr && !members->holds(static_cast<std::uint32_t>(keys[j]))) return j;
    }
    return dim;
  }

 private:
  bool active_ = false;
  std::array<std::shared_ptr<const LabelBits>, kMaxDimension> members_;
};

}  // namespace rxffile

#endif  // ZTB_PROVIDERS_RXF_STRICT_DOMAIN_H_
