#include "logcapture.h"

namespace testsupport
{
LogCapture::LogCapture()
{
    Orvo::Log::SetLogSink(&LogCapture::Sink, this);
}

LogCapture::~LogCapture()
{
    Orvo::Log::SetLogSink(nullptr, nullptr);
    Orvo::Log::ResetLogSettings();
}

void LogCapture::Sink(OrvoLogGroup group, const CHAR* pLevelLetter, UINT32 level, const CHAR* pLine, VOID* pContext)
{
    LogCapture*                 pCapture = static_cast<LogCapture*>(pContext);
    std::lock_guard<std::mutex> guard(pCapture->m_mutex);
    pCapture->m_lines.push_back({group, (nullptr == pLevelLetter) ? "" : pLevelLetter, level, pLine});
}

std::vector<CapturedLine> LogCapture::Lines() const
{
    std::lock_guard<std::mutex> guard(m_mutex);
    return m_lines;
}

std::vector<CapturedLine> LogCapture::Matching(const std::string& fragment) const
{
    std::vector<CapturedLine> matching;
    for (const CapturedLine& line : Lines())
    {
        if (std::string::npos != line.text.find(fragment))
        {
            matching.push_back(line);
        }
    }
    return matching;
}

size_t LogCapture::Count(const std::string& fragment) const
{
    return Matching(fragment).size();
}

std::string LogCapture::MessageOf(const std::string& text)
{
    size_t end = text.find("() ");
    return (std::string::npos == end) ? text : text.substr(end + 3);
}

void LogCapture::Clear()
{
    std::lock_guard<std::mutex> guard(m_mutex);
    m_lines.clear();
}
} // namespace testsupport
