// The three interpolators: integer points, double arithmetic, results truncated toward zero,
// no extrapolation.
#include <array>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "PdafMathFunc.h"

namespace
{
/// Status and result; the result starts at 0x5EED, so a refusal that writes shows.
using Outcome            = std::pair<int, long>;
constexpr long Unwritten = 0x5EED;

long Line(long x0, long y0, long x1, long y1, long at)
{
    long x[2]   = {x0, x1};
    long y[2]   = {y0, y1};
    long result = Unwritten;
    CalcAddressOnLine_slXslY(x, y, at, &result);
    return result;
}

Outcome BrokenLine(std::vector<unsigned long> x, std::vector<unsigned long> y, unsigned long at)
{
    unsigned long result = Unwritten;
    int           rc     = CalcAddressOnBrokenLine_ulXulY(x.data(), y.data(), x.size(), at, &result);
    return {rc, static_cast<long>(result)};
}

Outcome Plane(std::array<long, 2> x, std::array<long, 2> y, std::array<long, 4> z, long atX, long atY)
{
    long result = Unwritten;
    int  rc     = CalcAddressOnPlane_slXslYslZ(x.data(), y.data(), z.data(), atX, atY, &result);
    return {rc, result};
}

TEST(LineTest, EqualAddressesGiveTheMeanRoundedTowardZeroWhereverAsked)
{
    EXPECT_EQ(-1, Line(10, -3, 10, 0, 10));
    EXPECT_EQ(3, Line(10, 3, 10, 4, 10));
    EXPECT_EQ(3, Line(10, 3, 10, 4, -500));
    EXPECT_EQ(7, Line(10, 7, 10, 7, 99));
}

TEST(LineTest, InterpolatesTruncatingTowardZeroAndHoldsTheEnds)
{
    EXPECT_EQ(3, Line(0, 0, 3, 10, 1));
    EXPECT_EQ(6, Line(0, 0, 3, 10, 2));
    EXPECT_EQ(-3, Line(0, 0, 3, -10, 1));
    EXPECT_EQ(5, Line(0, 5, 3, 5, 1000));
    EXPECT_EQ(0, Line(0, 0, 3, 10, -5));
    EXPECT_EQ(10, Line(0, 0, 3, 10, 9));
    // Reversed points give the same as forward, ends included.
    EXPECT_EQ(3, Line(3, 10, 0, 0, 1));
    EXPECT_EQ(0, Line(3, 10, 0, 0, -5));
    EXPECT_EQ(10, Line(3, 10, 0, 0, 9));
    // y1 - y0 is 8e18, beyond any 64-bit integer: the arithmetic must be in double.
    EXPECT_EQ(0, Line(0, -4000000000000000000L, 2, 4000000000000000000L, 1));
}

TEST(BrokenLineTest, RefusesShortLinesValuesAboveInt32AndFallingGains)
{
    EXPECT_EQ(Outcome(-1, Unwritten), BrokenLine({0}, {300}, 0));
    EXPECT_EQ(Outcome(-1, Unwritten), BrokenLine({}, {}, 0));
    EXPECT_EQ(Outcome(-1, Unwritten), BrokenLine({0, 2}, {100, 0x80000000UL}, 1));
    EXPECT_EQ(Outcome(-1, Unwritten), BrokenLine({0, 0x80000000UL}, {100, 200}, 1));
    EXPECT_EQ(Outcome(-1, Unwritten), BrokenLine({0, 8}, {100, 200}, 0x80000000UL));
    EXPECT_EQ(Outcome(-1, Unwritten), BrokenLine({0, 5, 2}, {100, 200, 300}, 1));
    EXPECT_EQ(Outcome(0, 0x7FFFFFFF), BrokenLine({0, 0x7FFFFFFFUL}, {1, 0x7FFFFFFFUL}, 0x7FFFFFFFUL));
}

TEST(BrokenLineTest, InterpolatesOnTheSegmentBelowAndHoldsTheEnds)
{
    EXPECT_EQ(Outcome(0, 300), BrokenLine({0, 2, 5, 8}, {300, 300, 300, 300}, 100));
    EXPECT_EQ(Outcome(0, 5), BrokenLine({10, 20}, {5, 50}, 3));
    EXPECT_EQ(Outcome(0, 200), BrokenLine({0, 2, 5, 8}, {100, 200, 300, 400}, 2));
    EXPECT_EQ(Outcome(0, 233), BrokenLine({0, 2, 5, 8}, {100, 200, 300, 400}, 3));
    EXPECT_EQ(Outcome(0, 400), BrokenLine({0, 2, 5, 8}, {100, 200, 300, 400}, 8));
    // A segment of zero width gives the mean of its ends.
    EXPECT_EQ(Outcome(0, 200), BrokenLine({2, 2, 5}, {100, 300, 500}, 2));
}

TEST(PlaneTest, RefusesPointsOutsideAndDegeneratePatches)
{
    const std::array<long, 4> z = {100, 200, 300, 400};
    EXPECT_EQ(Outcome(-1, Unwritten), Plane({10, 10}, {0, 20}, z, 10, 5));
    EXPECT_EQ(Outcome(-1, Unwritten), Plane({0, 10}, {20, 20}, z, 5, 20));
    EXPECT_EQ(Outcome(-1, Unwritten), Plane({0, 10}, {20, 0}, z, 5, 10));
    EXPECT_EQ(Outcome(-1, Unwritten), Plane({0, 10}, {0, 20}, z, -1, 5));
    EXPECT_EQ(Outcome(-1, Unwritten), Plane({0, 10}, {0, 20}, z, 11, 5));
    EXPECT_EQ(Outcome(-1, Unwritten), Plane({0, 10}, {0, 20}, z, 5, -1));
    EXPECT_EQ(Outcome(-1, Unwritten), Plane({0, 10}, {0, 20}, z, 5, 21));
}

TEST(PlaneTest, CornersGiveTheirValues)
{
    const std::array<long, 4> z = {100, 200, 300, 400};
    EXPECT_EQ(Outcome(0, 100), Plane({0, 10}, {0, 20}, z, 0, 0));
    EXPECT_EQ(Outcome(0, 200), Plane({0, 10}, {0, 20}, z, 10, 0));
    EXPECT_EQ(Outcome(0, 300), Plane({0, 10}, {0, 20}, z, 0, 20));
    EXPECT_EQ(Outcome(0, 400), Plane({0, 10}, {0, 20}, z, 10, 20));
}

TEST(PlaneTest, InterpolatesXFirstAndTruncatesBeforeY)
{
    // Along x: 1.9 -> 1 and 3.9 -> 3; then y at 0.6 gives 2.2 -> 2. Without the inner
    // truncation, or with y first, it would be 3.
    EXPECT_EQ(Outcome(0, 2), Plane({0, 10}, {0, 10}, {0, 19, 0, 39}, 1, 6));
}
} // namespace
