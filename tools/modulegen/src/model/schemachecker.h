// The checks of a resolved schema set, and what they derive for the emitter.
#ifndef MODULEGEN_SCHEMACHECKER_H
#define MODULEGEN_SCHEMACHECKER_H

#include "modulegen/diagnosticsink.h"
#include "modulegen/model.h"

namespace modulegen
{
/// Refuses clashing names, records that hold themselves, modules without their version member,
/// set managers whose names or type strings repeat; fills in `top`, `hasSymbolTableID`,
/// `ownsMemory` and the registrations of each set manager.
void CheckSchemaSet(SchemaSet& set, DiagnosticSink& sink);
} // namespace modulegen

#endif // MODULEGEN_SCHEMACHECKER_H
