// A plugin for qemu-user that counts the instructions that a program executes between
// two requests for the system call kMark, which does not exist. With the argument 0 it
// begins to count, with 1 it writes to the standard output what it has counted.
#include <inttypes.h>
#include <stddef.h>
#include <stdio.h>

// qemu's header for plugins is in no package; this is all that is used of it.
typedef uint64_t qemu_plugin_id_t;
struct qemu_plugin_tb;
typedef void (*TranslationCallback)(qemu_plugin_id_t, struct qemu_plugin_tb*);
typedef void (*SystemCallCallback)(qemu_plugin_id_t, unsigned, int64_t, uint64_t,
                                   uint64_t, uint64_t, uint64_t, uint64_t, uint64_t,
                                   uint64_t, uint64_t);
void qemu_plugin_register_vcpu_tb_trans_cb(qemu_plugin_id_t, TranslationCallback);
void qemu_plugin_register_vcpu_syscall_cb(qemu_plugin_id_t, SystemCallCallback);
void qemu_plugin_register_vcpu_tb_exec_inline(struct qemu_plugin_tb*, int operation,
                                              void*, uint64_t);
size_t qemu_plugin_tb_n_insns(const struct qemu_plugin_tb*);

enum { kMark = 0x7E1, kAdd = 0 };

static uint64_t executed;

static void onTranslation(qemu_plugin_id_t id, struct qemu_plugin_tb* block) {
  (void)id;
  qemu_plugin_register_vcpu_tb_exec_inline(block, kAdd, &executed,
                                           qemu_plugin_tb_n_insns(block));
}

static void onSystemCall(qemu_plugin_id_t id, unsigned cpu, int64_t number, uint64_t a,
                         uint64_t b, uint64_t c, uint64_t d, uint64_t e, uint64_t f,
                         uint64_t g, uint64_t h) {
  (void)id, (void)cpu, (void)b, (void)c, (void)d, (void)e, (void)f, (void)g, (void)h;
  if (number != kMark) return;
  if (a != 0) {
    printf("%" PRIu64 "\n", executed);
    fflush(stdout);
  }
  executed = 0;
}

__attribute__((visibility("default"))) int qemu_plugin_version = 1;

__attribute__((visibility("default"))) int qemu_plugin_install(qemu_plugin_id_t id,
                                                               const void* info,
                                                               int count,
                                                               char** arguments) {
  (void)info, (void)count, (void)arguments;
  qemu_plugin_register_vcpu_tb_trans_cb(id, onTranslation);
  qemu_plugin_register_vcpu_syscall_cb(id, onSystemCall);
  return 0;
}
