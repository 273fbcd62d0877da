// Puts the results of parts together in one file, in the memory of a block of records.
//
// What the file holds depends on the scenarios and their results alone, and not on the parts that
// they stand in.
#ifndef ZTB_SWEEP_COLLECTION_H_
#define ZTB_SWEEP_COLLECTION_H_

#include <string>

#include "sweep/part_index.h"
#include "sweep/scenario_file.h"

namespace sweep {

// Publishes `out` with the results that the index knows; scenarios without any have failed there.
// Throws Failure.
void collect(const PartIndex& index, const ScenarioFile& scenarios, const std::string& inputs,
             const std::string& out);

}  // namespace sweep

#endif  // ZTB_SWEEP_COLLECTION_H_
