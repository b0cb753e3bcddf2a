#pragma once
// The editor as the outputs see it.

#include "output/Source.h"

class EditorSource : public output::Source {
public:
    QImage outputImage() override;
    QImage capture() override;
    QString scaleText() override;
    QString caption() override;
    QWidget *window() override;
    void hide() override;
};
