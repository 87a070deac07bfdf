#pragma once

// Converts numbers to decimal digits, several digits in one register. Most of the time of a show command is
// spent here: a row has four counts of up to 20 digits. There are no branches on the size of a count, because
// the sizes of successive counts are not predictable.

#ifdef __SSE2__
#include <emmintrin.h>
#endif

#include <array>
#include <bit>
#include <cstring>

#include "platform/Mote.h"

namespace tabula {

inline constexpr std::size_t mostDigits = 20;  // of an unsigned 64-bit number

/// The functions below may write up to this many bytes beyond the end of their result.
inline constexpr std::size_t writeSlack = 16;

namespace detail {

inline constexpr U64 tenTo8 = 100'000'000;
inline constexpr U64 tenTo16 = tenTo8 * tenTo8;
inline constexpr U64 eachByte = 0x0101010101010101;

inline constexpr auto powersOfTen = [] {
  std::array<U64, mostDigits> powers{};
  U64 power = 1;
  for (U64& entry : powers) {
    entry = power;
    power *= 10;
  }
  return powers;
}();

/// Sixteen digits, one byte of 0 to 9 each: eight per word, the first in the lowest byte.
struct SixteenDigits {
  U64 high;
  U64 low;
};

/// The digits of a number below 10^16. It is split into groups of four digits, those into pairs, and those
/// into digits, with all groups processed in parallel. Divisions by 100 and 10 are multiplications by
/// rounded-up reciprocals, exact below 10,000 and 100.
inline U64 eightDigits(U64 number) noexcept {
  const U64 fours = (number / 10'000) | ((number % 10'000) << 32U);
  const U64 hundreds = ((fours * 10'486) >> 20U) & 0x0000007f'0000007f;
  const U64 pairs = hundreds | ((fours - 100 * hundreds) << 16U);
  const U64 tens = ((pairs * 103) >> 10U) & 0x000f'000f'000f'000f;
  return tens | ((pairs - 10 * tens) << 8U);
}
inline SixteenDigits sixteenDigitsInWords(U64 number) noexcept {
  return {eightDigits(number / tenTo8), eightDigits(number % tenTo8)};
}

/// The same for all sixteen digits in parallel, if the processor has registers of that width.
#ifdef __SSE2__
// NOLINTBEGIN(portability-simd-intrinsics): the portable version is above
inline SixteenDigits sixteenDigits(U64 number) noexcept {
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
  const __m128i digits = _mm_or_si128(tens, _mm_slli_epi16(ones, 8));
  return {static_cast<U64>(_mm_cvtsi128_si64(digits)),
          static_cast<U64>(_mm_cvtsi128_si64(_mm_unpackhi_epi64(digits, digits)))};
}
// NOLINTEND(portability-simd-intrinsics)
#else
inline SixteenDigits sixteenDigits(U64 number) noexcept {
  return sixteenDigitsInWords(number);
}
#endif

/// Bits below the first digit that is not 0; the last digit counts as one.
inline unsigned leadingZeroBits(U64 digits) noexcept {
  return static_cast<unsigned>(std::countr_zero(digits | (U64{1} << 56U))) & 56U;
}

inline void storeEight(char* at, U64 bytes) noexcept {
  if constexpr (std::endian::native == std::endian::big) bytes = __builtin_bswap64(bytes);
  std::memcpy(at, &bytes, sizeof bytes);
}

}  // namespace detail

/// The number of decimal digits; 1 for 0.
inline unsigned digitCount(U64 number) noexcept {
  const U64 counted = number | 1U;  // as many digits as the number, and 1 for 0
  // 1233 / 4096 is just above log10(2): the estimate from the bit width is exact or one too high.
  const unsigned estimate = static_cast<unsigned>(std::bit_width(counted)) * 1233U >> 12U;
  return estimate + 1 - static_cast<unsigned>(counted < detail::powersOfTen[estimate]);
}

/// Writes a number below 10^16 right-aligned into 16 bytes.
inline void writeSixteenWide(char* at, U64 number) noexcept {
  using namespace detail;
  const SixteenDigits digits = sixteenDigits(number);
  // A blank is 0x20, a digit is 0x30 plus its value. The difference of 0x10 is added from the first digit on,
  // which is in the high word or, if that is 0, in the low word.
  constexpr U64 digitBits = 0x10 * eachByte;
  const U64 inHigh = digits.high != 0 ? 1 : 0;
  const U64 highBits = (digitBits << leadingZeroBits(digits.high)) & (U64{0} - inHigh);
  const U64 lowBits = digitBits << (leadingZeroBits(digits.low) & (inHigh - 1));
  storeEight(at, digits.high + 0x20 * eachByte + highBits);
  storeEight(at + 8, digits.low + 0x20 * eachByte + lowBits);
}

/// Writes a number left-aligned; returns the end of its digits.
inline char* writeNumber(char* at, U64 number) noexcept {
  using namespace detail;
  if (number >= tenTo16) [[unlikely]] {
    at = writeNumber(at, number / tenTo16);
    const SixteenDigits digits = sixteenDigits(number % tenTo16);
    storeEight(at, digits.high + '0' * eachByte);
    storeEight(at + 8, digits.low + '0' * eachByte);
    return at + 16;
  }
  const SixteenDigits digits = sixteenDigits(number);
  const U64 inHigh = digits.high != 0 ? 1 : 0;
  // The word of the first digit, and the next one. The leading zeros, which are in the low bytes, are shifted
  // out of the two words as of one 128-bit number.
  const U64 first = digits.high | (digits.low & (inHigh - 1));
  const U64 second = digits.low;
  const unsigned zeroBits = leadingZeroBits(first);
  const U64 carried = (second << 8U) << (56U - zeroBits);  // in two steps, because zeroBits may be 0
  storeEight(at, ((first >> zeroBits) | carried) + '0' * eachByte);
  storeEight(at + 8, (second >> zeroBits) + '0' * eachByte);
  return at + 8 * (1 + inHigh) - zeroBits / 8;
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
