// How the model's names are spelt in C++ from a given place of the generated code.
#ifndef MODULEGEN_CPPNAMES_H
#define MODULEGEN_CPPNAMES_H

#include <cstdint>
#include <string>

#include "modulegen/model.h"

namespace modulegen
{
/// A record or enum as code inside `scope` (a record, or null for namespace level of
/// `schema`) names it: bare when `scope` declares it, with its enclosing records otherwise,
/// and with its namespace when that is another one.
std::string TypeName(const Record& type, const Record* scope, const Schema& schema);
std::string TypeName(const Enum& type, const Record* scope, const Schema& schema);

/// The C++ type of one element of `member`.
std::string ElementType(const Member& member, const Record& scope);

/// The ReadEnum_ function of `type` as code inside `scope` calls it.
std::string ReadEnumFunction(const Enum& type, const Record* scope, const Schema& schema);

/// The enum's name as its invalid-value message gives it: with enclosing records, no namespace.
std::string ScopedEnumName(const Enum& type);

/// `<top>Class`.
std::string ModuleClassName(const ModuleInfo& module);

/// The include path of a schema's or set manager's header: "folder/stem.h".
std::string HeaderPath(const std::string& folder, const std::string& stem);

/// The least number of bytes that one `record` takes in a file (at alignment 1).
uint64_t MinimumDataSize(const Record& record);

/// A C string literal of `text`.
std::string Quoted(const std::string& text);
} // namespace modulegen

#endif // MODULEGEN_CPPNAMES_H
