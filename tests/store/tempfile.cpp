#include "tempfile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdio>

#include <gtest/gtest.h>

namespace storetest
{
TempFile::TempFile(const std::string& stem)
    : m_path(testing::TempDir() + "store_" + stem + "_" + std::to_string(getpid()) + ".bin")
{
}

TempFile::~TempFile()
{
    unlink(m_path.c_str());
}

void TempFile::Store(const std::vector<uint8_t>& image) const
{
    FILE* file = fopen(m_path.c_str(), "wb");
    ASSERT_NE(nullptr, file);
    ASSERT_EQ(image.size(), fwrite(image.data(), 1, image.size(), file));
    fclose(file);
}

void TempFile::StoreUnnoticed(const std::vector<uint8_t>& image) const
{
    struct stat status;
    ASSERT_EQ(0, stat(m_path.c_str(), &status));
    Store(image);
    struct timespec times[2] = {status.st_atim, status.st_mtim};
    ASSERT_EQ(0, utimensat(AT_FDCWD, m_path.c_str(), times, 0));
}

void TempFile::ShiftModifiedTime(long seconds) const
{
    struct stat status;
    ASSERT_EQ(0, stat(m_path.c_str(), &status));
    struct timespec times[2] = {status.st_atim, status.st_mtim};
    times[1].tv_sec += seconds;
    ASSERT_EQ(0, utimensat(AT_FDCWD, m_path.c_str(), times, 0));
}
} // namespace storetest
