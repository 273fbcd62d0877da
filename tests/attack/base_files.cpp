#include "tests/attack/base_files.h"

#include <array>
#include <limits>
#include <vector>
#include <ztb/ztb.hpp>

namespace attack {

namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();

void fillKinds(ztb::Database& db) {
  ztb::Symbol food = db.addSet("food", {"*"}, "Things to eat");
  ztb::Symbol place = db.addSet("place", {"anywhere"});
  food.add("milk").setText("1 qt.");
  food.add("bread");
  food.add("it's").setText("with \"quotes\"");
  place.add("north");
  place.add("south").setText("1 qt.");
  db.addAlias("f", food);
  db.addAlias("every", db.universe());
  ztb::Symbol price = db.addParameter("price", {food, place}, "Cents");
  price.add("milk", "north").setLevel(11);
  price.add("milk", "south").setLevel(-0.0);
  price.add("bread", "north").setLevel(kInfinity);
  price.add("it's", "south").setLevel(std::numeric_limits<double>::denorm_min());
  db.addSymbol("pi", ztb::Type::parameter, {}).add().setLevel(3.14159);
  ztb::Symbol buy = db.addVariable("buy", 3, {food});
  buy.add("milk").setLevel(2.5);
  buy.add("bread").setUpper(7);
  db.addEquation("need", 2, {"*"}).add("south").setMarginal(1e-9);
  db.addParameter("none", {"*", "*", "*"}, "no records");
}

void fillWide(ztb::Database& db) {
  const std::vector<ztb::DomainArgument> domains(20, "*");
  ztb::Symbol wide = db.addSymbol("wide", ztb::Type::variable, domains, "", 5);
  std::array<int, 20> keys{};
  std::vector<int> labels;
  for (int i = 0; i < 30; ++i) {
    labels.push_back(db.mergeLabel("l" + std::to_string(i)));
  }
  for (int record = 0; record < 700; ++record) {
    for (std::size_t d = 0; d < keys.size(); ++d) {
      keys.at(d) = labels[static_cast<std::size_t>(record * 7 + static_cast<int>(d * d)) % 30];
    }
    keys[18] = labels[static_cast<std::size_t>(record / 30)];
    keys[19] = labels[static_cast<std::size_t>(record % 30)];
    wide.put(keys, {record * 0.5, 1.0 / (record + 1), -kInfinity, kInfinity, 1});
  }
}

void fillBlocks(ztb::Database& db) {
  std::vector<int> labels;
  for (int i = 0; i < 70000; ++i) {
    labels.push_back(db.mergeLabel("label " + std::to_string(i)));
  }
  ztb::Symbol many = db.addSet("many", {"*"});
  for (int i = 0; i < 70000; ++i) {
    const std::string text = "text " + std::to_string(i % 500);
    many.putElement(std::array{labels[static_cast<std::size_t>(i)]},
                    i % 3 == 0 ? text.c_str() : nullptr);
  }
  ztb::Symbol cells = db.addParameter("cells", {many, "*"});
  for (int i = 0; i < 66000; ++i) {
    cells.put(std::array{labels[static_cast<std::size_t>(i / 200)],
                         labels[static_cast<std::size_t>(i % 200 * 3)]},
              i * 0.37 + (i % 11 == 0 ? 1e-9 : 0));
  }
}

}  // namespace

void writeBaseFile(int number, const std::string& path) {
  ztb::Database db;
  switch (number) {
    case 0:
      fillKinds(db);
      break;
    case 1:
      fillWide(db);
      break;
    case 2:
      fillBlocks(db);
      break;
    default:
      for (int i = 0; i < 100; ++i) {
        db.mergeLabel("only " + std::to_string(i));
      }
      break;
  }
  db.write(path);
}

}  // namespace attack
