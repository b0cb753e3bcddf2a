#pragma once
// The open-hand and closed-hand cursors, read once from the bundle's resources and kept.

#include <QCursor>
#include <QString>
#include <optional>

namespace fw {

class Cursors {
public:
    explicit Cursors(QString folder) : m_folder(std::move(folder)) {}
    const QCursor &handcurs();
    const QCursor &closedhandcurs();

private:
    QCursor load(int id, Qt::CursorShape fallback) const;
    QString m_folder;
    std::optional<QCursor> m_hand, m_closed;
};

} // namespace fw
