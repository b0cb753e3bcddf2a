#include "platform/desktop/DesktopEntry.h"

namespace fw::desktopentry {

static QString escapeString(const QString &s)
{
    QString out;
    for (QChar c : s) {
        if (c == '\\')
            out += "\\\\";
        else if (c == '\n')
            out += "\\n";
        else if (c == '\t')
            out += "\\t";
        else if (c == '\r')
            out += "\\r";
        else
            out += c;
    }
    return out;
}

QString unescaped(const QString &s)
{
    QString out;
    for (int i = 0; i < s.size(); ++i) {
        if (s[i] == '\\' && i + 1 < s.size()) {
            const QChar n = s[++i];
            if (n == 's')
                out += ' ';
            else if (n == 'n')
                out += '\n';
            else if (n == 't')
                out += '\t';
            else if (n == 'r')
                out += '\r';
            else if (n == '\\')
                out += '\\';
            else
                out += '\\', out += n;
        } else {
            out += s[i];
        }
    }
    return out;
}

QString quoteExecArg(const QString &arg)
{
    static const QString reserved = QStringLiteral(" \t\n\"'\\><~|&;$*?#()`=%");
    bool needsQuotes = arg.isEmpty();
    for (QChar c : arg)
        if (reserved.contains(c)) needsQuotes = true;
    QString body;
    for (QChar c : arg) {
        if (c == '%')
            body += "%%"; // a literal percent, not a field code
        else if (needsQuotes && (c == '"' || c == '`' || c == '$' || c == '\\'))
            body += '\\', body += c;
        else
            body += c;
    }
    return needsQuotes ? '"' + body + '"' : body;
}

QString execValue(const QStringList &argv)
{
    QStringList parts;
    for (const QString &a : argv)
        parts << quoteExecArg(a);
    return escapeString(parts.join(' '));
}

QStringList parseExec(const QString &fileValue)
{
    const QString s = unescaped(fileValue);
    QStringList args;
    QString cur;
    bool inArg = false, quoted = false, content = false; // content: more than field codes
    for (int i = 0; i < s.size(); ++i) {
        const QChar c = s[i];
        if (quoted) {
            if (c == '\\' && i + 1 < s.size())
                cur += s[++i];
            else if (c == '"')
                quoted = false;
            else if (c == '%' && i + 1 < s.size() && s[i + 1] == '%')
                cur += '%', ++i;
            else
                cur += c;
            continue;
        }
        if (c == ' ' || c == '\t') {
            if (inArg && content) args << cur;
            cur.clear(), inArg = false, content = false;
            continue;
        }
        inArg = true;
        if (c == '"') {
            quoted = true, content = true;
        } else if (c == '%' && i + 1 < s.size()) {
            if (s[i + 1] == '%') cur += '%', content = true;
            ++i; // a field code stands for nothing here
        } else {
            cur += c, content = true;
        }
    }
    if (inArg && content) args << cur;
    return args;
}

QString value(const QString &fileText, const QString &key)
{
    bool inGroup = false;
    for (const QString &raw : fileText.split('\n')) {
        const QString line = raw.trimmed();
        if (line.startsWith('[')) {
            inGroup = line == "[Desktop Entry]";
            continue;
        }
        if (!inGroup || line.startsWith('#')) continue;
        const int eq = line.indexOf('=');
        if (eq < 0) continue;
        if (line.left(eq).trimmed() == key) return line.mid(eq + 1).trimmed();
    }
    return {};
}

QString applicationEntry(const QString &name, const QStringList &argv, const QString &comment)
{
    return QStringLiteral("[Desktop Entry]\nType=Application\nName=%1\nComment=%2\nExec=%3\n"
                          "Terminal=false\nX-GNOME-Autostart-enabled=true\n")
        .arg(escapeString(name), escapeString(comment), execValue(argv));
}

QString loginEntry(const QString &displayName, const QString &itemName, const QStringList &argv,
                   const QString &iconPath)
{
    return QStringLiteral(
               "[Desktop Entry]\nType=Application\nName=%1\nComment=%2\nExec=%3\nIcon=%4\n"
               "Terminal=false\nX-GNOME-Autostart-enabled=true\nX-Vantrel-Item-Name=%5\n")
        .arg(escapeString(displayName), QStringLiteral("Screen capture"), execValue(argv),
             escapeString(iconPath), escapeString(itemName));
}

} // namespace fw::desktopentry
