#include "app/FileTypes.h"

FileType FileTypes::pText;
FileType FileTypes::pSpecialAny;

void _InitFileTypes()
{
    FileTypes::pText = FileType{"text", "", "TEXT", "R*ch"};
    FileTypes::pSpecialAny = FileType{"special/any", "", "????", "????"};
    (void)FileTypes::pText.toString();
    (void)FileTypes::pSpecialAny.toString();
}
