#pragma once
// The application bundle, found from the program's own location so the bundle can be moved:
// <bundle>/Contents/MacOS/Vantrel.

#include <QString>

namespace fw {

class Bundle {
public:
    // executableDir: the folder of the running program (Contents/MacOS).
    explicit Bundle(const QString &executableDir);

    QString root() const { return m_root; } // .../Vantrel.app
    QString contents() const { return m_root + "/Contents"; }
    QString executableDir() const { return contents() + "/MacOS"; }
    QString resources() const { return contents() + "/Resources"; }
    QString infoPlist() const { return contents() + "/Info.plist"; }

    // CFBundleShortVersionString of the bundle, empty when it can't be read.
    QString shortVersion() const;
    // The program inside a bundle: CFBundleExecutable, or the bundle's name without ".app".
    static QString executableOf(const QString &bundlePath);

private:
    QString m_root;
};

} // namespace fw
