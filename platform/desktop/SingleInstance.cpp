#include "platform/desktop/SingleInstance.h"

#include "platform/core/Ending.h"
#include "platform/core/Logging.h"
#include "platform/core/StandStill.h"

#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QTimer>

namespace fw {

static const char kService[] = "com.Morlane.Vantrel";
static const char kPath[] = "/com/Morlane/Vantrel";
// The default connection is not made again once its bus has gone: one of our own then.
static const char kConnection[] = "vantrel-instance";

static QDBusConnection connection()
{
    return QDBusConnection::connectToBus(QDBusConnection::SessionBus,
                                         QString::fromLatin1(kConnection));
}

// The bus object, on its own thread: the reply goes at once, even while a capture holds the main
// thread, and the request follows as an event of the main thread.
class SingleInstance::Receiver : public QObject {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "com.Morlane.Vantrel")
public:
    explicit Receiver(SingleInstance *owner) : m_owner(owner) {}

public slots:
    void Capture() { toOwner(&SingleInstance::Capture); }
    void ShowPreferences() { toOwner(&SingleInstance::ShowPreferences); }
    void Quit() { toOwner(&SingleInstance::Quit); }

private:
    void toOwner(void (SingleInstance::*request)())
    {
        QMetaObject::invokeMethod(m_owner, request, Qt::QueuedConnection);
    }
    SingleInstance *m_owner;
};

SingleInstance::SingleInstance() : m_receiver(std::make_unique<Receiver>(this))
{
    m_answering.setObjectName(QStringLiteral("vantrel-instance"));
    m_receiver->moveToThread(&m_answering);
}

SingleInstance::~SingleInstance()
{
    if (m_owner) QDBusConnection(m_bus).unregisterObject(QString::fromLatin1(kPath));
    QDBusConnection::disconnectFromBus(QString::fromLatin1(kConnection));
    m_answering.quit();
    m_answering.wait();
}

SingleInstance::Role SingleInstance::own(QDBusConnection &bus)
{
    if (!bus.isConnected() || !bus.interface()) return Role::Alone;
    const auto reply = bus.interface()->registerService(
        QString::fromLatin1(kService), QDBusConnectionInterface::DontQueueService,
        QDBusConnectionInterface::DontAllowReplacement);
    if (!reply.isValid()) return Role::Alone;
    if (reply.value() != QDBusConnectionInterface::ServiceRegistered) return Role::Later;
    bus.registerObject(QString::fromLatin1(kPath), m_receiver.get(),
                       QDBusConnection::ExportAllSlots);
    return Role::First;
}

SingleInstance::Role SingleInstance::claim()
{
    QDBusConnection bus = QDBusConnection::sessionBus();
    m_bus = bus.name();
    const Role role = own(bus);
    if (role != Role::First) return role;
    m_owner = true;
    m_answering.start();
    auto *watch = new QTimer(this);
    connect(watch, &QTimer::timeout, this, &SingleInstance::rejoin);
    watch->start(1000);
    return role;
}

void SingleInstance::rejoin()
{
    if (!m_owner || QDBusConnection(m_bus).isConnected()) return;
    m_bus = QString::fromLatin1(kConnection);
    QDBusConnection::disconnectFromBus(m_bus);
    QDBusConnection bus = connection();
    switch (own(bus)) {
    case Role::Alone: // not back yet: the next tick tries again
        QDBusConnection::disconnectFromBus(QString::fromLatin1(kConnection));
        return;
    case Role::Later:
        m_owner = false;
        qCWarning(lcDesktop) << "the session bus came back with" << kService
                             << "owned by another program: later starts go to that one";
        return;
    case Role::First:
        return;
    }
}

bool SingleInstance::send(const QString &method)
{
    if (method.isEmpty()) return true;
    QDBusMessage call =
        QDBusMessage::createMethodCall(QString::fromLatin1(kService), QString::fromLatin1(kPath),
                                       QString::fromLatin1(kService), method);
    return QDBusConnection::sessionBus().call(call, QDBus::Block, 5000).type() ==
           QDBusMessage::ReplyMessage;
}

// Each request is served from the event loop, after the reply has gone and after a capture
// under way; a quit the system asked for drops it.
static void later(const std::function<void()> &f)
{
    if (!f) return;
    StandStill::whenFree([f] {
        if (!processEnding()) f();
    });
}

void SingleInstance::Capture()
{
    later(onCapture);
}
void SingleInstance::ShowPreferences()
{
    later(onShowPreferences);
}
void SingleInstance::Quit()
{
    later(onQuit);
}

} // namespace fw

#include "SingleInstance.moc"
