#pragma once

#include "platform/Export.h"

#include <QReadWriteLock>
#include <QVariant>

#include <map>

namespace orvane {

/// The settings that the application knows. The numbers are stored in profiles: they never change their
/// meaning.
struct DefaultSettingsList {
    enum Key : int {
        IndexDirectory = 48, ///< QString: where attribute indices are kept; empty for the temporary directory
        NoAttributeIndices = 49, ///< bool: tables opened from then on are scanned, no index is made of them
    };

    /// Qt meta-type of the values of a key; QMetaType::UnknownType for a number that is no key.
    ORVANE_PLATFORM_EXPORT static int type(Key key);
};

/// Values of the application's settings, each of the type of its key. A service of the process
/// (orvane::serviceLocator). Any thread may use it.
class ORVANE_PLATFORM_EXPORT TypedSettings {
public:
    TypedSettings();
    ~TypedSettings();
    TypedSettings(const TypedSettings&) = delete;
    TypedSettings& operator=(const TypedSettings&) = delete;

    /// The value set, or the default of the key's type; invalid for a number that is no key.
    QVariant value(DefaultSettingsList::Key key) const;

    /// Converts the value to the key's type and stores it; false, and nothing changes, when that is not
    /// possible.
    bool setValue(DefaultSettingsList::Key key, QVariant value);

private:
    mutable QReadWriteLock lock_;
    std::map<DefaultSettingsList::Key, QVariant> values_;
};

} // namespace orvane
