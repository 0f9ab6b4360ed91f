#include "faults/faulted_store.h"

#include <arpa/inet.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cstring>
#include <filesystem>

#include "support/json_text.h"

// --- Requests ---

DirectClient::DirectClient()
    : receiver(socket(AF_INET, SOCK_DGRAM, 0)), sender(socket(AF_INET, SOCK_DGRAM, 0))
{
    sockaddr_in address = {};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t size = sizeof address;
    EXPECT_EQ(bind(receiver, reinterpret_cast<sockaddr *>(&address), size), 0);
    EXPECT_EQ(getsockname(receiver, reinterpret_cast<sockaddr *>(&address), &size), 0);
    message.socket = sender;
    message.sender = address;
    message.sender_length = sizeof address;
}

DirectClient::~DirectClient()
{
    close(receiver);
    close(sender);
}

DirectClient::answer DirectClient::ask(const std::string &request, long failing, shortage lasting)
{
    const std::string text = swap_quotes(request, '\'', '"');
    strcpy(message.text, text.c_str());
    answer got = {};
    {
        const Allocations allocations(failing, lasting);
        para_server_message_Process(&message);
        got.tried = allocations.tried();
        got.kept = allocations.kept();
    }
    // A datagram to this machine has arrived when it has been sent.
    char bytes[65536];
    const ssize_t length = recv(receiver, bytes, sizeof bytes, MSG_DONTWAIT);
    got.text.assign(bytes, length > 0 ? static_cast<size_t>(length) : 0);
    return got;
}

static void run_faulted(long failing, long last, shortage lasting, const faulted_run &run)
{
    SCOPED_TRACE("allocation " + std::to_string(failing) + " of " + std::to_string(last) +
                 (lasting == shortage::once ? " fails once" : " fails for ever"));
    run(failing, lasting);
}

void for_each_failure(long last, const faulted_run &run)
{
    for (const shortage lasting : {shortage::once, shortage::for_ever}) {
        for (long failing = 1; failing <= last && !testing::Test::HasFailure(); failing++)
            run_faulted(failing, last, lasting, run);
    }
    ASSERT_GT(last, 0) << "nothing is allocated";
}

void for_each_failure(long last, const part_of_failures &part, const faulted_run &run)
{
    for (long failing = part.first; failing <= last && !testing::Test::HasFailure(); failing += 4)
        run_faulted(failing, last, part.lasting, run);
    ASSERT_GE(last, part.first) << "nothing is allocated";
}

std::vector<part_of_failures> all_parts()
{
    std::vector<part_of_failures> parts;
    for (const shortage lasting : {shortage::once, shortage::for_ever}) {
        for (long first = 1; first <= 4; first++)
            parts.push_back({lasting, first});
    }
    return parts;
}

void PrintTo(const part_of_failures &part, std::ostream *out)
{
    *out << (part.lasting == shortage::once ? "Once" : "ForEver") << part.first;
}

std::string name_of_part(const testing::TestParamInfo<part_of_failures> &part)
{
    return testing::PrintToString(part.param);
}

// --- Files ---

FaultedFolders::FaultedFolders()
{
    write_home("www2json.json",
               "{'json_pattern_list':['misc','lens'],'conf_pattern_list':['netport','overlay'],"
               "'image':['isp0','audio','netport'],'page':['isp0'],'bare':['overlay'],'overlay':{},"
               "'isp0':{'bright':['Bright','I'],'iris':['Iris','I','K']},"
               "'audio':{'audioEnable':['AudioOn','I','Greedy'],'aeFormat':['Coder','S']},"
               "'misc':{'mirror':['AudioOn','I'],'ViStrategy':['Strategy','S']},"
               "'netport':{'http_port':['HttpPort','S']}}");
    write_home("af_range.json", "{'focus_mode':[0,2],'zoom_value':[0,16384]}");
    write_home("af_def.json", "{'focus_mode':1,'zoom_value':10}");
    write_home("audio_range.json", "{'audioEnable':[0,1],'aeFormat':[0,1]}");
    write_home("audio_def.json", "{'audioEnable':1,'aeFormat':'AAC'}");
    write_home("video_range.json", "{'video0':{'protocol':[0,2],'bitRate':[1,32768]},"
                                   "'video1':{'bitRate':[1,32768]}}");
    write_home("video_def.json",
               "{'video0':{'protocol':'H265','bitRate':4096},'video1':{'bitRate':2048}}");
    write_home("isp_range.json", "{'isp0':{'style':[0,1],'iris':[0,15],'bright':[0,27]}}");
    write_home("isp_def.json", "{'isp0_style_def':0,'isp0_style_list':['standard','vivid'],"
                               "'standard':{'style':0,'iris':4,'bright':5},"
                               "'vivid':{'style':1,'iris':6,'bright':7}}");
    write_home("misc_range.json", "{'version':1,'ViStrategy':['50','60','dial'],'mirror':[0,1]}");
    write_home("misc.conf", "ViStrategy = '50'\nmirror = '0'\n");
    write_home("lens_range.json", "{'filter':['clear','red'],'steps':[0,9]}");
    write_home("lens.conf", "filter = 'clear'\nsteps = '3'\n");
    write_home("netport.conf", "http_port = '80'\nrtsp_port = '554'\n");
    write_home("overlay.conf", "title = 'camera'\n");

    std::filesystem::create_directory(data + "/persist");
    write_data("persist/odm.json", "{'version':1,'maker':'some'}");
    write_data("af_cur.json", "{'focus_mode':2,'zoom_value':20}");
    write_data("video_cur.json", "{'video0':{'bitRate':4097},'video1':{'bitRate':2049}}");
    write_data("isp_cur.json", "{'isp0':{'style':1,'bright':9}}");
    write_data("misc.conf", "mirror = '1'\n");
    write_data("netport.conf", "http_port = '8080'\n");
}

void FaultedFolders::use_legacy_misc()
{
    write_home("misc_range.json", "{'ViStrategy':['50','dial'],'mirror':[0,1],'flip':[0,1]}");
    write_home("misc_def.json", "{'ViStrategy':'50','mirror':0,'flip':0}");
    write_data("misc_cur.json", "{'ViStrategy':'60','mirror':1}");
}

void FaultedStore::SetUp()
{
    ASSERT_EQ(platformparam_init(), 0);
    platformparam_stop(1);
}
