// Text access of the records of a tuning module: GetValue, SetValue and GetInfo, each a chain of
// name comparisons in schema order.
#ifndef MODULEGEN_TEXTACCESSEMITTER_H
#define MODULEGEN_TEXTACCESSEMITTER_H

#include <string>

#include "codewriter.h"
#include "modulegen/model.h"

namespace modulegen
{
/// The shared constant of a type word, which the set manager compares by identity.
std::string InfoWordConstant(const std::string& word);

void EmitTextAccessDeclarations(CodeWriter& out);
void EmitTextAccess(CodeWriter& out, const Record& record);
} // namespace modulegen

#endif // MODULEGEN_TEXTACCESSEMITTER_H
