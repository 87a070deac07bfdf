#pragma once

// The table of figures: what is measured, what each figure means, and what it should be.

#include <functional>
#include <limits>
#include <string>
#include <string_view>
#include <vector>

namespace loambench {

/// What a figure should be.
struct Target {
  double least = 0;
  double most = std::numeric_limits<double>::infinity();
};
inline Target atLeast(double least) {
  return {.least = least};
}
inline Target atMost(double most) {
  return {.most = most};
}

struct Figure {
  std::string name;
  std::string meaning;  // one line
  Target target{};      // without one, the figure is for information
  std::string unit = "x";
};

/// Figures that are measured together, in the order of the values that `measure` returns.
struct Measurement {
  std::vector<Figure> figures;
  std::function<std::vector<double>()> measure;
};

using Measurements = std::vector<Measurement>;

/// Measures and prints the figures whose name contains `filter`. Returns the names of those that miss their
/// target by more than a tenth.
std::vector<std::string> printTable(const Measurements& measurements, std::string_view filter);

}  // namespace loambench
