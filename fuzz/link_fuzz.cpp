// The live link in-process: any byte stream, arriving in pieces of any size, reassembled into
// packets as the reader does, and each packet served by the worker against the tuning sample.
// A transport that plays the input stands in for the socket; replies are queued, never sent.
#include <fuzzer/FuzzedDataProvider.h>

#include <algorithm>
#include <vector>

#include "fuzzstore.h"
#include "parameterravlencombase.h"
#include "parameterravlenworker.h"

namespace
{
class ScriptedTransport : public ParameterRavlenComBase
{
public:
    ScriptedTransport(IParameterLoggingAPI* pLogging, FuzzedDataProvider& input)
        : ParameterRavlenComBase(pLogging), m_input(input)
    {
    }
    ~ScriptedTransport() override { Stop(); }

    void StartCom() override {}
    void StopCom() override {}

    INT32 ReadData(UINT8* pBuffer, UINT32 size, INT32, std::atomic<bool>& rStop) override
    {
        if (0 == m_input.remaining_bytes())
        {
            rStop = true; // the stream ends: the reassembly gives up its wait
            return -1;
        }
        const size_t         piece = m_input.ConsumeIntegralInRange<size_t>(1, 300);
        std::vector<uint8_t> bytes = m_input.ConsumeBytes<uint8_t>(std::min<size_t>(piece, size));
        std::copy(bytes.begin(), bytes.end(), pBuffer);
        return static_cast<INT32>(bytes.size());
    }

    INT32 WriteData(UINT8*, UINT32 size) override { return static_cast<INT32>(size); }

private:
    FuzzedDataProvider& m_input;
};
} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    FuzzedDataProvider    input(data, size);
    TuningSetManager&     manager = fuzzstore::SampleManager();
    ScriptedTransport     transport(&manager, input);
    ParameterRavlenWorker worker(&manager);
    std::atomic<bool>     stop{false};
    // Room for the longest packet and the zero byte that the worker expects behind every packet.
    std::vector<UINT8> frame(ParameterRavlenComBase::MaxPacketSize + 1);
    for (int packet = 0; packet < 32; ++packet)
    {
        const INT32 length = transport.ReceiveRavlenRequest(frame.data(), ParameterRavlenComBase::MaxPacketSize,
                                                            ParameterRavlenComBase::ReaderMaxCommand, -1, stop);
        if (length <= 0)
        {
            break;
        }
        // As the reader does: a packet of the greatest length is passed over.
        if (static_cast<UINT32>(length) < ParameterRavlenComBase::MaxPacketSize)
        {
            frame[length] = 0;
            worker.Dispatch(frame.data(), static_cast<UINT32>(length));
        }
    }
    return 0;
}
