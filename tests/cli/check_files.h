// A fixture with the files of a device, for the command "check".
#pragma once

#include "cli/run.h"

// A device without faults, of which each case spoils a file.
class CheckOfFiles : public Folders {
protected:
    CheckOfFiles()
    {
        write_home("af_range.json", "{'focus_mode':[0,2],\n'zoom_value':[0,100]}");
        write_home("af_def.json", "{'focus_mode':0,\n'zoom_value':50}");
        write_home("audio_range.json", "{'aeFormat':['AAC','G711A'],\n'mute':[0,1]}");
        write_home("audio_def.json", "{'aeFormat':'AAC',\n'mute':0}");
        write_home("video_range.json", "{'video0':{\n'size':['PIC_QCIF','PIC_HD1080'],\n"
                                       "'gop':[1,300]},\n'video1':{'gop':[1,60]}}");
        write_home("video_def.json", "{'video0':{\n'size':'PIC_VGA',\n'gop':30},\n"
                                     "'video1':{'gop':30}}");
        write_home("isp_range.json", "{'isp0':{\n'style':[0,1],\n'hue':[0,10]}}");
        write_home("isp_def.json", "{'isp0_style_list':[\n'day','night'],\n"
                                   "'day':{'hue':5},\n'night':{\n'hue':6}}");
        write_home("misc_range.json", "{'version':1,\n'mirror':[0,1],\n'ndi_mode':['off','high']}");
        write_home("misc.conf", "# defaults\nmirror = '0'\nndi_mode = 'off'\n");
        write_home("netport.conf", "http_port = '80'\nip = '10.0.0.1'\n");
        write_home("www2json.json", "{'conf_pattern_list':['netport']}");
    }

    // Without the folders' own paths.
    std::string shortened(std::string text) const
    {
        for (const std::string &prefix : {home + "/", data + "/"}) {
            for (size_t at = text.find(prefix); at != std::string::npos; at = text.find(prefix))
                text.erase(at, prefix.size());
        }
        return text;
    }

    // What the check prints of the home folder, or of both; it has to end with that status.
    std::string faults(int status = 4) const { return checked({"check", home}, status); }
    std::string saved_faults(int status = 4) const
    {
        return checked({"check", home, "--data", data}, status);
    }

    std::string checked(const std::vector<std::string> &words, int status) const
    {
        const run_result got = run(words);
        EXPECT_EQ(got.status, status) << got.output;
        EXPECT_EQ(got.errors, "");
        return shortened(got.output);
    }

    std::string with_file(const std::string &name, const std::string &text, int status = 4)
    {
        write_home(name, text);
        return faults(status);
    }

    std::string with_saved(const std::string &name, const std::string &text, int status = 4)
    {
        write_data(name, text);
        return saved_faults(status);
    }
};
