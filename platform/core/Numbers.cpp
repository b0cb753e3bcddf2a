#include "platform/core/Numbers.h"

#include <climits>
#include <cmath>

namespace fw {

double Val(const QString &text)
{
    int i = 0;
    const int n = text.size();
    while (i < n && text[i].isSpace())
        ++i;
    const int start = i;
    if (i < n && (text[i] == '+' || text[i] == '-')) ++i;
    int digits = 0;
    while (i < n && text[i].isDigit() && text[i].unicode() < 128)
        ++i, ++digits;
    if (i < n && text[i] == '.') {
        ++i;
        while (i < n && text[i].isDigit() && text[i].unicode() < 128)
            ++i, ++digits;
    }
    if (digits == 0) return 0.0;
    if (i < n && (text[i] == 'e' || text[i] == 'E')) {
        int j = i + 1;
        if (j < n && (text[j] == '+' || text[j] == '-')) ++j;
        const int expStart = j;
        while (j < n && text[j].isDigit() && text[j].unicode() < 128)
            ++j;
        if (j > expStart) i = j;
    }
    bool ok = false;
    const double v = text.mid(start, i - start).toDouble(&ok);
    return ok ? v : 0.0;
}

int toInt(double v)
{
    if (std::isnan(v)) return 0;
    if (v >= double(INT_MAX)) return INT_MAX;
    if (v <= double(INT_MIN)) return INT_MIN;
    return static_cast<int>(v);
}

bool isYes(const QString &text)
{
    const QString t = text.trimmed();
    return t == QLatin1String("1") || t.compare(QLatin1String("yes"), Qt::CaseInsensitive) == 0 ||
           t.compare(QLatin1String("true"), Qt::CaseInsensitive) == 0;
}

} // namespace fw
