#include "tools/sweep/worker_request.h"

#include <ztb/rxf.h>

#include <array>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <nlohmann/json.hpp>
#include <utility>

#include "tools/text/failure.h"

namespace tool {

namespace {

// The texts of the options that decide the results, and the folder that has them where no model is
// named.
constexpr std::array<std::pair<const char*, std::string SweepOptions::*>, 8> kTexts{
    {{"model", &SweepOptions::model},
     {"model-data", &SweepOptions::modelData},
     {"data", &SweepOptions::data},
     {"scenarios", &SweepOptions::scenarios},
     {"over", &SweepOptions::over},
     {"solver", &SweepOptions::solver},
     {"time-limit", &SweepOptions::timeLimit},
     {"parts", &SweepOptions::parts}}};

std::string firstLine() {
  std::string line;
  for (int c = std::getc(stdin); c != EOF && c != '\n'; c = std::getc(stdin)) {
    line += static_cast<char>(c);
  }
  return line;
}

unsigned long long memoryLimit() {
  const unsigned long long limit = ztbRxfMemoryLimit(0);
  ztbRxfMemoryLimit(limit);
  return limit;
}

void doRequest(const WorkerChannel& channel) {
  const nlohmann::json request = nlohmann::json::parse(firstLine());
  SweepOptions options;
  for (const auto& [name, member] : kTexts) request.at(name).get_to(options.*member);
  request.at("drives").get_to(options.drives);
  request.at("reports").get_to(options.reports);
  if (const nlohmann::json& chunk = request.at("chunk"); !chunk.is_null()) options.chunk = chunk;
  ztbRxfMemoryLimit(request.at("memory").get<unsigned long long>());
  ztb::Sweep sweep;
  options.open(sweep);
  // Nothing is left in the folder then that the sweep would not know.
  if (sweep.key() != request.at("key").get<std::string>()) {
    throw Failure("another file stood in the place of an input while the sweep ran");
  }
  for (const auto& [scenario, reason] : request.at("skipped").items()) {
    sweep.skip(std::stoi(scenario), reason.get<std::string>());
  }
  const SweepWork work{.chunks = request.at("chunks"),
                       .careful = request.at("careful"),
                       .tellsNotes = request.at("notes")};
  runSweepWorker(sweep, request.at("folder").get<std::string>(), work, channel);
}

}  // namespace

std::string workerRequest(const SweepOptions& options, const std::string& key,
                          const std::string& folder, const SweepWork& work,
                          const std::map<int, std::string>& skipped) {
  nlohmann::json request{{"key", key},
                         {"folder", folder},
                         {"drives", options.drives},
                         {"reports", options.reports},
                         {"chunk", nullptr},
                         {"memory", memoryLimit()},
                         {"chunks", work.chunks},
                         {"careful", work.careful},
                         {"notes", work.tellsNotes},
                         {"skipped", nlohmann::json::object()}};
  for (const auto& [name, member] : kTexts) request[name] = options.*member;
  if (options.chunk) request["chunk"] = *options.chunk;
  for (const auto& [scenario, reason] : skipped) {
    request["skipped"][std::to_string(scenario)] = reason;
  }
  try {
    return request.dump();
  } catch (const nlohmann::json::exception&) {
    throw Failure("names of files and options are to be UTF-8");
  }
}

void runRequestedWorker() {
  const WorkerChannel channel(1);
  try {
    doRequest(channel);
  } catch (const std::exception& error) {
    channel.send(WorkerMessage::failed, error.what());
  }
  channel.send(WorkerMessage::through);
  std::fflush(stderr);
  // A thread may still wait for the parent's word.
  std::_Exit(exitFine);
}

}  // namespace tool
