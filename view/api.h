// What the page asks for: each path with what answers it.
#ifndef ZTB_VIEW_API_H_
#define ZTB_VIEW_API_H_

#include <memory>
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

// The files of a server and what is kept of them.
struct Session {
  std::vector<std::unique_ptr<OpenedFile>> files;
  Jobs jobs;
  ResultCache<RowIndex> indexes{std::size_t{256} << 20U, 64};
  ResultCache<Comparison> comparisons{std::size_t{64} << 20U, 8};

  // The file that a parameter names by its number. Throws RequestError.
  [[nodiscard]] OpenedFile& file(const Parameters& parameters, const char* name = "f");
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

void answerCompare(Question& question);
void answerCounts(Question& question);
void answerExport(Question& question);
void answerFan(Question& question);
void answerHistogram(Question& question);
void answerModel(Question& question);
void answerPivot(Question& question);
void answerRows(Question& question);
void answerSeries(Question& question);
void answerSweep(Question& question);
void answerSymbols(Question& question);

}  // namespace view

#endif  // ZTB_VIEW_API_H_
