#include "providers/model/lp_sets.h"

#include <cmath>
#include <string>
#include <string_view>
#include <utility>
#include <ztb/case_folding.hpp>

#include "providers/model/distinct_members.h"
#include "providers/model/file_bounds.h"

namespace lomu {

namespace {

class LpSetReader {
 public:
  LpSetReader(LpTokens& tokens, const LpColumns& columns, LpSection section, ModelData& model)
      : tokens_(tokens), columns_(columns), section_(section), model_(model) {}

  void read() {
    while (tokens_.next().kind != LpTokenKind::end && !lpSection(tokens_)) readWord();
  }

 private:
  // A word and a colon: with a number behind it a member, with a second colon the kind of a set,
  // and with a name behind it the label of one.
  void readWord() {
    const LpToken word = takeWord();
    const LpTokenKind behind = tokens_.next().kind;
    if (behind == LpTokenKind::colon) {
      if (!labelled_) beginSet({});
      takeKind(word);
    } else if (behind == LpTokenKind::name && !lpSection(tokens_)) {
      beginSet(word.text);
      labelled_ = true;
    } else {
      addMember(word);
    }
  }

  LpToken takeWord() {
    if (tokens_.next().kind != LpTokenKind::name) {
      tokens_.failExpecting("the name of a set or a variable");
    }
    const LpToken word = tokens_.take();
    if (!tokens_.takeIf(LpTokenKind::colon)) tokens_.failExpecting("\":\"");
    return word;
  }

  void beginSet(std::string_view name) {
    OrderedSet set;
    set.name = name.empty() ? "S" + std::to_string(model_.sets.size() + 1) : std::string(name);
    set.kind = section_ == LpSection::sets1 ? 1 : section_ == LpSection::sets2 ? 2 : 0;
    model_.sets.push_back(std::move(set));
    members_ = {};
    open_ = true;
    labelled_ = false;
  }

  // The first colon is taken.
  void takeKind(const LpToken& word) {
    const bool isKind = ztb::sameFolded(word.text, "S1") || ztb::sameFolded(word.text, "S2");
    const int kind = isKind ? word.text[1] - '0' : 0;
    int& ofSet = model_.sets.back().kind;
    if (!isKind || (ofSet != 0 && ofSet != kind)) {
      tokens_.fail(word.position, "found " + shown(word.text) + ", expected " +
                                      (ofSet == 0   ? "S1 :: or S2 ::"
                                       : ofSet == 1 ? "S1 ::"
                                                    : "S2 ::"));
    }
    ofSet = kind;
    labelled_ = false;
    tokens_.take();
  }

  void addMember(const LpToken& name) {
    if (!open_ && section_ != LpSection::sets) beginSet({});
    if (!open_ || model_.sets.back().kind == 0) {
      tokens_.fail(name.position,
                   "found " + shown(name.text) + ", expected S1 :: or S2 :: before the members");
    }
    labelled_ = false;
    const auto column = columns_.find(name.text);
    if (!column) {
      tokens_.fail(name.position,
                   shown(name.text) + " is no variable so far, expected one that stands before");
    }
    const double sign = tokens_.takeIf(LpTokenKind::minus) ? -1 : 1;
    if (tokens_.next().kind != LpTokenKind::number) tokens_.failExpecting("the weight, a number");
    const double weight = fromFile(sign * tokens_.take().number);
    if (!std::isfinite(weight)) {
      tokens_.fail(name.position, "the weight of " + shown(name.text) +
                                      " is infinite, expected a size below 1e30");
    }
    if (!members_.take(*column, weight)) {
      tokens_.fail(name.position, shown(name.text) +
                                      " or its weight stands twice in the set, expected columns "
                                      "with weights that order them");
    }
    model_.sets.back().members.push_back({*column, weight});
  }

  LpTokens& tokens_;
  const LpColumns& columns_;
  LpSection section_;
  ModelData& model_;
  bool open_ = false;      // a set was begun
  bool labelled_ = false;  // and nothing but its label was read
  DistinctMembers members_;
};

}  // namespace

void readLpSets(LpTokens& tokens, const LpColumns& columns, LpSection section, ModelData& model) {
  LpSetReader(tokens, columns, section, model).read();
}

}  // namespace lomu
