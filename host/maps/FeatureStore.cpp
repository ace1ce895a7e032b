#include "host/maps/FeatureStore.h"

#include "platform/utils/TemporaryFile.h"

#include <QCoreApplication>

#include <cerrno>
#include <cstring>
#include <stdexcept>

namespace orvane::maps {

namespace {

struct Texts {
    Q_DECLARE_TR_FUNCTIONS(orvane::maps)
};

constexpr std::size_t blockSize = std::size_t{4} << 20;
constexpr std::size_t mostBlocks = 24; // in memory

[[noreturn]] void raise() {
    throw std::runtime_error(Texts::tr("временный файл карты: %0")
                                 .arg(QString::fromLocal8Bit(std::strerror(errno)))
                                 .toStdString());
}

struct Header {
    double originX, originY;
    double number;
    std::uint32_t parts, positions, textSize, labelSize;
    Value::Kind kind;
};

template<typename Item>
void put(std::string& block, const Item& item) {
    block.append(reinterpret_cast<const char*>(&item), sizeof item);
}

template<typename Item>
Item take(const char*& bytes) {
    Item item;
    std::memcpy(&item, bytes, sizeof item);
    bytes += sizeof item;
    return item;
}

} // namespace

void FeatureStore::add(const FlatShape& shape, const Value& value, std::string_view label) {
    Header header{};
    if (shape.size() != 0) {
        header.originX = shape.position(0)[0];
        header.originY = shape.position(0)[1];
    }
    header.number = value.number;
    header.parts = static_cast<std::uint32_t>(shape.parts.size());
    header.positions = shape.size();
    header.textSize = static_cast<std::uint32_t>(value.text.size());
    header.labelSize = static_cast<std::uint32_t>(label.size());
    header.kind = value.kind;
    put(current_, header);
    for (const FlatShape::Part& part : shape.parts) {
        put(current_, part.kind);
        put(current_, part.count);
    }
    for (std::uint32_t i = 0; i < shape.size(); ++i) {
        put(current_, static_cast<float>(shape.position(i)[0] - header.originX));
        put(current_, static_cast<float>(shape.position(i)[1] - header.originY));
    }
    current_ += value.text;
    current_ += label;
    ++size_;
    if (current_.size() >= blockSize) {
        flush();
    }
}

void FeatureStore::flush() {
    if (blocks_.size() < mostBlocks) {
        current_.shrink_to_fit();
        blocks_.push_back(std::move(current_));
        current_ = std::string();
        current_.reserve(blockSize + blockSize / 16);
        return;
    }
    if (!file_) {
        file_.reset(utils::openTemporaryStream());
    }
    const std::uint64_t size = current_.size();
    if (!file_ || std::fwrite(&size, sizeof size, 1, file_.get()) != 1 ||
        std::fwrite(current_.data(), 1, size, file_.get()) != size) {
        raise();
    }
    current_.clear();
}

bool FeatureStore::visit(const std::string& block, FlatShape& shape, const Visitor& visitor) const {
    const char* bytes = block.data();
    const char* const end = bytes + block.size();
    while (bytes != end) {
        const auto header = take<Header>(bytes);
        shape.clear();
        std::uint32_t begin = 0;
        for (std::uint32_t i = 0; i < header.parts; ++i) {
            const auto kind = take<PartKind>(bytes);
            const auto count = take<std::uint32_t>(bytes);
            shape.parts.push_back({kind, begin, count});
            begin += count;
        }
        for (std::uint32_t i = 0; i < header.positions; ++i) {
            const auto x = take<float>(bytes);
            const auto y = take<float>(bytes);
            shape.add(header.originX + static_cast<double>(x), header.originY + static_cast<double>(y));
        }
        const Value value{header.kind, header.number, {bytes, header.textSize}};
        bytes += header.textSize;
        const std::string_view label(bytes, header.labelSize);
        bytes += header.labelSize;
        if (!visitor(shape, value, label)) {
            return false;
        }
    }
    return true;
}

void FeatureStore::forEach(const Visitor& visitor) {
    FlatShape shape;
    for (const std::string& block : blocks_) {
        if (!visit(block, shape, visitor)) {
            return;
        }
    }
    if (file_) {
        if (std::fseek(file_.get(), 0, SEEK_SET) != 0) {
            raise();
        }
        std::string block;
        std::uint64_t size = 0;
        while (std::fread(&size, sizeof size, 1, file_.get()) == 1) {
            block.resize(size);
            if (std::fread(block.data(), 1, size, file_.get()) != size) {
                raise();
            }
            if (!visit(block, shape, visitor)) {
                break;
            }
        }
        std::fseek(file_.get(), 0, SEEK_END);
    }
    visit(current_, shape, visitor);
}

} // namespace orvane::maps
