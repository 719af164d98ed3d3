#include <gtest/gtest.h>

#include <vector>

#include "parametertypes.h"

namespace
{
// Versions are compared field by field; one number made of the fields would order these two
// the other way.
TEST(VersionUnion, ComparesFieldByFieldNotAsOneNumber)
{
    VersionUnion five(5, 0, 0);
    VersionUnion fourMax(4, 65535, 4294967295u);
    EXPECT_EQ(1, five.Compare(fourMax));
    EXPECT_EQ(-1, fourMax.Compare(five));
    EXPECT_TRUE(five > fourMax);
    EXPECT_TRUE(fourMax < five);
    EXPECT_TRUE(five >= fourMax);
    EXPECT_TRUE(fourMax <= five);
    EXPECT_TRUE(five != fourMax);
}

TEST(VersionUnion, LaterFieldsDecideOnlyOnATie)
{
    EXPECT_EQ(-1, VersionUnion(3, 0, 1).Compare(VersionUnion(3, 1, 0)));
    EXPECT_EQ(1, VersionUnion(3, 0, 2).Compare(VersionUnion(3, 0, 1)));
    EXPECT_EQ(0, VersionUnion(3, 0, 1).Compare(VersionUnion(3, 0, 1)));
    EXPECT_TRUE(VersionUnion(3, 0, 1) == VersionUnion(3, 0, 1));
    EXPECT_TRUE(VersionUnion(3, 0, 1) <= VersionUnion(3, 0, 1));
    EXPECT_TRUE(VersionUnion(3, 0, 1) >= VersionUnion(3, 0, 1));
    EXPECT_FALSE(VersionUnion(3, 0, 1) < VersionUnion(3, 0, 1));
}

// A file stores the whole 64-bit value little-endian: major first, then minor, then patch.
TEST(VersionUnion, RawValueHoldsMajorInTheLowBits)
{
    VersionUnion version(0x0000000300020001ul);
    EXPECT_EQ(1, version.major);
    EXPECT_EQ(2, version.minor);
    EXPECT_EQ(3u, version.patch);
    EXPECT_EQ(0x0000000300020001ul, VersionUnion(1, 2, 3).value);
    EXPECT_EQ(0ul, VersionUnion().value);
}

TEST(ModeUnion, PartsAndRawValueShareTheLayout)
{
    ModeUnion mode(3, 7);
    EXPECT_EQ(3, mode.mode);
    EXPECT_EQ(7, mode.subMode);
    EXPECT_EQ(0u, mode.spare);
    EXPECT_EQ(0x0000000000070003ul, mode.value);

    ModeUnion raw(0xAABBCCDD00050002ul);
    EXPECT_EQ(2, raw.mode);
    EXPECT_EQ(5, raw.subMode);
    EXPECT_EQ(0xAABBCCDDu, raw.spare); // carried along untouched
    EXPECT_EQ(0ul, ModeUnion().value);
}

std::vector<int> Contents(const PList<int>& list)
{
    std::vector<int> contents;
    for (unsigned int index = 0; index < list.count; ++index)
    {
        contents.push_back(list[index]);
    }
    return contents;
}

TEST(PList, AppendAndInsertAtFrontKeepOrder)
{
    PList<int> list;
    for (int value : {10, 20, 30})
    {
        list.Insert(list.count, value);
    }
    list.Insert(0, 5);
    EXPECT_EQ((std::vector<int>{5, 10, 20, 30}), Contents(list));
    list.Insert(2, 15);
    EXPECT_EQ((std::vector<int>{5, 10, 15, 20, 30}), Contents(list));
}

TEST(PList, GrowsByItsStepAndZeroesNewSlots)
{
    PList<int> list(3);
    list.Insert(0, 1);
    EXPECT_EQ(3u, list.capacity);
    EXPECT_EQ(0, list.items[1]);
    EXPECT_EQ(0, list.items[2]);
    list.Insert(1, 2);
    list.Insert(2, 3);
    list.Insert(3, 4);
    EXPECT_EQ(6u, list.capacity);
    EXPECT_EQ(4u, list.count);
}

TEST(PList, ClearFreesAndInsertGrowsAgainFromZero)
{
    PList<int> list(2);
    list.Insert(0, 1);
    list.Insert(1, 2);
    list.Insert(2, 3);
    list.Clear();
    EXPECT_EQ(nullptr, list.items);
    EXPECT_EQ(0u, list.count);
    EXPECT_EQ(0u, list.capacity);
    EXPECT_EQ(2u, list.growBy);

    list.Insert(0, 7);
    EXPECT_EQ(2u, list.capacity);
    EXPECT_EQ((std::vector<int>{7}), Contents(list));
}

TEST(PList, RemoveFrontMovesTheRestDown)
{
    PList<int> list;
    for (int value : {1, 2, 3})
    {
        list.Insert(list.count, value);
    }
    list.RemoveFront();
    EXPECT_EQ((std::vector<int>{2, 3}), Contents(list));
    list.RemoveFront();
    list.RemoveFront();
    list.RemoveFront(); // on an empty list: nothing happens
    EXPECT_EQ(0u, list.count);
}

TEST(PList, IndexPastTheBlockIsNotWritten)
{
    PList<int> list;
    list.Insert(5, 1);
    EXPECT_EQ(0u, list.count);
    list.Insert(0, 1);
    list.Insert(0, 2);
    EXPECT_EQ((std::vector<int>{2, 1}), Contents(list));
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

    first[9].value = 99; // a write through a bad index lands in the dummy ...
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
    EXPECT_EQ((std::vector<int>{8}), Contents(target));
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
