#include "providers/model/lp_sections.h"

#include <algorithm>
#include <array>
#include <string_view>
#include <ztb/case_folding.hpp>

namespace lomu {

namespace {

struct Keyword {
  std::string_view word;
  std::string_view secondWord;  // empty: one word
  LpSection section;
};

// Keywords of two words come before those of one that begin alike.
constexpr auto kKeywords = std::to_array<Keyword>({
    {"minimize", "multi", LpSection::unsupported},
    {"maximize", "multi", LpSection::unsupported},
    {"minimize", "", LpSection::minimize},
    {"minimise", "", LpSection::minimize},
    {"minimum", "", LpSection::minimize},
    {"min", "", LpSection::minimize},
    {"maximize", "", LpSection::maximize},
    {"maximise", "", LpSection::maximize},
    {"maximum", "", LpSection::maximize},
    {"max", "", LpSection::maximize},
    {"subject", "to", LpSection::rows},
    {"such", "that", LpSection::rows},
    {"st", "", LpSection::rows},
    {"st.", "", LpSection::rows},
    {"s.t.", "", LpSection::rows},
    {"bounds", "", LpSection::bounds},
    {"bound", "", LpSection::bounds},
    {"general", "constraints", LpSection::unsupported},
    {"generals", "", LpSection::integers},
    {"general", "", LpSection::integers},
    {"gens", "", LpSection::integers},
    {"gen", "", LpSection::integers},
    {"integers", "", LpSection::integers},
    {"integer", "", LpSection::integers},
    {"ints", "", LpSection::integers},
    {"int", "", LpSection::integers},
    {"binaries", "", LpSection::binaries},
    {"binary", "", LpSection::binaries},
    {"bins", "", LpSection::binaries},
    {"bin", "", LpSection::binaries},
    {"semi", "continuous", LpSection::semiContinuous},
    {"semi", "-", LpSection::semiContinuous},
    {"semi", "", LpSection::semiContinuous},
    {"semis", "", LpSection::semiContinuous},
    {"sos", "", LpSection::sets},
    {"sos1", "", LpSection::sets1},
    {"sos2", "", LpSection::sets2},
    {"lazy", "constraints", LpSection::unsupported},
    {"user", "cuts", LpSection::unsupported},
    {"pwlobj", "", LpSection::unsupported},
    {"end", "", LpSection::end},
});

const Keyword* keywordAt(const LpTokens& tokens) {
  const LpToken& word = tokens.next();
  const LpToken& after = tokens.second();
  if (word.kind != LpTokenKind::name || !word.startsLine) return nullptr;
  if (after.kind == LpTokenKind::colon) return nullptr;
  for (const Keyword& keyword : kKeywords) {
    if (!ztb::sameFolded(word.text, keyword.word)) continue;
    if (keyword.secondWord.empty() || ztb::sameFolded(after.text, keyword.secondWord))
      return &keyword;
  }
  return nullptr;
}

}  // namespace

std::optional<LpSection> lpSection(const LpTokens& tokens) {
  const Keyword* const keyword = keywordAt(tokens);
  if (keyword == nullptr) return std::nullopt;
  return keyword->section;
}

bool beginsLpKeyword(std::string_view word) {
  return std::any_of(kKeywords.begin(), kKeywords.end(),
                     [&](const Keyword& keyword) { return ztb::sameFolded(word, keyword.word); });
}

LpSection takeLpSection(LpTokens& tokens) {
  const Keyword* const keyword = keywordAt(tokens);
  tokens.take();
  if (keyword->secondWord == "-") {
    tokens.take();
    if (!ztb::sameFolded(tokens.next().text, "continuous")) {
      tokens.failExpecting("Semi-Continuous");
    }
  }
  if (!keyword->secondWord.empty()) tokens.take();
  return keyword->section;
}

}  // namespace lomu
