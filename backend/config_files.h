// The running configuration as a file, and its way to flash. Paths are those on the device
// (backend/device_files.h).
#pragma once

#ifdef __cplusplus
extern "C" {
#endif

// Room for a path, with its terminating NUL.
#define RCM_PATH_SIZE 64

// Has the running configuration written to a temporary file and gives its path, in RCM_PATH_SIZE bytes of
// `path_out`; both numbers are 0. 0: done; non-zero: the switch cannot be reached or could not write, and the
// path is empty. The file is the caller's to delete.
int ui_rcm_get_running_config_file(char *path_out, int first, int second);

// The same without a memory write.
int ui_rcm_get_running_config_file_not_wr_mem(char *path_out);

// Deletes a file. 0: it is gone or was not there; non-zero: it could not be deleted.
int ui_rcm_delete_file(const char *path);

// Saves the running configuration to flash. 0: done; non-zero: it could not be saved.
int ui_execute_save_to_flash(void);

#ifdef __cplusplus
}
#endif
