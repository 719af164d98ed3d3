// The commands with a request payload: child modes, info rows, reading and setting values, and
// the host's custom command. Each answers with the request's 10-byte header, its length
// replaced, and a text (or the custom command's result and bytes).
#include <cstring>

#include "orvomem.h"
#include "orvoosutils.h"
#include "parameterparserinfo.h"
#include "parameterravlencom.h"
#include "parameterravlenwire.h"
#include "parameterravlenworker.h"
#include "parameterutils.h"

using RavlenWire::ReadU32;
using RavlenWire::WriteU16;

namespace
{
constexpr UINT32 IdHeader      = ParameterRavlenComBase::IdHeaderSize;
constexpr UINT32 ReplyBytes    = ParameterRavlenComBase::MaxPacketSize;
constexpr UINT32 ModeTextBytes = 512;  ///< a mode text or an item: 511 characters and the NUL
constexpr UINT32 PathBytes     = 4096; ///< a value path, as the set manager's own path buffers
constexpr UINT32 ChildModeRoom = 4086;
constexpr UINT32 CustomHeader  = IdHeader + 2; ///< the header and the 16-bit result
constexpr UINT32 LogTextBytes  = 128;
constexpr UINT32 LogHexBytes   = 63;

/// A zeroed buffer of the largest reply, freed at the end of the scope; null when memory ran out.
class ReplyBuffer
{
public:
    ReplyBuffer()
        : m_pBytes(static_cast<UINT8*>(
              OrvoCalloc(ReplyBytes, 8, OrvoMemFlagsAllocZeroMemory, OrvoMemTypeAny, __FILE__, __LINE__)))
    {
    }
    ~ReplyBuffer() { OrvoFree(m_pBytes, OrvoMemFlagsNone, __FILE__, __LINE__); }
    ReplyBuffer(ReplyBuffer const&)            = delete;
    ReplyBuffer& operator=(ReplyBuffer const&) = delete;

    UINT8* Bytes() const { return m_pBytes; }
    char*  Text() const { return reinterpret_cast<char*>(m_pBytes + IdHeader); }

private:
    UINT8* m_pBytes;
};

/// Appends text behind a reply's header within its capacity, always leaving room for the NUL.
/// The first piece that does not fit is logged, and the text stops there.
class ReplyText
{
public:
    ReplyText(char* pText, UINT32 capacity, IParameterLoggingAPI* pLogging)
        : m_pText(pText), m_capacity(capacity), m_pLogging(pLogging)
    {
        m_pText[0] = '\0';
    }

    void Append(char const* pPiece)
    {
        pPiece             = (nullptr == pPiece) ? "" : pPiece; // a row without a name prints none
        UINT32 pieceLength = static_cast<UINT32>(strlen(pPiece));
        if (m_full || (m_length + pieceLength + 1 > m_capacity))
        {
            if (!m_full)
            {
                PARAMETER_LOG_ERROR(m_pLogging, "Failed to write %lld bytes to binary offset %d, length %d\n",
                                    static_cast<long long>(pieceLength), static_cast<int>(IdHeader + m_length),
                                    static_cast<int>(IdHeader + m_capacity));
            }
            m_full = true;
            return;
        }
        memcpy(m_pText + m_length, pPiece, pieceLength + 1);
        m_length += pieceLength;
    }

    UINT32 Length() const { return m_length; }

private:
    char*                 m_pText;
    UINT32                m_capacity;
    IParameterLoggingAPI* m_pLogging;
    UINT32                m_length = 0;
    bool                  m_full   = false;
};

char const* PayloadOf(UINT8 const* pPacket)
{
    return reinterpret_cast<char const*>(pPacket + IdHeader);
}

/// The reply's header: the request's ten bytes with the length replaced.
void PutIdHeader(UINT8* pReply, UINT8 const* pPacket, UINT32 length)
{
    memcpy(pReply, pPacket, IdHeader);
    WriteU16(pReply + 4, static_cast<UINT16>(length));
}

/// One info row: name, "=" and the value when there is one, "," and the type, and for an array
/// "," and its element count.
void AppendInfoRow(ReplyText& text, ParameterParserInfo const& row)
{
    text.Append(row.Name);
    if ('\0' != row.Value[0])
    {
        text.Append("=");
        text.Append(row.Value);
    }
    text.Append(",");
    text.Append(row.Type);
    if ((0 != row.IsArray) || (0 != row.IsListed))
    {
        char count[16];
        Orvo::OsUtils::SNPrintF(count, sizeof(count), ",%u", row.ElementCount);
        text.Append(count);
    }
}

/// The parts of a get or set request: modes ":" value path ":" rest. `pRest` is null when the
/// packet ends before it; `hasPath` is false when it ends before the value path.
struct ValueRequest
{
    char        modes[ModeTextBytes] = "";
    char        path[PathBytes]      = "";
    char const* pRest                = nullptr;
    bool        hasPath              = false;
};

void SplitValueRequest(UINT8 const* pPacket, UINT32 size, ValueRequest& request)
{
    char const* pPayload = PayloadOf(pPacket);
    UINT32      n        = ParameterUtils::GetSubString(pPayload, ':', request.modes, sizeof(request.modes));
    if (size <= n + IdHeader + 1)
    {
        return;
    }
    request.hasPath = true;
    UINT32 m        = ParameterUtils::GetSubString(pPayload + n + 1, ':', request.path, sizeof(request.path));
    if (size > n + m + IdHeader + 2)
    {
        request.pRest = pPayload + n + m + 2;
    }
}
} // namespace

void ParameterRavlenWorker::ProcessDataModes(UINT8* pPacket, UINT32 size)
{
    if ((nullptr == pPacket) || (size <= IdHeader) || (nullptr == m_pDataAPI))
    {
        return;
    }
    UINT8 reply[IdHeader + ChildModeRoom] = {};
    char  shorthand[ModeTextBytes]        = "";
    m_pDataAPI->GetModeShorthand(PayloadOf(pPacket), shorthand, sizeof(shorthand));
    UINT32 written = m_pDataAPI->GetChildModes(shorthand, reply + IdHeader, ChildModeRoom);
    // Safe variant: a count beyond the room given cannot make the reply longer than its buffer.
    UINT32 length = IdHeader + ((written < ChildModeRoom) ? written : ChildModeRoom);
    PutIdHeader(reply, pPacket, length);
    m_pCom->Write(reply, length);
    PARAMETER_LOG_DEBUG(m_pDataAPI, "Ravlen queued command: Modes(%d), ID: %u, Payload: %s...\n", CommandModes,
                        ReadU32(pPacket + 6), reinterpret_cast<char const*>(reply + IdHeader));
}

void ParameterRavlenWorker::ProcessDataInfo(UINT8* pPacket, UINT32 size)
{
    if ((nullptr == pPacket) || (size < IdHeader + 1) || (nullptr == m_pDataAPI))
    {
        return;
    }
    ReplyBuffer reply;
    if (nullptr == reply.Bytes())
    {
        return;
    }
    char const* pPayload                 = PayloadOf(pPacket);
    char        modes[ModeTextBytes]     = "";
    char        shorthand[ModeTextBytes] = "";
    UINT32      n                        = ParameterUtils::GetSubString(pPayload, ':', modes, sizeof(modes));
    m_pDataAPI->GetModeShorthand(modes, shorthand, sizeof(shorthand));
    // An empty path behind the ":" asks for the list of modules, as a null path does.
    char const* pPath = (n + IdHeader + 2 < size) ? pPayload + n + 1 : nullptr;

    PList<ParameterParserInfo> rows(1);
    ReplyText                  text(reply.Text(), ReplyBytes - IdHeader, m_pDataAPI);
    if (m_pDataAPI->GetInfo(shorthand, pPath, rows))
    {
        for (uint32_t index = 0; index < rows.count; ++index)
        {
            if (0 != index)
            {
                text.Append(";");
            }
            AppendInfoRow(text, rows[index]);
        }
    }
    UINT32 length = IdHeader + text.Length() + 1;
    PutIdHeader(reply.Bytes(), pPacket, length);
    m_pCom->Write(reply.Bytes(), length);
    PARAMETER_LOG_DEBUG(m_pDataAPI, "Ravlen queued command: Info(%d), ID: %u, Payload: %s\n", CommandInfo,
                        ReadU32(pPacket + 6), reply.Text());
}

void ParameterRavlenWorker::ProcessDataGetValues(UINT8* pPacket, UINT32 size)
{
    if ((nullptr == pPacket) || (size <= IdHeader) || (nullptr == m_pDataAPI))
    {
        return;
    }
    ReplyBuffer reply;
    if (nullptr == reply.Bytes())
    {
        return;
    }
    ValueRequest request;
    SplitValueRequest(pPacket, size, request);
    if (request.hasPath)
    {
        char shorthand[ModeTextBytes] = "";
        m_pDataAPI->GetModeShorthand(request.modes, shorthand, sizeof(shorthand));
        m_pDataAPI->GetValue(shorthand, request.path, request.pRest, reply.Text(), ReplyBytes - IdHeader);
    }
    UINT32 length = IdHeader + static_cast<UINT32>(strnlen(reply.Text(), ReplyBytes - IdHeader - 1)) + 1;
    PutIdHeader(reply.Bytes(), pPacket, length);
    m_pCom->Write(reply.Bytes(), length);
    PARAMETER_LOG_DEBUG(m_pDataAPI, "Ravlen queued command: GetValues(%d), ID: %u, Payload: %s\n", CommandGetValues,
                        ReadU32(pPacket + 6), reply.Text());
}

void ParameterRavlenWorker::ProcessDataSetValues(UINT8* pPacket, UINT32 size)
{
    if ((nullptr == pPacket) || (size <= IdHeader) || (nullptr == m_pDataAPI))
    {
        return;
    }
    ReplyBuffer reply;
    ReplyBuffer readBack;
    if ((nullptr == reply.Bytes()) || (nullptr == readBack.Bytes()))
    {
        return;
    }
    ValueRequest request;
    SplitValueRequest(pPacket, size, request);
    ReplyText text(reply.Text(), ReplyBytes - IdHeader, m_pDataAPI);
    if (nullptr != request.pRest)
    {
        char shorthand[ModeTextBytes] = "";
        m_pDataAPI->GetModeShorthand(request.modes, shorthand, sizeof(shorthand));
        char const* pEnd      = reinterpret_cast<char const*>(pPacket) + size;
        bool        confirmed = false;
        for (char const* pItem = request.pRest; pItem < pEnd;)
        {
            char   item[ModeTextBytes] = "";
            UINT32 itemLength          = ParameterUtils::GetSubString(pItem, ';', item, sizeof(item));
            pItem += itemLength + 1; // an empty item moves on too
            char* pValue = strchr(item, '=');
            if ((nullptr == pValue) || ('\0' == pValue[1]))
            {
                continue; // nothing to set
            }
            *pValue++ = '\0';
            if (!m_pDataAPI->SetValue(shorthand, request.path, item, pValue))
            {
                continue;
            }
            // The reply confirms each change by reading it back.
            readBack.Bytes()[0] = '\0';
            if (m_pDataAPI->GetValue(shorthand, request.path, item, reinterpret_cast<char*>(readBack.Bytes()),
                                     ReplyBytes))
            {
                if (confirmed)
                {
                    text.Append(";");
                }
                text.Append(reinterpret_cast<char const*>(readBack.Bytes()));
                confirmed = true;
            }
        }
    }
    UINT32 length = IdHeader + text.Length() + 1;
    PutIdHeader(reply.Bytes(), pPacket, length);
    m_pCom->Write(reply.Bytes(), length);
    PARAMETER_LOG_DEBUG(m_pDataAPI, "Ravlen queued command: SetValues(%d), ID: %u, Payload: %s\n", CommandSetValues,
                        ReadU32(pPacket + 6), reply.Text());
}

void ParameterRavlenWorker::ProcessCustom(UINT8* pPacket, UINT32 size)
{
    if ((nullptr == pPacket) || (size < IdHeader + 1) || (size > ReplyBytes))
    {
        return;
    }
    ReplyBuffer reply;
    if (nullptr == reply.Bytes())
    {
        return;
    }
    UINT8* pBytes    = reply.Bytes() + CustomHeader;
    UINT16 replySize = 0;
    UINT16 result    = 0;
    if (nullptr == m_pCustomHandler)
    {
        PARAMETER_LOG_ERROR(m_pDataAPI,
                            "Ravlen queued Custom command received with no handler installed, sending result = 0\n");
    }
    else
    {
        // Safe variant: the handler is told the room that there is (65523 bytes), not the 32-bit
        // value -13, and a larger count it answers with is cut to that room.
        constexpr UINT32 Capacity = ReplyBytes - CustomHeader;
        result    = m_pCustomHandler->ProcessCommand(pPacket + IdHeader, size - IdHeader, Capacity, pBytes, &replySize);
        replySize = (replySize < Capacity) ? replySize : static_cast<UINT16>(Capacity);
    }
    WriteU16(reply.Bytes() + IdHeader, result);
    UINT32 length = CustomHeader + replySize;
    PutIdHeader(reply.Bytes(), pPacket, length);
    m_pCom->Write(reply.Bytes(), length);

    char shown[LogTextBytes] = "";
    if (IsPrintable(pBytes, replySize))
    {
        memcpy(shown, pBytes, (replySize < LogTextBytes - 1) ? replySize : LogTextBytes - 1);
    }
    else
    {
        for (UINT32 index = 0; (index < replySize) && (index < LogHexBytes); ++index)
        {
            Orvo::OsUtils::SNPrintF(shown + 2 * index, sizeof(shown) - 2 * index, "%02X", pBytes[index]);
        }
    }
    PARAMETER_LOG_DEBUG(m_pDataAPI, "Ravlen queued command: Custom(%d), ID: %u, Payload: %s...\n", CommandCustom,
                        ReadU32(pPacket + 6), shown);
}
