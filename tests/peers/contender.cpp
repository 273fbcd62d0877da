#include "tests/peers/contender.h"

#include <gtest/gtest.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <cstdint>
#include <fstream>
#include <future>
#include <string>
#include <thread>
#include <utility>

using ztb::peers::platform::Lock;

namespace peertest {
namespace {

constexpr std::chrono::minutes timeToGiveUp{1};

// The address that a thread of this process sleeps on; null while it does anything else. The
// system tells a thread's call and its arguments only while the thread is at rest in it.
const std::byte* sleepingOn(pid_t thread) {
  std::ifstream in("/proc/self/task/" + std::to_string(thread) + "/syscall");
  long call = -1;
  std::string address;
  if (!(in >> call >> address) || call != SYS_futex) return nullptr;
  return reinterpret_cast<const std::byte*>(std::stoull(address, nullptr, 16));
}

bool isWithin(const std::byte* address, const Lock* lock) {
  const auto begin = reinterpret_cast<std::uintptr_t>(lock);
  const auto at = reinterpret_cast<std::uintptr_t>(address);
  return at >= begin && at < begin + sizeof *lock;
}

}  // namespace

struct Contender::State {
  std::atomic<pid_t> thread = 0;
  std::promise<void> end;
  std::shared_future<void> ended = end.get_future().share();
};

Contender::Contender(std::function<void()> work) : state_(std::make_shared<State>()) {
  std::thread([state = state_, work = std::move(work)] {
    state->thread = static_cast<pid_t>(syscall(SYS_gettid));
    work();
    state->end.set_value();
  }).detach();
}

bool Contender::waitsAt(std::initializer_list<const Lock*> locks) const {
  const auto last = std::chrono::steady_clock::now() + timeToGiveUp;
  while (std::chrono::steady_clock::now() < last) {
    if (state_->ended.wait_for(std::chrono::milliseconds(1)) == std::future_status::ready) {
      return false;
    }
    const pid_t thread = state_->thread;
    const std::byte* address = thread == 0 ? nullptr : sleepingOn(thread);
    for (const Lock* lock : locks) {
      if (isWithin(address, lock)) return true;
    }
  }
  ADD_FAILURE() << "the thread neither waits at a lock nor ends";
  return false;
}

bool Contender::ends() const {
  return state_->ended.wait_for(timeToGiveUp) == std::future_status::ready;
}

void expectWaitsFor(Lock& lock, const std::function<void()>& use) {
  const Contender contender(use);
  EXPECT_TRUE(contender.waitsAt({&lock})) << "came through while the lock was held";
  lock.leave();
  ASSERT_TRUE(contender.ends()) << "waits although the lock was left";
}

}  // namespace peertest
