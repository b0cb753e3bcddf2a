#include "app/EditorSource.h"

#include "editor/Window1.h"

#include <QLineEdit>

QImage EditorSource::outputImage()
{
    return Window1::instance().getoutputimage();
}
QImage EditorSource::capture()
{
    return Window1::instance().mypic;
}
QString EditorSource::scaleText()
{
    return Window1::instance().scaleField->text();
}
QString EditorSource::caption()
{
    return Window1::instance().captionText->text();
}
QWidget *EditorSource::window()
{
    return &Window1::instance();
}
void EditorSource::hide()
{
    Window1::instance().Hide();
}
