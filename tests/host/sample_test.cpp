// The sample devices.
#include <filesystem>
#include <set>

#include "camparam/isp.h"
#include "host/host_process.h"

namespace {

class SampleDevice : public HostProcess {
protected:
    static std::string folder(const std::string &device)
    {
        return std::filesystem::path(SAMPLE_HOME).parent_path().parent_path() / device / "home";
    }

    static json load(const std::string &path)
    {
        json tree(cJSON_Parse(read_file(path).value_or("").c_str()));
        EXPECT_NE(tree, nullptr) << path;
        return tree;
    }

    // The modules of all pages, each in the order of its members.
    static json describe()
    {
        json all(cJSON_CreateObject());
        Client client;
        std::string cursor = "0.0";
        while (!cursor.empty()) {
            const json page(cJSON_Parse(client
                                            .request("{'msg_type':'api_get','msg_name':'describe',"
                                                     "'data':{'cursor':'" +
                                                     cursor + "'}}")
                                            .value_or("")
                                            .c_str()));
            add_page(page.get(), all.get());
            const char *const next = cJSON_GetStringValue(cJSON_GetObjectItem(page.get(), "next"));
            cursor = next != nullptr ? next : "";
        }
        return all;
    }

private:
    static void add_page(const cJSON *page, cJSON *all)
    {
        const cJSON *module = nullptr;
        cJSON_ArrayForEach(module, cJSON_GetObjectItem(page, "modules"))
        {
            cJSON *members = cJSON_GetObjectItem(all, module->string);
            if (members == nullptr)
                members = cJSON_AddObjectToObject(all, module->string);
            const cJSON *member = nullptr;
            cJSON_ArrayForEach(member, cJSON_GetObjectItem(module, "members"))
            {
                cJSON_AddItemToObject(members, member->string, cJSON_Duplicate(member, 1));
            }
        }
    }
};

class EachSampleDevice : public SampleDevice, public testing::WithParamInterface<const char *> {};

// Calls check("MODULE.MEMBER", member) for each member of a description and returns their number.
template <typename checker> int for_each_member(const json &described, const checker &check)
{
    int count = 0;
    const cJSON *module = nullptr;
    cJSON_ArrayForEach(module, described.get())
    {
        const cJSON *member = nullptr;
        cJSON_ArrayForEach(member, module)
        {
            check(std::string(module->string) + "." + member->string, member);
            count++;
        }
    }
    return count;
}

double number(const cJSON *member, const char *key)
{
    return cJSON_GetNumberValue(cJSON_GetObjectItem(member, key));
}

bool is_among(const cJSON *text, const cJSON *names)
{
    const cJSON *name = nullptr;
    cJSON_ArrayForEach(name, names)
    {
        if (cJSON_Compare(name, text, 1))
            return true;
    }
    return false;
}

TEST_P(EachSampleDevice, StartsAndStopsWithoutAnError)
{
    home = folder(GetParam());
    start_host();
    EXPECT_EQ(Client().ask("{'msg_type':'get','msg_id':1}"), "{'msg_id':1}");
    EXPECT_EQ(end_host(SIGTERM), 0);

    EXPECT_EQ(host->errors(), "camparamd: ready on UDP port 6800, home " + home + ", data " + data +
                                  "\ncamparamd: SIGTERM: saving and stopping\n");
}

TEST_P(EachSampleDevice, HasDefaultsWithinTheirRanges)
{
    home = folder(GetParam());
    start_host();

    const int count = for_each_member(describe(), [](const std::string &name, const cJSON *member) {
        const std::string kind = cJSON_GetStringValue(cJSON_GetObjectItem(member, "kind"));
        const cJSON *const usual = cJSON_GetObjectItem(member, "default");
        ASSERT_NE(usual, nullptr) << name;
        if (kind == "number") {
            EXPECT_LE(number(member, "min"), usual->valuedouble) << name;
            EXPECT_LE(usual->valuedouble, number(member, "max")) << name;
        } else if (kind == "enum") {
            EXPECT_TRUE(is_among(usual, cJSON_GetObjectItem(member, "names"))) << name;
        } else {
            EXPECT_TRUE(cJSON_IsString(usual)) << name;
        }
    });
    EXPECT_GT(count, 20);
}

TEST_P(EachSampleDevice, KeepsWhatItHasSaved)
{
    home = folder(GetParam());
    start_host();
    const std::string before = compact(describe().get());
    EXPECT_EQ(end_host(SIGTERM), 0);

    start_host();

    EXPECT_EQ(compact(describe().get()), before);
    EXPECT_EQ(host->errors().find("[para "), std::string::npos) << host->errors();
}

std::string suite_name(const testing::TestParamInfo<const char *> &device)
{
    return std::string(device.param) == "camera" ? "Camera" : "Legacy";
}

INSTANTIATE_TEST_SUITE_P(Both, EachSampleDevice, testing::Values("camera", "camera-legacy"),
                         suite_name);

// And "names" that are as many as the numbers.
TEST_F(SampleDevice, TellsOfEachSettingWhatItIs)
{
    home = SAMPLE_HOME;
    start_host();

    const int count = for_each_member(describe(), [](const std::string &name, const cJSON *member) {
        EXPECT_TRUE(cJSON_IsString(cJSON_GetObjectItem(member, "label"))) << name;
        const cJSON *const names = cJSON_GetObjectItem(member, "names");
        if (!cJSON_IsObject(names))
            return;
        int expected = static_cast<int>(number(member, "min"));
        const cJSON *each = nullptr;
        cJSON_ArrayForEach(each, names)
        {
            EXPECT_EQ(each->string, std::to_string(expected++)) << name;
        }
        EXPECT_EQ(expected, number(member, "max") + 1) << name;
    });
    EXPECT_GT(count, 100);
}

TEST_F(SampleDevice, DescribesNothingThatItHasNot)
{
    home = SAMPLE_HOME;
    start_host();

    std::set<std::string> described;
    for_each_member(describe(), [&](std::string name, const cJSON *) {
        if (name.compare(0, 5, "video") == 0)
            name[5] = '*';
        described.insert(name);
    });
    // What no request reads.
    for (const char *hidden : {"isp0.len_type", "isp0.ccm_style"})
        described.insert(hidden);
    const json texts = load(folder("camera") + "/descriptions.json");
    const cJSON *module = nullptr;
    cJSON_ArrayForEach(module, texts.get())
    {
        const cJSON *member = nullptr;
        cJSON_ArrayForEach(member, module)
        {
            EXPECT_EQ(described.count(std::string(module->string) + "." + member->string), 1U)
                << module->string << "." << member->string;
        }
    }
}

TEST_F(SampleDevice, StylesNameEveryMemberThatIsLoaded)
{
    std::set<std::string> loaded;
#define LOADED_yes(name) loaded.insert(#name);
#define LOADED_no(name)
#define ISP_MEMBER(word, name, in_files, accessor, by_name, written) LOADED_##in_files(name)
#include "camparam/isp_members.def"
    ASSERT_EQ(loaded.size(), 37u);

    const json styles = load(folder("camera") + "/isp_def.json");
    const cJSON *const list = cJSON_GetObjectItem(styles.get(), "isp0_style_list");
    EXPECT_GE(cJSON_GetArraySize(list), 4);
    const cJSON *name = nullptr;
    cJSON_ArrayForEach(name, list)
    {
        std::set<std::string> named;
        const cJSON *member = nullptr;
        cJSON_ArrayForEach(member, cJSON_GetObjectItem(styles.get(), name->valuestring))
        {
            named.insert(member->string);
        }
        EXPECT_EQ(named, loaded) << name->valuestring;
    }
}

TEST_F(SampleDevice, AppliesEachOfItsStylesWhole)
{
    home = SAMPLE_HOME;
    start_host();

    const json styles = load(home + "/isp_def.json");
    const cJSON *name = nullptr;
    cJSON_ArrayForEach(name, cJSON_GetObjectItem(styles.get(), "isp0_style_list"))
    {
        const std::string reply =
            Client().ask("{'msg_type':'api_set','msg_name':'style','data':{'style':'" +
                         std::string(name->valuestring) + "'}}");
        EXPECT_NE(reply.find("'refused':{}"), std::string::npos) << reply;
    }
}

TEST_F(SampleDevice, WebNamesReachMembersOfItsPages)
{
    home = SAMPLE_HOME;
    start_host();

    std::set<std::string> modifiers;
    const json names = load(home + "/www2json.json");
    const cJSON *module = nullptr;
    cJSON_ArrayForEach(module, names.get())
    {
        if (!cJSON_IsObject(module))
            continue;
        const json reply(cJSON_Parse(
            Client()
                .request("{'msg_type':'get','" + std::string(module->string) + "':['all']}")
                .value_or("")
                .c_str()));
        const cJSON *const values = cJSON_GetObjectItem(reply.get(), module->string);
        const cJSON *entry = nullptr;
        cJSON_ArrayForEach(entry, module)
        {
            const cJSON *const value = cJSON_GetObjectItem(values, entry->string);
            ASSERT_NE(value, nullptr) << module->string << "." << entry->string;
            const char *const type = cJSON_GetStringValue(cJSON_GetArrayItem(entry, 1));
            EXPECT_EQ(cJSON_IsString(value) != 0, std::string(type) == "S") << entry->string;
            const char *const modifier = cJSON_GetStringValue(cJSON_GetArrayItem(entry, 2));
            modifiers.insert(modifier != nullptr ? modifier : "");
        }
    }
    EXPECT_EQ(modifiers, (std::set<std::string>{"", "F", "Greedy", "K", "P"}));
    for (const char *page : {"image", "exposure", "video", "audio", "network", "NDI", "system"})
        EXPECT_TRUE(cJSON_IsArray(cJSON_GetObjectItem(names.get(), page))) << page;
}

TEST_F(SampleDevice, HasItsRangesAsNamesAndAsNumbers)
{
    const json ranges = load(folder("camera") + "/video_range.json");
    const auto size = [&](const char *stream) {
        return cJSON_GetObjectItem(cJSON_GetObjectItem(ranges.get(), stream), "size");
    };
    EXPECT_TRUE(cJSON_IsString(cJSON_GetArrayItem(size("video0"), 0)));
    EXPECT_TRUE(cJSON_IsNumber(cJSON_GetArrayItem(size("video2"), 0)));
    home = SAMPLE_HOME;
    start_host();

    EXPECT_EQ(Client().ask("{'msg_type':'set','video0':{'size':'PIC_CIF'},"
                           "'video2':{'size':'PIC_CIF'}}"),
              "{}");
    EXPECT_EQ(Client().ask("{'msg_type':'get','video0':['size'],'video2':['size']}"),
              "{'video0':{'size':'PIC_CIF'},'video2':{'size':'PIC_CIF'}}");
}

TEST_F(SampleDevice, LegacyMiscStaysInItsOwnFiles)
{
    home = folder("camera-legacy");
    start_host();

    EXPECT_EQ(Client().ask("{'msg_type':'set','misc':{'hdmivideoformat':'4KP25','mirror':1}}"),
              "{}");
    EXPECT_EQ(end_host(SIGTERM), 0);

    const json saved = load(data + "/misc_cur.json");
    EXPECT_STREQ(cJSON_GetStringValue(cJSON_GetObjectItem(saved.get(), "hdmivideoformat")),
                 "4KP25");
    EXPECT_EQ(number(saved.get(), "mirror"), 1);
    EXPECT_EQ(read_data("misc.conf"), std::nullopt);
}

} // namespace
