#include "output/export/ImageMetadata.h"

#include "platform/core/Logging.h"

#include <QList>
#include <QMap>
#include <climits>
#include <utility>

namespace fw::metadata {

namespace {

QByteArray num(quint64 v, int bytes, bool bigEndian = true)
{
    QByteArray b(bytes, '\0');
    for (int i = 0; i < bytes; ++i)
        b[i] = char(v >> (8 * (bigEndian ? bytes - 1 - i : i)));
    return b;
}

qint64 get(const QByteArray &b, qint64 at, int bytes, bool bigEndian = true)
{
    quint32 v = 0;
    for (int i = 0; i < bytes; ++i)
        v |= quint32(quint8(b[at + i])) << (8 * (bigEndian ? bytes - 1 - i : i));
    return v;
}

// Control characters belong in none of these fields: XML refuses most of them and EXIF ends a
// string at NUL. Tabs and line breaks stay.
QByteArray cleanUtf8(const QString &text)
{
    QString out;
    out.reserve(text.size());
    for (const QChar c : text) {
        const char16_t u = c.unicode();
        if ((u >= 0x20 && u != 0x7f && u < 0xfffe) || u == u'\t' || u == u'\n') out += c;
    }
    return out.toUtf8();
}

// The first whole characters of a UTF-8 text that take at most max bytes, escaped for XML when
// asked: a field with a size limit never ends inside a character or an entity.
QByteArray cut(const QByteArray &utf8, qint64 max, bool xml = false)
{
    QByteArray out;
    qsizetype charStart = 0;
    for (const char c : utf8) {
        if ((c & 0xc0) != 0x80) charStart = out.size();
        if (xml && c == '&')
            out += "&amp;";
        else if (xml && c == '<')
            out += "&lt;";
        else if (xml && c == '>')
            out += "&gt;";
        else
            out += c;
        if (out.size() > max) return out.left(charStart);
    }
    return out;
}

// An XMP packet whose only property is the description (text escaped for XML).
QByteArray xmp(const QByteArray &escaped)
{
    return "<?xpacket begin=\"\xef\xbb\xbf\" id=\"W5M0MpCehiHzreSzNTczkc9d\"?>\n"
           "<x:xmpmeta xmlns:x=\"adobe:ns:meta/\">"
           "<rdf:RDF xmlns:rdf=\"http://www.w3.org/1999/02/22-rdf-syntax-ns#\">"
           "<rdf:Description rdf:about=\"\" xmlns:dc=\"http://purl.org/dc/elements/1.1/\">"
           "<dc:description><rdf:Alt><rdf:li xml:lang=\"x-default\">" +
           escaped +
           "</rdf:li></rdf:Alt></dc:description></rdf:Description></rdf:RDF></x:xmpmeta>\n"
           "<?xpacket end=\"w\"?>";
}
const qint64 kXmpFrame = xmp({}).size();

// A TIFF image file directory written at offset `at`: the entries sorted by tag, the values that
// don't fit in an entry right after it. Entries are kept as their 12 bytes.
struct Value {
    quint16 tag;
    quint16 type; // 1 BYTE, 2 ASCII, 3 SHORT, 5 RATIONAL
    QByteArray data;
};
QByteArray directory(QMap<quint16, QByteArray> entries, const QList<Value> &added, qint64 at,
                     qint64 next, bool be)
{
    for (const Value &v : added)
        entries.insert(v.tag, {});
    const qint64 dataAt = at + 2 + 12 * entries.size() + 4;
    QByteArray data;
    for (const Value &v : added) {
        const int unit = v.type == 3 ? 2 : v.type == 5 ? 8 : 1;
        QByteArray e = num(v.tag, 2, be) + num(v.type, 2, be) + num(v.data.size() / unit, 4, be);
        if (v.data.size() <= 4) {
            e += v.data.leftJustified(4, '\0');
        } else {
            e += num(dataAt + data.size(), 4, be);
            data += v.data;
            if (data.size() % 2) data += '\0'; // values start on a word boundary
        }
        entries[v.tag] = e;
    }
    QByteArray out = num(entries.size(), 2, be);
    for (const QByteArray &e : std::as_const(entries))
        out += e;
    return out + num(next, 4, be) + data;
}

constexpr quint16 kImageDescription = 270, kXmpTag = 700;

QByteArray segment(char marker, const QByteArray &payload)
{
    return QByteArray("\xff") + marker + num(payload.size() + 2, 2) + payload;
}

// EXIF and XMP after the JFIF header. A segment holds 65533 bytes at most: a longer text is cut.
QByteArray jpeg(QByteArray file, const QByteArray &text)
{
    constexpr qint64 kSegment = 65533;
    if (!file.startsWith("\xff\xd8")) return file;
    qint64 at = 2;
    while (at + 4 <= file.size() && file[at] == '\xff' && file[at + 1] == '\xe0')
        at += 2 + get(file, at + 2, 2);
    if (at > file.size()) return file;
    // The EXIF string is ASCII by type and holds UTF-8, as current readers take it; the XMP
    // carries the same text for readers that take ASCII strictly. Beside it, what EXIF requires:
    // the resolution the JFIF header gives (72 per inch) and centred chroma.
    const QByteArray dpi = num(72, 4) + num(1, 4);
    const QList<Value> tags = {{kImageDescription, 2, cut(text, kSegment - 100) + '\0'},
                               {282, 5, dpi},
                               {283, 5, dpi},
                               {296, 3, num(2, 2)},
                               {531, 3, num(1, 2)}};
    const QByteArray exif =
        QByteArray("Exif\0\0MM\0*\0\0\0\x08", 14) + directory({}, tags, 8, 0, true);
    const QByteArray head("http://ns.adobe.com/xap/1.0/", 29); // with its NUL
    file.insert(at, segment('\xe1', exif) +
                        segment('\xe1', head + xmp(cut(text, kSegment - 29 - kXmpFrame, true))));
    return file;
}

// iTXt before the first data chunk: keyword, no compression, no language, no translated keyword.
QByteArray png(QByteArray file, const QByteArray &text)
{
    if (!file.startsWith("\x89PNG\r\n\x1a\n")) return file;
    for (qint64 at = 8; at + 12 <= file.size(); at += 12 + get(file, at, 4)) {
        if (file.mid(at + 4, 4) != "IDAT") continue;
        file.insert(at, pngChunk("iTXt", QByteArray("Description\0\0\0\0\0", 16) + text));
        break;
    }
    return file;
}

// A new first directory, the old one's entries with ImageDescription and XMP added, appended to
// the file; the old one stays behind unreferenced, so no offset in the file moves.
QByteArray tiff(QByteArray file, const QByteArray &text)
{
    const QByteArray order = file.left(4);
    const bool be = order == QByteArray("MM\0*", 4);
    if ((!be && order != QByteArray("II*\0", 4)) || file.size() < 8) return file;
    const qint64 first = get(file, 4, 4, be);
    if (first + 2 > file.size()) return file;
    const qint64 count = get(file, first, 2, be);
    if (first + 2 + 12 * count + 4 > file.size()) return file;
    QMap<quint16, QByteArray> entries;
    for (qint64 i = 0; i < count; ++i) {
        const QByteArray e = file.mid(first + 2 + 12 * i, 12);
        entries.insert(quint16(get(e, 0, 2, be)), e);
    }
    const qint64 at = file.size() + file.size() % 2;
    const QByteArray ifd = directory(
        entries, {{kImageDescription, 2, text + '\0'}, {kXmpTag, 1, xmp(cut(text, INT_MAX, true))}},
        at, get(file, first + 2 + 12 * count, 4, be), be);
    if (at + ifd.size() > 0xffffffffLL) return file; // beyond 32-bit offsets
    file.replace(4, 4, num(at, 4, be));
    return file.leftJustified(at, '\0') + ifd;
}

// The XMP resource (1060) at the end of the image resources.
QByteArray photoshop(QByteArray file, const QByteArray &text)
{
    if (!file.startsWith("8BPS") || file.size() < 34) return file;
    const qint64 lengthAt = 30 + get(file, 26, 4); // after the colour mode data
    if (lengthAt + 4 > file.size()) return file;
    const qint64 length = get(file, lengthAt, 4), end = lengthAt + 4 + length;
    if (end > file.size()) return file;
    const QByteArray packet = xmp(cut(text, INT_MAX, true));
    QByteArray resource =
        "8BIM" + num(1060, 2) + QByteArray(2, '\0') /* no name */ + num(packet.size(), 4) + packet;
    if (resource.size() % 2) resource += '\0';
    file.insert(end, resource);
    file.replace(lengthAt, 4, num(length + resource.size(), 4));
    return file;
}

// An extension area whose comments (four lines of 80 bytes) hold the text, and the footer that
// points to it. A footer already there is replaced, keeping its developer area.
QByteArray targa(QByteArray file, const QByteArray &text)
{
    const QByteArray signature("TRUEVISION-XFILE.", 18);
    if (file.size() < 18) return file;
    qint64 developer = 0;
    if (file.size() >= 18 + 26 && file.endsWith(signature)) {
        developer = get(file, file.size() - 22, 4, false);
        file.chop(26);
    }
    constexpr int kArea = 495;
    QByteArray area = num(kArea, 2, false) + QByteArray(41, '\0'); // its size; no author
    QByteArray rest = text;
    for (int line = 0; line < 4; ++line) {
        const QByteArray part = cut(rest, 80);
        area += part.leftJustified(81, '\0');
        rest.remove(0, part.size());
    }
    area = area.leftJustified(kArea, '\0'); // no date, job, software, colours or offsets
    return file + area + num(file.size(), 4, false) + num(developer, 4, false) + signature;
}

} // namespace

QByteArray pngChunk(const char *type, const QByteArray &data)
{
    const QByteArray typed = QByteArray(type, 4) + data;
    quint32 c = 0xffffffffu;
    for (const char b : typed) {
        c ^= quint8(b);
        for (int k = 0; k < 8; ++k)
            c = (c >> 1) ^ (0xedb88320u & (0u - (c & 1u)));
    }
    return num(data.size(), 4) + typed + num(~c, 4);
}

QByteArray withDescription(const QByteArray &file, ExportFormat format, const QString &description)
{
    if (file.isEmpty()) return file; // nothing was encoded: nothing to describe
    const QByteArray text = cleanUtf8(description);
    if (text.trimmed().isEmpty()) return file;
    QByteArray (*add)(QByteArray, const QByteArray &) = nullptr;
    switch (format) {
    case ExportFormat::JPEG:
        add = jpeg;
        break;
    case ExportFormat::PNG:
        add = png;
        break;
    case ExportFormat::TIFF:
        add = tiff;
        break;
    case ExportFormat::PSD:
        add = photoshop;
        break;
    case ExportFormat::Targa:
        add = targa;
        break;
    case ExportFormat::PICT:
    case ExportFormat::BMP:
    case ExportFormat::None:
        return file; // they hold none
    }
    const QByteArray out = add(file, text);
    if (out.size() == file.size())
        qCWarning(lcOutput) << "no description written: not the layout of" << extensionFor(format);
    return out;
}

} // namespace fw::metadata
