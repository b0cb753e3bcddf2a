#pragma once
// The editor: the capture, the one derived picture, the preview, the scale and caption controls.
// What leaves the editor (the toolbar's commands, Print) is the outputs' business: the window
// carries the toolbar it is given and announces Print and Page Setup. Split by concern:
//   Window1.cpp          creation, control table, window events, close, menu handlers
//   Window1Loading.cpp   loadimage
//   Window1Pipeline.cpp  getscaledimage, getoutputimage (editor/ScaledPicture: the picture)
//   Window1Preview.cpp   the canvas, scrolling and panning
//   Window1Controls.cpp  slider, scale field, presets, caption

#include "editor/ScaledPicture.h"
#include "platform/framework/ControlLayout.h"
#include "platform/framework/Window.h"

#include <QImage>
#include <memory>

class QLabel;
class QLineEdit;
class QMenuBar;
class QScrollBar;
class QSlider;
class QToolBar;
class QToolButton;
class keytrigger;
class recentwin;
namespace fw {
class Canvas;
}

class Window1 : public fw::Window {
    Q_OBJECT
public:
    Window1(fw::Services &services, fw::WindowRegistry &registry);
    ~Window1() override;

    // The one instance, created on first use.
    static Window1 &instance();

    // State, in the order the editor declares it. The exporter's settings and the default
    // folder are the session's (prefs/Session), shared with the outputs and the preferences.
    bool holdupdate = false;
    int xdown = 0;
    int ydown = 0;
    editor::ScaledPicture ScaledImage; // null is nil
    QImage mypic;                      // the capture, opaque; null is nil
    int currentscale = 0;
    std::unique_ptr<keytrigger> mytrigger;

    // Controls.
    fw::Canvas *Canvas1 = nullptr;       // the preview, one to one
    QSlider *Slider1 = nullptr;          // the scale, 10 to 200
    QLineEdit *scaleField = nullptr;     // the scale as typed: the hub the picture follows
    QLabel *StaticText1 = nullptr;       // "%"
    QScrollBar *ScrollBarH = nullptr;    // pans across
    QScrollBar *ScrollBarV = nullptr;    // pans down
    QLabel *StaticText2 = nullptr;       // "Scale:"
    QToolButton *BevelButton1 = nullptr; // the preset scales' menu
    QLineEdit *captionText = nullptr;    // the caption burned into the picture
    QLabel *StaticText3 = nullptr;       // "Caption:"
    QMenuBar *menuBar = nullptr;         // the application's menu bar
    QToolBar *toolBar = nullptr;         // the outputs' toolbar, once given

    // Takes the toolbar into the window, above the content, keeping the content's size.
    void setToolBar(QToolBar *bar);
    // A capture taken or chosen in the drawer, loaded at the given scale ("" for the stored one).
    void takeCapture(const QImage &capture, const QString &scale);

    // Methods.
    void loadimage(const QString &scale);
    editor::ScaledPicture getscaledimage();
    QImage getoutputimage() const;
    void setscroll();
    void updatevalues();

    // Window events.
    void openControls() override;
    void Event_Open() override;
    bool Event_CancelClose(bool appQuitting) override;
    // Also the live resize's event: the same work runs at every step.
    void Event_Resized() override;
    bool Event_MouseDown(int x, int y);
    void Event_MouseDrag(int x, int y);

    // Menu handlers. Print and Page Setup are carried out by whoever listens to the requests.
    void AddMenuHandlers();
    bool _FileQuit_Action();
    bool _FileClose_Action();
    bool _FilePrint_Action();
    bool _FilePageSetup_Action();

    // Control handlers.
    void Canvas1_Paint(QPainter &g, int width, int height);
    bool Canvas1_MouseDown(int x, int y);
    void Canvas1_MouseDrag(int x, int y);
    void Canvas1_MouseUp(int x, int y);
    void Canvas1_MouseMove(int x, int y);
    void ScrollBarH_ValueChanged();
    void ScrollBarV_ValueChanged();
    void Slider1_ValueChanged();
    void scaleField_TextChange();
    void BevelButton1_Open();
    void BevelButton1_Action(int menuValue);
    void captionText_TextChange();

    // Writes that run the controls' handlers nested, as the framework's property writes do.
    void setSliderValue(int v);
    void setScaleFieldText(const QString &text);
    void setScrollMaximum(QScrollBar *bar, int v);
    void setScrollValue(QScrollBar *bar, int v);

    // Pannable: either scroll bar has a range.
    bool pannable() const;
    // The canvas in the screen's pixels, and their number per unit of the window's geometry.
    QSize canvasPixels() const;
    qreal canvasPixelRatio() const;
    // The window's design size.
    static constexpr QSize designSize{400, 440};

signals:
    void printRequested();
    void pageSetupRequested();

protected:
    int barsHeight() const override;
    void layoutFor(const QSize &size) override;

private:
    // Pictures only, the captions as tool tips, where the window is narrower than the items.
    void fitToolbar(int width);
    void buildControls();
    void connectControls();
    void setCanvasCursor(const QCursor *cursor);

    fw::Canvas *m_content = nullptr; // the background below the bars
    fw::ControlLayout m_layout{designSize};
    QSize m_captionedToolbar; // the tool bar's size with captions under the pictures
};
