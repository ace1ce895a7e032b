#pragma once

#include <orvane/engine/Export.h>

#include <QFile>

#include <cstddef>
#include <memory>
#include <string_view>
#include <vector>

namespace orvane::engine {

/// Keeps copies of bytes at addresses that do not change until the arena goes. What is above `heapBytes` lies
/// in a nameless temporary file that is mapped into memory, so that the system can write it out.
class ORVANE_ENGINE_EXPORT ByteArena {
public:
    static constexpr std::size_t heapBytes = std::size_t{64} << 20;

    /// Throws std::bad_alloc when there is neither memory nor room for the file.
    std::string_view copy(std::string_view bytes);
    /// Bytes taken, in memory and in the file.
    std::size_t size() const { return size_; }

private:
    char* take(std::size_t size);
    char* map(std::size_t size);

    std::vector<std::unique_ptr<char[]>> blocks_;
    std::unique_ptr<QFile> file_;
    char* free_ = nullptr; ///< in the newest block
    std::size_t left_ = 0; ///< behind free_
    std::size_t size_ = 0;
};

} // namespace orvane::engine
