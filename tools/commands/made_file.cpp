#include "tools/commands/made_file.h"

#include <fmt/format.h>
#include <ztb/formats.h>

#include <ztb/display_text.hpp>

#include "tools/files/standard_streams.h"
#include "tools/text/failure.h"
#include "tools/text/output.h"
#include "tools/text/words.h"

namespace tool {

void addFileAndOut(Command command, FileAndOut& files) {
  command.text("FILE", files.file, "RXF file, - for standard input").required();
  command.text("OUT", files.out, "RXF file to make, - for standard output; it may be FILE")
      .required();
}

void makeFile(FormatsJob& job, const std::string& out,
              const std::function<void(const std::string& path)>& make) {
  job.option("progress", "");
  OutputFile output(out);
  job.option("shown-name", output.name());
  try {
    make(output.path());
    output.finish();
  } catch (const Failure&) {
    printErrors(job.warnings());
    printErrors(job.problems());
    throw;
  }
  printErrors(job.warnings());
  print(fmt::format("{}: {}, {}, {}\n", ztb::displayText(output.name()),
                    counted(job.counted(ZTB_FORMATS_SYMBOLS), "symbol"),
                    counted(job.counted(ZTB_FORMATS_LABELS), "label"),
                    counted(job.counted(ZTB_FORMATS_RECORDS), "record")));
}

void makeFile(FormatsJob& job, FormatsJob::Making making, const std::string& out) {
  makeFile(job, out, [&](const std::string& path) { job.make(making, path); });
}

}  // namespace tool
