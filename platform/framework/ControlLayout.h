#pragma once
// Controls are laid out at a design size; a locked edge keeps its distance to the same edge of
// the window, so a control locked left and right stretches, one locked right only moves.

#include <QList>
#include <QRect>
#include <QSize>

class QWidget;

namespace fw {

enum Lock { LockLeft = 1, LockTop = 2, LockRight = 4, LockBottom = 8 };

QRect lockedGeometry(const QRect &design, int locks, const QSize &designSize, const QSize &size);

class ControlLayout {
public:
    explicit ControlLayout(QSize designSize) : m_designSize(designSize) {}
    void add(QWidget *control, const QRect &design, int locks);
    void apply(const QSize &size) const;
    QSize designSize() const { return m_designSize; }

private:
    struct Item {
        QWidget *control;
        QRect design;
        int locks;
    };
    QSize m_designSize;
    QList<Item> m_items;
};

} // namespace fw
