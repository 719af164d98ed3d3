#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

#include "logcapture.h"
#include "orvomem.h"
#include "parameterutils.h"

namespace
{
using testsupport::LogCapture;

std::vector<unsigned char> Image(const std::string& text)
{
    return std::vector<unsigned char>(text.begin(), text.end());
}

TEST(ParameterUtilsPadding, RoundsUpToTheAlignment)
{
    EXPECT_EQ(32u, ParameterUtils::PaddedSize(28, 8));
    EXPECT_EQ(32u, ParameterUtils::PaddedSize(32, 8));
    EXPECT_EQ(5u, ParameterUtils::PaddedSize(5, 1));
    EXPECT_EQ(0u, ParameterUtils::PaddedSize(0, 4));
    EXPECT_EQ(7u, ParameterUtils::PaddedSize(7, 0)); // no alignment: no padding
}

TEST(ParameterUtilsScalar, ReadMovesByTheGreaterOfSizeAndAlignment)
{
    std::vector<unsigned char> bytes = {0x01, 0x02, 0x03, 0x04, 0x05, 0x06, 0x07, 0x08, 0x09, 0x0A};
    unsigned int               pos   = 1;
    uint16_t                   half  = 0;
    ASSERT_TRUE(ParameterUtils::Read(&half, bytes.data(), 10, &pos, 4));
    EXPECT_EQ(0x0302, half); // little-endian, read unaligned
    EXPECT_EQ(5u, pos);

    uint32_t word = 0;
    ASSERT_TRUE(ParameterUtils::Read(&word, bytes.data(), 10, &pos, 1));
    EXPECT_EQ(0x09080706u, word);
    EXPECT_EQ(9u, pos);
}

TEST(ParameterUtilsScalar, ReadPastTheEndFailsWithoutMoving)
{
    LogCapture                 capture;
    std::vector<unsigned char> bytes(8, 0);
    unsigned int               pos  = 6;
    uint32_t                   word = 0xDEAD;
    EXPECT_FALSE(ParameterUtils::Read(&word, bytes.data(), 8, &pos, 1));
    EXPECT_EQ(6u, pos);
    EXPECT_EQ(0xDEADu, word);
    EXPECT_EQ(1u, capture.Count("Failed to read 4 bytes from binary file offset 6, length 8\n"));

    pos = 0xFFFFFFFEu; // no wrap-around lets this through
    EXPECT_FALSE(ParameterUtils::Read(&word, bytes.data(), 8, &pos, 1));
    EXPECT_FALSE(ParameterUtils::Read(&word, nullptr, 8, &pos, 1));
}

TEST(ParameterUtilsScalar, WriteStoresLittleEndianAndMovesBySize)
{
    LogCapture                 capture;
    std::vector<unsigned char> bytes(6, 0);
    unsigned int               pos = 1;
    ASSERT_TRUE(ParameterUtils::Write(uint32_t{0x11223344u}, bytes.data(), 6, &pos));
    EXPECT_EQ((std::vector<unsigned char>{0, 0x44, 0x33, 0x22, 0x11, 0}), bytes);
    EXPECT_EQ(5u, pos);

    EXPECT_FALSE(ParameterUtils::Write(uint16_t{1}, bytes.data(), 6, &pos));
    EXPECT_EQ(5u, pos);
    EXPECT_EQ(1u, capture.Count("Failed to write 2 bytes to binary offset 5, length 6\n"));
}

// Into the caller's array: the field's width, padded, moves the position whatever was copied.
TEST(ParameterUtilsReadString, IntoAnArray)
{
    struct Case
    {
        std::string  bytes;
        unsigned int pos;
        unsigned int arraySize;
        unsigned int field;
        unsigned int alignment;
        char         fill;
        const char*  text;
        unsigned int endPos;
    };
    const std::string padded = std::string("name") + std::string(28, '\0') + "next";
    for (const Case& c : {Case{padded, 0, 29, 28, 8, 'z', "name", 32}, Case{padded, 0, 33, 32, 8, 'z', "name", 32},
                          // a full field without terminator is terminated by the array
                          Case{"ABCDEFGH", 0, 9, 8, 1, 'z', "ABCDEFGH", 8},
                          // a short buffer: what is there is copied
                          Case{"xyAB", 2, 9, 8, 4, '\0', "AB", 10},
                          // a field wider than the array stays inside it
                          Case{"0123456789", 0, 5, 10, 1, 'z', "0123", 10}})
    {
        std::vector<unsigned char> bytes = Image(c.bytes);
        std::vector<char>          out(c.arraySize + 1, c.fill);
        out.back()       = '\0'; // a missing terminator shows as a wrong text, not an overread
        unsigned int pos = c.pos;
        ASSERT_TRUE(ParameterUtils::ReadString(out.data(), bytes.data(), static_cast<unsigned int>(bytes.size()), &pos,
                                               c.arraySize, c.field, c.alignment, nullptr));
        EXPECT_STREQ(c.text, out.data());
        EXPECT_EQ(c.endPos, pos) << c.text;
    }
}

TEST(ParameterUtilsReadString, NullArrayIsReportedAndTheFieldSkipped)
{
    LogCapture                 capture;
    std::vector<unsigned char> bytes(16, 'a');
    unsigned int               pos = 0;
    EXPECT_FALSE(ParameterUtils::ReadString(nullptr, bytes.data(), 16, &pos, 8, 6, 4, nullptr));
    EXPECT_EQ(8u, pos);
    EXPECT_EQ(1u, capture.Count("ReadBuffer failed to allocate space for a string of 6 length\n"));
}

// Into a new string: it stops at a zero byte, the field's width or the buffer's end.
TEST(ParameterUtilsReadString, IntoANewString)
{
    struct Case
    {
        unsigned int pos;
        unsigned int field;
        unsigned int alignment;
        const char*  text;
        unsigned int endPos;
    };
    std::vector<unsigned char> bytes = Image(std::string("ab\0cdefgh", 9));
    for (const Case& c :
         {Case{0, 6, 4, "ab", 8}, Case{3, 3, 1, "cde", 6}, Case{6, 8, 1, "fgh", 14}, Case{1, 0, 8, "", 1}})
    {
        unsigned int pos  = c.pos;
        char*        text = ParameterUtils::ReadString(bytes.data(), 9, &pos, c.field, c.alignment);
        ASSERT_NE(nullptr, text);
        EXPECT_STREQ(c.text, text);
        EXPECT_EQ(c.endPos, pos) << c.text;
        OrvoFree(text, OrvoMemFlagsNone, __FILE__, __LINE__);
    }
    unsigned int pos = 1;
    EXPECT_EQ(nullptr, ParameterUtils::ReadString(nullptr, 3, &pos, 2, 1));
    EXPECT_EQ(1u, pos);
}

TEST(ParameterUtilsReadBuffer, CopiesAndPads)
{
    std::vector<unsigned char> bytes = {1, 2, 3, 4, 5, 6, 7, 8};
    unsigned char              out[3];
    unsigned int               pos = 1;
    ASSERT_TRUE(ParameterUtils::ReadBuffer(out, bytes.data(), 8, &pos, 3, 4, nullptr));
    EXPECT_EQ((std::vector<unsigned char>{2, 3, 4}), std::vector<unsigned char>(out, out + 3));
    EXPECT_EQ(5u, pos);
}

TEST(ParameterUtilsReadBuffer, ShortReadCopiesWhatIsLeftAndStillMovesBySize)
{
    LogCapture                 capture;
    std::vector<unsigned char> bytes   = {1, 2, 3, 4, 5, 6, 7, 8};
    unsigned char              out[10] = {};
    unsigned int               pos     = 4;
    EXPECT_FALSE(ParameterUtils::ReadBuffer(out, bytes.data(), 8, &pos, 10, 1, nullptr));
    EXPECT_EQ((std::vector<unsigned char>{5, 6, 7, 8, 0}), std::vector<unsigned char>(out, out + 5));
    EXPECT_EQ(14u, pos);
    EXPECT_EQ(1u, capture.Count("ReadBuffer failed, read 4 bytes, expected 10 bytes\n"));
}

TEST(ParameterUtilsReadBuffer, NullArgumentsAreReportedAndOnlyAnEmptyReadSucceeds)
{
    LogCapture                 capture;
    std::vector<unsigned char> bytes(4, 0);
    unsigned char              out[4];
    unsigned int               pos = 0;
    EXPECT_FALSE(ParameterUtils::ReadBuffer(out, nullptr, 4, &pos, 2, 1, nullptr));
    EXPECT_TRUE(ParameterUtils::ReadBuffer(out, nullptr, 4, &pos, 0, 1, nullptr));
    EXPECT_EQ(2u, capture.Count("ReadBuffer called with nullptr buffer\n"));
    EXPECT_FALSE(ParameterUtils::ReadBuffer(nullptr, bytes.data(), 4, &pos, 2, 1, nullptr));
    EXPECT_EQ(1u, capture.Count("ReadBuffer called with nullptr value\n"));
    EXPECT_EQ(0u, pos);
    EXPECT_FALSE(ParameterUtils::ReadBuffer(out, bytes.data(), 4, nullptr, 2, 1, nullptr));
    EXPECT_EQ(1u, capture.Count("ReadBuffer called with nullptr pos\n"));
}

TEST(ParameterUtilsWriteString, NeedsRoomStrictlyBeforeTheEnd)
{
    LogCapture    capture;
    unsigned char buffer[7] = {};
    unsigned int  pos       = 0;
    EXPECT_FALSE(ParameterUtils::WriteString("hello", buffer, 6, &pos, true, nullptr));
    EXPECT_EQ(0u, pos);
    EXPECT_EQ(1u, capture.Count("Insufficient space in buffer to write string: hello\n"));

    EXPECT_TRUE(ParameterUtils::WriteString("hello", buffer, 7, &pos, true, nullptr));
    EXPECT_STREQ("hello", reinterpret_cast<char*>(buffer));
    EXPECT_EQ(6u, pos);
}

TEST(ParameterUtilsWriteString, WithoutTerminatorTheNextWriteJoinsOn)
{
    unsigned char buffer[16] = {};
    unsigned int  pos        = 0;
    ASSERT_TRUE(ParameterUtils::WriteString("a=1", buffer, 16, &pos, false, nullptr));
    EXPECT_EQ(3u, pos);
    ASSERT_TRUE(ParameterUtils::WriteString(";b=2", buffer, 16, &pos, true, nullptr));
    EXPECT_STREQ("a=1;b=2", reinterpret_cast<char*>(buffer));
    EXPECT_EQ(8u, pos);
}

TEST(ParameterUtilsWriteString, NullTextIsAnEmptyString)
{
    LogCapture    capture;
    unsigned char buffer[4] = {'x', 'x', 'x', 'x'};
    unsigned int  pos       = 0;
    EXPECT_TRUE(ParameterUtils::WriteString(nullptr, buffer, 4, &pos, true, nullptr));
    EXPECT_EQ(0, buffer[0]);
    EXPECT_EQ(1u, pos);
    EXPECT_FALSE(ParameterUtils::WriteString(nullptr, buffer, 1, &pos, true, nullptr));
    EXPECT_EQ(1u, capture.Count("Insufficient space in buffer to write string\n"));
}

TEST(ParameterUtilsText, StringPosFindsTheFirstOccurrence)
{
    EXPECT_EQ(2, ParameterUtils::GetStringPos("ab.c.d", '.'));
    EXPECT_EQ(0, ParameterUtils::GetStringPos("-1", '-'));
    EXPECT_EQ(-1, ParameterUtils::GetStringPos("abc", '.'));
    EXPECT_EQ(-1, ParameterUtils::GetStringPos("", '.'));
    EXPECT_EQ(-1, ParameterUtils::GetStringPos(nullptr, '.'));
}

TEST(ParameterUtilsText, SubStringStopsAtDelimiterEndOrRoom)
{
    char out[8];
    EXPECT_EQ(3u, ParameterUtils::GetSubString("abc|d", '|', out, sizeof(out)));
    EXPECT_STREQ("abc", out);
    EXPECT_EQ(2u, ParameterUtils::GetSubString("abc|d", '|', out, 3));
    EXPECT_STREQ("ab", out);
    EXPECT_EQ(4u, ParameterUtils::GetSubString("abcd", '|', out, sizeof(out)));
    EXPECT_STREQ("abcd", out);
    EXPECT_EQ(0u, ParameterUtils::GetSubString("|x", '|', out, sizeof(out)));
    EXPECT_STREQ("", out);

    strcpy(out, "keep");
    EXPECT_EQ(0u, ParameterUtils::GetSubString(nullptr, '|', out, sizeof(out)));
    EXPECT_EQ(0u, ParameterUtils::GetSubString("abc", '|', out, 0));
    EXPECT_STREQ("keep", out);
    EXPECT_EQ(0u, ParameterUtils::GetSubString("abc", '|', nullptr, 4));
}

// Name, index and used length of a variable path element; the caller's preset index stays
// where no digits follow the bracket.
TEST(ParameterUtilsText, VariableReadsNameIndexAndUsedLength)
{
    struct Case
    {
        const char*  text;
        unsigned int used;
        const char*  name;
        unsigned int index;
        unsigned int size;
    };
    for (const Case& c : {Case{"tab[12].x", 8, "tab", 12, 32}, Case{"tab[].x", 6, "tab", 7, 32},
                          Case{"plain", 5, "plain", 7, 32}, Case{"a.b.c", 2, "a", 7, 32}, Case{"", 0, "", 7, 4},
                          Case{"longname[3]", 11, "lon", 3, 4}, // the name is cut to the caller's size
                          Case{"t[-4]", 5, "t", 0, 4},          // a negative index clamps to 0
                          Case{"t[x]", 4, "t", 0, 4},           // refused digits read as 0.0, and that is taken
                          Case{"t[", 2, "t", 7, 4}})            // nothing behind the bracket
    {
        char         name[32] = "old";
        unsigned int index    = 7;
        EXPECT_EQ(c.used, ParameterUtils::GetVariable(c.text, name, index, c.size)) << c.text;
        EXPECT_STREQ(c.name, name) << c.text;
        EXPECT_EQ(c.index, index) << c.text;
    }
    char         name[4] = "old";
    unsigned int index   = 5;
    EXPECT_EQ(0u, ParameterUtils::GetVariable(nullptr, name, index, sizeof(name)));
}
} // namespace
