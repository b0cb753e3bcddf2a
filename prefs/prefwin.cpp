#include "prefs/prefwin.h"

#include "platform/core/Failure.h"
#include "platform/display/Screen.h"
#include "platform/framework/Application.h"
#include "platform/hotkeys/HotKeyService.h"
#include "prefs/HideDockIcon.h"
#include "prefs/LaunchMeAtLogin.h"
#include "prefs/Preferences.h"
#include "prefs/Session.h"

#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QPushButton>
#include <QSignalBlocker>

prefwin::prefwin(fw::Services &services, fw::WindowRegistry &registry)
    : fw::Window(services, registry)
{
    setObjectName(QStringLiteral("prefwin"));
    fw::Application::instance().addQuitShortcut(this);
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
    connect(services.hotKeys.get(), &fw::HotKeyService::unboundHintChanged, this,
            &prefwin::showKeyHint);
    StaticText1->setBuddy(emaildefault);
    StaticText2->setBuddy(PopupMenu1);

    fw::connectGuarded(PushButton1, &QPushButton::clicked, this, [this] { PushButton1_Action(); });
    fw::connectGuarded(CheckBox1, &QCheckBox::toggled, this, [this] { CheckBox1_Action(); });
    fw::connectGuarded(quartz, &QCheckBox::toggled, this, [this] { quartz_Action(); });
    fw::connectGuarded(PopupMenu1, &QComboBox::currentIndexChanged, this,
                       [this] { PopupMenu1_Change(); });
    fw::connectGuarded(CheckBox2, &QCheckBox::toggled, this, [this] { CheckBox2_Action(); });
    fw::connectGuarded(PushButton3, &QPushButton::clicked, this, [this] { PushButton3_Action(); });
    fw::connectGuarded(PushButton2, &QPushButton::clicked, this, [this] { PushButton2_Action(); });
    // The mail program has no handler of its own: its row is simply what the next E-Mail uses.
    connect(emaildefault, &QComboBox::currentIndexChanged, this,
            [](int row) { Preferences::module().setMailer(row); });
}

prefwin::~prefwin() = default;

prefwin &prefwin::instance()
{
    return fw::Application::instance().windows().get<prefwin>();
}

Preferences &prefwin::live()
{
    (void)instance();
    return Preferences::module();
}

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

void prefwin::PushButton1_Action()
{
    Hide();
}

void prefwin::CheckBox1_Open()
{
    holdlaunchsetting = true;
    setChecked(CheckBox1, GetLaunchAtLogin());
    holdlaunchsetting = false;
}

void prefwin::CheckBox1_Action()
{
    if (!holdlaunchsetting) SetLaunchAtLogin(CheckBox1->isChecked());
}

void prefwin::quartz_Open()
{
    Preferences &prefs = Preferences::module();
    if (fw::nilCheck(prefs.MyPref.get())
            ->CopyAppBooleanValue(PrefKeys::QuartzScaling.str(), prefs.appname))
        setChecked(quartz, true);
}

// The editor rebuilds its picture on the change, hidden or not.
void prefwin::quartz_Action()
{
    Preferences::module().setQuartz(quartz->isChecked());
}

void prefwin::quartz_Close()
{
    Preferences &prefs = Preferences::module();
    fw::CFPreferences &store = *fw::nilCheck(prefs.MyPref.get());
    store.SetAppValue(PrefKeys::QuartzScaling.str(), fw::NewCFBoolean(quartz->isChecked()),
                      prefs.appname);
    store.AppSynchronize(prefs.appname);
}

void prefwin::emaildefault_Open()
{
    Preferences &prefs = Preferences::module();
    const qint64 i = fw::nilCheck(prefs.MyPref.get())
                         ->CopyAppIntegerValue(PrefKeys::DefaultMailer.str(), prefs.appname);
    // A stored index outside the list leaves no row selected.
    emaildefault->setCurrentIndex(i >= 0 && i < emaildefault->count() ? int(i) : -1);
    prefs.setMailer(emaildefault->currentIndex());
}

void prefwin::emaildefault_Close()
{
    Preferences &prefs = Preferences::module();
    fw::CFPreferences &store = *fw::nilCheck(prefs.MyPref.get());
    store.SetAppValue(PrefKeys::DefaultMailer.str(),
                      fw::NewCFNumberInteger(emaildefault->currentIndex()), prefs.appname);
    store.AppSynchronize(prefs.appname);
}

void prefwin::PopupMenu1_Open()
{
    fw::Application::instance().process = QStringLiteral("LoadTypeMenu");
    const QString codes = QStringLiteral("JPEG,TIFF,PICT,8BPS,PNGf,BMPf,TPIC");
    for (int i = 0; i <= int(codes.split(',').size()) - 1; ++i)
        PopupMenu1->setItemData(i, codes.section(',', i, i));
}

// The exporter, which belongs to the outputs, opens the format's code.
void prefwin::PopupMenu1_Change()
{
    Preferences::module().setFormat(PopupMenu1->currentText(),
                                    PopupMenu1->itemData(PopupMenu1->currentIndex()).toString());
}

void prefwin::PushButton2_Action()
{
    Session::instance().requestExporterSettings();
}

void prefwin::savefolder_Open()
{
    const auto &folder = Session::instance().DefaultFolder;
    if (!folder) throw fw::NilObjectException();
    savefolder->setText(folder->dirName());
}

void prefwin::PushButton3_Action()
{
    Session &session = Session::instance();
    const QString start = session.DefaultFolder ? session.DefaultFolder->absolutePath() : QString();
    const QString chosen = services().selectFolder(this, start);
    if (chosen.isEmpty()) return;
    session.DefaultFolder = QDir(chosen);
    savefolder->setText(session.DefaultFolder->dirName());
}

void prefwin::CheckBox2_Open()
{
    setChecked(CheckBox2, isDockIconHidden());
}

void prefwin::CheckBox2_Action()
{
    setDockIconHidden(CheckBox2->isChecked());
}

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
