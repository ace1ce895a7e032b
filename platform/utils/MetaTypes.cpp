#include "platform/utils/MetaTypes.h"

#include "platform/decimal/QDecNumber.h"

#include <QMetaType>

namespace orvane {

bool isPlainInt(int metaType) {
    switch (metaType) {
    case QMetaType::Char:
    case QMetaType::SChar:
    case QMetaType::UChar:
    case QMetaType::Short:
    case QMetaType::UShort:
    case QMetaType::Int:
    case QMetaType::UInt:
    case QMetaType::Long:
    case QMetaType::ULong:
    case QMetaType::LongLong:
    case QMetaType::ULongLong: return true;
    default: return false;
    }
}

QString sqlName(int metaType) {
    if (isPlainInt(metaType)) {
        return QStringLiteral("Integer");
    }
    switch (metaType) {
    case QMetaType::Bool: return QStringLiteral("Boolean");
    case QMetaType::Float:
    case QMetaType::Double: return QStringLiteral("Real");
    case QMetaType::QString: return QStringLiteral("Varchar");
    case QMetaType::QChar:
    case QMetaType::QUrl:
    case QMetaType::QUuid: return QStringLiteral("Text");
    case QMetaType::QDate: return QStringLiteral("Date Text");
    case QMetaType::QTime: return QStringLiteral("Time Text");
    case QMetaType::QDateTime: return QStringLiteral("Timestamp Text");
    default: break;
    }
    return metaType == qMetaTypeId<QDecNumber>() ? QStringLiteral("Numeric") : QStringLiteral("Blob");
}

} // namespace orvane
