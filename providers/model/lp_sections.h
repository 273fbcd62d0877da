// The keywords that open the sections of an LP file.
#ifndef ZTB_PROVIDERS_MODEL_LP_SECTIONS_H_
#define ZTB_PROVIDERS_MODEL_LP_SECTIONS_H_

#include <optional>
#include <string_view>

#include "providers/model/lp_tokens.h"

namespace lomu {

enum class LpSection {
  minimize,
  maximize,
  rows,
  bounds,
  integers,
  binaries,
  semiContinuous,
  sets,   // each tells its kind
  sets1,  // of kind 1
  sets2,
  unsupported,
  end
};

// The section that the next tokens open: a keyword in any case of letters that starts a line and is
// no label.
std::optional<LpSection> lpSection(const LpTokens& tokens);

// Whether the word is a keyword, or the first word of one.
bool beginsLpKeyword(std::string_view word);

// Takes the keyword, of one word or two, which a hyphen may join. REQUIRES: lpSection(tokens) gives
// a section.
LpSection takeLpSection(LpTokens& tokens);

}  // namespace lomu

#endif  // ZTB_PROVIDERS_MODEL_LP_SECTIONS_H_
