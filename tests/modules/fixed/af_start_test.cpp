// Focus and zoom at start-up: the model of every module with fixed members.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include "modules/fixed/af_fixture.h"

using testing::ElementsAre;
using testing::IsEmpty;

using AfStart = Af;

TEST_F(AfStart, EveryMemberHasTheValuesOfItsFiles)
{
    write_home("af_range.json", "{'focus_mode':[1,21],'focus_zone':[2,22],'focus_sens':[3,23],"
                                "'focus_value':[4,24],'focus_lock':[5,25],'zoom_value':[6,26]}");
    write_home("af_def.json", "{'focus_mode':11,'focus_zone':12,'focus_sens':13,'focus_value':14,"
                              "'focus_lock':15,'zoom_value':16}");
    write_data("af_cur.json", "{'focus_mode':1,'focus_zone':2,'focus_sens':3,'focus_value':4,"
                              "'focus_lock':5,'zoom_value':6}");
    EXPECT_EQ(init(), 0);
    for (const accessors &member : all_members) {
        EXPECT_EQ(member.min(), member.slot) << member.key;
        EXPECT_EQ(member.max(), member.slot + 20) << member.key;
        EXPECT_EQ(member.def(), member.slot + 10) << member.key;
        EXPECT_EQ(member.cur(), member.slot) << member.key;
        EXPECT_EQ(member.init(), member.slot) << member.key;
        EXPECT_EQ(para_af_exist[member.slot], PARA_PRESENT) << member.key;
        EXPECT_EQ(&para_af_cur[member.slot] - para_af_cur, member.slot);
    }
    EXPECT_THAT(para_af_cur, ElementsAre(0, 1, 2, 3, 4, 5, 6));
}

TEST_F(AfStart, TheReservedSlotIsCopiedAndOtherwiseLeftAlone)
{
    para_af_cur[0] = 77;
    init();
    for (const accessors &member : all_members)
        member.set(member.max());
    EXPECT_EQ(para_af_init[0], 77);
    EXPECT_EQ(para_af_cur[0], 77);
    EXPECT_EQ(para_af_min[0] + para_af_max[0] + para_af_def[0] + para_af_exist[0], 0);
}

TEST_F(AfStart, BeginsWithTheDefaultsWhenThereIsNoCurrentFile)
{
    EXPECT_EQ(init(), 0);
    for (const accessors &member : all_members) {
        EXPECT_EQ(member.cur(), member.def()) << member.key;
        EXPECT_EQ(member.init(), member.def()) << member.key;
    }
    EXPECT_EQ(count_traces("parse_ok:0", "para_init_af"), 1);
}

TEST_F(AfStart, TheCurrentFileOverridesTheDefaultsMemberByMember)
{
    write_data("af_cur.json", "{'zoom_value':4000,'unknown':3}");
    EXPECT_EQ(init(), 0);
    EXPECT_EQ(para_get_af_zoom_value_cur(), 4000);
    EXPECT_EQ(para_get_af_zoom_value_init(), 4000);
    EXPECT_EQ(para_get_af_zoom_value_def(), 100);
    EXPECT_EQ(para_get_af_focus_zone_cur(), 2);
    EXPECT_EQ(count_traces("parse_ok:1", "para_init_af"), 1);
}

TEST_F(AfStart, TheCurrentFileIsNotHeldAgainstTheRange)
{
    write_data("af_cur.json", "{'zoom_value':99999}");
    init();
    EXPECT_EQ(para_get_af_zoom_value_cur(), 99999);
}

TEST_F(AfStart, AMissingRangeOrDefaultsFileFailsSilently)
{
    unlink((home + "/af_def.json").c_str());
    EXPECT_EQ(init(), -1);
    EXPECT_EQ(para_get_af_zoom_value_max(), 16384) << "what was read before the failure stays";

    unlink((home + "/af_range.json").c_str());
    EXPECT_EQ(init(), -1);
    EXPECT_THAT(traces(), IsEmpty());
}

TEST_F(AfStart, WithoutARangeFileNoSetterAcceptsAnything)
{
    unlink((home + "/af_range.json").c_str());
    EXPECT_EQ(init(), -1);
    for (const accessors &member : all_members) {
        EXPECT_EQ(member.set(1), 0);
        EXPECT_EQ(member.set(0), 0);
        EXPECT_EQ(member.cur(), 0);
    }
    EXPECT_FALSE(change_pending());
}

TEST_F(AfStart, ABrokenRangeOrDefaultsFileFailsWithATrace)
{
    write_home("af_def.json", "{'focus_mode':");
    EXPECT_EQ(init(), -1);
    ASSERT_THAT(traces_of("para_init_af"), testing::SizeIs(1));
    EXPECT_THAT(traces_of("para_init_af")[0], testing::MatchesRegex("Error before: \\[.*\\]\n\n"));
    EXPECT_EQ(traces().front().level, 6);

    write_home("af_range.json", "rubbish");
    EXPECT_EQ(init(), -1);
    EXPECT_EQ(traces_of("para_init_af")[1], "Error before: [rubbish]\n\n");
}

TEST_F(AfStart, ABrokenCurrentFileIsTracedAndTheDefaultsStand)
{
    write_data("af_cur.json", "rubbish");
    EXPECT_EQ(init(), 0);
    EXPECT_THAT(traces_of("para_init_af"),
                ElementsAre("Error before: [rubbish]\n\n", "parse_ok:0\n"));
    EXPECT_EQ(para_get_af_zoom_value_cur(), 100);
}

TEST_F(AfStart, AnUnreadableCurrentFileIsPassedOver)
{
    mkdir((data + "/af_cur.json").c_str(), 0755);
    EXPECT_EQ(init(), 0);
    EXPECT_THAT(traces_of("para_init_af"), ElementsAre("parse_ok:0\n"));
}

TEST_F(AfStart, KeysAreReadWithoutRegardToCase)
{
    write_home("af_def.json", "{'ZOOM_Value':7}");
    init();
    EXPECT_EQ(para_get_af_zoom_value_def(), 7);
    EXPECT_EQ(para_af_exist[PARA_AF_zoom_value], PARA_PRESENT);
}

TEST_F(AfStart, RangesNeedTwoElementsAndMayHaveMore)
{
    write_home("af_range.json", "{'focus_mode':[5],'focus_zone':[],'focus_sens':7,"
                                "'focus_value':[1,2,3],'focus_lock':{'a':3,'b':4},"
                                "'zoom_value':['x',2.9]}");
    init();
    EXPECT_THAT(para_af_min, ElementsAre(0, 0, 0, 0, 1, 3, 0));
    EXPECT_THAT(para_af_max, ElementsAre(0, 0, 0, 0, 2, 4, 2));
}

TEST_F(AfStart, ADefaultThatIsNoNumberIsZeroAndPresent)
{
    write_home("af_def.json", "{'focus_mode':'auto','zoom_value':null,'focus_value':2.9,"
                              "'focus_lock':true}");
    init();
    EXPECT_THAT(para_af_def, ElementsAre(0, 0, 0, 0, 2, 1, 0)) << "true is 1, as cJSON has it";
    EXPECT_THAT(para_af_exist, ElementsAre(0, 1, 0, 0, 1, 1, 1));
}

TEST_F(AfStart, StartingAgainForgetsWhoWasPresent)
{
    para_af_exist[0] = 1;
    init();
    write_home("af_def.json", "{'zoom_value':7}");
    init();
    EXPECT_THAT(para_af_exist, ElementsAre(0, 0, 0, 0, 0, 0, 1));
}

TEST_F(AfStart, DumpsItsTable)
{
    write_data("af_cur.json", "{'zoom_value':4000}");
    init();
    EXPECT_THAT(traces_of("af_page"),
                ElementsAre("----------AF PARAM-----------\n\n",
                            "      focus_mode : cur:[1],\tdef:[1],\trange:[0,3]\n",
                            "      focus_zone : cur:[2],\tdef:[2],\trange:[0,4]\n",
                            "      focus_sens : cur:[5],\tdef:[5],\trange:[1,9]\n",
                            "     focus_value : cur:[-7],\tdef:[-7],\trange:[-500,500]\n",
                            "      focus_lock : cur:[0],\tdef:[0],\trange:[0,1]\n",
                            "      zoom_value : cur:[4000],\tdef:[100],\trange:[0,16384]\n",
                            "--------------------------------\n\n"));
    for (const trace_line &line : traces())
        EXPECT_EQ(line.level, 6);
    set_trace_level(5);
    forget_traces();
    af_page();
    EXPECT_THAT(traces(), IsEmpty());
}

TEST_F(AfStart, RunsAsAModuleOfTheTable)
{
    start_store();
    EXPECT_EQ(para_get_af_zoom_value_cur(), 100);
    EXPECT_EQ(count_traces("af init err"), 0);
}

TEST_F(AfStart, AFailureIsTracedByTheTable)
{
    unlink((home + "/af_range.json").c_str());
    start_store();
    EXPECT_EQ(count_traces("af init err", "platformparam_init"), 1);
}
