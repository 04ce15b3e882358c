#include "core/numbers.h"

#include <cmath>
#include <string>

namespace zrn {

double LeadingNumber(const QString& text) {
  std::string digits;
  qsizetype i = 0;
  const qsizetype n = text.size();
  auto skipBlanks = [&] {
    while (i < n && (text[i] == ' ' || text[i] == '\t' || text[i] == '\n' || text[i] == '\r')) {
      ++i;
    }
  };
  auto takeDigits = [&] {
    bool any = false;
    for (skipBlanks(); i < n && text[i].isDigit() && text[i].unicode() < 128; skipBlanks()) {
      digits += static_cast<char>(text[i].unicode());
      ++i;
      any = true;
    }
    return any;
  };

  skipBlanks();
  if (i < n && (text[i] == '-' || text[i] == '+')) {
    digits += static_cast<char>(text[i].unicode());
    ++i;
  }
  bool any = takeDigits();
  if (i < n && text[i] == '.') {
    digits += '.';
    ++i;
    any = takeDigits() || any;
  }
  if (!any) {
    return 0.0;
  }
  if (i < n && (text[i] == 'e' || text[i] == 'E' || text[i] == 'd' || text[i] == 'D')) {
    std::string exponent = "e";
    qsizetype j = i + 1;
    if (j < n && (text[j] == '-' || text[j] == '+')) {
      exponent += static_cast<char>(text[j].unicode());
      ++j;
    }
    bool expDigits = false;
    while (j < n && text[j].isDigit() && text[j].unicode() < 128 && exponent.size() < 8) {
      exponent += static_cast<char>(text[j].unicode());
      ++j;
      expDigits = true;
    }
    if (expDigits) {
      digits += exponent;
    }
  }
  // Overlong digit runs saturate to infinity; callers treat that as an overflow.
  return std::strtod(digits.c_str(), nullptr);
}

double RoundHalfEven(double value) {
  return std::nearbyint(value);
}

}  // namespace zrn
