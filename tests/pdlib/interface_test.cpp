// The library's exported face, used as a host uses it: entry, vendor tags, capabilities, the
// life of camera instances and the five functions of an instance's table.
#include <cstdio>
#include <cstring>
#include <string>

#include <gtest/gtest.h>

#include "hostlibrary.h"
#include "logcapture.h"
#include "pdtestsetup.h"

namespace
{
using pdtest::CloseCamera;
using pdtest::HostCamera;
using pdtest::Library;
using pdtest::OpenCamera;

std::string PointerText(const void* pPointer)
{
    char text[32];
    std::snprintf(text, sizeof(text), "%p", pPointer);
    return text;
}

KELPDLib* const Untouched = reinterpret_cast<KELPDLib*>(0x5EED);

class InterfaceTest : public testing::Test
{
protected:
    void SetUp() override
    {
        ASSERT_NE(nullptr, Library().entry);
    }

    /// No instance outlives its test: every slot is closed for real. The table is copied
    /// first, as closing camera 0 frees the record it came from.
    void TearDown() override
    {
        KELPDLib* pAny = nullptr;
        ASSERT_EQ(KelResultSuccess, OpenCamera(&pAny, 1U, 0U));
        KELPDLib table = *pAny;
        for (UINT32 cameraId = 0; cameraId < MaxCameras; ++cameraId)
        {
            CloseCamera(&table, 1U, cameraId);
        }
    }

    /// Whether the message was logged exactly once, whatever the prefix.
    bool LoggedOnce(const std::string& message) const
    {
        size_t count = 0;
        for (const testsupport::CapturedLine& line : m_log.Lines())
        {
            count += (testsupport::LogCapture::MessageOf(line.text) == message) ? 1 : 0;
        }
        return 1 == count;
    }

    testsupport::LogCapture m_log;
};

TEST_F(InterfaceTest, ExportsTheFiveEntryPointsOnly)
{
    EXPECT_NE(nullptr, Library().create);
    EXPECT_NE(nullptr, Library().queryVendorTag);
    EXPECT_NE(nullptr, Library().getCapabilities);
    EXPECT_NE(nullptr, Library().getDefocus);
    for (const char* hidden : {"PDLibSetNodeInterface", "_Z21PDLibSetNodeInterfaceP21KelAlgorithmInterface",
                               "_Z20calc_defocus_formulaP16PdLibInputData_tt", "g_pPDLibData", "g_KelAlgoInterface"})
    {
        EXPECT_EQ(nullptr, Library().Find(hidden)) << hidden;
    }
}

TEST_F(InterfaceTest, EntryFillsTheCallbacksFromSize48On)
{
    KelPDLibraryCallbacks callbacks = {47, 7, 9, nullptr, nullptr, nullptr, nullptr};
    Library().entry(&callbacks);
    EXPECT_EQ(nullptr, callbacks.pfnGetCapabilities);
    EXPECT_EQ(nullptr, callbacks.pfnQueryVendorTag);
    EXPECT_EQ(nullptr, callbacks.pfnCreate);
    EXPECT_EQ(nullptr, callbacks.pfnSetAlgoInterface);
    EXPECT_TRUE(LoggedOnce("pCallBacks is smaller than expected"));

    callbacks.size = 48;
    Library().entry(&callbacks);
    EXPECT_EQ(Library().getCapabilities, callbacks.pfnGetCapabilities);
    EXPECT_EQ(Library().queryVendorTag, callbacks.pfnQueryVendorTag);
    EXPECT_EQ(Library().create, callbacks.pfnCreate);
    EXPECT_NE(nullptr, callbacks.pfnSetAlgoInterface);
    EXPECT_EQ(48U, callbacks.size);
    EXPECT_EQ(7U, callbacks.majorVersion);
    EXPECT_EQ(9U, callbacks.minorVersion);

    Library().entry(nullptr);
    EXPECT_TRUE(LoggedOnce("Invalid argument: pCallBacks is NULL"));
}

TEST_F(InterfaceTest, VendorTagQueryNeedsARecordOf16Bytes)
{
    EXPECT_EQ(KelResultEInvalidPointer, Library().queryVendorTag(nullptr));
    EXPECT_TRUE(LoggedOnce("Invalid argument: pQueryVendorTag is NULL"));

    KelQueryVendorTag query = {15, nullptr};
    EXPECT_EQ(KelResultEFailed, Library().queryVendorTag(&query));
    EXPECT_EQ(nullptr, query.pVendorTagInfo);
    EXPECT_TRUE(LoggedOnce("pQueryVendorTag is smaller than expected"));

    query.size = 16;
    ASSERT_EQ(KelResultSuccess, Library().queryVendorTag(&query));
    ASSERT_NE(nullptr, query.pVendorTagInfo);
    ASSERT_EQ(1U, query.pVendorTagInfo->numSections);
    const KelVendorTagSectionData& section = query.pVendorTagInfo->pVendorTagDataArray[0];
    EXPECT_STREQ("com.varkstatic.stats.pdlib", section.pVendorTagSectionName);
    EXPECT_EQ(0U, section.firstVendorTag);
    EXPECT_EQ(KelTagSectionVisibleToAll, section.visbility);
    ASSERT_EQ(2U, section.numTags);
    EXPECT_STREQ("PDLibTag1", section.pVendorTagaData[0].pVendorTagName);
    EXPECT_EQ(4U, section.pVendorTagaData[0].vendorTagType);
    EXPECT_EQ(1U, section.pVendorTagaData[0].numUnits);
    EXPECT_STREQ("PDLibTag2", section.pVendorTagaData[1].pVendorTagName);
    EXPECT_EQ(1U, section.pVendorTagaData[1].vendorTagType);
    EXPECT_EQ(1U, section.pVendorTagaData[1].numUnits);
}

TEST_F(InterfaceTest, CapabilitiesTouchNothing)
{
    EXPECT_EQ(KelResultSuccess, Library().getCapabilities(nullptr));
    KelAlgorithmCapsInfo caps = {8, 0x1234};
    EXPECT_EQ(KelResultSuccess, Library().getCapabilities(&caps));
    EXPECT_EQ(8U, caps.size);
    EXPECT_EQ(0x1234U, caps.algorithmCapsMask);
}

struct TagBaseCall
{
    int                  count = 0;
    KelVendorTagBaseInfo info  = {};
    std::string          componentName;
};
TagBaseCall g_tagBaseCall;

KelResult RecordTagBaseCall(KelVendorTagBaseInfo* pInfo)
{
    ++g_tagBaseCall.count;
    g_tagBaseCall.info          = *pInfo;
    g_tagBaseCall.componentName = (nullptr == pInfo->pComponentName) ? "" : pInfo->pComponentName;
    pInfo->vendorTagBase        = 0x8000;
    return KelResultEFailed;
}

TEST_F(InterfaceTest, SettingTheNodeInterfaceAsksForTheTagBaseOnce)
{
    KelPDLibraryCallbacks callbacks = {sizeof(callbacks), 0, 0, nullptr, nullptr, nullptr, nullptr};
    Library().entry(&callbacks);
    ASSERT_NE(nullptr, callbacks.pfnSetAlgoInterface);
    KelAlgorithmInterface services = {sizeof(services), 1, 0, nullptr, nullptr, &RecordTagBaseCall, nullptr};
    g_tagBaseCall                  = {};
    callbacks.pfnSetAlgoInterface(&services);
    EXPECT_EQ(1, g_tagBaseCall.count);
    EXPECT_EQ(24U, g_tagBaseCall.info.size);
    EXPECT_EQ(0U, g_tagBaseCall.info.vendorTagBase);
    EXPECT_EQ("com.varkstatic.stats.pdlib", g_tagBaseCall.componentName);
    EXPECT_EQ(nullptr, g_tagBaseCall.info.pTagName);
}

struct OpenCase
{
    const char*           what;
    std::optional<UINT32> indicator;
    UINT32                indicatorSize;
    std::optional<UINT32> cameraId;
    bool                  served;
};

TEST_F(InterfaceTest, OnlyAnIndicatorOf1WithACameraIdBelow8Opens)
{
    const OpenCase cases[] = {
        {"indicator 1, camera 0", 1U, 4, 0U, true},
        {"indicator 1, camera 7", 1U, 4, 7U, true},
        {"indicator of 3 bytes", 1U, 3, 0U, false},
        {"indicator 0", 0U, 4, 0U, false},
        {"indicator 2", 2U, 4, 0U, false},
        {"no indicator", std::nullopt, 4, 0U, false},
        {"no camera information", 1U, 4, std::nullopt, false},
        {"camera 8", 1U, 4, 8U, false},
    };
    for (const OpenCase& open : cases)
    {
        SCOPED_TRACE(open.what);
        m_log.Clear();
        KELPDLib* pHandle = Untouched;
        EXPECT_EQ(KelResultSuccess, OpenCamera(&pHandle, open.indicator, open.cameraId, open.indicatorSize));
        if (open.served)
        {
            EXPECT_NE(Untouched, pHandle);
            EXPECT_TRUE(LoggedOnce("PDLibData creation: ID: " + std::to_string(*open.cameraId)));
            CloseCamera(pHandle, 1U, open.cameraId);
        }
        else
        {
            EXPECT_EQ(Untouched, pHandle);
            EXPECT_EQ(1U, m_log.Count("() PDLib:Not actual open ...ignore:pOverridePDLibOpen "));
        }
    }
}

TEST_F(InterfaceTest, OpenLogsTheIndicatorAndTheNewRecord)
{
    KELPDLib* pHandle = nullptr;
    ASSERT_EQ(KelResultSuccess, OpenCamera(&pHandle, 1U, 3U));
    EXPECT_TRUE(LoggedOnce("CreatePDLib static create: overrideCameraOpen is 1"));
    EXPECT_EQ(1U, m_log.Count("() PDLibData[camId:3] first time creation:" + PointerText(pHandle) + ", pPDCoreLibrary:"));

    KELPDLib* pAgain = nullptr;
    ASSERT_EQ(KelResultSuccess, OpenCamera(&pAgain, 1U, 3U));
    EXPECT_EQ(pHandle, pAgain);
    EXPECT_TRUE(LoggedOnce("PDLibData[camID:3] has been created before " + PointerText(pHandle)));
    EXPECT_EQ(1U, m_log.Count("first time creation"));
}

TEST_F(InterfaceTest, LaterListEntriesOverwriteEarlierOnes)
{
    UINT32 one = 1, zero = 0;
    StatsCameraInfo three = {StatsAlgoRoleMaster, 3}, five = {StatsAlgoRoleSlave, 5};
    // The camera information is taken without a size test; other entry types are passed over.
    PDLibCreateParam params[] = {{PDLibCreateParamTypeCameraOpenIndicator, &one, 4},
                                 {PDLibCreateParamTypeCameraInfo, &three, 0},
                                 {PDLibCreateParamTypeCameraInfo, &five, 0},
                                 {PDLibCreateParamTypeLibName, &zero, 4},
                                 {PDLibCreateParamTypeSessionHandle, &zero, 4}};
    PDLibCreateParamList list = {params, 5};
    KELPDLib* pHandle = nullptr;
    ASSERT_EQ(KelResultSuccess, Library().create(&pHandle, &list));
    EXPECT_TRUE(LoggedOnce("PDLibData creation: ID: 5"));

    params[1] = {PDLibCreateParamTypeCameraOpenIndicator, &zero, 4};
    KELPDLib* pIgnored = Untouched;
    ASSERT_EQ(KelResultSuccess, Library().create(&pIgnored, &list));
    EXPECT_EQ(Untouched, pIgnored);
}

TEST_F(InterfaceTest, OnlyACloseWithIndicator1FreesTheInstance)
{
    KELPDLib* pHandle = nullptr;
    ASSERT_EQ(KelResultSuccess, OpenCamera(&pHandle, 1U, 2U));
    CloseCamera(pHandle, 0U, 2U);
    CloseCamera(pHandle, 1U, std::nullopt);
    CloseCamera(pHandle, 1U, 8U);
    CloseCamera(pHandle, 1U, 6U); // an empty slot
    EXPECT_EQ(0U, m_log.Count("in destroy"));

    KELPDLib* pAgain = nullptr;
    ASSERT_EQ(KelResultSuccess, OpenCamera(&pAgain, 1U, 2U));
    EXPECT_EQ(pHandle, pAgain);

    m_log.Clear();
    CloseCamera(pHandle, 1U, 2U);
    EXPECT_TRUE(LoggedOnce("PDLibDestroy cameraId 2"));
    EXPECT_EQ(1U, m_log.Count("() PDLibDestroy overrideCameraClose is 1 g_pPDLibData 0x"));
    EXPECT_TRUE(LoggedOnce("PDLib pPDLibData[CamId:2] in destroy is " + PointerText(pHandle)));

    ASSERT_EQ(KelResultSuccess, OpenCamera(&pAgain, 1U, 2U));
    EXPECT_TRUE(LoggedOnce("PDLibData creation: ID: 2"));
}

TEST_F(InterfaceTest, EmptyCloseListReturnsAtOnce)
{
    HostCamera camera(1);
    m_log.Clear();
    PDLibDestroyParamList empty = {nullptr, 0};
    camera.Handle()->PDLibDestroy(nullptr, &empty);
    EXPECT_TRUE(m_log.Lines().empty());
}

/// A frame of eight windows whose window 0 reads confidence 2047 and phase 1.5 pixels, over a
/// calibration whose defocus is the phase in 1/16 pixel plus 10.
class HostFrame
{
public:
    HostFrame() : m_buffer(PDLibSensorPDStatsRaw10Conf11BitPd11Bit, 0x80)
    {
        m_pParams = pdtest::MakeCreateParams(pdtest::EngineConfig(), &m_calibration);
        m_buffer.SetWindow(0, 2047, 1.5F);
        m_inputs = pdtest::MakeInputs(m_buffer, {0.0F, 0.0F, 0.5F, 0.5F}, 1.0F);
    }

    PDAFDCCCalibrationData             m_calibration = pdtest::FlatCalibration(1.0F / 1024.0F, 10.7F);
    std::unique_ptr<PDLibCreateParams> m_pParams;
    pdtest::StatBuffer                 m_buffer;
    PDLibInputs                        m_inputs;
    std::unique_ptr<PDLibOutputs>      m_pOutputs = pdtest::MakePatternedOutputs();
};

TEST_F(InterfaceTest, HostFrameFromOpenToClose)
{
    HostCamera camera(4);
    HostFrame frame;
    KELPDLib* pHandle = camera.Handle();
    ASSERT_EQ(KelResultSuccess, pHandle->PDLibInitialize(pHandle, frame.m_pParams.get()));
    PDLibConfigParams config = {};
    EXPECT_EQ(KelResultSuccess, pHandle->PDLibConfigure(pHandle, &config));
    m_log.Clear();
    ASSERT_EQ(KelResultSuccess, pHandle->PDLibProcess(pHandle, &frame.m_inputs, frame.m_pOutputs.get()));
    const PDLibOutputData& output = frame.m_pOutputs->libOutput;
    EXPECT_EQ(8U, output.horizontalWindowCount);
    EXPECT_EQ(34, output.defocus[0].defocus);
    EXPECT_EQ(1023U, output.defocus[0].confidence);
    EXPECT_EQ(1.5F, output.defocus[0].phaseDiff);
    EXPECT_TRUE(LoggedOnce("result = 0, buffer " + PointerText(frame.m_buffer.PDBuffer()) +
                           ", defocus 34 conf 1023 pd 1.500000 processingResult " +
                           std::to_string(static_cast<int>(output.processingResult))));
}

TEST_F(InterfaceTest, InstanceAndItsStateOutliveIgnoredAndRepeatedOpens)
{
    HostCamera camera(0);
    HostFrame frame;
    KELPDLib* pHandle = camera.Handle();
    ASSERT_EQ(KelResultSuccess, pHandle->PDLibInitialize(pHandle, frame.m_pParams.get()));
    KELPDLib* pIgnored = Untouched;
    OpenCamera(&pIgnored, 0U, 0U);
    KELPDLib* pAgain = nullptr;
    OpenCamera(&pAgain, 1U, 0U);
    ASSERT_EQ(pHandle, pAgain);
    ASSERT_EQ(KelResultSuccess, pAgain->PDLibProcess(pAgain, &frame.m_inputs, frame.m_pOutputs.get()));
    EXPECT_EQ(34, frame.m_pOutputs->libOutput.defocus[0].defocus);
}

TEST_F(InterfaceTest, TableFunctionsRefuseNullArguments)
{
    HostCamera camera(5);
    HostFrame frame;
    KELPDLib* pHandle = camera.Handle();
    PDLibInternalData engineless = *reinterpret_cast<PDLibInternalData*>(pHandle);
    engineless.pPDCoreLibrary    = nullptr;
    PDLibConfigParams config     = {};
    m_log.Clear();

    EXPECT_EQ(KelResultEInvalidPointer, pHandle->PDLibInitialize(nullptr, frame.m_pParams.get()));
    EXPECT_EQ(KelResultEInvalidPointer, pHandle->PDLibInitialize(pHandle, nullptr));
    EXPECT_EQ(KelResultEInvalidPointer, pHandle->PDLibInitialize(&engineless.algoOps, frame.m_pParams.get()));
    EXPECT_EQ(KelResultEInvalidPointer, pHandle->PDLibConfigure(nullptr, &config));
    EXPECT_EQ(KelResultEInvalidPointer, pHandle->PDLibConfigure(pHandle, nullptr));
    EXPECT_EQ(KelResultEInvalidPointer, pHandle->PDLibConfigure(&engineless.algoOps, &config));
    PDLibGetParamOutput paramOutput = {nullptr, 0, 0};
    PDLibGetParams      getParams   = {&paramOutput, PDLibGetParamHWConfig};
    EXPECT_EQ(KelResultEFailed, pHandle->PDLibGetParam(nullptr, &getParams));
    EXPECT_EQ(KelResultEFailed, pHandle->PDLibGetParam(pHandle, nullptr));
    EXPECT_TRUE(m_log.Lines().empty()) << "these refusals are silent";

    PDLibInputs* pInputs   = &frame.m_inputs;
    PDLibOutputs* pOutputs = frame.m_pOutputs.get();
    EXPECT_EQ(KelResultEInvalidPointer, pHandle->PDLibProcess(nullptr, pInputs, pOutputs));
    EXPECT_EQ(KelResultEInvalidPointer, pHandle->PDLibProcess(pHandle, nullptr, pOutputs));
    EXPECT_EQ(KelResultEInvalidPointer, pHandle->PDLibProcess(pHandle, pInputs, nullptr));
    EXPECT_TRUE(LoggedOnce("Has Null Pointer. pPDLib = (nil), pInput = " + PointerText(pInputs) +
                           ", pOutput = " + PointerText(pOutputs)));
    EXPECT_EQ(3U, m_log.Count("() Has Null Pointer. "));

    m_log.Clear();
    pOutputs->libOutput.defocus[0] = {-6, 7, 0.25F, {0, 0}};
    pOutputs->libOutput.processingResult = PDLibResultCenter;
    EXPECT_EQ(KelResultEInvalidPointer, pHandle->PDLibProcess(&engineless.algoOps, pInputs, pOutputs));
    EXPECT_TRUE(LoggedOnce("result = 5, buffer " + PointerText(frame.m_buffer.PDBuffer()) +
                           ", defocus -6 conf 7 pd 0.250000 processingResult 1"));
}

TEST_F(InterfaceTest, GetParamZeroesOnlyTheFirst32BitsForTheHardwareConfiguration)
{
    HostCamera camera(6);
    KELPDLib* pHandle = camera.Handle();
    unsigned char bytes[8];
    std::memset(bytes, 0xFF, sizeof(bytes));
    PDLibGetParamOutput output = {bytes, 0, 77};
    PDLibGetParams      params = {&output, PDLibGetParamSWInfo};
    EXPECT_EQ(KelResultSuccess, pHandle->PDLibGetParam(pHandle, &params));
    EXPECT_EQ(0xFF, bytes[0]);

    params.type = PDLibGetParamHWConfig;
    EXPECT_EQ(KelResultSuccess, pHandle->PDLibGetParam(pHandle, &params));
    const unsigned char expected[8] = {0, 0, 0, 0, 0xFF, 0xFF, 0xFF, 0xFF};
    EXPECT_EQ(0, std::memcmp(expected, bytes, sizeof(bytes)));
    EXPECT_EQ(0U, output.sizeOfGetParamOutput);
    EXPECT_EQ(77U, output.sizeOfWrittenGetParamOutput);
}
} // namespace
