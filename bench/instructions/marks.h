#pragma once

// No kernel has calls of the system with these numbers: what is executed between the two is
// counted.
enum { kMarkStart = 5000, kMarkEnd = 5001 };
