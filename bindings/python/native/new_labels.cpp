#include "bindings/python/native/new_labels.h"

#include <optional>
#include <string_view>
#include <utility>
#include <ztb/case_folding.hpp>
#include <ztb/label_check.hpp>

#include "bindings/python/native/hand_made.h"
#include "bindings/python/native/strings.h"

namespace python {

namespace {

// A label as the database compares it: without trailing blanks, ASCII letters in one case.
std::string compared(const std::string& label) {
  return ztb::folded(std::string_view(label).substr(0, label.find_last_not_of(' ') + 1));
}

}  // namespace

NewLabels::NewLabels(Shared connection)
    : connection_(std::move(connection)), known_(connection_->database().labelCount()) {}

py::array_t<int> NewLabels::numbers(const py::iterable& labels, Empty empty) {
  // What the iterable does may take long, and may come back to the database.
  std::vector<std::string> all;
  for (const py::handle label : labels) {
    all.push_back(labelFromPython(label));
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
  const auto [known, isNew] = numbers_.try_emplace(compared(label), largest() + 1);
  if (isNew) {
    labels_.push_back(label);
  }
  return known->second;
}

void NewLabels::add() {
  if (labels_.empty()) {
    return;
  }
  if (connection_->database().labelCount() != known_) {
    throw ztb::Error("ztbMergeUel", "Labels were added to the database meanwhile");
  }
  for (const std::string& label : labels_) {
    connection_->database().mergeLabel(label);
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
