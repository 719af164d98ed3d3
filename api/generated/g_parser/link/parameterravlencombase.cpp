#include "parameterravlencombase.h"

#include <chrono>
#include <cstring>
#include <ctime>

#include "orvomem.h"
#include "parameterravlenwire.h"

using RavlenWire::ReadU16;

namespace
{
bool TimedOut(time_t start, INT32 timeoutSeconds)
{
    return (timeoutSeconds >= 0) && (difftime(time(nullptr), start) >= timeoutSeconds);
}

char const* IdentifierOf(IParameterLoggingAPI* pLogging)
{
    char const* identifier = (nullptr == pLogging) ? nullptr : pLogging->GetLoggingIdentifier();
    return (nullptr == identifier) ? "" : identifier;
}

constexpr UINT32 TraceTextBytes = 127;
} // namespace

ParameterRavlenComBase::ParameterRavlenComBase(IParameterLoggingAPI* pLogging)
    : m_pLogging(pLogging), m_pDataLogging(pLogging)
{
    m_pReceiveBuffer = static_cast<UINT8*>(
        OrvoCalloc(MaxPacketSize, 8, OrvoMemFlagsAllocZeroMemory, OrvoMemTypeAny, __FILE__, __LINE__));
    if (nullptr == pLogging)
    {
        PARAMETER_LOG_ERROR(pLogging, "ParameterRavlenComBase constructed with a nullptr Set Manager object\n");
    }
}

ParameterRavlenComBase::~ParameterRavlenComBase()
{
    OrvoFree(m_pReceiveBuffer, OrvoMemFlagsNone, __FILE__, __LINE__);
    // Safe variant: packets still queued at the end are freed, not left behind.
    FreeQueue(m_readQueue);
    FreeQueue(m_writeQueue);
}

ParameterRavlenComBase::Packet* ParameterRavlenComBase::NewPacket(UINT8 const* pBytes, UINT32 size)
{
    Packet* pPacket = static_cast<Packet*>(
        OrvoCalloc(sizeof(Packet), 8, OrvoMemFlagsAllocZeroMemory, OrvoMemTypeAny, __FILE__, __LINE__));
    if ((nullptr == pPacket) || (nullptr == pBytes) || (0 == size))
    {
        return pPacket;
    }
    // Safe variant: a zero byte stays behind the packet, so its text always ends within it.
    pPacket->pData =
        static_cast<UINT8*>(OrvoCalloc(size + 1, 8, OrvoMemFlagsArray, OrvoMemTypeAny, __FILE__, __LINE__));
    if (nullptr != pPacket->pData)
    {
        memcpy(pPacket->pData, pBytes, size);
        pPacket->size = size;
    }
    return pPacket;
}

void ParameterRavlenComBase::FreePacket(Packet* pPacket)
{
    if (nullptr != pPacket)
    {
        OrvoFree(pPacket->pData, OrvoMemFlagsArray, __FILE__, __LINE__);
        OrvoFree(pPacket, OrvoMemFlagsNone, __FILE__, __LINE__);
    }
}

void ParameterRavlenComBase::FreeQueue(std::deque<Packet*>& queue)
{
    for (Packet* pPacket : queue)
    {
        FreePacket(pPacket);
    }
    queue.clear();
}

void ParameterRavlenComBase::Start()
{
    if (nullptr == m_pLogging)
    {
        return;
    }
    // Safe variant: a second start while running would leave the running threads unjoined.
    if (HasThreads())
    {
        return;
    }
    PARAMETER_LOG_DEBUG(m_pLogging, "Starting Ravlen server: %s\n", IdentifierOf(m_pLogging));
    m_stop = false;
    StartCom();
    m_pReadThread  = new std::thread(ReadFunction, this);
    m_pWriteThread = new std::thread(WriteFunction, this);
}

void ParameterRavlenComBase::Stop()
{
    PARAMETER_LOG_DEBUG(m_pLogging, "Stopping TCP/IP Ravlen server: %s\n", IdentifierOf(m_pLogging));
    m_stop = true;
    // The flags change under the locks that the waits test them under: no wake-up is lost.
    {
        std::lock_guard<std::mutex> lock(m_readQueueLock);
        m_readReady = true;
    }
    m_readCondition.notify_all();
    {
        std::lock_guard<std::mutex> lock(m_writeQueueLock);
        m_writeReady = true;
    }
    m_writeCondition.notify_all();
    for (std::thread** ppThread : {&m_pReadThread, &m_pWriteThread})
    {
        if ((nullptr != *ppThread) && (*ppThread)->joinable())
        {
            (*ppThread)->join();
        }
        delete *ppThread;
        *ppThread = nullptr;
    }
    // The threads are gone before the transport closes under them.
    StopCom();
}

ParameterRavlenComBase::Packet* ParameterRavlenComBase::Read(INT32 timeoutSeconds)
{
    std::unique_lock<std::mutex> lock(m_readQueueLock);
    if (m_readQueue.empty() && (timeoutSeconds > 0) && !m_readReady)
    {
        // Safe variant: the wait tests its flag under the lock that the reader queues under, so
        // a packet queued just before the wait cannot be missed; the time-out still bounds it.
        m_readCondition.wait_for(lock, std::chrono::seconds(timeoutSeconds), [this] { return m_readReady || m_stop; });
    }
    Packet* pPacket = nullptr;
    if (!m_readQueue.empty())
    {
        pPacket = m_readQueue.front();
        m_readQueue.pop_front();
    }
    if (m_readQueue.empty())
    {
        m_readReady = false;
    }
    return pPacket;
}

void ParameterRavlenComBase::Write(UINT8* pBuffer, UINT32 size)
{
    bool    fits    = (nullptr != pBuffer) && (size >= 1) && (size < MaxPacketSize);
    Packet* pPacket = fits ? NewPacket(pBuffer, size) : NewPacket(nullptr, 0);
    if (nullptr == pPacket)
    {
        return;
    }
    {
        std::lock_guard<std::mutex> lock(m_writeQueueLock);
        m_writeQueue.push_back(pPacket);
        m_writeReady = true;
    }
    m_writeCondition.notify_all();
}

UINT32 ParameterRavlenComBase::TakeHeldPacket(UINT8* pBuffer, UINT32 size, UINT8 maxCommand)
{
    UINT8 const* pHeld = m_pReceiveBuffer;
    if (m_receivedBytes < HeaderSize)
    {
        return 0;
    }
    UINT16 tag     = ReadU16(pHeld);
    UINT16 command = ReadU16(pHeld + 2);
    UINT16 length  = ReadU16(pHeld + 4);
    if (StartTag != tag)
    {
        PARAMETER_LOG_ERROR(m_pLogging,
                            "Ravlen request missing start tag, Expected: %u, Received: %u: 0x%02x%02x%02x%02x%02x\n",
                            StartTag, tag, pHeld[0], pHeld[1], pHeld[2], pHeld[3], pHeld[4]);
        m_receivedBytes = 0;
        return 0;
    }
    // Required: the next two keep the packet at the head, so the link stalls on it.
    if (command >= maxCommand)
    {
        PARAMETER_LOG_ERROR(m_pLogging, "Ravlen request ID %u exceeds Max %u\n", command, maxCommand);
        return 0;
    }
    if (0 == length)
    {
        PARAMETER_LOG_ERROR(m_pLogging, "Ravlen request length is zero: 0x%02x%02x%02x%02x%02x\n", pHeld[0], pHeld[1],
                            pHeld[2], pHeld[3], pHeld[4]);
        return 0;
    }
    if (length > m_receivedBytes)
    {
        return 0;
    }
    // Safe variant: a packet that the caller's buffer cannot hold is taken off and not copied.
    bool fits = (nullptr != pBuffer) && (length <= size);
    if (fits)
    {
        memcpy(pBuffer, pHeld, length);
    }
    m_receivedBytes -= length;
    memmove(m_pReceiveBuffer, m_pReceiveBuffer + length, m_receivedBytes);
    if (!fits)
    {
        return 0;
    }
    if ((command > 8) && (length > IdHeaderSize))
    {
        char   text[TraceTextBytes + 1] = "";
        UINT32 textBytes                = length - IdHeaderSize;
        memcpy(text, pBuffer + IdHeaderSize, (textBytes < TraceTextBytes) ? textBytes : TraceTextBytes);
        PARAMETER_LOG_DEBUG(m_pDataLogging, "Ravlen recv %u bytes, Command %d, ID: %u, Payload: %s\n", length, command,
                            ReadU16(pBuffer + 6), text);
        if (0 != pBuffer[length - 1])
        {
            PARAMETER_LOG_ERROR(m_pDataLogging, "Ravlen packet missing terminating nul character\n");
        }
    }
    return length;
}

INT32 ParameterRavlenComBase::ReceiveRavlenRequest(UINT8* pBuffer, UINT32 size, UINT8 maxCommand, INT32 timeoutSeconds,
                                                   std::atomic<bool>& rStop)
{
    if (nullptr == m_pReceiveBuffer)
    {
        return 0;
    }
    time_t start = time(nullptr);
    for (;;)
    {
        UINT32 length = TakeHeldPacket(pBuffer, size, maxCommand);
        if (0 != length)
        {
            return static_cast<INT32>(length);
        }
        if (rStop || TimedOut(start, timeoutSeconds))
        {
            return 0;
        }
        UINT32 room     = MaxPacketSize - m_receivedBytes;
        INT32  received = ReadData(m_pReceiveBuffer + m_receivedBytes, room, timeoutSeconds, rStop);
        if (received > 0)
        {
            // Safe variant: a transport that claims more than the room cannot move the count past it.
            m_receivedBytes += (static_cast<UINT32>(received) < room) ? static_cast<UINT32>(received) : room;
        }
        if (rStop || TimedOut(start, timeoutSeconds))
        {
            return 0;
        }
    }
}

void ParameterRavlenComBase::ReadWorker()
{
    UINT8 frame[MaxPacketSize];
    while (!m_stop)
    {
        INT32 length = ReceiveRavlenRequest(frame, sizeof(frame), ReaderMaxCommand, m_timeoutSeconds, m_stop);
        if ((length < 1) || m_stop)
        {
            continue;
        }
        // Required: a packet of the greatest length is queued empty, and the worker passes it over.
        UINT32  size    = static_cast<UINT32>(length);
        Packet* pPacket = (size < MaxPacketSize) ? NewPacket(frame, size) : NewPacket(nullptr, 0);
        if (nullptr == pPacket)
        {
            continue;
        }
        {
            std::lock_guard<std::mutex> lock(m_readQueueLock);
            m_readQueue.push_back(pPacket);
            m_readReady = true;
        }
        m_readCondition.notify_all();
    }
}

void ParameterRavlenComBase::WriteWorker()
{
    for (;;)
    {
        Packet* pPacket = nullptr;
        {
            std::unique_lock<std::mutex> lock(m_writeQueueLock);
            if (!m_stop && m_writeQueue.empty() && (m_timeoutSeconds > 0) && !m_writeReady)
            {
                // Safe variant: as in Read, the flag is tested under the queue's own lock.
                m_writeCondition.wait_for(lock, std::chrono::seconds(m_timeoutSeconds),
                                          [this] { return m_writeReady || m_stop; });
            }
            if (m_stop)
            {
                // Replies still queued are abandoned; the destructor frees them.
                if (m_writeQueue.empty())
                {
                    m_writeReady = false;
                }
                return;
            }
            if (!m_writeQueue.empty())
            {
                pPacket = m_writeQueue.front();
                m_writeQueue.pop_front();
            }
            if (m_writeQueue.empty())
            {
                m_writeReady = false;
            }
        }
        if (nullptr == pPacket)
        {
            continue;
        }
        // The send runs outside the queue's lock, so the worker can queue the next reply meanwhile.
        if (pPacket->size > 2)
        {
            INT32 result = WriteData(pPacket->pData, pPacket->size);
            PARAMETER_LOG_DEBUG(m_pDataLogging, "Ravlen write %d bytes, Command: %d\n", result, pPacket->pData[2]);
        }
        else
        {
            PARAMETER_LOG_DEBUG(m_pDataLogging, "Ravlen write insufficient buffer size %d\n",
                                static_cast<int>(pPacket->size));
        }
        // Safe variant: a sent packet is freed, so a long session's memory stays flat.
        FreePacket(pPacket);
    }
}

void ParameterRavlenComBase::ReadFunction(void* pArg)
{
    if (nullptr != pArg)
    {
        static_cast<ParameterRavlenComBase*>(pArg)->ReadWorker();
    }
}

void ParameterRavlenComBase::WriteFunction(void* pArg)
{
    if (nullptr != pArg)
    {
        static_cast<ParameterRavlenComBase*>(pArg)->WriteWorker();
    }
}
