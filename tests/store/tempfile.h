// A file in the test's temporary directory, for the store's reading tests.
#ifndef TESTS_STORE_TEMPFILE_H
#define TESTS_STORE_TEMPFILE_H

#include <cstdint>
#include <string>
#include <vector>

namespace storetest
{
/// A file in the test's temporary directory, removed at the end of its life.
class TempFile
{
public:
    explicit TempFile(const std::string& stem);
    ~TempFile();
    TempFile(const TempFile&)            = delete;
    TempFile& operator=(const TempFile&) = delete;

    void Store(const std::vector<uint8_t>& image) const;
    /// Replaces the contents and sets the modification time back, so the change goes unseen.
    void StoreUnnoticed(const std::vector<uint8_t>& image) const;
    /// Moves the modification time by `seconds`, as a newer file on disk would.
    void               ShiftModifiedTime(long seconds) const;
    const std::string& Path() const { return m_path; }

private:
    std::string m_path;
};
} // namespace storetest

#endif // TESTS_STORE_TEMPFILE_H
