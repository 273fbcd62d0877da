// The C functions of ztb/rxf.h that write a file. No exception passes them.

#include <ztb/rxf.h>

#include <array>
#include <cstdio>
#include <memory>
#include <string>
#include <vector>

#include "providers/rxf/export_guard.h"
#include "providers/rxf/failure.h"
#include "providers/rxf/limits.h"
#include "providers/rxf/rxf_object.h"
#include "providers/rxf/system_calls.h"

using rxffile::attempt;
using rxffile::copyMessage;
using rxffile::DetailText;
using rxffile::ErrorNumber;
using rxffile::Failure;
using rxffile::MessageText;

struct ztbRxfOutputRec {
  rxffile::RxfObject object{rxffile::operatingSystem()};
  int symbols = 0;
  bool labelsOpen = true;
  bool symbolOpen = false;
  std::size_t dim = 0;
  std::size_t slots = 1;
  // Names of the domains of the open symbol that are not checked.
  std::vector<std::string> domainNames;
  // Errors that were none, of domains that cannot be checked.
  int ignoredErrors = 0;
};

namespace {

// Runs an operation; what it throws is in the object's log then, and the result is 0.
template <typename Body>
int guarded(ztbRxfOutput* output, const Body& body) noexcept {
  if (output == nullptr) return 0;
  try {
    return static_cast<int>(body(*output));
  } catch (...) {
    output->object.takeException();
    return 0;
  }
}

// Ends the labels or the symbol that is open.
void finish(ztbRxfOutput& output) {
  if (output.labelsOpen) output.object.finishLabels();
  output.labelsOpen = false;
  if (!output.symbolOpen) return;
  output.symbolOpen = false;
  output.object.finishWriting();
  if (output.domainNames.empty()) return;
  std::vector<const char*> names;
  for (const std::string& name : output.domainNames) names.push_back(name.c_str());
  output.object.setDomainNames(output.symbols, names.data());
  output.domainNames.clear();
}

// Whether the records of the open symbol are held against these domains from now on. That they
// cannot be is no error.
bool checkedDomain(ztbRxfOutput& output, const char* const* domains) {
  const int before = output.object.errorCount();
  if (output.object.setDomain(domains)) return true;
  const int more = output.object.errorCount() - before;
  output.ignoredErrors += more;
  for (int i = 0; i < more; ++i) output.object.takeLastError();
  return false;
}

// REQUIRES: within the limit on positions; this comes from a symbol that was begun.
void requireDomainNames(const char* const* domains, const ztbRxfSymbolInfo& info) {
  for (int d = 0; d < info.dimension; ++d) {
    if (domains == nullptr || domains[d] == nullptr) {
      throw Failure(
          ErrorNumber::callsOutOfOrder,
          DetailText("%s without a name for the domain at position %d", info.name, d + 1));
    }
  }
}

bool addSymbol(ztbRxfOutput& output, const ztbRxfSymbolInfo& info, const char* const* domains) {
  finish(output);
  if (info.type == ZTB_ALIAS) {
    if (!output.object.addAlias(info.name, domains == nullptr ? nullptr : domains[0])) return false;
    ++output.symbols;
    return true;
  }
  const int offset = info.type == ZTB_EQUATION ? rxffile::kEquationOffset : 0;
  if (!output.object.startWriting(info.name, info.text, info.dimension, info.type,
                                  info.userInfo + offset)) {
    return false;
  }
  ++output.symbols;
  output.symbolOpen = true;
  output.dim = static_cast<std::size_t>(info.dimension);
  output.slots = static_cast<std::size_t>(rxffile::slotsOfType(info.type));
  if (info.domainKind == ZTB_RXF_DOMAIN_NONE) return true;
  requireDomainNames(domains, info);
  if (info.domainKind != ZTB_RXF_DOMAIN_CHECKED || !checkedDomain(output, domains)) {
    output.domainNames.assign(domains, domains + output.dim);
  }
  return true;
}

bool addRecords(ztbRxfOutput& output, int count, const int* const* keys,
                const double* const* values) {
  if (!output.symbolOpen) return output.object.write(nullptr, nullptr);
  if (count < 0) {
    throw Failure(ErrorNumber::limitExceeded,
                  DetailText("a call adds 0 to 2147483647 records, saw %d", count));
  }
  std::array<int, rxffile::kMaxDimension> key{};
  std::array<double, rxffile::kMaxSlots> value{};
  bool all = true;
  for (int i = 0; i < count; ++i) {
    for (std::size_t j = 0; j < output.dim; ++j) key[j] = keys[j][i];
    for (std::size_t s = 0; s < output.slots; ++s) value[s] = values[s][i];
    all = output.object.write(key.data(), value.data()) && all;
  }
  return all;
}

// Throws Failure, or returns the errors of the file: how many, and the earliest.
int errorsOf(ztbRxfOutput& output, int& earliest) {
  const int count = output.object.errorCount() - output.ignoredErrors;
  earliest = 0;
  for (int number = 1; number != 0;) {
    number = output.object.takeLastError();
    if (number != 0) earliest = number;
  }
  return count;
}

}  // namespace

RXF_EXPORT int ztbRxfCreate(ztbRxfOutput** output, const char* path, const char* producer,
                            char* message, int messageSize) {
  copyMessage("", message, messageSize);
  return attempt(
             [&] {
               if (output == nullptr) {
                 throw Failure(ErrorNumber::callsOutOfOrder,
                               DetailText("there is no place for the file"));
               }
               *output = nullptr;
               auto made = std::make_unique<ztbRxfOutputRec>();
               const int error = made->object.openWrite(path, producer);
               if (error != 0) {
                 std::array<char, 256> text{};
                 made->object.errorText(error, text.data());
                 copyMessage(text.data(), message, messageSize);
                 rxffile::latestErrorKind() = ztbErrorKindOfRxf(error);
                 return;
               }
               made->object.startLabels();
               *output = made.release();
             },
             [&](const MessageText& text) { copyMessage(text.c_str(), message, messageSize); }) &&
         *output != nullptr;
}

RXF_EXPORT int ztbRxfAddLabel(ztbRxfOutput* output, const char* label) {
  return guarded(output, [&](ztbRxfOutput& o) { return o.object.addLabel(label); });
}

RXF_EXPORT int ztbRxfAddSymbol(ztbRxfOutput* output, const ztbRxfSymbolInfo* info,
                               const char* const* domains) {
  return guarded(output, [&](ztbRxfOutput& o) {
    if (info == nullptr) {
      throw Failure(ErrorNumber::callsOutOfOrder, DetailText("a symbol without a description"));
    }
    return addSymbol(o, *info, domains);
  });
}

RXF_EXPORT int ztbRxfAddRecords(ztbRxfOutput* output, int count, const int* const* keys,
                                const double* const* values) {
  return guarded(output, [&](ztbRxfOutput& o) { return addRecords(o, count, keys, values); });
}

RXF_EXPORT int ztbRxfAddText(ztbRxfOutput* output, const char* text) {
  return guarded(output, [&](ztbRxfOutput& o) { return o.object.addText(text); });
}

RXF_EXPORT int ztbRxfPublish(ztbRxfOutput** output, char* message, int messageSize) {
  copyMessage("", message, messageSize);
  if (output == nullptr || *output == nullptr) return 0;
  const std::unique_ptr<ztbRxfOutputRec> owned(*output);
  *output = nullptr;
  guarded(owned.get(), [](ztbRxfOutput& o) {
    finish(o);
    return true;
  });
  int earliest = 0;
  const int count = errorsOf(*owned, earliest);
  int closing = 0;
  if (count <= 0) {
    closing = owned->object.close();
    if (closing == 0) return 1;
  }
  std::array<char, 256> text{};
  const int error = count > 0 ? earliest : closing;
  owned->object.errorText(error, text.data());
  rxffile::latestErrorKind() = ztbErrorKindOfRxf(error);
  std::array<char, 320> whole{};
  std::snprintf(whole.data(), whole.size(), "%d RXF Error(s). First Error: %s",
                count > 0 ? count : 1, text.data());
  copyMessage(whole.data(), message, messageSize);
  return 0;
}

RXF_EXPORT void ztbRxfDiscard(ztbRxfOutput** output) {
  if (output == nullptr) return;
  delete *output;
  *output = nullptr;
}
