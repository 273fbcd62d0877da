// Groups of records by their keys, each with an amount: in memory as far as they fit, the others in
// a temporary file.
#ifndef ZTB_FORMATS_SETS_GROUPS_H_
#define ZTB_FORMATS_SETS_GROUPS_H_

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "formats/sets/amount.h"
#include "formats/tables/row_sorter.h"

namespace formats {

class Groups {
 public:
  // Keys have so many words. `folder` is one for temporary files; `most` groups are held in memory.
  Groups(std::size_t keyWords, const std::string& folder, std::size_t most);

  void add(const std::uint64_t* key, double value);
  // How many groups are held in memory.
  [[nodiscard]] std::size_t held() const { return amounts_.size(); }
  // Visits the groups in ascending order of their keys.
  void walk(const std::function<void(const std::uint64_t* key, const Amount& amount)>& visit);

 private:
  [[nodiscard]] std::size_t find(const std::uint64_t* key) const;
  void grow();
  // Hands what is in memory to the sorter.
  void empty();

  std::size_t keyWords_;
  std::size_t most_;
  std::vector<std::uint64_t> keys_;
  std::vector<Amount> amounts_;
  // Numbers of groups from 1, at places that their keys tell; 0 for none.
  std::vector<std::uint32_t> places_;
  // The group of the latest record, from 1.
  std::size_t latest_ = 0;
  RowSorter sorter_;
};

}  // namespace formats

#endif  // ZTB_FORMATS_SETS_GROUPS_H_
