#include "prefs/prefwin.h"

#include "app/App.h"
#include "app/MenuBar1.h"
#include "editor/Window1.h"
#include "platform/framework/Canvas.h"
#include "output/export/GraphicsExporter.h"
#include "platform/core/Failure.h"
#include "prefs/HideDockIcon.h"
#include "prefs/LaunchMeAtLogin.h"
#include "prefs/Preferences.h"
#include "platform/display/Screen.h"
#include "platform/framework/Services.h"

#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QPushButton>
#include <QSignalBlocker>

prefwin::prefwin(fw::Services &services, fw::WindowRegistry &registry)
    : fw::Window(services, registry)
{
    setObjectName(QStringLiteral("prefwin"));
    MenuBar1::addQuitShortcut(App::instance(), this);
    setWindowTitle(QStringLiteral("Preferences"));
    setWindowRole(QStringLiteral("preferences"));
    resize(359, 219);
    setMinimumSize(64, 64);
    // Centred on the main screen.
    setGeometry(QRect(fw::centredOnScreen0(size()), size()));

    auto place = [](QWidget *w, int x, int y, int width, int height) {
        w->setGeometry(x, y, width, height);
        return w;
    };
    PushButton1 = new QPushButton(QStringLiteral("OK"), this);
    PushButton1->setDefault(true);
    place(PushButton1, 144, 179, 69, 20);
    CheckBox1 = new QCheckBox(QStringLiteral("Launch at Login"), this);
    place(CheckBox1, 20, 14, 158, 19);
    quartz = new QCheckBox(QStringLiteral("Smooth Scaling"), this);
    quartz->setObjectName(QStringLiteral("quartz"));
    place(quartz, 155, 14, 158, 19);
    emaildefault = new QComboBox(this);
    // The rows start the desktop's own mail program, Thunderbird and Evolution.
    emaildefault->addItems({"Default Mailer", "Thunderbird", "Evolution"});
    place(emaildefault, 135, 79, 112, 20);
    StaticText1 = new QLabel(QStringLiteral("Send email using:"), this);
    place(StaticText1, 20, 77, 117, 20);
    PopupMenu1 = new QComboBox(this);
    PopupMenu1->setObjectName(QStringLiteral("PopupMenu1"));
    PopupMenu1->addItems({"JPEG", "Tiff", "Pict", "Photoshop", "PNG", "Bitmap", "Targa"});
    place(PopupMenu1, 135, 111, 112, 20);
    StaticText2 = new QLabel(QStringLiteral("Image Format:"), this);
    StaticText2->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    place(StaticText2, 20, 109, 112, 20);
    PushButton2 = new QPushButton(QStringLiteral("Settings"), this);
    place(PushButton2, 259, 111, 80, 20);
    StaticText3 = new QLabel(QStringLiteral("Default Folder:"), this);
    StaticText3->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    place(StaticText3, 32, 143, 100, 20);
    savefolder = new QLabel(QStringLiteral("Untitled"), this);
    place(savefolder, 135, 143, 120, 20);
    PushButton3 = new QPushButton(QStringLiteral("Select"), this);
    place(PushButton3, 259, 143, 80, 20);
    CheckBox2 = new QCheckBox(QStringLiteral("Hide Tray Icon"), this);
    place(CheckBox2, 20, 45, 185, 20);
    keyHint = new QLabel(this);
    keyHint->setObjectName(QStringLiteral("keyHint"));
    keyHint->setWordWrap(true);
    keyHint->setTextInteractionFlags(Qt::TextSelectableByMouse);
    place(keyHint, 20, 209, 319, 40);
    showKeyHint();
    connect(services.hotKeys.get(), &fw::HotKeyService::unboundHintChanged, this, &prefwin::showKeyHint);
    StaticText1->setBuddy(emaildefault);
    StaticText2->setBuddy(PopupMenu1);

    auto on = [this](auto *sender, auto signal, void (prefwin::*handler)()) {
        connect(sender, signal, this, [this, handler] { fw::guarded([this, handler] { (this->*handler)(); }); });
    };
    on(PushButton1, &QPushButton::clicked, &prefwin::PushButton1_Action);
    on(CheckBox1, &QCheckBox::toggled, &prefwin::CheckBox1_Action);
    on(quartz, &QCheckBox::toggled, &prefwin::quartz_Action);
    on(PopupMenu1, &QComboBox::currentIndexChanged, &prefwin::PopupMenu1_Change);
    on(CheckBox2, &QCheckBox::toggled, &prefwin::CheckBox2_Action);
    on(PushButton3, &QPushButton::clicked, &prefwin::PushButton3_Action);
    on(PushButton2, &QPushButton::clicked, &prefwin::PushButton2_Action);
}

prefwin::~prefwin() = default;

prefwin &prefwin::instance() { return App::instance().windows().get<prefwin>(); }

void prefwin::showKeyHint()
{
    const QString hint = services().hotKeys->unboundHint();
    keyHint->setText(hint);
    keyHint->setVisible(!hint.isEmpty());
    // All of it shows: lines as many as the text needs, and wide enough for a long path.
    int lineWidth = 319;
    for (const QString &word : hint.split(QLatin1Char(' ')))
        lineWidth = std::max(lineWidth, keyHint->fontMetrics().horizontalAdvance(word) + 2);
    keyHint->resize(lineWidth, keyHint->heightForWidth(lineWidth));
    resize(std::max(width(), lineWidth + 40), hint.isEmpty() ? 219 : 219 + keyHint->height());
}

void prefwin::openControls()
{
    CheckBox1_Open();
    quartz_Open();
    emaildefault_Open();
    PopupMenu1_Open();
    savefolder_Open();
    CheckBox2_Open();
    // The format list starts on its first row; that selection opens the exporter once the
    // window is complete, so the first output after a first start has a format.
    PopupMenu1_Change();
}

void prefwin::Event_Close()
{
    quartz_Close();
    emaildefault_Close();
}

void prefwin::PushButton1_Action() { Hide(); }

void prefwin::CheckBox1_Open()
{
    Window1::instance().holdlaunchsetting = true;
    setChecked(CheckBox1, GetLaunchAtLogin());
    Window1::instance().holdlaunchsetting = false;
}

void prefwin::CheckBox1_Action()
{
    if (!Window1::instance().holdlaunchsetting) SetLaunchAtLogin(CheckBox1->isChecked());
}

void prefwin::quartz_Open()
{
    Preferences &prefs = Preferences::module();
    if (fw::nilCheck(prefs.MyPref.get())->CopyAppBooleanValue(PrefKeys::QuartzScaling.str(), prefs.appname))
        setChecked(quartz, true);
}

void prefwin::quartz_Action()
{
    Window1 &editor = Window1::instance();
    editor.ScaledImage = editor.getscaledimage();
    editor.Canvas1->Refresh(true);
}

void prefwin::quartz_Close()
{
    Preferences &prefs = Preferences::module();
    fw::CFPreferences &store = *fw::nilCheck(prefs.MyPref.get());
    store.SetAppValue(PrefKeys::QuartzScaling.str(), fw::NewCFBoolean(quartz->isChecked()), prefs.appname);
    store.AppSynchronize(prefs.appname);
}

void prefwin::emaildefault_Open()
{
    Preferences &prefs = Preferences::module();
    const qint64 i = fw::nilCheck(prefs.MyPref.get())->CopyAppIntegerValue(PrefKeys::DefaultMailer.str(), prefs.appname);
    // A stored index outside the list leaves no row selected.
    emaildefault->setCurrentIndex(i >= 0 && i < emaildefault->count() ? int(i) : -1);
}

void prefwin::emaildefault_Close()
{
    Preferences &prefs = Preferences::module();
    fw::CFPreferences &store = *fw::nilCheck(prefs.MyPref.get());
    store.SetAppValue(PrefKeys::DefaultMailer.str(), fw::NewCFNumberInteger(emaildefault->currentIndex()), prefs.appname);
    store.AppSynchronize(prefs.appname);
}

void prefwin::PopupMenu1_Open()
{
    App::instance().process = QStringLiteral("LoadTypeMenu");
    const QString codes = QStringLiteral("JPEG,TIFF,PICT,8BPS,PNGf,BMPf,TPIC");
    for (int i = 0; i <= int(codes.split(',').size()) - 1; ++i)
        PopupMenu1->setItemData(i, codes.section(',', i, i));
}

void prefwin::PopupMenu1_Change()
{
    fw::GraphicsExporter *exporter = fw::nilCheck(Window1::instance().exporter.get());
    exporter->OpenExporter(PopupMenu1->itemData(PopupMenu1->currentIndex()).toString());
}

void prefwin::PushButton2_Action()
{
    Window1 &editor = Window1::instance();
    if (!editor.exporter) return;
    editor.exporter->setSettings(editor.settings);
    if (!editor.exporter->RequestSettings()) return;
    editor.settings = editor.exporter->Settings();
    Preferences &prefs = Preferences::module();
    fw::CFPreferences &store = *fw::nilCheck(prefs.MyPref.get());
    store.SetAppValue(PrefKeys::Settings.str(), fw::NewCFBinaryData(editor.settings), prefs.appname);
    store.AppSynchronize(prefs.appname);
}

void prefwin::savefolder_Open()
{
    const auto &folder = Window1::instance().DefaultFolder;
    if (!folder) throw fw::NilObjectException();
    savefolder->setText(folder->dirName());
}

void prefwin::PushButton3_Action()
{
    Window1 &editor = Window1::instance();
    const QString start = editor.DefaultFolder ? editor.DefaultFolder->absolutePath() : QString();
    const QString chosen = services().selectFolder(this, start);
    if (chosen.isEmpty()) return;
    editor.DefaultFolder = QDir(chosen);
    savefolder->setText(editor.DefaultFolder->dirName());
}

void prefwin::CheckBox2_Open() { setChecked(CheckBox2, isDockIconHidden()); }

void prefwin::CheckBox2_Action() { setDockIconHidden(CheckBox2->isChecked()); }

void prefwin::setPopupMenu1ListIndex(int i)
{
    PopupMenu1->setCurrentIndex(i);
    fw::rethrowPending();
}

void prefwin::setChecked(QCheckBox *box, bool on)
{
    box->setChecked(on);
    fw::rethrowPending();
}
