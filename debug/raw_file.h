#pragma once

#include <fcntl.h>

#include <cstdint>

// Files of raw bytes, as the dumps use them. A dump must never disturb the camera: transfers that
// fail or fall short are ignored.
namespace zavri {

bool file_exists(const char* path);

// What every dump opens its file with; the bytes of a longer file stay behind what is written.
inline constexpr int kCreate = O_RDWR | O_CREAT;

// A descriptor, or what open() returns when it fails.
int open_raw(const char* path, int flags);

// One call of the system each.
void write_raw(int file, const void* bytes, uint32_t size);
void read_raw(int file, void* bytes, uint32_t size);

}  // namespace zavri
