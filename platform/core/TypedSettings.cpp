#include "platform/core/TypedSettings.h"

#include <QReadLocker>
#include <QWriteLocker>

#include <utility>

namespace orvane {

int DefaultSettingsList::type(Key key) {
    switch (key) {
    case IndexDirectory: return QMetaType::QString;
    case NoAttributeIndices: return QMetaType::Bool;
    }
    return QMetaType::UnknownType;
}

TypedSettings::TypedSettings() = default;
TypedSettings::~TypedSettings() = default;

QVariant TypedSettings::value(DefaultSettingsList::Key key) const {
    const QReadLocker lock(&lock_);
    const auto found = values_.find(key);
    return found == values_.end() ? QVariant(static_cast<QVariant::Type>(DefaultSettingsList::type(key)))
                                  : found->second;
}

bool TypedSettings::setValue(DefaultSettingsList::Key key, QVariant value) {
    const int type = DefaultSettingsList::type(key);
    if (type == QMetaType::UnknownType || !value.convert(type)) {
        return false;
    }
    const QWriteLocker lock(&lock_);
    values_[key] = std::move(value);
    return true;
}

} // namespace orvane
