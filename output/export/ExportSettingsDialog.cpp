#include "output/export/ExportSettingsDialog.h"

#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QDialog>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QLabel>
#include <QSlider>
#include <QSpinBox>
#include <QVBoxLayout>

namespace output {

using fw::ExportFormat;

static QString titleFor(ExportFormat f)
{
    switch (f) {
    case ExportFormat::JPEG:
        return "JPEG Options";
    case ExportFormat::TIFF:
        return "TIFF Options";
    case ExportFormat::PICT:
        return "PICT Options";
    case ExportFormat::PSD:
        return "Photoshop Options";
    case ExportFormat::PNG:
        return "PNG Options";
    case ExportFormat::BMP:
        return "BMP Options";
    case ExportFormat::Targa:
        return "Targa Options";
    case ExportFormat::None:
        break;
    }
    return "Options";
}

bool runExportSettingsDialog(ExportFormat format, fw::ExporterSettings &s, QWidget *parent)
{
    QDialog dialog(parent ? parent : QApplication::activeWindow());
    dialog.setWindowTitle(titleFor(format));
    dialog.setObjectName("ExportSettingsDialog");
    auto *form = new QFormLayout;
    std::function<void()> apply = [] {};

    switch (format) {
    case ExportFormat::JPEG: {
        auto *quality = new QSpinBox;
        quality->setRange(1, 100);
        quality->setValue(s.jpegQuality);
        quality->setAccessibleName("Quality");
        auto *progressive = new QCheckBox("Progressive");
        progressive->setChecked(s.jpegProgressive);
        form->addRow("Quality:", quality);
        form->addRow(QString(), progressive);
        apply = [&s, quality, progressive] {
            s.jpegQuality = quality->value();
            s.jpegProgressive = progressive->isChecked();
        };
        break;
    }
    case ExportFormat::PNG: {
        auto *level = new QSpinBox;
        level->setRange(0, 9);
        level->setValue(s.pngCompression);
        level->setAccessibleName("Compression level");
        auto *interlace = new QCheckBox("Interlaced");
        interlace->setChecked(s.pngInterlaced);
        form->addRow("Compression (0-9):", level);
        form->addRow(QString(), interlace);
        apply = [&s, level, interlace] {
            s.pngCompression = level->value();
            s.pngInterlaced = interlace->isChecked();
        };
        break;
    }
    case ExportFormat::TIFF: {
        auto *comp = new QComboBox;
        comp->addItems({"None", "LZW", "Zip"});
        comp->setCurrentIndex(int(s.tiffCompression));
        form->addRow("Compression:", comp);
        apply = [&s, comp] { s.tiffCompression = fw::TiffCompression(comp->currentIndex()); };
        break;
    }
    case ExportFormat::PSD:
    case ExportFormat::Targa: {
        const bool psd = format == ExportFormat::PSD;
        auto *rle = new QCheckBox("Compress (RLE)");
        rle->setChecked(psd ? s.psdRle : s.targaRle);
        form->addRow(QString(), rle);
        apply = [&s, rle, psd] { (psd ? s.psdRle : s.targaRle) = rle->isChecked(); };
        break;
    }
    case ExportFormat::BMP: {
        auto *depth = new QComboBox;
        depth->addItems({"24 bits", "32 bits"});
        depth->setCurrentIndex(s.bmpDepth == 32 ? 1 : 0);
        form->addRow("Depth:", depth);
        apply = [&s, depth] { s.bmpDepth = depth->currentIndex() == 1 ? 32 : 24; };
        break;
    }
    case ExportFormat::PICT:
    case ExportFormat::None:
        form->addRow(new QLabel("This format has no options."));
        break;
    }

    auto *buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel);
    QObject::connect(buttons, &QDialogButtonBox::accepted, &dialog, &QDialog::accept);
    QObject::connect(buttons, &QDialogButtonBox::rejected, &dialog, &QDialog::reject);
    auto *layout = new QVBoxLayout(&dialog);
    layout->addLayout(form);
    layout->addWidget(buttons);
    dialog.raise();
    dialog.activateWindow();
    if (dialog.exec() != QDialog::Accepted) return false;
    apply();
    return true;
}

} // namespace output
