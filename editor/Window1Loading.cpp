// Loading a capture into the editor: size and centre the window for the picture on the main
// screen, decide the scale and the format, and show it.

#include "editor/EditorMath.h"
#include "editor/Window1.h"

#include "platform/core/Logging.h"
#include "platform/display/WorkArea.h"
#include "platform/framework/Application.h"
#include "platform/framework/Canvas.h"
#include "prefs/Preferences.h"
#include "prefs/prefwin.h"

#include <QComboBox>
#include <QLineEdit>
#include <cmath>

void Window1::loadimage(const QString &scale)
{
    // Made with the scale of the previous picture: the size below follows it.
    ScaledImage = getscaledimage();
    if (ScaledImage.isNull()) return;

    // The formulas' screen: the primary monitor's work area less what the window adds around
    // its content (its bars, and its frame once the window manager has told it).
    const editor::FormulaScreen screen = editor::formulaScreen(
        fw::primaryWorkArea(), frameMargins() + QMargins(0, barsHeight(), 0, 0));
    // The picture's size in the window's units: on a scaled screen it is shown in fewer of them.
    const qreal r = canvasPixelRatio();
    const QSize picture(editor::toInt(std::ceil(ScaledImage.width() / r)),
                        editor::toInt(std::ceil(ScaledImage.height() / r)));
    const editor::WindowPlacement g = editor::loadImageGeometry(picture, screen.screen);
    const QRect content = editor::onDesktop(g, screen);
    // The smallest window gives way where the work area cannot hold it.
    setMinSize(qMin(300, content.width()), qMin(200, content.height()));
    setBounds(content.x(), content.y(), content.width(), content.height());
    setMaxHeight(g.MaxHeight);
    setMaxWidth(g.MaxWidth);

    Preferences &prefs = Preferences::module();
    QString last = prefs.prefgetstringvalue(PrefKeys::LastScale);
    if (!scale.isEmpty()) {
        setScaleFieldText(scale);
    } else if (last.isEmpty()) {
        setScaleFieldText(QStringLiteral("100"));
    } else {
        setScaleFieldText(last);
        setSliderValue(editor::toInt(editor::Val(last)));
    }

    last = prefs.prefgetstringvalue(PrefKeys::LastFormat);
    prefwin &prefs_window = prefwin::instance();
    for (int i = 0; i <= prefs_window.PopupMenu1->count() - 1; ++i) {
        if (prefs_window.PopupMenu1->itemText(i).compare(last, Qt::CaseInsensitive) == 0)
            prefs_window.setPopupMenu1ListIndex(i);
    }

    Canvas1->Refresh(true);
    qCDebug(lcEditor) << "showing a capture of" << mypic.size() << "at" << scaleField->text()
                      << "%";
    Show();
    fw::Application::instance().gotofront();
    setscroll();
}
