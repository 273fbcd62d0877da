// What the functions of ztb/rxf.h have in common: no exception passes them, and texts are cut to
// their callers' buffers.
#ifndef ZTB_PROVIDERS_RXF_EXPORT_GUARD_H_
#define ZTB_PROVIDERS_RXF_EXPORT_GUARD_H_

#include <ztb/errors.h>

#include <algorithm>
#include <cstring>
#include <exception>
#include <new>
#include <string_view>

#include "providers/rxf/failure.h"
#include "providers/rxf/message_text.h"

#define RXF_EXPORT extern "C" [[gnu::visibility("default")]]

namespace rxffile {

// An equation's word in a file is its subtype and this.
inline constexpr int kEquationOffset = 53;

// As much of `text` as fits into `size` bytes with the final zero.
inline void copyMessage(std::string_view text, char* buffer, int size) {
  if (buffer == nullptr || size < 1) return;
  const std::size_t length = std::min(text.size(), static_cast<std::size_t>(size) - 1);
  std::memcpy(buffer, text.data(), length);
  buffer[length] = '\0';
}

// The kind of the latest failure of the calling thread, a ZTB_ERROR_ code.
inline int& latestErrorKind() noexcept {
  static thread_local int kind = ZTB_ERROR_NONE;
  return kind;
}

inline MessageText failureText(ErrorNumber number, const DetailText& detail) {
  latestErrorKind() = ztbErrorKindOfRxf(static_cast<int>(number));
  return {number, detail};
}

// Runs `body` and hands the text of what it throws to `refused`; true when it threw nothing. The
// kind of the failure is that of the thread then.
template <typename Body, typename Refused>
bool attempt(const Body& body, const Refused& refused) noexcept {
  try {
    body();
    return true;
  } catch (const Failure& failure) {
    refused(failureText(failure.number(), failure.detail()));
  } catch (const std::bad_alloc&) {
    refused(failureText(ErrorNumber::outOfMemory, DetailText()));
  } catch (const std::exception& error) {
    refused(failureText(ErrorNumber::internalError, DetailText("%s", error.what())));
  }
  return false;
}

}  // namespace rxffile

#endif  // ZTB_PROVIDERS_RXF_EXPORT_GUARD_H_
