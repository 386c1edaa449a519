/// \file
/// The records of a CAN database, as plain structures in singly linked lists.
///
/// Every record is one zero-filled block from `zelk_malloc`, belongs to exactly one list, and is
/// released by it (`zelk_free`, `can_delete_*`). A pointer described as *borrowed* refers to a
/// record that another list owns. An *owned* text is a NUL-terminated block of its own from
/// `zelk_malloc`, null when absent. Lists keep the order in which records were inserted; nothing is
/// sorted. A record is identified by its address, a message also by `id`, named objects by name.
///
/// Texts are bytes in the encoding of the file. Physical quantities are IEEE doubles in the unit
/// that `unit` names: physical = raw * factor + offset.

#ifndef ZELK_RECORDS_H
#define ZELK_RECORDS_H

#include <stdint.h>

typedef struct msgblk msgblk;
typedef struct sigblk sigblk;
typedef struct symblk symblk;
typedef struct rxblk rxblk;
typedef struct val val;
typedef struct env_var_blk env_var_blk;
typedef struct btlblk btlblk;
typedef struct valtable valtable;
typedef struct attr_def attr_def;
typedef struct attr attr;
typedef struct cat cat;
typedef struct catlink catlink;
typedef struct sigtype sigtype;
typedef struct siggroupblk siggroupblk;
typedef struct siggroup_extra siggroup_extra;
typedef struct siglistblk siglistblk;
typedef struct muxor_val_range muxor_val_range;
typedef struct filter_t filter_t;

/// Kind of object that an attribute definition applies to; the value of `attr_def::object_type`.
typedef enum zelk_obj_t {
  ZELK_OBJ_NETWORK = 0,      ///< the database itself
  ZELK_OBJ_NODE = 1,         ///< "BU_"
  ZELK_OBJ_MESSAGE = 2,      ///< "BO_"
  ZELK_OBJ_SIGNAL = 3,       ///< "SG_"
  ZELK_OBJ_ENVVAR = 4,       ///< "EV_"
  ZELK_OBJ_SIGTYPE = 5,      ///< signal type, "BA_DEF_SGTYPE_"
  ZELK_OBJ_REL_SIGNAL = 6,   ///< node to received signal, "BU_SG_REL_"
  ZELK_OBJ_REL_MESSAGE = 7,  ///< node to sent message, "BU_BO_REL_"
  ZELK_OBJ_REL_ENVVAR = 8    ///< node to accessed environment variable, "BU_EV_REL_"
} zelk_obj_t;

/// Type of an attribute's values; the value of `attr_def::value_type`.
enum {
  ZELK_ATTR_INT = 0,
  ZELK_ATTR_FLOAT = 1,
  ZELK_ATTR_STRING = 2,
  ZELK_ATTR_ENUM = 3,
  ZELK_ATTR_HEX = 4
};

/// Bits of `sigblk::flags` and `sigtype::flags`. Motorola order ("@0") has the most significant
/// byte first, Intel order ("@1", the bit clear) the least significant one. Signed ("-") is two's
/// complement. A multiplexor's value selects other signals of its message (`sigblk` only).
enum { ZELK_SIGNAL_MOTOROLA = 1, ZELK_SIGNAL_SIGNED = 2, ZELK_SIGNAL_MULTIPLEXOR = 4 };

/// Values of `sigblk::value_type` and `sigtype::value_type`.
enum {
  ZELK_VALUE_INTEGER = 0,
  ZELK_VALUE_IEEE_SINGLE = 1,  ///< IEEE 754 binary32
  ZELK_VALUE_IEEE_DOUBLE = 2   ///< IEEE 754 binary64
};

/// Values of `env_var_blk::type`.
enum {
  ZELK_ENVVAR_INTEGER = 0,
  ZELK_ENVVAR_FLOAT = 1,
  ZELK_ENVVAR_STRING = 2,
  ZELK_ENVVAR_DATA = 3
};

/// Bit 31 of `msgblk::id`: a 29-bit (extended) CAN identifier; clear: an 11-bit one.
#define ZELK_ID_EXTENDED 0x80000000u

/// Node name that stands for "no node" wherever the format demands one; it never becomes a record.
#define ZELK_NO_NODE "Ostrel__XXX"

/// Longest name, in characters, of the records that keep their name inline (tables, types, groups,
/// categories, attribute definitions), and longest unit.
#define ZELK_INLINE_NAME_MAX 32

/// An attribute's value or default; which member holds it follows from the definition's
/// `value_type`.
typedef union zelk_attr_value_t {
  double number;  ///< INT, FLOAT, HEX; the index of the item for a stored value of type ENUM
  char* text;     ///< STRING, and the default of an ENUM; owned by the record
} zelk_attr_value_t;

/// A message (frame), "BO_".
struct msgblk {
  char* name;    ///< owned
  uint32_t id;   ///< CAN identifier; bit 31 (`ZELK_ID_EXTENDED`) marks the extended format
  uint16_t dlc;  ///< data length in bytes; 1 at creation
  /// Number of `signals` after a read; 1 at creation. Inserting and deleting leave it as it is.
  uint16_t signal_count;
  symblk* transmitter;  ///< borrowed; the sending node of the "BO_" line, null for none
  sigblk* signals;      ///< owned list
  msgblk* next;
  char* comment;           ///< owned
  attr* attrs;             ///< owned list
  cat* category;           ///< borrowed; null for none
  siggroupblk* siggroups;  ///< owned list
  rxblk* tx_nodes;         ///< owned list of all transmitting nodes, "BO_TX_BU_"
};

/// A signal, "SG_".
struct sigblk {
  char* name;  ///< owned
  /// Bit number in the data, byte * 8 + bit, bit 0 least significant. Intel: of the least
  /// significant bit, Motorola: of the most significant bit.
  uint16_t start_bit;
  uint16_t length;  ///< in bits; 1 at creation
  uint16_t flags;   ///< sum of `ZELK_SIGNAL_*`
  double offset;
  double factor;   ///< 1.0 at creation
  char unit[40];   ///< at most 32 characters are stored
  double minimum;  ///< physical
  double maximum;  ///< physical
  sigblk* next;
  uint16_t receiver_count;  ///< number of `receivers` after a read
  rxblk* receivers;         ///< owned list
  char* comment;            ///< owned
  attr* attrs;              ///< owned list
  val* values;              ///< owned list of value descriptions
  struct sigtype* sigtype;  ///< borrowed; null for none
  uint32_t value_type;      ///< `ZELK_VALUE_*`; other values are kept and written as they stand
  msgblk* message;          ///< borrowed; the message that owns this signal
  /// Borrowed; the multiplexor that selects this signal, null for a signal that is always there.
  sigblk* mux_signal;
  /// Owned list of the multiplexor's values for which this signal is there; the first one's `low`
  /// is the value behind "m" on the "SG_" line.
  muxor_val_range* mux_ranges;
};

/// A node (control unit), "BU_".
struct symblk {
  char* name;  ///< owned
  symblk* next;
  char* comment;  ///< owned
  attr* attrs;    ///< owned list
  cat* category;  ///< borrowed; null for none
};

/// A link to a node: receiver of a signal, transmitter of a message, access node of an environment
/// variable, or node of the view filter.
struct rxblk {
  rxblk* next;
  symblk* node;  ///< borrowed; null in a filter stands for the absence of a node
  attr* attrs;   ///< owned list: "BA_REL_" values between the node and the list's owner
};

/// A value description: one raw value and its text.
struct val {
  int32_t value;  ///< raw value, compared as unsigned 32 bits by the lookups
  char* text;     ///< owned
  val* next;
};

/// An environment variable, "EV_".
struct env_var_blk {
  char* name;     ///< owned
  uint32_t type;  ///< `ZELK_ENVVAR_*`
  char unit[36];  ///< at most 32 characters are stored
  double minimum;
  double maximum;
  double initial;
  uint32_t id;
  uint64_t unused;             ///< not used by the library; free for hosts
  uint16_t access_node_count;  ///< number of `access_nodes` after a read
  rxblk* access_nodes;         ///< owned list
  /// Access code, the hexadecimal number behind "DUMMY_NODE_OSTREL" without bit 15.
  uint32_t access_type;
  env_var_blk* next;
  char* comment;       ///< owned
  attr* attrs;         ///< owned list
  cat* category;       ///< borrowed; null for none
  val* values;         ///< owned list of value descriptions
  uint32_t data_size;  ///< in bytes; for type `ZELK_ENVVAR_DATA`
};

/// Bit timing, "BS_".
struct btlblk {
  uint16_t baudrate;
  uint8_t btr1;  ///< first bit-timing register
  uint8_t btr2;  ///< second bit-timing register
  btlblk* next;
};

/// A named table of value descriptions, "VAL_TABLE_".
struct valtable {
  char name[40];
  val* values;  ///< owned list
  valtable* next;
};

/// Definition of an attribute, "BA_DEF_" and "BA_DEF_REL_".
struct attr_def {
  int32_t object_type;  ///< `zelk_obj_t`
  char name[36];
  int32_t value_type;  ///< `ZELK_ATTR_*`
  union {
    double minimum;     ///< INT, FLOAT, HEX
    char* enum_values;  ///< ENUM: owned; all items in order, separated by line feeds
  };
  double maximum;                   ///< INT, FLOAT, HEX
  zelk_attr_value_t default_value;  ///< number for INT, FLOAT, HEX; owned text for STRING and ENUM
  attr_def* next;
};

/// One value of an attribute.
struct attr {
  attr_def* def;            ///< borrowed
  zelk_attr_value_t value;  ///< owned text for STRING, else number (ENUM: index of the item)
  attr* next;
};

/// A category, "CAT_DEF_".
struct cat {
  uint16_t level;
  int16_t number;  ///< the number by which objects refer to the category
  char name[36];
  cat* next;
};

/// A link to a category in the view filter.
struct catlink {
  cat* category;  ///< borrowed; null stands for category 0
  catlink* next;
};

/// A signal type, "SGTYPE_".
struct sigtype {
  char name[34];
  uint16_t length;  ///< in bits
  uint16_t flags;   ///< `ZELK_SIGNAL_MOTOROLA`, `ZELK_SIGNAL_SIGNED`
  double offset;
  double factor;
  char unit[40];  ///< at most 32 characters are stored
  double minimum;
  double maximum;
  double default_value;
  char* comment;              ///< owned
  attr* attrs;                ///< owned list
  struct valtable* valtable;  ///< borrowed; null for none
  sigtype* next;
  uint32_t value_type;  ///< as in `sigblk`
};

/// A group of signals of one message, "SIG_GROUP_".
struct siggroupblk {
  char name[40];
  siglistblk* signals;    ///< owned list
  siggroup_extra* extra;  ///< owned list for hosts; released by `zelk_free` only
  int32_t repetitions;    ///< 1 at creation
  char* comment;          ///< owned
  msgblk* message;        ///< borrowed; the message that owns the group
  siggroupblk* next;
};

/// Entry of `siggroupblk::extra`. The library gives it no meaning.
struct siggroup_extra {
  void* item;  ///< borrowed
  siggroup_extra* next;
};

/// Member of a signal group.
struct siglistblk {
  sigblk* signal;  ///< borrowed
  siglistblk* next;
};

/// A closed range of multiplexor values, "SG_MUL_VAL_".
struct muxor_val_range {
  uint32_t low;
  uint32_t high;
  muxor_val_range* next;
};

/// The view filter, "FILTER"; held by value. Both lists empty: no filter.
struct filter_t {
  catlink* categories;  ///< owned list
  rxblk* nodes;         ///< owned list
  int32_t mode;         ///< filter number
};

#endif
