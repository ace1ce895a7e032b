#include <orvane/engine/rows/ByteArena.h>

#include <gtest/gtest.h>

#include <string>
#include <vector>

using orvane::engine::ByteArena;

TEST(ByteArena, KeepsCopiesInPlaceInMemoryAndInItsFile) {
    ByteArena arena;
    std::vector<std::string_view> copies;
    const auto text = [](std::size_t i) {
        return std::string(i % 1000 == 0 ? 700'000 : i % 97, static_cast<char>('a' + i % 26));
    };
    std::size_t bytes = 0;
    for (std::size_t i = 0; bytes < ByteArena::heapBytes + ByteArena::heapBytes / 2; ++i) {
        copies.push_back(arena.copy(text(i)));
        bytes += copies.back().size();
    }
    EXPECT_GE(arena.size(), bytes);
    EXPECT_LT(arena.size(), 4 * bytes);
    for (std::size_t i = 0; i < copies.size(); ++i) {
        ASSERT_EQ(copies[i], text(i)) << i;
    }
}
