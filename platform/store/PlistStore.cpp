#include "platform/store/PlistStore.h"

#include "platform/files/AtomicFile.h"

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

Loaded load(const QString &path)
{
    Loaded out;
    QFile f(path);
    if (!f.exists()) return out;
    if (!f.open(QIODevice::ReadOnly)) {
        out.state = State::Corrupt;
        return out;
    }
    const QByteArray bytes = f.readAll();
    plist_t node = nullptr;
    if (!bytes.isEmpty() && bytes.size() < 0x7fffffff)
        plist_from_memory(bytes.constData(), static_cast<uint32_t>(bytes.size()), &node);
    if (!node || plist_get_node_type(node) != PLIST_DICT) {
        if (node) plist_free(node);
        out.state = State::Corrupt;
        return out;
    }
    out.state = State::Ok;
    out.root.reset(node);
    return out;
}

bool writeAtomically(const QString &path, void *node, int mode)
{
    char *xml = nullptr;
    uint32_t len = 0;
    plist_to_xml(static_cast<plist_t>(node), &xml, &len);
    if (!xml) return false;
    const QByteArray bytes(xml, qsizetype(len));
    plist_to_xml_free(xml);
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
    auto loaded = plistfile::load(m_path);
    m_dict = loaded.state == plistfile::State::Ok ? std::move(loaded.root)
                                                    : PlistPtr(plist_new_dict());
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
    PlistPtr merged = disk.state == plistfile::State::Ok ? std::move(disk.root)
                                                         : PlistPtr(plist_new_dict());
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
            const QString aside =
                m_path + ".unreadable-" + QDateTime::currentDateTimeUtc().toString("yyyyMMddThhmmss");
            QFile::rename(m_path, aside);
        }
        QDir().mkpath(QFileInfo(m_path).absolutePath()); // a first start: no config folder yet
        ok = plistfile::writeAtomically(m_path, merged.get());
        if (ok) m_pending.clear();
    }
    if (ok) m_dict = std::move(merged);
    return ok;
}

} // namespace fw
