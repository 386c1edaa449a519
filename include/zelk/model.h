/// \file
/// Building and editing records: allocation, creation, insertion, deletion, release, and the length
/// of symbols.

#ifndef ZELK_MODEL_H
#define ZELK_MODEL_H

#include <stddef.h>

#include "zelk/export.h"
#include "zelk/records.h"

ZELK_EXTERN_C_BEGIN

// --- Memory ---

/// A zero-filled block from the C heap; every record and every text of the lists is one.
///
/// @param size  in bytes; 0 gives a block that may only be released
/// @return the block, to be released with `zelk_mfree`; null without memory, which is not reported
ZELK_API void* zelk_malloc(size_t size);

/// Releases a block of `zelk_malloc`; null is allowed.
ZELK_API void zelk_mfree(void* block);

// --- Creation ---
//
// Each returns a new record, zero-filled but for what is said, linked nowhere and owned by the
// caller until it is linked. Without memory they raise (zelk.h, 8). While an error of the calling
// thread's last `zelk_read` stands, the first nine (up to `zelk_create_evblk`, `zelk_create_value`
// included) report nothing and return null instead.

ZELK_API msgblk* zelk_create_msgblk(void);  ///< `dlc` 1, `signal_count` 1
ZELK_API sigblk* zelk_create_sigblk(void);  ///< `length` 1, `factor` 1.0
ZELK_API btlblk* zelk_create_btlblk(void);
ZELK_API symblk* zelk_create_symbol(void);
ZELK_API rxblk* zelk_create_rx(symblk* node);  ///< `node` as given, null allowed
ZELK_API rxblk* zelk_create_tx(symblk* node);  ///< as `zelk_create_rx`
ZELK_API muxor_val_range* zelk_create_muxor_value_range(void);
ZELK_API env_var_blk* zelk_create_evblk(void);  ///< type integer
ZELK_API attr_def* zelk_create_attr_def(void);  ///< kind network, type INT
ZELK_API cat* zelk_create_category(void);
ZELK_API valtable* zelk_create_valtable(void);
ZELK_API sigtype* zelk_create_sigtype(void);
ZELK_API siggroupblk* zelk_create_siggroup(
    msgblk* message);                                      ///< `repetitions` 1, `message` as given
ZELK_API siglistblk* zelk_create_siglist(sigblk* signal);  ///< `signal` as given

// --- Insertion ---
//
// `position` 0 makes the record the first of the list, `position` N links it behind the N-th
// element, or behind the last one when there are fewer. Only `next` is set: `can_insert_sig` leaves
// the signal's `message` to the caller, and `signal_count` as it is.
//
// Each returns the element behind which the record was linked; the argument `head` (or `message`)
// itself when it became the first; null, and links nothing, when one of the two is null.

ZELK_API void* can_insert_symbol(symblk** head, symblk* record, uint32_t position);
ZELK_API void* can_insert_msg(msgblk** head, msgblk* record, uint32_t position);
ZELK_API void* can_insert_evblk(env_var_blk** head, env_var_blk* record, uint32_t position);
ZELK_API void* can_insert_sigtype(sigtype** head, sigtype* record, uint32_t position);
ZELK_API void* can_insert_valtable(valtable** head, valtable* record, uint32_t position);
ZELK_API void* can_insert_sig(msgblk* message, sigblk* signal, uint32_t position);

// --- Deletion ---
//
// Each unlinks one record and releases it, with what is named here and nothing more. Before the
// call the caller releases the rest (names, attribute values, value descriptions, the attribute
// values of links, a message's signal groups and transmitters, a group's `extra`, the default text
// of an ENUM), and clears pointers of other records to the deleted one.
//
// A null record, head, message or signal does nothing. A record that is not in the list is released
// all the same, and the list stays as it is.

ZELK_API void can_delete_symbol(symblk** head, symblk* node);  ///< and its comment
ZELK_API void can_delete_msg(msgblk** head, msgblk* message);  ///< and its comment and signals
ZELK_API void can_delete_evblk(env_var_blk** head, env_var_blk* variable);  ///< and its comment
ZELK_API void can_delete_btl(btlblk** head, btlblk* bit_timing);
ZELK_API void can_delete_attr_def(
    attr_def** head, attr_def* definition);  ///< and its items (ENUM), default (STRING)
ZELK_API void can_delete_category(cat** head, cat* category);
ZELK_API void can_delete_sigtype(sigtype** head, sigtype* type);
ZELK_API void can_delete_valtable(valtable** head, valtable* table);

/// Unlinks `signal` from its message and releases it as `can_deallocate_sig` does.
ZELK_API void can_delete_sig(msgblk* message, sigblk* signal);
/// Unlinks `group` from its message and releases it as `can_deallocate_siggroup` does.
ZELK_API void can_delete_siggroup(msgblk* message, siggroupblk* group);
/// Unlinks and releases one range; when it was the last, `zelk_remove_multiplexor(signal)` follows.
ZELK_API void can_delete_multiplexor_value_range(sigblk* signal, muxor_val_range* range);

/// Releases every signal from `first` to the end of its list, each as `can_deallocate_sig` does;
/// null is allowed.
ZELK_API void can_delete_siglist(sigblk* first);
/// Releases a signal without unlinking it: its receiver links (without their attribute values), its
/// comment, its multiplexing (by `zelk_remove_multiplexor`, when it has ranges) and the record.
/// Null is allowed. The signal's own message must still be alive when it has ranges.
ZELK_API void can_deallocate_sig(sigblk* signal);
/// Releases a group without unlinking it: its member entries, its comment and the record. Null is
/// allowed.
ZELK_API void can_deallocate_siggroup(siggroupblk* group);

// --- Multiplexing ---

/// Makes `signal` one that is always present: drops its multiplexor and all ranges. When no other
/// signal of its message names the old multiplexor, that one loses its multiplexor flag. Null is
/// allowed.
ZELK_API void zelk_remove_multiplexor(sigblk* signal);

/// Adds [`low`, `high`] in front of the ranges for which `signal` is present. A `multiplexor` other
/// than the signal's present one first removes that with its ranges, then becomes the multiplexor
/// and gets the flag. Ranges are neither merged, ordered nor checked. The signal's `message` must
/// be set.
///
/// @return the new range, owned by the signal; null when `signal` is null or it has no multiplexor
///         now. Without memory for the range, as in the creation of records, the multiplexor has
///         changed all the same
ZELK_API muxor_val_range* zelk_add_multiplexor_value_range(sigblk* signal, sigblk* multiplexor,
                                                           uint32_t low, uint32_t high);

// --- Release of a whole database ---

/// Releases every record and text of a database. Heads may be null, and so may `filter`; its lists
/// become null and its mode 0. The caller's own heads dangle afterwards; the caller clears them.
ZELK_API void zelk_free(symblk* nodes, msgblk* messages, env_var_blk* env_vars, btlblk* bit_timings,
                        attr_def* attr_defs, attr* db_attrs, cat* categories, filter_t* filter,
                        char* comment, char* version, sigtype* sigtypes, valtable* valtables);

/// Does nothing; kept for hosts that call it.
ZELK_API void zelk_free_mode_cache(void);

// --- Length of symbols ---

/// Switches the process's symbol length from 128 to 32 characters for good, whatever the argument.
/// No record has room for more than 32 characters, so this changes nothing: inline names and units
/// keep 32 characters before and after, all other names are kept whole. Kept for hosts that call
/// it.
ZELK_API void zelk_set_symbol_length(uint32_t length);

/// 1 when the calling thread has cut a name or unit since its start or its last
/// `zelk_reset_symbols_shortened`, else 0.
ZELK_API int zelk_symbols_shortened(void);
/// Clears the calling thread's mark.
ZELK_API void zelk_reset_symbols_shortened(void);

ZELK_EXTERN_C_END

#ifdef __cplusplus
/// A new value description, created like the records above. Exported with C++ linkage: C hosts take
/// `zelk_malloc(sizeof(val))`.
ZELK_API val* zelk_create_value();
#endif

#endif
