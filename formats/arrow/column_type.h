// What an Arrow column holds, as its format string tells.
#ifndef ZTB_FORMATS_ARROW_COLUMN_TYPE_H_
#define ZTB_FORMATS_ARROW_COLUMN_TYPE_H_

#include <ztb/arrow.h>

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace formats {

enum class ColumnClass { null, truth, integer, unsignedInteger, real, decimal, text, date, time };

struct ColumnType {
  ColumnClass kind = ColumnClass::null;
  // Bytes of a value, or of an offset of a text; 0 for truth values and views of texts.
  int width = 0;
  // Of dates and times of day: units in a second, 0 where the unit is a day; and what stands behind
  // an ISO text for the time zone.
  std::int64_t unitsOfSecond = 0;
  std::string_view zone{};
  // Of decimals: digits behind the point.
  int scale = 0;

  [[nodiscard]] bool canBeLabel() const {
    return kind == ColumnClass::integer || kind == ColumnClass::unsignedInteger ||
           kind >= ColumnClass::text;
  }
  [[nodiscard]] bool isNumber() const { return kind < ColumnClass::text; }
};

// Nothing for a type that no labels or values are made from.
std::optional<ColumnType> columnTypeOf(const char* format);

// The type in words, for messages.
std::string columnTypeText(const ArrowSchema& schema);

}  // namespace formats

#endif  // ZTB_FORMATS_ARROW_COLUMN_TYPE_H_
