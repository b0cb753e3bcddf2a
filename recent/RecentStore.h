#pragma once
// The drawer's captures, kept small while they wait: each is compressed losslessly on a worker
// thread soon after it arrives and made back bit for bit when it is taken (a few ms for a
// 1920x1080 capture). A thumbnail of the drawer's cell stays ready for painting.

#include <QImage>
#include <QList>
#include <QSize>
#include <memory>

class QPainter;

namespace recent {

class RecentStore {
public:
    static constexpr int kCapacity = 10;

    // At the end; the oldest is dropped beyond ten.
    void append(const QImage &picture);
    void clear();
    int size() const { return int(m_entries.size()); }
    bool isEmpty() const { return m_entries.isEmpty(); }
    QSize pictureSize(int i) const;
    // The picture as appended: same size, format and pixels.
    QImage picture(int i) const;
    // Whether the picture is held packed only (the raw copy gone).
    bool isPacked(int i) const;
    // The drawer's cell for the picture: the square at its top left fitted into 150 pixels.
    void drawThumbnail(QPainter &g, int i, QPoint at) const;

private:
    struct Entry;
    QList<std::shared_ptr<Entry>> m_entries;
};

} // namespace recent
