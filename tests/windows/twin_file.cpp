// Writes or checks one exchange file, the same on each system: what one wrote the other reads, and
// both write the same bytes.
//
//   twin_file write FILE
//   twin_file read FILE

#include <cstdio>
#include <cstring>
#include <string>

#include "tests/rxf/content.h"
#include "tests/rxf/peer_file.h"

namespace {

// Enough records for several blocks, with values that no short form fits.
rxftest::Content twinContent() {
  rxftest::Content content = rxftest::smallContent();
  const int first = static_cast<int>(content.labels.size()) + 1;
  for (int i = 0; i < 300; ++i) {
    content.labels.push_back("\xC5\xBE label " + std::to_string(i));
  }
  rxftest::Symbol symbol{"many", rxftest::kVariable, 2, 0, "a variable", {}, 0, {}, ""};
  for (int i = 0; i < 300; ++i) {
    for (int j = 0; j < 100; ++j) {
      symbol.records.push_back(
          rxftest::record({first + i, first + j}, {i / 7.0, -j * 1e-9, -1e300, 1e300 + i, 1.0}));
    }
  }
  content.symbols.push_back(symbol);
  return content;
}

int fail(const char* what) {
  std::fprintf(stderr, "twin_file: %s\n", what);
  return 1;
}

}  // namespace

int main(int count, char** arguments) {
  if (count != 3) return fail("expected write or read, and a file");
  rxftest::PeerFile file;
  if (std::strcmp(arguments[1], "write") == 0) {
    if (file.openWrite(arguments[2], "twin") != 0) return fail("the file cannot be written");
    rxftest::writeContent(file, twinContent());
    return file.close() == 0 ? 0 : fail("the file was not published");
  }
  if (file.openRead(arguments[2]) != 0) return fail("the file cannot be read");
  return rxftest::readContent(file) == twinContent() ? 0 : fail("the file holds something else");
}
