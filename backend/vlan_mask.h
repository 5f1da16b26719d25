// VLAN masks: 512 bytes, 128 words of 32 bits in host order; VLAN v is bit v modulo 32 of word v / 32.
#pragma once

#include <stddef.h>
#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

#define VLAN_MASK_BYTES 512

// Writes the VLANs of a mask as text, such as "1 3 to 5 10", into `size` bytes, terminator included. What
// does not fit is left away by whole numbers or ranges. Returns the length; 0 also for a null mask, which
// gives the empty text.
size_t vlanmask_to_string(const void *mask, char *text, size_t size);

// The same with the longest length that is allowed: `text` has limit + 1 bytes.
size_t vlanmask_to_string_ext(const void *mask, char *text, size_t limit);

// The lowest VLAN of a mask; 0 for an empty or null one.
uint32_t vlanmask_get_first_vlan(const void *mask);

#ifdef __cplusplus
}
#endif
