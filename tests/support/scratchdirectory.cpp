#include "scratchdirectory.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <stdexcept>
#include <system_error>

namespace testsupport
{
ScratchDirectory::ScratchDirectory(const std::string& prefix)
{
    std::string pattern = (std::filesystem::path(testing::TempDir()) / (prefix + ".XXXXXX")).string();
    if (nullptr == mkdtemp(pattern.data()))
    {
        throw std::system_error(errno, std::generic_category(), "mkdtemp " + pattern);
    }
    m_path = pattern;
}

ScratchDirectory::~ScratchDirectory()
{
    std::error_code ignored;
    std::filesystem::remove_all(m_path, ignored);
}
} // namespace testsupport
