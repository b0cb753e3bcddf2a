#include "platform/store/Value.h"

#include "platform/core/Failure.h"
#include "platform/store/PlistReader.h"

#include <QStringDecoder>
#include <cstdlib>
#include <plist/plist.h>

namespace fw {

QString StoreValue::toString() const
{
    if (m_kind != Kind::String) throw IllegalCastException();
    return m_string;
}

QByteArray StoreValue::toData() const
{
    if (m_kind != Kind::Data) throw IllegalCastException();
    return m_data;
}

bool StoreValue::toBoolean() const
{
    if (m_kind != Kind::Boolean) throw IllegalCastException();
    return m_boolean;
}

qint64 StoreValue::toInteger() const
{
    if (m_kind != Kind::Integer) throw IllegalCastException();
    return m_integer;
}

QUrl StoreValue::toUrl() const
{
    if (m_kind != Kind::Url) throw IllegalCastException();
    return m_url;
}

QByteArray plistXml(plist_t node)
{
    char *xml = nullptr;
    uint32_t len = 0;
    plist_to_xml(node, &xml, &len);
    if (!xml) return {};
    QByteArray out(xml, static_cast<qsizetype>(len));
    plist_to_xml_free(xml);
    return out;
}

QByteArray StoreValue::XML() const
{
    plist_t node = toNode();
    const QByteArray out = plistXml(node);
    plist_free(node);
    return out;
}

plist_t StoreValue::toNode() const
{
    switch (m_kind) {
    case Kind::String:
        return plist_new_string(m_string.toUtf8().constData());
    case Kind::Data:
        return plist_new_data(m_data.constData(), static_cast<uint64_t>(m_data.size()));
    case Kind::Boolean:
        return plist_new_bool(m_boolean ? 1 : 0);
    case Kind::Integer:
        // libplist keeps integers unsigned; two's complement brings negatives back on reading.
        return plist_new_uint(static_cast<uint64_t>(m_integer));
    case Kind::Url: {
        plist_t dict = plist_new_dict();
        plist_dict_set_item(dict, kUrlDictKey,
                            plist_new_string(m_url.toString().toUtf8().constData()));
        return dict;
    }
    case Kind::Other: {
        plist_t node = plistread::parse(m_data.constData(), size_t(m_data.size()));
        return node ? node : plist_new_string("");
    }
    }
    return nullptr;
}

StoreObject StoreValue::fromNode(plist_t node)
{
    if (!node) return nullptr;
    switch (plist_get_node_type(node)) {
    case PLIST_STRING: {
        char *s = nullptr;
        plist_get_string_val(node, &s);
        auto v = makeString(QString::fromUtf8(s ? s : ""));
        std::free(s);
        return v;
    }
    case PLIST_DATA: {
        char *d = nullptr;
        uint64_t len = 0;
        plist_get_data_val(node, &d, &len);
        auto v = makeData(QByteArray(d, static_cast<qsizetype>(len)));
        std::free(d);
        return v;
    }
    case PLIST_BOOLEAN: {
        uint8_t b = 0;
        plist_get_bool_val(node, &b);
        return makeBoolean(b != 0);
    }
    case PLIST_UINT: {
        uint64_t u = 0;
        plist_get_uint_val(node, &u);
        return makeInteger(static_cast<qint64>(u));
    }
    case PLIST_DICT:
        if (plist_dict_get_size(node) == 1) {
            plist_t s = plist_dict_get_item(node, kUrlDictKey);
            if (s && plist_get_node_type(s) == PLIST_STRING) {
                char *text = nullptr;
                plist_get_string_val(s, &text);
                QUrl url(QString::fromUtf8(text ? text : ""));
                std::free(text);
                return makeUrl(url);
            }
        }
        break;
    default:
        break;
    }
    std::shared_ptr<StoreValue> v(new StoreValue(Kind::Other));
    v->m_data = plistXml(node);
    return v;
}

StoreObject StoreValue::makeString(const QString &s)
{
    std::shared_ptr<StoreValue> v(new StoreValue(Kind::String));
    v->m_string = s;
    return v;
}

StoreObject StoreValue::makeData(const QByteArray &d)
{
    std::shared_ptr<StoreValue> v(new StoreValue(Kind::Data));
    v->m_data = d;
    return v;
}

StoreObject StoreValue::makeBoolean(bool b)
{
    std::shared_ptr<StoreValue> v(new StoreValue(Kind::Boolean));
    v->m_boolean = b;
    return v;
}

StoreObject StoreValue::makeInteger(qint64 i)
{
    std::shared_ptr<StoreValue> v(new StoreValue(Kind::Integer));
    v->m_integer = i;
    return v;
}

StoreObject StoreValue::makeUrl(const QUrl &u)
{
    std::shared_ptr<StoreValue> v(new StoreValue(Kind::Url));
    v->m_url = u;
    return v;
}

StoreObject NewCFString(const QString &text)
{
    return StoreValue::makeString(text);
}

StoreObject NewCFStringFromBytes(const QByteArray &bytes)
{
    QStringDecoder decoder(QStringDecoder::Utf8, QStringDecoder::Flag::Stateless);
    QString text = decoder.decode(bytes);
    if (decoder.hasError() || bytes.contains('\0')) return nullptr;
    return StoreValue::makeString(text);
}

StoreObject NewCFBoolean(bool value)
{
    return StoreValue::makeBoolean(value);
}
StoreObject NewCFNumberInteger(qint64 value)
{
    return StoreValue::makeInteger(value);
}
StoreObject NewCFBinaryData(const QByteArray &bytes)
{
    return StoreValue::makeData(bytes);
}
StoreObject NewCFURL(const QUrl &url)
{
    return StoreValue::makeUrl(url);
}

} // namespace fw
