/* Decodes one signal of a frame: prints the vehicle speed in the bytes of a "VehicleMotion" frame.
 *
 *   read_speed examples/powertrain.dbc 00 10 27 00 00 00 00
 *   VehicleSpeed = 100 km/h
 */

#include <stdio.h>
#include <stdlib.h>

#include "zelk/zelk.h"

enum { kMaxDataBytes = 64 };

/* The list heads that make up a database; all null is an empty one. */
struct database {
  symblk* nodes;
  msgblk* messages;
  env_var_blk* env_vars;
  btlblk* bit_timings;
  attr_def* attr_defs;
  attr* attrs;
  cat* categories;
  filter_t filter;
  char* comment;
  char* version;
  sigtype* sig_types;
  valtable* val_tables;
};

static uint32_t load(struct database* db, const char* path) {
  attr_def* long_names[4] = {NULL, NULL, NULL, NULL};
  return zelk_try_read(path, &db->nodes, &db->messages, &db->env_vars, &db->bit_timings,
                       &db->attr_defs, &db->attrs, &db->categories, &db->filter, &db->comment,
                       &db->version, &db->sig_types, &db->val_tables, long_names);
}

static void release(struct database* db) {
  zelk_free(db->nodes, db->messages, db->env_vars, db->bit_timings, db->attr_defs, db->attrs,
            db->categories, &db->filter, db->comment, db->version, db->sig_types, db->val_tables);
}

/* Prints `signal` as found in `data`; 0 when it is unsigned, Intel and inside the data, else 1. */
static int print_value(const sigblk* signal, const uint8_t* data, unsigned data_bytes) {
  const unsigned first = signal->start_bit;
  const unsigned length = signal->length;
  if ((signal->flags & (ZELK_SIGNAL_MOTOROLA | ZELK_SIGNAL_SIGNED)) != 0 || length > 64 ||
      first + length > 8 * data_bytes) {
    fprintf(stderr, "%s is not an unsigned Intel signal within %u bytes\n", signal->name,
            data_bytes);
    return 1;
  }
  uint64_t raw = 0;
  for (unsigned i = 0; i < length; ++i) {
    const unsigned bit = first + i;
    raw |= (uint64_t)((data[bit / 8] >> (bit % 8)) & 1u) << i;
  }
  printf("%s = %g %s\n", signal->name, (double)raw * signal->factor + signal->offset, signal->unit);
  return 0;
}

int main(int argc, char** argv) {
  if (argc < 3 || argc - 2 > kMaxDataBytes) {
    fprintf(stderr, "usage: read_speed FILE BYTE...   (hexadecimal, at most %d)\n", kMaxDataBytes);
    return 2;
  }
  uint8_t data[kMaxDataBytes] = {0};
  for (int i = 2; i < argc; ++i) data[i - 2] = (uint8_t)strtoul(argv[i], NULL, 16);

  struct database db = {0};
  int status = 1;
  if (load(&db, argv[1]) != ZELK_OK) {
    fputs(zelk_get_error_text(), stderr);
  } else {
    msgblk* message = zelk_get_message_name(db.messages, "VehicleMotion");
    sigblk* signal = zelk_get_signal_of_msg_name(message, "VehicleSpeed");
    if (signal == NULL) {
      fputs("no signal VehicleMotion.VehicleSpeed\n", stderr);
    } else {
      status = print_value(signal, data, (unsigned)(argc - 2));
    }
  }
  release(&db); /* also after an error: what was read before it is there */
  return status;
}
