// Text forms of floating-point numbers.
//
// None of these read the C or C++ locale: digits are produced and read with std::to_chars and
// std::from_chars, and the only locale-like setting is the DecimalSeparator of a TFormatSettings
// record (by default the global FormatSettings).
#pragma once

#include <optional>

#include "kernel/platform/format_settings.h"
#include "kernel/platform/string.h"

namespace veska {

// The platform's general form: the value rounded to 15 significant digits, trailing zeros
// dropped, no thousands separators.  With e the decimal exponent of the rounded value
// (value = d.ddd x 10^e), plain notation is used for -5 < e < 15 ("0.0001", "123456789012345")
// and scientific notation otherwise, written with an upper-case E and the exponent in as few
// digits as it needs, a sign only when negative ("1E-5", "1.5E-7", "1E15", "-2.5E20").  Zero is
// "0"; NaN and the infinities are "NAN", "INF" and "-INF".
String FloatToStr(double value, const TFormatSettings& settings = FormatSettings);

// The platform's unformatted form, as its Str procedure wrote a number given without width or
// precision: a blank for a value that is not negative (a minus sign otherwise), one digit, the dot,
// 14 digits, "E", the exponent's sign and four exponent digits: " 1.50000000000000E+0000",
// "-2.50000000000000E-0007".  The dot is fixed (it ignores DecimalSeparator), so the text reads
// back with TryStrToFloat under settings whose DecimalSeparator is the dot, as the defaults are.
// NaN and the infinities are "NAN", "INF" and "-INF".
String FloatToStrUnformatted(double value);

// The readers' one grammar: blanks around the number (spaces and tabs, or every code up to 32),
// an optional sign, digits with at most one decimal separator (any character of `separators`;
// at least one digit in all), an optional exponent (E or e, an optional sign and digits); or one
// of the words INF, +INF, -INF and NAN in any case.  None when the text is no number or one too
// large for a double; one too small reads as zero.
enum class FloatBlanks { SpacesAndTabs, ControlsAndSpace };
std::optional<double> ReadDecimalFloat(StringView text, FloatBlanks blanks, StringView separators);

// Reads a decimal number: optional blanks, an optional sign, digits with at most one
// DecimalSeparator (at least one digit in all), an optional exponent (E or e, an optional sign
// and digits) and optional blanks; or one of the words NAN, INF, +INF, -INF in any case.  A number
// too large for a double fails; one too small becomes zero.  The raising form throws
// EConvertError "'<text>' is not a valid floating point value".
bool TryStrToFloat(StringView text, double& value, const TFormatSettings& settings = FormatSettings);
double StrToFloat(StringView text, const TFormatSettings& settings = FormatSettings);

}  // namespace veska
