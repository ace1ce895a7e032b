#pragma once

#include "platform/serialization/Archive.h"

#include <QDataStream>

namespace orvane::serialization {

/// Writes to a data stream, not owned, of any byte order and version.
class ORVANE_PLATFORM_EXPORT BinaryOutputArchive final : public TrackingOutputArchive {
public:
    explicit BinaryOutputArchive(QDataStream* stream);

private:
    void write(const void* data, std::size_t size) override;

    QDataStream* stream_;
};

/// Reads from a data stream, not owned, whose device knows how much it holds.
class ORVANE_PLATFORM_EXPORT BinaryInputArchive final : public TrackingInputArchive {
public:
    explicit BinaryInputArchive(QDataStream* stream);

    std::uint64_t available() const override;

private:
    void read(void* data, std::size_t size) override;

    QDataStream* stream_;
};

} // namespace orvane::serialization
