// A plugin for QEMU 7.2 in user mode that counts the instructions that the guest executes between
// two marks. A mark is a call of the system whose number no kernel knows (marks.h), which QEMU
// refuses like a kernel after it has told this plugin. For each pair of marks the plugin writes
//
//   count <total> <SIMD> <SIMD loads and stores> <moves between register files> <core loads,
//   stores> block <address of its first instruction> <instructions> <executions>
//
// with the blocks, at most kHottest, that executed the most instructions first. A block is a
// stretch of instructions that QEMU translates at once: it ends at a branch or with a page.
#include <ctype.h>
#include <inttypes.h>
#include <stdbool.h>
#include <stddef.h>
#include <stdint.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include "marks.h"

// This is version 1 of QEMU's plugin interface, as far as it is used here: Debian packages no
// header of it.
typedef uint64_t qemu_plugin_id_t;
typedef struct {
  const char* target_name;
  // Further fields follow, which are not read.
} qemu_info_t;
enum qemu_plugin_op { QEMU_PLUGIN_INLINE_ADD_U64 };
struct qemu_plugin_tb;
struct qemu_plugin_insn;

void qemu_plugin_register_vcpu_tb_trans_cb(qemu_plugin_id_t id,
                                           void (*translated)(qemu_plugin_id_t,
                                                              struct qemu_plugin_tb*));
void qemu_plugin_register_vcpu_syscall_cb(qemu_plugin_id_t id,
                                          void (*called)(qemu_plugin_id_t, unsigned cpu,
                                                         int64_t number, uint64_t, uint64_t,
                                                         uint64_t, uint64_t, uint64_t, uint64_t,
                                                         uint64_t, uint64_t));
void qemu_plugin_register_vcpu_tb_exec_inline(struct qemu_plugin_tb* tb, enum qemu_plugin_op op,
                                              void* counter, uint64_t addend);
size_t qemu_plugin_tb_n_insns(const struct qemu_plugin_tb* tb);
uint64_t qemu_plugin_tb_vaddr(const struct qemu_plugin_tb* tb);
struct qemu_plugin_insn* qemu_plugin_tb_get_insn(const struct qemu_plugin_tb* tb, size_t index);
char* qemu_plugin_insn_disas(const struct qemu_plugin_insn* insn);

#define EXPORT __attribute__((visibility("default")))
EXPORT int qemu_plugin_version = 1;

enum { kHottest = 40 };
enum Kind { kOther, kSimd, kSimdMemory, kTransfer, kMemory, kKinds };

struct Block {
  struct Block* next;
  uint64_t address;
  uint64_t executions;           // QEMU adds to it
  uint64_t executions_at_start;  // at the last start mark
  uint64_t instructions;
  uint64_t of_kind[kKinds];
};

static struct Block* g_blocks;
static FILE* g_output;
static bool g_is_64_bit;

static bool is_any_of(const char* word, size_t length, const char* const* names) {
  for (; *names != NULL; ++names) {
    if (strlen(*names) == length && strncmp(word, *names, length) == 0) return true;
  }
  return false;
}

static bool is_core_register(const char* word, size_t length) {
  static const char* const kNamed32[] = {"sb", "sl", "fp", "ip", "sp", "lr", "pc", NULL};
  static const char* const kNamed64[] = {"wzr", "xzr", NULL};
  if (is_any_of(word, length, g_is_64_bit ? kNamed64 : kNamed32)) return true;
  return length >= 2 && isdigit(word[1]) && strchr(g_is_64_bit ? "wx" : "r", word[0]) != NULL;
}

static bool is_vector_register(const char* word, size_t length) {
  return length >= 2 && isdigit(word[1]) && strchr("vqdshb", word[0]) != NULL;
}

static bool begins_with_any_of(const char* text, const char* const* prefixes) {
  for (; *prefixes != NULL; ++prefixes) {
    if (strncmp(text, *prefixes, strlen(*prefixes)) == 0) return true;
  }
  return false;
}

// Tells an instruction's kind from its disassembly, for example "vdup.8 q8, r3" or "ldr q0, [x1],
// #0x10".
static enum Kind kind_of(const char* text) {
  static const char* const kLoadsAndStores32[] = {"ld",  "st",  "push",  "pop",  "tbb", "tbh",
                                                  "vld", "vst", "vpush", "vpop", NULL};
  static const char* const kLoadsAndStores64[] = {"ld", "st", NULL};
  bool has_core = false;
  bool has_vector = !g_is_64_bit && text[0] == 'v';
  const char* word = strchr(text, ' ');
  while (word != NULL && *word != '\0') {
    if (!isalnum(*word)) {
      ++word;
      continue;
    }
    size_t length = 1;
    while (isalnum(word[length])) ++length;
    has_core |= is_core_register(word, length);
    has_vector |= is_vector_register(word, length);
    word += length;
  }
  if (begins_with_any_of(text, g_is_64_bit ? kLoadsAndStores64 : kLoadsAndStores32)) {
    return has_vector ? kSimdMemory : kMemory;
  }
  if (!has_vector) return kOther;
  return has_core ? kTransfer : kSimd;
}

static void on_translation(qemu_plugin_id_t id, struct qemu_plugin_tb* tb) {
  (void)id;
  struct Block* const block = calloc(1, sizeof *block);
  if (block == NULL) abort();
  block->address = qemu_plugin_tb_vaddr(tb);
  block->instructions = qemu_plugin_tb_n_insns(tb);
  for (size_t i = 0; i < block->instructions; ++i) {
    char* const text = qemu_plugin_insn_disas(qemu_plugin_tb_get_insn(tb, i));
    ++block->of_kind[kind_of(text)];
    free(text);
  }
  block->next = g_blocks;
  g_blocks = block;
  qemu_plugin_register_vcpu_tb_exec_inline(tb, QEMU_PLUGIN_INLINE_ADD_U64, &block->executions, 1);
}

static uint64_t executions_of(const struct Block* block) {
  return block->executions - block->executions_at_start;
}

static uint64_t work_of(const struct Block* block) {
  return executions_of(block) * block->instructions;
}

static int by_falling_work(const void* a, const void* b) {
  const uint64_t work_a = work_of(*(const struct Block* const*)a);
  const uint64_t work_b = work_of(*(const struct Block* const*)b);
  return (work_a < work_b) - (work_a > work_b);
}

static void report(void) {
  uint64_t total = 0;
  uint64_t of_kind[kKinds] = {0};
  size_t count = 0;
  for (const struct Block* block = g_blocks; block != NULL; block = block->next) {
    total += work_of(block);
    for (int k = 0; k < kKinds; ++k) of_kind[k] += executions_of(block) * block->of_kind[k];
    ++count;
  }
  fprintf(g_output, "count %" PRIu64, total);
  for (int k = kSimd; k < kKinds; ++k) fprintf(g_output, " %" PRIu64, of_kind[k]);
  fprintf(g_output, "\n");

  const struct Block** const blocks = malloc(count * sizeof(*blocks));
  if (blocks == NULL) abort();
  count = 0;
  for (const struct Block* block = g_blocks; block != NULL; block = block->next) {
    if (executions_of(block) != 0) blocks[count++] = block;
  }
  qsort(blocks, count, sizeof(*blocks), by_falling_work);
  for (size_t i = 0; i < count && i < kHottest; ++i) {
    fprintf(g_output, "block %" PRIx64 " %" PRIu64 " %" PRIu64 "\n", blocks[i]->address,
            blocks[i]->instructions, executions_of(blocks[i]));
  }
  fflush(g_output);
  free(blocks);
}

static void on_system_call(qemu_plugin_id_t id, unsigned cpu, int64_t number, uint64_t a1,
                           uint64_t a2, uint64_t a3, uint64_t a4, uint64_t a5, uint64_t a6,
                           uint64_t a7, uint64_t a8) {
  (void)id, (void)cpu, (void)a1, (void)a2, (void)a3, (void)a4, (void)a5, (void)a6, (void)a7,
      (void)a8;
  if (number == kMarkEnd) report();
  if (number != kMarkStart) return;
  for (struct Block* block = g_blocks; block != NULL; block = block->next) {
    block->executions_at_start = block->executions;
  }
}

// The one argument is output=<file>.
EXPORT int qemu_plugin_install(qemu_plugin_id_t id, const qemu_info_t* info, int argc,
                               char** argv) {
  static const char kOption[] = "output=";
  if (argc != 1 || strncmp(argv[0], kOption, strlen(kOption)) != 0) return 1;
  g_output = fopen(argv[0] + strlen(kOption), "w");
  if (g_output == NULL) return 1;
  g_is_64_bit = strcmp(info->target_name, "aarch64") == 0;
  qemu_plugin_register_vcpu_tb_trans_cb(id, on_translation);
  qemu_plugin_register_vcpu_syscall_cb(id, on_system_call);
  return 0;
}
