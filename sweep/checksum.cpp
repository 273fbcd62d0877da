#include "sweep/checksum.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <filesystem>
#include <fstream>
#include <memory>
#include <new>
#include <system_error>

#define XXH_INLINE_ALL
#include <xxhash.h>

#include "tools/files/system_files.h"
#include "tools/text/failure.h"

namespace sweep {

std::uint64_t checksumOfText(std::string_view text) {
  return XXH3_64bits(text.data(), text.size());
}

std::uint64_t checksumOfFile(const std::string& path) {
  struct FreeState {
    void operator()(XXH3_state_t* state) const { XXH3_freeState(state); }
  };
  const std::unique_ptr<XXH3_state_t, FreeState> state(XXH3_createState());
  // A pipe gives its content only once, and others read the file as well.
  const std::filesystem::path name = tool::pathOf(path);
  std::error_code error;
  if (std::filesystem::exists(name, error) && !std::filesystem::is_regular_file(name, error)) {
    throw tool::Failure(tool::withFile(path, "cannot be read: it is no regular file"));
  }
  std::ifstream in(name, std::ios::binary);
  std::array<char, 65536> buffer{};
  if (!state || XXH3_64bits_reset(state.get()) != XXH_OK) {
    throw std::bad_alloc();
  }
  if (in) {
    do {
      in.read(buffer.data(), buffer.size());
      XXH3_64bits_update(state.get(), buffer.data(), static_cast<std::size_t>(in.gcount()));
    } while (in);
  }
  if (!in.eof()) {
    throw tool::Failure(tool::withFile(path, "cannot be read"));
  }
  return XXH3_64bits_digest(state.get());
}

std::string checksumDigits(std::uint64_t sum) {
  return fmt::format("{:016x}", sum);
}

std::string_view inputsWord(std::string_view text, std::string_view key) {
  while (!text.empty()) {
    const std::string_view word = text.substr(0, text.find(' '));
    if (word.starts_with(key) && word.substr(key.size()).starts_with('=')) {
      return word;
    }
    text.remove_prefix(std::min(text.size(), word.size() + 1));
  }
  return {};
}

}  // namespace sweep
