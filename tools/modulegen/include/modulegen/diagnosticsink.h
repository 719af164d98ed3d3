// Collects the refusals of one load of a schema set.
#ifndef MODULEGEN_DIAGNOSTICSINK_H
#define MODULEGEN_DIAGNOSTICSINK_H

#include <string>
#include <vector>

#include "modulegen/schemaloader.h"

namespace modulegen
{
class DiagnosticSink
{
public:
    void Add(const std::string& file, const std::string& jsonPath, const std::string& message)
    {
        m_diagnostics.push_back({file, jsonPath, message});
    }

    bool                           Empty() const { return m_diagnostics.empty(); }
    size_t                         Count() const { return m_diagnostics.size(); }
    const std::vector<Diagnostic>& All() const { return m_diagnostics; }

private:
    std::vector<Diagnostic> m_diagnostics;
};

/// "parent/key": one step down a JSON pointer.
inline std::string JsonChild(const std::string& parent, const std::string& key)
{
    return parent + "/" + key;
}

inline std::string JsonChild(const std::string& parent, size_t index)
{
    return parent + "/" + std::to_string(index);
}
} // namespace modulegen

#endif // MODULEGEN_DIAGNOSTICSINK_H
