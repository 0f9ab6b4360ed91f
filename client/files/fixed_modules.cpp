// Lens, sound and video streams: ranges and defaults.
#include "client/files/checks.h"
#include "client/files/values.h"

namespace {

template <size_t count>
void check_module(device_folder &home, device_model &device, const std::string &name,
                  module_kind kind, const table_member (&table)[count])
{
    json_document ranges(home, name + "_range.json"), defaults(home, name + "_def.json");
    if (!has_files(ranges, defaults, name))
        return;
    module_in_files &module = device.add(name, kind, table);
    read_ranges(ranges, ranges.root(), "", module);
    read_defaults(defaults, defaults.root(), "", module);
    module.is_known = ranges.root() != nullptr && defaults.root() != nullptr;
    if (module.is_known)
        warn_of_unpaired(ranges, "", defaults, "", module);
}

std::string stream_name(int stream)
{
    return "video" + std::to_string(stream);
}

// There are as many streams as the range file has of these keys, whatever their numbers are.
int count_streams(const cJSON *ranges)
{
    int count = 0;
    for (int stream = 0; stream < PARA_VIDEO_STREAMS; stream++)
        count += find_key(ranges, stream_name(stream).c_str()) != nullptr ? 1 : 0;
    return count;
}

// Keys of a file that are no stream in use.
void check_stream_names(json_document &file, const device_model &device, const std::string &reason)
{
    for (const cJSON *item : file.members(file.root())) {
        const std::string name = in_small_letters(item->string);
        bool is_stream = false;
        for (const module_in_files &module : device.modules)
            is_stream = is_stream || (module.name == name && module.name.rfind("video", 0) == 0);
        if (!is_stream)
            file.fault(item, item->string, reason);
        else if (!cJSON_IsObject(item))
            file.fault(item, item->string, "is no object of a stream's members");
    }
}

void check_stream(json_document &ranges, json_document &defaults, module_in_files &stream)
{
    const std::string prefix = stream.name + ".";
    const cJSON *const its_range = find_key(ranges.root(), stream.name.c_str());
    const cJSON *const its_defaults = find_key(defaults.root(), stream.name.c_str());
    read_ranges(ranges, its_range, prefix, stream);
    read_defaults(defaults, its_defaults, prefix, stream);
    stream.is_known = ranges.root() != nullptr && defaults.root() != nullptr;
    if (!stream.is_known)
        return;
    if (its_defaults == nullptr)
        ranges.warn(its_range, stream.name, "has no defaults, so that the stream has no settings");
    else
        warn_of_unpaired(ranges, prefix, defaults, prefix, stream);
}

void check_video(device_folder &home, device_model &device)
{
    json_document ranges(home, "video_range.json"), defaults(home, "video_def.json");
    if (!has_files(ranges, defaults, "video"))
        return;
    const int count = ranges.root() != nullptr ? count_streams(ranges.root()) : PARA_VIDEO_STREAMS;
    for (int stream = 0; stream < count; stream++)
        check_stream(ranges, defaults,
                     device.add(stream_name(stream), module_kind::named, video_table));
    check_stream_names(ranges, device, "is no stream: they are video0 to video5, without a gap");
    if (ranges.root() != nullptr)
        check_stream_names(defaults, device, "is no stream of the range file");
}

} // namespace

void check_fixed_modules(device_folder &home, device_model &device)
{
    check_module(home, device, "af", module_kind::numbers, af_table);
    check_module(home, device, "audio", module_kind::named, audio_table);
    check_video(home, device);
}
