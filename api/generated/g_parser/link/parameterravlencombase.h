// ParameterRavlenComBase: the packet layer of the live tuning link. A reader thread reassembles
// the transport's byte stream into packets and queues them; a writer thread sends the queued
// replies. The command worker only calls Read and Write.
#ifndef PARAMETERRAVLENCOMBASE_H
#define PARAMETERRAVLENCOMBASE_H

#include <atomic>
#include <condition_variable>
#include <deque>
#include <mutex>
#include <thread>

#include "orvotypes.h"
#include "parameterlogging.h"

/// Wire form of a packet, all fields little-endian: start tag (2 bytes), command (2), length of
/// the whole packet (2), then for commands with a payload a request ID (4) and NUL-terminated
/// text. Transports fill the four pure operations; a transport's destructor must call Stop()
/// while it can still close itself.
class ParameterRavlenComBase
{
public:
    /// One packet's bytes; a null pData with size 0 stands for a refused message.
    struct Packet
    {
        UINT8* pData;
        UINT32 size;
    };

    static constexpr UINT16 StartTag       = 0x4B5A;
    static constexpr UINT32 HeaderSize     = 6;  ///< tag, command, length
    static constexpr UINT32 IdHeaderSize   = 10; ///< the header and the request ID
    static constexpr UINT32 MaxPacketSize  = 65535;
    static constexpr INT32  TimeoutSeconds = 3;
    /// Commands 0 to 8 are served; the reader refuses 9 and above.
    static constexpr UINT8 ReaderMaxCommand = 9;

    explicit ParameterRavlenComBase(IParameterLoggingAPI* pLogging);
    virtual ~ParameterRavlenComBase();
    ParameterRavlenComBase(ParameterRavlenComBase const&)            = delete;
    ParameterRavlenComBase& operator=(ParameterRavlenComBase const&) = delete;

    virtual void StartCom() = 0;
    virtual void StopCom()  = 0;
    /// Up to `size` bytes of the stream; 0 on time-out or stop, -1 when the client went away.
    virtual INT32 ReadData(UINT8* pBuffer, UINT32 size, INT32 timeoutSeconds, std::atomic<bool>& rStop) = 0;
    /// Sends the whole buffer; the count sent or the error.
    virtual INT32 WriteData(UINT8* pBuffer, UINT32 size) = 0;

    /// Opens the transport and starts the reader and the writer; a second Start while running
    /// changes nothing. Does nothing without a logger.
    void Start();
    /// Stops and joins both threads, then closes the transport.
    void Stop();

    /// The next received packet, waiting at most `timeoutSeconds` (not at all for 0 or less),
    /// or null. The caller owns the packet and gives it back through FreePacket.
    Packet* Read(INT32 timeoutSeconds);
    /// Queues a copy of `size` bytes for the writer. A size of 0 or 65535 and above, or a null
    /// buffer, queues an empty packet, which the writer logs and drops.
    void        Write(UINT8* pBuffer, UINT32 size);
    static void FreePacket(Packet* pPacket);

    /// One whole packet from the stream into `pBuffer`: its length, or 0 when none completed
    /// in time. A packet whose command is at or above `maxCommand`, or whose length is 0, stays
    /// at the head of the held bytes: the link stalls on it, as the desktop tool expects.
    INT32 ReceiveRavlenRequest(UINT8* pBuffer, UINT32 size, UINT8 maxCommand, INT32 timeoutSeconds,
                               std::atomic<bool>& rStop);

    void        ReadWorker();
    void        WriteWorker();
    static void ReadFunction(void* pArg);
    static void WriteFunction(void* pArg);

protected:
    bool HasThreads() const { return (nullptr != m_pReadThread) || (nullptr != m_pWriteThread); }

    UINT8*                  m_pReceiveBuffer = nullptr; ///< reassembly buffer of MaxPacketSize bytes
    UINT32                  m_receivedBytes  = 0;       ///< the reader's alone
    IParameterLoggingAPI*   m_pLogging       = nullptr;
    IParameterLoggingAPI*   m_pDataLogging   = nullptr; ///< the same logger, for packet traces
    std::atomic<bool>       m_stop{false};              ///< read by all three threads
    bool                    m_readReady = false;        ///< guarded by m_readQueueLock
    std::condition_variable m_readCondition;
    bool                    m_writeReady = false; ///< guarded by m_writeQueueLock
    std::condition_variable m_writeCondition;
    INT32                   m_timeoutSeconds = TimeoutSeconds;
    std::thread*            m_pReadThread    = nullptr;
    std::thread*            m_pWriteThread   = nullptr;
    std::mutex              m_readQueueLock;
    std::mutex              m_writeQueueLock;
    std::deque<Packet*>     m_readQueue;
    std::deque<Packet*>     m_writeQueue;

private:
    /// A zeroed packet holding a copy of `size` bytes, with one zero byte behind them; null
    /// when memory runs out.
    static Packet* NewPacket(UINT8 const* pBytes, UINT32 size);
    /// Header checks of ReceiveRavlenRequest on the held bytes: the length of a complete packet
    /// at their head, copied out and taken off; 0 when there is none yet.
    UINT32      TakeHeldPacket(UINT8* pBuffer, UINT32 size, UINT8 maxCommand);
    static void FreeQueue(std::deque<Packet*>& queue);
};

#endif // PARAMETERRAVLENCOMBASE_H
