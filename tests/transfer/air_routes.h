// Airline routes between airports: real sparse data of three dimensions, and data made up to look
// like it.
#ifndef ZTB_TESTS_TRANSFER_AIR_ROUTES_H_
#define ZTB_TESTS_TRANSFER_AIR_ROUTES_H_

#include <filesystem>
#include <map>
#include <string>
#include <vector>

#include "tests/support/database.h"

namespace ztbtest {

struct AirRoutes {
  // By airline, airport of departure and airport of arrival: the aircraft types flown.
  std::map<Labels, double> types;
  Labels airlines;
  Labels airports;
};

// Reads airports.csv and routes.csv. Throws std::runtime_error for a line that is no route.
AirRoutes readAirRoutes(const std::filesystem::path& folder);

// As many routes, airlines and airports as the real ones, the same at every call.
AirRoutes madeUpAirRoutes();

}  // namespace ztbtest

#endif  // ZTB_TESTS_TRANSFER_AIR_ROUTES_H_
