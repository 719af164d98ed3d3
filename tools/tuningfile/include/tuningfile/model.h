// What a binary tuning file holds, before it is laid out: header texts, mode tree and modules.
#ifndef TUNINGFILE_MODEL_H
#define TUNINGFILE_MODEL_H

#include <cstdint>
#include <string>
#include <vector>

#include "tuningfile/databuilder.h"

namespace tuningfile
{
/// A format or module version, compared field by field as the reader compares it.
struct Version
{
    uint16_t major = 0;
    uint16_t minor = 0;
    uint32_t patch = 0;

    /// The 64-bit form in which a file stores it: `major` in the low bits.
    uint64_t Raw() const;

    /// "major.minor.patch".
    std::string ToString() const;
};

int  Compare(const Version& left, const Version& right);
bool operator==(const Version& left, const Version& right);
bool operator!=(const Version& left, const Version& right);
bool operator<(const Version& left, const Version& right);
bool operator<=(const Version& left, const Version& right);
bool operator>(const Version& left, const Version& right);
bool operator>=(const Version& left, const Version& right);

/// The link of a mode that shares no other mode's children.
constexpr uint32_t NoLink = 0xFFFFFFFF;

/// One node of the mode tree; its index in `TuningFileModel::modes` is its id.
struct Mode
{
    uint16_t mode     = 0;      ///< mode number: 0 Default, 1 Sensor, 2 Usecase, ...
    uint16_t subMode  = 0;      ///< sub-mode number within `mode`
    uint32_t parentId = 0;      ///< its own id for the root; otherwise a mode that stands before it
    uint32_t linkId   = NoLink; ///< the mode whose children stand for this mode's (from 2.0.0)
    bool     pinned   = false;  ///< loaded at once in file mode (stored from 5.0.0)
};

/// One module entry of the file.
struct Module
{
    std::string name;    ///< registered name; the file holds its short type form
    Version     version; ///< the version its generated class was made for
    uint32_t    modeId = 0;
    DataBuilder data; ///< the members of its top record
};

/// A whole file. Everything the layout needs (ids, pointer entries, duplicate groups, offsets,
/// sizes, the check value) is derived by `Write`.
struct TuningFileModel
{
    Version             version{5, 0, 0};
    uint8_t             alignment = 0; ///< 0 takes the alignment that `version` implies; 1 or 8 must match it
    std::string         tool;          ///< header text of the generating tool (from 1.0.2), up to 48 characters
    std::string         binaryTag;     ///< header text that the store logs as its identifier (from 1.0.2), up to 64
    std::vector<Mode>   modes;         ///< empty: no mode section, the reader builds the default tree
    std::vector<Module> modules;
};
} // namespace tuningfile

#endif // TUNINGFILE_MODEL_H
