#include "prefs/Preferences.h"

#include "platform/core/Failure.h"

namespace {
Preferences *g_module = nullptr;
}

Preferences::Preferences(fw::PreferenceDomains &domains) : m_domains(domains)
{
    g_module = this;
}

void Preferences::setQuartz(bool on)
{
    m_quartz = on;
    emit quartzChanged(on);
    fw::rethrowPending(); // a listener's failure is the setter's
}

void Preferences::setFormat(const QString &label, const QString &code)
{
    m_formatLabel = label;
    m_formatCode = code;
    emit formatChanged(code);
    fw::rethrowPending();
}

Preferences::~Preferences()
{
    if (g_module == this) g_module = nullptr;
}

Preferences &Preferences::module()
{
    return *fw::nilCheck(g_module);
}

std::unique_ptr<fw::CFPreferences> Preferences::newStore() const
{
    return std::make_unique<fw::CFPreferences>(m_domains);
}

void Preferences::initprefs()
{
    appname = QStringLiteral("com.Morlane.Vantrel");
    MyPref = newStore();
}

void Preferences::prefaddstringvalue(const PrefKey &key, const QString &value)
{
    addString(key, fw::NewCFString(value));
}

void Preferences::prefaddstringvalue(const PrefKey &key, const QByteArray &value)
{
    addString(key, fw::NewCFStringFromBytes(value));
}

void Preferences::addString(const PrefKey &key, const fw::StoreObject &v)
{
    const fw::StoreObject k = fw::NewCFString(key.str());
    if (!k || !v) return;
    fw::nilCheck(MyPref.get())->SetAppValue(k->toString(), v, appname);
    if (!MyPref) {
        if (msgBox) msgBox(QStringLiteral("an error occurred opening preferences"));
        return;
    }
    [[maybe_unused]] const bool synced = MyPref->AppSynchronize(appname);
}

QString Preferences::prefgetstringvalue(const PrefKey &key)
{
    const fw::StoreObject k = fw::NewCFString(key.str());
    if (!k) return {};
    const fw::StoreObject o = fw::nilCheck(MyPref.get())->CopyAppValue(k->toString(), appname);
    if (!o) return {};
    return o->toString(); // checked: another type raises
}
