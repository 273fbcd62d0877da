// Records that cost nearly nothing in a file, and files of which little is wanted.
#include <fcntl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cstdint>
#include <fstream>
#include <random>
#include <string>
#include <ztb/ztb.hpp>

#include "tests/rxf/reseal.h"
#include "tests/tools/program.h"

namespace {

using tooltest::Outcome;
using tooltest::ProgramTest;

constexpr int kBlock = 65536;

// Programs started in its life get no more address space than this, but for those of sanitizers,
// which take terabytes of it.
class AddressSpaceLimit {
 public:
  explicit AddressSpaceLimit(rlim_t bytes) {
    EXPECT_EQ(getrlimit(RLIMIT_AS, &before_), 0);
    rlimit limit = before_;
#ifndef ZTB_ADDRESS_SANITIZER
    limit.rlim_cur = bytes;
#endif
    EXPECT_EQ(setrlimit(RLIMIT_AS, &limit), 0) << bytes;
  }
  AddressSpaceLimit(const AddressSpaceLimit&) = delete;
  AddressSpaceLimit& operator=(const AddressSpaceLimit&) = delete;
  ~AddressSpaceLimit() {
    setrlimit(RLIMIT_AS, &before_);
  }

 private:
  rlimit before_{};
};

class ManyRecordsTest : public ProgramTest {
 protected:
  // A little-endian number in the bytes of a file.
  static std::uint64_t number(const std::string& bytes, std::size_t at, std::size_t size) {
    std::uint64_t value = 0;
    while (size-- > 0) value = value << 8U | static_cast<unsigned char>(bytes[at + size]);
    return value;
  }
  static void put(std::string& bytes, std::size_t at, std::size_t size, std::uint64_t value) {
    for (; size-- > 0; value >>= 8U) bytes[at++] = static_cast<char>(value & 0xFFU);
  }

  // big.rxf: p(*, *, *) = 1 over the cube of 512, 256 and 256 labels, 33,554,432 records. The one
  // block of its first 65,536 is repeated with other keys in front.
  void forge() const {
    {
      ztb::Database database;
      ztb::Symbol p = database.addParameter("p", {"*", "*", "*"});
      for (int label = 1; label <= kBlocks; ++label)
        database.mergeLabel("l" + std::to_string(label));
      for (int i = 1; i <= 256; ++i) {
        for (int j = 1; j <= 256; ++j) p.put(std::array{1, i, j}, 1);
      }
      database.write(path("one.rxf"));
    }
    // Header, frame and entry of a symbol as docs/reference/rxf-format.md has them.
    std::string bytes = read("one.rxf");
    constexpr std::size_t block = 96;
    constexpr std::size_t head = 40;
    const std::size_t length = head + number(bytes, block + 16, 4);
    const std::string entry("\x01p\x01\0\0\0\0\0\x03", 9);
    const std::size_t counts = bytes.rfind(entry) + entry.size();
    ASSERT_LT(counts, bytes.size());
    ASSERT_EQ(number(bytes, counts, 4), std::uint64_t{kBlock});
    ASSERT_EQ(number(bytes, counts + 4, 8), block);
    put(bytes, counts, 4, std::uint64_t{kBlock} * kBlocks);
    put(bytes, counts + 12, 8, length * kBlocks);
    const std::size_t added = length * (kBlocks - 1);
    put(bytes, 24, 8, number(bytes, 24, 8) + added);
    put(bytes, 32, 8, number(bytes, 32, 8) + added);
    std::string blocks;
    for (std::uint64_t index = 0; index < kBlocks; ++index) {
      std::string frame = bytes.substr(block, length);
      put(frame, 8, 4, index);
      put(frame, head, 4, index + 1);
      blocks += frame;
    }
    bytes.replace(block, length, blocks);
    rxftest::reseal(bytes);
    EXPECT_LT(bytes.size() * 100, std::size_t{kBlock} * kBlocks) << "records for a byte";
    write("big.rxf", bytes);
  }

  // Bytes that a run reads, of files of any kind.
  std::uint64_t bytesRead(std::vector<const char*> arguments) const {
    arguments.insert(arguments.begin(), "ztb");
    arguments.push_back(nullptr);
    const pid_t child = fork();
    if (child == 0) {
      const int nothing = open("/dev/null", O_WRONLY);
      dup2(nothing, STDOUT_FILENO);
      if (chdir(path(".").c_str()) == 0) {
        execv(ZTB_PROGRAM, const_cast<char**>(arguments.data()));
      }
      _exit(127);
    }
    siginfo_t info{};
    EXPECT_EQ(waitid(P_PID, static_cast<id_t>(child), &info, WEXITED | WNOWAIT), 0);
    EXPECT_EQ(info.si_status, 0);
    std::ifstream io("/proc/" + std::to_string(child) + "/io");
    std::string word;
    std::uint64_t bytes = 0;
    EXPECT_TRUE(io >> word >> bytes && word == "rchar:");
    EXPECT_EQ(waitpid(child, nullptr, 0), child);
    return bytes;
  }

  static constexpr int kBlocks = 512;
};

TEST_F(ManyRecordsTest, InFewBytesAreLookedAtInLittleMemory) {
  forge();
  const AddressSpaceLimit limit(rlim_t{200} << 20U);
  EXPECT_EQ(ztbFine({"check", "big.rxf"}),
            "big.rxf: fine: 1 symbol, 512 labels, 33554432 records\n");
  EXPECT_NE(ztbFine({"info", "big.rxf"}).find(" 33554432 "), std::string::npos);
  EXPECT_EQ(ztbFine({"show", "big.rxf", "p", "--csv", "--head", "2"}),
            "dim_1,dim_2,dim_3,value\nl1,l1,l1,1\nl1,l1,l2,1\n");
  EXPECT_EQ(ztbFine({"copy", "big.rxf", "p", "copy.rxf"}),
            "copy.rxf: 1 symbol, 512 labels, 33554432 records\n");
}

TEST_F(ManyRecordsTest, InFewBytesFillADiskAndNoMemory) {
  forge();
  const AddressSpaceLimit limit(rlim_t{200} << 20U);
  rlimit before{};
  ASSERT_EQ(getrlimit(RLIMIT_FSIZE, &before), 0);
  rlimit few = before;
  few.rlim_cur = 10000000;
  ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &few), 0);
  expectFails(1, "ztb: out/p.csv: cannot be written: File too large\n",
              {"export", "big.rxf", "p", "--csv", "out"});
  setrlimit(RLIMIT_FSIZE, &before);
  EXPECT_FALSE(exists("out/p.csv"));
}

#ifndef ZTB_ADDRESS_SANITIZER
TEST_F(ManyRecordsTest, ThatDiffCannotSortAreToldWithTheirSymbol) {
  forge();
  ztb::Database database;
  database.mergeLabel("l2");
  database.addParameter("p", {"*", "*", "*"}).add("l1", "l1", "l1");
  database.write(path("small.rxf"));
  const AddressSpaceLimit limit(rlim_t{200} << 20U);
  expectFails(1,
              "ztb: big.rxf: symbol p: its 33554432 records do not fit into memory, where they are "
              "sorted\n",
              {"diff", "small.rxf", "big.rxf"});
}
#endif

TEST_F(ManyRecordsTest, AreNotReadBehindTheHead) {
  ztb::Database database;
  ztb::Symbol p = database.addParameter("p", {"*", "*"});
  for (int label = 1; label <= 1024; ++label) database.mergeLabel("l" + std::to_string(label));
  // Values that nothing compresses: eight blocks of half a megabyte.
  std::mt19937_64 random(5);
  std::uniform_real_distribution<double> level;
  for (int i = 1; i <= 512; ++i) {
    for (int j = 1; j <= 1024; ++j) p.put(std::array{i, j}, level(random));
  }
  database.write(path("a.rxf"));
  const std::size_t size = read("a.rxf").size();
  ASSERT_GT(size, std::size_t{8 * 400000});
  EXPECT_GT(bytesRead({"show", "a.rxf", "p", "--csv"}), size);
  EXPECT_LT(bytesRead({"show", "a.rxf", "p", "--csv", "--head", "1"}), size / 3);
  EXPECT_LT(bytesRead({"show", "a.rxf", "p", "--head", "1"}), size / 3);
  EXPECT_LT(bytesRead({"info", "a.rxf"}), size / 3);
}

}  // namespace
