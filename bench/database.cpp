#include "bench/database.h"

#include <stdexcept>

#include "bench/contest.h"

namespace bench {

Database::Database() {
  char message[256] = {};
  if (ztbcreate(&handle_, message, sizeof message) == 0) {
    throw std::runtime_error(message);
  }
}

Database::~Database() {
  ztbfree(&handle_);
}

void Database::fail() const {
  char message[256] = {};
  c__ztbgetlasterror(handle_, message);
  throw std::runtime_error(message);
}

void Database::addLabels(const Data& data) {
  for (const std::string& label : data.labels) {
    int number = 0;
    require(c__ztbmergeuel(handle_, label.c_str(), &number));
  }
}

void* Database::addParameter(const char* name) {
  void* symbol = nullptr;
  require(c__ztbaddsymbol(handle_, name, dimension, ZTB_PARAMETER, 0, "", &symbol));
  return symbol;
}

void Database::addRecords(void* symbol, const Data& data, std::size_t first, std::size_t last) {
  double values[5] = {};
  for (std::size_t i = first; i < last; ++i) {
    values[0] = data.values[i];
    require(c__ztbmergerecordint(handle_, symbol, data.keys[i].data(), 0, 0, nullptr, 1, values));
  }
}

FilledDatabase& filledDatabase(const Data& data) {
  static Shared<FilledDatabase> shared;
  return shared.get(data, [](const Data& wanted) {
    auto filled = std::make_unique<FilledDatabase>();
    filled->database.addLabels(wanted);
    filled->symbol = filled->database.addParameter("supply");
    filled->database.addRecords(filled->symbol, wanted, 0, wanted.size());
    return filled;
  });
}

}  // namespace bench
