#pragma once
// The file names the output commands invent.

#include <QString>
#include <functional>

namespace fw {
class GraphicsExporter;
enum class ExportStatus;
} // namespace fw

namespace output {

using Exists = std::function<bool(const QString &name)>;

// Whether something stands at a path; a link counts, even one that leads nowhere.
bool nameTaken(const QString &path);

// Save: "Capture.<ext>", then Capture1, Capture2 … — the first free name, gaps filled.
QString quickSaveName(const QString &extension, const Exists &exists);
// E-mail: "vtp1" (tried twice), then vtp2, vtp3 … — no extension.
QString mailFileName(const Exists &exists);
// The suggestion of Save as.
QString saveAsSuggestion(const QString &extension);

// Exports to the exporter's output file; while something took that name first, asks for the
// next free name and tries again. Gives the last export status.
fw::ExportStatus exportUnderFreeName(fw::GraphicsExporter &exporter,
                                     const std::function<void()> &nextName);

// The two path forms the mail scripts receive.
QString unixPath(const QString &path);     // a plain absolute path
QString absolutePath(const QString &path); // a file:// URL, percent-encoded

} // namespace output
