#include "codewriter.h"

#include <algorithm>

namespace modulegen
{
namespace
{
constexpr unsigned IndentWidth = 4;
constexpr size_t   MaxWidth    = 120;

/// Where a line of code may break: after the last ", " that ends before `limit`, outside any
/// string literal. npos when there is none.
size_t BreakPoint(const std::string& line, size_t limit)
{
    size_t found  = std::string::npos;
    bool   quoted = false;
    for (size_t index = 0; (index + 1 < line.size()) && (index + 1 < limit); ++index)
    {
        if ((line[index] == '"') && ((index == 0) || (line[index - 1] != '\\')))
        {
            quoted = !quoted;
        }
        else if (!quoted && (line[index] == ',') && (line[index + 1] == ' '))
        {
            found = index + 1;
        }
    }
    return found;
}
} // namespace

void CodeWriter::Line(const std::string& text)
{
    if (text.empty())
    {
        m_text += '\n';
        return;
    }
    // Long calls and declarations continue under their first argument. Lines with a comment
    // stay whole, as a continuation would leave the comment.
    const std::string indent(m_depth * IndentWidth, ' ');
    std::string       rest    = text;
    size_t            open    = text.find('(');
    size_t            hanging = (open == std::string::npos) ? 2 * IndentWidth : open + 1;
    std::string       continued(m_depth * IndentWidth + ((hanging < MaxWidth / 2) ? hanging : 2 * IndentWidth), ' ');
    bool              first     = true;
    bool              wrappable = (text.find("//") == std::string::npos) && (open != std::string::npos);
    while (true)
    {
        const std::string& prefix = first ? indent : continued;
        size_t             cut    = (wrappable && (prefix.size() + rest.size() > MaxWidth))
                                        ? BreakPoint(rest, MaxWidth - prefix.size())
                                        : std::string::npos;
        if (cut == std::string::npos)
        {
            m_text += prefix + rest + '\n';
            return;
        }
        m_text += prefix + rest.substr(0, cut) + '\n';
        rest  = rest.substr(cut + 1);
        first = false;
    }
}

void CodeWriter::Open(const std::string& header)
{
    if (!header.empty())
    {
        Line(header);
    }
    Line("{");
    ++m_depth;
}

void CodeWriter::Close(const std::string& text)
{
    if (m_depth > 0)
    {
        --m_depth;
    }
    Line(text);
}

void CodeWriter::Columns(const std::vector<std::pair<std::string, std::string>>& rows)
{
    size_t width = 0;
    for (const auto& row : rows)
    {
        width = std::max(width, row.first.size());
    }
    for (const auto& row : rows)
    {
        Line(row.first + std::string(width - row.first.size() + 1, ' ') + row.second);
    }
}

void CodeWriter::Separate()
{
    bool afterBlank = (m_text.size() >= 2) && (m_text.compare(m_text.size() - 2, 2, "\n\n") == 0);
    bool afterOpen  = (m_text.size() >= 2) && (m_text.compare(m_text.size() - 2, 2, "{\n") == 0);
    if (!m_text.empty() && !afterBlank && !afterOpen)
    {
        Line();
    }
}
} // namespace modulegen
