#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <limits>
#include <string>

#include "parameterutils.h"

namespace
{
struct Parsed
{
    double value;
    bool   success;
};

Parsed Parse(const char* text)
{
    Parsed parsed{0.0, false};
    parsed.value = ParameterUtils::StringToDouble(text, parsed.success);
    return parsed;
}

TEST(StringToDouble, ReadsPlainDecimals)
{
    EXPECT_EQ(1.5, Parse("1.5").value);
    EXPECT_TRUE(Parse("1.5").success);
    EXPECT_EQ(-2.25, Parse("-2.25").value);
    EXPECT_EQ(0.5, Parse(".5").value);
    EXPECT_EQ(123.0, Parse("123.").value);
    EXPECT_EQ(7.0, Parse("007").value);
    EXPECT_EQ(1e308, Parse(("1" + std::string(308, '0')).c_str()).value);
}

// Digits are added as digit * scale with one rounding each, the scale divided down by ten:
// "0.3" is therefore 3 * 0.1, which is not the double nearest to 0.3.
TEST(StringToDouble, AccumulatesDigitTimesScale)
{
    EXPECT_EQ(3.0 * 0.1, Parse("0.3").value);
    EXPECT_NE(0.3, Parse("0.3").value);
    EXPECT_EQ(1.0 / 10.0 / 10.0 / 10.0, Parse("0.001").value);
}

TEST(StringToDouble, LoneMinusIsNegativeZero)
{
    Parsed parsed = Parse("-");
    EXPECT_TRUE(parsed.success);
    EXPECT_EQ(0.0, parsed.value);
    EXPECT_TRUE(std::signbit(parsed.value));
}

// Whatever stands ahead of the first "-" is skipped unexamined.
TEST(StringToDouble, TextBeforeTheMinusIsSkipped)
{
    Parsed parsed = Parse("12-34");
    EXPECT_TRUE(parsed.success);
    EXPECT_EQ(-34.0, parsed.value);
    EXPECT_EQ(-5.0, Parse("abc-5").value);
}

TEST(StringToDouble, RefusesWhatIsNotItsOwnNumberText)
{
    for (const char* text : {"", "1.2.3", "1e3", "+1", " 1", "1 ", "1-2-3", "0x10", "1,5", "--1"})
    {
        Parsed parsed = Parse(text);
        EXPECT_FALSE(parsed.success) << '"' << text << '"';
        EXPECT_EQ(0.0, parsed.value) << '"' << text << '"';
    }
    bool success = true;
    EXPECT_EQ(0.0, ParameterUtils::StringToDouble(nullptr, success));
    EXPECT_FALSE(success);
}

struct Printed
{
    std::string text;
    bool        complete;
};

Printed Print(double value, unsigned int decimals, unsigned int size = 32)
{
    char buffer[64];
    memset(buffer, '#', sizeof(buffer));
    Printed printed{"", false};
    ParameterUtils::DoubleToString(value, buffer, size, decimals, printed.complete);
    printed.text = buffer;
    EXPECT_EQ('#', buffer[size]) << "wrote past the buffer";
    return printed;
}

TEST(DoubleToString, PrintsWholeAndFractionalValues)
{
    EXPECT_EQ("1.0", Print(1.0, 1).text);
    EXPECT_EQ("1.5", Print(1.5, 1).text);
    EXPECT_EQ("1.5", Print(1.5, 3).text); // trailing zeros go, one decimal stays
    EXPECT_EQ("-3.5", Print(-3.5, 2).text);
    EXPECT_EQ("100", Print(100.0, 0).text);
    EXPECT_EQ("0", Print(0.0, 0).text);
    EXPECT_EQ("0.0", Print(0.0, 2).text);
    EXPECT_EQ("0.0", Print(0.001, 2).text); // rounds down to nothing behind the point
    EXPECT_TRUE(Print(1.5, 1).complete);
}

TEST(DoubleToString, PrintsLargeExponentsDigitByDigit)
{
    EXPECT_EQ("100000000000000000000", Print(1e20, 0).text);
    EXPECT_EQ("1500000000000000.0", Print(1.5e15, 1).text);
    EXPECT_EQ("-4096.0", Print(-4096.0, 3).text);
}

// The decimal digit is the truncated quotient of an inexact remainder: 1.25 leaves
// 0.0499999... after its "2", so at 1 decimal it prints "1.2". The algorithm's answer holds
// over the worked example that says "1.3"; at 2 decimals the next digit (9) rounds back up.
TEST(DoubleToString, RoundsOnTheNextComputedDigit)
{
    EXPECT_EQ("1.2", Print(1.25, 1).text);
    EXPECT_EQ("1.25", Print(1.25, 2).text);
    EXPECT_EQ("-0.25", Print(-0.25, 2).text);
}

TEST(DoubleToString, CarryRunsThroughNinesAndAddsALeadingOne)
{
    EXPECT_EQ("10.0", Print(9.96, 1).text);
    EXPECT_EQ("100.0", Print(99.96, 1).text);
    // A carried "9" behind the first decimal place is dropped rather than made "0".
    EXPECT_EQ("0.1", Print(0.0999, 3).text);
}

// Required: the carry does not know the sign; through "-9" it turns the "-" into ".".
TEST(DoubleToString, CarryIntoTheSignMakesItAPoint)
{
    EXPECT_EQ(".0.0", Print(-9.96, 1).text);
}

TEST(DoubleToString, CarryWithoutRoomIsLost)
{
    EXPECT_EQ("0.0", Print(9.96, 1, 4).text);
}

// With no decimals no point is written: a fraction runs on as more digits until the remainder
// is zero or the buffer is full. 2.5 leaves a tiny negative remainder after its "5", so the
// digits go on (as zeros here) until the buffer is full; the worked example's "25" is what a
// buffer of 3 holds.
TEST(DoubleToString, NoDecimalsMeansNoPoint)
{
    EXPECT_EQ("25", Print(2.5, 0, 3).text);
    EXPECT_EQ("2500000", Print(2.5, 0, 8).text);
}

TEST(DoubleToString, StopsAtTheBufferEnd)
{
    Printed cut = Print(123456.0, 0, 4);
    EXPECT_EQ("123", cut.text);
    EXPECT_FALSE(cut.complete); // 456 were left over
    EXPECT_EQ("15", Print(1.5, 1, 3).text); // no room for a point and a decimal: digits run on
}

TEST(DoubleToString, TinyBuffers)
{
    Printed empty = Print(5.0, 1, 1);
    EXPECT_EQ("", empty.text);
    EXPECT_FALSE(empty.complete);

    EXPECT_EQ("", Print(-5.0, 1, 1).text); // no room for a sign and its terminator

    // With room for the sign only, a magnitude below 10 still reports whether it is at most 1.
    Printed half = Print(-0.5, 1, 2);
    EXPECT_EQ("-", half.text);
    EXPECT_TRUE(half.complete);
    EXPECT_FALSE(Print(-5.0, 1, 2).complete);
    EXPECT_FALSE(Print(-50.0, 1, 2).complete);
}

TEST(DoubleToString, RefusesBadArguments)
{
    bool complete = true;
    ParameterUtils::DoubleToString(1.0, nullptr, 8, 1, complete);
    EXPECT_FALSE(complete);

    char buffer[4] = "abc";
    complete       = true;
    ParameterUtils::DoubleToString(1.0, buffer, 0, 1, complete);
    EXPECT_FALSE(complete);
    EXPECT_STREQ("abc", buffer);

    for (double value : {std::numeric_limits<double>::quiet_NaN(), std::numeric_limits<double>::infinity(),
                         -std::numeric_limits<double>::infinity()})
    {
        Printed printed = Print(value, 2);
        EXPECT_EQ("", printed.text);
        EXPECT_FALSE(printed.complete);
    }
}

// What the tool reads back: the printer's text of a value with few decimals parses to the
// same digits.
TEST(NumberText, PrintedTextParsesBack)
{
    for (double value : {0.5, 1.5, -3.25, 42.0, 1024.75})
    {
        Printed printed = Print(value, 4);
        Parsed  parsed  = Parse(printed.text.c_str());
        EXPECT_TRUE(parsed.success) << printed.text;
        EXPECT_EQ(value, parsed.value) << printed.text;
    }
}
} // namespace
