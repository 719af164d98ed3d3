// The schema-driven encoder on the test module of every member kind (tests/modules/schemas):
// the bytes it makes against a file built member by member with DataBuilder, members left out,
// the forms a value may take, range checks, and refusals that name the JSON path.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "modulegen/schemaloader.h"
#include "tuningencoder/encoder.h"
#include "tuningfile/writer.h"

namespace
{
using tuningencoder::EncodeError;
using tuningencoder::Json;
using tuningfile::DataBuilder;

// Enumerator values of the test schema: control_type counts from 0, modeEnum is 0, 10, 20 and
// stage is 1 and 4 (no 0).
constexpr uint32_t ControlGain = 2;
constexpr uint32_t ModeOff     = 0;
constexpr uint32_t ModeLow     = 10;
constexpr uint32_t ModeHigh    = 20;
constexpr uint32_t StageFirst  = 1;
constexpr uint32_t StageLast   = 4;

class KindEncoder : public testing::Test
{
protected:
    static void SetUpTestSuite()
    {
        std::vector<modulegen::SchemaFile> files;
        std::string                        error;
        ASSERT_TRUE(modulegen::FindSchemaFiles(VARK_TEST_SCHEMA_DIR, &files, &error)) << error;
        std::vector<modulegen::Diagnostic> diagnostics;
        ASSERT_TRUE(modulegen::LoadSchemaSet(files, &s_schemas, &diagnostics));
        s_kind = s_schemas.FindSchema("kind_1_0_0");
        ASSERT_NE(nullptr, s_kind);
    }

    /// The file image of the kind module holding `data`.
    static std::vector<uint8_t> Image(const DataBuilder& data)
    {
        tuningfile::TuningFileModel model;
        tuningfile::Module          module;
        module.name    = "kind10_bps";
        module.version = {1, 0, 0};
        module.data    = data;
        model.modules.push_back(module);
        std::vector<uint8_t> image;
        std::string          error;
        EXPECT_TRUE(tuningfile::Write(model, &image, &error)) << error;
        return image;
    }

    /// Encodes `values` as the kind module; the refusals go to `m_errors`.
    bool Encode(const Json& values, DataBuilder* out)
    {
        return tuningencoder::EncodeModule(*s_kind, values, "/values", out, &m_errors);
    }

    /// The one refusal of encoding `values`, as "path: message".
    std::string OnlyRefusal(const Json& values)
    {
        DataBuilder data;
        EXPECT_FALSE(Encode(values, &data));
        EXPECT_EQ(1u, m_errors.size());
        return m_errors.empty() ? std::string() : m_errors.front().ToString();
    }

    static modulegen::SchemaSet     s_schemas;
    static const modulegen::Schema* s_kind;
    std::vector<EncodeError>        m_errors;
};

modulegen::SchemaSet     KindEncoder::s_schemas;
const modulegen::Schema* KindEncoder::s_kind = nullptr;

/// Every member of the kind module given, with the values of ExpectedFull.
Json FullValues()
{
    return Json::parse(R"({
        "enable_section": {"kind_enable": 1},
        "module_version": {"major_revision": 1, "minor_revision": 0, "incr_revision": 0},
        "parameter_version": {"revision": "rev 7"},
        "control_method": {"control_var": "control_gain", "control_mode": "mode_low"},
        "u8": 200, "u16": "0xEA60", "i32": -42, "u32": 4000000000, "flag": true, "gain": 0.5,
        "i64": -5000000000, "u64": 18446744073709551615, "ratio": 2.25,
        "phase": "stage_last",
        "radial_tab": {"radial": [1, 2, 3, 4, 5.5]},
        "modes": ["mode_low", 20, "mode_off"],
        "triggers": [{"start": 0, "end": 1}, {"start": 2, "end": 3}],
        "label": "kind",
        "regions": [
            {"trigger": {"start": 0.5, "end": 1.5}, "values": [1, 2, 3, 4], "samples": [10, 20, 30], "name": "low"},
            {"trigger": {"start": 8, "end": 9}, "values": [5, 6, 7, 8], "name": "high"}
        ],
        "curve": [0.5, 1.5],
        "history": ["mode_high", 10],
        "tags": ["alpha", "beta"],
        "level": 7,
        "note": "noted",
        "window": {"start": -1, "end": 1}
    })");
}

DataBuilder ExpectedFull()
{
    DataBuilder data;
    data.I32(1).I32(1).I32(0).I32(0).String("rev 7").Enum(ControlGain).Enum(ModeLow);
    data.U8(200).U16(60000).I32(-42).U32(4000000000u).I32(1).F32(0.5f).I64(-5000000000).U64(UINT64_MAX).F64(2.25);
    data.Enum(StageLast).FixedArray(std::vector<float>{1.0f, 2.0f, 3.0f, 4.0f, 5.5f});
    data.Enum(ModeLow).Enum(ModeHigh).Enum(ModeOff);
    data.F32(0.0f).F32(1.0f).F32(2.0f).F32(3.0f).String("kind");
    DataBuilder low;
    low.F32(0.5f).F32(1.5f).FixedArray(std::vector<uint32_t>{1, 2, 3, 4}).Repeated(std::vector<uint32_t>{10, 20, 30});
    DataBuilder high;
    high.F32(8.0f).F32(9.0f).FixedArray(std::vector<uint32_t>{5, 6, 7, 8}).Repeated(std::vector<uint32_t>{});
    data.Repeated(std::vector<DataBuilder>{low.String("low"), high.String("high")});
    data.Repeated(std::vector<float>{0.5f, 1.5f});
    data.Repeated(std::vector<DataBuilder>{DataBuilder().Enum(ModeHigh), DataBuilder().Enum(ModeLow)});
    data.Repeated(std::vector<DataBuilder>{DataBuilder().String("alpha"), DataBuilder().String("beta")});
    data.Optional(DataBuilder().U16(7)).OptionalAbsent().Optional(DataBuilder().String("noted"));
    data.Optional(DataBuilder().F32(-1.0f).F32(1.0f));
    return data;
}

TEST_F(KindEncoder, EveryMemberKindGivesTheBytesOfTheSameRecordBuiltByHand)
{
    DataBuilder data;
    ASSERT_TRUE(Encode(FullValues(), &data)) << m_errors.front().ToString();
    EXPECT_EQ(Image(ExpectedFull()), Image(data));
}

TEST_F(KindEncoder, MembersLeftOutAreZeroAbsentOrEmptyAndTheModuleVersionIsTheSchemas)
{
    // `phase` has no value 0, so it alone must be given; null counts as left out.
    DataBuilder data;
    ASSERT_TRUE(Encode(Json::parse(R"({"phase": "stage_first", "level": null})"), &data));

    DataBuilder expected;
    expected.I32(0).I32(1).I32(0).I32(0).String("").Enum(0).Enum(0);
    expected.U8(0).U16(0).I32(0).U32(0).I32(0).F32(0.0f).I64(0).U64(0).F64(0.0);
    expected.Enum(StageFirst).FixedArray(std::vector<float>(5, 0.0f)).Enum(0).Enum(0).Enum(0);
    expected.F32(0.0f).F32(0.0f).F32(0.0f).F32(0.0f).String("");
    expected.Repeated(std::vector<DataBuilder>{}).Repeated(std::vector<float>{});
    expected.Repeated(std::vector<DataBuilder>{}).Repeated(std::vector<DataBuilder>{});
    expected.OptionalAbsent().OptionalAbsent().OptionalAbsent().OptionalAbsent();
    EXPECT_EQ(Image(expected), Image(data));

    EXPECT_EQ("/values/phase: missing: stage has no value 0, so 'phase' must be given", OnlyRefusal(Json::object()));
}

TEST_F(KindEncoder, EnumsByNameAndByNumberAndWholeNumbersInEveryFormEncodeAlike)
{
    DataBuilder byName;
    DataBuilder byNumber;
    ASSERT_TRUE(Encode(Json::parse(R"({"phase": "stage_last", "history": ["mode_high"], "u32": "0x1f",
                                       "i32": -2147483648, "flag": false, "u16": 7.0})"),
                       &byName));
    ASSERT_TRUE(Encode(Json::parse(R"({"phase": 4, "history": [20], "u32": 31,
                                       "i32": -2147483648.0, "flag": 0, "u16": 7})"),
                       &byNumber))
        << m_errors.front().ToString();
    EXPECT_EQ(Image(byName), Image(byNumber));

    // A tree built in code holds signed numbers where a parsed text holds unsigned ones.
    DataBuilder inCode;
    Json values = Json::parse(R"({"history": ["mode_high"], "u32": 31, "i32": -2147483648, "flag": false, "u16": 7})");
    values["phase"] = static_cast<int>(StageLast);
    ASSERT_TRUE(Encode(values, &inCode)) << m_errors.front().ToString();
    EXPECT_EQ(Image(byName), Image(inCode));
}

TEST_F(KindEncoder, AValueOutsideItsTypeIsRefusedAtItsPath)
{
    struct RangeCase
    {
        const char* values;
        const char* refusal;
    };
    const RangeCase cases[] = {
        {R"({"u8": 256})", "/values/u8: 256 is out of range for UInt8 (0 to 255)"},
        {R"({"u16": -1})", "/values/u16: -1 is out of range for UInt16 (0 to 65535)"},
        {R"({"i32": 2147483648})", "/values/i32: 2147483648 is out of range for Int32 (-2147483648 to 2147483647)"},
        {R"({"i64": -1e19})", "/values/i64: -10000000000000000000 is out of range for Int64 (-9223372036854775808 to "
                              "9223372036854775807)"},
        {R"({"u32": 2.5})", "/values/u32: expected a whole number (UInt32, 0 to 4294967295)"},
        {R"({"u32": "0x100000000"})", "/values/u32: 4294967296 is out of range for UInt32 (0 to 4294967295)"},
        {R"({"u32": "12"})", "/values/u32: expected a whole number (UInt32, 0 to 4294967295) or a "
                             "hexadecimal text such as \"0x1F\", not \"12\""},
        {R"({"flag": "yes"})", "/values/flag: expected a whole number (Boolean, -2147483648 to 2147483647) "
                               "or a hexadecimal text such as \"0x1F\", not \"yes\""},
        {R"({"u64": true})", "/values/u64: expected a whole number (UInt64, 0 to 18446744073709551615)"},
        {R"({"gain": 1e39})", "/values/gain: 1e+39 is out of range for Float"},
        {R"({"ratio": "2.5"})", "/values/ratio: expected a number"},
        {R"({"curve": [0.5, "x"]})", "/values/curve/1: expected a number"},
        {R"({"level": 65536})", "/values/level: 65536 is out of range for UInt16 (0 to 65535)"},
        {R"({"chosenMode": -10})",
         "/values/chosenMode: -10 is not a value of tonemetry_kind10Type::modeEnum (0, 10, 20)"},
        {R"({"history": [0.5]})",
         "/values/history/0: expected an enumerator of tonemetry_kind10Type::modeEnum, by name or number"},
    };
    for (const RangeCase& range : cases)
    {
        m_errors.clear();
        Json values     = Json::parse(range.values);
        values["phase"] = "stage_first";
        EXPECT_EQ(range.refusal, OnlyRefusal(values)) << range.values;
    }
}

TEST_F(KindEncoder, RefusalsNameThePathOfEveryWrongValueInOneRun)
{
    DataBuilder data;
    const Json  values = Json::parse(R"({
        "phase": "stage_middle",
        "control_method": {"control_mode": 15, "speed": 3},
        "radial_tab": {"radial": [1, 2, 3]},
        "modes": ["mode_low"],
        "triggers": {"start": 0},
        "label": 7,
        "regions": [{"name": "ok"}, {"values": [1, 2, 3, 4, 5], "samples": [1, -2]}, 3],
        "tags": ["a", null],
        "chosenMode": "mode_max",
        "window": [0, 1],
        "a/b~c": 1
    })");
    EXPECT_FALSE(Encode(values, &data));

    std::vector<std::string> refusals;
    for (const EncodeError& error : m_errors)
    {
        refusals.push_back(error.ToString());
    }
    const std::vector<std::string> expected = {
        "/values/a~1b~0c: unknown member 'a/b~c' of tonemetry_kind10Type",
        "/values/control_method/speed: unknown member 'speed' of tonemetry_kind10Type::control_methodStruct",
        "/values/control_method/control_mode: 15 is not a value of tonemetry_kind10Type::modeEnum (0, 10, 20)",
        "/values/phase: unknown enumerator 'stage_middle' of stage (stage_first, stage_last)",
        "/values/radial_tab/radial: expected an array of 5 elements, not one of 3",
        "/values/modes: expected an array of 3 elements, not one of 1",
        "/values/triggers: expected an array of 2 elements, not an object",
        "/values/label: expected a string, not a number",
        "/values/regions/1/values: expected an array of 4 elements, not one of 5",
        "/values/regions/1/samples/1: -2 is out of range for UInt32 (0 to 4294967295)",
        "/values/regions/2: expected an object of the members of region_dataType, not a number",
        "/values/tags/1: expected a string, not null",
        "/values/chosenMode: unknown enumerator 'mode_max' of tonemetry_kind10Type::modeEnum (mode_off, mode_low, "
        "mode_high)",
        "/values/window: expected an object of the members of trigger_range_type, not an array",
    };
    EXPECT_EQ(expected, refusals);
}

TEST_F(KindEncoder, ARecordThatIsNoObjectIsRefusedAsAWhole)
{
    DataBuilder data;
    EXPECT_FALSE(tuningencoder::EncodeModule(*s_kind, Json::array(), "/modules/3/values", &data, &m_errors));
    ASSERT_FALSE(m_errors.empty());
    EXPECT_EQ("/modules/3/values: expected an object of the members of tonemetry_kind10Type, not an array",
              m_errors.front().ToString());
}

TEST(JsonChild, KeysAreEscapedAsJsonPointersWant)
{
    EXPECT_EQ("/modules/2", tuningencoder::JsonChild("/modules", 2));
    EXPECT_EQ("/values/frameRate", tuningencoder::JsonChild("/values", "frameRate"));
    EXPECT_EQ("/a~1b/~0", tuningencoder::JsonChild(tuningencoder::JsonChild("", "a/b"), "~"));
}
} // namespace
