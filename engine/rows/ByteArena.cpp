#include <orvane/engine/rows/ByteArena.h>

#include "platform/utils/TemporaryFile.h"

#include <fcntl.h>

#include <algorithm>
#include <cstring>
#include <new>

namespace orvane::engine {

namespace {

constexpr std::size_t smallestBlock = std::size_t{64} << 10;
constexpr std::size_t mappedBlock = std::size_t{16} << 20;

} // namespace

std::string_view ByteArena::copy(std::string_view bytes) {
    if (bytes.empty()) {
        return {"", 0};
    }
    if (bytes.size() > left_) {
        free_ = take(bytes.size());
    }
    char* const start = free_;
    std::memcpy(start, bytes.data(), bytes.size());
    free_ += bytes.size();
    left_ -= bytes.size();
    return {start, bytes.size()};
}

/// A new block for at least so many bytes. On the heap it is as large as all before it, as far as there is
/// room.
char* ByteArena::take(std::size_t size) {
    const bool isMapped = size_ >= heapBytes;
    const std::size_t usual =
        isMapped ? mappedBlock : std::max(std::min(size_, heapBytes - size_), smallestBlock);
    left_ = std::max(size, usual);
    char* const block = isMapped ? map(left_) : blocks_.emplace_back(new char[left_]).get();
    size_ += left_;
    return block;
}

char* ByteArena::map(std::size_t size) {
    if (!file_) {
        const int descriptor = utils::openTemporaryFile();
        if (descriptor < 0) {
            throw std::bad_alloc();
        }
        file_ = std::make_unique<QFile>();
        file_->open(descriptor, QIODevice::ReadWrite, QFileDevice::AutoCloseHandle);
    }
    const qint64 offset = file_->size();
    const auto length = static_cast<qint64>(size);
    // Room is taken at once: writing to a mapped page for which there is none would end the process.
    const bool hasRoom = posix_fallocate(file_->handle(), offset, length) == 0;
    // The size is asked for anew, by which Qt maps.
    uchar* const block = hasRoom && file_->size() == offset + length ? file_->map(offset, length) : nullptr;
    if (!block) {
        throw std::bad_alloc();
    }
    return reinterpret_cast<char*>(block);
}

} // namespace orvane::engine
