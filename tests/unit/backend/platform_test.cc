#include "backend/platform.h"

#include "backend/device_files.h"
#include "backend/task.h"
#include "scripted_transport.h"

#include <gtest/gtest.h>

#include <array>
#include <string>

namespace {

TEST(PlatformWithoutDevice, ValuesAreZeroAndServicesFail)
{
    backend::setTransport(nullptr);
    for (const auto getter :
         {get_platform_type, ui_fips_get_admin_state, ui_fips_cc_get_admin_state, ui_fips_cc_get_status,
          ui_fips_cc_get_allow_aaa_server_any, is_dhcp_client_enabled, is_dhcps_enabled})
        EXPECT_EQ(getter(), 0);
    std::array<char, 4> buffer = {'x', 'x', 'x', 'x'};
    EXPECT_LT(shm_object_open("system_host_name"), 1);
    EXPECT_EQ(shm_object_get(1, "hostname", 4, buffer.data()), 0);
    EXPECT_EQ(buffer[0], 'x');
    EXPECT_NE(clam_service_release_config_lock(), 0);
    EXPECT_NE(syslog_lib_init(), 0);
    const cu_logging_record record{};
    EXPECT_NE(cu_logging_write(&record), 0);
    itc_context context{};
    itc_get_current_context(&context);
    EXPECT_NE(itc_send_request(&context, 118, 0x8D0001, "x", 1, 1, 0, 0), 0);
}

TEST(PlatformBadArguments, AreRefusedAndNoMoreIsWrittenThanWasAsked)
{
    const auto transport = std::make_shared<backend::ScriptedTransport>();
    const backend::UseTransport use(transport);
    const itc_context context{};
    EXPECT_NE(cu_logging_write(nullptr), 0);
    EXPECT_EQ(shm_object_get(1, "hostname", 4, nullptr), 0);
    EXPECT_NE(itc_send_request(&context, 118, 1, nullptr, 1, 1, 0, 0), 0);
    EXPECT_NE(itc_send_request(&context, 118, 1, "x", SIZE_MAX, 1, 0, 0), 0);
    EXPECT_TRUE(transport->requests.empty());
    transport->answer = backend::envelopeAround({0x0a, 3, 'a', 'b', 'c'}); // more than was asked for
    std::array<char, 3> buffer = {'x', 'x', 'x'};
    EXPECT_EQ(shm_object_get(1, "hostname", 2, buffer.data()), 2);
    EXPECT_EQ(buffer, (std::array<char, 3>{'a', 'b', 'x'}));
}

TEST(FileRoot, StandsBeforeEveryPathOfTheDevice)
{
    std::array<char, 40> out{};
    backend_set_file_root("/tmp/device");
    EXPECT_TRUE(backend_has_file_root());
    EXPECT_EQ(backend_file_path("/grey_slab/a..b", out.data(), out.size()), 26U);
    EXPECT_STREQ(out.data(), "/tmp/device/grey_slab/a..b");
    for (const char *bad : {"", "grey_slab", "/../etc", "/a/../../etc", "/a/.."}) {
        EXPECT_EQ(backend_file_path(bad, out.data(), out.size()), 0U) << bad;
        EXPECT_STREQ(out.data(), "") << bad;
    }
    EXPECT_EQ(backend_file_path(nullptr, out.data(), out.size()), 0U);
    EXPECT_EQ(backend_file_path("/a", out.data(), 13), 0U) << "no room for the terminator";
    EXPECT_EQ(backend_file_path("/a", out.data(), 14), 13U);
    backend_set_file_root(nullptr);
    EXPECT_EQ(backend_file_path("/a", out.data(), out.size()), 2U);
    EXPECT_STREQ(out.data(), "/a");
    EXPECT_FALSE(backend_has_file_root());
}

} // namespace
