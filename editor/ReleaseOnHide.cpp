#include "editor/ReleaseOnHide.h"

#include "editor/Window1.h"
#include "platform/system/Memory.h"

#include <QEvent>

namespace editor {

ReleaseOnHide::ReleaseOnHide(Window1 &editor) : QObject(&editor), m_editor(editor)
{
    editor.installEventFilter(this);
}

bool ReleaseOnHide::eventFilter(QObject *watched, QEvent *event)
{
    // A window being destroyed is hidden by its base class, after the editor's own members are
    // gone: by then it no longer casts to the editor.
    if (event->type() != QEvent::Hide || !qobject_cast<Window1 *>(watched)) return false;
    if (watched == &m_editor && !event->spontaneous() && !m_editor.isVisible()) {
        m_editor.ScaledImage = {};
        m_editor.mypic = QImage(); // the drawer has it, packed
        ScaledPicture::releaseScratch();
        fw::returnFreedMemory();
    }
    return false;
}

} // namespace editor
