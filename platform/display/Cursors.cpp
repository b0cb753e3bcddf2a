#include "platform/display/Cursors.h"

#include <QPixmap>

namespace fw {

QCursor Cursors::load(int id, Qt::CursorShape fallback) const
{
    QPixmap pm(m_folder + "/" + QString::number(id) + ".xpm");
    if (pm.isNull()) return QCursor(fallback);
    return QCursor(pm, pm.width() / 2, pm.height() / 2);
}

const QCursor &Cursors::handcurs()
{
    if (!m_hand) m_hand = load(168, Qt::OpenHandCursor);
    return *m_hand;
}

const QCursor &Cursors::closedhandcurs()
{
    if (!m_closed) m_closed = load(169, Qt::ClosedHandCursor);
    return *m_closed;
}

} // namespace fw
