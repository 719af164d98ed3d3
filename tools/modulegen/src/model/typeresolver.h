// Resolving what a schema refers to: the schemas it uses, and the type of every member.
#ifndef MODULEGEN_TYPERESOLVER_H
#define MODULEGEN_TYPERESOLVER_H

#include "modulegen/diagnosticsink.h"
#include "modulegen/model.h"

namespace modulegen
{
/// Fills `usedSchemas` of every schema and the kind and type of every member. Refusals (unknown
/// or ambiguous references, unknown schemas) go to `sink`.
void ResolveReferences(SchemaSet& set, DiagnosticSink& sink);
} // namespace modulegen

#endif // MODULEGEN_TYPERESOLVER_H
