// Clp as a solver library that counts the problems it is handed, and that keeps to itself what it
// is told to keep.
#ifndef ZTB_TESTS_SOLVE_HEARD_CLP_H_
#define ZTB_TESTS_SOLVE_HEARD_CLP_H_

#if defined(__GNUC__) && !defined(_WIN32)
#define HEARD_CLP __attribute__((visibility("default")))
#else
#define HEARD_CLP
#endif

extern "C" {
// From now on without the marginals of optima, and without proofs that no point exists. Begins to
// count anew.
HEARD_CLP void heardClpKeeps(bool marginals, bool proofs);
// How many problems were handed over since.
HEARD_CLP int heardClpLoads();
}

#endif  // ZTB_TESTS_SOLVE_HEARD_CLP_H_
