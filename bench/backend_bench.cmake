find_package(benchmark REQUIRED)
add_executable(backend_bench ${CMAKE_CURRENT_LIST_DIR}/backend_bench.cc)
target_link_libraries(backend_bench PRIVATE switchsim_core benchmark::benchmark project_warnings)
