// Opens the diet data lazily, finds the best source of each nutrient, changes the data, and writes
// the file over itself.
//
//   diet FILE.rxf

#include <algorithm>
#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <iomanip>
#include <iostream>
#include <string>
#include <vector>
#include <ztb/ztb.hpp>

namespace {

struct BestSource {
  int food = 0;
  double perDollar = 0;
};

// For each nutrient, by its label number, the food that holds the most of it for a dollar.
std::vector<BestSource> bestSources(const ztb::Database& diet) {
  std::vector<BestSource> best(static_cast<std::size_t>(diet.labelCount()) + 1);
  for (const auto [keys, values] : diet.symbol("nutrition").rows()) {
    BestSource& nutrient = best[static_cast<std::size_t>(keys[1])];
    if (values[0] > nutrient.perDollar) {
      nutrient = {.food = keys[0], .perDollar = values[0]};
    }
  }
  return best;
}

void run(const char* file) {
  ztb::Database diet = ztb::Database::open(file);
  std::cout << "Opened " << file << ": " << diet.labelCount() << " labels, " << diet.symbolCount()
            << " symbols. No record was read yet.\n\n";

  // The first touch of nutrition reads its records, and those of no other symbol.
  const ztb::Symbol food = diet.symbol("food");
  const ztb::Symbol nutrient = diet.symbol("nutrient");
  ztb::Symbol best = diet.addParameter("best", {nutrient, food}, "Best source, amount per dollar");
  const std::vector<BestSource> sources = bestSources(diet);
  std::cout << "Best source of each nutrient, amount for a dollar:\n";
  for (const ztb::Record& record : nutrient.records()) {
    const ztb::Text name = record.key(0);
    const BestSource& source = sources[static_cast<std::size_t>(*diet.findLabel(name))];
    const ztb::Text foodName = diet.label(source.food);
    best.add(name, foodName).setLevel(source.perDollar);
    std::cout << "  " << std::left << std::setw(20) << name.view() << std::setw(24)
              << foodName.view() << std::right << std::setw(10) << source.perDollar << '\n';
  }

  ztb::Record milk = *diet.symbol("price").find("Milk");
  std::cout << "\nMilk costs " << milk.level() << " cents; from now on 12.5.\n";
  milk.setLevel(12.5);

  // Writing over the source reads what is still in it first; each label is checked against its set.
  diet.write(file, true);
  std::cout << "Written over " << file << ", with the new parameter best.\n";
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) {
    std::cerr << "usage: diet FILE.rxf\n";
    return 2;
  }
  try {
    run(argv[1]);
    return EXIT_SUCCESS;
  } catch (const std::exception& error) {
    std::cerr << "diet: " << error.what() << '\n';
    return EXIT_FAILURE;
  }
}
