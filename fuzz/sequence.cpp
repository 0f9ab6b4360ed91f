// Target: sequences of operations on a small device, against a model (fuzz/model) that predicts
// every value, reply, status and file. Each life of the store is a process.
//   input: for each life its settings (bit 0 guard, bit 1 conf files are written) and operations,
//   each a byte and what it takes; then what happens to a file meanwhile
#include <filesystem>
#include <iterator>
#include <string>

#include "fuzz/model/life.h"
#include "fuzz/model/store.h"
#include "fuzz/support/child.h"
#include "fuzz/support/device.h"
#include "fuzz/support/input.h"
#include "fuzz/support/target.h"

namespace {

void lay_out(const model_device &device)
{
    static bool home_is_written = false;
    for (const auto &[name, contents] : device.home_files()) {
        if (!home_is_written)
            write_file(folders().home + "/" + name, contents);
    }
    home_is_written = true;
    std::filesystem::remove_all(folders().data + ".gone");
    std::filesystem::remove_all(folders().data);
    std::filesystem::create_directory(folders().data);
}

void cut(std::string &bytes, input_reader &input)
{
    bytes.resize(static_cast<size_t>(input.byte() * 256 + input.byte()) % (bytes.size() + 1));
}

void change_byte(std::string &bytes, input_reader &input)
{
    const auto place = static_cast<size_t>(input.byte() * 256 + input.byte());
    const char byte = static_cast<char>(input.byte());
    if (!bytes.empty())
        bytes[place % bytes.size()] = byte;
}

void damage_a_file(model_device &device, input_reader &input)
{
    const int damage = input.choice(6);
    if (damage > 2 || device.disk.files.empty())
        return;
    const int chosen = input.choice(static_cast<int>(device.disk.files.size()));
    const auto file = std::next(device.disk.files.begin(), chosen);
    const std::string path = data_folder(device) + "/" + file->first;
    if (damage == 2) {
        std::filesystem::remove(path);
        device.disk.files.erase(file);
        return;
    }
    if (damage == 0)
        cut(file->second, input);
    else
        change_byte(file->second, input);
    write_file(path, file->second);
}

void run_input(const uint8_t *data, size_t size)
{
    input_reader input(data, size);
    model_device device;
    lay_out(device);
    while (!input.empty()) {
        in_child([&] { life(device, input, true).run(); });
        life(device, input, false).run();
        damage_a_file(device, input);
    }
}

} // namespace

int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    serve_input(run_input, data, size);
    return 0;
}
