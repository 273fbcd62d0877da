// Attacks the reader of exchange files with damaged and forged files, through the exported names
// and the C++ wrapper, on all three stores:
//
//   ztb_attack damage SEED COUNT    files that a disk or a transfer damaged
//   ztb_attack forge SEED COUNT     files that someone changed, with right checksums
//   ztb_attack emit SEED COUNT DIR  writes damaged files DIR/0.rxf, ... and DIR/base0.rxf, ...
//
// Prints a line of counts as JSON. The exit code is 0 when no door broke a promise and no process
// died.
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <charconv>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include "tests/attack/base_files.h"
#include "tests/attack/damage.h"
#include "tests/attack/doors.h"

namespace {

using attack::Verdict;

constexpr int kCasesInChild = 500;
constexpr int kStores = 3;
constexpr int kDoors = 2;
// A child that hangs is ended by the system.
constexpr rlim_t kSecondsOfChild = 300;
// More than any good file here needs; a forged one must not take more.
constexpr rlim_t kMemoryOfChild = rlim_t{6} << 30U;

std::string contentOf(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(in), {}};
}

// A folder in memory where there is one, since the cases are many.
std::string makeFolder() {
  std::string name = std::filesystem::is_directory("/dev/shm") ? "/dev/shm/ztb-attack-XXXXXX"
                                                               : "/tmp/ztb-attack-XXXXXX";
  if (mkdtemp(name.data()) == nullptr) {
    throw std::runtime_error("no folder " + name);
  }
  return name;
}

class Folder {
 public:
  Folder() : path_(makeFolder()) {}
  Folder(const Folder&) = delete;
  Folder& operator=(const Folder&) = delete;
  ~Folder() { std::filesystem::remove_all(path_); }
  [[nodiscard]] std::string file(const std::string& name) const { return path_ + "/" + name; }

 private:
  std::string path_;
};

struct Counts {
  long cases = 0;
  long openRefused = 0;
  long readRefused = 0;
  long delivered = 0;
  long broken = 0;
};

Verdict readThrough(int door, const std::string& file, int store, const std::string& scratch) {
  return door == 0 ? attack::readThroughC(file, store, scratch)
                   : attack::readThroughCpp(file, store, scratch);
}

// One kind of attack: what it makes of a base file, and whether a file that is delivered whole must
// be the base.
struct Attack {
  attack::Variant (attack::Damager::*make)();
  bool deliversBaseOnly;
};

class Campaign {
 public:
  Campaign(const Attack& attack, std::uint64_t seed) : attack_(attack) {
    for (int number = 0; number < attack::kBaseFiles; ++number) {
      const std::string path = folder_.file("base");
      attack::writeBaseFile(number, path);
      damagers_.emplace_back(contentOf(path), seed * 100 + static_cast<std::uint64_t>(number));
      for (int door = 0; door < kDoors; ++door) {
        const Verdict verdict = readThrough(door, path, 0, folder_.file("scratch"));
        if (verdict.kind != Verdict::delivered) {
          throw std::runtime_error("a good file is refused: " + verdict.text);
        }
        baseDigests_[{number, door}] = verdict.digest;
      }
    }
  }

  // Runs a batch in a process of its own.
  Counts runInChild(long first, long count) {
    std::array<int, 2> ends{};
    if (pipe(ends.data()) != 0) {
      throw std::runtime_error("no pipe");
    }
    const pid_t child = fork();
    if (child == 0) {
      close(ends[0]);
      const rlimit seconds{.rlim_cur = kSecondsOfChild, .rlim_max = kSecondsOfChild};
      setrlimit(RLIMIT_CPU, &seconds);
#ifndef ZTB_ADDRESS_SANITIZER
      const rlimit memory{.rlim_cur = kMemoryOfChild, .rlim_max = kMemoryOfChild};
      setrlimit(RLIMIT_AS, &memory);
#endif
      const Counts counts = run(first, count);
      const bool told = write(ends[1], &counts, sizeof counts) == sizeof counts;
      _exit(told ? 0 : 1);
    }
    close(ends[1]);
    Counts counts;
    const bool told = read(ends[0], &counts, sizeof counts) == sizeof counts;
    close(ends[0]);
    int status = 0;
    waitpid(child, &status, 0);
    if (!told || status != 0) {
      std::fprintf(stderr, "cases %ld to %ld: the process ended with status %d at %s\n", first,
                   first + count - 1, status, folder_.file("case").c_str());
      counts = {.cases = count, .openRefused = 0, .readRefused = 0, .delivered = 0, .broken = 1};
    }
    // The generators went on in the child alone.
    for (long number = first; number < first + count; ++number) {
      (damagers_[baseOf(number)].*attack_.make)();
    }
    return counts;
  }

 private:
  // The file with many records costs most and gets one case in eight.
  static std::size_t baseOf(long number) {
    static constexpr std::array<std::size_t, 8> kBases{0, 1, 0, 2, 0, 1, 0, 3};
    return kBases.at(static_cast<std::size_t>(number % 8));
  }

  Counts run(long first, long count) {
    Counts counts;
    for (long number = first; number < first + count; ++number) {
      const std::size_t base = baseOf(number);
      const attack::Variant variant = (damagers_[base].*attack_.make)();
      const std::string path = folder_.file("case");
      std::ofstream(path, std::ios::binary | std::ios::trunc) << variant.bytes;
      const int door = static_cast<int>(number / 8 % kDoors);
      const int store = static_cast<int>(number / 16 % kStores);
      Verdict verdict = readThrough(door, path, store, folder_.file("scratch"));
      if (verdict.kind == Verdict::delivered && attack_.deliversBaseOnly &&
          verdict.digest != baseDigests_[{static_cast<int>(base), door}]) {
        verdict = {.kind = Verdict::broken, .digest = 0, .text = "other content is delivered"};
      }
      count_(counts, verdict);
      if (verdict.kind == Verdict::broken) {
        std::fprintf(stderr, "case %ld (base %zu, %s, door %d, store %d): %s\n", number, base,
                     variant.kind, door, store, verdict.text.c_str());
      }
    }
    return counts;
  }

  static void count_(Counts& counts, const Verdict& verdict) {
    ++counts.cases;
    switch (verdict.kind) {
      case Verdict::openRefused:
        ++counts.openRefused;
        break;
      case Verdict::readRefused:
        ++counts.readRefused;
        break;
      case Verdict::delivered:
        ++counts.delivered;
        break;
      case Verdict::broken:
        ++counts.broken;
        break;
    }
  }

  Attack attack_;
  Folder folder_;
  std::vector<attack::Damager> damagers_;
  std::map<std::pair<int, int>, std::uint64_t> baseDigests_;
};

int runCampaign(const char* name, const Attack& attack, std::uint64_t seed, long count) {
  Campaign campaign(attack, seed);
  Counts all;
  for (long first = 0; first < count; first += kCasesInChild) {
    const Counts counts = campaign.runInChild(first, std::min<long>(kCasesInChild, count - first));
    all.cases += counts.cases;
    all.openRefused += counts.openRefused;
    all.readRefused += counts.readRefused;
    all.delivered += counts.delivered;
    all.broken += counts.broken;
  }
  std::printf(
      "{\"attack\": \"%s\", \"cases\": %ld, \"refused at open\": %ld, \"refused at read\": %ld, "
      "\"delivered\": %ld, \"broken\": %ld}\n",
      name, all.cases, all.openRefused, all.readRefused, all.delivered, all.broken);
  return all.broken == 0 ? 0 : 1;
}

int emit(std::uint64_t seed, long count, const std::string& folder) {
  std::vector<attack::Damager> damagers;
  for (int number = 0; number < attack::kBaseFiles; ++number) {
    const std::string path = folder + "/base" + std::to_string(number) + ".rxf";
    attack::writeBaseFile(number, path);
    damagers.emplace_back(contentOf(path), seed * 100 + static_cast<std::uint64_t>(number));
  }
  for (long number = 0; number < count; ++number) {
    const attack::Variant variant = damagers[static_cast<std::size_t>(number % 3)].damaged();
    std::ofstream(folder + "/" + std::to_string(number) + ".rxf", std::ios::binary)
        << variant.bytes;
  }
  return 0;
}

long numberOf(const char* text) {
  long number = -1;
  std::from_chars(text, text + std::strlen(text), number);
  return number;
}

}  // namespace

int main(int argc, char** argv) {
  const std::string mode = argc > 3 ? argv[1] : "";
  const long seed = argc > 3 ? numberOf(argv[2]) : -1;
  const long count = argc > 3 ? numberOf(argv[3]) : -1;
  try {
    if (seed >= 0 && count > 0 && mode == "damage") {
      return runCampaign("damaged files", {&attack::Damager::damaged, true},
                         static_cast<std::uint64_t>(seed), count);
    }
    if (seed >= 0 && count > 0 && mode == "forge") {
      return runCampaign("forged files", {&attack::Damager::forged, false},
                         static_cast<std::uint64_t>(seed), count);
    }
    if (seed >= 0 && count > 0 && mode == "emit" && argc == 5) {
      return emit(static_cast<std::uint64_t>(seed), count, argv[4]);
    }
  } catch (const std::exception& error) {
    std::fprintf(stderr, "ztb_attack: %s\n", error.what());
    return 1;
  }
  std::fputs("usage: ztb_attack damage|forge SEED COUNT, ztb_attack emit SEED COUNT DIR\n", stderr);
  return 2;
}
