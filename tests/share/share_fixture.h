// What the share tests stand on: shared memory of their own, and the port of the main program.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "support/store.h"

// The bytes of a word in the order of the host.
std::string word_bytes(uint32_t word);
// A text filled up with zeros to a field's width.
std::string field_bytes(const std::string &text, size_t width);

// A datagram, composed field by field.
std::string number_datagram(const std::string &module, const std::string &member, int instance,
                            int value);
std::string text_datagram(const std::string &module, const std::string &member, int instance,
                          const std::string &text);

// Share maps without a main program that has published any. The case neither sees nor disturbs one
// that runs elsewhere: it has a /dev/shm of its own, or the machine's to itself.
class OwnSharedMemory {
protected:
    OwnSharedMemory();

    static std::string object_path(int module);
    // Writes an object as a main program might; the words follow each other.
    static void write_object(int module, const std::string &bytes);
    static std::string read_object(int module);
    static bool object_exists(int module);
};

// The main program's end of the datagrams, in place of the store.
class DatagramReceiver {
public:
    explicit DatagramReceiver(int port = PARA_SERVER_PORT);
    ~DatagramReceiver();
    DatagramReceiver(const DatagramReceiver &) = delete;
    DatagramReceiver &operator=(const DatagramReceiver &) = delete;

    // The next datagram; "none" when none comes within 20 seconds.
    std::string receive() const;

private:
    int descriptor;
};
