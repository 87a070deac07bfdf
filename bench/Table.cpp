#include "bench/Table.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

namespace loambench {

namespace {

std::string textOf(const Target& target) {
  const bool hasMost = std::isfinite(target.most);
  char text[64];
  if (target.least > 0 && hasMost) {
    std::snprintf(text, sizeof text, "%g to %g", target.least, target.most);
  } else if (target.least > 0) {
    std::snprintf(text, sizeof text, ">= %g", target.least);
  } else if (hasMost) {
    std::snprintf(text, sizeof text, "<= %g", target.most);
  } else {
    return "none";
  }
  return text;
}

bool isMissed(const Target& target, double value) {
  constexpr double tolerance = 0.1;
  return !(value >= target.least * (1 - tolerance) && value <= target.most * (1 + tolerance));
}

}  // namespace

std::vector<std::string> printTable(const Measurements& measurements, std::string_view filter) {
  std::vector<std::string> missed;
  std::printf("%-50s %12s    %s\n", "figure", "measured", "target");
  for (const Measurement& measurement : measurements) {
    const auto isShown = [&](const Figure& figure) { return figure.name.find(filter) != std::string::npos; };
    if (std::none_of(measurement.figures.begin(), measurement.figures.end(), isShown)) continue;
    const std::vector<double> values = measurement.measure();
    for (std::size_t i = 0; i < values.size(); ++i) {
      const Figure& figure = measurement.figures.at(i);
      if (!isShown(figure)) continue;
      std::printf("%-50s %9.2f %-2s    %s\n    %s\n", figure.name.c_str(), values[i], figure.unit.c_str(),
                  textOf(figure.target).c_str(), figure.meaning.c_str());
      if (isMissed(figure.target, values[i])) missed.push_back(figure.name);
    }
    std::fflush(stdout);
  }
  return missed;
}

}  // namespace loambench
