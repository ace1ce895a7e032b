#include "platform/serialization/Archive.h"

#include <QReadWriteLock>
#include <QtEndian>

#include <limits>
#include <map>

namespace orvane::serialization {

namespace {

/// What stands before a polymorphic object.
enum class ObjectTag : std::uint8_t {
    Null = 0,
    NewClass = 1,   ///< length and name of the class, version, content
    KnownClass = 2, ///< number of the class, version, content
    Reference = 3,  ///< number of the object
};

/// Loaders by class name.
class ClassRegistry {
public:
    static ClassRegistry& instance() {
        static ClassRegistry registry;
        return registry;
    }

    bool add(std::string_view name, SerializableLoader loader) {
        const QWriteLocker lock(&lock_);
        return loaders_.emplace(name, loader).second;
    }

    SerializableLoader find(std::string_view name) {
        const QReadLocker lock(&lock_);
        const auto found = loaders_.find(name);
        return found == loaders_.end() ? nullptr : found->second;
    }

private:
    std::map<std::string_view, SerializableLoader> loaders_;
    QReadWriteLock lock_;
};

/// Counts one level of nesting for as long as it lives.
class NestingGuard {
public:
    explicit NestingGuard(int& depth) : depth_(depth) {
        if (depth_ >= maximumArchiveDepth) {
            throw ArchiveError("objects are nested too deep");
        }
        ++depth_;
    }
    ~NestingGuard() { --depth_; }
    NestingGuard(const NestingGuard&) = delete;
    NestingGuard& operator=(const NestingGuard&) = delete;

private:
    int& depth_;
};

} // namespace

Serializable::~Serializable() = default;
OutputArchive::~OutputArchive() = default;
InputArchive::~InputArchive() = default;
TrackingOutputArchive::~TrackingOutputArchive() = default;
TrackingInputArchive::~TrackingInputArchive() = default;

bool registerSerializable(std::string_view archiveName, SerializableLoader loader) {
    return ClassRegistry::instance().add(archiveName, loader);
}

void OutputArchive::saveVersion(unsigned short version) {
    const quint16 bytes = qToLittleEndian<quint16>(version);
    write(&bytes, sizeof bytes);
}

void OutputArchive::saveUInt8(std::uint8_t value) {
    write(&value, sizeof value);
}

void OutputArchive::saveUInt32(std::uint32_t value) {
    const quint32 bytes = qToLittleEndian<quint32>(value);
    write(&bytes, sizeof bytes);
}

void OutputArchive::saveDouble(double value) {
    char bytes[sizeof(double)];
    qToLittleEndian<double>(value, bytes);
    write(bytes, sizeof bytes);
}

void OutputArchive::saveString(const QString& text) {
    const QByteArray utf8 = text.toUtf8();
    saveBytes({utf8.constData(), static_cast<std::size_t>(utf8.size())});
}

void OutputArchive::saveBytes(std::string_view bytes) {
    if (bytes.size() > std::numeric_limits<std::uint32_t>::max()) {
        throw ArchiveError("more than 4 GiB in one value");
    }
    saveUInt32(static_cast<std::uint32_t>(bytes.size()));
    write(bytes.data(), bytes.size());
}

unsigned short InputArchive::loadVersion() {
    quint16 bytes = 0;
    read(&bytes, sizeof bytes);
    return qFromLittleEndian(bytes);
}

std::uint8_t InputArchive::loadUInt8() {
    std::uint8_t value = 0;
    read(&value, sizeof value);
    return value;
}

std::uint32_t InputArchive::loadUInt32() {
    quint32 bytes = 0;
    read(&bytes, sizeof bytes);
    return qFromLittleEndian(bytes);
}

double InputArchive::loadDouble() {
    char bytes[sizeof(double)];
    read(bytes, sizeof bytes);
    return qFromLittleEndian<double>(bytes);
}

QString InputArchive::loadString() {
    const std::string bytes = loadBytes();
    return QString::fromUtf8(bytes.data(), static_cast<int>(bytes.size()));
}

std::string InputArchive::loadBytes() {
    const std::uint32_t size = loadUInt32();
    if (size > available()) {
        throw ArchiveError("a length is larger than the archive");
    }
    std::string bytes(size, '\0');
    read(bytes.data(), bytes.size());
    return bytes;
}

void TrackingOutputArchive::saveSerializable(const Serializable* object) {
    if (!object) {
        saveUInt8(static_cast<std::uint8_t>(ObjectTag::Null));
        return;
    }
    if (const auto known = objects_.find(object); known != objects_.end()) {
        saveUInt8(static_cast<std::uint8_t>(ObjectTag::Reference));
        saveUInt32(known->second);
    } else {
        saveWhole(*object);
    }
}

void TrackingOutputArchive::saveWhole(const Serializable& object) {
    const NestingGuard guard(depth_);
    objects_[&object] = count_++;
    const std::string_view name = object.archiveName();
    const auto [knownClass, isNewClass] = classes_.emplace(name, static_cast<std::uint32_t>(classes_.size()));
    if (isNewClass) {
        Q_ASSERT(!name.empty() && name.size() <= 255);
        saveUInt8(static_cast<std::uint8_t>(ObjectTag::NewClass));
        saveUInt8(static_cast<std::uint8_t>(name.size()));
        write(name.data(), name.size());
    } else {
        saveUInt8(static_cast<std::uint8_t>(ObjectTag::KnownClass));
        saveUInt32(knownClass->second);
    }
    saveVersion(object.archiveVersion());
    object.save(*this);
}

std::shared_ptr<Serializable> TrackingInputArchive::loadSerializable() {
    const NestingGuard guard(depth_);
    SerializableLoader loader = nullptr;
    switch (static_cast<ObjectTag>(loadUInt8())) {
    case ObjectTag::Null: return nullptr;
    case ObjectTag::NewClass: {
        std::string name(loadUInt8(), '\0');
        read(name.data(), name.size());
        loader = ClassRegistry::instance().find(name);
        classes_.push_back(loader);
        break;
    }
    case ObjectTag::KnownClass: {
        const std::uint32_t number = loadUInt32();
        loader = number < classes_.size() ? classes_[number] : nullptr;
        break;
    }
    case ObjectTag::Reference: {
        const std::uint32_t number = loadUInt32();
        if (number >= objects_.size() || !objects_[number]) {
            throw ArchiveError("a reference to an object that was not read");
        }
        return objects_[number];
    }
    }
    if (!loader) {
        throw ArchiveError("an object of an unknown class");
    }
    // The number is taken before the content is read, as the writer does: content may hold objects of its
    // own.
    const std::size_t number = objects_.size();
    objects_.emplace_back();
    const unsigned short version = loadVersion();
    std::shared_ptr<Serializable> object = loader(*this, version);
    objects_[number] = object;
    return object;
}

} // namespace orvane::serialization
