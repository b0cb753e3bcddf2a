#pragma once
// The toolbar's pictures and masks and the splash's icon, each read once from the bundle's
// resources and kept. Nil (a null image) when the file is missing; the next call tries again.

#include <QImage>

QImage HD();
QImage HDMask();
QImage mail();
QImage mailmask();
QImage copyimg();
QImage copymask();
QImage drawericon();
QImage drawermask();
QImage preficon();
QImage prefmask();
QImage icon();

// A picture seen through its mask (black opaque, white transparent).
QImage withMask(const QImage &picture, const QImage &mask);
