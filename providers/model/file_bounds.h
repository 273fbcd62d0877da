// Numbers in model files that stand for infinity, and rows given by two bounds.
#ifndef ZTB_PROVIDERS_MODEL_FILE_BOUNDS_H_
#define ZTB_PROVIDERS_MODEL_FILE_BOUNDS_H_

#include "providers/model/model_data.h"

namespace lomu {

// Numbers of this size and beyond are infinite, in files of every kind.
inline constexpr double kFileInfinity = 1e30;

// The number, or the infinity that it stands for.
double fromFile(double number);

// Gives the row type, right-hand side and range for lower <= row <= upper. Two finite bounds that
// differ make a <= row, or a >= row where the range would only then give the other bound to the
// last bit, as with 1 and 1e20; the range is negative where they contradict each other. Null, or
// what is wrong with the bounds (then the row is as it was).
const char* setRowBounds(RowData& row, double lower, double upper);

}  // namespace lomu

#endif  // ZTB_PROVIDERS_MODEL_FILE_BOUNDS_H_
