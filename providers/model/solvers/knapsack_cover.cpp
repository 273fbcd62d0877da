#include "providers/model/solvers/knapsack_cover.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>

namespace lomu {

namespace {

constexpr double kNever = std::numeric_limits<double>::infinity();
constexpr double kViolated = 1e-4;
// Inequalities that count further would take long to make, and are weak.
constexpr std::size_t kMostCounted = 500;

// The inequality as it grows. least_[v] is the least weight of things in it that count for v or
// more together.
class Lifting {
 public:
  Lifting(const Knapsack& knapsack, KnapsackCover& cover) : knapsack_(knapsack), cover_(cover) {
    cover_.count.assign(knapsack.weight.size(), 0);
    least_.push_back(0);
  }

  // The cover, of which one thing must stay outside; the things of `inside` are all taken.
  void begin(const std::vector<std::size_t>& items, double capacity) {
    capacity_ = capacity;
    for (const std::size_t k : items) enter(k, 1);
    cover_.most = static_cast<double>(items.size()) - 1;
  }

  [[nodiscard]] bool fits(std::size_t k) const {
    return knapsack_.weight[k] <= capacity_ + knapsack_.room;
  }

  // One that is not taken so far and fits: as much as no packing with it breaks. False to give up.
  bool liftUp(std::size_t k) {
    const double count = cover_.most - mostOf(capacity_ - knapsack_.weight[k]);
    return count <= 0 || enter(k, count);
  }

  // One that was taken throughout: without it there is room.
  bool liftDown(std::size_t k) {
    capacity_ += knapsack_.weight[k];
    const double count = mostOf(capacity_) - cover_.most;
    cover_.most += count;
    return count <= 0 || enter(k, count);
  }

 private:
  // The most that things of a weight, which is not below 0 by more than the room, count for.
  [[nodiscard]] double mostOf(double weight) const {
    const auto end = std::upper_bound(least_.begin(), least_.end(), weight + knapsack_.room);
    return static_cast<double>(std::max<std::ptrdiff_t>(1, end - least_.begin())) - 1;
  }

  bool enter(std::size_t k, double count) {
    const auto step = static_cast<std::size_t>(count);
    const std::size_t before = least_.size();
    if (before + step > kMostCounted) return false;
    cover_.count[k] = count;
    least_.resize(before + step, kNever);
    for (std::size_t v = least_.size(); v-- > 1;) {
      const double with = least_[v > step ? v - step : 0] + knapsack_.weight[k];
      least_[v] = std::min(least_[v], with);
    }
    return true;
  }

  const Knapsack& knapsack_;
  KnapsackCover& cover_;
  double capacity_ = 0;
  std::vector<double> least_;
};

class CoverSearch {
 public:
  CoverSearch(const Knapsack& knapsack, KnapsackCover& cover) : knapsack_(knapsack), cover_(cover) {
    for (std::size_t k = 0; k < knapsack.weight.size(); ++k) order_.push_back(k);
  }

  bool run() {
    // Those first that the point takes most of, or that it leaves little of for their weight.
    std::stable_sort(order_.begin(), order_.end(), [this](std::size_t a, std::size_t b) {
      return knapsack_.level[a] > knapsack_.level[b];
    });
    if (take() && lift()) return true;
    std::stable_sort(order_.begin(), order_.end(), [this](std::size_t a, std::size_t b) {
      return (1 - knapsack_.level[a]) * knapsack_.weight[b] <
             (1 - knapsack_.level[b]) * knapsack_.weight[a];
    });
    return take() && lift();
  }

 private:
  [[nodiscard]] bool isWhole(std::size_t k) const { return knapsack_.level[k] > 1 - 1e-6; }

  // Things in order until they no longer fit, then without those that are not needed for that.
  bool take() {
    items_.clear();
    double sum = 0;
    for (const std::size_t k : order_) {
      if (sum > knapsack_.capacity + knapsack_.room) break;
      items_.push_back(k);
      sum += knapsack_.weight[k];
    }
    if (sum <= knapsack_.capacity + knapsack_.room) return false;
    for (std::size_t n = items_.size(); n-- > 0;) {
      const double without = sum - knapsack_.weight[items_[n]];
      if (without <= knapsack_.capacity + knapsack_.room) continue;
      sum = without;
      items_.erase(items_.begin() + static_cast<std::ptrdiff_t>(n));
    }
    return true;
  }

  bool lift() {
    // Those of the cover that the point takes whole are taken for the time being.
    std::vector<std::size_t> inside;
    std::vector<std::size_t> cover;
    double capacity = knapsack_.capacity;
    for (const std::size_t k : items_) (isWhole(k) ? inside : cover).push_back(k);
    std::stable_sort(inside.begin(), inside.end(), [this](std::size_t a, std::size_t b) {
      return knapsack_.weight[a] > knapsack_.weight[b];
    });
    while (cover.size() < 2 && !inside.empty()) {
      cover.push_back(inside.back());
      inside.pop_back();
    }
    if (cover.empty()) return false;
    for (const std::size_t k : inside) capacity -= knapsack_.weight[k];
    Lifting lifting(knapsack_, cover_);
    lifting.begin(cover, capacity);
    std::vector<std::size_t> outside;
    for (const std::size_t k : order_) {
      if (std::find(items_.begin(), items_.end(), k) == items_.end()) {
        outside.push_back(k);
      }
    }
    std::stable_sort(outside.begin(), outside.end(), [this](std::size_t a, std::size_t b) {
      return knapsack_.level[a] > knapsack_.level[b];
    });
    // What does not fit beside those that are taken for the time being waits until they no longer
    // are; what does not fit then is never taken.
    std::vector<std::size_t> later;
    for (const std::size_t k : outside) {
      if (knapsack_.level[k] <= 0 || !lifting.fits(k)) {
        later.push_back(k);
      } else if (!lifting.liftUp(k)) {
        return false;
      }
    }
    for (const std::size_t k : inside) {
      if (!lifting.liftDown(k)) return false;
    }
    for (const std::size_t k : later) {
      if (lifting.fits(k) && !lifting.liftUp(k)) return false;
    }
    double sum = 0;
    for (std::size_t k = 0; k < cover_.count.size(); ++k) {
      sum += cover_.count[k] * knapsack_.level[k];
    }
    return sum > cover_.most + kViolated;
  }

  const Knapsack& knapsack_;
  KnapsackCover& cover_;
  std::vector<std::size_t> order_, items_;
};

}  // namespace

bool findCover(const Knapsack& knapsack, KnapsackCover& cover) {
  return CoverSearch(knapsack, cover).run();
}

}  // namespace lomu
