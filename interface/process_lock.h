#pragma once

#include <pthread.h>

// Held by a heavy operation from before the pool is ensured until its fan-out has finished: one
// such operation at a time, and HALThreadPoolInit never runs twice at once.
extern pthread_mutex_t g_mp_process_lock;
