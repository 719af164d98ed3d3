#include "parameterravlencom.h"

#include <arpa/inet.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <ctime>

#include "orvoosutils.h"

bool ParameterRavlenCom::UseInternalPort = false;

void ParameterRavlenCom::SocketAddress::SetupSocket(AddrType type, UINT16 port)
{
    m_port = port;
    memset(&m_address, 0, sizeof(m_address));
    if (AddrTypeUnix == type)
    {
        m_type = AddrTypeUnix;
        Orvo::OsUtils::SNPrintF(m_portName, sizeof(m_portName), "#Ravlen%x", port);
        Orvo::OsUtils::StrLCpy(m_address.local.sun_path, m_portName, sizeof(m_address.local.sun_path));
        m_address.local.sun_family = AF_UNIX;
        // The name is abstract: its leading "#" only holds the place of the NUL.
        m_address.local.sun_path[0] = '\0';
        // The family's two bytes, the name and one terminating byte.
        m_length = static_cast<UINT32>(strlen(m_portName) + 3);
    }
    else
    {
        m_type = AddrTypeInet;
        Orvo::OsUtils::SNPrintF(m_portName, sizeof(m_portName), "0x%x", port);
        m_address.inet.sin_family      = AF_INET;
        m_address.inet.sin_addr.s_addr = htonl(INADDR_ANY);
        m_address.inet.sin_port        = htons(port);
        m_length                       = sizeof(sockaddr_in);
    }
}

INT32 ParameterRavlenCom::SocketID::ReadData(UINT8* pBuffer, UINT32 size, INT32 timeoutSeconds,
                                             std::atomic<bool>& rStop)
{
    time_t start = time(nullptr);
    for (;;)
    {
        if (-1 != m_connection)
        {
            pollfd client = {m_connection, POLLIN, 0};
            if (poll(&client, 1, PollMilliseconds) > 0)
            {
                break;
            }
        }
        else
        {
            pollfd server = {m_listenSocket, POLLIN, 0};
            if (poll(&server, 1, PollMilliseconds) > 0)
            {
                socklen_t length = sizeof(m_remote.m_address);
                INT32     accepted =
                    accept4(m_listenSocket, reinterpret_cast<sockaddr*>(&m_remote.m_address), &length, SOCK_CLOEXEC);
                {
                    std::lock_guard<std::mutex> lock(m_connectionLock);
                    m_connection = accepted;
                }
                PARAMETER_LOG_DEBUG(m_pLogging, "Ravlen accepted data connection on port %s\n", m_local.m_portName);
                if (-1 == accepted)
                {
                    break; // a failed accept takes the disconnect path of recv
                }
                // Safe variant: a new client is polled like any other before recv, so one that
                // connects and sends nothing cannot hold the reader, and Stop, in recv.
                continue;
            }
        }
        if (rStop)
        {
            return 0;
        }
        if ((timeoutSeconds >= 0) && (difftime(time(nullptr), start) >= timeoutSeconds))
        {
            return 0;
        }
    }
    ssize_t received = recv(m_connection, pBuffer, size, 0);
    if (received < 1)
    {
        PARAMETER_LOG_DEBUG(m_pLogging, "Ravlen client disconnected.  Resetting socket\n");
        CloseConnection();
        return -1;
    }
    return static_cast<INT32>(received);
}

INT32 ParameterRavlenCom::SocketID::WriteData(UINT8* pBuffer, UINT32 size, std::atomic<bool>& rStop)
{
    std::lock_guard<std::mutex> lock(m_connectionLock);
    UINT32                      sent = 0;
    while (sent < size)
    {
        // Safe variant: the send never blocks and never raises SIGPIPE. A full socket is waited
        // for in poll turns that a stop ends, so a client that stops reading cannot hold the
        // writer, and Stop, for ever; otherwise the whole buffer goes out, as one send would.
        ssize_t result = send(m_connection, pBuffer + sent, size - sent, MSG_NOSIGNAL | MSG_DONTWAIT);
        if (result >= 0)
        {
            sent += static_cast<UINT32>(result);
            continue;
        }
        if ((EAGAIN != errno) && (EWOULDBLOCK != errno) && (EINTR != errno))
        {
            return (0 == sent) ? -1 : static_cast<INT32>(sent);
        }
        pollfd client = {m_connection, POLLOUT, 0};
        poll(&client, 1, PollMilliseconds);
        if (rStop)
        {
            break;
        }
    }
    return static_cast<INT32>(sent);
}

void ParameterRavlenCom::SocketID::CloseConnection()
{
    std::lock_guard<std::mutex> lock(m_connectionLock);
    if (-1 != m_connection)
    {
        close(m_connection);
        m_connection = -1;
    }
}

void ParameterRavlenCom::SocketID::CloseSocket()
{
    if (-1 == m_listenSocket)
    {
        return;
    }
    CloseConnection();
    close(m_listenSocket);
    m_listenSocket = -1;
    memset(&m_local, 0, sizeof(m_local));
    memset(&m_remote, 0, sizeof(m_remote));
}

ParameterRavlenCom::ParameterRavlenCom(IParameterLoggingAPI* pLogging) : ParameterRavlenComBase(pLogging)
{
    // Both addresses are set up and then zeroed: nothing is bound before StartCom.
    memset(&m_socket.m_local, 0, sizeof(m_socket.m_local));
    memset(&m_socket.m_remote, 0, sizeof(m_socket.m_remote));
    m_socket.m_pLogging = pLogging;
}

ParameterRavlenCom::~ParameterRavlenCom()
{
    // Safe variant: threads still running would outlive the object they serve.
    if (HasThreads())
    {
        Stop();
    }
    ClosePort();
}

void ParameterRavlenCom::StartCom()
{
    if (m_needsInit)
    {
        m_needsInit = !InitSockets();
    }
    OpenPort();
}

void ParameterRavlenCom::StopCom()
{
    ClosePort();
}

INT32 ParameterRavlenCom::ReadData(UINT8* pBuffer, UINT32 size, INT32 timeoutSeconds, std::atomic<bool>& rStop)
{
    return m_socket.ReadData(pBuffer, size, timeoutSeconds, rStop);
}

INT32 ParameterRavlenCom::WriteData(UINT8* pBuffer, UINT32 size)
{
    return m_socket.WriteData(pBuffer, size, m_stop);
}

void ParameterRavlenCom::SetupAddresses(AddrType type, UINT16 port)
{
    m_socket.m_local.SetupSocket(type, port);
    m_socket.m_remote.SetupSocket(type, port);
}

UINT16 ParameterRavlenCom::OpenPort()
{
    if (-1 != m_socket.m_listenSocket)
    {
        return m_socket.m_local.m_port; // a second start has no effect
    }
    UINT16 port = UseInternalPort ? InternalPort : ExternalPort;
    SetupAddresses(AddrTypeInet, port);
    // Close-on-exec: a host that starts programs must not hand them the listening socket.
    m_socket.m_listenSocket = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    if (-1 != m_socket.m_listenSocket)
    {
        // A restarted server gets its port back while the last session's connection waits out
        // TIME_WAIT; a port that another socket listens on still moves the bind up.
        int reuse = 1;
        setsockopt(m_socket.m_listenSocket, SOL_SOCKET, SO_REUSEADDR, &reuse, sizeof(reuse));
        LogDebug("Ravlen Server INET socket created", m_socket, m_socket.m_local.m_portName, m_socket.m_listenSocket,
                 errno);
    }
    else
    {
        LogDebug("Ravlen Server INET socket create failed", m_socket, m_socket.m_local.m_portName,
                 m_socket.m_listenSocket, errno);
        if (!UseInternalPort)
        {
            SetupAddresses(AddrTypeUnix, InternalPort);
            m_socket.m_listenSocket = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
            if (-1 != m_socket.m_listenSocket)
            {
                LogDebug("Ravlen Server UNIX socket created", m_socket, m_socket.m_local.m_portName,
                         m_socket.m_listenSocket, errno);
            }
            else
            {
                LogError("Ravlen Server UNIX socket create failed", m_socket, m_socket.m_local.m_portName,
                         m_socket.m_listenSocket, errno);
            }
        }
    }
    if (-1 == m_socket.m_listenSocket)
    {
        LogError("Ravlen Server socket create failed", m_socket, m_socket.m_local.m_portName, m_socket.m_listenSocket,
                 errno);
        return m_socket.m_local.m_port;
    }
    return BindUpward();
}

UINT16 ParameterRavlenCom::BindUpward()
{
    SocketAddress& local = m_socket.m_local;
    UINT16         limit = static_cast<UINT16>(local.m_port + BindAttempts);
    for (;;)
    {
        INT32 result = bind(m_socket.m_listenSocket, reinterpret_cast<sockaddr*>(&local.m_address), local.m_length);
        if (0 == result)
        {
            listen(m_socket.m_listenSocket, Backlog);
            LogDebug("Ravlen Server bound", m_socket, local.m_portName, result, errno);
            m_listeningPort = (AddrTypeInet == local.m_type) ? local.m_port : 0;
            return local.m_port;
        }
        LogDebug("Ravlen Server bind failed", m_socket, local.m_portName, result, errno);
        UINT16 next = static_cast<UINT16>(local.m_port + 1);
        local.SetupSocket(local.m_type, next);
        if (next == limit)
        {
            PARAMETER_LOG_ERROR(m_pLogging, "Ravlen Failed to bind any ports\n");
            CloseSocket(m_socket, true);
            return next;
        }
    }
}

void ParameterRavlenCom::ClosePort()
{
    CloseSocket(m_socket, true);
}

void ParameterRavlenCom::CloseSocket(SocketID& socketId, bool /*unused*/)
{
    m_listeningPort = 0;
    socketId.CloseSocket();
}

void ParameterRavlenCom::CloseConnection(SocketID& socketId)
{
    socketId.CloseConnection();
}

void ParameterRavlenCom::LogDebug(char const* pText, SocketID const& socketId, char const* pPortName, INT32 result,
                                  INT32 error)
{
    PARAMETER_LOG_DEBUG(m_pLogging, "%s, Socket: %d, Port: %s: Result: %d, errno: %d\n", pText, socketId.m_listenSocket,
                        pPortName, result, error);
}

void ParameterRavlenCom::LogError(char const* pText, SocketID const& socketId, char const* pPortName, INT32 result,
                                  INT32 error)
{
    PARAMETER_LOG_ERROR(m_pLogging, "%s, Socket: %d, Port: %s: Result: %d, errno: %d\n", pText, socketId.m_listenSocket,
                        pPortName, result, error);
}
