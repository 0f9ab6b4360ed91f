// Share modules: publishing them, registering for them, and finding their entries.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <climits>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <string>

#include "camparam/share.h"
#include "share/share_fixture.h"

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

namespace {

const char not_registered[] = "ERROR: main program don't register this share module\n";
const char no_module[] = "ERROR: This mod is not exist!\n";
const char no_entry[] = "ERROR: This share map is not exist!\n";

constexpr int header_size = sizeof(para_share_map);

std::string header(uint32_t registered, uint32_t count, uint32_t size)
{
    return word_bytes(registered) + word_bytes(count) + word_bytes(size);
}

std::string pointer_trace(const void *map)
{
    char text[64];
    snprintf(text, sizeof text, "video ptr = %p\n", map);
    return text;
}

size_t open_descriptors()
{
    size_t count = 0;
    for (const auto &entry : std::filesystem::directory_iterator("/proc/self/fd")) {
        (void)entry;
        count++;
    }
    return count;
}

// Runs a body in a process of its own. Returns whether it answered true.
template <typename Body> bool in_other_process(Body body)
{
    const pid_t child = fork();
    if (child == 0)
        _exit(body() ? 0 : 1);
    int status = -1;
    return waitpid(child, &status, 0) == child && WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

} // namespace

class Share : public testing::Test, public OwnSharedMemory {
protected:
    Share()
    {
        set_trace_level(7);
        forget_traces();
    }

    static std::vector<std::string> register_traces() { return traces_of("para_share_register"); }
    static std::vector<std::string> entry_traces() { return traces_of("para_get_share_map"); }

    static char *entry(int module, int number)
    {
        return static_cast<char *>(para_get_share_map(module, number));
    }
};

using SharePublish = Share;
using ShareRegister = Share;
using ShareEntry = Share;

// --- The main program ---

TEST_F(SharePublish, MakesAnObjectOfHeaderAndEmptyEntries)
{
    for (int module = 0; module < PARA_SHARE_MODULES; module++) {
        char *const map = static_cast<char *>(para_share_publish(module, 3, 8 + module));
        ASSERT_NE(map, nullptr);
        const uint32_t size = static_cast<uint32_t>(8 + module);
        EXPECT_EQ(read_object(module), header(1, 3, size) + std::string(3 * size, '\0'));
        EXPECT_EQ(std::string(map, header_size), header(1, 3, size));
        map[header_size] = 'x';
        EXPECT_EQ(read_object(module)[header_size], 'x');
    }
}

TEST_F(SharePublish, TakesNoEntriesOrEmptyOnes)
{
    EXPECT_NE(para_share_publish(0, 0, 8), nullptr);
    EXPECT_EQ(read_object(0), header(1, 0, 8));
    EXPECT_NE(para_share_publish(1, 5, 0), nullptr);
    EXPECT_EQ(read_object(1), header(1, 5, 0));
}

TEST_F(SharePublish, RefusesSizesThatAreNone)
{
    struct {
        int count, size;
    } const wrong[] = {{-1, 8},      {8, -1}, {-1, -1}, {INT_MIN, 1}, {INT_MAX, INT_MAX},
                       {INT_MAX, 2}, {-5, 0}};
    for (const auto &sizes : wrong) {
        forget_traces();
        EXPECT_EQ(para_share_publish(2, sizes.count, sizes.size), nullptr);
        EXPECT_FALSE(object_exists(2)) << sizes.count << " x " << sizes.size;
        EXPECT_THAT(traces_of("para_share_publish"), SizeIs(1));
    }
}

TEST_F(SharePublish, RefusesModulesThatAreNone)
{
    for (const int module : {-1, int{PARA_SHARE_MODULES}, 5, INT_MIN, INT_MAX}) {
        forget_traces();
        EXPECT_EQ(para_share_publish(module, 1, 8), nullptr);
        EXPECT_FALSE(object_exists(module));
        EXPECT_THAT(traces_of("para_share_publish"), SizeIs(1));
    }
}

TEST_F(SharePublish, ARefusedOneLeavesThePublishedOneAlone)
{
    para_share_publish(2, 1, 8);
    EXPECT_EQ(para_share_publish(2, -1, 8), nullptr);
    EXPECT_EQ(read_object(2), header(1, 1, 8) + std::string(8, '\0'));
}

TEST_F(SharePublish, TracesWhatTheSystemRefuses)
{
    mkdir(object_path(0).c_str(), 0755);
    EXPECT_EQ(para_share_publish(0, 1, 8), nullptr);
    EXPECT_THAT(traces_of("para_share_publish"), SizeIs(1));
}

TEST_F(SharePublish, ReplacesWhatAnEarlierRunHasLeft)
{
    write_object(1, header(1, 100, 100) + std::string(10000, 'x'));
    EXPECT_NE(para_share_publish(1, 2, 4), nullptr);
    EXPECT_EQ(read_object(1), header(1, 2, 4) + std::string(8, '\0'));
}

TEST_F(SharePublish, KeepsNoDescriptorOpen)
{
    const size_t before = open_descriptors();
    para_share_publish(1, 2, 4);
    EXPECT_EQ(open_descriptors(), before);
}

// --- Registering ---

TEST_F(ShareRegister, RefusesAModuleAboveThree)
{
    for (const int module : {int{PARA_SHARE_MODULES}, 5, INT_MAX}) {
        forget_traces();
        EXPECT_EQ(para_share_register(module), -1);
        EXPECT_THAT(register_traces(), ElementsAre(no_module)) << module;
    }
}

TEST_F(ShareRegister, ANegativeModuleHasNoMap)
{
    for (const int module : {-1, -2, INT_MIN}) {
        forget_traces();
        EXPECT_EQ(para_share_register(module), -1);
        EXPECT_THAT(register_traces(), ElementsAre(pointer_trace(nullptr), not_registered))
            << module;
    }
}

TEST_F(ShareRegister, RefusesAModuleThatIsNotPublished)
{
    const size_t before = open_descriptors();
    for (int module = 0; module < PARA_SHARE_MODULES; module++) {
        forget_traces();
        EXPECT_EQ(para_share_register(module), -1);
        EXPECT_THAT(register_traces(), ElementsAre(pointer_trace(nullptr), not_registered));
        EXPECT_EQ(para_get_share_map(module, 1), nullptr);
        EXPECT_FALSE(object_exists(module)) << "publishing is the main program's";
    }
    EXPECT_EQ(open_descriptors(), before) << "the socket is left as it was";
}

TEST_F(ShareRegister, AttachesWhatThisProcessHasPublished)
{
    char *const published = static_cast<char *>(para_share_publish(3, 2, 8));
    EXPECT_EQ(para_share_register(3), 0);
    char *const attached = entry(3, 1) - header_size;
    EXPECT_THAT(register_traces(), ElementsAre(pointer_trace(attached)));
    strcpy(published + header_size, "seen");
    EXPECT_STREQ(entry(3, 1), "seen");
    strcpy(published + header_size + 8, "too");
    EXPECT_STREQ(entry(3, 2), "too");
}

TEST_F(ShareRegister, AttachesWhatAnotherProcessHasPublished)
{
    ASSERT_TRUE(in_other_process([] {
        char *const map = static_cast<char *>(para_share_publish(2, 2, 16));
        return map != nullptr && strcpy(map + header_size + 16, "from there") != nullptr;
    }));
    EXPECT_EQ(para_share_register(2), 0);
    EXPECT_STREQ(entry(2, 2), "from there");
    EXPECT_EQ(para_share_register(1), -1);
}

TEST_F(ShareRegister, WorksInAClientProcess)
{
    const DatagramReceiver main_program;
    char *const published = static_cast<char *>(para_share_publish(0, 1, 16));
    strcpy(published + header_size, "for clients");
    EXPECT_TRUE(in_other_process([] {
        para_profile.role = 1;
        if (platformparam_init() != 0 || para_share_register(0) != 0)
            return false;
        if (strcmp(static_cast<const char *>(para_get_share_map(0, 1)), "for clients") != 0)
            return false;
        return para_set_share_video_bitRate_number(1, 4096) == 0;
    }));
    EXPECT_EQ(main_program.receive(), number_datagram("video", "bitRate", 1, 4096));
}

TEST_F(ShareRegister, OpensTheSocketAtTheFirstSuccessOnly)
{
    const DatagramReceiver main_program;
    const size_t before = open_descriptors();
    EXPECT_EQ(para_share_register(0), -1);
    EXPECT_EQ(open_descriptors(), before);
    for (int module = 0; module < PARA_SHARE_MODULES; module++)
        para_share_publish(module, 1, 8);
    for (int module = 0; module < PARA_SHARE_MODULES; module++) {
        EXPECT_EQ(para_share_register(module), 0);
        EXPECT_EQ(para_share_register(module), 0);
        EXPECT_EQ(open_descriptors(), before + 1);
    }
    para_set_share_audio_volRightIn_string(0, "x");
    EXPECT_EQ(main_program.receive(), text_datagram("audio", "volRightIn", 0, "x"));
}

TEST_F(ShareRegister, NeedsTheFlagToBeOne)
{
    for (const uint32_t flag : {0U, 2U, 256U, 0xffffffffU}) {
        forget_traces();
        write_object(1, header(flag, 1, 8) + std::string(8, '\0'));
        EXPECT_EQ(para_share_register(1), -1) << flag;
        ASSERT_THAT(register_traces(), SizeIs(2));
        EXPECT_EQ(register_traces()[1], not_registered);
    }
}

TEST_F(ShareRegister, FollowsTheFlag)
{
    char *const map = static_cast<char *>(para_share_publish(1, 1, 8));
    EXPECT_EQ(para_share_register(1), 0);
    map[0] = 0;
    EXPECT_EQ(para_share_register(1), -1);
    map[0] = 1;
    EXPECT_EQ(para_share_register(1), 0);
}

TEST_F(ShareRegister, RefusesAnObjectThatDoesNotHoldItsEntries)
{
    const std::string objects[] = {
        "",
        word_bytes(1),
        header(1, 1, 8).substr(0, header_size - 1),
        header(1, 1, 8),
        header(1, 1, 8) + std::string(7, '\0'),
        header(1, 0x7fffffff, 0xffffffff) + std::string(100, '\0'),
        header(1, 0xffffffff, 0),
        header(1, 0x80000000, 2) + std::string(100, '\0'),
        header(1, 0xffffffff, 0xfffffff4) + std::string(100, '\0'),
    };
    for (const std::string &bytes : objects) {
        forget_traces();
        write_object(0, bytes);
        EXPECT_EQ(para_share_register(0), -1) << bytes.size();
        EXPECT_THAT(register_traces(), ElementsAre(pointer_trace(nullptr), not_registered));
        EXPECT_EQ(para_get_share_map(0, 1), nullptr);
    }
}

TEST_F(ShareRegister, SucceedsOnceTheModuleIsPublished)
{
    write_object(0, "");
    EXPECT_EQ(para_share_register(0), -1);
    para_share_publish(0, 1, 8);
    EXPECT_EQ(para_share_register(0), 0);
}

TEST_F(ShareRegister, AReplacedModuleIsAttachedByTheNextRegistration)
{
    char *const old_map = static_cast<char *>(para_share_publish(1, 1, 8));
    EXPECT_EQ(para_share_register(1), 0);
    char *const old_entry = entry(1, 1);

    char *const new_map = static_cast<char *>(para_share_publish(1, 2, 16));
    strcpy(old_map + header_size, "old");
    strcpy(new_map + header_size, "new");
    EXPECT_STREQ(entry(1, 1), "old") << "until it registers again";
    EXPECT_EQ(para_share_register(1), 0);
    EXPECT_STREQ(entry(1, 1), "new");
    EXPECT_EQ(entry(1, 2) - entry(1, 1), 16);
    EXPECT_STREQ(old_entry, "old") << "addresses that were handed out stay valid";
}

TEST_F(ShareRegister, AWithdrawnModuleIsNotPublished)
{
    para_share_publish(1, 1, 8);
    EXPECT_EQ(para_share_register(1), 0);
    unlink(object_path(1).c_str());
    EXPECT_EQ(para_share_register(1), -1);
}

TEST_F(ShareRegister, TouchesNoVariableOfTheHost)
{
    EXPECT_EQ(g_shareMap, nullptr);
    EXPECT_EQ(g_shareMapLen, 0);
    int own = 0;
    g_shareMap = &own;
    g_shareMapLen = 77;
    para_share_publish(0, 1, 8);
    para_share_register(0);
    para_share_register(1);
    para_get_share_map(0, 1);
    EXPECT_EQ(g_shareMap, &own);
    EXPECT_EQ(g_shareMapLen, 77);
    EXPECT_EQ(own, 0);
}

// --- Entries ---

TEST_F(ShareEntry, AreNumberedFromOne)
{
    char *const published = static_cast<char *>(para_share_publish(2, 3, 20));
    para_share_register(2);
    for (int number = 1; number <= 3; number++) {
        published[header_size + 20 * (number - 1)] = static_cast<char>('0' + number);
        EXPECT_EQ(*entry(2, number), '0' + number);
        EXPECT_EQ(entry(2, number) - entry(2, 1), 20 * (number - 1));
    }
    EXPECT_THAT(entry_traces(), IsEmpty());
}

TEST_F(ShareEntry, OutOfRangeIsTracedAndComputedAllTheSame)
{
    para_share_publish(1, 3, 20);
    para_share_register(1);
    char *const first = entry(1, 1);
    for (const int number : {0, -1, -1000, 4, 1000000, INT_MAX, INT_MIN}) {
        forget_traces();
        const auto distance =
            reinterpret_cast<intptr_t>(entry(1, number)) - reinterpret_cast<intptr_t>(first);
        EXPECT_EQ(distance, 20LL * (static_cast<long long>(number) - 1)) << number;
        EXPECT_THAT(entry_traces(), ElementsAre(no_entry)) << number;
    }
}

TEST_F(ShareEntry, OfAnEmptyMapIsOutOfRange)
{
    para_share_publish(1, 0, 8);
    EXPECT_EQ(para_share_register(1), 0);
    EXPECT_NE(entry(1, 1), nullptr);
    EXPECT_THAT(entry_traces(), ElementsAre(no_entry));
}

TEST_F(ShareEntry, OfAModuleAboveThreeIsNull)
{
    for (const int module : {int{PARA_SHARE_MODULES}, INT_MAX}) {
        forget_traces();
        EXPECT_EQ(para_get_share_map(module, 1), nullptr);
        EXPECT_THAT(entry_traces(), ElementsAre(no_module)) << module;
    }
}

TEST_F(ShareEntry, WithoutAMapIsNull)
{
    for (const int module : {-1, INT_MIN, 0, 3}) {
        forget_traces();
        EXPECT_EQ(para_get_share_map(module, 1), nullptr);
        EXPECT_EQ(para_get_share_map(module, 0), nullptr);
        EXPECT_THAT(entry_traces(), ElementsAre(not_registered, not_registered)) << module;
    }
}

TEST_F(Share, TracesAtLevelSix)
{
    para_share_publish(0, 1, 8);
    forget_traces();
    const auto trace_everything = [] {
        para_share_register(4);
        para_share_register(0);
        para_share_register(1);
        para_get_share_map(4, 1);
        para_get_share_map(0, 0);
        para_get_share_map(0, 2);
        para_get_share_map(1, 1);
    };
    trace_everything();
    EXPECT_THAT(traces(), SizeIs(8));
    for (const trace_line &line : traces())
        EXPECT_EQ(line.level, 6) << line.text;

    forget_traces();
    set_trace_level(5);
    trace_everything();
    EXPECT_THAT(traces(), IsEmpty());
}
