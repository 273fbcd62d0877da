// Symbols filled from Arrow streams.
#ifndef ZTB_FORMATS_ARROW_ARROW_IMPORT_H_
#define ZTB_FORMATS_ARROW_ARROW_IMPORT_H_

#include <ztb/arrow.h>

#include <string>
#include <ztb/ztb.hpp>

namespace formats {

// As the functions of ztb/arrow.h. Both throw ztb::Error and take the stream over, in any case.
void fillFromArrow(const ztb::Symbol& symbol, ArrowArrayStream* stream,
                   const ztbArrowImportOptions& options);
void* makeFromArrow(ztbRec* database, const std::string& name, int type, ArrowArrayStream* stream,
                    const ztbArrowImportOptions& options);

}  // namespace formats

#endif  // ZTB_FORMATS_ARROW_ARROW_IMPORT_H_
