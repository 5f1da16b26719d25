// Does the running configuration differ from the one on flash? Plain functions on files of the device, also
// for other programs. Paths are those on the device; they are cut after 63 characters. Failures are told by
// the result and a line on the standard output.
#pragma once

// Room for a checksum: 32 hexadecimal digits and a terminating NUL.
#define MD5_TEXT_SIZE 33

extern "C" {

// Names below /grey_slab/: what the switch starts with, and the copy of it that went before.
extern const char g_rcm_startup_config_filename[];
extern const char g_rcm_startup_config_backup[];

// The size of a file in bytes; -1 if it is null or cannot be looked at.
long ui_rcm_get_file_size(const char *path);

// Writes the MD5 checksum of a file into MD5_TEXT_SIZE bytes of `sum_out`. 1: all 32 digits are there; 0:
// not, and sum_out ends where the digits do, or is as before if md5sum could not be started.
int get_config_file_md5_chksum(const char *path, char *sum_out);

// Compares a running configuration with the startup file. Null: with the switch's own, in a temporary file
// that is gone afterwards; a given file stays. 0: the same, or it cannot be got; 1: different; 2: there is no
// startup file.
int ui_is_config_data_changed(const char *running_path);

// The major version that the startup file was written by; 0 if there is no file or it does not tell.
int get_current_startup_version(void);

} // extern "C"
