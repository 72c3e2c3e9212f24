// SPDX-License-Identifier: BSD-3-Clause
#include "binder/alienbinderparcel.h"

#include "binder/logging.h"

#include <QMetaType>

namespace {

// android.os.BaseBundle: the letters "BNDL".
constexpr qint32 bundleMagic = 0x4C444E42;

// The tags of android.os.Parcel.writeValue that the daemon knows.
enum ValueTag : qint32 {
    NullTag = -1,
    StringTag = 0,
    IntegerTag = 1,
    LongTag = 6,
    DoubleTag = 8,
    BooleanTag = 9,
    StringArrayTag = 14,
};

template <typename Key> void logEntry(const Key &key, const QVariant &value)
{
    qCDebug(parcelLog) << "Key: " << key << "Value: " << value;
}

} // namespace

void AlienBinderParcel::writeBundle(const QVariantMap &bundle)
{
    if (!m_writer)
        return;
    const gsize lengthPosition = gbinder_writer_bytes_written(m_writer);
    writeInt32(1); // stays only where the length has no room in the word
    writeInt32(bundleMagic);
    const gsize start = gbinder_writer_bytes_written(m_writer);
    writeMap(bundle);
    const auto length = static_cast<quint32>(gbinder_writer_bytes_written(m_writer) - start);
    if (static_cast<qint32>(length) < 0)
        qCCritical(parcelLog) << "Bundle too long for signed int32!" << length;
    else
        gbinder_writer_overwrite_int32(m_writer, lengthPosition, static_cast<qint32>(length));
}

void AlienBinderParcel::writeValue(const QVariant &value)
{
    if (!m_writer)
        return;
    if (value.isNull()) {
        writeInt32(NullTag);
        return;
    }
    switch (value.userType()) {
    case QMetaType::Bool:
        writeInt32(BooleanTag);
        writeBool(value.toBool());
        break;
    case QMetaType::Int:
    case QMetaType::UInt:
        writeInt32(IntegerTag);
        writeInt32(value.toInt());
        break;
    case QMetaType::LongLong:
    case QMetaType::ULongLong:
        writeInt32(LongTag);
        writeInt64(value.toLongLong());
        break;
    case QMetaType::Double:
        writeInt32(DoubleTag);
        writeDouble(value.toDouble());
        break;
    case QMetaType::QString:
        writeInt32(StringTag);
        writeString(value.toString());
        break;
    default:
        qCCritical(parcelLog) << "Unsupported write bundle type!"
                              << QMetaType::typeName(value.userType());
    }
}

void AlienBinderParcel::writeMap(const QVariantMap &map)
{
    writeInt32(map.size());
    for (auto entry = map.constBegin(); entry != map.constEnd(); ++entry) {
        writeString(entry.key());
        writeValue(entry.value());
    }
}

void AlienBinderParcel::writeIntMap(const QMap<int, QVariant> &map)
{
    writeInt32(map.size());
    for (auto entry = map.constBegin(); entry != map.constEnd(); ++entry) {
        writeInt32(entry.key());
        writeValue(entry.value());
    }
}

QVariantMap AlienBinderParcel::readBundle()
{
    QVariantMap bundle;
    if (!hasData())
        return bundle;
    const qint32 length = readInt32();
    const qint32 magic = readInt32();
    if (magic != bundleMagic) {
        qCCritical(parcelLog) << "Bad bundle magic number 0x%08x" << magic;
        return bundle;
    }
    // What should remain behind the bundle. A length beyond the data wraps around.
    const auto limit = static_cast<quint32>(gbinder_reader_bytes_remaining(m_reader))
        - static_cast<quint32>(length);
    const qint32 count = readInt32();
    qCDebug(parcelLog) << "Bundle size: " << count;
    for (qint32 i = 0; i < count; ++i) {
        if (limit >= gbinder_reader_bytes_remaining(m_reader))
            qCWarning(parcelLog) << "Bundle too big";
        const QString key = readString();
        const QVariant value = readValue();
        logEntry(key, value);
        bundle.insert(key, value);
    }
    return bundle;
}

QVariant AlienBinderParcel::readValue()
{
    if (!hasData())
        return {};
    qint32 tag = NullTag;
    gbinder_reader_read_int32(m_reader, &tag);
    switch (tag) {
    case NullTag:
        return {};
    case StringTag:
        return readString();
    case IntegerTag:
        return readInt32();
    case LongTag:
        return readInt64();
    case DoubleTag:
        return readDouble();
    case BooleanTag:
        return readBool();
    case StringArrayTag:
        return readStringList();
    default:
        qCCritical(parcelLog) << "Unsupported read bundle type!" << tag;
        return {};
    }
}

QVariantMap AlienBinderParcel::readMap()
{
    QVariantMap map;
    if (!hasData())
        return map;
    const qint32 count = readInt32();
    for (qint32 i = 0; i < count; ++i) {
        const QString key = readString();
        const QVariant value = readValue();
        logEntry(key, value);
        map.insert(key, value);
    }
    return map;
}

QMap<int, QVariant> AlienBinderParcel::readIntMap()
{
    QMap<int, QVariant> map;
    if (!hasData())
        return map;
    const qint32 count = readInt32();
    for (qint32 i = 0; i < count; ++i) {
        const qint32 key = readInt32();
        const QVariant value = readValue();
        logEntry(key, value);
        map.insert(key, value);
    }
    return map;
}
