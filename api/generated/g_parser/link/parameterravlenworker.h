// ParameterRavlenWorker: the command processor of the live tuning link. One thread takes the
// requests of the desktop tool from the transport, serves each through IParameterDataAPI and
// queues one reply.
#ifndef PARAMETERRAVLENWORKER_H
#define PARAMETERRAVLENWORKER_H

#include <atomic>
#include <mutex>
#include <thread>

#include "orvotypes.h"
#include "parameterdataapi.h"

class ParameterRavlenCom;

/// What a host installs to serve command 8 with its own bytes.
class ICustomCommandHandler
{
public:
    /// Serves `requestSize` bytes of `pRequest`; writes at most `capacity` bytes to `pReply` and
    /// their count to `pReplySize`. The result goes on the wire as 16 bits.
    virtual UINT16 ProcessCommand(UINT8 const* pRequest, UINT32 requestSize, UINT32 capacity, UINT8* pReply,
                                  UINT16* pReplySize) = 0;
    virtual ~ICustomCommandHandler()                  = default;
};

/// Commands of the protocol, with the reply of each: 0 device info, 1 active modes, 2 control
/// values, 7 trigger values (6-byte reply header, text); 3 child modes, 4 info, 5 get values,
/// 6 set values (the request's 10-byte header, text); 8 custom (10-byte header, 16-bit result,
/// bytes). A request too short for its command gets no reply; a bad mode or look-up gets an
/// empty text.
class ParameterRavlenWorker
{
public:
    enum Command : UINT16
    {
        CommandDeviceInfo    = 0,
        CommandActiveModes   = 1,
        CommandControlValues = 2,
        CommandModes         = 3,
        CommandInfo          = 4,
        CommandGetValues     = 5,
        CommandSetValues     = 6,
        CommandTriggerValues = 7,
        CommandCustom        = 8,
    };

    static constexpr UINT8 VersionMajor = 1;
    static constexpr UINT8 VersionMinor = 0;

    /// Creates the transport, logging through `pDataAPI`.
    explicit ParameterRavlenWorker(IParameterDataAPI* pDataAPI);
    /// Stops the link if it still runs, then destroys the transport.
    ~ParameterRavlenWorker();
    ParameterRavlenWorker(ParameterRavlenWorker const&)            = delete;
    ParameterRavlenWorker& operator=(ParameterRavlenWorker const&) = delete;

    /// Opens the transport and starts the thread, unless a thread is there.
    void Start();
    /// Ends the thread for good: a later Start gives a thread that leaves after its first Read.
    void Stop();

    /// The internet port the link listens on; 0 while it listens on none.
    UINT16 GetListeningPort() const;

    static void ReadFunction(void* pArg);
    void        ReadWorker();

    // One command each. The packet commands take the packet and its size; the packet must have
    // a zero byte behind its `size` bytes, as the packets of the transport have.
    void ProcessDeviceInfo();
    void ProcessDataActiveModes();
    void ProcessDataControlValues();
    void ProcessDataTriggerValues();
    void ProcessDataModes(UINT8* pPacket, UINT32 size);
    void ProcessDataInfo(UINT8* pPacket, UINT32 size);
    void ProcessDataGetValues(UINT8* pPacket, UINT32 size);
    void ProcessDataSetValues(UINT8* pPacket, UINT32 size);
    void ProcessCustom(UINT8* pPacket, UINT32 size);

    /// True when every byte is 0 or printable ASCII; false for null or no bytes.
    static bool IsPrintable(UINT8 const* pBytes, UINT32 count);

    /// Serves one packet by its command (the reader thread's step; public for in-process
    /// drivers such as the fuzz target).
    void Dispatch(UINT8* pPacket, UINT32 size);

    IParameterDataAPI*  m_pDataAPI = nullptr;
    ParameterRavlenCom* m_pCom     = nullptr; ///< owned
    std::atomic<bool>   m_stop{false};
    INT32               m_timeoutSeconds = 3;
    std::thread*        m_pThread        = nullptr;
    /// Installed by a host before the link starts; not owned.
    ICustomCommandHandler* m_pCustomHandler = nullptr;
    std::mutex             m_lock; ///< serialises Start and Stop

private:
    /// Active modes, control and trigger values: the text that `pReply` holds from offset 6,
    /// queued behind a 6-byte header of `command`.
    void QueueListReply(UINT8* pReply, UINT16 command, char const* pCommandName, char const* pTextLabel);
};

#endif // PARAMETERRAVLENWORKER_H
