// A chart as lines of characters.
#ifndef ZTB_TOOLS_CHARTS_TERMINAL_CHART_H_
#define ZTB_TOOLS_CHARTS_TERMINAL_CHART_H_

#include <cstddef>
#include <string>

#include "tools/charts/chart.h"

namespace tool {

struct TerminalStyle {
  std::size_t width = 80;   // places in a line
  std::size_t height = 16;  // lines between the axes; bars take one each
  bool ascii = false;       // nothing but ASCII, otherwise braille and block characters
  bool colour = false;      // series are told apart by colours
};

// The lines, each with its end, without the title. Series that colours cannot tell apart have
// letters for their marks.
std::string drawInTerminal(const Chart& chart, ChartType type, const TerminalStyle& style);

}  // namespace tool

#endif  // ZTB_TOOLS_CHARTS_TERMINAL_CHART_H_
