#include "loamshow/now/Amounts.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <string_view>

namespace loamshow {

namespace {

std::string fixed(double value, int decimals, std::string_view unit) {
  std::array<char, 32> text{};
  std::snprintf(text.data(), text.size(), "%.*f", decimals,
                value);  // NOLINT(cppcoreguidelines-pro-type-vararg)
  return text.data() + std::string(unit);
}

}  // namespace

std::string grouped(U64 count) {
  std::string text = std::to_string(count);
  for (std::size_t at = text.size(); at > 3; at -= 3) text.insert(at - 3, 1, ',');
  return text;
}

std::string rate(double perSecond) {
  constexpr std::string_view units = " kMGTPE";
  if (perSecond > 0 && perSecond < 0.05) return "<0.1";
  if (perSecond < 9.95) return fixed(perSecond, 1, "");
  if (perSecond < 9999.5) return fixed(perSecond, 0, "");
  std::size_t unit = 0;
  while (perSecond >= 999.5 && unit + 1 < units.size()) {
    perSecond /= 1000;
    ++unit;
  }
  return fixed(perSecond, perSecond < 9.95 ? 1 : 0, units.substr(unit, 1));
}

std::string seconds(double seconds) {
  return fixed(seconds, 1, " s");
}

std::string percentage(double percent) {
  if (percent < 0.05) return "<0.1%";
  return percent < 99.95 ? fixed(percent, 1, "%") : "100%";
}

}  // namespace loamshow
