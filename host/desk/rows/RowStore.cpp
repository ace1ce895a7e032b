#include "host/desk/rows/RowStore.h"

#include <platform/utils/TemporaryFile.h>

#include <QCoreApplication>

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <cstring>
#include <limits>
#include <stdexcept>

#include <sys/mman.h>
#include <unistd.h>

namespace orvane::desk {

namespace {

constexpr std::size_t blockBytes = std::size_t{1} << 20;
constexpr std::size_t blockRows = std::size_t{1} << 16;

[[noreturn]] void raiseFileError() {
    throw std::runtime_error(
        QCoreApplication::translate("orvane::desk::RowStore", "временный файл не записывается: %0")
            .arg(QString::fromLocal8Bit(std::strerror(errno)))
            .toStdString());
}

/// Does nothing for floats that are the same already.
float below(double value) {
    const float nearest = static_cast<float>(value);
    return static_cast<double>(nearest) > value
               ? std::nextafter(nearest, -std::numeric_limits<float>::infinity())
               : nearest;
}

float above(double value) {
    return -below(-value);
}

} // namespace

Box Box::around(const geometry::Envelope& envelope) {
    return envelope.isEmpty()
               ? Box()
               : Box{below(envelope.minX), below(envelope.minY), above(envelope.maxX), above(envelope.maxY)};
}

RowBlock::~RowBlock() {
    if (data_) {
        ::munmap(const_cast<char*>(data_), mappedSize_);
    }
}

Value RowBlock::value(int row, int column) const {
    const char* at = data_ + offsets_[static_cast<std::size_t>(row)];
    for (Value value;; --column) {
        value.kind = static_cast<Value::Kind>(*at++);
        if (value.kind == Value::Kind::Integer || value.kind == Value::Kind::Real) {
            std::memcpy(value.kind == Value::Kind::Integer ? static_cast<void*>(&value.integer) : &value.real,
                        at, sizeof value.integer);
            at += sizeof value.integer;
        } else if (value.kind != Value::Kind::Null) {
            std::uint32_t size = 0;
            std::memcpy(&size, at, sizeof size);
            value.bytes = {at + sizeof size, size};
            at += sizeof size + size;
        }
        if (column == 0) {
            return value;
        }
    }
}

RowStore::RowStore(QStringList columns) : columns_(std::move(columns)), file_(utils::openTemporaryFile()) {
    if (file_ < 0) {
        raiseFileError();
    }
}

RowStore::~RowStore() {
    ::close(file_);
}

void RowStore::appendNull() {
    buffer_.push_back(static_cast<char>(Value::Kind::Null));
    ++column_;
}

void RowStore::append(std::int64_t value) {
    appendFixed(Value::Kind::Integer, &value);
}

void RowStore::append(double value) {
    appendFixed(Value::Kind::Real, &value);
}

void RowStore::appendText(std::string_view utf8) {
    appendBytes(Value::Kind::Text, utf8);
}

void RowStore::appendBytes(std::string_view bytes) {
    appendBytes(Value::Kind::Bytes, bytes);
}

void RowStore::appendGeometry(std::string_view wkb, const geometry::Envelope& envelope) {
    if (bufferGeometryColumn_ < 0) {
        bufferGeometryColumn_ = column_;
        boxes_.resize(offsets_.size());
    }
    if (column_ == bufferGeometryColumn_) {
        box_ = Box::around(envelope);
        bufferEnvelope_.add(envelope);
    }
    appendBytes(Value::Kind::Geometry, wkb);
}

void RowStore::appendFixed(Value::Kind kind, const void* value) {
    buffer_.push_back(static_cast<char>(kind));
    buffer_.append(static_cast<const char*>(value), sizeof(std::int64_t));
    ++column_;
}

void RowStore::appendBytes(Value::Kind kind, std::string_view bytes) {
    const auto size = static_cast<std::uint32_t>(bytes.size());
    buffer_.push_back(static_cast<char>(kind));
    buffer_.append(reinterpret_cast<const char*>(&size), sizeof size);
    buffer_.append(bytes);
    ++column_;
}

void RowStore::endRow() {
    offsets_.push_back(static_cast<std::uint32_t>(rowBegin_));
    if (bufferGeometryColumn_ >= 0) {
        boxes_.push_back(box_);
    }
    box_ = Box();
    rowBegin_ = buffer_.size();
    column_ = 0;
    if (buffer_.size() >= blockBytes || offsets_.size() >= blockRows) {
        publish();
    }
}

void RowStore::publish() {
    if (offsets_.empty()) {
        return;
    }
    for (std::size_t written = 0; written < buffer_.size();) {
        const auto size = ::pwrite(file_, buffer_.data() + written, buffer_.size() - written,
                                   fileSize_ + static_cast<std::int64_t>(written));
        if (size < 0 && errno != EINTR) {
            raiseFileError();
        }
        written += static_cast<std::size_t>(std::max<ssize_t>(size, 0));
    }
    const std::shared_ptr<RowBlock> block(new RowBlock);
    void* const mapped = ::mmap(nullptr, buffer_.size(), PROT_READ, MAP_SHARED, file_, fileSize_);
    if (mapped == MAP_FAILED) {
        raiseFileError();
    }
    block->data_ = static_cast<const char*>(mapped);
    block->mappedSize_ = buffer_.size();
    block->offsets_.assign(offsets_.begin(), offsets_.end());
    block->boxes_.assign(boxes_.begin(), boxes_.end());
    const std::int64_t page = ::sysconf(_SC_PAGESIZE);
    fileSize_ += (static_cast<std::int64_t>(buffer_.size()) + page - 1) / page * page;
    buffer_.clear();
    offsets_.clear();
    boxes_.clear();
    rowBegin_ = 0;

    const std::lock_guard lock(mutex_);
    block->firstRow_ = rowCount_;
    rowCount_ += block->size();
    envelope_.add(bufferEnvelope_);
    geometryColumn_ = bufferGeometryColumn_;
    blocks_.push_back(block);
}

void RowStore::setCoordSystem(std::shared_ptr<cs::CoordSystem> system) {
    const std::lock_guard lock(mutex_);
    coordSystem_ = std::move(system);
}

std::int64_t RowStore::rowCount() const {
    const std::lock_guard lock(mutex_);
    return rowCount_;
}

RowBlocks RowStore::blocks() const {
    const std::lock_guard lock(mutex_);
    return blocks_;
}

std::shared_ptr<const RowBlock> RowStore::blockOf(std::int64_t row) const {
    const std::lock_guard lock(mutex_);
    if (row < 0 || row >= rowCount_) {
        return nullptr;
    }
    const auto behind =
        std::upper_bound(blocks_.begin(), blocks_.end(), row,
                         [](std::int64_t wanted, const auto& block) { return wanted < block->firstRow(); });
    return *std::prev(behind);
}

std::shared_ptr<cs::CoordSystem> RowStore::coordSystem() const {
    const std::lock_guard lock(mutex_);
    return coordSystem_;
}

int RowStore::geometryColumn() const {
    const std::lock_guard lock(mutex_);
    return geometryColumn_;
}

geometry::Envelope RowStore::envelope() const {
    const std::lock_guard lock(mutex_);
    return envelope_;
}

} // namespace orvane::desk
