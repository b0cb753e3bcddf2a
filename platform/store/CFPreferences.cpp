#include "platform/store/CFPreferences.h"

#include "platform/core/Numbers.h"

namespace fw {

PreferenceDomains::PreferenceDomains(QString folder) : m_folder(std::move(folder)) {}
PreferenceDomains::~PreferenceDomains() = default;

QString PreferenceDomains::pathOf(const QString &name) const
{
    return m_folder + "/" + name + ".plist";
}

PlistStore &PreferenceDomains::domain(const QString &name)
{
    auto &slot = m_domains[name];
    if (!slot) slot = std::make_shared<PlistStore>(pathOf(name));
    return *slot;
}

StoreObject CFPreferences::CopyAppValue(const QString &key, const QString &domain)
{
    if (domain.isEmpty()) return nullptr;
    return m_domains.domain(domain).value(key);
}

bool CFPreferences::CopyAppBooleanValue(const QString &key, const QString &domain)
{
    const auto v = CopyAppValue(key, domain);
    if (!v) return false;
    switch (v->kind()) {
    case StoreValue::Kind::Boolean:
        return v->toBoolean();
    case StoreValue::Kind::Integer:
        return v->toInteger() != 0;
    case StoreValue::Kind::String:
        return isYes(v->toString());
    default:
        return false;
    }
}

qint64 CFPreferences::CopyAppIntegerValue(const QString &key, const QString &domain)
{
    const auto v = CopyAppValue(key, domain);
    if (!v) return 0;
    if (v->isA(StoreValue::Kind::Integer)) return v->toInteger();
    if (v->isA(StoreValue::Kind::Boolean)) return v->toBoolean() ? 1 : 0;
    if (v->isA(StoreValue::Kind::String)) return v->toString().trimmed().toLongLong();
    return 0;
}

void CFPreferences::SetAppValue(const QString &key, const StoreObject &value, const QString &domain)
{
    if (domain.isEmpty()) return;
    m_domains.domain(domain).setValue(key, value);
}

bool CFPreferences::AppSynchronize(const QString &domain)
{
    if (domain.isEmpty()) return false;
    return m_domains.domain(domain).synchronize();
}

} // namespace fw
