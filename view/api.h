// What the page asks for: each path with what answers it.
#ifndef ZTB_VIEW_API_H_
#define ZTB_VIEW_API_H_

#include <memory>
#include <string_view>
#include <vector>

#include "formats/json/json_text.h"
#include "view/job.h"
#include "view/opened_file.h"
#include "view/parameters.h"
#include "view/row_index.h"

namespace view {

// The files of a server and what is kept of them.
struct Session {
  std::vector<std::unique_ptr<OpenedFile>> files;
  Jobs jobs;
  RowIndexCache indexes;

  // The file that a parameter names by its number. Throws RequestError.
  [[nodiscard]] OpenedFile& file(const Parameters& parameters, const char* name = "f");
};

// One request on its way to its answer.
struct Question {
  Session& session;
  const Parameters& parameters;
  Job& job;
  formats::JsonText& answer;
};

// What answers a path behind "/api/"; null for a path that there is not. Throws RequestError,
// UsageError, Failure or ztb::Error.
using Answering = void (*)(Question& question);
Answering findAnswering(std::string_view path);

void answerCounts(Question& question);
void answerHistogram(Question& question);
void answerPivot(Question& question);
void answerRows(Question& question);
void answerSeries(Question& question);
void answerSymbols(Question& question);

}  // namespace view

#endif  // ZTB_VIEW_API_H_
