#pragma once
// What the outputs need of the editor they serve: the picture that leaves it, the capture for
// printing, the scale field's text for the stored last scale, the caption, the window for
// dialogs, and hiding it. The composition root hands the editor over through this.

#include <QImage>
#include <QString>

class QWidget;

namespace output {

class Source {
public:
    virtual ~Source() = default;
    // The scaled picture with its caption; a picture the machine can't hold fails as nil.
    virtual QImage outputImage() = 0;
    // The capture at full size, as taken; nil before the first one.
    virtual QImage capture() = 0;
    virtual QString scaleText() = 0;
    // The caption's text, which the files and the clipboard's PNG carry as their description.
    virtual QString caption() = 0;
    virtual QWidget *window() = 0;
    virtual void hide() = 0;
};

} // namespace output
