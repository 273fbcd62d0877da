// Live steps on problems of the netlib collection, through ZTB beside Clp's own interface. A step
// changes every cost and every side of each problem, solves and reads all levels; the steps are
// those among random ones that have a solution.
#ifndef ZTB_BENCH_NETLIB_STEPS_H_
#define ZTB_BENCH_NETLIB_STEPS_H_

#include <string>

namespace bench {

// Registers the loops for each problem in the folder, and for a step of all together.
void registerNetlibSteps(const std::string& folder);

}  // namespace bench

#endif  // ZTB_BENCH_NETLIB_STEPS_H_
