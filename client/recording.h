// Recordings of requests and answers.
//
// A recording is lines of JSON objects, one for each datagram, in the order in which they came:
//   {"time": MILLISECONDS SINCE 1970, "client": N, "request": "TEXT"}
//   {"time": MILLISECONDS SINCE 1970, "client": N, "answer": "TEXT"}
// Clients are counted from 1. Bytes that are no UTF-8 text, or hold a zero, which JSON strings
// lose, go in hexadecimal digits as "request_hex" or "answer_hex".
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "client/descriptor.h"
#include "client/json.h"

class recording_writer {
public:
    // Opens the file, for its owner alone to read. Throws a failure when it cannot be written.
    explicit recording_writer(const std::string &file);

    // Drops what the file held before.
    void clear();

    // Writes a line to its end. Throws a failure when the file does not take it.
    void write_request(int client, const std::string &bytes) { write(client, "request", bytes); }
    void write_answer(int client, const std::string &bytes) { write(client, "answer", bytes); }

private:
    void write(int client, const char *kind, const std::string &bytes);
    [[noreturn]] void fail() const;

    std::string path;
    descriptor opened;
};

struct recorded_request {
    int line; // where it stands, from 1
    double time_ms;
    std::string bytes;
    std::optional<std::string> answer; // the first that fits
};

// The requests of a file in their order, each with its answer; "-" is standard input. Throws a
// failure when the file cannot be read, or is no recording.
std::vector<recorded_request> read_recording(const std::string &file);

// Adds bytes to an object as recordings hold them: as NAME, or in hexadecimal digits as NAME_hex.
void add_bytes(cJSON *object, const std::string &name, const std::string &bytes);

// Whether JSON strings hold the bytes as they are.
bool is_text(const std::string &bytes);

std::string hex_of(const std::string &bytes);
