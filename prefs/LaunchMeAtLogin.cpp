#include "prefs/LaunchMeAtLogin.h"

#include "platform/core/EventLoop.h"
#include "platform/desktop/LoginItems.h"
#include "platform/framework/Application.h"
#include "platform/framework/Services.h"

#include <QFileInfo>

namespace loginitems {

static bool same(const QString &a, const QString &b)
{
    return a.compare(b, Qt::CaseInsensitive) == 0;
}

QString autostartFolder()
{
    return fw::configHome() + "/autostart";
}

void setLaunchAtLogin(bool value, const QString &bundlePath, const QString &folder)
{
    if (bundlePath.isEmpty()) return;
    const QString bundleName = QFileInfo(bundlePath).fileName();
    fw::LoginItems items(folder);
    // Taken once: after a removal the later entries move down and are read past the end, and
    // the entry right behind a removed one is not looked at in this call.
    const int last = items.OldCountOfLoginItems(false) - 1;
    bool found = false;
    for (int i = 0; i <= last; ++i) {
        const QString name = items.OldLoginItemPropertyAtIndex(2, i, false);
        const QString path = items.OldLoginItemPropertyAtIndex(1, i, false);
        if (same(name, bundleName)) {
            if (!value) {
                if (items.OldRemoveLoginItem(bundlePath, false)) found = true;
            } else if (!same(path, bundlePath)) {
                items.OldRemoveLoginItemAtIndex(i, false); // a stale entry of the moved program
            } else {
                found = true;
            }
        }
        fw::yieldOnce();
    }
    if (value && !found) items.OldAddLoginItem(bundlePath, false, false);
}

bool getLaunchAtLogin(const QString &bundlePath, const QString &folder)
{
    if (bundlePath.isEmpty()) return false;
    fw::LoginItems items(folder);
    const int last = items.OldCountOfLoginItems(false) - 1;
    for (int i = 0; i <= last; ++i) {
        (void)items.OldLoginItemPropertyAtIndex(2, i, false);
        if (same(items.OldLoginItemPropertyAtIndex(1, i, false), bundlePath)) return true;
        fw::yieldOnce();
    }
    return false;
}

} // namespace loginitems

void SetLaunchAtLogin(bool value)
{
    loginitems::setLaunchAtLogin(value, fw::Application::instance().services().bundle.root(),
                                 loginitems::autostartFolder());
}

bool GetLaunchAtLogin()
{
    return loginitems::getLaunchAtLogin(fw::Application::instance().services().bundle.root(),
                                        loginitems::autostartFolder());
}
