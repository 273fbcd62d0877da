// Solves a model by solvers that are named, and prints its objective in cents.
//
//   diet MODEL SOLVER ...

#include <cstdio>
#include <exception>
#include <ztb/model.hpp>

int main(int count, char** arguments) {
  try {
    for (int i = 2; i < count; ++i) {
      ztb::Model model = ztb::Model::open(arguments[1]);
      ztb::Database database;
      ztb::ModelTie tie(database, model);
      tie.solve(arguments[i]);
      std::printf("%s %.2f\n", arguments[i], model.objective());
    }
  } catch (const std::exception& error) {
    std::fprintf(stderr, "%s\n", error.what());
    return 1;
  }
}
