// What the result of a sweep has of its scenarios.
#ifndef ZTB_VIEW_SWEEP_SYMBOLS_H_
#define ZTB_VIEW_SWEEP_SYMBOLS_H_

#include <map>
#include <memory>
#include <string>

#include "view/api.h"

namespace view {

inline constexpr const char* sweepStatusName = "sweep_status";
inline constexpr const char* sweepSolveStatusName = "sweep_solve_status";
inline constexpr const char* sweepObjectiveName = "sweep_objective";
inline constexpr const char* sweepInputsName = "sweep_inputs";
inline constexpr const char* sweepReasonName = "sweep_reason";

// The result that a question is about. Throws RequestError where its file is none.
std::shared_ptr<const OpenedFile> sweepOf(const Question& question);

// What a parameter over the scenarios has of each, by the numbers of their labels.
std::map<int, double> valuesOf(const OpenedFile& file, const std::string& name, Job& job);

}  // namespace view

#endif  // ZTB_VIEW_SWEEP_SYMBOLS_H_
