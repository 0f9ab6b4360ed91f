// Every message names a function of the interface and a line of that function, and reaches the
// platform in the format that the message has.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstring>
#include <filesystem>
#include <fstream>
#include <map>
#include <regex>
#include <set>
#include <string>
#include <vector>

#include "support/store.h"

using testing::IsSupersetOf;

namespace {

struct line_range {
    int first, last;
};

// Where the sources define a function. One that a macro defines stands where the macro is used:
// af_page in DEFINE_ROW(af), para_init_af in DEFINE_START(af). PARA_IN() names the function whose
// work the code does.
class source_index {
public:
    source_index()
    {
        for (const char *folder : {"base", "modules", "runtime", "server", "share"}) {
            const std::filesystem::path root = std::filesystem::path(SOURCES) / folder;
            for (const auto &entry : std::filesystem::recursive_directory_iterator(root)) {
                if (entry.path().extension() == ".cpp")
                    read(entry.path());
            }
        }
    }

    bool holds(const std::string &function, int line) const
    {
        const auto found = functions.equal_range(function);
        return std::any_of(found.first, found.second, [line](const auto &each) {
            return line >= each.second.first && line <= each.second.last;
        });
    }

private:
    void read(const std::filesystem::path &path)
    {
        static const std::regex definition(R"(^[a-z].*?([A-Za-z0-9_]+)\(.*$)");
        static const std::regex in_name_of(R"(PARA_IN\(([A-Za-z0-9_]+)\))");
        static const std::regex row(R"(^DEFINE_(ROW|START)\(([a-z]+)\)$)");
        std::ifstream file(path);
        std::string text, name;
        int first = 0;
        std::smatch parts;
        for (int number = 1; std::getline(file, text); number++) {
            if (text == "}") {
                functions.insert({name, {first, number}});
            } else if (std::regex_match(text, parts, row)) {
                const std::string module = parts[2];
                functions.insert({parts[1] == "ROW" ? module + "_page" : "para_init_" + module,
                                  {number, number}});
            } else if (std::regex_search(text, parts, in_name_of)) {
                functions.insert({parts[1], {number, number}});
            } else if (std::regex_match(text, parts, definition)) {
                name = parts[1];
                first = number;
            }
        }
    }

    std::multimap<std::string, line_range> functions;
};

} // namespace

class TraceSites : public Store {
protected:
    // A device's life: start-up, each kind of request, saving, a reload, the end.
    void run_sample_device()
    {
        para_profile.home_dir = SAMPLE_HOME;
        start_store();
        Client client;
        for (const char *request :
             {"{'msg_type':'get','msg_name':'n','msg_id':1,'isp0':['all'],'af':['zoom_value'],"
              "'audio':['mute'],'video0':['gop'],'misc':['mirror'],'netport':['http_port']}",
              "{'msg_type':'set','msg_name':'n','isp0':{'hue':5},'audio':{'mute':1},"
              "'video0':{'gop':31},'misc':{'mirror':1},'netport':{'http_port':'81'}}",
              "{'msg_type':'get','msg_from':'www','msg_name':'image'}",
              "{'msg_type':'set','msg_from':'www','msg_name':'image','data':'hue=6'}",
              "{'msg_type':'api_get','msg_name':'unknown'}"})
            client.ask(request);
        para_conf_need_update("netport");
        char small[2];
        para_save_misc_conf_2_buf("misc", small, sizeof small);
        para_save_conf_2_buf("netport", small, sizeof small);
        para_video_enum(nullptr, nullptr);
        update_line_conf_int("unused", "key", 1, "no format");
        stop_store();
    }

    static std::set<std::string> formats_of(const std::string &function)
    {
        std::set<std::string> formats;
        for (const trace_line &line : traces()) {
            if (line.function == function)
                formats.insert(line.format);
        }
        return formats;
    }
};

TEST_F(TraceSites, TheLineIsOneOfTheFunctionThatIsNamed)
{
    run_sample_device();
    const source_index sources;
    std::set<std::string> seen;
    for (const trace_line &line : traces()) {
        EXPECT_TRUE(sources.holds(line.function, line.line))
            << line.function << " +" << line.line << " " << line.text;
        seen.insert(line.function);
    }
    EXPECT_THAT(seen, IsSupersetOf({"platformparam_init",
                                    "af_page",
                                    "isp_page",
                                    "video_page",
                                    "audio_page",
                                    "para_init_af",
                                    "para_init_audio",
                                    "para_init_video",
                                    "para_init_isp",
                                    "para_init_isp_style",
                                    "check_video_num",
                                    "register_para_handle_json_pattern",
                                    "para_init_misc_legacy",
                                    "dump_conf",
                                    "save_param",
                                    "para_get_af_opt",
                                    "para_get_audio_opt",
                                    "para_get_isp_opt",
                                    "Recive_message_Process_gset",
                                    "param_base_json_dispose",
                                    "cJSON_Print_safe",
                                    "para_video_enum",
                                    "para_save_misc_conf_2_buf",
                                    "para_save_conf_2_buf",
                                    "update_line_conf_int"}));
}

TEST_F(TraceSites, FormatsEndAsTheMessagesDo)
{
    run_sample_device();
    const std::string prefix = "[para %s +%-4d]";
    EXPECT_THAT(formats_of("para_init_af"), IsSupersetOf({prefix + "parse_ok:%d\n"}));
    EXPECT_THAT(formats_of("af_page"), testing::UnorderedElementsAre(
                                           prefix + "----------%s PARAM-----------\n\n",
                                           prefix + "%16s : cur:[%d],\tdef:[%d],\trange:[%d,%d]\n",
                                           prefix + "--------------------------------\n\n"));
    EXPECT_THAT(formats_of("video_page"), IsSupersetOf({prefix + "stream_%d param:\n"}));
    EXPECT_THAT(formats_of("isp_page"), IsSupersetOf({prefix + "isp%d param:\n\n"}));
    EXPECT_THAT(formats_of("platformparam_init"),
                IsSupersetOf(
                    {prefix + "cJson version:%d %d %d\n", prefix + "module_para_handle_num:%d\n"}));
    EXPECT_THAT(formats_of("save_param"), IsSupersetOf({prefix + "%s save...\n"}));
    EXPECT_THAT(formats_of("para_get_af_opt"),
                testing::UnorderedElementsAre(prefix + "inter\n", prefix + "leave\n"));
    EXPECT_THAT(formats_of("platformparam_stop"),
                testing::ElementsAre(prefix + "platformparam_stop ok\n"));
}

// What stands in the text for the conversions of its format, the prefix aside.
static std::vector<std::string> arguments_of(const trace_line &line)
{
    static const std::regex conversion("%[-0-9.]*[a-z]");
    const std::string format = line.format.substr(strlen("[para %s +%-4d]"));
    const std::sregex_token_iterator end;
    std::vector<std::string> arguments;
    size_t begin = 0;
    for (std::sregex_token_iterator words(format.begin(), format.end(), conversion, -1);
         words != end; ++words) {
        const std::string literal = *words;
        const size_t found = line.text.find(literal, begin);
        EXPECT_NE(found, std::string::npos) << line.format << line.text;
        if (words->first != format.begin())
            arguments.push_back(line.text.substr(begin, found - begin));
        begin = found + literal.size();
    }
    return arguments;
}

TEST_F(TraceSites, NoPartOfAFormatStandsForNothing)
{
    run_sample_device();
    for (const trace_line &line : traces())
        EXPECT_THAT(arguments_of(line), testing::Each(testing::Not(testing::IsEmpty())))
            << line.function << " " << line.format;
}

TEST_F(TraceSites, AFileThatIsNotJsonIsTracedInTheWordsOfItsModule)
{
    for (const char *name : {"www2json.json", "af_range.json", "video_range.json", "isp_def.json",
                             "audio_range.json", "misc_range.json", "panel_range.json"})
        write_home(name, "{");
    write_home("isp_range.json", "{}");
    std::filesystem::create_directory(data + "/persist");
    write_data("persist/odm.json", "{");
    start_store();
    para_init_misc("panel");
    const std::string plain = "[para %s +%-4d]Error before: [%s]\n";
    EXPECT_THAT(formats_of("platformparam_init"), IsSupersetOf({plain}));
    for (const char *function : {"para_init_misc", "para_init_misc_legacy"})
        EXPECT_THAT(formats_of(function), IsSupersetOf({plain})) << function;
    for (const char *function : {"para_init_af", "para_init_audio", "para_init_video",
                                 "para_init_isp_style", "para_init_odm"})
        EXPECT_THAT(formats_of(function), IsSupersetOf({plain + "\n"})) << function;
    const source_index sources;
    for (const trace_line &line : traces())
        EXPECT_TRUE(sources.holds(line.function, line.line))
            << line.function << " +" << line.line << " " << line.text;
}
