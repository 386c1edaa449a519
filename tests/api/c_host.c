#include <string.h>

#include "zelk/zelk.h"

#define CHECK(condition) \
  if (!(condition)) return __LINE__

struct lists {
  symblk* nodes;
  msgblk* messages;
  env_var_blk* variables;
  btlblk* timings;
  attr_def* definitions;
  attr* values;
  cat* categories;
  filter_t filter;
  char *comment, *version;
  sigtype* types;
  valtable* tables;
};

static uint32_t try_read(struct lists* lists, const char* path) {
  attr_def* slots[4] = {0};
  return zelk_try_read(path, &lists->nodes, &lists->messages, &lists->variables, &lists->timings,
                       &lists->definitions, &lists->values, &lists->categories, &lists->filter,
                       &lists->comment, &lists->version, &lists->types, &lists->tables, slots);
}

static void release(struct lists* lists) {
  zelk_free(lists->nodes, lists->messages, lists->variables, lists->timings, lists->definitions,
            lists->values, lists->categories, &lists->filter, lists->comment, lists->version,
            lists->types, lists->tables);
}

static int query_and_edit(struct lists* lists) {
  msgblk* message = zelk_get_message(lists->messages, 1);
  sigblk* signal = zelk_get_signal(lists->messages, 1, "T");
  CHECK(signal && zelk_get_message_name(lists->messages, "M") == message);
  CHECK(zelk_get_db_attrval(lists->values, "Net").number == 7);

  sigblk* added = zelk_create_sigblk();
  CHECK(added && added->length == 1);
  added->name = strcpy(zelk_malloc(6), "Added");
  added->message = message;
  CHECK(can_insert_sig(message, added, 0) == message && message->signals == added);
  muxor_val_range* range = zelk_add_multiplexor_value_range(added, signal, 3, 5);
  CHECK(range && range->high == 5 && added->mux_signal == signal);
  symblk* node = zelk_create_symbol();
  CHECK(node && can_insert_symbol(&lists->nodes, node, 1) == lists->nodes);
  can_delete_symbol(&lists->nodes, node);
  CHECK(strcmp(zelk_get_symbol_n(lists->nodes, 2)->name, "B") == 0);
  return 0;
}

int c_host_run(const char* path, const char* refused_path);

int c_host_run(const char* path, const char* refused_path) {
  struct lists lists = {0};
  CHECK(try_read(&lists, NULL) == ZELK_OK && lists.version && *lists.version == '\0');
  CHECK(try_read(&lists, path) == ZELK_OK);
  const int failed = query_and_edit(&lists);
  release(&lists);
  if (failed) return failed;

  struct lists other = {0};
  zelk_clear_error_text();
  CHECK(try_read(&other, refused_path) == ZELK_ERR_UNKNOWN_SYMBOL);
  CHECK(strcmp(zelk_get_error_text(),
               "database: unknown symbol newly defined, line 2, msg 100\n") == 0);
  CHECK(try_read(&other, "missing.dbc") == ZELK_ERR_NOT_FOUND);
  release(&other);
  return 0;
}
