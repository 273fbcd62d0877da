// Labels that are to come with records that may yet be refused.
#ifndef ZTB_BINDINGS_PYTHON_NATIVE_NEW_LABELS_H_
#define ZTB_BINDINGS_PYTHON_NATIVE_NEW_LABELS_H_

#include <pybind11/numpy.h>
#include <pybind11/pybind11.h>

#include <string>
#include <unordered_map>
#include <vector>

#include "bindings/python/native/connection.h"

namespace python {

namespace py = pybind11;

// Numbers labels, new ones as the database would when it got them in this order, and leaves the
// database as it is until add(). So whatever is refused in between leaves no label behind.
class NewLabels {
 public:
  // Whether the empty label may be new: a record brings none into being.
  enum class Empty { refused, allowed };

  explicit NewLabels(Shared connection);

  // The numbers of labels. Throws for what is no label; new ones of the same call then count as
  // never seen.
  py::array_t<int> numbers(const py::iterable& labels, Empty empty);

  // The largest number that a label has, new ones included.
  [[nodiscard]] int largest() const { return known_ + static_cast<int>(labels_.size()); }

  // Adds the new labels; the object then numbers from there on. Throws ztb::Error if others were
  // added to the database meanwhile. REQUIRES: the turn with the database.
  void add();

  [[nodiscard]] const Shared& connection() const { return connection_; }

 private:
  int number(const std::string& label, Empty empty);

  Shared connection_;
  // Labels of the database.
  int known_;
  // New ones in their order, and their numbers by their folded spelling.
  std::vector<std::string> labels_;
  std::unordered_map<std::string, int> numbers_;
};

// Adds labels to the database, those that it does not have, the empty one too; none if one is
// refused.
void addLabels(const Shared& connection, const py::iterable& labels);

// Adds the class to the module.
void bindNewLabels(py::module_& module);

}  // namespace python

#endif  // ZTB_BINDINGS_PYTHON_NATIVE_NEW_LABELS_H_
