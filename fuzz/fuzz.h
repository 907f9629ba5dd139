// What the fuzz targets share. The readers end the process on input that they refuse; linked with
// --wrap=exit, they come back here instead.

#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <fstream>
#include <string>
#include <string_view>
#include <unistd.h>

namespace tervoxal {

struct Refused {};

bool reading = false; // the fuzzer's own exits stay exits

extern "C" [[noreturn]] void __real_exit(int status);
extern "C" [[noreturn]] void __wrap_exit(int status) {
    if (reading) throw Refused();
    __real_exit(status);
}

template <class Read>
bool refused(Read&& read) {
    reading = true;
    bool thrown = false;
    try {
        read();
    } catch (const Refused&) {
        thrown = true;
    }
    reading = false;
    return thrown;
}

template <class Read>
int orRefused(Read&& read) {
    (void)refused(read);
    return 0;
}

/// The input as a file in memory, removed at the end.
class InputFile {
public:
    InputFile(const std::uint8_t* data, std::size_t size, const std::string& suffix = ".in")
        : file(name + suffix) {
        std::ofstream out(file, std::ios::binary);
        out << std::string_view(reinterpret_cast<const char*>(data), size);
    }
    ~InputFile() { std::remove(file.c_str()); }
    InputFile(const InputFile&) = delete;
    InputFile& operator=(const InputFile&) = delete;

    const std::string name = "/dev/shm/tervoxal-fuzz-" + std::to_string(getpid());
    const std::string file;
};

} // namespace tervoxal
