#include "view/api.h"

#include <fmt/format.h>

#include <algorithm>

#include "view/model_solution.h"

namespace view {

std::shared_ptr<const OpenedFile> Session::file(const Parameters& parameters, const char* name) {
  const std::string* given = parameters.find(name);
  for (std::size_t number = 0; given != nullptr && number < files.size(); ++number) {
    if (*given != std::to_string(firstSolution + number)) continue;
    const std::shared_ptr<const ModelSolution> solved = solution(number);
    if (!solved || !solved->file) {
      throw RequestError(404, fmt::format("{} has no solution", files[number]->name()));
    }
    return {solved, &*solved->file};
  }
  return files[parameters.number(name, 0, files.size() - 1)];
}

std::shared_ptr<const ModelSolution> Session::solution(std::size_t model) {
  const std::lock_guard lock(mutex_);
  return solutions_.at(model);
}

void Session::keepSolution(std::size_t model, std::shared_ptr<const ModelSolution> solution) {
  const std::lock_guard lock(mutex_);
  solutions_.at(model) = std::move(solution);
}

namespace {

std::string_view kindWord(FileKind kind) {
  switch (kind) {
    case FileKind::sweep:
      return "sweep";
    case FileKind::model:
      return "model";
    default:
      return "data";
  }
}

}  // namespace

void writeFile(const OpenedFile& file, formats::JsonText& answer) {
  answer.beginObject();
  answer.name("name");
  answer.text(file.name());
  answer.name("kind");
  answer.text(kindWord(file.kind()));
  answer.name("bytes");
  answer.count(file.bytes());
  const bool isModel = file.kind() == FileKind::model;
  answer.name("symbols");
  answer.count(isModel ? 0 : file.exchange().symbols().size());
  answer.name("labels");
  answer.count(isModel ? 0 : static_cast<std::size_t>(file.exchange().labelCount()));
  answer.endObject();
}

namespace {

void answerFiles(Question& question) {
  formats::JsonText& answer = question.answer;
  answer.beginObject();
  answer.name("files");
  answer.beginArray();
  for (const auto& file : question.session.files) {
    writeFile(*file, answer);
  }
  answer.endArray();
  answer.name("version");
  answer.text(ZTB_VERSION);
  answer.endObject();
}

// Null where no request of this id runs: it may have ended while it was asked for.
std::shared_ptr<Job> jobOf(Question& question) {
  return question.session.jobs.find(question.parameters.text("of"));
}

void answerProgress(Question& question) {
  const std::shared_ptr<Job> job = jobOf(question);
  formats::JsonText& answer = question.answer;
  answer.beginObject();
  answer.name("done");
  answer.number(job ? job->done() : 1);
  answer.name("records");
  answer.count(job ? job->records() : 0);
  answer.name("words");
  answer.text(job ? job->words() : std::string());
  answer.endObject();
}

void answerCancel(Question& question) {
  if (const std::shared_ptr<Job> job = jobOf(question)) job->cancel();
  question.answer.beginObject();
  question.answer.endObject();
}

void answerAlive(Question& question) {
  question.answer.beginObject();
  question.answer.endObject();
}

struct Path {
  std::string_view name;
  Answering answering;
};

constexpr Path paths[] = {
    {"alive", answerAlive},   {"cancel", answerCancel},       {"compare", answerCompare},
    {"counts", answerCounts}, {"export", answerExport},       {"fan", answerFan},
    {"files", answerFiles},   {"histogram", answerHistogram}, {"inputs", answerInputs},
    {"model", answerModel},   {"pivot", answerPivot},         {"progress", answerProgress},
    {"rows", answerRows},     {"series", answerSeries},       {"solve", answerSolve},
    {"sweep", answerSweep},   {"symbols", answerSymbols},
};

}  // namespace

Answering findAnswering(std::string_view path) {
  const auto* const found = std::ranges::find(paths, path, &Path::name);
  return found == std::end(paths) ? nullptr : found->answering;
}

}  // namespace view
