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

TEST(StringToDouble, ReadsItsOwnNumberText)
{
    struct Case
    {
        std::string text;
        double      value;
    };
    // Digits are added as digit * scale with one rounding each, the scale divided down by ten:
    // "0.3" is therefore 3 * 0.1, which is not the double nearest to 0.3. Whatever stands ahead
    // of the first "-" is skipped unexamined.
    for (const Case& c : {Case{"1.5", 1.5}, Case{"-2.25", -2.25}, Case{".5", 0.5}, Case{"123.", 123.0},
                          Case{"007", 7.0}, Case{"1" + std::string(308, '0'), 1e308}, Case{"0.3", 3.0 * 0.1},
                          Case{"0.001", 1.0 / 10.0 / 10.0 / 10.0}, Case{"12-34", -34.0}, Case{"abc-5", -5.0}})
    {
        Parsed parsed = Parse(c.text.c_str());
        EXPECT_TRUE(parsed.success) << c.text;
        EXPECT_EQ(c.value, parsed.value) << c.text;
    }
    EXPECT_NE(0.3, Parse("0.3").value);

    Parsed minus = Parse("-"); // a lone minus is negative zero
    EXPECT_TRUE(minus.success);
    EXPECT_EQ(0.0, minus.value);
    EXPECT_TRUE(std::signbit(minus.value));
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

TEST(DoubleToString, WorkedExamples)
{
    struct Case
    {
        double       value;
        unsigned int decimals;
        unsigned int size;
        std::string  text;
    };
    const Case cases[] = {
        {1.0, 1, 32, "1.0"},
        {1.5, 1, 32, "1.5"},
        {1.5, 3, 32, "1.5"}, // trailing zeros go, one decimal stays
        {-3.5, 2, 32, "-3.5"},
        {100.0, 0, 32, "100"},
        {0.0, 0, 32, "0"},
        {0.0, 2, 32, "0.0"},
        {0.001, 2, 32, "0.0"}, // rounds down to nothing behind the point
        // Large exponents are printed digit by digit.
        {1e20, 0, 32, "100000000000000000000"},
        {1.5e15, 1, 32, "1500000000000000.0"},
        {-4096.0, 3, 32, "-4096.0"},
        // The decimal digit is the truncated quotient of an inexact remainder: 1.25 leaves
        // 0.0499999... after its "2", so at 1 decimal it prints "1.2". The algorithm's answer holds
        // over the worked example that says "1.3"; at 2 decimals the next digit (9) rounds back up.
        {1.25, 1, 32, "1.2"},
        {1.25, 2, 32, "1.25"},
        {-0.25, 2, 32, "-0.25"},
        // The carry runs through nines and adds a leading one.
        {9.96, 1, 32, "10.0"},
        {99.96, 1, 32, "100.0"},
        {0.0999, 3, 32, "0.1"}, // a carried "9" behind the first decimal place is dropped, not made "0"
        {-9.96, 1, 32, ".0.0"}, // required: the carry does not know the sign; through "-9" the "-" becomes "."
        {9.96, 1, 4, "0.0"},    // a carry without room is lost
        // With no decimals no point is written: a fraction runs on as more digits until the
        // remainder is zero or the buffer is full. 2.5 leaves a tiny negative remainder after its
        // "5", so the digits go on (as zeros here) until the buffer is full; the worked example's
        // "25" is what a buffer of 3 holds.
        {2.5, 0, 3, "25"},
        {2.5, 0, 8, "2500000"},
        {123456.0, 0, 4, "123"}, // stops at the buffer end
        {1.5, 1, 3, "15"},       // no room for a point and a decimal: digits run on
    };
    for (const Case& c : cases)
    {
        EXPECT_EQ(c.text, Print(c.value, c.decimals, c.size).text) << c.value << " at " << c.decimals;
    }
    EXPECT_TRUE(Print(1.5, 1).complete);
    EXPECT_FALSE(Print(123456.0, 0, 4).complete); // 456 were left over
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
