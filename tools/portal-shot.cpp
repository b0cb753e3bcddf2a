// portal-shot [-i]: a screenshot through the desktop's Screenshot portal, for the capture helper
// on Wayland sessions (where no X11 client can read the screen). Prints the local path of the
// PNG the portal wrote, which the caller owns and deletes.
// Exit status: 0 a picture, 1 cancelled (by the user, or the portal's own failure), 3 no portal.

#include "platform/portal/PortalRequest.h"

#include <QCoreApplication>
#include <QDBusConnection>
#include <QDBusServiceWatcher>
#include <QFile>
#include <QUrl>
#include <cstdio>

int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    const bool interactive = app.arguments().contains(QStringLiteral("-i"));
    int status = fw::kPortalUnavailable;

    // The portal may die while the user selects: that ends the wait, as a failure.
    QDBusServiceWatcher gone(QStringLiteral("org.freedesktop.portal.Desktop"),
                             QDBusConnection::sessionBus(),
                             QDBusServiceWatcher::WatchForUnregistration);
    QObject::connect(&gone, &QDBusServiceWatcher::serviceUnregistered, &app,
                     [] { QCoreApplication::exit(3); });

    fw::PortalRequest::start(
        QStringLiteral("org.freedesktop.portal.Screenshot"), QStringLiteral("Screenshot"),
        {QString()},
        {{QStringLiteral("interactive"), interactive}, {QStringLiteral("modal"), true}}, &app,
        [&status](uint response, const QVariantMap &results) {
            const QUrl uri(results.value(QStringLiteral("uri")).toString());
            if (response == fw::kPortalDone && uri.isLocalFile()) {
                std::printf("%s\n", QFile::encodeName(uri.toLocalFile()).constData());
                status = 0;
            } else {
                status = response == fw::kPortalUnavailable ? 3 : 1;
            }
            QCoreApplication::exit(status);
        });
    const int code = app.exec();
    return code != 0 ? code : status;
}
