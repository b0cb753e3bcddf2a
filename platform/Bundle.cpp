#include "platform/Bundle.h"

#include "platform/PlistStore.h"

#include <QDir>
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

QString Bundle::shortVersion() const
{
    auto loaded = plistfile::load(infoPlist());
    if (loaded.state != plistfile::State::Ok) return {};
    plist_t node = plist_dict_get_item(loaded.root.get(), "CFBundleShortVersionString");
    if (!node || plist_get_node_type(node) != PLIST_STRING) return {};
    char *s = nullptr;
    plist_get_string_val(node, &s);
    QString out = QString::fromUtf8(s ? s : "");
    std::free(s);
    return out;
}

} // namespace fw
