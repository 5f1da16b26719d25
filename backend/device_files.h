// Where the device's files lie. Code names a file by its path on the device ("/grey_slab/startup-config.txt")
// and maps it the moment before it opens it:
//
//   char real[DEVICE_FILE_PATH_SIZE];
//   if (backend_file_path("/grey_slab/startup-config.txt", real, sizeof(real)) > 0)
//       file = fopen(real, "r");
//
// On a switch the two paths are the same. Elsewhere the host puts a folder of its own in front, so that
// nobody reads or writes what belongs to the machine.
#pragma once

#include <stddef.h>

#ifdef __cplusplus
extern "C" {
#endif

// Room for any path on this machine, with its terminating NUL.
#define DEVICE_FILE_PATH_SIZE 4096

// The folder that stands for the device's "/". Empty, as it is at first, for the root of this machine:
// only a switch leaves it so. The text is copied; null counts as empty.
void backend_set_file_root(const char *root);

// Non-zero: a folder stands for the device's "/".
int backend_has_file_root(void);

// Writes the path of a device's file ("/grey_slab/...") on this machine into `size` bytes of `out`. Returns
// its length; 0, with an empty text, if it does not fit or if `path` is null, not absolute or contains a step
// to a parent folder ("..").
size_t backend_file_path(const char *path, char *out, size_t size);

#ifdef __cplusplus
}
#endif
