#pragma once

// The Android log is liblog on a phone and where a host has it, otherwise the stand-in of
// platform/host. It is declared here because a cross build may lack the system's header.
extern "C" int __android_log_print(int priority, const char* tag, const char* format, ...)
    __attribute__((format(printf, 3, 4)));

namespace zavri {

// The priorities have the values of the Android log.
inline constexpr int kLogVerbose = 2;
inline constexpr int kLogError = 6;

inline constexpr const char* kTagProcessing = "ZVC";
inline constexpr const char* kTagDefog = "Defog";

}  // namespace zavri
