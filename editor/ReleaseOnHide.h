#pragma once
// While the editor is hidden it holds no picture: the capture is in the drawer, and only
// loadimage (a capture, a click in the drawer) shows the editor, with a picture it is given.
// The scaled picture and the preview's screenful go with it. Minimising is not hiding.

#include <QObject>

class Window1;

namespace editor {

class ReleaseOnHide : public QObject {
public:
    explicit ReleaseOnHide(Window1 &editor);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    Window1 &m_editor;
};

} // namespace editor
