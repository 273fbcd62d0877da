// What a sweep is made from, as a short text that is kept with its results, so that results of
// different inputs cannot mix.
#ifndef ZTB_SWEEP_INPUTS_H_
#define ZTB_SWEEP_INPUTS_H_

#include <string>
#include <string_view>

#include "sweep/options.h"

namespace sweep {

// Checksums of the files and options that decide the results, as words "model=..." and so on, but
// for the size of chunks. Throws Failure if a file cannot be read.
std::string inputsOf(const Options& options);

// The word of the size of chunks, to be put behind them.
std::string chunkWord(int size);

// What two such texts differ in first, such as "another model file"; empty if in nothing.
std::string inputsDifference(std::string_view one, std::string_view other);

// Sixteen digits that stand for such a text in the names of files.
std::string keyOf(std::string_view inputs);

// Which files stand under the names of the inputs, and when they were last changed: as long as it
// is the same text, so are the checksums.
std::string filesOf(const Options& options);

}  // namespace sweep

#endif  // ZTB_SWEEP_INPUTS_H_
