#include "providers/rxf/error_table.h"

#include <array>

namespace rxffile {

namespace {

constexpr std::array<const char*, kErrorNumberEnd> kTexts = {
    nullptr,
    "No such file",
    "No permission",
    "Is a folder",
    "Not a regular file",
    "Not an RXF file",
    "File has a newer version of the format",
    "File is cut short",
    "File is damaged",
    "Disk full",
    "Writing failed",
    "Reading failed",
    "File cannot be opened",
    "File name not acceptable",
    "Label not acceptable",
    "Label stands twice",
    "Symbol name not acceptable",
    "Symbol stands twice",
    "Alias target is no set written before",
    "Key outside the registered labels",
    "Keys not in ascending order",
    "Record stands twice",
    "Domain is no set written before",
    "Domain set is not one-dimensional",
    "Record outside its domain",
    "Call out of order",
    "Text longer than 255 bytes",
    "Dimension outside 0 to 20",
    "Symbol type not known",
    "Limit exceeded",
    "No such symbol number",
    "No such label number",
    "An alias has no records of its own",
    "Out of memory",
    "Internal error",
    "File was changed while it was open",
    "Text stands twice",
    "Text not in the table",
};

}  // namespace

const char* generalErrorText(int number) {
  if (number <= 0 || number >= kErrorNumberEnd) return nullptr;
  return kTexts.at(static_cast<unsigned>(number));
}

}  // namespace rxffile
