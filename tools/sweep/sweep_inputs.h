// What a sweep is made from, as a short text that is kept with its results, so that a resumed sweep
// cannot mix results of different inputs.
#ifndef ZTB_TOOLS_SWEEP_SWEEP_INPUTS_H_
#define ZTB_TOOLS_SWEEP_SWEEP_INPUTS_H_

#include <string>
#include <string_view>

#include "tools/sweep/sweep_options.h"

namespace tool {

// Checksums of the files and options that decide the results, as words "model=..." and so on.
// Throws Failure if a file cannot be read.
std::string sweepInputs(const SweepOptions& options);

// Whether a text is one of these.
bool isSweepInputs(std::string_view text);

// What two such texts differ in first, such as "another model file"; empty if in nothing.
std::string sweepInputsDifference(std::string_view one, std::string_view other);

}  // namespace tool

#endif  // ZTB_TOOLS_SWEEP_SWEEP_INPUTS_H_
