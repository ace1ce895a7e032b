#include "platform/serialization/CoordSystemArchive.h"

#include "platform/cs/CoordSystem.h"

namespace orvane::serialization {

void save(OutputArchive& archive, const std::shared_ptr<cs::CoordSystem>& coordSystem, unsigned short) {
    archive.saveString(coordSystem ? coordSystem->taggedString() : QString());
}

void load(InputArchive& archive, std::shared_ptr<cs::CoordSystem>& coordSystem, unsigned short version) {
    if (version != 0) {
        throw ArchiveError("unknown version of a coordinate system");
    }
    const QString text = archive.loadString();
    if (text.isEmpty()) {
        coordSystem = nullptr;
        return;
    }
    coordSystem = cs::CoordSysFactory::defaultCoordSysFactory()->createFromTaggedString(text);
    if (!coordSystem) {
        throw ArchiveError("unknown coordinate system");
    }
}

} // namespace orvane::serialization
