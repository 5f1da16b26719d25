#include "backend/config_files.h"

#include "backend/call.h"
#include "backend/device_files.h"
#include "backend/proto/config_files.pb-c.h"

#include <array>
#include <cerrno>
#include <cstring>

#include <unistd.h>

namespace {

// 0 with the path copied, if there is one that fits.
int takePath(const RcmFileAnswer *answer, char *pathOut)
{
    const char *path = answer == nullptr || answer->path == nullptr ? "" : answer->path;
    const bool isDone = answer != nullptr && (answer->reply == nullptr || answer->reply->ui_err == 0);
    const std::size_t length = std::strlen(path);
    if (!isDone || length == 0 || length >= RCM_PATH_SIZE)
        return 1;
    std::memcpy(pathOut, path, length + 1);
    return 0;
}

int askForFile(const char *call, RcmFileRequest &request, char *pathOut)
{
    if (pathOut == nullptr)
        return 1;
    pathOut[0] = '\0';
    auto *answer = backend::ask<RcmFileAnswer>(call, request, rcm_file_answer__descriptor);
    const int result = takePath(answer, pathOut);
    rcm_file_answer__free_unpacked(answer, nullptr);
    return result;
}

} // namespace

int ui_rcm_get_running_config_file(char *path_out, int first, int second)
{
    RcmFileRequest request = RCM_FILE_REQUEST__INIT;
    request.first = first;
    request.second = second;
    return askForFile("ui_rcm_get_running_config_file", request, path_out);
}

int ui_rcm_get_running_config_file_not_wr_mem(char *path_out)
{
    RcmFileRequest request = RCM_FILE_REQUEST__INIT;
    return askForFile("ui_rcm_get_running_config_file_not_wr_mem", request, path_out);
}

int ui_rcm_delete_file(const char *path)
{
    std::array<char, DEVICE_FILE_PATH_SIZE> real;
    if (backend_file_path(path, real.data(), real.size()) == 0)
        return 1;
    return unlink(real.data()) == 0 || errno == ENOENT ? 0 : 1;
}

int ui_execute_save_to_flash(void)
{
    ValueRequest request = VALUE_REQUEST__INIT;
    return backend::applyAndRead("ui_execute_save_to_flash", &request, nullptr) == 0 ? 0 : 1;
}
