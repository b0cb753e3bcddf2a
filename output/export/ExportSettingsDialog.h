#pragma once
// The exporter's own settings dialog, one layout per format, modal.

#include "output/export/ExporterSettings.h"

class QWidget;

namespace output {
// Shows the dialog for the format, starting from `settings`; on OK the edited values are left
// in `settings` and the result is true.
bool runExportSettingsDialog(fw::ExportFormat format, fw::ExporterSettings &settings,
                             QWidget *parent = nullptr);
} // namespace output
