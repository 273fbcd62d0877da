// The n__ family: operations with arrays of strings, for clients with flat blocks of chars.

#include <ztb/ztb.h>

#include <array>

#include "core/exports/short_string.h"
#include "core/exports/string_room.h"
#include "core/operations.h"

namespace {

using ztb::exports::shortStringSize;
using ztb::exports::stringArraySize;

std::array<char*, stringArraySize> placesIn(char* block) {
  std::array<char*, stringArraySize> places = {};
  for (std::size_t i = 0; i < places.size(); ++i) {
    places[i] = block + i * shortStringSize;
  }
  return places;
}

}  // namespace

int n__ztbgetkeys(ztbRec* handle, void* rec, int dim, char* keys) {
  return ztb::ztbGetKeys(handle, rec, dim, placesIn(keys).data());
}

int n__ztbgetdomain(ztbRec* handle, void* sym, int dim, void** domains, char* domainNames) {
  if (!ztb::exports::hasStringRoom(handle, sym)) {
    return 0;
  }
  return ztb::ztbGetDomain(handle, sym, dim, domains, placesIn(domainNames).data());
}
