#include "cataloguedata.h"

#include <vector>

namespace cataloguedata
{
namespace
{
using tuningfile::DataBuilder;

DataBuilder AecTrigger(float gainStart, float gainEnd)
{
    DataBuilder trigger;
    trigger.F32(0.0f).F32(100.0f).F32(gainStart).F32(gainEnd);
    return trigger;
}

/// `filterTrigger` or `lcrFilterTrigger`: three filter sets in line.
DataBuilder FilterTrigger(int32_t base)
{
    DataBuilder trigger;
    for (int32_t set = 0; set < 3; ++set)
    {
        trigger.Record(AecTrigger(0.0f, static_cast<float>(base + set)));
        trigger.I32(1).I32(2).I32(base + 10 + set).I32(64);
    }
    return trigger;
}

DataBuilder PreProcess(int32_t axis)
{
    DataBuilder pre;
    pre.Enum(1);                               // sparseProcessingMode
    pre.Enum(2).I32(1000 + axis);              // HDR
    pre.I32(5).I32(6).I32(1002 + axis);        // boxFilterLength, antiAliasFilterThreshold, saturationThreshold
    pre.Record(FilterTrigger(10 + axis));      // filterTrigger
    pre.Record(FilterTrigger(30 + axis));      // lcrFilterTrigger
    pre.Enum(1).Enum(2).Enum(0).I32(4).I32(1); // lcrChannel .. lcrChannelSeparated
    return pre;
}

DataBuilder Correlation(int32_t axis)
{
    DataBuilder correlation;
    correlation.F32(0.5f).F32(0.75f).F32(static_cast<float>(axis));
    correlation.I32(-32).I32(32).I32(-16).I32(16);
    return correlation;
}

DataBuilder PostProcess(int32_t axis)
{
    DataBuilder post;
    post.F32(0.1f).F32(0.2f).F32(0.3f);
    for (int32_t set = 0; set < 3; ++set)
    {
        post.Record(AecTrigger(0.0f, static_cast<float>(50 + set + axis))).F32(0.5f).F32(0.25f);
    }
    post.I32(1).I32(3 + axis);
    return post;
}

DataBuilder ProcessLevel(uint32_t mode)
{
    DataBuilder level;
    level.Enum(mode).I32(2).I32(3);
    return level;
}

DataBuilder HardwarePattern(int32_t pattern)
{
    DataBuilder line0;
    line0.I32(10 * pattern).I32(1).I32(0);
    DataBuilder line1;
    line1.I32((10 * pattern) + 1).I32(2).I32(1);
    DataBuilder instruction;
    instruction.Repeated(std::vector<int32_t>{7, 8}).Repeated(std::vector<float>{0.5f, 1.5f});

    DataBuilder data;
    data.I32(1).I32(320).I32(240);                         // pixelExtractor
    data.Repeated(std::vector<DataBuilder>{line0, line1}); // lineExtractor
    data.I32(16).I32(16).I32(8).I32(8);                    // pixelSeparator ..
    data.Repeated(std::vector<int32_t>{1, 2, 3}).Repeated(std::vector<int32_t>{4, 5});
    data.I32(1).I32(8).I32(8).I32(4).I32(4).Repeated(std::vector<DataBuilder>{instruction}); // resampler
    data.F32(1.0f).F32(2.0f);
    return data;
}
} // namespace

DataBuilder Head(tuningfile::Version version, const char* revision)
{
    DataBuilder head;
    head.I32(version.major).I32(version.minor).I32(static_cast<int32_t>(version.patch)).String(revision);
    return head;
}

DataBuilder PDLibData()
{
    DataBuilder data = Head(PDVersion, "pdlib");
    data.Record(PreProcess(0)).Record(PreProcess(1));
    data.Record(Correlation(0)).Record(Correlation(1));
    data.Record(PostProcess(0)).Record(PostProcess(1));
    data.I32(1).I32(30).I32(5).I32(3).I32(4).I32(10).I32(60).I32(70); // adaptiveK
    data.F32(0.5f).F32(0.25f).F32(1.0f).F32(-1.0f).F32(2.0f).F32(-2.0f);
    data.I32(1); // enablePeripheralWindows
    for (uint32_t level = 0; level < 6; ++level)
    {
        data.Record(ProcessLevel(level));
    }
    std::vector<DataBuilder> horizontal;
    for (int32_t index = 0; index < 3; ++index)
    {
        horizontal.push_back(DataBuilder().F32(0.25f * static_cast<float>(index)).I32(100 + index));
    }
    data.Enum(2).Repeated(horizontal).Repeated(std::vector<DataBuilder>{}); // HVControl
    data.I32(4).I32(30);                                                    // skipControl
    for (int32_t member = 0; member < 12; ++member)
    {
        data.I32(500 + member); // hardwareGeometry
    }
    data.Repeated(std::vector<DataBuilder>{HardwarePattern(0), HardwarePattern(1)});
    data.I32(1); // enableFocusMaps
    data.Repeated(std::vector<DataBuilder>{DataBuilder().I32(42).F32(4.5f)});
    return data;
}

DataBuilder PDAFData()
{
    int32_t next  = 1;
    auto    count = [&next](DataBuilder& builder, int members) -> DataBuilder& {
        for (int member = 0; member < members; ++member)
        {
            builder.I32(next++);
        }
        return builder;
    };
    auto roiDifference = [](DataBuilder& builder) -> DataBuilder& { return builder.F32(0.5f).F32(0.25f).U32(3); };
    auto table         = [](std::vector<DataBuilder> entries) { return DataBuilder().Repeated(entries); };

    DataBuilder data = Head(PDVersion, "pdaf");
    data.I32(1);                                                                                // is2PDEnable
    data.Record(table({DataBuilder().I32(0).I32(0).I32(4).I32(3)}));                            // ROI
    data.Record(table({}));                                                                     // focusTable
    data.Record(table({DataBuilder().F32(1.0f).F32(1.5f), DataBuilder().F32(8.0f).F32(2.5f)})); // noiseTable
    data.Record(table({DataBuilder().F32(1.0f).I32(200)}));                                     // confidenceTable
    data.Record(table({DataBuilder().F32(1.0f).I32(400)}));                                     // confidenceHighTable
    data.U32(150);                                                                              // fallbackConfidence
    data.Record(table({DataBuilder().I32(30).I32(2)}));                                         // stableTable
    data.Record(table({DataBuilder().F32(0.0f).F32(1.0f)}));                                    // dofScalerTable
    count(data, 7);                                                                             // focusScan
    data.I32(1).I32(2).F32(0.5f).F32(0.5f).I32(3).I32(1).F32(1.0f).F32(2.0f);                   // sceneMonitor
    count(data, 3).F32(1.0f).F32(2.0f).F32(3.0f).F32(4.0f);                                     // PDPreprocessing ..
    count(data, 3);
    data.Repeated(std::vector<int32_t>{11, 22, 33}).Repeated(std::vector<int32_t>{44});
    data.Repeated(std::vector<int32_t>{}).Repeated(std::vector<int32_t>{55, 66});
    data.I32(0).I32(1).I32(0).F32(0.5f).I32(1).F32(1.5f).I32(1).F32(0.25f).F32(0.75f).I32(0).F32(2.0f).I32(3);
    data.I32(1).U32(6); // PDInternal.cafStableFrameAllow
    data.I32(1).F32(0.1f).F32(0.2f).F32(0.3f).F32(0.4f).F32(3.0f).F32(3.0f).F32(0.5f).I32(40).F32(1.5f);
    data.F32(0.25f).F32(1.0f).F32(2.0f);   // multiDepthDetect
    data.F32(8.0f).F32(16.0f);             // lowLightDetect
    data.I32(0);                           // lockToPeripheralDuringSearch
    data.I32(1).F32(1.75f);                // activZoomControl
    data.I32(1).I32(80).I32(20).F32(0.5f); // saliencyMWTuning
    count(data, 3).F32(0.125f);            // enableCheckVHStatsRatio .. dynamicFrameSkipVBlankThreshold
    data.I32(1).U32(12);                   // ledPdafMaxFrameAllow
    count(data, 4);                        // sparsePDTouch.. LSPLowConfidenceHuntingThreshold
    data.I32(1);                           // face.faceROIProcess
    roiDifference(data);
    roiDifference(data);
    data.U32(7);                                 // face.minMoveThreshold
    data.I32(1).U32(4).F32(0.0625f).F32(0.125f); // face.ROIMoveConvergeSuppress
    data.I32(1).U32(3).U32(300);                 // face.defocusFilter
    data.I32(0).U32(5000);                       // face.fallback
    data.I32(1).F32(0.2f).U32(3);                // face.faceChangeRefocusTrigger
    data.F32(0.3f).I32(1);                       // touch
    roiDifference(data);                         // track
    roiDifference(data);
    data.U32(8).I32(1).U32(3).U32(310).I32(1).U32(6000);
    roiDifference(data); // saliency
    roiDifference(data);
    data.U32(9).I32(1).U32(3).U32(320).I32(1).U32(7000);
    data.I32(1).U32(5).U32(9);  // convergeDoneFilter
    data.I32(1).U32(2);         // forceEnterFineSearch
    data.I32(1).I32(0).I32(12); // advancedSparseControl
    data.Record(table({DataBuilder().I32(-100).F32(0.5f)}));
    return data;
}

DataBuilder Abf34Data(uint32_t drc, uint32_t hdr, uint32_t aec)
{
    DataBuilder data;
    data.I32(1).I32(0);                                                         // enable_section
    data.Record(Head(Abf34Version, "abf34"));                                   // module_version, parameter_version
    data.Enum(1).Enum(0).Enum(4);                                               // control_variables
    data.Enum(1).Enum(0);                                                       // control_method
    data.I32(1).Enum(1).Enum(2).F32(1.0f).F32(2.0f).F32(3.0f).F32(4.0f);        // dynamic_enable_triggers
    data.U32(1).FixedArray(std::vector<float>{0.0f, 0.25f, 0.5f, 0.75f, 1.0f}); // reserve

    std::vector<float> noise(65);
    for (size_t index = 0; index < noise.size(); ++index)
    {
        noise[index] = static_cast<float>(index) / 4.0f;
    }
    std::vector<DataBuilder> drcNodes;
    for (uint32_t d = 0; d < drc; ++d)
    {
        std::vector<DataBuilder> hdrNodes;
        for (uint32_t h = 0; h < hdr; ++h)
        {
            std::vector<DataBuilder> aecNodes;
            for (uint32_t a = 0; a < aec; ++a)
            {
                DataBuilder region;
                region.Record(AecTrigger(static_cast<float>(a), static_cast<float>(a + 1)));
                region.U32(Abf34RegionMark(d, h, a)).U32(1).U32(2).U32(3).U32(4).U32(5).U32(6);
                region.FixedArray(noise);
                region.FixedArray(std::vector<uint32_t>{1, 2, 3, 4, 5, 6});
                region.FixedArray(std::vector<uint32_t>{7, 8, 9, 10});
                region.U32(11).U32(12);
                region.FixedArray(std::vector<float>{0.5f, 1.5f}).FixedArray(std::vector<float>{2.5f, 3.5f});
                region.FixedArray(std::vector<float>(10, 1.0f));
                region.F32(static_cast<float>(d) + (static_cast<float>(h) / 2.0f));
                aecNodes.push_back(region);
            }
            DataBuilder hdrNode;
            hdrNode.F32(1.0f).F32(2.0f).F32(static_cast<float>(h)).F32(static_cast<float>(h + 1));
            hdrNode.Repeated(aecNodes);
            hdrNodes.push_back(hdrNode);
        }
        DataBuilder drcNode;
        drcNode.F32(static_cast<float>(d)).F32(static_cast<float>(d + 1)).Repeated(hdrNodes);
        drcNodes.push_back(drcNode);
    }
    data.Repeated(drcNodes); // tonemetry_abf34_core
    return data;
}
} // namespace cataloguedata
