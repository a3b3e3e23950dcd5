#pragma once

#include <fcntl.h>

#include <cstdint>

// The dumps read and write files of raw bytes. A dump must never disturb the camera: transfers that
// fail or fall short are ignored.
namespace zavri {

bool file_exists(const char* path);

// Every dump opens its file with these flags; what a longer file holds behind the dump stays.
inline constexpr int kCreate = O_RDWR | O_CREAT;

// Returns a descriptor, or what open() returns when it fails.
int open_raw(const char* path, int flags);

// A transfer is one system call, which is not repeated when it falls short.
void write_raw(int file, const void* bytes, uint32_t size);
void read_raw(int file, void* bytes, uint32_t size);

}  // namespace zavri
