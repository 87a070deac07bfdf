#pragma once

// Converts numbers to decimal digits, several digits in one register. Most of the time of a show command is
// spent here: a row has four counts of up to 20 digits. There are no branches on the size of a count, because
// the sizes of successive counts are not predictable.

#ifdef __SSE2__
#include <emmintrin.h>
#endif

#include <bit>
#include <cstring>

#include "platform/Mote.h"

namespace tabula {

inline constexpr std::size_t mostDigits = 20;  // of an unsigned 64-bit number

/// writeBlanks may write up to this many bytes beyond its blanks, writeNumber up to as many before its
/// digits.
inline constexpr std::size_t writeSlack = 16;

namespace detail {

inline constexpr U64 tenTo8 = 100'000'000;
inline constexpr U64 tenTo16 = tenTo8 * tenTo8;

/// The eight digits of a number below 10^8, one byte of 0 to 9 each, the first in the lowest byte. The number
/// is split into groups of four digits, those into pairs, and those into digits, with all groups processed in
/// parallel. Divisions by 100 and 10 are multiplications by rounded-up reciprocals, exact below 10,000 and
/// 100.
inline U64 eightDigits(U64 number) noexcept {
  const U64 fours = (number / 10'000) | ((number % 10'000) << 32U);
  const U64 hundreds = ((fours * 10'486) >> 20U) & 0x0000007f'0000007f;
  const U64 pairs = hundreds | ((fours - 100 * hundreds) << 16U);
  const U64 tens = ((pairs * 103) >> 10U) & 0x000f'000f'000f'000f;
  return tens | ((pairs - 10 * tens) << 8U);
}

/// The sixteen digits of a number below 10^16, without wide registers.
class DigitsInWords {
 public:
  explicit DigitsInWords(U64 number) noexcept
      : high_(eightDigits(number / tenTo8)), low_(eightDigits(number % tenTo8)) {}

  /// The number of leading zeros; at most 15, because the last digit is always written.
  unsigned leadingZeros() const noexcept {
    constexpr U64 lastDigit = U64{1} << 56U;
    const int bits = high_ != 0 ? std::countr_zero(high_) : 64 + std::countr_zero(low_ | lastDigit);
    return static_cast<unsigned>(bits) / 8;
  }
  /// Writes digit i plus base[i] to at[i].
  void add(const char* base, char* at) const noexcept {
    for (unsigned i = 0; i < 8; ++i) {
      at[i] = static_cast<char>(base[i] + static_cast<char>(high_ >> (8 * i) & 0xf));
      at[8 + i] = static_cast<char>(base[8 + i] + static_cast<char>(low_ >> (8 * i) & 0xf));
    }
  }

 private:
  U64 high_;
  U64 low_;
};

/// The same for all sixteen digits in parallel, if the processor has registers of that width.
#ifdef __SSE2__
// NOLINTBEGIN(portability-simd-intrinsics): the portable version is above
class SixteenDigits {
 public:
  explicit SixteenDigits(U64 number) noexcept {
    const U32 high = static_cast<U32>(number / tenTo8);
    const U32 low = static_cast<U32>(number % tenTo8);
    const U64 lanes = U64{high / 10'000} | (U64{high % 10'000} << 16U) | (U64{low / 10'000} << 32U) |
                      (U64{low % 10'000} << 48U);
    const __m128i fours = _mm_cvtsi64_si128(static_cast<long long>(lanes));
    const __m128i hundreds = _mm_srli_epi16(_mm_mulhi_epu16(fours, _mm_set1_epi16(10'486)), 4);
    const __m128i rest = _mm_sub_epi16(fours, _mm_mullo_epi16(hundreds, _mm_set1_epi16(100)));
    const __m128i pairs = _mm_unpacklo_epi16(hundreds, rest);
    const __m128i tens = _mm_srli_epi16(_mm_mullo_epi16(pairs, _mm_set1_epi16(103)), 10);
    const __m128i ones = _mm_sub_epi16(pairs, _mm_mullo_epi16(tens, _mm_set1_epi16(10)));
    digits_ = _mm_or_si128(tens, _mm_slli_epi16(ones, 8));
  }

  unsigned leadingZeros() const noexcept {
    constexpr unsigned lastDigit = 1U << 15U;
    const auto zeros = static_cast<unsigned>(_mm_movemask_epi8(_mm_cmpeq_epi8(digits_, _mm_setzero_si128())));
    return static_cast<unsigned>(std::countr_zero(~zeros | lastDigit));
  }
  void add(const char* base, char* at) const noexcept {
    __m128i bytes;
    std::memcpy(&bytes, base, sizeof bytes);
    bytes = _mm_add_epi8(bytes, digits_);
    std::memcpy(at, &bytes, sizeof bytes);
  }

 private:
  __m128i digits_;
};
// NOLINTEND(portability-simd-intrinsics)
#else
using SixteenDigits = DigitsInWords;
#endif

/// The digits are added to 16 of these characters; from index 16 - n, the first n become blanks.
inline constexpr char blanksThenDigits[] = "                0000000000000000";

}  // namespace detail

/// Writes a number below 10^16 right-aligned into 16 bytes.
inline void writeSixteenWide(char* at, U64 number) noexcept {
  const detail::SixteenDigits digits(number);
  digits.add(detail::blanksThenDigits + 16 - digits.leadingZeros(), at);
}

/// Writes a number left-aligned; returns the end of its digits. Overwrites up to 15 bytes before `at`.
inline char* writeNumber(char* at, U64 number) noexcept {
  using namespace detail;
  constexpr const char* allDigits = blanksThenDigits + 16;
  if (number >= tenTo16) [[unlikely]] {
    at = writeNumber(at, number / tenTo16);
    SixteenDigits(number % tenTo16).add(allDigits, at);
    return at + 16;
  }
  const SixteenDigits digits(number);
  at -= digits.leadingZeros();
  digits.add(allDigits, at);
  return at + 16;
}

/// Copies a text, inline up to 32 bytes. Reads no byte outside the text.
inline void copyShort(char* to, const char* from, std::size_t size) noexcept {
  if (size > 32) {
    std::memcpy(to, from, size);
  } else if (size >= 16) {
    std::memcpy(to, from, 16);
    std::memcpy(to + size - 16, from + size - 16, 16);
  } else if (size >= 8) {
    std::memcpy(to, from, 8);
    std::memcpy(to + size - 8, from + size - 8, 8);
  } else if (size >= 4) {
    std::memcpy(to, from, 4);
    std::memcpy(to + size - 4, from + size - 4, 4);
  } else if (size > 0) {
    to[0] = from[0];
    to[size / 2] = from[size / 2];
    to[size - 1] = from[size - 1];
  }
}

/// Writes blanks, 16 at a time.
inline void writeBlanks(char* at, std::size_t size) noexcept {
  for (std::size_t done = 0; done < size; done += 16) std::memset(at + done, ' ', 16);
}

}  // namespace tabula
