#include "core/default_records.h"

#include <array>
#include <stdexcept>
#include <string>

#include "exchange/special_values.h"

namespace ztb {
namespace {

using Row = std::array<double, dmap::maxSlots>;

constexpr double inf = internalPlusInfinity;
constexpr double minf = internalMinusInfinity;

// Level, marginal, lower, upper, scale by the variable's subtype.
constexpr std::array<Row, 10> variableRows = {{
    {0, 0, 0, 0, 1},
    {0, 0, 0, 1, 1},
    {0, 0, 0, 100, 1},
    {0, 0, 0, inf, 1},
    {0, 0, minf, 0, 1},
    {0, 0, minf, inf, 1},
    {0, 0, 0, inf, 1},
    {0, 0, 0, inf, 1},
    {0, 0, 1, inf, 1},
    {0, 0, 1, 100, 1},
}};

// The same by the equation's subtype.
constexpr std::array<Row, 7> equationRows = {{
    {0, 0, 0, 0, 1},
    {0, 0, 0, inf, 1},
    {0, 0, minf, 0, 1},
    {0, 0, minf, inf, 1},
    {0, 0, 0, 0, 1},
    {0, 0, 0, inf, 1},
    {0, 0, 0, 0, 1},
}};

constexpr Row zeros = {};

template <std::size_t count>
const double* rowOf(const std::array<Row, count>& rows, const AbstractZTBSymbol& symbol) {
  if (symbol.userInfo < 0 || symbol.userInfo >= static_cast<int>(count)) {
    throw std::logic_error("subtype " + std::to_string(symbol.userInfo) + " of symbol " +
                           symbol.name + " is outside [0," + std::to_string(count - 1) + "]");
  }
  return rows[static_cast<std::size_t>(symbol.userInfo)].data();
}

}  // namespace

const double* defaultRecord(const AbstractZTBSymbol& symbol) {
  switch (symbol.type) {
    case dmap::typeVariable:
      return rowOf(variableRows, symbol);
    case dmap::typeEquation:
      return rowOf(equationRows, symbol);
    default:
      return zeros.data();
  }
}

}  // namespace ztb
