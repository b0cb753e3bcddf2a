// Print: the raw capture on one page, at its own size in points when it fits, at the top left.
// Page setup: the system's dialog, its result kept in the store (no menu item leads here).

#include "output/Commands.h"

#include "output/PrintMath.h"
#include "output/Source.h"
#include "platform/core/Failure.h"
#include "platform/core/Picture.h"
#include "platform/framework/Services.h"
#include "prefs/Preferences.h"

#include <QPageLayout>
#include <QPainter>
#include <QPrinter>
#include <QRegularExpression>

namespace output {

// The setup string: the page size's id, the orientation and the margins in points, one
// "key=value" to a line. Read back from any text that holds those pairs, such as the property
// list the store wraps it in.
QString setupString(const QPrinter &printer)
{
    const QPageLayout l = printer.pageLayout();
    const QMarginsF m = l.margins(QPageLayout::Point);
    return QStringLiteral("pageSize=%1\norientation=%2\nmargins=%3,%4,%5,%6\n")
        .arg(QPageSize::key(l.pageSize().id()))
        .arg(l.orientation() == QPageLayout::Landscape ? "landscape" : "portrait")
        .arg(m.left())
        .arg(m.top())
        .arg(m.right())
        .arg(m.bottom());
}

void applySetupString(QPrinter &printer, const QString &text)
{
    const auto size = QRegularExpression("pageSize=(\\w+)").match(text);
    if (size.hasMatch()) {
        for (int id = 0; id <= int(QPageSize::LastPageSize); ++id)
            if (QPageSize::key(QPageSize::PageSizeId(id)) == size.captured(1))
                printer.setPageSize(QPageSize(QPageSize::PageSizeId(id)));
    }
    const auto orient = QRegularExpression("orientation=(landscape|portrait)").match(text);
    if (orient.hasMatch())
        printer.setPageOrientation(orient.captured(1) == "landscape" ? QPageLayout::Landscape
                                                                     : QPageLayout::Portrait);
    const auto margins =
        QRegularExpression("margins=([\\d.]+),([\\d.]+),([\\d.]+),([\\d.]+)").match(text);
    if (margins.hasMatch())
        printer.setPageMargins(
            QMarginsF(margins.captured(1).toDouble(), margins.captured(2).toDouble(),
                      margins.captured(3).toDouble(), margins.captured(4).toDouble()),
            QPageLayout::Point);
}

bool Commands::_FilePrint_Action()
{
    std::unique_ptr<QPrinter> printer = m_services.printDialog(m_source.window());
    if (!printer) return true;
    const QImage capture = fw::nilCheck(m_source.capture());
    // The capture copied pixel for pixel into a picture of its own size.
    QImage p = fw::nilCheck(fw::NewPicture(capture.width(), capture.height()));
    {
        QPainter copy(&p);
        copy.drawImage(0, 0, capture);
    }
    // The page in points, the whole sheet: Letter is 612 by 792.
    printer->setFullPage(true);
    const QSizeF points = printer->pageLayout().fullRect(QPageLayout::Point).size();
    const QSize page(int(points.width()), int(points.height()));
    QPainter g(printer.get());
    g.setViewport(printer->paperRect(QPrinter::DevicePixel).toRect());
    g.setWindow(0, 0, page.width(), page.height());
    g.setRenderHint(QPainter::LosslessImageRendering, true);
    g.setRenderHint(QPainter::SmoothPixmapTransform, true);
    const QSize drawn = printedSize(p.size(), page);
    g.drawImage(QRect(QPoint(0, 0), drawn), p, p.rect());
    return true;
}

bool Commands::_FilePageSetup_Action()
{
    Preferences &prefs = m_prefs;
    fw::CFPreferences &store = *fw::nilCheck(prefs.MyPref.get());
    store.AppSynchronize(prefs.appname);
    const fw::StoreObject o = store.CopyAppValue(PrefKeys::PageSetup.str(), prefs.appname);
    // What comes back is the stored value's property-list form, not the string itself.
    const QString setup = o ? QString::fromUtf8(o->XML()) : QString();
    QPrinter printer;
    applySetupString(printer, setup);
    if (!m_services.pageSetupDialog(printer)) return false;
    store.SetAppValue(PrefKeys::PageSetup.str(), fw::NewCFString(setupString(printer)),
                      prefs.appname);
    store.AppSynchronize(prefs.appname);
    return false;
}

} // namespace output
