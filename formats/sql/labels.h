// The labels of a database as SQL sees them: their texts by number, and their numbers by text, by
// order of texts and by numeric value. Each table is made when it is first needed and grows with
// the database, whose labels never change and never go.
#ifndef ZTB_FORMATS_SQL_LABELS_H_
#define ZTB_FORMATS_SQL_LABELS_H_

#include <ztb/types.h>

#include <cstddef>
#include <deque>
#include <map>
#include <memory>
#include <optional>
#include <string_view>
#include <vector>

namespace formats {

// One end of a range of texts.
struct LabelBound {
  std::string_view text;
  bool inclusive = false;
};

class SqlLabels {
 public:
  explicit SqlLabels(ztbRec* database) : database_(database) {}

  [[nodiscard]] int count() const;
  // The text of a number from 1 on, with a zero behind it; stays as long as this object.
  std::string_view text(int number) {
    const auto place = static_cast<std::size_t>(number);
    if (place >= texts_.size() || texts_[place].data() == nullptr) {
      read(place);
    }
    return texts_[place];
  }
  // The same, null when it was not read yet.
  [[nodiscard]] const char* known(int number) const {
    const auto place = static_cast<std::size_t>(number);
    return place < texts_.size() ? texts_[place].data() : nullptr;
  }
  // The label that is this text with the case of ASCII letters folded; 0 for none. REQUIRES: a zero
  // stands behind the text.
  int find(std::string_view text);
  // The labels that SQL may take for this number, those of its closest neighbours among them.
  std::vector<int> near(double value);
  // The labels within bounds, in the order of folded texts that SQL has; ascending.
  std::vector<int> between(const std::optional<LabelBound>& lower,
                           const std::optional<LabelBound>& upper);

 private:
  void read(std::size_t number);
  void sortTexts();
  void readNumbers();

  ztbRec* database_;
  std::vector<std::string_view> texts_;
  std::deque<std::unique_ptr<char[]>> blocks_;
  std::size_t room_ = 0;  // chars left in the last block
  std::vector<int> sorted_;
  std::multimap<double, int> numbers_;
  int numbered_ = 0;  // labels that numbers_ was made from
};

// Below 0, 0 or above as the first stands before, at or behind the second with ASCII letters in one
// case: the order of SQLite's NOCASE.
int compareFolded(std::string_view left, std::string_view right);

}  // namespace formats

#endif  // ZTB_FORMATS_SQL_LABELS_H_
