#include "bindings/python/native/new_labels.h"

#include <optional>
#include <utility>
#include <ztb/label_check.hpp>

#include "bindings/python/native/hand_made.h"
#include "bindings/python/native/strings.h"

namespace python {

namespace {

int labelCount(const Connection& connection) {
  int count = 0;
  connection.require(c__ztbinfo(connection.handle(), ZTB_INFO_UEL_COUNT, &count, nullptr, nullptr),
                     "ztbInfo");
  return count;
}

// A label as the database compares it: without trailing blanks, ASCII letters in one case.
std::string folded(const std::string& label) {
  std::string result = label.substr(0, label.find_last_not_of(' ') + 1);
  for (char& letter : result) {
    if (letter >= 'A' && letter <= 'Z') {
      letter = static_cast<char>(letter - 'A' + 'a');
    }
  }
  return result;
}

}  // namespace

NewLabels::NewLabels(Shared connection)
    : connection_(std::move(connection)), known_(labelCount(*connection_)) {}

py::array_t<int> NewLabels::numbers(const py::iterable& labels, Empty empty) {
  // What the iterable does may take long, and may come back to the database.
  std::vector<std::string> all;
  for (const py::handle label : labels) {
    all.push_back(fromPython(label));
  }
  const Use use(*connection_);
  py::array_t<int> result(static_cast<py::ssize_t>(all.size()));
  int* const numbers = result.mutable_data();
  for (std::size_t place = 0; place < all.size(); ++place) {
    numbers[place] = number(all[place], empty);
  }
  return result;
}

int NewLabels::number(const std::string& label, Empty empty) {
  requireNotBlank(label);
  const auto find =
      label.empty() && empty == Empty::allowed ? ztb::detail::findLabel : ztb::detail::requireLabel;
  const int number = find(connection_->handle(), "ztbMergeUel", label.c_str());
  if (number != ztb::detail::newLabel) {
    return number;
  }
  const auto [known, isNew] = numbers_.try_emplace(folded(label), largest() + 1);
  if (isNew) {
    labels_.push_back(label);
  }
  return known->second;
}

void NewLabels::add() {
  if (labels_.empty()) {
    return;
  }
  if (labelCount(*connection_) != known_) {
    throw ztb::Error("ztbMergeUel", "Labels were added to the database meanwhile");
  }
  for (const std::string& label : labels_) {
    int number = 0;
    connection_->require(c__ztbmergeuel(connection_->handle(), label.c_str(), &number),
                         "ztbMergeUel");
  }
  known_ = largest();
  labels_.clear();
  numbers_.clear();
}

void addLabels(const Shared& connection, const py::iterable& labels) {
  std::optional<NewLabels> added;
  {
    const Use use(*connection);
    added.emplace(connection);
  }
  added->numbers(labels, NewLabels::Empty::allowed);
  const Use use(*connection);
  added->add();
}

void bindNewLabels(py::module_& module) {
  py::class_<NewLabels> type(module, "NewLabels", py::is_final());
  refuseHandMade(type);
  type.def("numbers", [](NewLabels& labels, const py::iterable& texts) {
    return labels.numbers(texts, NewLabels::Empty::refused);
  });
}

}  // namespace python
