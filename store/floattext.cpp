// The display form of floating values.
#include <algorithm>
#include <charconv>
#include <cmath>
#include <string>

#include "store/propertyvalues.h"

namespace {

constexpr int kFixedLength = 12;   // the longest fixed form that is shown
constexpr int kExactDigits = 17;   // a 64-bit value has no more; those behind are zeros
constexpr int kExponentDigits = 3; // always as many
constexpr int kConversionRoom = 32;

struct Digits {
    bool negative;
    std::string digits; // without leading zeros
    int point;          // the decimal point stands before this digit; negative: zeros stand between
};

Digits ExactDigits(double value) {
    char text[kConversionRoom]; // "d.dddde+xx"
    const std::to_chars_result result = std::to_chars(text, text + sizeof(text), std::fabs(value),
                                                      std::chars_format::scientific, kExactDigits - 1);
    int exponent = 0;
    const char* sign = text + kExactDigits + 2;
    std::from_chars(*sign == '+' ? sign + 1 : sign, result.ptr, exponent);
    return {value < 0, std::string(1, text[0]) + std::string(text + 2, kExactDigits - 1), exponent + 1};
}

// Half of the last digit is rounded up and never to the even digit, for the handheld rounded decimal digits.
Digits RoundedDigits(double value, int places) {
    Digits number = ExactDigits(value);
    const int wanted = number.point + places;
    if (wanted >= kExactDigits) {
        number.digits.append(static_cast<std::size_t>(wanted - kExactDigits), '0');
        return number;
    }
    if (wanted < 0)
        return {number.negative, "", -places};
    const bool up = number.digits[wanted] >= '5';
    number.digits.resize(wanted);
    int last = wanted - 1;
    for (; up && last >= 0 && number.digits[last] == '9'; --last)
        number.digits[last] = '0';
    if (up && last >= 0) {
        ++number.digits[last];
    } else if (up) {
        number.digits.insert(0, 1, '1');
        ++number.point;
    }
    return number;
}

void StripZeros(std::string& text) {
    while (!text.empty() && text.back() == '0')
        text.pop_back();
}

std::string FixedForm(const Digits& number) {
    std::string text = number.negative ? "-" : "";
    if (number.point >= 1) {
        text += number.digits.substr(0, number.point) + "." + number.digits.substr(number.point);
    } else {
        text += "0.";
        text.append(static_cast<std::size_t>(-number.point), '0');
        text += number.digits;
    }
    StripZeros(text);
    return text;
}

std::string ExponentForm(const Digits& number) {
    std::string text = number.negative ? "-" : "";
    text += number.digits.substr(0, 1) + ".";
    // Quirk: up to the first zero, and not merely without the trailing ones.
    const std::string rest = number.digits.substr(1);
    text += rest.substr(0, rest.find('0'));
    if (text.back() == '.')
        text += '0';
    text += number.point >= 1 ? "e+" : "e-";
    std::string exponent = std::to_string(std::abs(number.point - 1));
    exponent.insert(
        0, static_cast<std::size_t>(std::max(0, kExponentDigits - static_cast<int>(exponent.size()))), '0');
    return text + exponent;
}

// The fixed form of most values with kFloatPlaces, without their exact digits, which take long to find. Empty
// when it is too long, or when only these tell which way the last digit is rounded.
std::string CommonText(double value) {
    constexpr double kEnd = 1e7; // what exact digits add to values below is much less than what is doubtful
    constexpr double kDoubtful = 1e-3;
    constexpr unsigned kScale = 100'000;
    const double magnitude = std::fabs(value);
    if (!(magnitude < kEnd))
        return {};
    const auto whole = static_cast<unsigned>(magnitude);
    const double scaled = (magnitude - whole) * kScale;
    auto decimals = static_cast<unsigned>(scaled);
    const double rest = scaled - decimals;
    if (std::fabs(rest - 0.5) < kDoubtful)
        return {};
    decimals += rest > 0.5;
    char text[kConversionRoom] = "-";
    char* const start = text + (value < 0);
    char* out = std::to_chars(start, text + sizeof(text), whole + decimals / kScale).ptr;
    *out++ = '.';
    for (decimals %= kScale; decimals; decimals = 10 * decimals % kScale)
        *out++ = static_cast<char>('0' + 10 * decimals / kScale);
    return out - text <= kFixedLength ? std::string(text, out) : std::string();
}

std::string FloatText(double value, int places) {
    std::string common = places == kFloatPlaces ? CommonText(value) : std::string();
    if (!common.empty())
        return common;
    if (value == 0.0)
        return "0.";
    if (!std::isfinite(value))
        return std::isnan(value) ? "nan" : value < 0 ? "-inf" : "inf";
    const Digits number = RoundedDigits(value, places);
    std::string fixed = FixedForm(number);
    if (fixed.size() <= kFixedLength)
        return fixed;
    std::string text = ExponentForm(number);
    if (std::fabs(value) < 1.0)
        StripZeros(text);
    return text;
}

} // namespace

void FormatFloatText(double value, int places, WCHAR (&text)[kValueTextCapacity]) {
    const std::string narrow = FloatText(value, places);
    int length = 0;
    for (const char character : narrow)
        if (length < kValueTextCapacity - 1)
            text[length++] = static_cast<WCHAR>(character);
    text[length] = 0;
}
