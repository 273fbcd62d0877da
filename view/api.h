// What the page asks for: each path with what answers it.
#ifndef ZTB_VIEW_API_H_
#define ZTB_VIEW_API_H_

#include <array>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>
#include <vector>

#include "formats/json/json_text.h"
#include "tools/files/scratch_folder.h"
#include "view/comparison.h"
#include "view/job.h"
#include "view/opened_file.h"
#include "view/parameters.h"
#include "view/result_cache.h"
#include "view/row_index.h"

namespace view {

struct ModelSolution;

inline constexpr std::size_t mostFiles = 2;
// The solution of a model has the number of the model's file and this.
inline constexpr std::size_t firstSolution = mostFiles;

// An answer in JSON that is given again.
struct KeptAnswer {
  std::string json;
  [[nodiscard]] std::size_t bytes() const { return json.size(); }
};

// The files of a server and what is kept of them.
struct Session {
  std::vector<std::shared_ptr<const OpenedFile>> files;
  Jobs jobs;
  ResultCache<RowIndex> indexes{std::size_t{256} << 20U, 64};
  ResultCache<Comparison> comparisons{std::size_t{64} << 20U, 8};
  ResultCache<KeptAnswer> models{std::size_t{64} << 20U, mostFiles};

  // The file that a parameter names by its number. Throws RequestError.
  [[nodiscard]] std::shared_ptr<const OpenedFile> file(const Parameters& parameters,
                                                       const char* name = "f");
  // What the latest solve of a model has left, by the number of the model's file; null before one.
  [[nodiscard]] std::shared_ptr<const ModelSolution> solution(std::size_t model);
  void keepSolution(std::size_t model, std::shared_ptr<const ModelSolution> solution);

 private:
  std::mutex mutex_;
  std::array<std::shared_ptr<const ModelSolution>, mostFiles> solutions_;
};

// A file that a page has asked for; it goes with the object.
struct ExportedFile {
  tool::ScratchFolder folder;
  std::string path;
  std::string name;
  std::string type;
};

// One request on its way to its answer.
struct Question {
  Session& session;
  const Parameters& parameters;
  Job& job;
  formats::JsonText& answer;
  // A file in place of an answer in JSON.
  std::shared_ptr<ExportedFile> file;
};

// What answers a path behind "/api/"; null for a path that there is not. Throws RequestError,
// UsageError, Failure or ztb::Error.
using Answering = void (*)(Question& question);
Answering findAnswering(std::string_view path);

// What the list of files says of one.
void writeFile(const OpenedFile& file, formats::JsonText& answer);

void answerCompare(Question& question);
void answerCounts(Question& question);
void answerExport(Question& question);
void answerFan(Question& question);
void answerHistogram(Question& question);
void answerInputs(Question& question);
void answerModel(Question& question);
void answerPivot(Question& question);
void answerRows(Question& question);
void answerSeries(Question& question);
void answerSolve(Question& question);
void answerSweep(Question& question);
void answerSymbols(Question& question);

}  // namespace view

#endif  // ZTB_VIEW_API_H_
