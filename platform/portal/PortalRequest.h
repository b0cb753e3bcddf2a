#pragma once
// One call to an XDG desktop portal whose answer comes later, as the Response signal of a
// request object. The answer is heard from before the call goes out (it may arrive before the
// call's own reply), and the object goes away once it has answered.

#include <QObject>
#include <QVariantMap>
#include <functional>

namespace fw {

// Response codes: the portal's own 0 (done), 1 (cancelled by the user), 2 (other), and ours
// for a call that found no portal or no such interface.
inline constexpr uint kPortalDone = 0;
inline constexpr uint kPortalUnavailable = 3;

// Where the portal will answer: /org/freedesktop/portal/desktop/request/<sender>/<token>.
QString portalRequestPath(const QString &uniqueName, const QString &token);

class PortalRequest : public QObject {
    Q_OBJECT
public:
    using Answer = std::function<void(uint response, const QVariantMap &results)>;
    // Calls interface.method(arguments..., options + handle_token) on the session bus. The
    // answer runs once, from the event loop; never if context goes first.
    static void start(const QString &interface, const QString &method, QList<QVariant> arguments,
                      QVariantMap options, QObject *context, Answer answer);

private slots:
    void onResponse(uint response, const QVariantMap &results);

private:
    PortalRequest(QObject *context, Answer answer);
    void listen(const QString &path);
    void finish(uint response, const QVariantMap &results);

    Answer m_answer;
    QStringList m_paths;
};

} // namespace fw
