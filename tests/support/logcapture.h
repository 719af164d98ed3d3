// Captures the lines written through the common library's log sink, for assertions on log text.
#ifndef TESTS_SUPPORT_LOGCAPTURE_H
#define TESTS_SUPPORT_LOGCAPTURE_H

#include <mutex>
#include <string>
#include <vector>

#include "orvolog.h"

namespace testsupport
{
struct CapturedLine
{
    OrvoLogGroup group;
    std::string  levelLetter;
    UINT32       level;
    std::string  text;
};

/// While alive, every log line goes to this object instead of stderr. Log settings are left
/// as they were unless the test changes them; the destructor restores the default sink and
/// the "not yet loaded" settings, so every line passes the gate in the next test.
class LogCapture
{
public:
    LogCapture();
    ~LogCapture();
    LogCapture(const LogCapture&)            = delete;
    LogCapture& operator=(const LogCapture&) = delete;

    std::vector<CapturedLine> Lines() const;

    /// Lines whose text contains the fragment.
    std::vector<CapturedLine> Matching(const std::string& fragment) const;

    /// How many lines contain the fragment.
    size_t Count(const std::string& fragment) const;

    /// The message part of a line of the phase-detection form
    /// "<mark><pid> <tid> <tag> <file>:<line> <function>() <message>": what follows "() ".
    static std::string MessageOf(const std::string& text);

    void Clear();

private:
    static void Sink(OrvoLogGroup group, const CHAR* pLevelLetter, UINT32 level, const CHAR* pLine, VOID* pContext);

    mutable std::mutex        m_mutex;
    std::vector<CapturedLine> m_lines;
};
} // namespace testsupport

#endif // TESTS_SUPPORT_LOGCAPTURE_H
