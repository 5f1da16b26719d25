// Small services of the platform: its type and modes, shared memory, the configuration lock, logging.
#pragma once

#include <stddef.h>
#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

// Values that the device holds. Each is asked for anew, and 0 if the device cannot be reached.
int get_platform_type(void);       // hardware family: 3 has a rear module, 4 and 5 have forwarding profiles
int ui_fips_get_admin_state(void); // non-zero: FIPS mode is on
int ui_fips_cc_get_admin_state(void);          // non-zero: Common Criteria mode is configured
int ui_fips_cc_get_status(void);               // non-zero: Common Criteria mode is in force
int ui_fips_cc_get_allow_aaa_server_any(void); // non-zero: that mode allows any AAA server
int is_dhcp_client_enabled(void);              // non-zero: the DHCP client is on
int is_dhcps_enabled(void);                    // non-zero: the DHCP server is on

// Opens a shared-memory object, such as "system_host_name". A handle of 1 or above; 0 if there is no such
// object or the device cannot be reached. Handles need no closing.
int shm_object_open(const char *name);

// Reads at most `length` bytes of one field of an object into `buffer`. Returns the number of bytes read: a
// field has a fixed width and is filled up with zeros. 0: bad handle, no such field, no device.
int shm_object_get(int handle, const char *field, uint32_t length, void *buffer);

// Gives back the configuration lock after a request outside of a server's transaction. 0: done, also if it
// was not held; non-zero: the device cannot be reached.
int clam_service_release_config_lock(void);

// Starts the syslog client. 0: done; non-zero: the device cannot be reached.
int syslog_lib_init(void);

// An event as the log manager takes it: 848 bytes, of which three numbers are known here.
struct cu_logging_record {
    uint8_t head[792];
    uint32_t module;
    uint32_t kind;
    uint32_t event;
    uint8_t tail[44];
};

// Writes an event. 0: written; non-zero: null, or the device cannot be reached.
int cu_logging_write(const struct cu_logging_record *record);

// Text of an error code of the command parser. Never null; an unknown code has a text too.
const char *cfg_parser_get_err_str_from_err_code(int code);

#ifdef __cplusplus
}
#endif
