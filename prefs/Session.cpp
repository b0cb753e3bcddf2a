#include "prefs/Session.h"

#include "platform/core/Failure.h"
#include "prefs/Preferences.h"

#include <QFileInfo>

namespace {
Session *g_session = nullptr;
}

Session::Session()
{
    g_session = this;
}

Session::~Session()
{
    if (g_session == this) g_session = nullptr;
}

Session &Session::instance()
{
    return *fw::nilCheck(g_session);
}

void Session::requestExporterSettings()
{
    emit exporterSettingsRequested();
    fw::rethrowPending(); // the dialog's failure is the button's
}

void Session::restore(Preferences &prefs, const QString &desktopFolder)
{
    if (!prefs.MyPref) prefs.MyPref = prefs.newStore();
    fw::StoreObject o = prefs.MyPref->CopyAppValue(PrefKeys::Settings.str(), prefs.appname);
    if (o && o->isA(fw::StoreValue::Kind::Data)) settings = o->toData();

    o = prefs.MyPref->CopyAppValue(PrefKeys::DefaultFolder.str(), prefs.appname);
    std::optional<QString> file;
    if (o) {
        const QUrl url = o->toUrl(); // checked: another type fails here
        if (url.isLocalFile()) file = url.toLocalFile();
    }
    if (file && QFileInfo(*file).isDir()) DefaultFolder = QDir(*file);
    if (!file) DefaultFolder = QDir(desktopFolder);
}
