# Drives agentd over both protocols; tools/bench gives it the program.
pkg_check_modules(LIBSSH REQUIRED IMPORTED_TARGET libssh)
add_executable(load_client ${CMAKE_CURRENT_LIST_DIR}/load_client.cc)
target_link_libraries(load_client PRIVATE boost_net PkgConfig::LIBSSH project_warnings)
