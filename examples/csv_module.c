/* The smallest converter module: a list of signals as comma-separated values, one line for each,
 *
 *     message,identifier,length,signal,start bit,length,factor,offset,unit
 *
 * with numbers as C writes them in the locale of the process. Signals are unsigned integers in
 * Intel byte order without multiplexing; no text has a comma. Build it as a shared library that is
 * linked with zelkmsnx, and load it with
 *
 *     zelk convert --from ./csv_module.so signals.csv signals.dbc
 */

#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include "zelk/module.h"

enum { kFields = 9, kLineSize = 1000 };

/* A copy in the library's heap; null without memory. */
static char* copy(const char* text) {
  char* block = zelk_malloc(strlen(text) + 1);
  return block ? strcpy(block, text) : NULL;
}

/* The message of the last line, or a new one behind it, linked at `tail`. */
static msgblk* message_of(char** fields, msgblk** messages, msgblk* last) {
  const uint32_t id = (uint32_t)strtoul(fields[1], NULL, 0);
  if (last && last->id == id) return last;
  msgblk* message = zelk_malloc(sizeof *message);
  if (!message) return NULL;
  *(last ? &last->next : messages) = message; /* from here on the library releases it */
  message->id = id;
  message->dlc = (uint16_t)atoi(fields[2]);
  message->name = copy(fields[0]);
  return message->name ? message : NULL;
}

static int add_signal(char** fields, msgblk* message, sigblk** tail) {
  sigblk* signal = zelk_malloc(sizeof *signal);
  if (!signal) return 0;
  *tail = signal;
  ++message->signal_count;
  signal->message = message;
  signal->start_bit = (uint16_t)atoi(fields[4]);
  signal->length = (uint16_t)atoi(fields[5]);
  signal->factor = atof(fields[6]);
  signal->offset = atof(fields[7]);
  strncpy(signal->unit, fields[8], ZELK_INLINE_NAME_MAX);
  signal->name = copy(fields[3]);
  return signal->name != NULL;
}

/* Cuts a line at its commas, in place. */
static int split(char* line, char** fields) {
  int count = 0;
  line[strcspn(line, "\r\n")] = '\0';
  for (char* field = line; field; ++count) {
    char* comma = strchr(field, ',');
    if (count == kFields) return 0;
    fields[count] = field;
    if (comma) *comma = '\0';
    field = comma ? comma + 1 : NULL;
  }
  return count == kFields;
}

static int read_lines(FILE* file, msgblk** messages) {
  char line[kLineSize];
  char* fields[kFields];
  msgblk* message = NULL;
  sigblk** tail = NULL;
  for (int number = 1; fgets(line, sizeof line, file); ++number) {
    msgblk* const last = message;
    if (!split(line, fields)) {
      zelk_note(ZELK_ERR_CONVERTED_FORMAT, number, "9 fields are expected");
      return 0;
    }
    message = message_of(fields, messages, last);
    if (message != last) tail = message ? &message->signals : NULL;
    if (!message || !add_signal(fields, message, tail)) {
      zelk_note(ZELK_ERR_MEMORY, number, NULL);
      return 0;
    }
    tail = &(*tail)->next;
  }
  return 1;
}

ZELK_MODULE_EXPORT int zelk_import(const char* file, msgblk** messages, symblk** nodes,
                                   env_var_blk** env_vars, attr_def** attr_defs,
                                   attr** attr_values) {
  (void)nodes, (void)env_vars, (void)attr_defs, (void)attr_values;
  FILE* stream = fopen(file, "r");
  if (!stream) {
    zelk_note(ZELK_ERR_CONVERTED_FORMAT, 0, "the file cannot be opened");
    return 0;
  }
  const int is_read = read_lines(stream, messages);
  fclose(stream);
  return is_read;
}

static int is_field(const char* text) { return text && !strpbrk(text, ",\r\n"); }

/* Whether a line can hold the signal. */
static int is_plain(const msgblk* message, const sigblk* signal) {
  return signal->flags == 0 && !signal->mux_signal && signal->value_type == ZELK_VALUE_INTEGER &&
         is_field(message->name) && is_field(signal->name) && is_field(signal->unit);
}

static int write_lines(FILE* stream, const msgblk* message) {
  int left_out = 0;
  for (; message; message = message->next) {
    for (const sigblk* signal = message->signals; signal; signal = signal->next) {
      if (!is_plain(message, signal)) {
        ++left_out;
        continue;
      }
      fprintf(stream, "%s,0x%lX,%u,%s,%u,%u,%.17g,%.17g,%s\n", message->name,
              (unsigned long)message->id, message->dlc, signal->name, signal->start_bit,
              signal->length, signal->factor, signal->offset, signal->unit);
    }
  }
  if (left_out > 0) zelk_note(ZELK_ERR_FORMAT, 0, "signals other than plain ones are left out");
  return !ferror(stream);
}

ZELK_MODULE_EXPORT int zelk_export(const char* file, const msgblk* messages, const symblk* nodes,
                                   const env_var_blk* env_vars, const attr_def* attr_defs,
                                   const attr* attr_values) {
  (void)nodes, (void)env_vars, (void)attr_defs, (void)attr_values;
  FILE* stream = fopen(file, "w");
  int is_written = stream && write_lines(stream, messages);
  if (stream && fclose(stream) != 0) is_written = 0;
  if (is_written) return 1;
  zelk_note(ZELK_ERR_CONVERT, 0, "the file cannot be written");
  if (stream) remove(file);
  return 0;
}
