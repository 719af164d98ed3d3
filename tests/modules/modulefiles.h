// Tuning files for the tests of generated modules: written by the tuning-file writer, loaded
// through generated set managers, and the instances a manager made from them.
#ifndef TESTS_MODULES_MODULEFILES_H
#define TESTS_MODULES_MODULEFILES_H

#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

#include "parametersetmanager.h"
#include "tuningfile/writer.h"

namespace moduletest
{
/// Version 5.0.0 writes alignment 1; 2.0.0 is the newest that writes alignment 8.
constexpr tuningfile::Version AlignmentOne{5, 0, 0};
constexpr tuningfile::Version AlignmentEight{2, 0, 0};

/// A file of the root mode and, below it, Usecase sub-modes 1 and 2 (ids 1 and 2).
tuningfile::TuningFileModel ModelWithModes(tuningfile::Version version);

tuningfile::Module MakeModule(const std::string& name, tuningfile::Version version, uint32_t modeId,
                              const tuningfile::DataBuilder& data);

/// The image of `model`; a refusal of the writer fails the calling test.
std::vector<uint8_t> Image(const tuningfile::TuningFileModel& model);

/// The branch from the root to Usecase sub-mode `subMode`.
struct UsecaseBranch
{
    explicit UsecaseBranch(uint16_t subMode);
    TuningMode modes[2];
};

/// Instance `index`, in the order of creation, that the manager made for registered name
/// `name`; null when there is none.
ParameterModule* Instance(ParameterSetManager& manager, char const* name, size_t index = 0);

/// The bit pattern of a 4-byte member, whatever its type.
template <typename T>
uint32_t Bits(T const& value)
{
    static_assert(sizeof(T) == 4, "a 4-byte member");
    uint32_t bits = 0;
    memcpy(&bits, &value, sizeof(bits));
    return bits;
}

/// A file in the test's temporary directory, removed at the end of its life.
class TempFile
{
public:
    explicit TempFile(const std::string& stem);
    ~TempFile();
    TempFile(const TempFile&)            = delete;
    TempFile& operator=(const TempFile&) = delete;

    void               Store(const std::vector<uint8_t>& image) const;
    const std::string& Path() const { return m_path; }

private:
    std::string m_path;
};
} // namespace moduletest

#endif // TESTS_MODULES_MODULEFILES_H
