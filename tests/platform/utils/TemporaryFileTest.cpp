#include "platform/utils/TemporaryFile.h"

#include <gtest/gtest.h>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

TEST(TemporaryFile, HasNoNameAndIsForItsOwner) {
    const int file = orvane::utils::openTemporaryFile();
    struct stat status {};
    ASSERT_EQ(::fstat(file, &status), 0);
    EXPECT_EQ(status.st_nlink, 0U);
    EXPECT_EQ(status.st_mode, S_IFREG | 0600U);
    EXPECT_EQ(::fcntl(file, F_GETFD), FD_CLOEXEC);
    ::close(file);
}
