#include <iostream>
#include <vector>
#include <ztb/ztb.hpp>

int main() {
  ztb::Database plan;
  ztb::Symbol cities = plan.addSet("cities", {"*"});
  ztb::Symbol demand = plan.addParameter("demand", {cities});
  ztb::Symbol ship = plan.addVariable("ship", 3, {cities});
  for (const char* city : {"oslo", "seville", "turin"}) {
    cities.add(city);
    ship.add(city);
  }
  ztb::Symbol towns = plan.addSet("towns", {"*"});
  towns.add("seville");
  const std::vector<double> amounts{1, 2, 3};
  ztb::Record record = *towns.find("seville");
  // FRAGMENTS
}
