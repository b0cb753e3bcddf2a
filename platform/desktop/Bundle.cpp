#include "platform/desktop/Bundle.h"

#include "platform/store/PlistStore.h"

#include <QDir>
#include <QFileInfo>
#include <cstdlib>
#include <plist/plist.h>

namespace fw {

Bundle::Bundle(const QString &executableDir)
{
    QDir d(executableDir);
    d.cdUp(); // Contents
    d.cdUp(); // Vantrel.app
    m_root = d.absolutePath();
}

static QString infoString(const QString &infoPlist, const char *key)
{
    auto loaded = plistfile::load(infoPlist);
    if (loaded.state != plistfile::State::Ok) return {};
    plist_t node = plist_dict_get_item(loaded.root.get(), key);
    if (!node || plist_get_node_type(node) != PLIST_STRING) return {};
    char *s = nullptr;
    plist_get_string_val(node, &s);
    QString out = QString::fromUtf8(s ? s : "");
    std::free(s);
    return out;
}

QString Bundle::shortVersion() const
{
    return infoString(infoPlist(), "CFBundleShortVersionString");
}

QString Bundle::executableOf(const QString &bundlePath)
{
    const QString exe = infoString(bundlePath + "/Contents/Info.plist", "CFBundleExecutable");
    if (!exe.isEmpty() && !exe.contains('/')) return bundlePath + "/Contents/MacOS/" + exe;
    return bundlePath + "/Contents/MacOS/" + QFileInfo(bundlePath).completeBaseName();
}

} // namespace fw
