// Threads that begin their work at the same moment.
#ifndef ZTB_TESTS_THREADS_TOGETHER_H_
#define ZTB_TESTS_THREADS_TOGETHER_H_

#include <gtest/gtest.h>

#include <condition_variable>
#include <exception>
#include <mutex>
#include <thread>
#include <vector>

namespace threadtest {

// Calls work(0) to work(count - 1), each on a thread of its own, and waits for them. An exception
// is a failure of the test.
template <class Work>
void together(int count, const Work& work) {
  // No std::latch: that of the compiler for Windows loses wakings.
  std::mutex mutex;
  std::condition_variable allAreHere;
  int missing = count;
  std::vector<std::thread> threads;
  for (int number = 0; number < count; ++number) {
    threads.emplace_back([&, number] {
      {
        std::unique_lock lock(mutex);
        if (--missing == 0) allAreHere.notify_all();
        allAreHere.wait(lock, [&] { return missing == 0; });
      }
      try {
        work(number);
      } catch (const std::exception& error) {
        ADD_FAILURE() << "thread " << number << ": " << error.what();
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
}

}  // namespace threadtest

#endif  // ZTB_TESTS_THREADS_TOGETHER_H_
