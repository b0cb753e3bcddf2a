#pragma once
// The application's file type table, filled once at start. Nothing reads it; it is declared
// state of the application.

#include <QString>

struct FileType {
    QString Name, Extensions, MacType, MacCreator;
    QString toString() const { return Name; }
};

struct FileTypes {
    static FileType pText;
    static FileType pSpecialAny;
};

void _InitFileTypes();
