// Copy: the scaled picture with its caption onto the clipboard. It stays there while Vantrel
// runs; at quit Qt hands it to a clipboard manager where one runs.

#include "output/Commands.h"

#include "output/ClipboardPicture.h"
#include "output/Source.h"
#include "platform/core/Logging.h"
#include "platform/framework/Services.h"

#include <QClipboard>
#include <QGuiApplication>

namespace output {

void Commands::ToolbarItem1_Action()
{
    const QImage picture = m_source.outputImage();
    QGuiApplication::clipboard()->setMimeData(clipboardPicture(picture, m_source.caption()));
    qCDebug(lcOutput) << "Copy put a picture of" << picture.size() << "on the clipboard";
    if (!m_services.shiftKeyDown()) m_source.hide();
    writeOutputKeys(true);
}

} // namespace output
