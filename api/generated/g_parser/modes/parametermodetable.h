// IModeTable: the mode table of a loaded file, by index, as the symbol table's records see it.
#ifndef PARAMETERMODETABLE_H
#define PARAMETERMODETABLE_H

#include "pdlibvark_export.h"

class ModeEntry;

/// Slot order is part of the interface: GetModeEntry, then the destructor.
class PDLIBVARK_API IModeTable
{
public:
    /// The mode at table index `id`, or null when the table has no such index.
    virtual ModeEntry* GetModeEntry(unsigned int id) = 0;
    virtual ~IModeTable()                            = default;
};

#endif // PARAMETERMODETABLE_H
