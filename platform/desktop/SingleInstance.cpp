#include "platform/desktop/SingleInstance.h"

#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QTimer>

namespace fw {

static const char kService[] = "com.Morlane.Vantrel";
static const char kPath[] = "/com/Morlane/Vantrel";

SingleInstance::Role SingleInstance::claim()
{
    QDBusConnection bus = QDBusConnection::sessionBus();
    if (!bus.isConnected() || !bus.interface()) return Role::Alone;
    const auto reply = bus.interface()->registerService(
        QString::fromLatin1(kService), QDBusConnectionInterface::DontQueueService,
        QDBusConnectionInterface::DontAllowReplacement);
    if (!reply.isValid()) return Role::Alone;
    if (reply.value() != QDBusConnectionInterface::ServiceRegistered) return Role::Later;
    bus.registerObject(QString::fromLatin1(kPath), this, QDBusConnection::ExportAllSlots);
    return Role::First;
}

bool SingleInstance::send(const QString &method)
{
    if (method.isEmpty()) return true;
    QDBusMessage call = QDBusMessage::createMethodCall(QString::fromLatin1(kService), QString::fromLatin1(kPath),
                                                       QString::fromLatin1(kService), method);
    return QDBusConnection::sessionBus().call(call, QDBus::Block, 5000).type() == QDBusMessage::ReplyMessage;
}

// Each request is served from the event loop, after the reply has gone: the caller waits for
// nothing but the hand-over.
static void later(const std::function<void()> &f)
{
    if (f) QTimer::singleShot(0, [f] { f(); });
}

void SingleInstance::Capture() { later(onCapture); }
void SingleInstance::ShowPreferences() { later(onShowPreferences); }
void SingleInstance::Quit() { later(onQuit); }

} // namespace fw
