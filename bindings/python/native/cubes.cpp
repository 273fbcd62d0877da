#include "bindings/python/native/cubes.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <limits>
#include <string>

#include "bindings/python/native/filling.h"
#include "bindings/python/native/interruption.h"
#include "bindings/python/native/records.h"

namespace python {

namespace {

using py::ssize_t;

std::vector<void*> handlesOf(const Symbol& symbol, const std::vector<Symbol>& domains) {
  if (domains.size() != static_cast<std::size_t>(symbol.dimension())) {
    throw py::value_error(std::to_string(domains.size()) + " domains given, symbol " +
                          symbol.name() + " has " + std::to_string(symbol.dimension()) +
                          " positions");
  }
  std::vector<void*> handles;
  for (const Symbol& domain : domains) {
    symbol.connection()->requireSame(*domain.connection());
    handles.push_back(domain.handle());
  }
  return handles;
}

// The sizes of a cube over sets.
std::vector<int> sizesOf(const std::vector<Symbol>& domains) {
  std::vector<int> sizes(domains.size());
  std::ranges::transform(domains, sizes.begin(), &Symbol::recordCount);
  return sizes;
}

// Throws unless an int counts the cells of a cube, as some operations do.
void requireCountable(const std::vector<int>& sizes) {
  std::uint64_t cells = 1;
  for (const int size : sizes) {
    if (size == 0) {
      return;
    }
  }
  for (const int size : sizes) {
    cells *= static_cast<std::uint64_t>(size);
    if (cells > std::numeric_limits<int>::max()) {
      throw py::value_error("the array has more than " +
                            std::to_string(std::numeric_limits<int>::max()) + " cells");
    }
  }
}

// Throws unless a cube that came from Python has the sizes of its sets.
void requireSizes(const std::vector<Symbol>& domains, const std::vector<int>& sizes,
                  const py::array& cube) {
  if (cube.ndim() != static_cast<ssize_t>(sizes.size())) {
    throw py::value_error("an array of " + std::to_string(cube.ndim()) + " dimensions for " +
                          std::to_string(sizes.size()) + " positions");
  }
  for (std::size_t position = 0; position < sizes.size(); ++position) {
    const ssize_t cells = cube.shape(static_cast<ssize_t>(position));
    if (cells != sizes[position]) {
      throw py::value_error("the array has " + std::to_string(cells) + " cells at position " +
                            std::to_string(position) + ", set " + domains[position].name() +
                            " has " + std::to_string(sizes[position]) + " elements");
    }
  }
}

template <class Cell>
py::tuple toCube(const Symbol& symbol, const std::vector<Symbol>& domains, int field) {
  std::vector<void*> handles = handlesOf(symbol, domains);
  const std::vector<int> sizes = sizesOf(domains);
  requireCountable(sizes);
  symbol.load();
  py::array_t<Cell> cube(std::vector<ssize_t>(sizes.begin(), sizes.end()));
  Cell* const cells = cube.mutable_data();
  int dropped = 0;
  runWithoutInterpreter([&](Interruption&) {
    symbol.require(c__ztbsparsesymboltodensearray(symbol.database(), cells, sizes.data(),
                                                  symbol.handle(), handles.data(), field, &dropped),
                   "ztbSparseSymbolToDenseArray");
  });
  return py::make_tuple(cube, dropped);
}

// A label of an axis, and how far into the cube its place there is.
struct AxisLabel {
  int label;
  ssize_t offset;
};

// The labels of an axis in the order of their numbers.
std::vector<AxisLabel> axisOf(const Symbol& set, ssize_t stride) {
  std::vector<AxisLabel> axis;
  set.load();
  for (const ztb::Row& row : set.client().rows()) {
    axis.push_back({row.keys[0], static_cast<ssize_t>(axis.size()) * stride});
  }
  std::ranges::sort(axis, {}, &AxisLabel::label);
  return axis;
}

}  // namespace

py::tuple toDense(const Symbol& symbol, const std::vector<Symbol>& domains, int field) {
  return symbol.type() == ZTB_SET ? toCube<int>(symbol, domains, field)
                                  : toCube<double>(symbol, domains, field);
}

void fromDense(const Symbol& symbol, const std::vector<Symbol>& domains, const Values& cube,
               bool keepZeros) {
  std::vector<void*> handles = handlesOf(symbol, domains);
  const std::vector<int> sizes = sizesOf(domains);
  requireSizes(domains, sizes, cube);
  requireCountable(sizes);
  if (symbol.type() != ZTB_PARAMETER) {
    throw py::value_error("symbol " + symbol.name() + " is no parameter");
  }
  const double* const cells = cube.data();
  runWithoutInterpreter([&](Interruption&) {
    clear(symbol);
    if (keepZeros) {
      symbol.require(c__ztbdensearraytosymbol(symbol.database(), symbol.handle(), handles.data(),
                                              cells, sizes.data()),
                     "ztbDenseArrayToSymbol");
    } else {
      symbol.require(
          c__ztbdensearrayslicestosymbol(symbol.database(), symbol.handle(), handles.data(),
                                         handles.data(), cells, sizes.data()),
          "ztbDenseArraySlicesToSymbol");
    }
  });
}

void elementsFromDense(const Symbol& symbol, const std::vector<Symbol>& domains,
                       const py::array_t<bool, py::array::c_style | py::array::forcecast>& cube) {
  static_cast<void>(handlesOf(symbol, domains));
  requireSizes(domains, sizesOf(domains), cube);
  requireSet(symbol);
  const std::size_t positions = domains.size();
  std::vector<std::vector<AxisLabel>> axes(positions);
  ssize_t stride = 1;
  for (std::size_t position = positions; position-- > 0;) {
    axes[position] = axisOf(domains[position], stride);
    stride *= cube.shape(static_cast<ssize_t>(position));
  }
  const bool* const cells = cube.data();
  const ssize_t count = cube.size();
  runWithoutInterpreter([&](Interruption&) {
    clear(symbol);
    Filling filling(symbol);
    std::vector<std::size_t> at(positions);
    std::array<int, ZTB_MAX_DIMENSION> key{};
    for (ssize_t visited = 0; visited < count; ++visited) {
      ssize_t cell = 0;
      for (std::size_t position = 0; position < positions; ++position) {
        cell += axes[position][at[position]].offset;
        key[position] = axes[position][at[position]].label;
      }
      if (cells[cell]) {
        filling.add(key.data(), {});
      }
      for (std::size_t position = positions; position-- > 0;) {
        if (++at[position] < axes[position].size()) {
          break;
        }
        at[position] = 0;
      }
    }
  });
}

}  // namespace python
