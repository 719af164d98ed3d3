// The class `<top>Class` of a module: ParameterModule round the top record.
#ifndef MODULEGEN_MODULECLASSEMITTER_H
#define MODULEGEN_MODULECLASSEMITTER_H

#include "codewriter.h"
#include "modulegen/model.h"

namespace modulegen
{
void EmitModuleClassDeclaration(CodeWriter& out, const Schema& schema);

/// Constructors, GetName, Create, LoadModule, UnloadModule, text access of a tuning module,
/// and the top record's GetModified and Release, which need the class.
void EmitModuleClassDefinitions(CodeWriter& out, const Schema& schema);
} // namespace modulegen

#endif // MODULEGEN_MODULECLASSEMITTER_H
