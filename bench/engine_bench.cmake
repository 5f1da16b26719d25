find_package(benchmark REQUIRED)
add_executable(engine_bench ${CMAKE_CURRENT_LIST_DIR}/engine_bench.cc)
target_link_libraries(engine_bench PRIVATE unit_support benchmark::benchmark project_warnings)
