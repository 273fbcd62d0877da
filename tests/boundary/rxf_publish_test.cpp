// An exchange file is replaced only by one that is whole and was wanted, and a write whose file did
// not come to stand is a failed write.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sched.h>
#include <sys/mount.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include "tests/support/database.h"
#include "tests/support/temp_folder.h"
#include "tests/support/text_buffer.h"

namespace ztbtest {
namespace {

constexpr int check = 0;
constexpr int noCheck = 1;
constexpr uid_t otherUser = 65534;

std::string bytes(const std::string& file) {
  std::ifstream in(file, std::ios::binary);
  return {std::istreambuf_iterator<char>(in), {}};
}

int write(const Database& db, const std::string& file, int noDomainCheck) {
  return lib().c__ztbwriterxf(db, file.c_str(), noDomainCheck);
}

class PublishRxf : public testing::Test {
 protected:
  void SetUp() override { std::ofstream(file) << "old"; }

  void expectOldFileAlone() const {
    EXPECT_EQ("old", bytes(file));
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(folder.path())) {
      names.push_back(entry.path().filename().string());
    }
    EXPECT_EQ((std::vector<std::string>{"x.rxf"}), names);
  }

  TempFolder folder;
  std::string file = folder.file("x.rxf");
};

// Runs a step in a process of its own, and gives its text ("" on success).
template <typename Step>
std::string inChild(const Step& step) {
  std::array<int, 2> ends{};
  if (pipe(ends.data()) != 0) {
    return "no pipe";
  }
  const pid_t child = fork();
  if (child == 0) {
    close(ends[0]);
    const std::string text = step();
    const bool told = ::write(ends[1], text.data(), text.size()) >= 0;
    _exit(told ? 0 : 1);
  }
  close(ends[1]);
  std::string text;
  std::array<char, 512> piece{};
  for (ssize_t got = 0; (got = read(ends[0], piece.data(), piece.size())) > 0;) {
    text.append(piece.data(), static_cast<std::size_t>(got));
  }
  close(ends[0]);
  int status = 0;
  waitpid(child, &status, 0);
  return WIFEXITED(status) && WEXITSTATUS(status) == 0 ? text : text + " (ended unexpectedly)";
}

// The text of a write that fails; "written" of one that succeeds.
std::string failedWrite(const std::string& file) {
  Database db;
  db.put(db.addParameter("p"), {"a"}, 1.0);
  return write(db, file, noCheck) == 0 ? db.lastError() : "written";
}

TEST_F(PublishRxf, aRecordOutsideItsDomainFailsACheckedWriteAndKeepsTheOldFile) {
  Database db;
  void* const set = db.addSet("i");
  db.put(set, {"a"});
  void* const data = db.addOver("p", ZTB_PARAMETER, {set});
  db.put(data, {"a"}, 1.0);
  db.put(data, {"b"}, 2.0);
  EXPECT_FAILURE(db,
                 "1 RXF Error(s). First Error: Record outside its domain: p, label >b< at position "
                 "1 is not in i",
                 write(db, file, check));
  expectOldFileAlone();
  EXPECT_SUCCESS(db, write(db, file, noCheck));
  Database again(file);
  EXPECT_EQ((std::vector<Row>{{{"a"}, 1.0}, {{"b"}, 2.0}}), again.rows(again.find("p")));
}

TEST_F(PublishRxf, aRecordOfALabelThatIsNoneKeepsTheOldFile) {
  Database db;
  const int key = 50;
  ASSERT_EQ(1,
            lib().c__ztbmergerecordint(db, db.addParameter("q"), &key, 0, 0, nullptr, 0, nullptr));
  EXPECT_FAILURE(db,
                 "1 RXF Error(s). First Error: Key outside the registered labels: q, key 50 at "
                 "position 1, expected 1 to 0",
                 write(db, file, noCheck));
  expectOldFileAlone();
}

TEST_F(PublishRxf, domainNamesThatAreNoSymbolNamesAreKept) {
  const std::string longest(255, 'n');
  const std::vector<const char*> wanted = {"my dom", "1999", "_x", "", longest.c_str()};
  Database db;
  void* const data = db.addOverNames("p", ZTB_PARAMETER, wanted);
  db.put(data, {"a", "b", "c", "d", "e"}, 1.0);
  for (const int checking : {check, noCheck}) {
    EXPECT_SUCCESS(db, write(db, file, checking));
    Database again(file);
    std::array<void*, 5> domains{};
    domains.fill(data);
    TextBuffers names;
    ASSERT_EQ(1, lib().c__ztbgetdomain(again, again.find("p"), 5, domains.data(), names));
    for (std::size_t d = 0; d < wanted.size(); ++d) {
      EXPECT_EQ(nullptr, domains[d]);
      EXPECT_STREQ(wanted[d], names[d]);
    }
  }
}

TEST_F(PublishRxf, aMountPointCannotBeReplacedAndTheWriteSaysSo) {
  const std::string text = inChild([&]() -> std::string {
    const int spaces = geteuid() == 0 ? CLONE_NEWNS : CLONE_NEWNS | CLONE_NEWUSER;
    std::ofstream(folder.file("mounted")) << "old";
    if (unshare(spaces) != 0 || mount("", "/", "", MS_REC | MS_PRIVATE, nullptr) != 0 ||
        mount(folder.file("mounted").c_str(), file.c_str(), "", MS_BIND, nullptr) != 0) {
      return "this system gives no mount points to its processes";
    }
    return failedWrite(file);
  });
  EXPECT_EQ("1 RXF Error(s). First Error: Writing failed: " + file +
                " is a mount point, which a new file cannot take the place of by renaming; write "
                "to another name",
            text);
  EXPECT_EQ("old", bytes(folder.file("mounted")));
  std::filesystem::remove(folder.file("mounted"));
  expectOldFileAlone();
}

// Only root can become another user; tests/rxf/output_file_test.cpp has the same with system calls
// that answer so.
TEST_F(PublishRxf, aFileOfAnotherUserInAStickyFolderCannotBeReplacedAndTheWriteSaysSo) {
  if (geteuid() == 0) {
    ASSERT_EQ(0, chmod(folder.path().c_str(), 01777));
    ASSERT_EQ(0, chmod(file.c_str(), 0666));
    const std::string text = inChild([&]() -> std::string {
      return setuid(otherUser) == 0 ? failedWrite(file) : "no other user";
    });
    EXPECT_EQ("1 RXF Error(s). First Error: No permission: " + file +
                  " cannot be replaced: it belongs to another user and lies in a sticky folder",
              text);
  }
  expectOldFileAlone();
}

TEST_F(PublishRxf, aFileSizeLimitIsAFailureAndNoDeath) {
  const std::string text = inChild([&] {
    const struct rlimit limit = {100, 100};
    std::signal(SIGXFSZ, SIG_DFL);
    return setrlimit(RLIMIT_FSIZE, &limit) == 0 ? failedWrite(file) : "no limit";
  });
  EXPECT_EQ("1 RXF Error(s). First Error: Writing failed: " + file + ": File too large", text);
  expectOldFileAlone();
}

// The symbols behind the one that did not fit are not what is told.
TEST_F(PublishRxf, aLimitThatIsMetBeforeTheLastSymbolIsToldAsWhatItIs) {
  const std::string text = inChild([&]() -> std::string {
    Database db;
    void* many = db.addParameter("p");
    constexpr int count = 70000;
    for (int i = 1; i <= count; ++i) {
      db.put(many, {std::to_string(i).c_str()}, 1.0 / i);
    }
    db.put(db.addParameter("q"), {"1"}, 1.0);
    db.addAlias("j", db.addSet("i"));
    const struct rlimit limit = {4096, 4096};
    if (setrlimit(RLIMIT_FSIZE, &limit) != 0) return "no limit";
    return write(db, file, noCheck) == 0 ? db.lastError() : "written";
  });
  EXPECT_EQ("1 RXF Error(s). First Error: Writing failed: " + file + ": File too large", text);
  expectOldFileAlone();
}

TEST_F(PublishRxf, aTypeThatAFileCannotHoldIsToldWithItsSymbol) {
  for (const int type : {5, -1, 99}) {
    Database other;
    other.add("odd", 1, type);
    EXPECT_FAILURE(
        other,
        "Error writing symbol odd to RXF: a file holds no symbol of type " + std::to_string(type),
        write(other, file, noCheck));
    expectOldFileAlone();
  }
}

TEST_F(PublishRxf, anAliasThatLostItsSetIsTold) {
  Database db;
  void* alias = db.addAlias("j", db.addSet("i"));
  ASSERT_EQ(1, lib().c__ztbselectrecordstorage(db, &alias, ZTB_STORAGE_VECTOR));
  EXPECT_FAILURE(db,
                 "Error writing alias j of set j to RXF: the alias lost its set when it was moved "
                 "to another record storage",
                 write(db, file, noCheck));
  expectOldFileAlone();
}

TEST_F(PublishRxf, anEmptyDatabaseReplacesTheFile) {
  Database db;
  EXPECT_SUCCESS(db, write(db, file, check));
  const Database again(file);
  EXPECT_EQ(0, again.info(ZTB_INFO_SYMBOL_COUNT_WITH_ALIAS));
}

}  // namespace
}  // namespace ztbtest
