// ParameterRavlenCom: the socket transport of the live tuning link. One listening socket on the
// device and at most one client at a time, accepted lazily from inside ReadData.
#ifndef PARAMETERRAVLENCOM_H
#define PARAMETERRAVLENCOM_H

#include <netinet/in.h>
#include <sys/un.h>

#include <atomic>
#include <mutex>

#include "parameterravlencombase.h"
#include "pdlibvark_export.h"

/// Listens on TCP port 20803 of every interface (33127 when UseInternalPort is set), or on the
/// abstract local socket "\0Ravlen8167" when no internet socket can be made; a taken port moves
/// the bind up, at most 64 ports.
class ParameterRavlenCom : public ParameterRavlenComBase
{
public:
    enum AddrType
    {
        AddrTypeInet = 0,
        AddrTypeUnix = 1,
    };

    static constexpr UINT16 ExternalPort     = 20803;
    static constexpr UINT16 InternalPort     = 33127;
    static constexpr UINT16 BindAttempts     = 64;
    static constexpr int    Backlog          = 5;
    static constexpr int    PollMilliseconds = 100;

    /// One address to bind.
    struct SocketAddress
    {
        union {
            sockaddr_in inet;
            sockaddr_un local;
        } m_address;
        AddrType m_type;
        UINT32   m_length;        ///< address length for bind
        UINT16   m_port;          ///< host byte order
        CHAR     m_portName[108]; ///< the port as text, for logs

        /// The address of `port`: an internet address of every interface, or the abstract
        /// local name formed from the port.
        void SetupSocket(AddrType type, UINT16 port);
    };

    /// The endpoint: the listening socket and the one connection.
    struct SocketID
    {
        SocketAddress         m_local;
        SocketAddress         m_remote;
        INT32                 m_listenSocket = -1;
        std::atomic<INT32>    m_connection{-1}; ///< the reader opens and closes it, the writer sends on it
        IParameterLoggingAPI* m_pLogging = nullptr;
        std::mutex            m_connectionLock; ///< a send and the close of its descriptor exclude each other

        INT32 ReadData(UINT8* pBuffer, UINT32 size, INT32 timeoutSeconds, std::atomic<bool>& rStop);
        INT32 WriteData(UINT8* pBuffer, UINT32 size, std::atomic<bool>& rStop);
        void  CloseSocket();
        void  CloseConnection();
    };

    /// Chooses the internal port; nothing in the library sets it, the embedding program may.
    PDLIBVARK_API static bool UseInternalPort;

    explicit ParameterRavlenCom(IParameterLoggingAPI* pLogging);
    /// Stops the threads and closes the socket, if that has not happened yet.
    ~ParameterRavlenCom() override;

    void  StartCom() override;
    void  StopCom() override;
    INT32 ReadData(UINT8* pBuffer, UINT32 size, INT32 timeoutSeconds, std::atomic<bool>& rStop) override;
    INT32 WriteData(UINT8* pBuffer, UINT32 size) override;

    /// The platform's socket start-up; none is needed here.
    bool InitSockets() { return true; }
    /// Opens and binds the listening socket unless it is open; returns the port in use.
    UINT16 OpenPort();
    void   ClosePort();
    void   CloseSocket(SocketID& socketId, bool unused);
    void   CloseConnection(SocketID& socketId);

    /// The internet port the socket listens on; 0 while it listens on none (closed, no port
    /// bound, or on the local fall-back).
    UINT16 GetListeningPort() const { return m_listeningPort; }

    void LogDebug(char const* pText, SocketID const& socketId, char const* pPortName, INT32 result, INT32 error);
    void LogError(char const* pText, SocketID const& socketId, char const* pPortName, INT32 result, INT32 error);

private:
    /// Both addresses of `type` on `port`.
    void SetupAddresses(AddrType type, UINT16 port);
    /// Binds from the first port upward; the port in use.
    UINT16 BindUpward();

    bool                m_needsInit = true;
    SocketID            m_socket;
    std::atomic<UINT16> m_listeningPort{0};
};

#endif // PARAMETERRAVLENCOM_H
