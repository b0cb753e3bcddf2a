#pragma once
// Running an external command. Mode 0 is synchronous: Execute returns when the command has
// ended, and the event loop stands still meanwhile. Commands are split on blanks into an argv
// and never handed to a shell.

#include <QString>
#include <QStringList>
#include <functional>

namespace fw {

// The service behind Shell: runs argv to its end. Tests swap in a fake.
class CommandRunner {
public:
    virtual ~CommandRunner() = default;
    virtual int run(const QStringList &argv) = 0;
};

// Finds programs through PATH, with the bundle's own helpers after the user's entries, so that a
// user's (or a test's) program of the same name wins.
class ProcessRunner : public CommandRunner {
public:
    explicit ProcessRunner(QString helperDir) : m_helperDir(std::move(helperDir)) {}
    int run(const QStringList &argv) override;
    QString resolve(const QString &program) const;
    // Kills the running command's process group (what it started too). Async-signal-safe: a
    // signal handler's, so that a quit never waits for a selection to end.
    static void stopRunning() noexcept;

private:
    QString m_helperDir;
};

class Shell {
public:
    explicit Shell(CommandRunner &runner) : m_runner(runner) {}
    int Mode = 0;
    void Execute(const QString &command);

private:
    CommandRunner &m_runner;
};

} // namespace fw
