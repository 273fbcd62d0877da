// What `ztb solve --ranging` tells: for each variable how far its cost, for each equation how far
// its right-hand side can move while the basis stays optimal.
#ifndef ZTB_TOOLS_MODELS_RANGING_REPORT_H_
#define ZTB_TOOLS_MODELS_RANGING_REPORT_H_

#include <string>
#include <vector>

#include "tools/models/model_session.h"
#include "tools/text/table_printer.h"

namespace tool {

// Works out the ranges of the last solve. Throws Failure.
ztb::Model::Ranging rangingOf(ModelSession& session);

// Adds parameters SYM_cost_lower and SYM_cost_upper of each variable, and SYM_rhs_lower and
// SYM_rhs_upper of each equation to the session's database. Throws Failure.
void addRangeSymbols(ModelSession& session, const ztb::Model::Ranging& ranging);

// Prints two tables, of all elements, or of those of `shown` where any are named.
void printRanging(const ztb::Model::Ranging& ranging, const std::vector<std::string>& shown,
                  TableStyle style, int digits);

// Prints one table with a column for each position of labels: range (cost or rhs), symbol, labels,
// from, to.
void printRangingCsv(const ztb::Model::Ranging& ranging, const std::vector<std::string>& shown);

}  // namespace tool

#endif  // ZTB_TOOLS_MODELS_RANGING_REPORT_H_
