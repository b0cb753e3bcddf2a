#include "recent/recentwin.h"

#include "recent/RecentMath.h"

#include "platform/core/Failure.h"
#include "platform/core/Picture.h"
#include "platform/display/DevicePixels.h"
#include "platform/display/ToolWindow.h"
#include "platform/display/WorkArea.h"
#include "platform/framework/Application.h"
#include "platform/framework/Canvas.h"

#include <QApplication>
#include <QEvent>
#include <QPainter>
#include <QPushButton>
#include <QScreen>
#include <QScrollBar>
#include <QSlider>

recentwin::recentwin(fw::Services &services, fw::WindowRegistry &registry)
    : fw::Window(services, registry)
{
    setObjectName(QStringLiteral("recentwin"));
    fw::Application::instance().addQuitShortcut(this);
    setWindowTitle(QStringLiteral("Untitled")); // a drawer shows no title of its own
    setWindowRole(QStringLiteral("drawer"));
    // A tool of the editor with no title bar of its own: it moves with the editor.
    setWindowFlag(Qt::Tool, true);
    setWindowFlag(Qt::FramelessWindowHint, true);
    setMinimumSize(150, 64);
    setMaximumSize(166, 32000);
    resize(166, 507);

    Canvas2 = new fw::Canvas(this);
    Canvas2->setObjectName(QStringLiteral("Canvas2"));
    Canvas2->setGeometry(0, 0, 155, 467);
    ScrollBar1 = new QScrollBar(Qt::Vertical, this);
    ScrollBar1->setGeometry(153, 0, 16, 490);
    ScrollBar1->setRange(0, 100);
    ScrollBar1->setSingleStep(10);
    ScrollBar1->setPageStep(155);
    BevelButton1 = new QPushButton(QStringLiteral("Clear All"), this);
    BevelButton1->setFocusPolicy(Qt::NoFocus);
    BevelButton1->setGeometry(46, 479, 60, 18);
    QFont small = BevelButton1->font();
    small.setPixelSize(11);
    BevelButton1->setFont(small);

    Canvas2->onPaint = [this](QPainter &g, int, int) { Canvas2_Paint(g); };
    Canvas2->onMouseDown = [this](int x, int y) { return Canvas2_MouseDown(x, y); };
    Canvas2->onMouseUp = [this](int x, int y) { Canvas2_MouseUp(x, y); };
    fw::connectGuarded(ScrollBar1, &QScrollBar::valueChanged, this,
                       [this] { ScrollBar1_ValueChanged(); });
    fw::connectGuarded(BevelButton1, &QPushButton::clicked, this,
                       [this] { BevelButton1_Action(); });
    Beep = [] { QApplication::beep(); };
}

recentwin::~recentwin() = default;

recentwin &recentwin::instance()
{
    return fw::Application::instance().windows().get<recentwin>();
}

void recentwin::addimage(const QImage &picture)
{
    recentimages.append(picture); // the oldest beyond ten goes
    setscroll();
}

void recentwin::setscroll()
{
    ScrollBar1->setMaximum(recent::scrollMaximum(int(recentimages.size()), Height()));
    fw::rethrowPending();
    Canvas2->Refresh(true);
    ScrollBar1->setGeometry(ScrollBar1->x(), ScrollBar1->y(), ScrollBar1->width(), Height());
    Canvas2->setGeometry(Canvas2->x(), Canvas2->y(), Canvas2->width(), Height() - 38);
    BevelButton1->move(BevelButton1->x(), Height() - 25);
}

void recentwin::Canvas2_Paint(QPainter &g)
{
    g.setRenderHint(QPainter::SmoothPixmapTransform, true);
    for (int i = 0; i < recentimages.size(); ++i) {
        const recent::Thumbnail t =
            recent::thumbnailFor(recentimages.pictureSize(i), i, ScrollBar1->value());
        recentimages.drawThumbnail(g, i, QPoint(t.x, t.y));
        g.setPen(QColor(50, 50, 50));
        g.setBrush(Qt::NoBrush);
        // A framework outline covers width by height pixels; QPainter's covers one more.
        g.drawRect(t.frame.adjusted(0, 0, -1, -1));
    }
}

bool recentwin::Canvas2_MouseDown(int, int)
{
    return true;
}

void recentwin::Canvas2_MouseUp(int, int y)
{
    const int row = recent::rowAt(y, ScrollBar1->value());
    if (recentimages.size() - 1 < row || row < 0) {
        if (Beep) Beep();
        return;
    }
    // Seen through an all-black mask the picture is itself, opaque: no mask is made.
    const QImage p = recentimages.picture(row);
    emit captureChosen(fw::nilCheck(fw::BitmapOf(fw::nilCheck(p))));
    fw::rethrowPending(); // the editor's failure ends this click
}

void recentwin::ScrollBar1_ValueChanged()
{
    Canvas2->Refresh(true);
}

void recentwin::BevelButton1_Action()
{
    recentimages.clear();
    setscroll();
}

void recentwin::Event_Resized()
{
    setscroll();
}

void recentwin::followEditor()
{
    fw::Window *editor = m_editor;
    if (!editor) return;
    const QRect frame = editor->frameGeometry();
    const QScreen *screen = editor->screen() ? editor->screen() : QGuiApplication::primaryScreen();
    const QRect area = screen ? fw::workArea(screen) : QRect(frame.topLeft(), QSize(32000, 32000));
    // Against the editor's right edge, its top level with the editor's content; where the
    // screen has no room there, against the left edge; where neither side has room, inside the
    // editor's right edge, on screen.
    int x = frame.right() + 1;
    if (x + width() > area.right() + 1) x = frame.left() - width();
    if (x < area.left()) x = area.right() + 1 - width();
    setGeometry(QRect(QPoint(x, editor->Top()), size()));
    // Against the editor's frame to the device pixel, which whole units may miss on a scaled
    // screen.
    if (x != area.right() + 1 - width())
        fw::placeAgainst(this, editor, x > frame.left(), editor->Top() - editor->geometry().y());
}

// Before the window is mapped: what the window manager is told about it goes first.
void recentwin::showEvent(QShowEvent *e)
{
    fw::Window::showEvent(e);
    if (m_editor) {
        fw::makeToolOf(this, m_editor);
        m_editor->installEventFilter(this);
        followEditor();
    }
}

bool recentwin::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::Move || event->type() == QEvent::Resize) followEditor();
    if (event->type() == QEvent::Hide && watched == m_editor) hide();
    return fw::Window::eventFilter(watched, event);
}
