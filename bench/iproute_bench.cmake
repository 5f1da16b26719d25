find_package(benchmark REQUIRED)
add_executable(iproute_bench ${CMAKE_CURRENT_LIST_DIR}/iproute_bench.cc)
target_link_libraries(iproute_bench PRIVATE switchsim_core toolkit benchmark::benchmark project_warnings)
target_compile_definitions(iproute_bench PRIVATE YANG_DIR="${CMAKE_SOURCE_DIR}/yang"
                           BUNDLE="$<TARGET_FILE:app_yang_agent>")
add_dependencies(iproute_bench app_yang_agent)
