#include "formats/spooled_stream.h"

#include <fmt/format.h>
#include <unistd.h>

#include <cstddef>
#include <string_view>
#include <vector>

#include "formats/tables/byte_sink.h"
#include "formats/tables/byte_source.h"
#include "tools/text/console.h"
#include "tools/text/failure.h"

namespace formats {

namespace {

void copyStream(const std::string& from, const std::string& to) {
  const std::unique_ptr<ByteSource> source = openBytes(from);
  const std::unique_ptr<ByteSink> sink = makeBytes(to);
  std::vector<char> buffer(std::size_t{1} << 18U);
  while (const std::size_t count = source->read(buffer.data(), buffer.size())) {
    sink->write(std::string_view(buffer.data(), count));
  }
  sink->finish();
}

}  // namespace

SpooledInput::SpooledInput() {
  copyStream("-", path());
}

SpooledOutput::SpooledOutput(const std::string& option, const char* format) {
  if (tool::isTerminal(STDOUT_FILENO)) {
    throw tool::UsageError(
        fmt::format("{}: {} files are nothing for a terminal; give a name or redirect the output",
                    option, format));
  }
}

void SpooledOutput::finish() const {
  copyStream(path(), "-");
}

}  // namespace formats
