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

TEST(ParameterUtilsReadString, FieldWidthMovesThePositionWithPadding)
{
    std::vector<unsigned char> bytes = Image(std::string("name") + std::string(28, '\0') + "next");
    char                       out[29];
    unsigned int               pos = 0;
    ASSERT_TRUE(ParameterUtils::ReadString(out, bytes.data(), 36, &pos, sizeof(out), 28, 8, nullptr));
    EXPECT_STREQ("name", out);
    EXPECT_EQ(32u, pos);

    pos = 0;
    char wide[33];
    ASSERT_TRUE(ParameterUtils::ReadString(wide, bytes.data(), 36, &pos, sizeof(wide), 32, 8, nullptr));
    EXPECT_EQ(32u, pos);
}

TEST(ParameterUtilsReadString, FullFieldWithoutTerminatorIsTerminatedByTheArray)
{
    std::vector<unsigned char> bytes = Image("ABCDEFGH");
    char                       out[9];
    memset(out, 'z', sizeof(out));
    unsigned int pos = 0;
    ASSERT_TRUE(ParameterUtils::ReadString(out, bytes.data(), 8, &pos, sizeof(out), 8, 1, nullptr));
    EXPECT_STREQ("ABCDEFGH", out);
}

TEST(ParameterUtilsReadString, ShortBufferCopiesWhatIsThereAndStillMovesByTheField)
{
    std::vector<unsigned char> bytes = Image("xyAB");
    char                       out[9];
    memset(out, 0, sizeof(out));
    unsigned int pos = 2;
    ASSERT_TRUE(ParameterUtils::ReadString(out, bytes.data(), 4, &pos, sizeof(out), 8, 4, nullptr));
    EXPECT_STREQ("AB", out);
    EXPECT_EQ(10u, pos);
}

TEST(ParameterUtilsReadString, FieldWiderThanTheArrayStaysInsideIt)
{
    std::vector<unsigned char> bytes = Image("0123456789");
    char                       out[5];
    unsigned int               pos = 0;
    ASSERT_TRUE(ParameterUtils::ReadString(out, bytes.data(), 10, &pos, sizeof(out), 10, 1, nullptr));
    EXPECT_STREQ("0123", out);
    EXPECT_EQ(10u, pos);
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

TEST(ParameterUtilsReadString, NewStringStopsAtZeroFieldOrEnd)
{
    std::vector<unsigned char> bytes = Image(std::string("ab\0cdefgh", 9));
    unsigned int               pos   = 0;
    char*                      text  = ParameterUtils::ReadString(bytes.data(), 9, &pos, 6, 4);
    ASSERT_NE(nullptr, text);
    EXPECT_STREQ("ab", text); // stopped at the zero byte
    EXPECT_EQ(8u, pos);
    OrvoFree(text, OrvoMemFlagsNone, __FILE__, __LINE__);

    pos  = 3;
    text = ParameterUtils::ReadString(bytes.data(), 9, &pos, 3, 1);
    ASSERT_NE(nullptr, text);
    EXPECT_STREQ("cde", text); // stopped at the field's width
    EXPECT_EQ(6u, pos);
    OrvoFree(text, OrvoMemFlagsNone, __FILE__, __LINE__);

    pos  = 6;
    text = ParameterUtils::ReadString(bytes.data(), 9, &pos, 8, 1);
    ASSERT_NE(nullptr, text);
    EXPECT_STREQ("fgh", text); // stopped at the end of the buffer
    EXPECT_EQ(14u, pos);
    OrvoFree(text, OrvoMemFlagsNone, __FILE__, __LINE__);
}

TEST(ParameterUtilsReadString, NewStringOfAnEmptyFieldOrNullBuffer)
{
    std::vector<unsigned char> bytes = Image("abc");
    unsigned int               pos   = 1;
    char*                      text  = ParameterUtils::ReadString(bytes.data(), 3, &pos, 0, 8);
    ASSERT_NE(nullptr, text);
    EXPECT_STREQ("", text);
    EXPECT_EQ(1u, pos);
    OrvoFree(text, OrvoMemFlagsNone, __FILE__, __LINE__);

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
    std::vector<unsigned char> bytes = {1, 2, 3, 4, 5, 6, 7, 8};
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

TEST(ParameterUtilsText, VariableReadsNameIndexAndUsedLength)
{
    char         name[32];
    unsigned int index = 99;
    EXPECT_EQ(8u, ParameterUtils::GetVariable("tab[12].x", name, index, sizeof(name)));
    EXPECT_STREQ("tab", name);
    EXPECT_EQ(12u, index);

    index = 99;
    EXPECT_EQ(6u, ParameterUtils::GetVariable("tab[].x", name, index, sizeof(name)));
    EXPECT_STREQ("tab", name);
    EXPECT_EQ(99u, index); // no digits: the caller's preset stays

    EXPECT_EQ(5u, ParameterUtils::GetVariable("plain", name, index, sizeof(name)));
    EXPECT_STREQ("plain", name);
    EXPECT_EQ(99u, index);

    EXPECT_EQ(2u, ParameterUtils::GetVariable("a.b.c", name, index, sizeof(name)));
    EXPECT_STREQ("a", name);
}

TEST(ParameterUtilsText, VariableEdgeCases)
{
    char         name[4] = "old";
    unsigned int index   = 5;
    EXPECT_EQ(0u, ParameterUtils::GetVariable("", name, index, sizeof(name)));
    EXPECT_STREQ("", name);
    EXPECT_EQ(0u, ParameterUtils::GetVariable(nullptr, name, index, sizeof(name)));

    EXPECT_EQ(11u, ParameterUtils::GetVariable("longname[3]", name, index, sizeof(name)));
    EXPECT_STREQ("lon", name); // cut to the caller's size
    EXPECT_EQ(3u, index);

    EXPECT_EQ(5u, ParameterUtils::GetVariable("t[-4]", name, index, sizeof(name)));
    EXPECT_EQ(0u, index); // a negative index clamps to 0

    index = 7;
    ParameterUtils::GetVariable("t[x]", name, index, sizeof(name));
    EXPECT_EQ(0u, index); // refused digits read as 0.0, and that is taken

    index = 7;
    ParameterUtils::GetVariable("t[", name, index, sizeof(name));
    EXPECT_EQ(7u, index); // nothing behind the bracket
    EXPECT_STREQ("t", name);
}
} // namespace
