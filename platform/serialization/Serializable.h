#pragma once

#include "platform/Export.h"

#include <memory>
#include <string_view>

namespace orvane::serialization {

class TrackingInputArchive;
class TrackingOutputArchive;

/// An object that an archive writes and reads through a pointer to its base. Its class is found again by
/// name.
class ORVANE_PLATFORM_EXPORT Serializable {
public:
    virtual ~Serializable();

    /// The name under which the class is registered: 1 to 255 ASCII characters, the same for ever.
    virtual std::string_view archiveName() const = 0;
    /// Version of what save() writes; the loader receives it.
    virtual unsigned short archiveVersion() const { return 0; }
    virtual void save(TrackingOutputArchive& archive) const = 0;

protected:
    Serializable() = default;
    Serializable(const Serializable&) = default;
    Serializable& operator=(const Serializable&) = default;
};

/// Makes an object from what its save() wrote. Throws ArchiveError for anything else.
using SerializableLoader = std::shared_ptr<Serializable> (*)(TrackingInputArchive&, unsigned short version);

/// Makes the class known to every archive. The name must outlive the process's archives. False when it is
/// taken. Any thread may call it.
ORVANE_PLATFORM_EXPORT bool registerSerializable(std::string_view archiveName, SerializableLoader loader);

} // namespace orvane::serialization
