// Workers of a sweep, and how their ends are told.
#include "tools/sweep/worker_processes.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <chrono>
#include <functional>
#include <stdexcept>
#include <string>
#include <vector>

namespace {

using tool::WorkerChannel;
using tool::WorkerMessage;
using tool::WorkerProcesses;

// Kind and text of each message of a worker, in a row.
std::vector<std::string> messagesOf(const std::function<void(const WorkerChannel&)>& work) {
  WorkerProcesses workers;
  workers.start({.work = work, .request = {}});
  std::vector<std::string> messages;
  while (workers.busy()) {
    const auto message = workers.next(std::chrono::seconds(1));
    if (message) messages.push_back(message->kind + message->text);
  }
  return messages;
}

TEST(WorkerProcesses, OneThatCameToItsEndSaysWhatItSent) {
  EXPECT_EQ(messagesOf([](const WorkerChannel& channel) { channel.send('a', "one"); }),
            std::vector<std::string>{"aone"});
}

TEST(WorkerProcesses, OneThatThrowsHasFailed) {
  EXPECT_EQ(messagesOf([](const WorkerChannel&) { throw std::runtime_error("no way"); }),
            std::vector<std::string>{"!no way"});
}

TEST(WorkerProcesses, OneThatEndsBeforeItIsThroughHasDiedWhateverItsCode) {
  EXPECT_EQ(messagesOf([](const WorkerChannel& channel) {
              channel.send('a', "one");
              _exit(0);
            }),
            (std::vector<std::string>{"aone", "#its worker process ended with exit code 0"}));
  EXPECT_EQ(messagesOf([](const WorkerChannel&) { _exit(3); }),
            std::vector<std::string>{"#its worker process ended with exit code 3"});
}

}  // namespace
