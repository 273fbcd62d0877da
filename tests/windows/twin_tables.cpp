// Writes exchange files in each format, or reads them: what one system wrote the other reads as the
// same databases, bit for bit.
//
//   twin_tables make FOLDER            makes the exchange files
//   twin_tables write FOLDER TARGET    writes each of them in each format
//   twin_tables read FOLDER SOURCE     holds what another system wrote against them

#include <cstdio>
#include <exception>
#include <string>
#include <ztb/formats.hpp>
#include <ztb/ztb.hpp>

#include "tests/formats/random_database.h"
#include "tests/support/temp_folder.h"

namespace {

constexpr unsigned databases = 12;
constexpr const char* endings[] = {".db",        ".xlsx", ".jsonl",  ".jsonl.gz",
                                   ".jsonl.zst", "/",     "_parquet"};

void write(const std::string& rxf, const std::string& target) {
  ztb::Formats job({{"all", ""}, {"to", target}});
  if (target.ends_with("_parquet")) job.option("format", "parquet");
  job.exportFrom(rxf);
}

// Whether there is the same in an exchange file and in another one.
bool isSame(const std::string& rxf, const std::string& source) {
  const ztbtest::TempFolder folder;
  const std::string back = folder.file("back.rxf");
  ztb::Formats({{"from", source}}).importTo(back);
  return formatstest::describe(ztb::Database::open(back)) ==
         formatstest::describe(ztb::Database::open(rxf));
}

// How many files were wrong.
int run(const std::string& what, const std::string& folder, const std::string& other) {
  int wrong = 0;
  for (unsigned seed = 1; seed <= databases; ++seed) {
    const std::string name = "/" + std::to_string(seed);
    const std::string rxf = folder + name + ".rxf";
    if (what == "make") formatstest::randomDatabase(seed).write(rxf);
    for (const char* ending : endings) {
      const std::string file = other + name + ending;
      if (what == "write") write(rxf, file);
      if (what == "read" && !isSame(rxf, file)) {
        std::fprintf(stderr, "twin_tables: %s holds something else\n", file.c_str());
        ++wrong;
      }
    }
  }
  return wrong;
}

}  // namespace

int main(int count, char** arguments) {
  if (count < 3) {
    std::fprintf(stderr, "twin_tables: expected make, write or read, and folders\n");
    return 1;
  }
  try {
    return run(arguments[1], arguments[2], count > 3 ? arguments[3] : "") == 0 ? 0 : 1;
  } catch (const std::exception& error) {
    std::fprintf(stderr, "twin_tables: %s\n", error.what());
    return 1;
  }
}
