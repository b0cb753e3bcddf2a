#pragma once
// The framework's conversions between text and numbers: every real number becomes an integer by
// dropping its fraction, and a text's value is the number it starts with.

#include <QString>

namespace fw {

// The leading number of a text ("12.5px" is 12.5); 0 when there is none.
double Val(const QString &text);
// A real number to an integer, dropping the fraction (saturating at the int range).
int toInt(double v);
// Whether a text says yes as launchers and settings files write it: "1", "yes", "true" (any case,
// blanks around ignored).
bool isYes(const QString &text);

} // namespace fw
