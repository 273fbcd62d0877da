// Puts many records into a symbol that is empty.
#ifndef ZTB_BINDINGS_PYTHON_NATIVE_FILLING_H_
#define ZTB_BINDINGS_PYTHON_NATIVE_FILLING_H_

#include <cstddef>
#include <span>
#include <utility>
#include <ztb/store_guard.hpp>
#include <ztb/store_removal.hpp>

#include "bindings/python/native/symbol.h"

namespace python {

// Adds records to a symbol that is empty, in ascending order of their keys, which every store
// takes.
class Filling {
 public:
  explicit Filling(const Symbol& symbol)
      : place_(symbol.database(), symbol.handle()),
        firstInTrie_(place_.store == ZTB_STORAGE_TRIE && place_.dimension > 0) {}

  // Whether records get their content when they are added. Stores other than the tree map overwrite
  // whatever row they come upon when content comes with a key, also for one that is new; there,
  // content is to follow in a walk over the new records.
  [[nodiscard]] bool takesContent() const { return place_.onMap(); }

  void add(const int* key, const ztb::detail::Content& content) {
    const std::span<const int> numbers(key, place_.positions());
    if (std::exchange(firstInTrie_, false)) {
      ztb::detail::storeFirstInTrie(place_, numbers, {}, false);
    } else {
      ztb::detail::storeDirectly(place_, numbers, takesContent() ? content : ztb::detail::Content{},
                                 false);
    }
  }

  // Writes the content that `contentOf` tells for the place of each record, in their order.
  // REQUIRES: all records were added.
  template <class ContentOf>
  void writeContents(ContentOf&& contentOf) const {
    ztb::detail::forEachRecord(place_, [&](std::size_t place, void* record) {
      ztb::detail::writeContent(place_, record, contentOf(place));
    });
  }

 private:
  ztb::detail::SymbolPlace place_;
  bool firstInTrie_;
};

}  // namespace python

#endif  // ZTB_BINDINGS_PYTHON_NATIVE_FILLING_H_
