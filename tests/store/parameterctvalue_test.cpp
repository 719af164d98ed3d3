// Control and trigger values: the item's text forms, the sorted lists, and their text as the
// live tuning tool receives it, leading comma included.
#include <gtest/gtest.h>

#include <string>

#include "parametersetmanager.h"
#include "storefiles.h"

namespace
{
std::string Text(ParameterCTValue const& value, bool withId)
{
    char out[64] = "untouched";
    return value.ToString(out, sizeof(out), withId) ? std::string(out) : "<invalid>";
}

std::string Parsed(char const* item)
{
    ParameterCTValue value;
    return value.FromString(item) ? Text(value, true) + (value.IsInteger ? " int" : " double") : "<refused>";
}

std::string Controls(ParameterSetManager& manager, unsigned int size = 256)
{
    std::string out(size, 'x');
    return manager.GetControlValues(&out[0], size) ? out.c_str() : "<false> " + std::string(out.c_str());
}

TEST(StoreCTValue, TextFormsOfOneItem)
{
    EXPECT_EQ("<invalid>", Text(ParameterCTValue(), true));
    EXPECT_EQ("3=17", Text(ParameterCTValue(3, 17), true));
    EXPECT_EQ("-17", Text(ParameterCTValue(3, -17), false));
    EXPECT_EQ("4=4294967295", Text(ParameterCTValue(4, 0xFFFFFFFFu), true)) << "zero-extended";
    EXPECT_EQ("12=0.500000", Text(ParameterCTValue(12, 0.5f), true));
    EXPECT_EQ("0.250000", Text(ParameterCTValue(12, 0.25), false));
    EXPECT_EQ("5=9000000000", Text(ParameterCTValue(5, 9000000000l), true));

    EXPECT_EQ("7=3 int", Parsed("7=3"));
    EXPECT_EQ("7=3.500000 double", Parsed("7=3.5"));
    EXPECT_EQ("4=2.000000 double", Parsed("4=2.0")) << "the form decides the type";
    EXPECT_EQ("7=-2 int", Parsed("7=-2"));
    EXPECT_EQ("4294967289=1 int", Parsed("-7=1"));
    EXPECT_EQ("7=0 int", Parsed("7=abc")) << "text that is no number counts as 0";
    EXPECT_EQ("9223372036854775807 int", Parsed("1=99999999999999999999").substr(2));
    for (char const* refused : {"7=", "=3", "7", ""})
    {
        EXPECT_EQ("<refused>", Parsed(refused)) << refused;
    }
    ParameterCTValue kept(5, 8);
    EXPECT_FALSE(kept.FromString(nullptr));
    EXPECT_FALSE(kept.IsValid);
    EXPECT_EQ(5u, kept.ID) << "a refusal leaves the id and value";
}

TEST(StoreCTValue, ListsAreSortedByIdWithOneEntryEach)
{
    storetest::TestSetManager manager;
    char                      out[16] = "untouched";
    EXPECT_FALSE(manager.GetControlValues(out, sizeof(out)));
    EXPECT_STREQ("untouched", out) << "an empty list leaves the text alone";

    manager.SetControlValue(ParameterCTValue(5, 1));
    manager.SetControlValue(ParameterCTValue(2, 1));
    manager.SetControlValue(ParameterCTValue(9, 1));
    manager.SetControlValue(ParameterCTValue(5, 0.5));
    manager.SetControlValue(ParameterCTValue(-1, 4)); // the highest id, unsigned
    EXPECT_EQ("2=1,5=0.500000,9=1,4294967295=4", Controls(manager));
    ParameterCTValue found;
    EXPECT_TRUE(manager.GetControlValue(9, found));
    EXPECT_EQ(1, found.Value.integer);
    EXPECT_FALSE(manager.GetControlValue(3, found));
    EXPECT_EQ(9u, found.ID);

    // The trigger list is a twin that never sees a control value.
    EXPECT_FALSE(manager.GetTriggerValue(9, found));
    ParameterCTValue triggers[] = {ParameterCTValue(8, 2), ParameterCTValue(1, 3), ParameterCTValue(8, 4)};
    manager.SetTriggerValues(triggers, 3);
    char text[64] = "";
    EXPECT_TRUE(manager.GetTriggerValues(text, sizeof(text)));
    EXPECT_STREQ("1=3,8=4", text);
    PList<ParameterCTValue> copy(4);
    copy.Insert(0, ParameterCTValue(99, 1));
    manager.GetTriggerValues(copy);
    ASSERT_EQ(2u, copy.count) << "the list that the copy held is gone";
    EXPECT_EQ(8u, copy[1].ID);
    manager.SetControlValues(copy);
    EXPECT_EQ("1=3,8=4", Controls(manager));
    manager.SetControlValues(nullptr, 0);
    EXPECT_EQ("<false> " + std::string(16, 'x'), Controls(manager, 16)) << "an empty list writes nothing";
}

TEST(StoreCTValue, TheTextFormOfAList)
{
    storetest::TestSetManager manager;
    manager.SetControlValues("12=0.5,3=17");
    EXPECT_EQ("3=17,12=0.500000", Controls(manager));
    // A piece that does not parse stores an invalid copy of the piece before it (of a default
    // value for the first), which prints nothing but keeps its comma: the leading-comma case.
    manager.SetControlValues("x,5=1");
    EXPECT_EQ(",5=1", Controls(manager));
    manager.SetControlValues("3=1,bad,7=2");
    EXPECT_EQ(",7=2", Controls(manager));
    manager.SetTriggerValues("4=1");
    manager.SetTriggerValues("");
    char text[8] = "kept";
    EXPECT_FALSE(manager.GetTriggerValues(text, sizeof(text)));

    // Room for a separator is kept even for the first item; what fitted stays.
    manager.SetControlValues("3=17,12=5");
    EXPECT_EQ("<false> ", Controls(manager, 5));
    EXPECT_EQ("3=17", Controls(manager, 6).substr(8)) << Controls(manager, 6);
    EXPECT_EQ("3=17,12=5", Controls(manager, 10));
}
} // namespace
