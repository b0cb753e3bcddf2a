#include "app/MenuBar1.h"

const QList<fw::MenuItemSpec> &MenuBar1::items()
{
    static const QList<fw::MenuItemSpec> table = {
        {"", "FileMenu", "&File", ""},
        {"FileMenu", "FileQuit", "Quit", "Cmd+Q"},
        {"FileMenu", "FilePrint", "Print", "Cmd+p"},
        {"FileMenu", "FileClose", "Close", "Cmd+W"},
        {"FileMenu", "FilePreferences", "Preferences", ""},
        {"", "EditMenu", "&Edit", ""},
        {"EditMenu", "EditUndo", "Undo", "Cmd+Z"},
        {"EditMenu", "UntitledMenu0", "-", ""},
        {"EditMenu", "EditCut", "Cut", "Cmd+X"},
        {"EditMenu", "EditCopy", "Copy", "Cmd+C"},
        {"EditMenu", "EditPaste", "Paste", "Cmd+V"},
        {"EditMenu", "EditClear", "Clear", ""},
    };
    return table;
}
