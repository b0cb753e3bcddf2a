// Copy: the scaled picture with its caption onto the clipboard. It stays there while Vantrel
// runs; at quit Qt hands it to a clipboard manager where one runs.

#include "editor/Window1.h"
#include "output/ClipboardPicture.h"

#include "platform/framework/Services.h"
#include "prefs/Preferences.h"
#include "prefs/prefwin.h"

#include <QClipboard>
#include <QComboBox>
#include <QGuiApplication>
#include <QLineEdit>

void Window1::ToolbarItem1_Action()
{
    QGuiApplication::clipboard()->setMimeData(
        output::clipboardPicture(getoutputimage(), captionText->text()));
    if (!services().shiftKeyDown()) Hide();
    Preferences &prefs = Preferences::module();
    prefs.prefaddstringvalue(PrefKeys::LastScale, scaleField->text());
    prefs.prefaddstringvalue(PrefKeys::Settings, settings);
    prefs.prefaddstringvalue(PrefKeys::LastFormat, prefwin::instance().PopupMenu1->currentText());
}
