#pragma once

#include <sys/mman.h>

#include <cstddef>
#include <new>

namespace orvane::utils {

/// An allocator for vectors of many megabytes, above all such as are read by jumps: asks the system for large
/// pages, which are mapped by fewer faults and found by the processor without a walk through the page tables.
template<class T>
class LargePages {
public:
    using value_type = T;

    LargePages() = default;
    template<class Other>
    LargePages(const LargePages<Other>& /*other*/) noexcept {}

    T* allocate(std::size_t count) {
        if (count > static_cast<std::size_t>(-1) / sizeof(T)) {
            throw std::bad_array_new_length();
        }
        const std::size_t bytes = count * sizeof(T);
        if (bytes < fewestBytes) {
            return static_cast<T*>(::operator new(bytes));
        }
        void* const memory = ::operator new(bytes, pageAlignment);
#ifdef MADV_HUGEPAGE
        madvise(memory, bytes, MADV_HUGEPAGE); // what the system refuses is slower and nothing else
#endif
        return static_cast<T*>(memory);
    }
    void deallocate(T* memory, std::size_t count) noexcept {
        if (count * sizeof(T) < fewestBytes) {
            ::operator delete(memory);
        } else {
            ::operator delete(memory, pageAlignment);
        }
    }

    friend bool operator==(const LargePages& /*a*/, const LargePages& /*b*/) {
        return true;
    }

private:
    static constexpr std::align_val_t pageAlignment{std::size_t{2} << 20};
    static constexpr std::size_t fewestBytes = std::size_t{2} << 20;

    static_assert(alignof(T) <= __STDCPP_DEFAULT_NEW_ALIGNMENT__);
};

} // namespace orvane::utils
