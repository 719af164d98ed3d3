// The class of a set manager: registration, the manager's duties, typed accessors.
#ifndef MODULEGEN_SETMANAGEREMITTER_H
#define MODULEGEN_SETMANAGEREMITTER_H

#include "codewriter.h"
#include "modulegen/model.h"

namespace modulegen
{
/// Includes and class of the header (within its include guard).
void EmitSetManagerHeader(CodeWriter& out, const SetManager& manager);
/// Includes and definitions of the source (after its own header's include).
void EmitSetManagerSource(CodeWriter& out, const SetManager& manager);
} // namespace modulegen

#endif // MODULEGEN_SETMANAGEREMITTER_H
