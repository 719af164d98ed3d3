// A directory of its own for a test's files, removed with everything in it when the test ends.
#ifndef TESTS_SUPPORT_SCRATCHDIRECTORY_H
#define TESTS_SUPPORT_SCRATCHDIRECTORY_H

#include <string>

namespace testsupport
{
class ScratchDirectory
{
public:
    /// A new directory under the test's temporary folder, named from `prefix`; throws when it
    /// cannot be made.
    explicit ScratchDirectory(const std::string& prefix);
    ~ScratchDirectory();
    ScratchDirectory(const ScratchDirectory&)            = delete;
    ScratchDirectory& operator=(const ScratchDirectory&) = delete;

    const std::string& Path() const { return m_path; }
    std::string        PathOf(const std::string& name) const { return m_path + "/" + name; }

private:
    std::string m_path;
};
} // namespace testsupport

#endif // TESTS_SUPPORT_SCRATCHDIRECTORY_H
