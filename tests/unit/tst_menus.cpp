// Print and page setup, the menu bar and its command chain, the splash.

#include "TestSupport.h"

#include "app/MenuBar1.h"
#include "app/splash.h"
#include "editor/Window1.h"
#include "output/PrintMath.h"
#include "recent/recentwin.h"

#include <QAction>
#include <QClipboard>
#include <QLabel>
#include <QLineEdit>
#include <QMenuBar>
#include <QPrinter>
#include <QTimer>
#include <QtTest>

namespace output {
QString setupString(const QPrinter &printer);
void applySetupString(QPrinter &printer, const QString &text);
} // namespace output

class MenusTest : public QObject {
    Q_OBJECT
private slots:
    // First: once a test has quit, Qt ends every later event loop of the process at once.
    void splash_showsTheVersionAndClosesItselfAfter1500ms()
    {
        TestProgram t(false);
        QElapsedTimer clock;
        bool editorExisted = false;
        t.app->showSplash = [&] {
            editorExisted = t.app->windows().existing<Window1>() != nullptr;
            clock.start();
            splash::instance().ShowModal();
        };
        // The bundle says its version.
        QFile info(t.bundlePath() + "/Contents/Info.plist");
        info.open(QIODevice::WriteOnly);
        info.write("<plist><dict><key>CFBundleShortVersionString</key><string>9.8</string></dict></plist>");
        info.close();
        QString shownVersion;
        QTimer::singleShot(300, [&] {
            if (splash *s = t.app->windows().existing<splash>()) shownVersion = s->StaticText1->text();
        });
        t.app->_Startup();
        const qint64 ms = clock.elapsed();
        QVERIFY(editorExisted);
        QVERIFY2(ms >= 1450 && ms < 3000, qPrintable(QString::number(ms)));
        QCOMPARE(shownVersion, QString("9.8"));
        QCOMPARE(t.app->windows().existing<splash>(), nullptr);
    }

    void printArithmetic_onALetterPage_data()
    {
        QTest::addColumn<QSize>("picture");
        QTest::addColumn<QSize>("drawn");
        QTest::newRow("fits: its own size") << QSize(300, 200) << QSize(300, 200);
        QTest::newRow("too wide: by the width") << QSize(1224, 396) << QSize(612, 198);
        QTest::newRow("too wide and too tall: by the height alone") << QSize(1224, 871) << QSize(1112, 792);
        QTest::newRow("exactly page-wide: not scaled") << QSize(612, 300) << QSize(612, 300);
        QTest::newRow("exactly page-high: not scaled") << QSize(100, 792) << QSize(100, 792);
    }
    void printArithmetic_onALetterPage()
    {
        QFETCH(QSize, picture);
        QFETCH(QSize, drawn);
        QCOMPARE(output::printedSize(picture, QSize(612, 792)), drawn);
    }

    void print_cancelledDoesNothing_andWithNoCaptureStillReachesTheHandler()
    {
        TestProgram t;
        int dialogs = 0;
        t.services->printDialog = [&dialogs](QWidget *) { ++dialogs; return std::unique_ptr<QPrinter>(); };
        Window1 &w = Window1::instance();
        QAction *print = MenuBar1::find(w.menuBar, "FilePrint");
        QCOMPARE(print->shortcut(), QKeySequence("Ctrl+P"));
        w.Show();
        w.activateWindow();
        QApplication::setActiveWindow(&w);
        print->trigger();
        QCOMPARE(dialogs, 1);
        QVERIFY(t.app->messages.isEmpty());
    }

    void pageSetup_storesItsStringAndReadsItBackThroughTheXmlForm()
    {
        TestProgram t;
        int shown = 0;
        QString seen;
        t.services->pageSetupDialog = [&](QPrinter &p) {
            ++shown;
            seen = output::setupString(p);
            p.setPageSize(QPageSize(QPageSize::A5));
            p.setPageOrientation(QPageLayout::Landscape);
            return true;
        };
        Window1 &w = Window1::instance();
        QCOMPARE(w._FilePageSetup_Action(), false);
        fw::PreferenceDomains fresh(t.configFolder());
        const fw::StoreObject stored = fw::CFPreferences(fresh).CopyAppValue("PageSetup", "com.Morlane.Vantrel");
        QVERIFY(stored->isA(fw::StoreValue::Kind::String));
        QVERIFY(stored->toString().contains("pageSize=A5"));
        QVERIFY(stored->toString().contains("orientation=landscape"));
        QCOMPARE(w._FilePageSetup_Action(), false);
        QCOMPARE(shown, 2);
        QVERIFY2(seen.contains("pageSize=A5") && seen.contains("landscape"), qPrintable(seen));
        t.services->pageSetupDialog = [](QPrinter &) { return false; };
        QCOMPARE(w._FilePageSetup_Action(), false);
        QCOMPARE(MenuBar1::find(w.menuBar, "FilePageSetup"), nullptr); // no item leads there
    }

    void menuBar_itemsTextsAndShortcuts()
    {
        TestProgram t;
        QMenuBar *bar = Window1::instance().menuBar;
        const QList<QPair<QString, QString>> expected = {
            {"FileQuit", "Ctrl+Q"}, {"FilePrint", "Ctrl+P"}, {"FileClose", "Ctrl+W"},
            {"FilePreferences", ""}, {"EditUndo", "Ctrl+Z"}, {"EditCut", "Ctrl+X"},
            {"EditCopy", "Ctrl+C"}, {"EditPaste", "Ctrl+V"}, {"EditClear", ""}};
        for (const auto &[name, keys] : expected) {
            QAction *a = MenuBar1::find(bar, name);
            QVERIFY2(a, qPrintable(name));
            QCOMPARE(a->shortcut().toString(), keys);
        }
        QVERIFY(MenuBar1::find(bar, "UntitledMenu0")->isSeparator());
        QCOMPARE(MenuBar1::find(bar, "UntitledMenu1"), nullptr);
        QCOMPARE(MenuBar1::toQtShortcut("Cmd+p"), QString("Ctrl+P"));
    }

    void quit_withTheEditorInFront_runsBothAndCloses_hiddenOnlyTheApplications()
    {
        {
            TestProgram t;
            t.captureGives(patternImage(40, 40));
            t.pressHotKey();
            Window1 &w = Window1::instance();
            QApplication::setActiveWindow(&w);
            QCOMPARE(t.app->frontWindow(), &w);
            t.app->dispatchMenuCommand("FileQuit");
            QVERIFY(t.app->quitting);
            QVERIFY(t.app->quitRequested());
        }
        {
            TestProgram t;
            QCOMPARE(t.app->frontWindow(), nullptr);
            t.app->dispatchMenuCommand("FileQuit");
            QVERIFY(t.app->quitRequested());
        }
    }

    void close_hidesTheEditorAndTheDrawer_preferencesWorksWithEverythingHidden()
    {
        TestProgram t;
        t.captureGives(patternImage(40, 40));
        t.pressHotKey();
        Window1 &w = Window1::instance();
        recentwin::instance().Show();
        QApplication::setActiveWindow(&w);
        t.app->dispatchMenuCommand("FileClose");
        QVERIFY(!w.isVisible());
        QVERIFY(!recentwin::instance().isVisible());
        QVERIFY(t.app->dispatchMenuCommand("FilePreferences"));
        QVERIFY(prefwin_visible());
        QVERIFY(!t.app->quitRequested());
    }

    void enabling_followsTheFrontWindowAndTheFocusedField()
    {
        TestProgram t;
        t.captureGives(patternImage(40, 40));
        t.pressHotKey();
        Window1 &w = Window1::instance();
        fw::Application &app = *t.app;
        QApplication::setActiveWindow(&w);
        for (const char *name : {"FilePrint", "FileClose", "FileQuit", "FilePreferences"})
            QVERIFY2(MenuBar1::isAvailable(app, name), name);
        w.captionText->setFocus();
        w.captionText->setText("abc");
        w.captionText->deselect();
        QVERIFY(!MenuBar1::isAvailable(app, "EditCopy"));
        w.captionText->selectAll();
        QVERIFY(MenuBar1::isAvailable(app, "EditCopy"));
        QVERIFY(MenuBar1::isAvailable(app, "EditCut"));
        w.Hide();
        QApplication::setActiveWindow(nullptr);
        QVERIFY(!MenuBar1::isAvailable(app, "FilePrint"));
        QVERIFY(!MenuBar1::isAvailable(app, "FileClose"));
        QVERIFY(MenuBar1::isAvailable(app, "FileQuit"));
        QVERIFY(MenuBar1::isAvailable(app, "FilePreferences"));
    }

    void editCopy_inTheCaptionCopiesText_notThePicture()
    {
        TestProgram t;
        t.captureGives(patternImage(40, 40));
        t.pressHotKey();
        Window1 &w = Window1::instance();
        QApplication::setActiveWindow(&w);
        w.captionText->setText("words");
        w.captionText->setFocus();
        w.captionText->selectAll();
        QGuiApplication::clipboard()->clear();
        MenuBar1::find(w.menuBar, "EditCopy")->trigger();
        QCOMPARE(QGuiApplication::clipboard()->text(), QString("words"));
        QVERIFY(QGuiApplication::clipboard()->image().isNull());
    }

private:
    static bool prefwin_visible()
    {
        for (QWidget *w : QApplication::topLevelWidgets())
            if (w->objectName() == "prefwin" && w->isVisible()) return true;
        return false;
    }
};

QTEST_MAIN(MenusTest)
#include "tst_menus.moc"
