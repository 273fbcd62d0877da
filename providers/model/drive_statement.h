// What says which numbers of a model a symbol drives:
//
//   price(food) = cost of buy
//   demand(city) = rhs of demand
//   cap(plant, month) = upper of make(plant, month, *)
//   yield(crop, soil) = coefficient of grow in harvest(soil)
//
// The positions of the symbol have names. Those of a family of columns or rows are named as the
// symbol's, stand for one label in quotes, or for any label as *; a family that stands alone has
// the positions of the symbol, in their order.
#ifndef ZTB_PROVIDERS_MODEL_DRIVE_STATEMENT_H_
#define ZTB_PROVIDERS_MODEL_DRIVE_STATEMENT_H_

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "providers/model/driven_numbers.h"

namespace lomu {

// What a position of a family is matched with.
struct FamilyPosition {
  enum class Kind { named, label, any };
  Kind kind = Kind::any;
  std::size_t position = 0;  // of the symbol, where it is named
  std::string label;
};

struct FamilyReference {
  std::string name;
  // None where the family stands alone.
  std::optional<std::vector<FamilyPosition>> positions;
};

struct DriveStatement {
  std::string symbol;
  std::vector<std::string> positions;
  DrivenKind kind = DrivenKind::cost;
  FamilyReference family;              // of columns, or of rows for a right-hand side
  std::optional<FamilyReference> row;  // of a coefficient
};

// Throws ModelError with the text and what is wrong with it.
DriveStatement parseDriveStatement(std::string_view text);

}  // namespace lomu

#endif  // ZTB_PROVIDERS_MODEL_DRIVE_STATEMENT_H_
