/* Loads and unloads the shared object over and over, and uses it each time. */
#include <dlfcn.h>
#include <stdio.h>
#include <string.h>

#include "zavricustpro.h"

static int use(void* library) {
  int (*init)(void);
  int (*destroy)(void);
  uint32_t (*compose)(T_ComposeParam*);
  *(void**)&init = dlsym(library, "HALThreadPoolInit");
  *(void**)&destroy = dlsym(library, "HALThreadPoolDestroy");
  *(void**)&compose = dlsym(library, "zavri_mp_compose_two_same_frame");
  if (!init || !destroy || !compose) return 1;
  uint8_t source[16 * 8 * 3 / 2];
  uint8_t result[sizeof source];
  memset(source, 7, sizeof source);
  T_ComposeParam param = {16, 8, 0, 0, 0, source, source, result};
  return init() != 0 || compose(&param) != 0 || result[40] != 7 || destroy() != 0;
}

int main(int argc, char** argv) {
  for (int k = 0; argc == 2 && k < 100; ++k) {
    void* const library = dlopen(argv[1], RTLD_NOW | RTLD_LOCAL);
    if (library == NULL || use(library) != 0 || dlclose(library) != 0) return 1;
    /* It must be gone, or nothing was shown. */
    if (dlopen(argv[1], RTLD_NOW | RTLD_NOLOAD) != NULL) return 2;
  }
  return argc != 2;
}
