// Text of a generated source, line by line, with the indentation of its braces.
#ifndef MODULEGEN_CODEWRITER_H
#define MODULEGEN_CODEWRITER_H

#include <string>
#include <vector>

namespace modulegen
{
class CodeWriter
{
public:
    /// One line at the current indentation; an empty text gives an empty line.
    void Line(const std::string& text = "");

    /// The `header` line (when given) and "{", then one level deeper.
    void Open(const std::string& header = "");

    /// One level back, then a line: "}" by default.
    void Close(const std::string& text = "}");

    /// One level deeper or back, without a line (case labels and their statements).
    void Indent() { ++m_depth; }
    void Outdent() { m_depth = (m_depth > 0) ? m_depth - 1 : 0; }

    /// Lines whose names line up in a column: each row is a type and the rest of its line.
    void Columns(const std::vector<std::pair<std::string, std::string>>& rows);

    /// An empty line, unless the text already ends in one or has just opened a brace.
    void Separate();

    const std::string& Text() const { return m_text; }

private:
    std::string m_text;
    unsigned    m_depth = 0;
};
} // namespace modulegen

#endif // MODULEGEN_CODEWRITER_H
