// The display form of floating values.
#include <algorithm>
#include <charconv>
#include <cmath>
#include <string>

#include "store/propertyvalues.h"

namespace {

constexpr int kFixedLength = 12;     // the longest fixed form that is shown
constexpr int kExactDigits = 17;     // a 64-bit value has no more; those behind are zeros
constexpr int kExponentDigits = 3;   // always as many
constexpr int kConversionRoom = 400; // a 64-bit value in full, with places

struct Digits {
    bool negative;
    std::string digits; // without leading zeros
    int point;          // the decimal point stands before this digit; negative: zeros stand between
};

std::string Convert(double value, std::chars_format format, int precision) {
    char text[kConversionRoom];
    const std::to_chars_result result = std::to_chars(text, text + sizeof(text), value, format, precision);
    return std::string(text, result.ptr);
}

Digits LargeDigits(double magnitude, int point, int places) {
    // "d.dddde+xx" with all digits that count
    const std::string scientific = Convert(magnitude, std::chars_format::scientific, kExactDigits - 1);
    std::string digits = scientific.substr(0, 1) + scientific.substr(2, kExactDigits - 1);
    digits.append(static_cast<std::size_t>(point + places - kExactDigits), '0');
    return {false, digits, point};
}

Digits RoundedDigits(double value, int places) {
    const double magnitude = std::fabs(value);
    const std::string fixed = Convert(magnitude, std::chars_format::fixed, places);
    const int point = static_cast<int>(fixed.find('.'));
    Digits result = {};
    if (point + places > kExactDigits && magnitude >= 1.0) {
        result = LargeDigits(magnitude, point, places);
    } else {
        const std::string all = fixed.substr(0, point) + fixed.substr(point + 1);
        const std::size_t zeros = std::min(all.find_first_not_of('0'), all.size());
        result.digits = all.substr(zeros);
        result.point = point - static_cast<int>(zeros);
    }
    result.negative = value < 0;
    return result;
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
    // Up to the first zero, not merely without the trailing ones.
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

std::string FloatText(double value, int places) {
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
    for (const char character : narrow) {
        if (length < kValueTextCapacity - 1)
            text[length++] = static_cast<WCHAR>(character);
    }
    text[length] = 0;
}
