#pragma once

#include <QString>

namespace zrn {

// The leading decimal number of a text, as the configuration file and time texts are read:
// blanks anywhere in the number are ignored, a sign, a fraction and an exponent are allowed,
// and a text that starts with no number reads as 0.
double LeadingNumber(const QString& text);

// Rounds to a whole number, halves to even (2.5 gives 2, 3.5 gives 4).
double RoundHalfEven(double value);

}  // namespace zrn
