// Short decimal numbers read and written eight characters at a time, as one word with the first of them
// lowest: how many digits there are is found without a branch for each, which no processor foretells in
// numbers of all lengths. All of it serves where kServes is true.
#pragma once

#include <array>
#include <bit>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstring>

#include "core/rooms.h"

namespace corvinade::core::words {

inline constexpr bool kServes = std::endian::native == std::endian::little;
inline constexpr std::size_t kReadAhead = 32;  // characters behind a number that have to be readable

inline constexpr std::array<double, 16> kPowersOfTen = {1e0, 1e1, 1e2,  1e3,  1e4,  1e5,  1e6,  1e7,
                                                        1e8, 1e9, 1e10, 1e11, 1e12, 1e13, 1e14, 1e15};

// The two digits of each number below 100, "00" to "99".
inline constexpr std::array<char, 200> kDigitPairs = [] {
    std::array<char, 200> pairs{};
    for (std::size_t i = 0; i < 100; ++i) {
        pairs[2 * i] = static_cast<char>('0' + i / 10);
        pairs[2 * i + 1] = static_cast<char>('0' + i % 10);
    }
    return pairs;
}();

using Word = std::uint64_t;

constexpr Word Each(unsigned byte) {
    return 0x0101010101010101U * byte;
}

inline Word Load(const char* at) {
    Word word = 0;
    std::memcpy(&word, at, sizeof word);
    return word;
}

// 0x80 in the lowest byte that is wanted; what stands above it tells nothing. 0 where there is none.
inline Word NoDigit(Word digits) {  // characters that '0' has been taken from, bit by bit
    return ((digits + Each(0x76)) | digits) & Each(0x80);
}
inline Word EqualTo(Word word, Word character) {
    const Word difference = word ^ character;
    return (difference - Each(1)) & ~difference & Each(0x80);
}
inline Word BelowOrBeyond(Word word) {  // blanks, control characters, and all that is not ASCII
    return ((word - Each(0x21)) | word) & Each(0x80);
}

inline unsigned Before(Word marks) {  // bytes before the lowest one that is not 0
    return static_cast<unsigned>(std::countr_zero(marks)) / 8;
}

// The number of eight digits; zeros may stand in front of it.
inline Word NumberOf(Word digits) {
    digits = digits * 10 + (digits >> 8);
    return ((digits & 0x000000FF000000FFU) * 0x000F424000000064U +
            ((digits >> 16) & 0x000000FF000000FFU) * 0x0000271000000001U) >>
           32;
}
// That of the first `count` digits, 1 to 7 of them.
inline Word NumberOf(Word digits, std::size_t count) {
    return NumberOf(digits << (64 - 8 * count));
}

// The characters that may be a number's decimal delimiter; both alike where one alone may.
struct Marks {
    char One, Other;
};

// Reads a decimal number of 1 to 15 digits at `at`, which ends behind it; `places` are those behind the
// decimal delimiter, which `delimiter` never is. One division rounds it correctly. False for any other field.
inline bool ShortNumber(const char*& at, Marks marks, char delimiter, double& value, std::size_t& places) {
    const char* p = at;
    const bool negative = *p == '-';
    p += static_cast<int>(negative);
    Word number = 0;
    places = 0;
    const Word whole = Load(p) ^ Each('0');
    const Word wholeEnd = NoDigit(whole);
    if (wholeEnd == 0) return false;
    const std::size_t wholeDigits = Before(wholeEnd);
    p += wholeDigits;
    if ((*p == marks.One || *p == marks.Other) && *p != delimiter) {
        const char* const point = ++p;
        const Word fraction = Load(p) ^ Each('0');
        const Word fractionEnd = NoDigit(fraction);
        places = fractionEnd == 0 ? 8 : Before(fractionEnd);
        p += places;
        if (places != 0 && wholeDigits + places <= 8 && fractionEnd != 0) {
            // Both parts in one word, which is the usual case.
            const Word both = (whole & ((Word{1} << 8 * wholeDigits) - 1))
                                  << (64 - 8 * (wholeDigits + places)) |
                              fraction << (64 - 8 * places);
            number = NumberOf(both);
        } else {
            if (wholeDigits > 0) number = NumberOf(whole, wholeDigits);
            unsigned digit = 0;
            for (p = point; (digit = static_cast<unsigned>(static_cast<unsigned char>(*p)) - '0') <= 9 &&
                            p - point <= 15;
                 ++p)
                number = number * 10 + digit;
            places = static_cast<std::size_t>(p - point);
        }
    } else if (wholeDigits > 0) {
        number = NumberOf(whole, wholeDigits);
    }
    const std::size_t digits = wholeDigits + places;
    if (digits < 1 || digits > 15) return false;
    // The sign without a branch: it changes from number to number.
    const double size = static_cast<double>(number) / kPowersOfTen[places];
    value = std::bit_cast<double>(std::bit_cast<Word>(size) | static_cast<Word>(negative) << 63);
    at = p;
    return true;
}

inline char* PutPair(char* at, Word pair) {
    std::memcpy(at, &kDigitPairs[2 * pair], 2);
    return at + 2;
}

// The digits of a number below 100,000,000, the first one lowest, without '0' added.
inline Word EightDigits(Word number) {
    // Two groups of four, four of two, eight digits: each step divides all groups at once.
    Word digits = number / 10000 | (number % 10000) << 32;
    Word upper = (digits * 10486 >> 20) & 0x0000007F0000007FU;
    digits = (digits - upper * 100) << 16 | upper;
    upper = (digits * 103 >> 10) & 0x000F000F000F000FU;
    return (digits - upper * 10) << 8 | upper;
}

inline void Put(char* at, Word characters) {
    std::memcpy(at, &characters, sizeof characters);
}

char* PutLarge(char* at, Word number);

// Digits of a whole number; up to 8 characters behind them are overwritten.
inline char* PutWhole(char* at, Word number) {
    if (number >= 100000000) return PutLarge(at, number);
    const Word digits = EightDigits(number);
    const unsigned zeros = Before(digits | Word{1} << 56);  // the last one is shown for 0 too
    Put(at, (digits | Each('0')) >> 8 * zeros);
    return at + (8 - zeros);
}

inline char* PutLarge(char* at, Word number) {
    at = PutWhole(at, number / 100000000);
    number %= 100000000;
    for (Word unit = 1000000; unit > 0; unit /= 100) at = PutPair(at, number / unit % 100);
    return at;
}

// Puts a value with `places` decimals; null where only the general formatter knows how it is rounded. Up to 8
// characters behind it are overwritten.
template <int places>
inline char* PutShort(char* at, double value, char decimal) {
    constexpr std::array<Word, 7> kUnits = {1, 10, 100, 1000, 10000, 100000, 1000000};
    constexpr Word kUnit = kUnits[places];
    // The general formatter rounds to 15 digits first, which moves the value by 5e-15 of itself at most,
    // and the product here by 2^-53 of itself.
    constexpr double kRoundings = 6e-15;
    const double scaled = std::fabs(value) * static_cast<double>(kUnit);
    if (!(scaled < 1e13)) return nullptr;
    const auto below = static_cast<std::int64_t>(scaled);
    const double behind = scaled - static_cast<double>(below) - 0.5;
    if (std::fabs(behind) <= kRoundings * scaled) return nullptr;
    const Word number = static_cast<Word>(below) + (behind > 0 ? 1U : 0U);
    *at = '-';
    at += static_cast<int>(value < 0) & static_cast<int>(number != 0);
    if (number < 100000000) {
        // Whole part and decimals are eight digits together, which is the usual case. At least one of the
        // whole part is shown.
        constexpr unsigned kWhole = 8 - places;
        const Word digits = EightDigits(number);
        const unsigned zeros = Before(digits | Word{1} << 8 * (kWhole - 1));
        const Word text = digits | Each('0');
        Put(at, text >> 8 * zeros);
        at += kWhole - zeros;
        if constexpr (places > 0) {
            Put(at, text >> 8 * kWhole << 8 | static_cast<unsigned char>(decimal));
            at += places + 1;
        }
        return at;
    }
    const Word whole = number / kUnit;
    at = PutWhole(at, whole);
    if constexpr (places > 0) {
        Word rest = number - whole * kUnit;
        *at++ = decimal;
        if constexpr (places % 2 == 1) {
            constexpr Word kFirst = kUnit / 10;
            *at++ = static_cast<char>('0' + rest / kFirst);
            rest %= kFirst;
        }
        if constexpr (places >= 6) at = PutPair(at, rest / 10000 % 100);
        if constexpr (places >= 4) at = PutPair(at, rest / 100 % 100);
        if constexpr (places >= 2) at = PutPair(at, rest % 100);
    }
    return at;
}

}  // namespace corvinade::core::words
