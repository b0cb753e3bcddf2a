#include "editor/Window1.h"
#include "editor/ReleaseOnHide.h"

#include "capture/keytrigger.h"
#include "platform/core/Failure.h"
#include "platform/framework/Application.h"
#include "platform/framework/Canvas.h"
#include "platform/framework/Services.h"
#include "platform/hotkeys/HotKeyService.h"
#include "prefs/Preferences.h"
#include "prefs/Session.h"
#include "recent/recentwin.h"

#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QMenuBar>
#include <QScrollBar>
#include <QSlider>
#include <QToolBar>
#include <QToolButton>

using fw::LockBottom;
using fw::LockLeft;
using fw::LockRight;
using fw::LockTop;

Window1::Window1(fw::Services &services, fw::WindowRegistry &registry)
    : fw::Window(services, registry)
{
    setWindowTitle(QStringLiteral("Vantrel"));
    setWindowRole(QStringLiteral("editor"));
    setObjectName(QStringLiteral("Window1"));
    buildControls();
    setMinSize(300, 200);
    resize(designSize.width(), designSize.height() + barsHeight());
    layoutFor(size());
    connectControls();
    AddMenuHandlers();
    // Smooth scaling toggled in the preferences: the picture is made anew, hidden or not.
    fw::connectGuarded(&Preferences::module(), &Preferences::quartzChanged, this, [this] {
        ScaledImage = getscaledimage();
        Canvas1->Refresh(true);
    });
    new editor::ReleaseOnHide(*this);
}

Window1::~Window1() = default;

Window1 &Window1::instance()
{
    return fw::Application::instance().windows().get<Window1>();
}

void Window1::setToolBar(QToolBar *bar)
{
    const QSize content(Width(), Height());
    toolBar = bar;
    bar->setParent(this);
    bar->show();
    resize(content.width(), content.height() + barsHeight());
    layoutFor(size());
}

void Window1::takeCapture(const QImage &capture, const QString &scale)
{
    if (capture.isNull()) return; // the editor keeps what it shows
    mypic = capture;
    loadimage(scale);
}

void Window1::buildControls()
{
    menuBar = fw::Application::instance().buildMenuBar(this);
    m_content = new fw::Canvas(this);
    m_content->setObjectName(QStringLiteral("content"));
    m_content->onMouseDown = [this](int x, int y) { return Event_MouseDown(x, y); };
    m_content->onMouseDrag = [this](int x, int y) { Event_MouseDrag(x, y); };

    Canvas1 = new fw::Canvas(m_content);
    Canvas1->setObjectName(QStringLiteral("Canvas1"));
    Canvas1->setAccessibleName(QStringLiteral("Canvas1"));

    Slider1 = new QSlider(Qt::Horizontal, m_content);
    Slider1->setObjectName(QStringLiteral("Slider1"));
    Slider1->setAccessibleName(QStringLiteral("Scale"));
    Slider1->setRange(10, 200);
    Slider1->setValue(100);
    Slider1->setSingleStep(1);
    Slider1->setPageStep(20);
    Slider1->setTracking(true);

    QFont small = font();
    small.setPixelSize(11);
    scaleField = new QLineEdit(QStringLiteral("100"), m_content);
    scaleField->setObjectName(QStringLiteral("scaleField"));
    scaleField->setAccessibleName(QStringLiteral("Scale percent"));
    scaleField->setFont(small);
    scaleField->setTextMargins(0, 0, 0, 0);
    scaleField->setStyleSheet(QStringLiteral("QLineEdit { padding: 0px; }"));

    StaticText1 = new QLabel(QStringLiteral("%"), m_content);
    QFont bold = small;
    bold.setBold(true);
    StaticText1->setFont(bold);

    ScrollBarH = new QScrollBar(Qt::Horizontal, m_content);
    ScrollBarH->setObjectName(QStringLiteral("ScrollBarH"));
    ScrollBarV = new QScrollBar(Qt::Vertical, m_content);
    ScrollBarV->setObjectName(QStringLiteral("ScrollBarV"));
    for (QScrollBar *bar : {ScrollBarH, ScrollBarV}) {
        bar->setRange(0, 100);
        bar->setValue(0);
        bar->setSingleStep(1);
        bar->setPageStep(20);
        bar->setTracking(true);
    }

    StaticText2 = new QLabel(QStringLiteral("Scale:"), m_content);
    BevelButton1 = new QToolButton(m_content);
    BevelButton1->setObjectName(QStringLiteral("BevelButton1"));
    BevelButton1->setAccessibleName(QStringLiteral("Preset scales"));
    BevelButton1->setPopupMode(QToolButton::InstantPopup);
    BevelButton1->setArrowType(Qt::DownArrow);
    BevelButton1->setFocusPolicy(Qt::NoFocus);
    BevelButton1->setAutoRaise(true);
    BevelButton1->setStyleSheet(QStringLiteral("QToolButton::menu-indicator { image: none; }"));

    captionText = new QLineEdit(m_content);
    captionText->setObjectName(QStringLiteral("captionText"));
    captionText->setAccessibleName(QStringLiteral("Caption"));
    StaticText3 = new QLabel(QStringLiteral("Caption:"), m_content);
    StaticText3->setBuddy(captionText);
    StaticText2->setBuddy(scaleField);

    // The control table at the design size of 400 by 440, in tab order.
    m_layout.add(Canvas1, {0, 0, 385, 350}, LockLeft | LockTop | LockRight | LockBottom);
    m_layout.add(Slider1, {50, 400, 284, 14}, LockLeft | LockRight | LockBottom);
    m_layout.add(scaleField, {351, 397, 27, 15}, LockRight | LockBottom);
    m_layout.add(StaticText1, {381, 395, 9, 19}, LockRight | LockBottom);
    m_layout.add(ScrollBarH, {0, 350, 385, 16}, LockLeft | LockRight | LockBottom);
    m_layout.add(ScrollBarV, {385, 0, 16, 350}, LockTop | LockRight | LockBottom);
    m_layout.add(StaticText2, {11, 394, 42, 20}, LockLeft | LockBottom);
    m_layout.add(BevelButton1, {338, 397, 11, 15}, LockRight | LockBottom);
    m_layout.add(captionText, {65, 370, 313, 22}, LockLeft | LockRight | LockBottom);
    m_layout.add(StaticText3, {11, 371, 100, 20}, LockLeft | LockBottom);
    setTabOrder(Slider1, scaleField);
    setTabOrder(scaleField, captionText);
    // The labels sit under the controls they name, as laid out; keep the controls on top.
    StaticText2->lower();
    StaticText3->lower();
}

void Window1::connectControls()
{
    fw::connectGuarded(Slider1, &QSlider::valueChanged, this, [this] { Slider1_ValueChanged(); });
    fw::connectGuarded(scaleField, &QLineEdit::textChanged, this,
                       [this] { scaleField_TextChange(); });
    fw::connectGuarded(captionText, &QLineEdit::textChanged, this,
                       [this] { captionText_TextChange(); });
    fw::connectGuarded(ScrollBarH, &QScrollBar::valueChanged, this,
                       [this] { ScrollBarH_ValueChanged(); });
    fw::connectGuarded(ScrollBarV, &QScrollBar::valueChanged, this,
                       [this] { ScrollBarV_ValueChanged(); });
    Canvas1->onPaint = [this](QPainter &g, int w, int h) { Canvas1_Paint(g, w, h); };
    Canvas1->onMouseDown = [this](int x, int y) { return Canvas1_MouseDown(x, y); };
    Canvas1->onMouseDrag = [this](int x, int y) { Canvas1_MouseDrag(x, y); };
    Canvas1->onMouseUp = [this](int x, int y) { Canvas1_MouseUp(x, y); };
    Canvas1->onMouseMove = [this](int x, int y) { Canvas1_MouseMove(x, y); };
}

void Window1::openControls()
{
    BevelButton1_Open();
}

int Window1::barsHeight() const
{
    return (menuBar ? menuBar->sizeHint().height() : 0) +
           (toolBar ? qMax(toolBar->sizeHint().height(), toolBar->minimumHeight()) : 0);
}

// Narrower than the items with their captions, the bar shows their pictures only (a caption stays
// the item's tool tip and accessible name), so that all seven stay in reach; the bar keeps its
// height, so that the content below it stays where it is.
void Window1::fitToolbar(int width)
{
    if (toolBar->toolButtonStyle() == Qt::ToolButtonTextUnderIcon)
        m_captionedToolbar = toolBar->sizeHint();
    toolBar->setToolButtonStyle(width < m_captionedToolbar.width() ? Qt::ToolButtonIconOnly
                                                                   : Qt::ToolButtonTextUnderIcon);
    // After the style: QToolBar drops its minimum size whenever the style changes.
    toolBar->setMinimumHeight(m_captionedToolbar.height());
}

void Window1::layoutFor(const QSize &size)
{
    if (toolBar) fitToolbar(size.width());
    const int bars = barsHeight();
    const int menuHeight = menuBar ? menuBar->sizeHint().height() : 0;
    if (menuBar) menuBar->setGeometry(0, 0, size.width(), menuHeight);
    if (toolBar) toolBar->setGeometry(0, menuHeight, size.width(), bars - menuHeight);
    const QSize content(size.width(), size.height() - bars);
    m_content->setGeometry(0, bars, content.width(), content.height());
    m_layout.apply(content);
}

void Window1::Event_Open()
{
    fw::Application::instance().process = QStringLiteral("OpenEditor");
    Session::instance().restore(Preferences::module(), services().desktopFolder());

    // The hot key: Shift+Command (Control here) and the key that types "2". What a press takes
    // goes to the drawer first, then into this window.
    mytrigger = std::make_unique<keytrigger>(*services().hotKeys, services());
    fw::connectGuarded(mytrigger.get(), &keytrigger::pictureTaken, this,
                       [this](const QImage &p) { recentwin::instance().addimage(p); });
    fw::connectGuarded(mytrigger.get(), &keytrigger::captured, this,
                       [this](const QImage &capture) { takeCapture(capture, QString()); });
    fw::HotKeyService &keys = *services().hotKeys;
    keys.AddKey(keys.AsciiToKeyCode('2'), fw::kCmdKey | fw::kShiftKey, captureSignature(), 1);
    mytrigger->Listen();
}

bool Window1::Event_CancelClose(bool)
{
    if (!fw::Application::instance().quitting) {
        Hide();
        return true;
    }
    return false;
}

void Window1::Event_Resized()
{
    recentwin &drawer = recentwin::instance();
    drawer.setHeight(Height());
    setscroll();
    drawer.setscroll();
}

bool Window1::Event_MouseDown(int x, int y)
{
    xdown = x;
    ydown = y;
    holdForMove();
    return true;
}

void Window1::Event_MouseDrag(int x, int y)
{
    // To the device pixel where the platform can; a scaled screen's units are several.
    if (!moveWithPointer()) moveContentTo(Left() + x - xdown, Top() + y - ydown);
}

void Window1::AddMenuHandlers()
{
    AddMenuHandler(QStringLiteral("FileQuit"), [this] { return _FileQuit_Action(); });
    AddMenuHandler(QStringLiteral("FilePrint"), [this] { return _FilePrint_Action(); });
    AddMenuHandler(QStringLiteral("FilePageSetup"), [this] { return _FilePageSetup_Action(); });
    AddMenuHandler(QStringLiteral("FileClose"), [this] { return _FileClose_Action(); });
}

bool Window1::_FileQuit_Action()
{
    fw::Application::instance().quitting = true;
    return false;
}

bool Window1::_FilePrint_Action()
{
    emit printRequested();
    fw::rethrowPending();
    return true;
}

bool Window1::_FilePageSetup_Action()
{
    emit pageSetupRequested();
    fw::rethrowPending();
    return false;
}

bool Window1::_FileClose_Action()
{
    recentwin::instance().Hide();
    Hide();
    return false;
}
