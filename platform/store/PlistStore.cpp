#include "platform/store/PlistStore.h"

#include "platform/core/Logging.h"
#include "platform/files/AtomicFile.h"
#include "platform/store/PlistReader.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <plist/plist.h>

namespace fw {

void PlistDeleter::operator()(void *p) const
{
    if (p) plist_free(static_cast<plist_t>(p));
}

namespace plistfile {

Loaded read(const QString &path)
{
    Loaded out;
    plist_t node = nullptr;
    const char *why = nullptr;
    const auto outcome = plistread::readFile(QFile::encodeName(path).constData(), &node, &why);
    out.root.reset(node);
    if (outcome == plistread::Outcome::Ok) out.state = State::Ok;
    if (outcome == plistread::Outcome::Refused) {
        qCDebug(lcStore) << "unreadable:" << path << why;
        out.state = State::Corrupt;
    }
    return out;
}

Loaded load(const QString &path)
{
    Loaded out = read(path);
    if (out.state == State::Ok && plist_get_node_type(out.root.get()) != PLIST_DICT) {
        out.root.reset();
        out.state = State::Corrupt;
    }
    return out;
}

bool writeAtomically(const QString &path, void *node, int mode)
{
    // The writer recurses once per level: nothing deeper than the reader takes back.
    if (const char *why = plistread::outsideLimits(plistread::scanTree(node))) {
        qCWarning(lcStore) << "not written:" << path << why;
        return false;
    }
    const QByteArray bytes = plistXml(node);
    if (bytes.isEmpty()) return false;
    // Preferences are private to the user unless told otherwise.
    return writeFileReplacing(path, bytes, mode < 0 ? 0600 : mode);
}

} // namespace plistfile

PlistStore::PlistStore(QString path) : m_path(std::move(path)) {}
PlistStore::~PlistStore() = default;

void PlistStore::ensureLoaded()
{
    if (m_loaded) return;
    m_loaded = true;
    // What a writer killed in the middle of a write left goes at the start, not at the next write.
    removeTemporaryLeftovers(QFileInfo(m_path).absolutePath());
    auto loaded = plistfile::load(m_path);
    m_dict =
        loaded.state == plistfile::State::Ok ? std::move(loaded.root) : PlistPtr(plist_new_dict());
}

StoreObject PlistStore::value(const QString &key)
{
    ensureLoaded();
    for (auto it = m_pending.crbegin(); it != m_pending.crend(); ++it)
        if (it->first == key) return it->second;
    return StoreValue::fromNode(plist_dict_get_item(m_dict.get(), key.toUtf8().constData()));
}

void PlistStore::setValue(const QString &key, const StoreObject &value)
{
    ensureLoaded();
    m_pending.append({key, value});
}

bool PlistStore::synchronize()
{
    ensureLoaded();
    auto disk = plistfile::load(m_path);
    PlistPtr merged =
        disk.state == plistfile::State::Ok ? std::move(disk.root) : PlistPtr(plist_new_dict());
    bool ok = true;
    if (!m_pending.isEmpty()) {
        for (const auto &[key, value] : m_pending) {
            const QByteArray k = key.toUtf8();
            if (value)
                plist_dict_set_item(merged.get(), k.constData(), value->toNode());
            else
                plist_dict_remove_item(merged.get(), k.constData());
        }
        if (disk.state == plistfile::State::Corrupt) {
            // Never overwrite what could not be read: keep it beside the new file.
            const QString aside = m_path + ".unreadable-" +
                                  QDateTime::currentDateTimeUtc().toString("yyyyMMddThhmmss");
            QFile::rename(m_path, aside);
            qCWarning(lcStore) << "unreadable, kept as" << aside;
        }
        QDir().mkpath(QFileInfo(m_path).absolutePath()); // a first start: no config folder yet
        ok = plistfile::writeAtomically(m_path, merged.get());
        if (ok) m_pending.clear();
    }
    if (ok) m_dict = std::move(merged);
    return ok;
}

} // namespace fw
