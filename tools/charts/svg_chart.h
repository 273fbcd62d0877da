// A chart as a picture.
#ifndef ZTB_TOOLS_CHARTS_SVG_CHART_H_
#define ZTB_TOOLS_CHARTS_SVG_CHART_H_

#include <string>

#include "tools/charts/chart.h"

namespace tool {

// An SVG document. Nothing of the chart is markup in it.
std::string svgOf(const Chart& chart, ChartType type);

}  // namespace tool

#endif  // ZTB_TOOLS_CHARTS_SVG_CHART_H_
