// Of several processes that begin at once one solves the unchanged model, and another one when that
// dies: the others wait.
#include <fcntl.h>
#include <gmock/gmock.h>
#include <signal.h>
#include <sys/file.h>
#include <sys/inotify.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <functional>
#include <string>
#include <thread>
#include <vector>
#include <ztb/sweep.hpp>
#include <ztb/ztb.hpp>

#include "tests/support/temp_folder.h"

namespace {

namespace fs = std::filesystem;

constexpr int kTasks = 3;

class BasisLockTest : public testing::Test {
 protected:
  void SetUp() override {
    std::ofstream(path("m.lp")) << "Minimize\n z: a(i1) + a(i2) + a(i3)\nSubject To\n"
                                   " c: a(i1) + a(i2) + a(i3) - wanted_var >= 0\nBounds\n"
                                   " wanted_var = 3\n a(i1) <= 4\n a(i2) <= 3\n a(i3) <= 4\nEnd\n";
    ztb::Database database;
    ztb::Symbol set = database.addSet("s", {"*"});
    ztb::Symbol wanted = database.addParameter("wanted", {set});
    for (int number = 0; number < kTasks; ++number) {
      set.add("s" + std::to_string(number));
      wanted.add("s" + std::to_string(number)).setLevel(1 + number);
    }
    database.write(path("sc.rxf"));
    fs::create_directory(path("parts"));
    ztb::Sweep sweep;
    open(sweep);
    basis_ = sweep.key() + ".basis";
    lock_ = path("parts/." + basis_ + ".lock");
    events_ = inotify_init1(IN_NONBLOCK | IN_CLOEXEC);
    ASSERT_GE(inotify_add_watch(events_, path("parts").c_str(), IN_MOVED_TO), 0);
  }
  void TearDown() override {
    for (const pid_t process : processes_) {
      kill(process, SIGKILL);
      waitpid(process, nullptr, 0);
    }
    close(events_);
  }

  std::string path(const std::string& name) const { return folder_.file(name); }

  void open(ztb::Sweep& sweep) const {
    sweep.option("model", path("m.lp")).option("scenarios", path("sc.rxf")).option("over", "s");
    sweep.option("report", "a").option("chunk", "1").open();
  }

  pid_t start(const std::function<void()>& work) {
    const pid_t process = fork();
    if (process == 0) {
      try {
        work();
        _exit(0);
      } catch (...) {
        _exit(1);
      }
    }
    processes_.push_back(process);
    return process;
  }

  // A process that holds the lock until it is killed; it holds it when this returns.
  pid_t startHolder() {
    std::array<int, 2> ends{};
    EXPECT_EQ(pipe(ends.data()), 0);
    const pid_t holder = start([&] {
      const int lock = ::open(lock_.c_str(), O_RDWR | O_CREAT, 0666);
      if (flock(lock, LOCK_EX) == 0 && write(ends[1], "x", 1) == 1) pause();
    });
    close(ends[1]);
    char byte = 0;
    EXPECT_EQ(::read(ends[0], &byte, 1), 1);
    close(ends[0]);
    return holder;
  }

  pid_t startTask(int chunk) {
    return start([this, chunk] {
      ztb::Sweep sweep;
      open(sweep);
      sweep.solve(path("parts"), chunk);
      sweep.publish(path("parts"));
    });
  }

  // Whether a process has come to the lock, and has not ended.
  bool isAtLock(pid_t process) const {
    const std::string folder = "/proc/" + std::to_string(process) + "/fd";
    std::error_code error;
    for (const auto& entry : fs::directory_iterator(folder, error)) {
      if (fs::read_symlink(entry.path(), error) == fs::path(lock_)) return true;
    }
    return false;
  }

  // Kills a process; how another one ended.
  void end(pid_t process) {
    kill(process, SIGKILL);
    statusOf(process);
  }
  int statusOf(pid_t process) {
    int status = -1;
    waitpid(process, &status, 0);
    std::erase(processes_, process);
    return status;
  }

  // How often a basis has come to be.
  int basesMade() const {
    int count = 0;
    alignas(inotify_event) std::array<char, 65536> buffer{};
    const ssize_t length = ::read(events_, buffer.data(), buffer.size());
    for (ssize_t at = 0; at < length;) {
      const auto* event = reinterpret_cast<const inotify_event*>(buffer.data() + at);
      if (event->name == basis_) ++count;
      at += static_cast<ssize_t>(sizeof(inotify_event) + event->len);
    }
    return count;
  }

  ztbtest::TempFolder folder_;
  std::string basis_;
  std::string lock_;
  int events_ = -1;
  std::vector<pid_t> processes_;
};

TEST_F(BasisLockTest, WhenTheOneThatSolvesTheModelDiesAnotherOneDoesForAll) {
  const pid_t holder = startHolder();
  std::vector<pid_t> tasks;
  for (int chunk = 0; chunk < kTasks; ++chunk) tasks.push_back(startTask(chunk));
  for (const pid_t task : tasks) {
    while (!isAtLock(task)) {
      ASSERT_EQ(waitpid(task, nullptr, WNOHANG), 0) << "a task does not wait for the basis";
      std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
  }
  EXPECT_EQ(basesMade(), 0);
  end(holder);
  for (const pid_t task : tasks) EXPECT_EQ(statusOf(task), 0);
  EXPECT_EQ(basesMade(), 1);
  EXPECT_FALSE(fs::exists(lock_));
  ztb::Sweep sweep;
  open(sweep);
  sweep.find(path("parts"));
  for (int number = 0; number < kTasks; ++number) {
    ASSERT_TRUE(sweep.outcome(number)) << number;
    EXPECT_NEAR(*sweep.outcome(number)->objective, 1 + number, 1e-9);
  }
}

// The file stays its holder's: who no longer waits does not take it away from the others.
TEST_F(BasisLockTest, WhoIsStoppedWhileItWaitsLeavesTheLockAlone) {
  const pid_t holder = startHolder();
  ztb::Sweep sweep;
  open(sweep);
  sweep.stop();
  EXPECT_FALSE(sweep.solve(path("parts"), 0));
  EXPECT_TRUE(fs::exists(lock_));
  end(holder);
  EXPECT_EQ(basesMade(), 0);
}

}  // namespace
