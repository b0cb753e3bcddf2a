#pragma once
// The program's command line: a started program hands it to the one already running.
//   Vantrel [--capture | --preferences | --quit | --help]

#include <QString>
#include <QStringList>

struct CommandLine {
    enum class Kind { Run, Capture, Preferences, Quit, Help, Bad };
    Kind kind = Kind::Run;
    // The method of the running program that carries the request; empty for none.
    QString method() const;
};

CommandLine parseCommandLine(const QStringList &arguments); // without the program's name
QString commandLineHelp();

// Whether the program should ask Qt for X11 (XWayland) on a Wayland session: the user has not
// chosen a platform, and an X server is there. Window positions and the clipboard work there
// as the program needs.
bool shouldStayX11(const QString &qpaPlatform, const QString &sessionType,
                   const QString &waylandDisplay, const QString &display);
