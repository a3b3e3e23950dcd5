#include "interface/heavy_operation.h"

pthread_mutex_t g_mp_process_lock = PTHREAD_MUTEX_INITIALIZER;
