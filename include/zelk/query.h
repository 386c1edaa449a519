/// \file
/// Lookups and attribute queries over caller-held lists.
///
/// All walk from the head, in list order: the first match wins. They allocate and change nothing. A
/// returned record or text is owned by its list and valid until it is deleted. Names are compared
/// byte by byte, case included, as whole texts; names that records hold inline (attribute
/// definitions, signal types, value tables) on at most their first 32 characters. A null name or
/// text matches nothing, and a null record has nothing (zelk.h, 3).
///
/// Positions count from 1; 1 and everything below give the first element, past the end gives null.

#ifndef ZELK_QUERY_H
#define ZELK_QUERY_H

#include "zelk/export.h"
#include "zelk/records.h"

ZELK_EXTERN_C_BEGIN

// --- Messages ---

/// First message with this identifier; all 32 bits count, bit 31 (`ZELK_ID_EXTENDED`) included.
/// Null when there is none.
ZELK_API msgblk* zelk_get_message(msgblk* messages, uint32_t id);
/// First message with this name; null when there is none.
ZELK_API msgblk* zelk_get_message_name(msgblk* messages, const char* name);
/// The n-th message; null past the end.
ZELK_API msgblk* zelk_get_message_n(msgblk* messages, int32_t n);

/// Flags of `zelk_get_j1939_message`.
enum {
  ZELK_J1939_PGN_IDS = 1,  ///< messages store parameter group numbers instead of CAN identifiers
  ZELK_J1939_FRAME_FORMAT = 2  ///< the message found must have the frame format "J1939PG"
};

/// The message that describes a J1939 frame (SAE J1939-21 identifiers: priority in bits 26..28,
/// data pages 24..25, PDU format 16..23, PDU specific 8..15, source address 0..7).
///
/// Messages match by parameter group number: the PDU specific byte counts for PDU2 (format 240 and
/// above) only. Address 0xFE as source or destination of a stored message stands for any address.
/// Preferred are, in this order, a message with the frame's own source and destination, then any
/// destination, any source, both.
///
/// Stored CAN identifiers (the normal mode): a message equal in all 32 bits is returned at once.
/// Of several exact matches the one with the lowest priority number is the answer, the first of
/// equals. Of several matches by the same wildcards it is the last one with the frame's own
/// priority, else the one with the lowest priority number.
///
/// Stored group numbers (`ZELK_J1939_PGN_IDS`): identifiers are group numbers with bit 31 set. For
/// the formats 0xEF and 0xFF they carry the PDU format in bits 8..15, the destination or PDU
/// specific byte in bits 0..7 and the source address in bits 21..28; a message with the frame's own
/// addresses is returned at once, and of several wildcards of one kind the last one counts. For all
/// other formats the first message with the group number is the answer, or one equal to `id` when
/// its bit 31 is clear. Priority plays no part.
///
/// `ZELK_J1939_FRAME_FORMAT`: the chosen message must have a value of the attribute "VFrameFormat"
/// that begins with "J1939PG", or `definitions` one whose default does; otherwise the answer is
/// null. Messages returned at once, and those of the group mode for formats other than 0xEF and
/// 0xFF, are exempt.
///
/// @param messages     list to search; null is an empty list
/// @param definitions  attribute definitions, for the default of "VFrameFormat"; null allowed
/// @param id           29-bit identifier of the frame, with or without bit 31
/// @param flags        sum of `ZELK_J1939_*`
/// @return the record, owned by its list and valid until deleted; null when there is none
ZELK_API msgblk* zelk_get_j1939_message(msgblk* messages, attr_def* definitions, uint32_t id,
                                        uint32_t flags);

// --- Signals ---

/// The named signal of the first message with identifier `id`; null when either is missing.
ZELK_API sigblk* zelk_get_signal(msgblk* messages, uint32_t id, const char* name);
/// Always null; kept for hosts that call it. `zelk_get_signal_of_msg_n` is the lookup by position.
ZELK_API sigblk* zelk_get_signal_n(msgblk* messages, uint32_t id, int32_t n);
/// The n-th signal of `message`; null past the end and for a null message.
ZELK_API sigblk* zelk_get_signal_of_msg_n(msgblk* message, int32_t n);
/// The named signal of `message`; null when there is none and for a null message.
ZELK_API sigblk* zelk_get_signal_of_msg_name(msgblk* message, const char* name);
/// Factor of a signal; 0 for a null one.
ZELK_API double zelk_get_sig_factor(const sigblk* signal);
/// Offset of a signal; 0 for a null one.
ZELK_API double zelk_get_sig_offset(const sigblk* signal);

// --- Other objects ---

/// First bit timing with this baud rate.
ZELK_API btlblk* zelk_get_btlblk(btlblk* bit_timings, uint32_t number);
/// First environment variable with this name.
ZELK_API env_var_blk* zelk_get_evblk_name(env_var_blk* env_vars, const char* name);
/// First environment variable whose `id` is this handle.
ZELK_API env_var_blk* zelk_get_evblk_h(env_var_blk* env_vars, uint32_t handle);
/// The n-th environment variable.
ZELK_API env_var_blk* zelk_get_evblk_n(env_var_blk* env_vars, int32_t n);
/// First node with this name.
ZELK_API symblk* zelk_get_symbol_name(symblk* nodes, const char* name);
/// The n-th node.
ZELK_API symblk* zelk_get_symbol_n(symblk* nodes, int32_t n);
/// First category with this number.
ZELK_API cat* zelk_get_category(cat* categories, int32_t number);
/// First signal type with this name, compared on 32 characters.
ZELK_API sigtype* zelk_get_sigtype_name(sigtype* sigtypes, const char* name);
/// First value table with this name, compared on 32 characters.
ZELK_API valtable* zelk_get_valtable_name(valtable* valtables, const char* name);

/// Copies a database's comment.
///
/// @param comment  may be null, which copies an empty text
/// @param buffer   receives at most `size` - 1 characters and a terminating NUL; null copies
/// nothing
/// @param size     capacity of `buffer` in bytes; 0 copies nothing
/// @return length of the text in `buffer`, without the NUL
ZELK_API uint32_t zelk_get_file_comment(const char* comment, char* buffer, uint32_t size);

// --- Attribute definitions ---

/// First definition with this name, of whatever kind.
ZELK_API attr_def* zelk_get_attr_def_name(attr_def* definitions, const char* name);
/// Value type (`ZELK_ATTR_*`) of the first definition with this name; 0xFFFFFFFF when there is
/// none.
ZELK_API uint32_t zelk_get_attrtype(attr_def* definitions, const char* name);
/// 1 when the first definition with this name applies to `object_type`, else 0.
ZELK_API int zelk_is_attribute_defined_for_type(attr_def* definitions, zelk_obj_t object_type,
                                                const char* name);
/// Default of the first definition with this name; all zero when there is none.
ZELK_API zelk_attr_value_t zelk_get_attrdefault(attr_def* definitions, const char* name);

// --- Attribute values ---
//
// "Is defined" means that the object itself has a value; defaults do not count. The value of the
// first match is returned as it is stored (an ENUM value is the index of its item), all zero when
// there is none.

ZELK_API int zelk_is_attribute_defined(attr* values, const char* name);
ZELK_API int zelk_is_db_attribute_defined(attr* values,
                                          const char* name);  ///< `values`: the database's own
ZELK_API int zelk_is_sym_attribute_defined(const symblk* node, const char* name);
ZELK_API int zelk_is_msg_attribute_defined(const msgblk* message, const char* name);
ZELK_API int zelk_is_sig_attribute_defined(const sigblk* signal, const char* name);
ZELK_API int zelk_is_ev_attribute_defined(const env_var_blk* variable, const char* name);

ZELK_API zelk_attr_value_t zelk_get_attrval(attr* values, const char* name);
ZELK_API zelk_attr_value_t zelk_get_db_attrval(attr* values,
                                               const char* name);  ///< `values`: the database's own
ZELK_API zelk_attr_value_t zelk_get_sym_attrval(const symblk* node, const char* name);
ZELK_API zelk_attr_value_t zelk_get_msg_attrval(const msgblk* message, const char* name);
ZELK_API zelk_attr_value_t zelk_get_sig_attrval(const sigblk* signal, const char* name);
ZELK_API zelk_attr_value_t zelk_get_ev_attrval(const env_var_blk* variable, const char* name);

// --- Value descriptions ---
//
// Numbers are compared as unsigned 32-bit values. `..._enumvalue` gives 0 for an unknown text as
// well as for one whose number is 0; ask `..._enumsymbol` with 0 to tell them apart. A number that
// is not described, and every number of a null object, gives null.

ZELK_API const char* zelk_get_sig_enumsymbol(const sigblk* signal, uint32_t number);
ZELK_API uint32_t zelk_get_sig_enumvalue(const sigblk* signal, const char* text);
ZELK_API const char* zelk_get_ev_enumsymbol(const env_var_blk* variable, uint32_t number);
ZELK_API uint32_t zelk_get_ev_enumvalue(const env_var_blk* variable, const char* text);

ZELK_EXTERN_C_END

#endif
