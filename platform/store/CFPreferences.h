#pragma once
// The per-user, per-application preference store: one property list per domain in the user's
// configuration folder. CFPreferences objects are light handles; the values live in the
// process-wide PreferenceDomains, so replacing a handle loses nothing.

#include "platform/store/PlistStore.h"

#include <QHash>
#include <memory>

namespace fw {

class PreferenceDomains {
public:
    // folder: where "<domain>.plist" files live ($XDG_CONFIG_HOME in the program).
    explicit PreferenceDomains(QString folder);
    ~PreferenceDomains();
    PlistStore &domain(const QString &name);
    QString pathOf(const QString &name) const;

private:
    QString m_folder;
    QHash<QString, std::shared_ptr<PlistStore>> m_domains;
};

class CFPreferences {
public:
    explicit CFPreferences(PreferenceDomains &domains) : m_domains(domains) {}

    // A domain that is empty (not set up yet) answers as if no key were there.
    StoreObject CopyAppValue(const QString &key, const QString &domain);
    bool CopyAppBooleanValue(const QString &key, const QString &domain);
    qint64 CopyAppIntegerValue(const QString &key, const QString &domain);
    void SetAppValue(const QString &key, const StoreObject &value, const QString &domain);
    bool AppSynchronize(const QString &domain);

private:
    PreferenceDomains &m_domains;
};

} // namespace fw
