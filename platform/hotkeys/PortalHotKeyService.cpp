#include "platform/hotkeys/PortalHotKeyService.h"

#include "platform/portal/PortalRequest.h"
#include "platform/system/LaunchCommand.h"

#include <QCoreApplication>
#include <QDBusArgument>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusMetaType>
#include <QDBusPendingCallWatcher>
#include <QDBusServiceWatcher>

namespace {

const QString kPortal = QStringLiteral("org.freedesktop.portal.Desktop");
const QString kObject = QStringLiteral("/org/freedesktop/portal/desktop");
const QString kInterface = QStringLiteral("org.freedesktop.portal.GlobalShortcuts");
const QString kShortcutId = QStringLiteral("capture");

// One entry of the portal's a(sa{sv}) shortcut lists.
struct PortalShortcut {
    QString id;
    QVariantMap properties;
};

QDBusArgument &operator<<(QDBusArgument &a, const PortalShortcut &s)
{
    a.beginStructure();
    a << s.id << s.properties;
    a.endStructure();
    return a;
}

const QDBusArgument &operator>>(const QDBusArgument &a, PortalShortcut &s)
{
    a.beginStructure();
    a >> s.id >> s.properties;
    a.endStructure();
    return a;
}

// Desktops disagree on whether the session handle comes back as a string or an object path.
QString pathText(const QVariant &v)
{
    return v.metaType() == QMetaType::fromType<QDBusObjectPath>()
               ? v.value<QDBusObjectPath>().path()
               : v.toString();
}

} // namespace

Q_DECLARE_METATYPE(PortalShortcut)

namespace fw {

QString portalTrigger(int modifiers, const QString &plainKeysym, const QString &shiftedKeysym)
{
    const bool shiftUsedUp = (modifiers & kShiftKey) && !shiftedKeysym.isEmpty();
    QStringList parts;
    if ((modifiers & kShiftKey) && !shiftUsedUp) parts << QStringLiteral("SHIFT");
    if (modifiers & (kCmdKey | kControlKey)) parts << QStringLiteral("CTRL");
    if (modifiers & kOptionKey) parts << QStringLiteral("ALT");
    parts << (shiftUsedUp ? shiftedKeysym : plainKeysym);
    return parts.join(QLatin1Char('+'));
}

PortalHotKeyService::PortalHotKeyService(std::function<int(int)> keyCodeOf, KeysymNames keysymName,
                                         QObject *parent)
    : HotKeyService(parent), m_keyCodeOf(std::move(keyCodeOf)), m_keysymName(std::move(keysymName))
{
    qDBusRegisterMetaType<PortalShortcut>();
    qDBusRegisterMetaType<QList<PortalShortcut>>();
}

int PortalHotKeyService::AsciiToKeyCode(int ascii)
{
    return m_keyCodeOf(ascii);
}

QString PortalHotKeyService::unboundHint() const
{
    if (m_bound) return {};
    const QString program = launchCommand(QCoreApplication::applicationFilePath(),
                                          qEnvironmentVariable("PATH").split(QLatin1Char(':')));
    return QStringLiteral("To capture from the keyboard, bind the command \"%1 --capture\" to a "
                          "key in your desktop's keyboard settings.")
        .arg(program);
}

void PortalHotKeyService::AddKey(int keycode, int modifiers, quint32 signature, int id)
{
    // One combination is all the program claims, once.
    if (keycode < 0 || m_asked) return;
    m_asked = true;
    m_trigger = portalTrigger(modifiers, m_keysymName(keycode, false), m_keysymName(keycode, true));
    m_signature = signature;
    m_id = id;
    QDBusConnection::sessionBus().connect(QString(), kObject, kInterface,
                                          QStringLiteral("Activated"), this,
                                          SLOT(onActivated(QDBusMessage)));
    // The desktop's backend holds the session: when it or the portal goes away (a crash, an
    // update), the key is dead until the session is opened again. The portal restarts in steps
    // (frontend, backends): the session is opened once they have settled.
    auto *watcher = new QDBusServiceWatcher(this);
    watcher->setConnection(QDBusConnection::sessionBus());
    const QString desktop =
        qEnvironmentVariable("XDG_CURRENT_DESKTOP").section(QLatin1Char(':'), 0, 0);
    watcher->setWatchedServices(
        {kPortal, QStringLiteral("org.freedesktop.impl.portal.desktop.") + desktop.toLower()});
    connect(watcher, &QDBusServiceWatcher::serviceOwnerChanged, this,
            &PortalHotKeyService::portalOwnerChanged);
    m_reopen.setSingleShot(true);
    m_reopen.setInterval(500);
    connect(&m_reopen, &QTimer::timeout, this, &PortalHotKeyService::openSession);
    openSession();
}

void PortalHotKeyService::portalOwnerChanged(const QString &name, const QString &before,
                                             const QString &now)
{
    const bool gone = !before.isEmpty() && (m_opening || !m_session.isEmpty());
    if (gone) {
        // With it the session and any answer still awaited. The half of the portal that lived on
        // may hold the old session for a moment and refuse new ones: a few tries, apart.
        if (!m_session.isEmpty()) m_lostSession = std::exchange(m_session, {});
        m_opening = false;
        ++m_generation; // an answer to a request made before this is no longer ours to take
        m_tries = 5;
    }
    // Or back after a start that found none.
    if (gone || (name == kPortal && !now.isEmpty() && m_session.isEmpty())) m_reopen.start();
}

void PortalHotKeyService::openSession()
{
    if (m_opening || !m_session.isEmpty()) return;
    m_opening = true;
    // The shortcuts go with the session (some desktops read them only there), and the token
    // stays the same, so that the desktop gives back the key it kept for it.
    auto create = [this, generation = m_generation] {
        PortalRequest::start(
            kInterface, QStringLiteral("CreateSession"), {},
            {{QStringLiteral("session_handle_token"), QString::fromLatin1(kSessionToken)},
             {QStringLiteral("shortcuts"), shortcuts()}},
            this, [this, generation](uint r, const QVariantMap &results) {
                if (generation != m_generation) return;
                m_opening = false;
                if (r != kPortalDone && --m_tries > 0) return m_reopen.start();
                m_tries = 0;
                sessionCreated(r, results);
            });
    };
    const QString lost = std::exchange(m_lostSession, {});
    if (lost.isEmpty()) return create();
    // A portal that lived on may still hold the old session under our token: it goes first.
    auto *closing = new QDBusPendingCallWatcher(
        QDBusConnection::sessionBus().asyncCall(QDBusMessage::createMethodCall(
            kPortal, lost, QStringLiteral("org.freedesktop.portal.Session"),
            QStringLiteral("Close"))),
        this);
    connect(closing, &QDBusPendingCallWatcher::finished, this, [closing, create] {
        closing->deleteLater();
        create();
    });
}

QVariant PortalHotKeyService::shortcuts() const
{
    const QVariantMap properties{
        {QStringLiteral("description"), QStringLiteral("Capture a region or a window")},
        {QStringLiteral("preferred_trigger"), m_trigger}};
    return QVariant::fromValue(QList<PortalShortcut>{{kShortcutId, properties}});
}

void PortalHotKeyService::sessionCreated(uint response, const QVariantMap &results)
{
    // The interface may be exported with no backend behind it: only a success counts.
    if (response == kPortalDone)
        m_session = pathText(results.value(QStringLiteral("session_handle")));
    if (m_session.isEmpty()) return setBound(false);
    PortalRequest::start(
        kInterface, QStringLiteral("ListShortcuts"),
        {QVariant::fromValue(QDBusObjectPath(m_session))}, {}, this,
        [this](uint r, const QVariantMap &results) { shortcutsListed(r, results); });
}

void PortalHotKeyService::shortcutsListed(uint response, const QVariantMap &results)
{
    if (response != kPortalDone) return setBound(false);
    QList<PortalShortcut> listed;
    const QVariant v = results.value(QStringLiteral("shortcuts"));
    if (v.canConvert<QDBusArgument>()) v.value<QDBusArgument>() >> listed;
    for (const PortalShortcut &s : std::as_const(listed)) {
        if (s.id == kShortcutId) return setBound(true);
    }
    // Not kept from the session's creation: bind it, once a start (a desktop may ask the user,
    // and one that opens its settings for this must not do so over and over).
    if (std::exchange(m_bindAsked, true)) return setBound(false);
    PortalRequest::start(kInterface, QStringLiteral("BindShortcuts"),
                         {QVariant::fromValue(QDBusObjectPath(m_session)), shortcuts(), QString()},
                         {}, this,
                         [this](uint r, const QVariantMap &) { setBound(r == kPortalDone); });
}

void PortalHotKeyService::onActivated(const QDBusMessage &signal)
{
    // (o session_handle, s shortcut_id, t timestamp, a{sv} options)
    const QList<QVariant> args = signal.arguments();
    if (args.size() < 2 || pathText(args[0]) != m_session || args[1].toString() != kShortcutId)
        return;
    emit hotKeyPressed(m_signature, m_id);
}

void PortalHotKeyService::setBound(bool bound)
{
    if (bound == m_bound) return;
    m_bound = bound;
    emit unboundHintChanged();
}

} // namespace fw
