# What a NETCONF client can send, down to the datastores. The sources are compiled once more, with coverage.
get_filename_component(netconf_fuzz_root ${CMAKE_CURRENT_LIST_DIR}/../.. ABSOLUTE)
set(netconf_fuzz_server dispatcher framing message monitoring operations parameters rpc_error session sessions xml)
list(TRANSFORM netconf_fuzz_server PREPEND ${netconf_fuzz_root}/server/netconf/)
list(TRANSFORM netconf_fuzz_server APPEND .cc)
add_library(netconf_fuzzed OBJECT ${netconf_fuzz_server}
  ${netconf_fuzz_root}/server/audit.cc ${netconf_fuzz_root}/server/files.cc ${netconf_fuzz_root}/server/nesting.cc
  ${netconf_fuzz_root}/server/text.cc ${netconf_fuzz_root}/server/worker.cc)
target_link_libraries(netconf_fuzzed PUBLIC toolkit_fuzzed PRIVATE project_warnings)

add_executable(fuzz_netconf_framing ${CMAKE_CURRENT_LIST_DIR}/netconf_framing.cc)
add_executable(fuzz_netconf_dispatcher ${CMAKE_CURRENT_LIST_DIR}/netconf_dispatcher.cc
  ${netconf_fuzz_root}/tests/unit/netconf/stores_bench.cc)
target_link_libraries(fuzz_netconf_dispatcher PRIVATE toy_fuzzed)
foreach(target framing dispatcher)
  target_link_libraries(fuzz_netconf_${target} PRIVATE netconf_fuzzed toolkit_fuzzed project_warnings)
  target_link_options(fuzz_netconf_${target} PRIVATE -fsanitize=fuzzer,address,undefined)
endforeach()
