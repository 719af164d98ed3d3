#include <gtest/gtest.h>

#include <cstdio>
#include <string>
#include <vector>

#include "logcapture.h"
#include "orvomem.h"
#include "parameterbinaryfile.h"
#include "tempfile.h"

namespace
{
using testsupport::LogCapture;

std::vector<unsigned char> Bytes(std::initializer_list<int> values)
{
    std::vector<unsigned char> bytes;
    for (int value : values)
    {
        bytes.push_back(static_cast<unsigned char>(value));
    }
    return bytes;
}

// The image of a valid tuning file: payload, then the CRC-32 of the payload little-endian.
std::vector<unsigned char> Stamped(std::vector<unsigned char> payload)
{
    uint32_t crc = ParameterBinaryFile::ComputeCRC(payload.data(), payload.size());
    for (int shift = 0; shift < 32; shift += 8)
    {
        payload.push_back(static_cast<unsigned char>(crc >> shift));
    }
    return payload;
}

class ParameterBinaryFileTest : public testing::Test
{
protected:
    storetest::TempFile m_file{std::string("binaryfile_") +
                               testing::UnitTest::GetInstance()->current_test_info()->name()};
    const std::string&  m_path = m_file.Path();
    LogCapture          m_log;
};

TEST(ParameterBinaryFileImage, ValidatesAgainstItsLastFourBytes)
{
    std::vector<unsigned char> image = Stamped(std::vector<unsigned char>(1000, 0x5A));
    EXPECT_TRUE(ParameterBinaryFile::ValidateCRC(image.data(), static_cast<unsigned int>(image.size()), nullptr));
    image[500] ^= 0x10;
    EXPECT_FALSE(ParameterBinaryFile::ValidateCRC(image.data(), static_cast<unsigned int>(image.size()), nullptr));
}

TEST_F(ParameterBinaryFileTest, OpensValidFileWithOneReference)
{
    std::vector<unsigned char> image = Stamped(Bytes({1, 2, 3, 4, 5, 6, 7, 8}));
    m_file.Store(image);
    ParameterBinaryFile file(m_path.c_str(), nullptr, true);
    EXPECT_TRUE(file.m_valid);
    EXPECT_TRUE(file.m_crcValid);
    EXPECT_FALSE(file.m_modified);
    EXPECT_NE(nullptr, file.m_file);
    EXPECT_EQ(1, file.m_references);
    EXPECT_EQ(image.size(), file.m_length);
    EXPECT_STREQ(m_path.c_str(), file.m_path);
    EXPECT_NE(0, file.m_modifiedTime);
    EXPECT_EQ(0u, m_log.Count("[ERROR]"));
    // Without validation the check value is not read.
    EXPECT_FALSE(ParameterBinaryFile(m_path.c_str(), nullptr, false).m_crcValid);
}

TEST_F(ParameterBinaryFileTest, FourBytesAreTooFewToValidateAndFiveCheckTheirOneByte)
{
    m_file.Store(Bytes({0, 0, 0, 0}));
    ParameterBinaryFile tooSmall(m_path.c_str(), nullptr, true);
    EXPECT_TRUE(tooSmall.m_valid);
    EXPECT_FALSE(tooSmall.m_crcValid);
    EXPECT_EQ(1u, m_log.Count("Binary file CRC validation failed. Buffer too small\n"));

    std::vector<unsigned char> image = Stamped(Bytes({0x5A}));
    m_file.Store(image);
    EXPECT_TRUE(ParameterBinaryFile(m_path.c_str(), nullptr, true).m_crcValid);
    image[0] = 0x5B;
    m_file.Store(image);
    EXPECT_FALSE(ParameterBinaryFile(m_path.c_str(), nullptr, true).m_crcValid);
}

TEST_F(ParameterBinaryFileTest, MismatchReportsStoredAndComputedValues)
{
    std::vector<unsigned char> image    = Stamped(Bytes({9, 8, 7, 6, 5}));
    uint32_t                   computed = ParameterBinaryFile::ComputeCRC(image.data(), 5);
    image[5] ^= 0xFF; // spoil the stored value's low byte
    uint32_t stored = static_cast<uint32_t>(image[5]) | (static_cast<uint32_t>(image[6]) << 8) |
                      (static_cast<uint32_t>(image[7]) << 16) | (static_cast<uint32_t>(image[8]) << 24);
    m_file.Store(image);

    ParameterBinaryFile file(m_path.c_str(), nullptr, true);
    EXPECT_FALSE(file.m_crcValid);
    char message[128];
    snprintf(message, sizeof(message), "Binary file CRC validation failed. Expected: %8x, Actual: %8x\n", stored,
             computed);
    auto lines = m_log.Matching(message);
    ASSERT_EQ(1u, lines.size());
    EXPECT_EQ("E", lines[0].levelLetter);
}

TEST_F(ParameterBinaryFileTest, BadNamesLeaveAClosedInvalidObject)
{
    ParameterBinaryFile unnamed(nullptr, nullptr, true);
    EXPECT_FALSE(unnamed.m_valid);
    EXPECT_EQ(nullptr, unnamed.m_file);
    EXPECT_EQ(1u, m_log.Count("ParameterBinaryFile constructor called with null file name\n"));

    std::string         longName(1023, 'x');
    ParameterBinaryFile tooLong(longName.c_str(), nullptr, true);
    EXPECT_FALSE(tooLong.m_valid);
    EXPECT_EQ(0, tooLong.m_references);
    EXPECT_EQ(1u, m_log.Count("ParameterBinaryFile constructor file name length (1023) exceeds max length: 1022\n"));
}

TEST_F(ParameterBinaryFileTest, MissingFileIsReportedAndCountedAnyway)
{
    {
        ParameterBinaryFile file(m_path.c_str(), nullptr, true);
        EXPECT_FALSE(file.m_valid);
        EXPECT_EQ(1, file.m_references); // required: the count rises even when the open fails
        EXPECT_EQ(1u, m_log.Count("Failed to open binary file '" + m_path + "' errno: 2\n"));
        EXPECT_EQ(0u, m_log.Count("ParameterBinaryFile::Open failed")); // that open doesn't log
        EXPECT_EQ(nullptr, file.Read(0, 4));
    }
    EXPECT_EQ(1u, m_log.Count("FileReference Remove: -1, Ref Cnt: 1, Called when file was already closed\n"));
}

TEST_F(ParameterBinaryFileTest, ReadEndingAtTheLengthSucceedsAndOneMoreFailsWithoutFileAccess)
{
    std::vector<unsigned char> image = Stamped(Bytes({10, 11, 12, 13, 14, 15, 16, 17}));
    m_file.Store(image);
    ParameterBinaryFile file(m_path.c_str(), nullptr, true);

    unsigned char head[2] = {};
    unsigned int  pos     = 0;
    ASSERT_TRUE(file.Read(head, 0, &pos, 2, 1));
    long streamPosition = ftell(file.m_file);

    std::vector<unsigned char> tail(6);
    pos = 2;
    ASSERT_TRUE(file.Read(tail.data(), 4, &pos, 6, 1)); // bytes 6 to 11, the last of 12
    EXPECT_EQ(std::vector<unsigned char>(image.begin() + 6, image.end()), tail);
    EXPECT_EQ(8u, pos);
    streamPosition = ftell(file.m_file);

    pos = 2;
    EXPECT_FALSE(file.Read(tail.data(), 4, &pos, 7, 1));
    EXPECT_EQ(2u, pos);
    EXPECT_EQ(streamPosition, ftell(file.m_file)); // refused before any seek
    EXPECT_EQ(1u, m_log.Count("ParameterBinaryFile::Read attempted to read past the end of the file, offset: 4, "
                              "pos: 2, count: 7, length: 12\n"));
}

TEST_F(ParameterBinaryFileTest, ReadRefusesBadArgumentsInOrder)
{
    m_file.Store(Stamped(Bytes({1, 2, 3, 4})));
    ParameterBinaryFile file(m_path.c_str(), nullptr, true);
    unsigned char       byte;
    unsigned int        pos = 0;

    EXPECT_FALSE(file.Read(nullptr, 0, nullptr, 1, 1));
    EXPECT_EQ(1u, m_log.Count("ParameterBinaryFile::Read called with null value\n"));
    EXPECT_FALSE(file.Read(&byte, 0, nullptr, 1, 1));
    EXPECT_EQ(1u, m_log.Count("ParameterBinaryFile::Read called with null pos\n"));
    EXPECT_EQ(nullptr, file.Read(0, 0));
    EXPECT_EQ(1u, m_log.Count("ParameterBinaryFile::Read called with 0 count\n"));

    file.Reference(-1);
    EXPECT_FALSE(file.Read(&byte, 0, &pos, 1, 1));
    EXPECT_EQ(1u, m_log.Count("ParameterBinaryFile::Read called with null file\n"));
}

TEST_F(ParameterBinaryFileTest, ReadsMoveByThePaddedCountOrCopyIntoANewBuffer)
{
    std::vector<unsigned char> image = Stamped(Bytes({1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12}));
    m_file.Store(image);
    ParameterBinaryFile file(m_path.c_str(), nullptr, true);
    unsigned char       value[5];
    unsigned int        pos = 0;
    ASSERT_TRUE(file.Read(value, 0, &pos, 5, 8));
    EXPECT_EQ(8u, pos);
    ASSERT_TRUE(file.Read(value, 0, &pos, 4, 4));
    EXPECT_EQ(12u, pos);
    ASSERT_TRUE(file.Read(value, 0, &pos, 0, 4)); // nothing to read is a success
    EXPECT_EQ(12u, pos);
    EXPECT_EQ(0, memcmp(image.data() + 8, value, 4));

    unsigned char* data = file.Read(2, 3);
    ASSERT_NE(nullptr, data);
    EXPECT_EQ(0, memcmp(image.data() + 2, data, 3));
    OrvoFree(data, OrvoMemFlagsNone, __FILE__, __LINE__);

    // A huge count fails on the length check and allocates nothing of its size.
    EXPECT_EQ(nullptr, file.Read(0, 1ul << 40));
    EXPECT_EQ(1u, m_log.Count("attempted to read past the end of the file"));
}

TEST_F(ParameterBinaryFileTest, ReferencesCloseAtZeroReopenAndReportUnderflow)
{
    m_file.Store(Stamped(Bytes({1, 2, 3})));
    ParameterBinaryFile file(m_path.c_str(), nullptr, true);
    EXPECT_EQ(1u, m_log.Count("FileReference Adjust: 1, RefCount: 0, opening the file\n")); // the constructor's
    m_log.Clear();

    EXPECT_EQ(2, file.Reference(1)); // already open: just counted
    EXPECT_EQ(1, file.Reference(-1));
    EXPECT_EQ(0, file.Reference(-1));
    EXPECT_EQ(nullptr, file.m_file);
    EXPECT_EQ(1u, m_log.Count("FileReference Adjust: -1, RefCount: 0, closing the file\n"));

    EXPECT_EQ(1, file.Reference(1));
    EXPECT_NE(nullptr, file.m_file);
    EXPECT_EQ(1u, m_log.Count("FileReference Adjust: 1, RefCount: 0, opening the file\n"));
    EXPECT_FALSE(file.m_modified);
    EXPECT_EQ(1, file.Reference(0));
    EXPECT_EQ(0u, m_log.Count("[ERROR]"));

    EXPECT_EQ(0, file.Reference(-3));
    EXPECT_EQ(1u, m_log.Count("FileReference Adjust: -3, RefCount: 1, File Reference is less than adjust amount\n"));
    EXPECT_EQ(nullptr, file.m_file);
    EXPECT_EQ(0, file.Reference(-1));
    EXPECT_EQ(1u, m_log.Count("FileReference Remove: -1, Ref Cnt: 0, Called when file was already closed\n"));
}

// A changed modification time marks the file modified on reopen; reads then fail quietly until
// a reload puts the object onto the new file.
TEST_F(ParameterBinaryFileTest, ReopenDetectsAChangeAndReloadTakesTheNewFile)
{
    m_file.Store(Stamped(Bytes({1, 2, 3, 4})));
    ParameterBinaryFile file(m_path.c_str(), nullptr, true);
    file.Reference(-1);
    std::vector<unsigned char> replacement = Stamped(Bytes({9, 9, 9, 9, 9, 9, 9, 9}));
    m_file.Store(replacement);
    m_file.ShiftModifiedTime(5);

    file.Reference(1);
    EXPECT_TRUE(file.m_modified);
    auto warnings = m_log.Matching("ParameterBinaryFile::Open, file modified, must reload\n");
    ASSERT_EQ(1u, warnings.size());
    EXPECT_EQ("W", warnings[0].levelLetter);
    m_log.Clear();
    unsigned char byte;
    unsigned int  pos = 0;
    EXPECT_FALSE(file.Read(&byte, 0, &pos, 1, 1));
    EXPECT_EQ(nullptr, file.Read(0, 1));
    EXPECT_EQ(0u, pos);
    EXPECT_EQ(0u, m_log.Lines().size());
    file.Reference(-1);

    EXPECT_TRUE(file.Reload());
    EXPECT_FALSE(file.m_modified);
    EXPECT_TRUE(file.m_valid);
    EXPECT_EQ(replacement.size(), file.m_length);
    EXPECT_EQ(nullptr, file.m_file); // nobody holds a reference after a reload
    EXPECT_EQ(0, file.m_references);

    EXPECT_EQ(1, file.Reference(1));
    unsigned char* data = file.Read(0, 8);
    ASSERT_NE(nullptr, data);
    EXPECT_EQ(0, memcmp(replacement.data(), data, 8));
    OrvoFree(data, OrvoMemFlagsNone, __FILE__, __LINE__);
}

// A file cut short on disk behind the object's back, with its time put back, reads short:
// each of 4 attempts fails and the 3 between them reopen the file.
TEST_F(ParameterBinaryFileTest, FailingDiskReadRetriesFourTimes)
{
    m_file.Store(Stamped(std::vector<unsigned char>(60, 0x42)));
    ParameterBinaryFile file(m_path.c_str(), nullptr, true);
    ASSERT_TRUE(file.m_crcValid);
    // A fresh stream, so that nothing of the file is buffered from the check of its CRC.
    file.Reference(-1);
    file.Reference(1);

    m_file.StoreUnnoticed(std::vector<unsigned char>(16, 0x42));

    unsigned char buffer[32];
    unsigned int  pos = 8;
    EXPECT_FALSE(file.Read(buffer, 0, &pos, 32, 1));
    EXPECT_EQ(8u, pos);
    EXPECT_EQ(3u, m_log.Count("ParameterBinaryFile::Read failed, retrying\n"));
    EXPECT_EQ(4u,
              m_log.Count("Read failed to read from file, ferror: 0, offset: 0, pos: 8, requested: 32, actual: 8\n"));
    EXPECT_FALSE(file.m_modified);
    EXPECT_NE(nullptr, file.m_file);
}

TEST_F(ParameterBinaryFileTest, DestructorReportsOutstandingReferences)
{
    m_file.Store(Stamped(Bytes({1})));
    {
        ParameterBinaryFile file(m_path.c_str(), nullptr, true);
        file.Reference(2);
    }
    EXPECT_EQ(1u, m_log.Count("ParameterBinaryFile deleted with outstanding references: 3\n"));
    EXPECT_EQ(1u, m_log.Count("FileReference Adjust: -3, RefCount: 0, closing the file\n"));

    m_log.Clear();
    {
        ParameterBinaryFile file(m_path.c_str(), nullptr, true);
    }
    EXPECT_EQ(0u, m_log.Count("outstanding references")); // the constructor's own one is expected
}
} // namespace
