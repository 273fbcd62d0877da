// Results that were worked out before, the latest ones as far as they fit.
#ifndef ZTB_VIEW_RESULT_CACHE_H_
#define ZTB_VIEW_RESULT_CACHE_H_

#include <algorithm>
#include <cstddef>
#include <list>
#include <memory>
#include <mutex>
#include <string>
#include <utility>

namespace view {

// Safe in any thread. A result tells its size by bytes().
template <class Result>
class ResultCache {
 public:
  ResultCache(std::size_t mostBytes, std::size_t mostResults)
      : mostBytes_(mostBytes), mostResults_(mostResults) {}

  // What `make` gives, or what it gave before under this name.
  template <class Make>
  std::shared_ptr<const Result> get(const std::string& name, const Make& make) {
    if (std::shared_ptr<const Result> found = find(name)) return found;
    auto made = std::make_shared<const Result>(make());
    keep(name, made);
    return made;
  }

 private:
  using Entry = std::pair<std::string, std::shared_ptr<const Result>>;

  std::shared_ptr<const Result> find(const std::string& name) {
    const std::lock_guard lock(mutex_);
    const auto found = std::ranges::find(entries_, name, &Entry::first);
    if (found == entries_.end()) return nullptr;
    entries_.splice(entries_.begin(), entries_, found);
    return found->second;
  }
  void keep(const std::string& name, std::shared_ptr<const Result> result) {
    const std::lock_guard lock(mutex_);
    entries_.emplace_front(name, std::move(result));
    std::size_t bytes = 0;
    std::size_t count = 0;
    for (auto kept = entries_.begin(); kept != entries_.end();) {
      bytes += kept->second->bytes() + kept->first.size();
      const bool fits = ++count == 1 || (bytes <= mostBytes_ && count <= mostResults_);
      kept = fits ? std::next(kept) : entries_.erase(kept);
    }
  }

  std::size_t mostBytes_;
  std::size_t mostResults_;
  std::mutex mutex_;
  // The one that was used last stands first.
  std::list<Entry> entries_;
};

}  // namespace view

#endif  // ZTB_VIEW_RESULT_CACHE_H_
