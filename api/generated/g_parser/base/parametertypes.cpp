#include "parametertypes.h"

VersionUnion::VersionUnion() : value(0) {}

VersionUnion::VersionUnion(unsigned long raw) : value(raw) {}

VersionUnion::VersionUnion(unsigned short majorPart, unsigned short minorPart, unsigned int patchPart) : value(0)
{
    major = majorPart;
    minor = minorPart;
    patch = patchPart;
}

int VersionUnion::Compare(VersionUnion const& other) const
{
    if (major != other.major)
    {
        return (major > other.major) ? 1 : -1;
    }
    if (minor != other.minor)
    {
        return (minor > other.minor) ? 1 : -1;
    }
    if (patch != other.patch)
    {
        return (patch > other.patch) ? 1 : -1;
    }
    return 0;
}

ModeUnion::ModeUnion() : value(0) {}

ModeUnion::ModeUnion(unsigned long raw) : value(raw) {}

// The spare bits are zeroed too, rather than left undefined: nobody compares them, but they
// are carried along and may be written out.
ModeUnion::ModeUnion(unsigned short modePart, unsigned short subModePart) : value(0)
{
    mode    = modePart;
    subMode = subModePart;
}

DupObjInfo::DupObjInfo(unsigned int elementCount, char const* callFile, unsigned int callLine)
    : object(nullptr), count(elementCount), file(callFile), line(callLine), refCount(0)
{
}

bool DupObjInfo::Release(DupObjInfo* info)
{
    if (nullptr == info)
    {
        return true;
    }
    if (0 == info->refCount)
    {
        return false; // already released: no wrap of the count, and no second go-ahead to free
    }
    --info->refCount;
    if (0 != info->refCount)
    {
        return false;
    }
    info->object = nullptr;
    return true;
}
