#pragma once

// Numbers of calls of the system that no kernel has: what is executed between them is counted.
enum { kMarkStart = 5000, kMarkEnd = 5001 };
