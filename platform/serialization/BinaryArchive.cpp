#include "platform/serialization/BinaryArchive.h"

#include <QIODevice>

#include <algorithm>
#include <limits>

namespace orvane::serialization {

BinaryOutputArchive::BinaryOutputArchive(QDataStream* stream) : stream_(stream) {}

void BinaryOutputArchive::write(const void* data, std::size_t size) {
    constexpr auto limit = static_cast<std::size_t>(std::numeric_limits<int>::max());
    if (size > limit || stream_->writeRawData(static_cast<const char*>(data), static_cast<int>(size)) !=
                            static_cast<int>(size)) {
        throw ArchiveError("the archive cannot be written");
    }
}

BinaryInputArchive::BinaryInputArchive(QDataStream* stream) : stream_(stream) {}

std::uint64_t BinaryInputArchive::available() const {
    return static_cast<std::uint64_t>(std::max<qint64>(stream_->device()->bytesAvailable(), 0));
}

void BinaryInputArchive::read(void* data, std::size_t size) {
    if (size > available() || size > static_cast<std::size_t>(std::numeric_limits<int>::max()) ||
        stream_->readRawData(static_cast<char*>(data), static_cast<int>(size)) != static_cast<int>(size)) {
        throw ArchiveError("the archive ends too early");
    }
}

} // namespace orvane::serialization
