#pragma once
// Typed values of the preference store: string, binary data, boolean, integer, URL, and "other"
// for any property-list type the program does not use (kept as it is, never lost on a rewrite).

#include <QByteArray>
#include <QString>
#include <QUrl>
#include <memory>

using plist_t = void *;

namespace fw {

class StoreValue;
// A store object; nullptr is nil.
using StoreObject = std::shared_ptr<const StoreValue>;

class StoreValue {
public:
    enum class Kind { String, Data, Boolean, Integer, Url, Other };

    Kind kind() const { return m_kind; }
    bool isA(Kind k) const { return m_kind == k; }

    // Checked conversions: a value of another kind raises IllegalCastException.
    QString toString() const;
    QByteArray toData() const;
    bool toBoolean() const;
    qint64 toInteger() const;
    QUrl toUrl() const;

    // The value as the XML text of a property list.
    QByteArray XML() const;

    // Conversions to and from libplist nodes. fromNode never fails: unknown types become Other.
    plist_t toNode() const;
    static StoreObject fromNode(plist_t node);

    static StoreObject makeString(const QString &s);
    static StoreObject makeData(const QByteArray &d);
    static StoreObject makeBoolean(bool b);
    static StoreObject makeInteger(qint64 i);
    static StoreObject makeUrl(const QUrl &u);

private:
    explicit StoreValue(Kind k) : m_kind(k) {}
    Kind m_kind;
    QString m_string;
    QByteArray m_data; // binary data, or the XML of an Other node
    bool m_boolean = false;
    qint64 m_integer = 0;
    QUrl m_url;
};

// Makers named after the store's value classes. A string made from bytes that are not valid
// UTF-8 is nil; every QString makes a string, the empty one included.
StoreObject NewCFString(const QString &text);
StoreObject NewCFStringFromBytes(const QByteArray &bytes);
StoreObject NewCFBoolean(bool value);
StoreObject NewCFNumberInteger(qint64 value);
StoreObject NewCFBinaryData(const QByteArray &bytes);
StoreObject NewCFURL(const QUrl &url);

// A property-list node as the XML text of a property list; empty when it can't be written.
QByteArray plistXml(plist_t node);

// How a URL is kept in a property list, which has no URL type of its own.
inline constexpr const char *kUrlDictKey = "CFURL";

} // namespace fw
