// Enums and records of a schema: their declarations for the header and their functions for the
// source.
#ifndef MODULEGEN_RECORDEMITTER_H
#define MODULEGEN_RECORDEMITTER_H

#include "codewriter.h"
#include "modulegen/model.h"

namespace modulegen
{
/// A record with the enums and records declared inside it, its members and its functions.
void EmitRecordDeclaration(CodeWriter& out, const Record& record);

/// Everything a schema declares at namespace level, records after what they hold.
void EmitNamespaceDeclarations(CodeWriter& out, const Schema& schema);

/// The functions of a record and of what it declares.
void EmitRecordDefinitions(CodeWriter& out, const Record& record);

/// The functions of everything a schema declares.
void EmitNamespaceDefinitions(CodeWriter& out, const Schema& schema);
} // namespace modulegen

#endif // MODULEGEN_RECORDEMITTER_H
