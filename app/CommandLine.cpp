#include "app/CommandLine.h"

#include "platform/framework/Services.h"

QString CommandLine::method() const
{
    switch (kind) {
    case Kind::Capture:
        return QStringLiteral("Capture");
    case Kind::Preferences:
        return QStringLiteral("ShowPreferences");
    case Kind::Quit:
        return QStringLiteral("Quit");
    default:
        return {};
    }
}

CommandLine parseCommandLine(const QStringList &arguments)
{
    CommandLine c;
    if (arguments.size() > 1) {
        c.kind = CommandLine::Kind::Bad;
        return c;
    }
    const QString a = arguments.value(0);
    if (a.isEmpty())
        c.kind = CommandLine::Kind::Run;
    else if (a == "--capture")
        c.kind = CommandLine::Kind::Capture;
    else if (a == "--preferences")
        c.kind = CommandLine::Kind::Preferences;
    else if (a == "--quit")
        c.kind = CommandLine::Kind::Quit;
    else if (a == "--help" || a == "-h")
        c.kind = CommandLine::Kind::Help;
    else
        c.kind = CommandLine::Kind::Bad;
    return c;
}

QString commandLineHelp()
{
    return QStringLiteral(
        "Usage: vantrel [--capture | --preferences | --quit | --help]\n"
        "\n"
        "Started once, Vantrel stays resident; Shift+Ctrl+2 captures. A later start hands its\n"
        "request to the running Vantrel and exits:\n"
        "  (nothing)       nothing more: it runs already\n"
        "  --capture       capture now, as the hot key does (bind this where the desktop keeps\n"
        "                  its own shortcuts, e.g. on Wayland)\n"
        "  --preferences   show the preferences\n"
        "  --quit          quit\n"
        "  --help          this text\n");
}

bool shouldStayX11(const QString &qpaPlatform, const QString &sessionType,
                   const QString &waylandDisplay, const QString &display)
{
    if (!qpaPlatform.isEmpty() || display.isEmpty()) return false;
    return fw::isWaylandSession(sessionType, waylandDisplay);
}
