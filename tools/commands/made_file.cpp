#include "tools/commands/made_file.h"

#include <fmt/format.h>
#include <ztb/formats.h>

#include <cstdio>
#include <ztb/display_text.hpp>

#include "tools/files/standard_streams.h"
#include "tools/text/failure.h"
#include "tools/text/output.h"
#include "tools/text/words.h"

namespace tool {

void makeFile(FormatsJob& job, FormatsJob::Making making, const std::string& out) {
  job.option("progress", "");
  OutputFile output(out);
  job.option("shown-name", output.name());
  try {
    job.make(making, output.path());
    output.finish();
  } catch (const Failure&) {
    std::fputs(job.problems().c_str(), stderr);
    throw;
  }
  std::fputs(job.warnings().c_str(), stderr);
  print(fmt::format("{}: {}, {}, {}\n", ztb::displayText(output.name()),
                    counted(job.counted(ZTB_FORMATS_SYMBOLS), "symbol"),
                    counted(job.counted(ZTB_FORMATS_LABELS), "label"),
                    counted(job.counted(ZTB_FORMATS_RECORDS), "record")));
}

}  // namespace tool
