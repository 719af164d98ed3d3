#include <gtest/gtest.h>

#include <vector>

#include "parametertypes.h"

namespace
{
// Versions are compared field by field: one number made of the fields would order 5.0.0 below
// 4.65535.4294967295, and later fields decide only on a tie.
TEST(VersionUnion, ComparesFieldByField)
{
    struct Case
    {
        VersionUnion left;
        VersionUnion right;
        int          order;
    };
    for (const Case& c : {Case{{5, 0, 0}, {4, 65535, 4294967295u}, 1}, Case{{3, 0, 1}, {3, 1, 0}, -1},
                          Case{{3, 0, 2}, {3, 0, 1}, 1}, Case{{3, 0, 1}, {3, 0, 1}, 0}})
    {
        SCOPED_TRACE(c.order);
        EXPECT_EQ(c.order, c.left.Compare(c.right));
        EXPECT_EQ(-c.order, c.right.Compare(c.left));
        EXPECT_EQ(c.order > 0, c.left > c.right);
        EXPECT_EQ(c.order < 0, c.left < c.right);
        EXPECT_EQ(c.order >= 0, c.left >= c.right);
        EXPECT_EQ(c.order <= 0, c.left <= c.right);
        EXPECT_EQ(c.order == 0, c.left == c.right);
        EXPECT_EQ(c.order != 0, c.left != c.right);
    }
}

// A file stores the whole 64-bit value little-endian: major first, then minor, then patch; a
// mode the same way, with its spare half carried along untouched.
TEST(VersionUnion, RawValuesShareTheLayoutOfTheParts)
{
    VersionUnion version(0x0000000300020001ul);
    EXPECT_EQ(1, version.major);
    EXPECT_EQ(2, version.minor);
    EXPECT_EQ(3u, version.patch);
    EXPECT_EQ(0x0000000300020001ul, VersionUnion(1, 2, 3).value);
    EXPECT_EQ(0ul, VersionUnion().value);

    EXPECT_EQ(0x0000000000070003ul, ModeUnion(3, 7).value);
    ModeUnion raw(0xAABBCCDD00050002ul);
    EXPECT_EQ(2, raw.mode);
    EXPECT_EQ(5, raw.subMode);
    EXPECT_EQ(0xAABBCCDDu, raw.spare);
    EXPECT_EQ(0ul, ModeUnion().value);
}

std::vector<int> Contents(const PList<int>& list)
{
    return std::vector<int>(list.items, list.items + list.count);
}

TEST(PList, InsertRemoveAndGrowByTheStep)
{
    PList<int> list(3);
    list.Insert(5, 1); // past the block: not written
    EXPECT_EQ(0u, list.count);
    list.Insert(0, 10);
    EXPECT_EQ(3u, list.capacity);
    EXPECT_EQ(0, list.items[1]); // new slots are zeroed
    EXPECT_EQ(0, list.items[2]);
    list.Insert(1, 30);
    list.Insert(0, 5);
    list.Insert(2, 20);
    EXPECT_EQ(6u, list.capacity);
    EXPECT_EQ((std::vector<int>{5, 10, 20, 30}), Contents(list));

    list.RemoveFront();
    EXPECT_EQ((std::vector<int>{10, 20, 30}), Contents(list));
    for (int round = 0; round < 4; ++round)
    {
        list.RemoveFront(); // the last round, on an empty list, does nothing
    }
    EXPECT_EQ(0u, list.count);

    list.Clear();
    EXPECT_EQ(nullptr, list.items);
    EXPECT_EQ(0u, list.capacity);
    EXPECT_EQ(3u, list.growBy);
    list.Insert(0, 7); // grows again from zero
    EXPECT_EQ(3u, list.capacity);
    EXPECT_EQ((std::vector<int>{7}), Contents(list));
}

// A type of its own, so that no other test sees what this one writes into the shared dummy.
struct DummyProbe
{
    int value;
};

TEST(PList, BadIndexYieldsTheSharedDummyOfItsType)
{
    PList<DummyProbe> first;
    PList<DummyProbe> second;
    first.Insert(0, DummyProbe{42});

    EXPECT_EQ(42, first[0].value);
    EXPECT_EQ(0, first[1].value); // at count: the default-constructed dummy
    EXPECT_EQ(&first[1], &second[0]);

    first[9].value = 99;            // a write through a bad index lands in the dummy ...
    EXPECT_EQ(99, second[3].value); // ... and every later bad read of the type sees it
    EXPECT_EQ(42, first[0].value);
    second[0].value = 0;
}

TEST(PList, MoveTakesTheBlock)
{
    PList<int> source(4);
    source.Insert(0, 8);
    PList<int> target(std::move(source));
    EXPECT_EQ(nullptr, source.items);
    EXPECT_EQ(0u, source.count);
    EXPECT_EQ(4u, target.growBy);

    PList<int> other;
    other.Insert(0, 1);
    other = std::move(target);
    EXPECT_EQ((std::vector<int>{8}), Contents(other));
}

TEST(DupObjInfo, ReleaseGivesTheGoAheadToTheLastHolderOnly)
{
    int        shared = 0;
    DupObjInfo info(1, "site", 1);
    info.object   = &shared;
    info.refCount = 2;

    EXPECT_FALSE(DupObjInfo::Release(&info));
    EXPECT_EQ(&shared, info.object);
    EXPECT_EQ(1u, info.refCount);

    EXPECT_TRUE(DupObjInfo::Release(&info));
    EXPECT_EQ(nullptr, info.object);
    EXPECT_EQ(0u, info.refCount);

    // Once released, a further release neither wraps the count nor allows a second free.
    EXPECT_FALSE(DupObjInfo::Release(&info));
    EXPECT_EQ(0u, info.refCount);
    EXPECT_TRUE(DupObjInfo::Release(nullptr));
}
} // namespace
