// Bodies of the loading side of a record: ReadEnum_ functions, Load and Unload.
#ifndef MODULEGEN_LOADEMITTER_H
#define MODULEGEN_LOADEMITTER_H

#include "codewriter.h"
#include "modulegen/model.h"

namespace modulegen
{
void EmitReadEnum(CodeWriter& out, const Enum& type);

/// Zeroes the record, then reads each member in schema order with one result flag.
void EmitLoad(CodeWriter& out, const Record& record);

/// Gives back what the record's members hold; only for records that own memory.
void EmitUnload(CodeWriter& out, const Record& record);
} // namespace modulegen

#endif // MODULEGEN_LOADEMITTER_H
