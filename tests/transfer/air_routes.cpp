#include "tests/transfer/air_routes.h"

#include <algorithm>
#include <fstream>
#include <random>
#include <set>
#include <sstream>
#include <stdexcept>

namespace ztbtest {

namespace {

// The first fields of a line; no field of ours is quoted.
Labels fieldsOf(const std::string& line, std::size_t count) {
  Labels fields;
  std::istringstream stream(line);
  for (std::string field; fields.size() < count && std::getline(stream, field, ',');) {
    fields.push_back(field);
  }
  if (fields.size() != count) {
    throw std::runtime_error("not a line of the air routes: " + line);
  }
  return fields;
}

template <class Take>
void readLines(const std::filesystem::path& file, Take take) {
  std::ifstream stream(file);
  std::string line;
  std::getline(stream, line);
  while (std::getline(stream, line)) {
    take(line);
  }
}

Labels airlinesOf(const std::map<Labels, double>& routes) {
  std::set<std::string> airlines;
  for (const auto& [labels, types] : routes) {
    airlines.insert(labels[0]);
  }
  return {airlines.begin(), airlines.end()};
}

}  // namespace

AirRoutes readAirRoutes(const std::filesystem::path& folder) {
  AirRoutes result;
  readLines(folder / "airports.csv",
            [&](const std::string& line) { result.airports.push_back(fieldsOf(line, 1)[0]); });
  readLines(folder / "routes.csv", [&](const std::string& line) {
    const Labels fields = fieldsOf(line, 5);
    result.types[{fields[0], fields[1], fields[2]}] = std::stod(fields[4]);
  });
  result.airlines = airlinesOf(result.types);
  return result;
}

AirRoutes madeUpAirRoutes() {
  constexpr std::size_t routeCount = 66934;
  constexpr unsigned airlineCount = 565;
  constexpr unsigned airportCount = 3257;
  AirRoutes result;
  for (unsigned airport = 0; airport < airportCount; ++airport) {
    result.airports.push_back(numbered("port", static_cast<int>(airport)));
  }
  std::mt19937 random(20240229);
  while (result.types.size() < routeCount) {
    // Few airlines fly much, and each flies around its home.
    const unsigned airline = random() % (1 + random() % airlineCount);
    const unsigned home = airline * 7919 % airportCount;
    const unsigned reach = 40 + 400 / (1 + airline / 10);
    const std::string from = result.airports[(home + random() % reach) % airportCount];
    const std::string to = result.airports[(home + random() % reach) % airportCount];
    result.types[{numbered("air", static_cast<int>(airline)), from, to}] = 1 + random() % 9;
  }
  result.airlines = airlinesOf(result.types);
  return result;
}

}  // namespace ztbtest
