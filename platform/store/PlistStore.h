#pragma once
// One preference domain kept in an XML property list. Reads see the values set in this run at
// once; set values reach the file at synchronize(), which merges them into what is on disk and
// replaces the file atomically (temporary file, fsync, rename), so a crash leaves the old file.

#include "platform/store/Value.h"

#include <QList>
#include <QPair>
#include <QString>

namespace fw {

// Owning handle of a libplist node.
struct PlistDeleter {
    void operator()(void *p) const;
};
using PlistPtr = std::unique_ptr<void, PlistDeleter>;

// Reading and writing a property-list file. Binary and XML layouts are read, through the checks
// of PlistReader.h (a file failing one is Corrupt); XML is written.
namespace plistfile {
enum class State { Missing, Ok, Corrupt };
struct Loaded {
    State state = State::Missing;
    PlistPtr root; // a dictionary when state is Ok
};
Loaded load(const QString &path);
// The same with a top level of any type.
Loaded read(const QString &path);
// Writes the node as XML, replacing the file whole (see AtomicFile.h); mode 0600 when negative.
// A tree the reader would refuse is not written.
bool writeAtomically(const QString &path, void *node, int mode = -1);
} // namespace plistfile

class PlistStore {
public:
    explicit PlistStore(QString path);
    ~PlistStore();

    StoreObject value(const QString &key);
    void setValue(const QString &key, const StoreObject &value);
    // Writes pending values out and reloads. Returns false when the file could not be written.
    bool synchronize();

    const QString &path() const { return m_path; }

private:
    void ensureLoaded();

    QString m_path;
    bool m_loaded = false;
    PlistPtr m_dict;
    QList<QPair<QString, StoreObject>> m_pending;
};

} // namespace fw
