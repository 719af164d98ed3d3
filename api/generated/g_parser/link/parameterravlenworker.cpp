// The worker's life cycle, its loop, and the commands that carry no request payload: device
// info, active modes, control and trigger values.
#include "parameterravlenworker.h"

#include <cstdint>
#include <cstring>

#include "orvoosutils.h"
#include "parameterravlencom.h"
#include "parameterravlenwire.h"

using RavlenWire::ReadU16;
using RavlenWire::WriteU16;

namespace
{
constexpr UINT32 DeviceNameBytes  = 240; ///< 239 characters and the NUL
constexpr UINT32 LogTextBytes     = 128;
constexpr UINT32 ActiveModesBytes = 1018;
constexpr UINT32 ValueListBytes   = 4090;
constexpr UINT32 ShortPacketHead  = 4; ///< a packet shorter than this has no command field
} // namespace

ParameterRavlenWorker::ParameterRavlenWorker(IParameterDataAPI* pDataAPI) : m_pDataAPI(pDataAPI)
{
    if (nullptr == pDataAPI)
    {
        PARAMETER_LOG_ERROR(pDataAPI, "ParameterRavlenWorker constructed with a nullptr Set Manager object\n");
    }
    m_pCom = new ParameterRavlenCom(pDataAPI);
}

ParameterRavlenWorker::~ParameterRavlenWorker()
{
    // Safe variant: the thread must not outlive the transport that it reads.
    Stop();
    delete m_pCom;
}

void ParameterRavlenWorker::Start()
{
    std::lock_guard<std::mutex> guard(m_lock);
    if (nullptr != m_pThread)
    {
        return; // a second load does not restart the link
    }
    m_pCom->Start();
    m_pThread = new std::thread(ReadFunction, this);
}

void ParameterRavlenWorker::Stop()
{
    std::lock_guard<std::mutex> guard(m_lock);
    // Required: the flag stays set, so a later Start gives a thread that leaves at once.
    m_stop = true;
    if (nullptr == m_pThread)
    {
        return;
    }
    m_pCom->Stop();
    if (m_pThread->joinable())
    {
        m_pThread->join();
    }
    delete m_pThread;
    m_pThread = nullptr;
}

UINT16 ParameterRavlenWorker::GetListeningPort() const
{
    return m_pCom->GetListeningPort();
}

void ParameterRavlenWorker::ReadFunction(void* pArg)
{
    if (nullptr != pArg)
    {
        static_cast<ParameterRavlenWorker*>(pArg)->ReadWorker();
    }
}

void ParameterRavlenWorker::ReadWorker()
{
    for (;;)
    {
        ParameterRavlenComBase::Packet* pPacket = m_pCom->Read(m_timeoutSeconds);
        if ((nullptr != pPacket) && !m_stop && (0 != pPacket->size))
        {
            Dispatch(pPacket->pData, pPacket->size);
        }
        // Safe variant: a served packet is freed, so a long session's memory stays flat.
        ParameterRavlenComBase::FreePacket(pPacket);
        if (m_stop)
        {
            return;
        }
    }
}

void ParameterRavlenWorker::Dispatch(UINT8* pPacket, UINT32 size)
{
    if (size < ShortPacketHead)
    {
        // Required: the tool probes with a runt and expects the device info back.
        PARAMETER_LOG_ERROR(m_pDataAPI, "Failed to read %lld bytes from binary file offset %d, length %d\n", 2LL, 2,
                            static_cast<int>(size));
        ProcessDeviceInfo();
        return;
    }
    switch (ReadU16(pPacket + 2))
    {
        case CommandDeviceInfo:
            ProcessDeviceInfo();
            break;
        case CommandActiveModes:
            ProcessDataActiveModes();
            break;
        case CommandControlValues:
            ProcessDataControlValues();
            break;
        case CommandModes:
            ProcessDataModes(pPacket, size);
            break;
        case CommandInfo:
            ProcessDataInfo(pPacket, size);
            break;
        case CommandGetValues:
            ProcessDataGetValues(pPacket, size);
            break;
        case CommandSetValues:
            ProcessDataSetValues(pPacket, size);
            break;
        case CommandTriggerValues:
            ProcessDataTriggerValues();
            break;
        case CommandCustom:
            ProcessCustom(pPacket, size);
            break;
        default:
            break; // unknown commands get no reply
    }
}

void ParameterRavlenWorker::ProcessDeviceInfo()
{
    constexpr UINT32 NameOffset                          = 16;
    UINT8            reply[NameOffset + DeviceNameBytes] = {};
    char*            pName                               = reinterpret_cast<char*>(reply + NameOffset);
    char const*      pIdentity = (nullptr == m_pDataAPI) ? nullptr : m_pDataAPI->GetLoggingIdentifier();
    if ((nullptr == pIdentity) || ('\0' == pIdentity[0]))
    {
        Orvo::OsUtils::SNPrintF(pName, DeviceNameBytes, "0x%016lx",
                                static_cast<unsigned long>(reinterpret_cast<uintptr_t>(m_pDataAPI)));
    }
    else
    {
        Orvo::OsUtils::StrLCpy(pName, pIdentity, DeviceNameBytes);
    }
    UINT16 length = static_cast<UINT16>(NameOffset + strlen(pName) + 1);
    WriteU16(reply, ParameterRavlenComBase::StartTag);
    WriteU16(reply + 2, CommandDeviceInfo);
    WriteU16(reply + 4, length);
    reply[6] = VersionMajor;
    reply[7] = VersionMinor;
    // The device handle is the interface pointer's value.
    RavlenWire::WriteU64(reply + 8, static_cast<UINT64>(reinterpret_cast<uintptr_t>(m_pDataAPI)));
    m_pCom->Write(reply, length);

    char logName[LogTextBytes];
    Orvo::OsUtils::StrLCpy(logName, pName, sizeof(logName));
    PARAMETER_LOG_DEBUG(m_pDataAPI, "Ravlen queued command: Info(%d), Version: %u.%u, Name: %s\n", CommandDeviceInfo,
                        VersionMajor, VersionMinor, logName);
}

void ParameterRavlenWorker::QueueListReply(UINT8* pReply, UINT16 command, char const* pCommandName,
                                           char const* pTextLabel)
{
    char const* pText  = reinterpret_cast<char const*>(pReply + ParameterRavlenComBase::HeaderSize);
    UINT16      length = static_cast<UINT16>(ParameterRavlenComBase::HeaderSize + strlen(pText) + 1);
    WriteU16(pReply, ParameterRavlenComBase::StartTag);
    WriteU16(pReply + 2, command);
    WriteU16(pReply + 4, length);
    m_pCom->Write(pReply, length);
    PARAMETER_LOG_DEBUG(m_pDataAPI, "Ravlen queued command: %s(%d), Version: %u.%u, %s: %s\n", pCommandName, command,
                        VersionMajor, VersionMinor, pTextLabel, pText);
}

void ParameterRavlenWorker::ProcessDataActiveModes()
{
    UINT8 reply[ParameterRavlenComBase::HeaderSize + ActiveModesBytes] = {};
    if (nullptr != m_pDataAPI)
    {
        m_pDataAPI->GetActiveModes(reinterpret_cast<char*>(reply + ParameterRavlenComBase::HeaderSize),
                                   ActiveModesBytes);
    }
    QueueListReply(reply, CommandActiveModes, "Active Modes", "Active");
}

void ParameterRavlenWorker::ProcessDataControlValues()
{
    UINT8 reply[ParameterRavlenComBase::HeaderSize + ValueListBytes] = {};
    if (nullptr != m_pDataAPI)
    {
        m_pDataAPI->GetControlValues(reinterpret_cast<char*>(reply + ParameterRavlenComBase::HeaderSize),
                                     ValueListBytes);
    }
    QueueListReply(reply, CommandControlValues, "Control Values", "Name");
}

void ParameterRavlenWorker::ProcessDataTriggerValues()
{
    UINT8 reply[ParameterRavlenComBase::HeaderSize + ValueListBytes] = {};
    if (nullptr != m_pDataAPI)
    {
        m_pDataAPI->GetTriggerValues(reinterpret_cast<char*>(reply + ParameterRavlenComBase::HeaderSize),
                                     ValueListBytes);
    }
    QueueListReply(reply, CommandTriggerValues, "Trigger Values", "Name");
}

bool ParameterRavlenWorker::IsPrintable(UINT8 const* pBytes, UINT32 count)
{
    if ((nullptr == pBytes) || (0 == count))
    {
        return false;
    }
    for (UINT32 index = 0; index < count; ++index)
    {
        UINT8 byte = pBytes[index];
        if ((0 != byte) && ((byte < 0x20) || (byte > 0x7E)))
        {
            return false;
        }
    }
    return true;
}
