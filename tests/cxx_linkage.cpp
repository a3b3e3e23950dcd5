// This is a host that declares the pool's free functions itself, without extern "C".
int HALThreadPoolInit();
int HALThreadPoolDestroy();
void WorkerThreadBase(void* info);

int cxx_init() { return HALThreadPoolInit(); }
int cxx_destroy() { return HALThreadPoolDestroy(); }
void cxx_run_and_count(void* info) { WorkerThreadBase(info); }
