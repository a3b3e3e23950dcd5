#include "interface/process_lock.h"

pthread_mutex_t g_mp_process_lock = PTHREAD_MUTEX_INITIALIZER;
