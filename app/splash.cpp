#include "app/splash.h"

#include "app/App.h"
#include "output/ToolbarPictures.h"
#include "platform/core/Failure.h"
#include "platform/display/Screen.h"
#include "platform/framework/Canvas.h"
#include "platform/framework/Services.h"

#include <QCloseEvent>
#include <QEventLoop>
#include <QLabel>
#include <QPainter>
#include <QPalette>
#include <QPointer>
#include <QTimer>

splash::splash(fw::Services &services, fw::WindowRegistry &registry)
    : fw::Window(services, registry)
{
    setObjectName(QStringLiteral("splash"));
    setWindowRole(QStringLiteral("splash"));
    setWindowFlags(Qt::SplashScreen | Qt::FramelessWindowHint);
    setFixedSize(386, 130);
    QPalette pal = palette();
    pal.setColor(QPalette::Window, Qt::white);
    pal.setColor(QPalette::WindowText, Qt::black);
    setPalette(pal);
    setAutoFillBackground(true);
    setGeometry(QRect(fw::centredOnScreen0(QSize(386, 130)), QSize(386, 130)));

    Canvas1 = new fw::Canvas(this);
    Canvas1->setGeometry(8, 14, 129, 126); // reaches past the bottom edge, as laid out
    Canvas1->onPaint = [this](QPainter &g, int, int) {
        if (!m_icon.isNull()) g.drawImage(0, 0, m_icon);
    };
    StaticText1 = new QLabel(QStringLiteral("Vantrel"), this);
    StaticText1->setGeometry(138, 15, 236, 33);
    QFont bold = StaticText1->font();
    bold.setBold(true);
    bold.setPixelSize(16);
    StaticText1->setFont(bold);
    StaticText1->setAlignment(Qt::AlignHCenter | Qt::AlignTop);
    StaticText2 = new QLabel(QStringLiteral("Screen captures for the desktop\n"
                                            "© Morlane\n"
                                            "Made with Qt and ImageMagick"),
                             this);
    StaticText2->setGeometry(138, 60, 227, 64);
    StaticText2->setAlignment(Qt::AlignHCenter | Qt::AlignTop);
    StaticText2->setWordWrap(true);
    // Below the window's edge: part of the window, never on view.
    StaticText4 = new QLabel(QStringLiteral("Press Shift-Ctrl-2 to snap a shot!"), this);
    StaticText4->setGeometry(20, 205, 345, 20);
    StaticText4->setFont(bold);
    Timer2 = new QTimer(this);
    Timer2->setSingleShot(true);
    Timer2->setInterval(1500);
    Timer2->setTimerType(Qt::PreciseTimer); // a coarse timer may fire 5 % early
    fw::connectGuarded(Timer2, &QTimer::timeout, this, [this] { Timer2_Action(); });
}

splash::~splash() = default;

splash &splash::instance()
{
    return App::instance().windows().get<splash>();
}

void splash::openControls()
{
    m_icon = icon(); // missing resources: no picture, and the rest goes on
    StaticText1_Open();
}

void splash::StaticText1_Open()
{
    StaticText1->setText(services().bundle.shortVersion());
}

void splash::Event_Open()
{
    Timer2->start();
    App::instance().gotofront();
}

void splash::Timer2_Action()
{
    close();
}

void splash::ShowModal()
{
    // Events are served inside: the loop's, and show()'s own before the program's loop runs.
    // A capture among them may outlast the timer, which closes the window under this call.
    keptDuring([this] {
        show();
        raise();
        if (m_closed) return;
        QEventLoop loop;
        m_loop = &loop;
        loop.exec();
        m_loop = nullptr;
    });
}

void splash::closeEvent(QCloseEvent *e)
{
    fw::Window::closeEvent(e);
    if (!e->isAccepted()) return;
    m_closed = true;
    if (m_loop) m_loop->quit();
}
