// One press of the hot key, seen whole: the command, the clipboard, the drawer, the editor; and
// the application's start, failure road and quit.

#include "TestSupport.h"

#include "editor/Window1.h"
#include "platform/Failure.h"
#include "platform/WindowRegistry.h"
#include "prefs/prefwin.h"
#include "recent/recentwin.h"

#include <QComboBox>
#include <QLineEdit>
#include <QSlider>
#include <QEventLoop>
#include <QTimer>
#include <QtTest>

class CaptureTest : public QObject {
    Q_OBJECT
private slots:
    void startUp_makesTheEditorHiddenAndClaimsTheKey()
    {
        TestProgram t;
        Window1 *w = t.app->windows().existing<Window1>();
        QVERIFY(w);
        QVERIFY(!w->isVisible());
        QCOMPARE(t.keys->claims.size(), 1);
        const auto c = t.keys->claims.first();
        QCOMPARE(c.keycode, int('2'));
        QCOMPARE(c.modifiers, 768);
        QCOMPARE(c.signature, quint32(0x73636370)); // "sccp"
        QCOMPARE(t.app->process, QString("OpenEditor"));
        QVERIFY(!t.app->windows().existing<prefwin>());
        QVERIFY(!QFile::exists(t.plistPath()));
    }

    void aPress_runsTheCommandAndOpensTheEditorOnThePicture()
    {
        TestProgram t;
        const QImage pic = patternImage(200, 120);
        t.captureGives(pic);
        t.pressHotKey();
        QCOMPARE(t.runner->calls, (QList<QStringList>{{"screencapture", "-cio"}}));
        Window1 &w = Window1::instance();
        QVERIFY(w.isVisible());
        QCOMPARE(w.mypic.size(), pic.size());
        QCOMPARE(w.getoutputimage().convertToFormat(QImage::Format_RGB32), pic);
        QCOMPARE(recentwin::instance().recentimages.size(), 1);
        QCOMPARE(w.scaleField->text(), QString("100"));
        QCOMPARE(t.app->process, QString("LoadTypeMenu"));
        QVERIFY(t.app->messages.isEmpty());
    }

    void signatureAndIdRules()
    {
        TestProgram t;
        t.captureGives(patternImage(50, 50));
        t.keys->press(fw::OSTypeFromString("xxxx"), 1);
        QCoreApplication::processEvents();
        QVERIFY(t.runner->calls.isEmpty());
        t.keys->press(fw::OSTypeFromString("sccp"), 77);
        QCoreApplication::processEvents();
        QCOMPARE(t.runner->calls.size(), 1);
    }

    void noPicture_isSilent_data()
    {
        QTest::addColumn<QString>("kind");
        QTest::newRow("nothing captured") << "nothing";
        QTest::newRow("text only") << "text";
    }
    void noPicture_isSilent()
    {
        QFETCH(QString, kind);
        TestProgram t;
        if (kind == "text")
            t.captureGivesText("hello");
        else
            t.captureGivesNothing();
        t.pressHotKey();
        QVERIFY(!Window1::instance().isVisible());
        QVERIFY(t.app->messages.isEmpty());
        QVERIFY(!t.app->quitRequested());
        QVERIFY(!t.app->windows().existing<recentwin>());
    }

    void undecodablePictures_endInTheOneMessageAndTheProgramStays_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QTest::newRow("corrupt PNG") << QByteArray("\x89PNG\r\n\x1a\nnot a picture at all", 28);
        QTest::newRow("beyond the allocation limit") << pngHeaderClaiming(40000, 40000);
    }
    void undecodablePictures_endInTheOneMessageAndTheProgramStays()
    {
        QFETCH(QByteArray, bytes);
        TestProgram t;
        t.captureGivesBytes(bytes, "image/png");
        t.pressHotKey();
        QCOMPARE(t.app->messages, QStringList{"An Error Ocurred at OpenEditor"});
        Window1 *w = t.app->windows().existing<Window1>();
        QVERIFY2(w, "the editor refuses the failure road's quit");
        QVERIFY(!w->isVisible());
        QVERIFY(!t.app->quitRequested());
        QVERIFY(!t.app->quitting);
        QVERIFY(!t.app->windows().existing<recentwin>());
        // Resident and working.
        t.captureGives(patternImage(30, 30));
        t.pressHotKey();
        QVERIFY(w->isVisible());
    }

    void twoPresses_replaceTheCaptureAndKeepBothInTheDrawer()
    {
        TestProgram t;
        t.captureGives(patternImage(100, 100));
        t.pressHotKey();
        Window1 &w = Window1::instance();
        const QPoint firstPos = w.pos();
        t.captureGives(patternImage(700, 500));
        t.pressHotKey();
        QCOMPARE(w.mypic.size(), QSize(700, 500));
        QCOMPARE(recentwin::instance().recentimages.size(), 2);
        QVERIFY(w.pos() != firstPos);
        QCOMPARE(&Window1::instance(), &w);
    }

    void lastScale_decidesTheScaleOfTheFirstLoad_data()
    {
        QTest::addColumn<QString>("stored");
        QTest::addColumn<QString>("field");
        QTest::addColumn<int>("slider");
        QTest::addColumn<QSize>("firstPictureSize");
        QTest::newRow("absent") << "" << "100" << 100 << QSize(200, 100);
        QTest::newRow("150") << "150" << "150" << 150 << QSize(300, 150);
        QTest::newRow("no number: pinned to 10") << "abc" << "10" << 10 << QSize(20, 10);
    }
    void lastScale_decidesTheScaleOfTheFirstLoad()
    {
        QFETCH(QString, stored);
        QFETCH(QString, field);
        QFETCH(int, slider);
        QFETCH(QSize, firstPictureSize);
        TestProgram t(false);
        if (!stored.isEmpty())
            t.writePlist("<plist><dict><key>LastScale</key><string>" + stored.toUtf8() +
                         "</string></dict></plist>");
        t.app->_Startup();
        t.captureGives(patternImage(200, 100));
        t.pressHotKey();
        Window1 &w = Window1::instance();
        QCOMPARE(w.scaleField->text(), field);
        QCOMPARE(w.Slider1->value(), slider);
        QCOMPARE(w.ScaledImage.size(), firstPictureSize);
        // The window was sized from the picture made before the scale was decided (100 %).
        QCOMPARE(w.Height(), 250);
    }

    void lastScaleOfAnotherType_failsOnLoad()
    {
        TestProgram t(false);
        t.writePlist("<plist><dict><key>LastScale</key><integer>150</integer></dict></plist>");
        t.app->_Startup();
        t.captureGives(patternImage(40, 40));
        t.pressHotKey();
        QCOMPARE(t.app->messages, QStringList{"An Error Ocurred at LoadTypeMenu"});
        QVERIFY(!t.app->quitRequested());
    }

    void lastFormat_selectsItsRow()
    {
        TestProgram t(false);
        t.writePlist("<plist><dict><key>LastFormat</key><string>png</string></dict></plist>");
        t.app->_Startup();
        t.captureGives(patternImage(40, 40));
        t.pressHotKey();
        QCOMPARE(prefwin::instance().PopupMenu1->currentText(), QString("PNG"));
    }

    void quit_withoutTheFlagIsRefusedByTheEditor()
    {
        TestProgram t;
        t.captureGives(patternImage(40, 40));
        t.pressHotKey();
        t.app->Quit(0);
        QVERIFY(!t.app->quitRequested());
        QVERIFY(!Window1::instance().isVisible());
        QVERIFY(t.app->windows().existing<Window1>());
    }

    void systemQuit_endsWhatTheEditorWouldRefuse()
    {
        TestProgram t;
        t.captureGives(patternImage(40, 40));
        t.pressHotKey();
        t.app->systemQuit();
        QVERIFY(t.app->quitRequested());
        QVERIFY(!t.app->quitting);
        // Nothing is written once the system ends the session; the windows close at the end.
        Window1 &w = Window1::instance();
        w.exporter->InputPicture = patternImage(4, 4);
        w.exporter->OutputFile = t.home.path() + "/late.jpg";
        QVERIFY(w.exporter->Export() < 0);
        QVERIFY(!QFile::exists(w.exporter->OutputFile));
        t.app->finish();
        QVERIFY(!t.app->windows().existing<Window1>());
    }

    void failureBeforeTheEditorExists_hasAnEmptyBreadcrumb()
    {
        TestProgram t(false);
        fw::guarded([] { throw fw::NilObjectException(); });
        QCOMPARE(t.app->messages, QStringList{"An Error Ocurred at "});
        QVERIFY(t.app->quitRequested());
    }

    void aFailureInsideADialogsLoopIsReportedAtOnce()
    {
        TestProgram t;
        // An earlier test's system quit ended the loops and left every new one to return at
        // once; a run of the application's loop clears that.
        QTimer::singleShot(0, qApp, &QCoreApplication::quit);
        QCoreApplication::exec();
        QStringList seenWhileTheLoopRan;
        fw::guarded([&] {
            QEventLoop loop; // a modal dialog's, say
            QTimer::singleShot(0, [] { fw::guarded([] { throw fw::NilObjectException(); }); });
            QTimer::singleShot(50, [&] {
                seenWhileTheLoopRan = t.app->messages;
                loop.quit();
            });
            loop.exec();
        });
        QCOMPARE(seenWhileTheLoopRan, QStringList{"An Error Ocurred at OpenEditor"});
        QCOMPARE(t.app->messages.size(), 1);
    }

    void aNestedFailureStopsTheHandlerThatWroteTheProperty()
    {
        TestProgram t;
        t.captureGives(patternImage(40, 40));
        t.pressHotKey();
        Window1 &w = Window1::instance();
        // A negative scale reaches the pipeline, which can't make a picture of it.
        w.Slider1->setValue(10);
        fw::guarded([&] { w.setScaleFieldText("-50"); });
        QCOMPARE(t.app->messages, QStringList{"An Error Ocurred at LoadTypeMenu"});
    }
};

QTEST_MAIN(CaptureTest)
#include "tst_capture.moc"
