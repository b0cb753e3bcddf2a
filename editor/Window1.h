#pragma once
// The editor: the capture, the one derived picture, the preview, the scale and caption controls,
// and (in later files) the output commands. The class is split by concern over several files:
//   Window1.cpp          creation, control table, window events, close, menu handlers
//   Window1Loading.cpp   loadimage
//   Window1Pipeline.cpp  getscaledimage, getoutputimage (editor/ScaledPicture: the picture)
//   Window1Preview.cpp   the canvas, scrolling and panning
//   Window1Controls.cpp  slider, scale field, presets, caption
//   output/…             the toolbar and the output commands

#include "editor/ScaledPicture.h"
#include "platform/framework/ControlLayout.h"
#include "platform/framework/Window.h"

#include <QDir>
#include <QImage>
#include <memory>
#include <optional>

class QAction;
class QLabel;
class QLineEdit;
class QMenuBar;
class QScrollBar;
class QSlider;
class QToolBar;
class QToolButton;
class keytrigger;
namespace fw {
class Canvas;
class GraphicsExporter;
}

class Window1 : public fw::Window {
    Q_OBJECT
public:
    Window1(fw::Services &services, fw::WindowRegistry &registry);
    ~Window1() override;

    // The one instance, created on first use.
    static Window1 &instance();

    // State, in the order the editor declares it.
    bool holdupdate = false;
    int xdown = 0;
    int ydown = 0;
    editor::ScaledPicture ScaledImage; // null is nil
    bool holdlaunchsetting = false;
    QImage mypic;                // the capture, opaque; null is nil
    QByteArray settings;         // the exporter's settings, opaque
    std::unique_ptr<fw::GraphicsExporter> exporter;
    int currentscale = 0;
    std::unique_ptr<keytrigger> mytrigger;
    bool hotkey = false;         // whether the key was claimed (its hold lives in the platform)
    std::optional<QDir> DefaultFolder; // nothing is nil

    // Controls.
    fw::Canvas *Canvas1 = nullptr;
    QSlider *Slider1 = nullptr;
    QLineEdit *scaleField = nullptr;
    QLabel *StaticText1 = nullptr;
    QScrollBar *ScrollBarH = nullptr;
    QScrollBar *ScrollBarV = nullptr;
    QLabel *StaticText2 = nullptr;
    QToolButton *BevelButton1 = nullptr;
    QLineEdit *captionText = nullptr;
    QLabel *StaticText3 = nullptr;
    QMenuBar *menuBar = nullptr;
    QToolBar *toolBar = nullptr;
    QAction *SaveTB = nullptr;
    QAction *SaveasTB = nullptr;
    QAction *MailTB = nullptr;
    QAction *ToolbarItem1 = nullptr;
    QWidget *StandardToolbarItem1 = nullptr;
    QAction *ToolbarItem3 = nullptr;
    QAction *ToolbarItem2 = nullptr;

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
    void Event_Resized() override;
    void Event_Resizing() { Event_Resized(); }
    bool Event_MouseDown(int x, int y);
    void Event_MouseDrag(int x, int y);

    // Menu handlers.
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

    // Toolbar items and the output commands.
    void SaveTB_Open();
    void SaveTB_Action();
    void SaveasTB_Open();
    void SaveasTB_Action();
    void MailTB_Open();
    void MailTB_Action();
    void ToolbarItem1_Open();
    void ToolbarItem1_Action();
    void ToolbarItem3_Open();
    void ToolbarItem3_Action();
    void ToolbarItem2_Open();
    void ToolbarItem2_Action();

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

protected:
    int barsHeight() const override;
    void layoutFor(const QSize &size) override;

private:
    void buildToolbar();
    void fitToolbar(int width);
    // Before an export: settings asked for on first use, else given to the exporter.
    void settingsStep(bool storeRequested);
    void buildControls();
    void connectControls();
    void setCanvasCursor(const QCursor *cursor);

    fw::Canvas *m_content = nullptr; // the background below the bars
    fw::ControlLayout m_layout{designSize};
    QSize m_captionedToolbar; // the tool bar's size with captions under the pictures
};
