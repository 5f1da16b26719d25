# What the DHCP server left in its file. The sources are compiled once more, with coverage; the room of the client
# libraries is that of backend_fuzzers.cmake, which comes first.
add_executable(fuzz_dhcp_leases ${CMAKE_CURRENT_LIST_DIR}/dhcp_leases.cc
               ${CMAKE_SOURCE_DIR}/restconf/app_yang_agent/dhcp/lease_file.cc $<TARGET_OBJECTS:backend_messages>)
target_include_directories(fuzz_dhcp_leases PRIVATE ${CMAKE_SOURCE_DIR}/restconf/app_yang_agent)
target_link_libraries(fuzz_dhcp_leases PRIVATE backend_fuzzed project_warnings)
target_link_options(fuzz_dhcp_leases PRIVATE -fsanitize=fuzzer,address,undefined)
