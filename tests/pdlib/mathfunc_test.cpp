// The three interpolators: integer points, double arithmetic, results truncated toward zero,
// no extrapolation.
#include <array>
#include <vector>

#include <gtest/gtest.h>

#include "PdafMathFunc.h"

namespace
{
long Line(long x0, long y0, long x1, long y1, long at)
{
    long x[2] = {x0, x1};
    long y[2] = {y0, y1};
    long result = 0x5EED;
    CalcAddressOnLine_slXslY(x, y, at, &result);
    return result;
}

TEST(LineTest, EqualAddressesGiveTheMeanRoundedTowardZeroWhereverAsked)
{
    EXPECT_EQ(-1, Line(10, -3, 10, 0, 10));
    EXPECT_EQ(3, Line(10, 3, 10, 4, 10));
    EXPECT_EQ(3, Line(10, 3, 10, 4, -500));
    EXPECT_EQ(7, Line(10, 7, 10, 7, 99));
}

TEST(LineTest, InterpolatesAndTruncatesTowardZero)
{
    EXPECT_EQ(3, Line(0, 0, 3, 10, 1));
    EXPECT_EQ(6, Line(0, 0, 3, 10, 2));
    EXPECT_EQ(-3, Line(0, 0, 3, -10, 1));
    EXPECT_EQ(5, Line(0, 5, 3, 5, 1000));
}

TEST(LineTest, ReversedPointsGiveTheSameAsForward)
{
    EXPECT_EQ(Line(0, 0, 3, 10, 1), Line(3, 10, 0, 0, 1));
    EXPECT_EQ(0, Line(3, 10, 0, 0, -5));
    EXPECT_EQ(10, Line(3, 10, 0, 0, 9));
}

TEST(LineTest, BeyondEitherEndGivesThatEnd)
{
    EXPECT_EQ(0, Line(0, 0, 3, 10, -5));
    EXPECT_EQ(10, Line(0, 0, 3, 10, 9));
}

TEST(LineTest, DifferencesBeyondTheIntegerRangeStayExactInDouble)
{
    // y1 - y0 is 8e18, which no 64-bit integer holds.
    EXPECT_EQ(0, Line(0, -4000000000000000000L, 2, 4000000000000000000L, 1));
}

struct BrokenLineResult
{
    signed char   rc;
    unsigned long value;
};

BrokenLineResult BrokenLine(std::vector<unsigned long> x, std::vector<unsigned long> y, unsigned long at)
{
    BrokenLineResult result = {0, 0x5EED};
    result.rc = CalcAddressOnBrokenLine_ulXulY(x.data(), y.data(), x.size(), at, &result.value);
    return result;
}

void ExpectRefused(const BrokenLineResult& result)
{
    EXPECT_EQ(-1, result.rc);
    EXPECT_EQ(0x5EEDUL, result.value);
}

void ExpectValue(unsigned long expected, const BrokenLineResult& result)
{
    EXPECT_EQ(0, result.rc);
    EXPECT_EQ(expected, result.value);
}

TEST(BrokenLineTest, RefusesFewerThanTwoPoints)
{
    ExpectRefused(BrokenLine({0}, {300}, 0));
    ExpectRefused(BrokenLine({}, {}, 0));
}

TEST(BrokenLineTest, RefusesValuesAboveInt32AndDecreasingGains)
{
    ExpectRefused(BrokenLine({0, 2}, {100, 0x80000000UL}, 1));
    ExpectRefused(BrokenLine({0, 0x80000000UL}, {100, 200}, 1));
    ExpectRefused(BrokenLine({0, 8}, {100, 200}, 0x80000000UL));
    ExpectRefused(BrokenLine({0, 5, 2}, {100, 200, 300}, 1));
    ExpectValue(0x7FFFFFFFUL, BrokenLine({0, 0x7FFFFFFFUL}, {1, 0x7FFFFFFFUL}, 0x7FFFFFFFUL));
}

TEST(BrokenLineTest, OutsideTheGainsGivesTheEndValue)
{
    ExpectValue(300, BrokenLine({0, 2, 5, 8}, {300, 300, 300, 300}, 100));
    ExpectValue(5, BrokenLine({10, 20}, {5, 50}, 3));
}

TEST(BrokenLineTest, InnerKnotUsesTheSegmentBelow)
{
    ExpectValue(200, BrokenLine({0, 2, 5, 8}, {100, 200, 300, 400}, 2));
    ExpectValue(233, BrokenLine({0, 2, 5, 8}, {100, 200, 300, 400}, 3));
    ExpectValue(400, BrokenLine({0, 2, 5, 8}, {100, 200, 300, 400}, 8));
}

TEST(BrokenLineTest, ZeroWidthSegmentGivesTheMeanOfItsEnds)
{
    ExpectValue(200, BrokenLine({2, 2, 5}, {100, 300, 500}, 2));
}

struct PlaneResult
{
    signed char rc;
    long        value;
};

PlaneResult Plane(long x0, long x1, long y0, long y1, std::array<long, 4> z, long atX, long atY)
{
    long x[2] = {x0, x1};
    long y[2] = {y0, y1};
    PlaneResult result = {0, 0x5EED};
    result.rc = CalcAddressOnPlane_slXslYslZ(x, y, z.data(), atX, atY, &result.value);
    return result;
}

TEST(PlaneTest, RefusesPointsOutsideAndDegeneratePatches)
{
    const std::array<long, 4> z = {100, 200, 300, 400};
    for (const PlaneResult& refused : {Plane(10, 10, 0, 20, z, 10, 5), Plane(0, 10, 20, 20, z, 5, 20),
                                       Plane(0, 10, 20, 0, z, 5, 10), Plane(0, 10, 0, 20, z, -1, 5),
                                       Plane(0, 10, 0, 20, z, 11, 5), Plane(0, 10, 0, 20, z, 5, -1),
                                       Plane(0, 10, 0, 20, z, 5, 21)})
    {
        EXPECT_EQ(-1, refused.rc);
        EXPECT_EQ(0x5EED, refused.value);
    }
}

TEST(PlaneTest, CornersGiveTheirValues)
{
    const std::array<long, 4> z = {100, 200, 300, 400};
    EXPECT_EQ(100, Plane(0, 10, 0, 20, z, 0, 0).value);
    EXPECT_EQ(200, Plane(0, 10, 0, 20, z, 10, 0).value);
    EXPECT_EQ(300, Plane(0, 10, 0, 20, z, 0, 20).value);
    EXPECT_EQ(400, Plane(0, 10, 0, 20, z, 10, 20).value);
}

TEST(PlaneTest, InterpolatesXFirstAndTruncatesBeforeY)
{
    // Along x: 1.9 -> 1 and 3.9 -> 3; then y at 0.6 gives 2.2 -> 2. Without the inner
    // truncation, or with y first, it would be 3.
    PlaneResult result = Plane(0, 10, 0, 10, {0, 19, 0, 39}, 1, 6);
    EXPECT_EQ(0, result.rc);
    EXPECT_EQ(2, result.value);
}
} // namespace
