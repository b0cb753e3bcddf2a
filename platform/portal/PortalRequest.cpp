#include "platform/portal/PortalRequest.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusObjectPath>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>

namespace fw {

static const QString kRequestInterface = QStringLiteral("org.freedesktop.portal.Request");

QString portalRequestPath(const QString &uniqueName, const QString &token)
{
    QString sender = uniqueName.startsWith(QLatin1Char(':')) ? uniqueName.mid(1) : uniqueName;
    sender.replace(QLatin1Char('.'), QLatin1Char('_'));
    return QStringLiteral("/org/freedesktop/portal/desktop/request/%1/%2").arg(sender, token);
}

PortalRequest::PortalRequest(QObject *context, Answer answer)
    : QObject(context), m_answer(std::move(answer))
{
}

void PortalRequest::start(const QString &interface, const QString &method,
                          QList<QVariant> arguments, QVariantMap options, QObject *context,
                          Answer answer)
{
    auto *request = new PortalRequest(context, std::move(answer));
    QDBusConnection bus = QDBusConnection::sessionBus();
    if (!bus.isConnected()) {
        QMetaObject::invokeMethod(
            request, [request] { request->finish(kPortalUnavailable, {}); }, Qt::QueuedConnection);
        return;
    }
    // Unique within this connection, which is all the portal asks.
    static int count = 0;
    const QString token = QStringLiteral("vantrel%1").arg(++count);
    options.insert(QStringLiteral("handle_token"), token);
    const QString predicted = portalRequestPath(bus.baseService(), token);
    request->listen(predicted);

    QDBusMessage call = QDBusMessage::createMethodCall(
        QStringLiteral("org.freedesktop.portal.Desktop"),
        QStringLiteral("/org/freedesktop/portal/desktop"), interface, method);
    arguments << options;
    call.setArguments(arguments);
    auto *watcher = new QDBusPendingCallWatcher(bus.asyncCall(call), request);
    connect(watcher, &QDBusPendingCallWatcher::finished, request,
            [request, predicted](QDBusPendingCallWatcher *w) {
                w->deleteLater();
                const QDBusPendingReply<QDBusObjectPath> reply = *w;
                if (reply.isError()) return request->finish(kPortalUnavailable, {});
                // Older portals answer on a path of their own choosing.
                if (reply.value().path() != predicted) request->listen(reply.value().path());
            });
}

void PortalRequest::listen(const QString &path)
{
    QDBusConnection::sessionBus().connect(QString(), path, kRequestInterface,
                                          QStringLiteral("Response"), this,
                                          SLOT(onResponse(uint, QVariantMap)));
    m_paths << path;
}

void PortalRequest::onResponse(uint response, const QVariantMap &results)
{
    finish(response, results);
}

void PortalRequest::finish(uint response, const QVariantMap &results)
{
    if (!m_answer) return;
    const Answer answer = std::exchange(m_answer, {});
    for (const QString &path : std::as_const(m_paths))
        QDBusConnection::sessionBus().disconnect(QString(), path, kRequestInterface,
                                                 QStringLiteral("Response"), this,
                                                 SLOT(onResponse(uint, QVariantMap)));
    deleteLater();
    answer(response, results);
}

} // namespace fw
