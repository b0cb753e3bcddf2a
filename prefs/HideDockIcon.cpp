#include "prefs/HideDockIcon.h"

#include "app/App.h"
#include "platform/Failure.h"
#include "platform/PlistStore.h"
#include "platform/Services.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <plist/plist.h>

namespace dockicon {

static constexpr const char *kKey = "LSUIElement";

QString childIgnoringCase(const QString &folder, const QString &name)
{
    const QDir dir(folder);
    if (!dir.exists()) return {};
    if (QFileInfo::exists(dir.filePath(name))) return dir.filePath(name);
    for (const QString &entry : dir.entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot))
        if (entry.compare(name, Qt::CaseInsensitive) == 0) return dir.filePath(entry);
    return {};
}

// The bundle's property list parsed, or null when a step of the path is missing or the data
// doesn't parse. A top level that is not a dictionary fails the checked cast.
static fw::PlistPtr readDictionary(const QString &bundlePath, QString *file)
{
    if (bundlePath.isEmpty()) return nullptr;
    const QString contents = childIgnoringCase(bundlePath, "Contents");
    if (contents.isEmpty()) return nullptr;
    *file = childIgnoringCase(contents, "info.plist");
    if (file->isEmpty()) return nullptr;
    QFile f(*file);
    if (!f.open(QIODevice::ReadOnly)) return nullptr;
    const QByteArray data = f.readAll();
    f.close();
    plist_t node = nullptr;
    if (!data.isEmpty() && data.size() < 0x7fffffff)
        plist_from_memory(data.constData(), uint32_t(data.size()), &node);
    fw::PlistPtr root(node);
    if (root && plist_get_node_type(node) != PLIST_DICT) throw fw::IllegalCastException();
    return root;
}

static bool numberValue(plist_t node, qint64 *out)
{
    switch (plist_get_node_type(node)) {
    case PLIST_UINT: {
        uint64_t u = 0;
        plist_get_uint_val(node, &u);
        *out = qint64(u);
        return true;
    }
    case PLIST_REAL: {
        double d = 0;
        plist_get_real_val(node, &d);
        *out = qint64(d);
        return true;
    }
    default:
        return false;
    }
}

bool isHidden(const QString &bundlePath)
{
    QString file;
    const fw::PlistPtr dict = readDictionary(bundlePath, &file);
    if (!dict) return false;
    plist_t value = plist_dict_get_item(dict.get(), kKey);
    if (!value) return false;
    qint64 n = 0;
    if (!numberValue(value, &n)) throw fw::IllegalCastException();
    return n == 1;
}

void setHidden(const QString &bundlePath, bool hidden)
{
    QString file;
    const fw::PlistPtr dict = readDictionary(bundlePath, &file);
    if (!dict) return;
    if (!plist_dict_get_item(dict.get(), kKey)) plist_dict_set_item(dict.get(), kKey, plist_new_uint(1));
    plist_dict_set_item(dict.get(), kKey, plist_new_uint(hidden ? 1 : 0));
    // Replaced whole through a temporary file, keeping the file's mode: a failed write leaves
    // the old file, and a read-only bundle is left as it is.
    fw::plistfile::writeAtomically(file, dict.get());
}

} // namespace dockicon

bool isDockIconHidden() { return dockicon::isHidden(App::instance().services().bundle.root()); }

void setDockIconHidden(bool hidden)
{
    dockicon::setHidden(App::instance().services().bundle.root(), hidden);
}
