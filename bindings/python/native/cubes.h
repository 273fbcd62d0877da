// Many records at once, as dense arrays over one set for each position. No cube here has more cells
// than an int counts: ValueError. The sizes multiply in 64 bits.
#ifndef ZTB_BINDINGS_PYTHON_NATIVE_CUBES_H_
#define ZTB_BINDINGS_PYTHON_NATIVE_CUBES_H_

#include <vector>

#include "bindings/python/native/symbol.h"

namespace python {

// The records at the places of their labels in a cube over one set for each position, and how many
// records were left out. The cube holds doubles, for a set the numbers of its records from 1.
py::tuple toDense(const Symbol& symbol, const std::vector<Symbol>& domains, int field);
// Replaces the records of a parameter by the cells of a cube: all, or all but zeros.
void fromDense(const Symbol& symbol, const std::vector<Symbol>& domains, const Values& cube,
               bool keepZeros);
// The same for a set, which gets a record without text for each cell that is not zero.
void elementsFromDense(const Symbol& symbol, const std::vector<Symbol>& domains,
                       const py::array_t<bool, py::array::c_style | py::array::forcecast>& cube);

}  // namespace python

#endif  // ZTB_BINDINGS_PYTHON_NATIVE_CUBES_H_
