#include "prefs/HideDockIcon.h"

#include "platform/core/Failure.h"
#include "platform/core/Numbers.h"
#include "platform/framework/Application.h"
#include "platform/framework/Services.h"
#include "platform/store/PlistStore.h"

#include <QCryptographicHash>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <cstdlib>
#include <fcntl.h>
#include <plist/plist.h>
#include <unistd.h>

namespace dockicon {

static constexpr const char *kKey = "LSUIElement";

QString childIgnoringCase(const QString &folder, const QString &name)
{
    const QDir dir(folder);
    if (!dir.exists()) return {};
    if (QFileInfo::exists(dir.filePath(name))) return dir.filePath(name);
    for (const QString &entry :
         dir.entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot))
        if (entry.compare(name, Qt::CaseInsensitive) == 0) return dir.filePath(entry);
    return {};
}

// Where this user's copy of a read-only bundle's property list lives: the flag of an installed
// program that the user may not change is kept in the user's own configuration instead.
static QString userCopyOf(const QString &bundlePath)
{
    return fw::configHome() + "/Vantrel/" +
           QCryptographicHash::hash(QFileInfo(bundlePath).absoluteFilePath().toUtf8(),
                                    QCryptographicHash::Sha1)
               .toHex()
               .left(12) +
           ".Info.plist";
}

static bool writable(const QString &file)
{
    return ::faccessat(AT_FDCWD, QFile::encodeName(file).constData(), W_OK, AT_EACCESS) == 0 &&
           ::faccessat(AT_FDCWD, QFile::encodeName(QFileInfo(file).absolutePath()).constData(),
                       W_OK, AT_EACCESS) == 0;
}

// The property list as this user sees it: the bundle's own, or the user's copy of it when the
// bundle can't be written and a copy exists.
static QString effectiveFile(const QString &bundlePath)
{
    if (bundlePath.isEmpty()) return {};
    const QString contents = childIgnoringCase(bundlePath, "Contents");
    if (contents.isEmpty()) return {};
    const QString own = childIgnoringCase(contents, "info.plist");
    if (own.isEmpty()) return {};
    const QString copy = userCopyOf(bundlePath);
    return !writable(own) && QFileInfo::exists(copy) ? copy : own;
}

// The property list parsed, or null when a step of the path is missing or the file is not one
// the reader takes. A top level that is not a dictionary fails the checked cast.
static fw::PlistPtr readDictionary(const QString &bundlePath, QString *file)
{
    *file = effectiveFile(bundlePath);
    if (file->isEmpty()) return nullptr;
    fw::plistfile::Loaded loaded = fw::plistfile::read(*file);
    if (loaded.root && plist_get_node_type(loaded.root.get()) != PLIST_DICT)
        throw fw::IllegalCastException();
    return std::move(loaded.root);
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
    if (!plist_dict_get_item(dict.get(), kKey))
        plist_dict_set_item(dict.get(), kKey, plist_new_uint(1));
    plist_dict_set_item(dict.get(), kKey, plist_new_uint(hidden ? 1 : 0));
    // Replaced whole through a temporary file, keeping the file's mode: a failed write leaves
    // the old file. A bundle this user can't write keeps its file; the user's copy takes the
    // change.
    if (!writable(file)) {
        file = userCopyOf(bundlePath);
        QDir().mkpath(QFileInfo(file).absolutePath());
    }
    fw::plistfile::writeAtomically(file, dict.get());
}

bool hiddenAtLaunch(const QString &bundlePath)
{
    // As a launcher reads the key: a number, a boolean or a text all count, and a file that
    // can't be read means shown. Nothing here fails.
    try {
        QString file;
        const fw::PlistPtr dict = readDictionary(bundlePath, &file);
        plist_t value = dict ? plist_dict_get_item(dict.get(), kKey) : nullptr;
        if (!value) return false;
        qint64 n = 0;
        if (numberValue(value, &n)) return n == 1;
        if (plist_get_node_type(value) == PLIST_BOOLEAN) {
            uint8_t b = 0;
            plist_get_bool_val(value, &b);
            return b != 0;
        }
        if (plist_get_node_type(value) == PLIST_STRING) {
            char *text = nullptr;
            plist_get_string_val(value, &text);
            const QString t = QString::fromUtf8(text ? text : "");
            std::free(text);
            return fw::isYes(t);
        }
    } catch (const fw::IllegalCastException &) {
    }
    return false;
}

} // namespace dockicon

bool isDockIconHidden()
{
    return dockicon::isHidden(fw::Application::instance().services().bundle.root());
}

bool isDockIconHiddenAtLaunch()
{
    return dockicon::hiddenAtLaunch(fw::Application::instance().services().bundle.root());
}

void setDockIconHidden(bool hidden)
{
    dockicon::setHidden(fw::Application::instance().services().bundle.root(), hidden);
}
