#pragma once
// The stored mail scripts, by id: each gets one path, in the form its mail program takes.

#include <QStringList>

void AttachMail(const QStringList &values);      // 168, the desktop's default mail program
void AttachEntourage(const QStringList &values); // 169
void AttachUdora(const QStringList &values);     // 170
