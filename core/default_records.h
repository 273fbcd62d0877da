// The values of a record that is added without any.
#ifndef ZTB_CORE_DEFAULT_RECORDS_H_
#define ZTB_CORE_DEFAULT_RECORDS_H_

#include "store/abstract_symbol.h"

namespace ztb {

// Five values: for a variable or equation the row of its subtype, for any other symbol zeros.
// Throws std::logic_error for a subtype that has no row.
const double* defaultRecord(const AbstractZTBSymbol& symbol);

}  // namespace ztb

#endif  // ZTB_CORE_DEFAULT_RECORDS_H_
