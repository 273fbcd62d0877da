#include <locale.h>

#include <new>

#include "tools/text/point_numbers.h"

namespace tool {

struct PointNumbers::Before {
  locale_t own;
  locale_t used;
};

PointNumbers::PointNumbers() : before_(std::make_unique<Before>()) {
  const locale_t copy = duplocale(uselocale(nullptr));
  before_->own = copy == nullptr ? nullptr : newlocale(LC_NUMERIC_MASK, "C", copy);
  if (before_->own == nullptr) {
    if (copy != nullptr) freelocale(copy);
    throw std::bad_alloc();
  }
  before_->used = uselocale(before_->own);
}

PointNumbers::~PointNumbers() {
  uselocale(before_->used);
  freelocale(before_->own);
}

}  // namespace tool
