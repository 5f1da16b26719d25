// Texts of addresses, and small helpers around text.
//
// IPv4 addresses and masks are 32-bit numbers in host order, 10.0.0.1 being 0x0a000001. An argument of null
// counts as a bad text.
#pragma once

#include <stddef.h>
#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

// Reads a dotted IPv4 address of four decimal numbers, nothing before or behind it. Non-zero: done; 0: a bad
// text, and *address is as before.
int ip_string_to_address(const char *text, uint32_t *address);

// Reads an IPv6 address into 16 bytes in network order; no prefix length and no zone. Non-zero: done; 0: a
// bad text, and the bytes are as before.
int ip6_string_to_address(const char *text, uint8_t *address);

// Writes an address as a dotted text into `text`, which has IP_ADDRESS_TEXT_BYTES, and returns it.
#define IP_ADDRESS_TEXT_BYTES 16
char *ip_address_to_string(uint32_t address, char *text);

// The number of a dotted text. A text of fewer than four numbers fills the high octets. 0 for a bad text.
uint32_t ip_string2int(const char *text);

// The mask of a prefix length: 0 gives 0, 32 and more give all ones.
uint32_t prefix2mask(uint32_t prefix_length);

// Splits "A.B.C.D/LENGTH" into address, host part included, and mask. Non-zero: done; 0: a bad text, and both
// are as before.
int ip_prefix_to_addr_mask(const char *prefix, uint32_t *address, uint32_t *mask);

// One octet of an address: 4 is the highest, 1 the lowest; 0 for any other number.
uint8_t get_common_ip_addr_val(uint32_t address, int octet);

// Reads a MAC address of the form "aabb.ccdd.eeff", "aa:bb:cc:dd:ee:ff" or "aa-bb-cc-dd-ee-ff" into six
// bytes. Non-zero: done; 0: a bad text, and the bytes are 0.
int string_to_mac_addr_form(const char *text, uint8_t *mac);

// Cuts blanks off the end, in place, and returns the first character that is none. Null for null.
char *trim_whitespace(char *text);

// The position of a character in a text, from 0; -1 if it is not there or the text is null.
int cli_find_char(const char *text, char character);

#if defined(__GNUC__)
#define BACKEND_PRINTF(at, first) __attribute__((format(printf, at, first)))
#else
#define BACKEND_PRINTF(at, first)
#endif

// The platform's own text output: standard error. Return the number of characters, negative on failure.
int kprintf(const char *format, ...) BACKEND_PRINTF(1, 2);
int uprintf(const char *format, ...) BACKEND_PRINTF(1, 2);

// Format into a buffer, always terminated. ksprintf takes the buffer to have KSPRINTF_LIMIT bytes if the text
// needs them, and never writes more. Return the length that the whole text has, negative on failure.
#define KSPRINTF_LIMIT 1024
int ksprintf(char *buffer, const char *format, ...) BACKEND_PRINTF(2, 3);
int ksnprintf(char *buffer, size_t size, const char *format, ...) BACKEND_PRINTF(3, 4);

#ifdef __cplusplus
}
#endif
