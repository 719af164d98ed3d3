// The library's exported face, used as a host uses it: entry, vendor tags, capabilities, the
// life of camera instances and the five functions of an instance's table.
#include <dlfcn.h>

#include <cstdio>
#include <cstring>
#include <string>

#include <gtest/gtest.h>

#include "PdafLibrary.h"
#include "hostlibrary.h"
#include "logcapture.h"
#include "pdtestsetup.h"

namespace
{
using pdtest::CloseCamera;
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
    void SetUp() override { ASSERT_NE(nullptr, Library().entry); }

    void TearDown() override { pdtest::CloseAllCameras(); }

    KELPDLib* Open(UINT32 cameraId)
    {
        KELPDLib* pHandle = nullptr;
        EXPECT_EQ(KelResultSuccess, OpenCamera(&pHandle, 1U, cameraId));
        return pHandle;
    }

    /// Whether exactly one line carries this message, whatever its prefix.
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
    ASSERT_NE(nullptr, Library().getDefocus);
    PdLibInputData_t  input  = {}; // an image width of 0 is refused first
    PdLibOutputData_t output = {7, 7, 7, 7};
    EXPECT_EQ(-40, Library().getDefocus(&input, &output));
    EXPECT_EQ(-1, output.DefocusConfidence);
    for (const char* hidden : {"PDLibSetNodeInterface", "_Z21PDLibSetNodeInterfaceP21KelAlgorithmInterface",
                               "_Z20calc_defocus_formulaP16PdLibInputData_tt", "g_pPDLibData"})
    {
        EXPECT_EQ(nullptr, dlsym(Library().handle, hidden)) << hidden;
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
    EXPECT_EQ(0x1234U, caps.algorithmCapsMask);
}

/// What the host's pGetVendorTagBase received.
int                  g_tagBaseCalls = 0;
KelVendorTagBaseInfo g_tagBaseInfo  = {};
std::string          g_tagBaseComponent;

KelResult RecordTagBaseCall(KelVendorTagBaseInfo* pInfo)
{
    ++g_tagBaseCalls;
    g_tagBaseInfo        = *pInfo;
    g_tagBaseComponent   = (nullptr == pInfo->pComponentName) ? "" : pInfo->pComponentName;
    pInfo->vendorTagBase = 0x8000;
    return KelResultEFailed; // dropped by the library
}

TEST_F(InterfaceTest, SettingTheNodeInterfaceAsksForTheTagBaseOnce)
{
    KelPDLibraryCallbacks callbacks = {sizeof(callbacks), 0, 0, nullptr, nullptr, nullptr, nullptr};
    Library().entry(&callbacks);
    ASSERT_NE(nullptr, callbacks.pfnSetAlgoInterface);
    KelAlgorithmInterface services = {sizeof(services), 1, 0, nullptr, nullptr, &RecordTagBaseCall, nullptr};
    callbacks.pfnSetAlgoInterface(&services);
    EXPECT_EQ(1, g_tagBaseCalls);
    EXPECT_EQ(24U, g_tagBaseInfo.size);
    EXPECT_EQ(0U, g_tagBaseInfo.vendorTagBase);
    EXPECT_EQ("com.varkstatic.stats.pdlib", g_tagBaseComponent);
    EXPECT_EQ(nullptr, g_tagBaseInfo.pTagName);
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
            CloseCamera(*pHandle, 1U, open.cameraId);
        }
        else
        {
            EXPECT_EQ(Untouched, pHandle);
            EXPECT_EQ(1U, m_log.Count("() PDLib:Not actual open ...ignore:pOverridePDLibOpen "));
        }
    }
}

TEST_F(InterfaceTest, ASecondOpenGivesTheSameRecord)
{
    KELPDLib* pHandle = Open(3);
    EXPECT_TRUE(LoggedOnce("CreatePDLib static create: overrideCameraOpen is 1"));
    EXPECT_EQ(1U,
              m_log.Count("() PDLibData[camId:3] first time creation:" + PointerText(pHandle) + ", pPDCoreLibrary:"));

    EXPECT_EQ(pHandle, Open(3));
    EXPECT_TRUE(LoggedOnce("PDLibData[camID:3] has been created before " + PointerText(pHandle)));
    EXPECT_EQ(1U, m_log.Count("first time creation"));
}

TEST_F(InterfaceTest, LaterListEntriesOverwriteEarlierOnes)
{
    UINT32          one = 1, zero = 0;
    StatsCameraInfo three = {StatsAlgoRoleMaster, 3}, five = {StatsAlgoRoleSlave, 5};
    // The camera information is taken without a size test; other entry types are passed over.
    PDLibCreateParam     params[] = {{PDLibCreateParamTypeCameraOpenIndicator, &one, 4},
                                     {PDLibCreateParamTypeCameraInfo, &three, 0},
                                     {PDLibCreateParamTypeCameraInfo, &five, 0},
                                     {PDLibCreateParamTypeLibName, &zero, 4},
                                     {PDLibCreateParamTypeSessionHandle, &zero, 4}};
    PDLibCreateParamList list     = {params, 5};
    KELPDLib*            pHandle  = nullptr;
    ASSERT_EQ(KelResultSuccess, Library().create(&pHandle, &list));
    EXPECT_TRUE(LoggedOnce("PDLibData creation: ID: 5"));

    params[1]          = {PDLibCreateParamTypeCameraOpenIndicator, &zero, 4};
    KELPDLib* pIgnored = Untouched;
    ASSERT_EQ(KelResultSuccess, Library().create(&pIgnored, &list));
    EXPECT_EQ(Untouched, pIgnored);
}

TEST_F(InterfaceTest, OnlyACloseWithIndicator1FreesTheInstance)
{
    KELPDLib*      pHandle = Open(2);
    const KELPDLib table   = *pHandle;
    CloseCamera(table, 0U, 2U);
    CloseCamera(table, 1U, std::nullopt);
    CloseCamera(table, 1U, 8U);
    CloseCamera(table, 1U, 6U); // an empty slot
    EXPECT_EQ(0U, m_log.Count("in destroy"));
    EXPECT_EQ(pHandle, Open(2));

    m_log.Clear();
    CloseCamera(table, 1U, 2U);
    EXPECT_TRUE(LoggedOnce("PDLibDestroy cameraId 2"));
    EXPECT_EQ(1U, m_log.Count("() PDLibDestroy overrideCameraClose is 1 g_pPDLibData 0x"));
    EXPECT_TRUE(LoggedOnce("PDLib pPDLibData[CamId:2] in destroy is " + PointerText(pHandle)));
    Open(2);
    EXPECT_TRUE(LoggedOnce("PDLibData creation: ID: 2"));
}

TEST_F(InterfaceTest, EmptyCloseListReturnsAtOnce)
{
    KELPDLib* pHandle = Open(1);
    m_log.Clear();
    PDLibDestroyParamList empty = {nullptr, 0};
    pHandle->PDLibDestroy(nullptr, &empty);
    EXPECT_TRUE(m_log.Lines().empty());
}

/// A frame of eight windows whose window 0 reads confidence 2047 and phase 1.5 pixels, over a
/// calibration whose defocus is the phase in 1/16 pixel plus 10.
struct HostFrame
{
    HostFrame() { buffer.SetWindow(0, 2047, 1.5F); }

    PDAFDCCCalibrationData             calibration = pdtest::FlatCalibration(1.0F / 1024.0F, 10.7F);
    std::unique_ptr<PDLibCreateParams> pParams     = pdtest::MakeCreateParams(pdtest::EngineConfig(), &calibration);
    pdtest::StatBuffer                 buffer{PDLibSensorPDStatsRaw10Conf11BitPd11Bit, 0x80};
    PDLibInputs                        inputs   = pdtest::MakeInputs(buffer, {0.0F, 0.0F, 0.5F, 0.5F}, 1.0F);
    std::unique_ptr<PDLibOutputs>      pOutputs = pdtest::MakePatternedOutputs();
};

TEST_F(InterfaceTest, FramesOfAnInstanceOutliveIgnoredAndRepeatedOpens)
{
    HostFrame frame;
    KELPDLib* pHandle = Open(4);
    ASSERT_EQ(KelResultSuccess, pHandle->PDLibInitialize(pHandle, frame.pParams.get()));
    PDLibConfigParams config = {};
    EXPECT_EQ(KelResultSuccess, pHandle->PDLibConfigure(pHandle, &config));
    m_log.Clear();
    ASSERT_EQ(KelResultSuccess, pHandle->PDLibProcess(pHandle, &frame.inputs, frame.pOutputs.get()));
    PDLibOutputData& output = frame.pOutputs->libOutput;
    EXPECT_EQ(8U, output.horizontalWindowCount);
    EXPECT_EQ(34, output.defocus[0].defocus);
    EXPECT_EQ(1023U, output.defocus[0].confidence);
    EXPECT_EQ(1.5F, output.defocus[0].phaseDiff);
    EXPECT_TRUE(LoggedOnce("result = 0, buffer " + PointerText(frame.buffer.PDBuffer()) +
                           ", defocus 34 conf 1023 pd 1.500000 processingResult 2"));

    KELPDLib* pIgnored = Untouched;
    OpenCamera(&pIgnored, 0U, 4U);
    ASSERT_EQ(pHandle, Open(4));
    output.defocus[0] = {};
    ASSERT_EQ(KelResultSuccess, pHandle->PDLibProcess(pHandle, &frame.inputs, frame.pOutputs.get()));
    EXPECT_EQ(34, output.defocus[0].defocus);
}

TEST_F(InterfaceTest, TableFunctionsRefuseNullArguments)
{
    HostFrame         frame;
    KELPDLib*         pHandle    = Open(5);
    PDLibInternalData engineless = *reinterpret_cast<PDLibInternalData*>(pHandle);
    engineless.pPDCoreLibrary    = nullptr;
    PDLibConfigParams config     = {};
    m_log.Clear();

    EXPECT_EQ(KelResultEInvalidPointer, pHandle->PDLibInitialize(nullptr, frame.pParams.get()));
    EXPECT_EQ(KelResultEInvalidPointer, pHandle->PDLibInitialize(pHandle, nullptr));
    EXPECT_EQ(KelResultEInvalidPointer, pHandle->PDLibInitialize(&engineless.algoOps, frame.pParams.get()));
    EXPECT_EQ(KelResultEInvalidPointer, pHandle->PDLibConfigure(nullptr, &config));
    EXPECT_EQ(KelResultEInvalidPointer, pHandle->PDLibConfigure(pHandle, nullptr));
    EXPECT_EQ(KelResultEInvalidPointer, pHandle->PDLibConfigure(&engineless.algoOps, &config));
    PDLibGetParamOutput paramOutput = {nullptr, 0, 0};
    PDLibGetParams      getParams   = {&paramOutput, PDLibGetParamHWConfig};
    EXPECT_EQ(KelResultEFailed, pHandle->PDLibGetParam(nullptr, &getParams));
    EXPECT_EQ(KelResultEFailed, pHandle->PDLibGetParam(pHandle, nullptr));
    EXPECT_TRUE(m_log.Lines().empty()) << "these refusals are silent";

    PDLibInputs*  pInputs  = &frame.inputs;
    PDLibOutputs* pOutputs = frame.pOutputs.get();
    EXPECT_EQ(KelResultEInvalidPointer, pHandle->PDLibProcess(nullptr, pInputs, pOutputs));
    EXPECT_EQ(KelResultEInvalidPointer, pHandle->PDLibProcess(pHandle, nullptr, pOutputs));
    EXPECT_EQ(KelResultEInvalidPointer, pHandle->PDLibProcess(pHandle, pInputs, nullptr));
    EXPECT_TRUE(LoggedOnce("Has Null Pointer. pPDLib = (nil), pInput = " + PointerText(pInputs) +
                           ", pOutput = " + PointerText(pOutputs)));
    EXPECT_EQ(3U, m_log.Count("() Has Null Pointer. "));

    m_log.Clear();
    pOutputs->libOutput.defocus[0]       = {-6, 7, 0.25F, {0, 0}};
    pOutputs->libOutput.processingResult = PDLibResultCenter;
    EXPECT_EQ(KelResultEInvalidPointer, pHandle->PDLibProcess(&engineless.algoOps, pInputs, pOutputs));
    EXPECT_TRUE(LoggedOnce("result = 5, buffer " + PointerText(frame.buffer.PDBuffer()) +
                           ", defocus -6 conf 7 pd 0.250000 processingResult 1"));
}

TEST_F(InterfaceTest, GetParamZeroesOnlyTheFirst32BitsForTheHardwareConfiguration)
{
    KELPDLib*     pHandle = Open(6);
    unsigned char bytes[8];
    std::memset(bytes, 0xFF, sizeof(bytes));
    PDLibGetParamOutput output = {bytes, 0, 77};
    PDLibGetParams      params = {&output, PDLibGetParamSWInfo};
    EXPECT_EQ(KelResultSuccess, pHandle->PDLibGetParam(pHandle, &params));
    EXPECT_EQ(0xFF, bytes[0]);
    PDLibGetParams withoutOutput = {nullptr, PDLibGetParamSWInfo}; // other types read nothing
    EXPECT_EQ(KelResultSuccess, pHandle->PDLibGetParam(pHandle, &withoutOutput));

    params.type = PDLibGetParamHWConfig;
    EXPECT_EQ(KelResultSuccess, pHandle->PDLibGetParam(pHandle, &params));
    const unsigned char expected[8] = {0, 0, 0, 0, 0xFF, 0xFF, 0xFF, 0xFF};
    EXPECT_EQ(0, std::memcmp(expected, bytes, sizeof(bytes)));
    EXPECT_EQ(0U, output.sizeOfGetParamOutput);
    EXPECT_EQ(77U, output.sizeOfWrittenGetParamOutput);
}
} // namespace
