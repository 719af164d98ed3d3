// The catalogue of TuningSetManager: every registered name in registration order, each with a
// default instance under its type string; the version gate of the modules whose version parts
// from their namespace's numbers; names of one class loaded independently; a name the catalogue
// does not know; and modules whose records are still to be supplied, loaded and read as text.
#include <gtest/gtest.h>

#include <fstream>
#include <regex>
#include <set>
#include <sstream>
#include <string>
#include <typeindex>
#include <vector>

#include "cataloguedata.h"
#include "g_tonemetry/tuningsetmanager.h"
#include "logcapture.h"
#include "modulefiles.h"

namespace
{
using testsupport::LogCapture;
using tuningfile::DataBuilder;

/// The registration order of the catalogue, as it stands.
const std::vector<std::string> CatalogueOrder = {"aanr_atf20",
                                                 "ioteis26",
                                                 "iwarp10",
                                                 "svhdr10",
                                                 "abf34_ife",
                                                 "abf40_bps",
                                                 "abf40_ife",
                                                 "adaptiveANR10_sw",
                                                 "adaptiveTF10_sw",
                                                 "aidenoiser10_sw",
                                                 "aidenoiser20_sw",
                                                 "anr10_ipe",
                                                 "asf30_ipe",
                                                 "asf32_ope",
                                                 "bds10_tfe",
                                                 "bincorr10_bps",
                                                 "bincorr10_ife",
                                                 "bls12_bps",
                                                 "bls12_ife",
                                                 "bls12_ope",
                                                 "bpcabf41_ope",
                                                 "bpcbcc50_ife",
                                                 "cac22_ipe",
                                                 "cac23_ipe",
                                                 "cc12_ife",
                                                 "cc13_bps",
                                                 "cc13_ife",
                                                 "cc13_ipe",
                                                 "cc13_ope",
                                                 "cs20_ipe",
                                                 "csmce11_ope",
                                                 "cst12_bps",
                                                 "cst12_ife",
                                                 "cst12_ipe",
                                                 "cst12_ope",
                                                 "cv12_ipe",
                                                 "cv12_ope",
                                                 "cvp10_ipe",
                                                 "cvp20_ipe_mac",
                                                 "cvp20_ipe_temporal",
                                                 "cvp20_ipe_sat",
                                                 "iotdefog10",
                                                 "demosaic36_bps",
                                                 "demosaic36_ife",
                                                 "demosaic36_ope",
                                                 "demosaic37_ife",
                                                 "demux13_bps",
                                                 "demux13_ife",
                                                 "demuxblklevel14_tfe",
                                                 "demuxblklevel14_ope",
                                                 "ds4to1v10_bps_full_dc4",
                                                 "ds4to1v10_bps_dc4_dc16",
                                                 "ds4to1v10_ife_full_dc4",
                                                 "ds4to1v10_ife_dc4_dc16",
                                                 "ds4to1v10_ife_disp_full_dc4",
                                                 "ds4to1v10_ife_disp_dc4_dc16",
                                                 "ds4to1v10_ipe",
                                                 "ds4to1v11_ife_video_dc4_dc16",
                                                 "ds4to1v11_ife_disp_full_dc4",
                                                 "ds4to1v11_ife_disp_dc4_dc16",
                                                 "ds4to1v11_ipe",
                                                 "dsx10_ife_video_full_dc4",
                                                 "dsx10_ipe_tf_dc4",
                                                 "eis10_sw",
                                                 "eis11_sw",
                                                 "eis12_sw",
                                                 "eis13_sw",
                                                 "gamma15_ipe",
                                                 "gamma15_ope",
                                                 "gamma16_bps",
                                                 "gamma16_ife",
                                                 "gic30_bps",
                                                 "gra10_ipe",
                                                 "gtm10_bps",
                                                 "gtm10_ife",
                                                 "gtm12_ope",
                                                 "gtm13_ipe",
                                                 "hdr10p10_sw",
                                                 "hdr20_ife",
                                                 "hdr22_bps",
                                                 "hdr22_ife",
                                                 "hdr23_ife",
                                                 "hdr30_bps",
                                                 "hdr30_ife",
                                                 "hdr40_ipe",
                                                 "hdrvideo10_sw",
                                                 "hnr10_bps",
                                                 "hnr10_ipe",
                                                 "ica10_ipe_module1",
                                                 "ica10_ipe_module2",
                                                 "ica20_ife_module1",
                                                 "ica20_ife_module2",
                                                 "ica20_ipe_module1",
                                                 "ica20_ipe_module2",
                                                 "ica30_ipe_module1",
                                                 "ica30_ipe_module2",
                                                 "ica33_ipe_module1",
                                                 "ica33_ipe_module2",
                                                 "ldc10_sw",
                                                 "ldc11_sw",
                                                 "lenr10_ipe",
                                                 "linearization33_ife",
                                                 "linearization34_bps",
                                                 "linearization34_ife",
                                                 "lrme10_ipe",
                                                 "lsc34_bps",
                                                 "lsc34_ife",
                                                 "lsc35_tfe",
                                                 "lsc35_ope",
                                                 "lsc40_bps",
                                                 "lsc40_ife",
                                                 "ltm13_ipe",
                                                 "ltm14_ipe",
                                                 "ltm15_ope",
                                                 "ltm16_ipe",
                                                 "mf10_sw",
                                                 "mf11_sw",
                                                 "mfnr20_sw",
                                                 "nradj10_sw",
                                                 "nrm10_sw_l",
                                                 "nrm10_sw_m",
                                                 "nrm10_sw_s",
                                                 "pdpc11_ife",
                                                 "pdpc20_bps",
                                                 "pdpc30_bps",
                                                 "pdpc30_ife",
                                                 "pedestal13_bps",
                                                 "pedestal13_ife",
                                                 "preference10_sw",
                                                 "vsp10_sw",
                                                 "sat10_sw",
                                                 "sce11_ipe",
                                                 "sce11_ope",
                                                 "shdr10_sw",
                                                 "shdr11_sw",
                                                 "shdr30_sw",
                                                 "swmctf10_sw",
                                                 "swmctf20_sw",
                                                 "swmfnr20_sw",
                                                 "swmfnr30_sw",
                                                 "tdl10_ipe",
                                                 "tf10_ipe",
                                                 "tf20_ipe",
                                                 "tintless20_sw",
                                                 "tmc10_sw",
                                                 "tmc11_sw",
                                                 "tmc12_sw",
                                                 "tmc13_sw",
                                                 "upscale20_ipe",
                                                 "video10_sw",
                                                 "video11_sw",
                                                 "wnr24_ope",
                                                 "t2tconfigdata",
                                                 "Arbitration",
                                                 "Convergence",
                                                 "aecDepth",
                                                 "Extension",
                                                 "Face",
                                                 "Flash",
                                                 "aecGyro",
                                                 "aecIr",
                                                 "Metering",
                                                 "AECParamExtension",
                                                 "SensorHDRDefaultConfig",
                                                 "aecShdr",
                                                 "aecSkipCtrl",
                                                 "SnapshotControl",
                                                 "StartUp",
                                                 "StatsDefaultConfig",
                                                 "aecMultiCamSync",
                                                 "Touch",
                                                 "Tracker",
                                                 "aecx1dvectorprocessor",
                                                 "aecxadvancedinfo",
                                                 "aecxarbitration",
                                                 "aecxconvergence",
                                                 "aecxcorestatsconfig",
                                                 "aecxdb1dmeterweight",
                                                 "aecxdb2dmeterweight",
                                                 "aecxdbactiveanalyzers",
                                                 "aecxdbactivecalculators",
                                                 "aecxdbarbitrationlut",
                                                 "aecxdbarbitrationorder",
                                                 "aecxdbarbitrationrange",
                                                 "aecxdbarbitrationtable",
                                                 "aecxdbconvactivescd",
                                                 "aecxdbconvbase",
                                                 "aecxdbconvsettle",
                                                 "aecxdbconvstretch",
                                                 "aecxdbroi",
                                                 "aecxdbsceneanalyzer",
                                                 "aecxdbsnapshot",
                                                 "aecxdbstatscalculator",
                                                 "aecxev",
                                                 "aecxextension",
                                                 "aecxexternalmapprocessor",
                                                 "aecxface",
                                                 "aecxflash",
                                                 "aecxflashsnapshot",
                                                 "aecxhdrsensor",
                                                 "aecxhwstatsconfig",
                                                 "aecxmetering",
                                                 "aecxmeteringsaalgorithm",
                                                 "aecxmeteringsceneanalyzer",
                                                 "aecxmeteringstatscalculator",
                                                 "aecxmtrtablegen",
                                                 "aecxparamextension",
                                                 "aecxscenechangedetector",
                                                 "aecxskipcontrol",
                                                 "aecxspectralsensor",
                                                 "aecxstartup",
                                                 "aecxsync",
                                                 "aecxtouch",
                                                 "tonemetryAFAlgoTuning",
                                                 "tonemetryBAF",
                                                 "tonemetryContrastAF",
                                                 "tonemetryDCIAF",
                                                 "tonemetryDepthAF",
                                                 "tonemetryAFExtension",
                                                 "tonemetryHAF",
                                                 "tonemetryAFMONITOR",
                                                 "tonemetryPDAF",
                                                 "tonemetryPDLib",
                                                 "tonemetryAFTuningSoftwareStatistics",
                                                 "tonemetryTOF",
                                                 "TonemetryAFDTuningData",
                                                 "TonemetryASDTuningData",
                                                 "bestShotV1",
                                                 "faceAssistV1",
                                                 "faceROIProcessorV1",
                                                 "initDataV1",
                                                 "bgStatsConfigV1",
                                                 "custRefPtV1",
                                                 "DAV1",
                                                 "SFDepthMap16V1",
                                                 "SFDistWVV1",
                                                 "DSFV1",
                                                 "dualcamSyncV1",
                                                 "flashDecV1",
                                                 "flashRefPtV1",
                                                 "flashWV1",
                                                 "SFGeneralWVV1",
                                                 "histCtrlV1",
                                                 "SFIlluWVV1",
                                                 "SFMLCZV1",
                                                 "SFMLCZV2",
                                                 "SFMLCZV3",
                                                 "MWBGainV1",
                                                 "AWBExtensionParam",
                                                 "refPtV1",
                                                 "SAAGWV1",
                                                 "SAAGWV2",
                                                 "SAGenV1DataArray",
                                                 "SAGenV2DataArray",
                                                 "SASpatialGenV1DataArray",
                                                 "awbSceneChangeConvergeV1",
                                                 "scConv",
                                                 "sensorCalV1",
                                                 "SFDDV1",
                                                 "SFStatScrV1",
                                                 "SFSubSmpV1",
                                                 "ledTorchV1",
                                                 "lcdFlashV1",
                                                 "SFSpectralSensorAssistV1",
                                                 "SFStatDistV1",
                                                 "tmpConvV1",
                                                 "triglGAV1",
                                                 "TonemetryRERTuningData",
                                                 "tonemetryStatsNN"};

constexpr size_t CatalogueClasses = 219;

/// A TuningSetManager without the live link, so that tests in parallel do not race for ports.
class Catalogue : public testing::Test
{
protected:
    Catalogue() { m_manager.m_tuningEnabled = false; }

    bool Load(const std::vector<tuningfile::Module>& modules)
    {
        tuningfile::TuningFileModel model = moduletest::ModelWithModes(moduletest::AlignmentOne);
        model.modules                     = modules;
        std::vector<uint8_t> image        = moduletest::Image(model);
        return m_manager.LoadBinaryParameters(image.data(), image.size());
    }

    /// The module of `name` in the root mode, or null.
    ParameterModule* Module(char const* name)
    {
        TuningMode       root;
        ParameterModule* module = m_manager.GetModule(name, &root, 1, nullptr);
        if (nullptr != module)
        {
            module->Release();
        }
        return module;
    }

    static std::string Text(ParameterModule* module, char const* path)
    {
        char value[256] = "unset";
        return ((nullptr != module) && module->GetValue(path, value, sizeof(value))) ? std::string(value)
                                                                                     : std::string("<false>");
    }

    LogCapture       m_log;
    TuningSetManager m_manager;
};

tuningfile::Module HeadModule(const std::string& name, tuningfile::Version version, const char* revision = "head")
{
    return moduletest::MakeModule(name, version, 0, cataloguedata::Head(version, revision));
}

/// The names that the generated constructor registers, in the order of its calls.
std::vector<std::string> GeneratedRegistrationOrder()
{
    std::ifstream     source(VARK_GENERATED_DIR "/g_tonemetry/tuningsetmanager.cpp");
    std::stringstream text;
    text << source.rdbuf();
    const std::string body = text.str();
    const size_t      from = body.find("TuningSetManager::TuningSetManager()");
    const size_t      to   = body.find("\n}", from);
    EXPECT_NE(std::string::npos, from);
    std::vector<std::string> names;
    const std::regex         registration("AddModule\\(new [A-Za-z0-9_:]+\\(\"([^\"]+)\"\\)\\)");
    const std::string        constructor = body.substr(from, to - from);
    for (std::sregex_iterator match(constructor.begin(), constructor.end(), registration), end; match != end; ++match)
    {
        names.push_back((*match)[1]);
    }
    return names;
}

TEST(CatalogueOrder, TheConstructorRegistersThe269NamesInTheCataloguesOrder)
{
    ASSERT_EQ(269u, CatalogueOrder.size());
    EXPECT_EQ(CatalogueOrder, GeneratedRegistrationOrder());
}

TEST_F(Catalogue, EveryNameHasADefaultInstanceOfItsOwnUnderItsTypeString)
{
    EXPECT_EQ(CatalogueOrder.size(), m_manager.DefaultModuleMap.size()) << "no two names share a type string";
    std::set<std::type_index> classes;
    for (const std::string& name : CatalogueOrder)
    {
        char type[ModuleData::MaxTypeLength + 1] = {};
        ModuleData::GetType(type, name.c_str());
        DefaultModule* entry = m_manager.GetDefaultModule(type);
        ASSERT_NE(nullptr, entry) << name;
        ParameterModule* instance = entry->m_defaultInstance;
        ASSERT_NE(nullptr, instance) << name;
        EXPECT_STREQ(name.c_str(), instance->Name);
        EXPECT_STREQ(type, instance->Type);
        EXPECT_EQ(nullptr, instance->Data) << "a default instance has no entry of a file";
        EXPECT_EQ(nullptr, entry->m_head) << "and no instances before a file is loaded";
        classes.insert(std::type_index(typeid(*instance)));
    }
    EXPECT_EQ(CatalogueClasses, classes.size());
    EXPECT_EQ(0u, m_log.Count("Failed to find module"));
}

TEST_F(Catalogue, TypeStringsDropTheToolsPrefixAndNamesOfOneClassStayApart)
{
    auto typeOf = [this](char const* type) -> std::string {
        DefaultModule* entry = m_manager.GetDefaultModule(const_cast<char*>(type));
        return (nullptr == entry) ? std::string("<none>") : std::string(entry->m_defaultInstance->Name);
    };
    EXPECT_EQ("tonemetryPDAF", typeOf("PDAF"));
    EXPECT_EQ("tonemetryPDLib", typeOf("PDLib"));
    EXPECT_EQ("TonemetryRERTuningData", typeOf("RERTuningData")) << "the prefix goes in any case";
    EXPECT_EQ("tonemetryAFTuningSoftwareStatistics", typeOf("AFTuningSoftwareStatistics"));
    EXPECT_EQ("ds4to1v11_ife_video_dc4_dc16", typeOf("ds4to1v11_ife_video_dc4_dc16"));
    EXPECT_EQ("scConv", typeOf("scConv"));
    EXPECT_EQ("awbSceneChangeConvergeV1", typeOf("awbSceneChangeConvergeV1"));
    EXPECT_EQ("<none>", typeOf("tonemetryPDAF")) << "a map keyed by type strings only";
    EXPECT_EQ(1u, m_log.Count("Failed to find module tonemetryPDAF in DefaultModuleMap"));
}

/// A module whose version parts from its namespace's numbers.
struct PartedVersion
{
    const char*         name;
    const char*         className;
    tuningfile::Version moduleVersion;
    tuningfile::Version namespaceVersion;
};

class CatalogueVersionGate : public Catalogue, public testing::WithParamInterface<PartedVersion>
{
};

TEST_P(CatalogueVersionGate, CreateAcceptsTheModuleVersionAndNotTheNamespaces)
{
    const PartedVersion& parted = GetParam();
    EXPECT_FALSE(Load({HeadModule(parted.name, parted.namespaceVersion)})) << "a module of the file is missing";
    EXPECT_EQ(1u, m_log.Count(std::string("Failed to parse binary header data for:  Type: ") + parted.name));
    EXPECT_EQ(nullptr, Module(parted.name));
    EXPECT_EQ(1u, m_log.Count(std::string("Unable to create ") + parted.className + ", binary version ("));

    m_log.Clear();
    TuningSetManager accepting;
    accepting.m_tuningEnabled         = false;
    tuningfile::TuningFileModel model = moduletest::ModelWithModes(moduletest::AlignmentOne);
    model.modules                     = {HeadModule(parted.name, parted.moduleVersion, "parted")};
    std::vector<uint8_t> image        = moduletest::Image(model);
    ASSERT_TRUE(accepting.LoadBinaryParameters(image.data(), image.size()));
    TuningMode       root;
    ParameterModule* module = accepting.GetModule(parted.name, &root, 1, nullptr);
    ASSERT_NE(nullptr, module);
    EXPECT_EQ(VersionUnion(parted.moduleVersion.major, parted.moduleVersion.minor, parted.moduleVersion.patch),
              module->Version);
    EXPECT_EQ(std::to_string(parted.moduleVersion.minor), Text(module, "module_version.minor_revision"));
    EXPECT_EQ("parted", Text(module, "parameter_version.revision"));
    EXPECT_EQ(0u, m_log.Count("Unable to create"));
    module->Release();
}

INSTANTIATE_TEST_SUITE_P(SevenModules, CatalogueVersionGate,
                         testing::Values(PartedVersion{"aanr_atf20", "aanr_atf20TypeClass", {3, 8, 0}, {2, 0, 0}},
                                         PartedVersion{"ioteis26", "ioteis26TypeClass", {1, 0, 0}, {2, 6, 0}},
                                         PartedVersion{"ldc10_sw", "tonemetry_ldc10TypeClass", {3, 0, 0}, {1, 0, 0}},
                                         PartedVersion{"lsc34_ife", "tonemetry_lsc34TypeClass", {3, 4, 1}, {3, 4, 0}},
                                         PartedVersion{"mf10_sw", "tonemetry_mf10TypeClass", {1, 0, 1}, {1, 0, 0}},
                                         PartedVersion{"shdr30_sw", "shdr30TypeClass", {3, 8, 0}, {3, 0, 0}},
                                         PartedVersion{
                                             "swmctf10_sw", "tonemetry_swmctf10TypeClass", {2, 0, 0}, {1, 0, 0}}));

TEST_F(Catalogue, TwoNamesOfOneClassLoadIndependentlyFromOneFile)
{
    ASSERT_TRUE(Load({HeadModule("abf40_ife", {4, 0, 0}, "ife tuning"), HeadModule("abf40_bps", {4, 0, 0}, "bps")}));
    TuningMode                      root;
    abf_4_0_0::tonemetry_abf40Type* ife = m_manager.GetModule_abf40_ife(&root, 1, nullptr);
    abf_4_0_0::tonemetry_abf40Type* bps = m_manager.GetModule_abf40_bps(&root, 1, nullptr);
    ASSERT_NE(nullptr, ife);
    ASSERT_NE(nullptr, bps);
    EXPECT_NE(ife, bps);
    EXPECT_STREQ("ife tuning", ife->parameter_version.revision);
    EXPECT_STREQ("bps", bps->parameter_version.revision);
    EXPECT_STREQ("abf40_ife", moduletest::Instance(m_manager, "abf40_ife")->Name);
    EXPECT_STREQ("abf40_bps", moduletest::Instance(m_manager, "abf40_bps")->Name);
    EXPECT_EQ(nullptr, moduletest::Instance(m_manager, "abf40_ife", 1)) << "one instance per name";

    ParameterModule* ifeModule = moduletest::Instance(m_manager, "abf40_ife");
    ASSERT_TRUE(ifeModule->SetValue("module_version.incr_revision", "7"));
    EXPECT_EQ(7, ife->module_version.incr_revision);
    EXPECT_EQ(0, bps->module_version.incr_revision) << "a change to one name leaves the other";
    ife->Release();
    bps->Release();
}

TEST_F(Catalogue, ANameNotInTheCatalogueIsReportedAndTheOthersLoad)
{
    EXPECT_FALSE(Load({HeadModule("abf41_ife", {4, 1, 0}), HeadModule("cc13_ope", {1, 3, 0}, "cc")}));
    EXPECT_EQ(1u, m_log.Count("Failed to find header module:  Type: abf41_ife, Major: 4, Minor: 1"));
    EXPECT_EQ(1u, m_log.Count("Failed to find module abf41_ife in DefaultModuleMap"));
    TuningMode root;
    EXPECT_EQ(nullptr, m_manager.GetModule("abf41_ife", &root, 1, nullptr));
    cc_1_3_0::tonemetry_cc13Type* cc = m_manager.GetModule_cc13_ope(&root, 1, nullptr);
    ASSERT_NE(nullptr, cc);
    EXPECT_STREQ("cc", cc->parameter_version.revision);
    EXPECT_EQ(nullptr, m_manager.GetModule_cc13_ipe(&root, 1, nullptr)) << "a name of the class not in the file";
    cc->Release();
}

TEST_F(Catalogue, AModuleWithItsRecordsStillToBeSuppliedShowsItsHeadAsText)
{
    ASSERT_TRUE(Load({HeadModule("aecxdbarbitrationlut", {10, 0, 0}, "lut")}));
    ParameterModule* module = Module("aecxdbarbitrationlut");
    ASSERT_NE(nullptr, module);
    PList<ParameterParserInfo> rows;
    ASSERT_TRUE(module->GetInfo("", rows));
    ASSERT_EQ(2u, rows.count);
    EXPECT_STREQ("module_version", rows[0].Name);
    EXPECT_STREQ("parameter_version", rows[1].Name);
    EXPECT_EQ("10", Text(module, "module_version.major_revision"));
    EXPECT_EQ("lut", Text(module, "parameter_version.revision"));
    TuningMode                                      root;
    aecxdbarbitrationlut::AECXDBArbitrationLUTType* record =
        m_manager.GetModule_aecxdbarbitrationlut(&root, 1, nullptr);
    ASSERT_NE(nullptr, record);
    EXPECT_EQ(10, record->module_version.major_revision);
    record->Release();
}

TEST_F(Catalogue, LtmVersionsDifferInTheirReserveAndHdrVersionsOnlyInTheirNumbers)
{
    DataBuilder ltm14 = cataloguedata::Head({1, 4, 0}, "ltm14");
    ltm14.I32(1).I32(0).I32(1).FixedArray(std::vector<int32_t>{1, 2, 3, 4, 5, 6});
    DataBuilder ltm15 = cataloguedata::Head({1, 5, 0}, "ltm15");
    ltm15.I32(1);
    EXPECT_FALSE(Load({moduletest::MakeModule("ltm14_ipe", {1, 4, 0}, 0, ltm14),
                       moduletest::MakeModule("ltm15_ope", {1, 5, 0}, 0, ltm15), HeadModule("hdr20_ife", {2, 0, 0}),
                       HeadModule("hdr22_ife", {2, 0, 0})}))
        << "hdr22_ife is not created";
    ParameterModule* fourteen = Module("ltm14_ipe");
    ParameterModule* fifteen  = Module("ltm15_ope");
    EXPECT_EQ("1,2,3,4,5,6", Text(fourteen, "tonemetry_ltm14_reserve.mask_filter_kernel_tab.mask_filter_kernel"));
    EXPECT_EQ("1", Text(fourteen, "tonemetry_ltm14_reserve.la_manual_curve_enable"));
    EXPECT_EQ("1", Text(fifteen, "tonemetry_ltm15_reserve.gamma_en"));
    EXPECT_EQ("<false>", Text(fifteen, "tonemetry_ltm15_reserve.la_en")) << "1.5 has no such member";
    PList<ParameterParserInfo> rows;
    ASSERT_TRUE(fifteen->GetInfo("tonemetry_ltm15_reserve", rows));
    EXPECT_EQ(1u, rows.count);

    EXPECT_NE(nullptr, Module("hdr20_ife"));
    EXPECT_EQ(nullptr, Module("hdr22_ife")) << "2.2 does not read a file of 2.0";
    EXPECT_EQ(1u, m_log.Count("Unable to create tonemetry_hdr22TypeClass, binary version ("));
}
} // namespace
