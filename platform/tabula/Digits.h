#pragma once

#include <array>
#include <bit>
#include <cstring>

#include "platform/Mote.h"

namespace tabula {

inline constexpr std::size_t mostDigits = 20;  // of an unsigned 64-bit number

namespace detail {

inline constexpr auto powersOfTen = [] {
  std::array<U64, mostDigits> powers{};
  U64 power = 1;
  for (U64& entry : powers) {
    entry = power;
    power *= 10;
  }
  return powers;
}();

inline constexpr auto digitPairs = [] {
  std::array<char, 200> pairs{};
  for (std::size_t i = 0; i < 100; ++i) {
    pairs[2 * i] = static_cast<char>('0' + i / 10);
    pairs[2 * i + 1] = static_cast<char>('0' + i % 10);
  }
  return pairs;
}();

}  // namespace detail

/// The number of decimal digits; 1 for 0.
inline unsigned digitCount(U64 number) noexcept {
  const U64 counted = number | 1U;  // as many digits as the number, and 1 for 0
  // 1233 / 4096 is just above log10(2): the estimate from the bit width is exact or one too high.
  const unsigned estimate = static_cast<unsigned>(std::bit_width(counted)) * 1233U >> 12U;
  return estimate + 1 - static_cast<unsigned>(counted < detail::powersOfTen[estimate]);
}

/// Writes the decimal digits so that they end before `end`; returns where they begin.
inline char* writeDigits(char* end, U64 number) noexcept {
  while (number >= 100) {
    end -= 2;
    std::memcpy(end, &detail::digitPairs[number % 100 * 2], 2);
    number /= 100;
  }
  if (number >= 10) {
    end -= 2;
    std::memcpy(end, &detail::digitPairs[number * 2], 2);
  } else {
    *--end = static_cast<char>('0' + number);
  }
  return end;
}

}  // namespace tabula
