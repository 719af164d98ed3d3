// The order in which the records of one scope are declared: each after the records it holds.
#ifndef MODULEGEN_RECORDORDER_H
#define MODULEGEN_RECORDORDER_H

#include <memory>
#include <vector>

#include "modulegen/model.h"

namespace modulegen
{
/// The records of one scope (a schema's namespace level or one record's inside), ordered so
/// that every record comes after those of the scope that it, or a record inside it, needs;
/// otherwise in schema order. The checker has refused cycles.
std::vector<const Record*> DeclarationOrder(const std::vector<std::unique_ptr<Record>>& records);
} // namespace modulegen

#endif // MODULEGEN_RECORDORDER_H
