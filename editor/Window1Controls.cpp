// The scale and the caption. The scale lives in three places that must agree: the slider, the
// field and currentscale; the field is the hub and alone rebuilds the picture. holdupdate stops
// the echo between slider and field.

#include "editor/EditorMath.h"
#include "editor/Window1.h"

#include "platform/core/Failure.h"
#include "platform/framework/Canvas.h"

#include <QLineEdit>
#include <QMenu>
#include <QSlider>
#include <QToolButton>

void Window1::Slider1_ValueChanged()
{
    // Lets the field hold more than the slider can: the slider pinned at 200 must not overwrite
    // a larger scale.
    if (currentscale > 200) return;
    currentscale = Slider1->value();
    if (!holdupdate) updatevalues();
    scaleField->update();
}

void Window1::scaleField_TextChange()
{
    setscroll();
    currentscale = editor::toInt(editor::Val(scaleField->text()));
    if (!holdupdate) updatevalues();
    ScaledImage = getscaledimage();
    Canvas1->Refresh(true);
}

void Window1::updatevalues()
{
    holdupdate = true;
    setSliderValue(currentscale);
    const int caret = scaleField->cursorPosition();
    setScaleFieldText(QString::number(currentscale));
    scaleField->setCursorPosition(caret);
    holdupdate = false;
}

void Window1::BevelButton1_Open()
{
    auto *menu = new QMenu(BevelButton1);
    const QStringList rows = {QString(), "25", "50", "75", "100", "125", "150", "175", "200"};
    for (int i = 0; i < rows.size(); ++i) {
        QAction *a = menu->addAction(rows[i].isEmpty() ? QStringLiteral(" ") : rows[i]);
        a->setData(rows[i]);
        connect(a, &QAction::triggered, this,
                [this, i] { fw::guarded([this, i] { BevelButton1_Action(i); }); });
    }
    BevelButton1->setMenu(menu);
}

void Window1::BevelButton1_Action(int menuValue)
{
    const QList<QAction *> rows = BevelButton1->menu()->actions();
    if (menuValue < 0 || menuValue >= rows.size()) return;
    setSliderValue(editor::toInt(editor::Val(rows[menuValue]->data().toString())));
}

void Window1::captionText_TextChange()
{
    ScaledImage = getscaledimage();
    Canvas1->Refresh(true);
}

void Window1::setSliderValue(int v)
{
    Slider1->setValue(v);
    fw::rethrowPending();
}

void Window1::setScaleFieldText(const QString &text)
{
    scaleField->setText(text);
    fw::rethrowPending();
}
