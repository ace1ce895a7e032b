#pragma once

#include "platform/Export.h"
#include "platform/serialization/Serializable.h"

#include <QString>

#include <cstddef>
#include <cstdint>
#include <stdexcept>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace orvane::serialization {

/// Raised for bytes that no archive wrote, and for devices that fail.
class ORVANE_PLATFORM_EXPORT ArchiveError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// Writes values one after another. Numbers are little-endian, texts UTF-8 behind their length in bytes.
/// Throws ArchiveError when the device fails. One thread at a time.
class ORVANE_PLATFORM_EXPORT OutputArchive {
public:
    virtual ~OutputArchive();

    /// The version of what follows.
    void saveVersion(unsigned short version);
    void saveUInt8(std::uint8_t value);
    void saveUInt32(std::uint32_t value);
    void saveDouble(double value);
    void saveString(const QString& text);
    /// The bytes behind their number (32 bits).
    void saveBytes(std::string_view bytes);

protected:
    OutputArchive() = default;
    OutputArchive(const OutputArchive&) = delete;
    OutputArchive& operator=(const OutputArchive&) = delete;

    virtual void write(const void* data, std::size_t size) = 0;
    friend class TrackingOutputArchive;
};

/// Reads what an OutputArchive wrote. A length is compared with what is left before memory is taken. Throws
/// ArchiveError for anything else. One thread at a time.
class ORVANE_PLATFORM_EXPORT InputArchive {
public:
    virtual ~InputArchive();

    unsigned short loadVersion();
    std::uint8_t loadUInt8();
    std::uint32_t loadUInt32();
    double loadDouble();
    QString loadString();
    std::string loadBytes();
    /// Bytes left.
    virtual std::uint64_t available() const = 0;

protected:
    InputArchive() = default;
    InputArchive(const InputArchive&) = delete;
    InputArchive& operator=(const InputArchive&) = delete;

    /// Reads exactly that many bytes or throws.
    virtual void read(void* data, std::size_t size) = 0;
    friend class TrackingInputArchive;
};

/// How deep objects may hold objects; deeper ones are an ArchiveError in both directions.
inline constexpr int maximumArchiveDepth = 64;

/// Writes polymorphic objects. An object met again is written as a reference to the first time, a class name
/// once. Objects have to live until the archive is destroyed.
class ORVANE_PLATFORM_EXPORT TrackingOutputArchive : public OutputArchive {
public:
    ~TrackingOutputArchive() override;
    /// Null is written as such.
    void saveSerializable(const Serializable* object);
    /// In full, also when it was met before.
    void saveWhole(const Serializable& object);

protected:
    TrackingOutputArchive() = default;

private:
    std::unordered_map<const Serializable*, std::uint32_t> objects_;
    std::unordered_map<std::string_view, std::uint32_t> classes_;
    std::uint32_t count_ = 0; ///< of the objects in the archive
    int depth_ = 0;
};

/// Reads polymorphic objects.
class ORVANE_PLATFORM_EXPORT TrackingInputArchive : public InputArchive {
public:
    ~TrackingInputArchive() override;
    /// Null for null. Throws ArchiveError for an unknown class or reference.
    std::shared_ptr<Serializable> loadSerializable();

protected:
    TrackingInputArchive() = default;

private:
    std::vector<std::shared_ptr<Serializable>> objects_;
    std::vector<SerializableLoader> classes_;
    int depth_ = 0;
};

} // namespace orvane::serialization
