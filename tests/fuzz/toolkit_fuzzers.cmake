# The datastore and its transactions behind the server's own interface. The toolkit is compiled once more, with
# coverage; the fuzzers of the front ends link it too.
get_filename_component(toolkit_fuzz_root ${CMAKE_CURRENT_LIST_DIR}/../.. ABSOLUTE)
find_package(pugixml REQUIRED)
file(GLOB toolkit_fuzz_sources CONFIGURE_DEPENDS ${toolkit_fuzz_root}/toolkit/src/*.cc)
add_library(toolkit_fuzzed OBJECT ${toolkit_fuzz_sources})
target_compile_options(toolkit_fuzzed PUBLIC -fsanitize=fuzzer-no-link,address,undefined -fno-sanitize-recover=all)
target_link_libraries(toolkit_fuzzed PUBLIC PkgConfig::LIBYANG nlohmann_json::nlohmann_json pugixml::pugixml
                      Threads::Threads ${CMAKE_DL_LIBS} PRIVATE project_warnings)

add_library(toy_fuzzed OBJECT ${toolkit_fuzz_root}/tests/unit/support/host_bench.cc
  ${toolkit_fuzz_root}/tests/unit/toolkit/toy.cc)
target_compile_definitions(toy_fuzzed PUBLIC YANG_DIR="${toolkit_fuzz_root}/yang"
                           TEST_YANG_DIR="${toolkit_fuzz_root}/tests/unit/toolkit/modules")
target_link_libraries(toy_fuzzed PUBLIC toolkit_fuzzed PRIVATE project_warnings)

foreach(target bodies transactions)
  add_executable(fuzz_toolkit_${target} ${CMAKE_CURRENT_LIST_DIR}/toolkit_${target}.cc)
  target_link_libraries(fuzz_toolkit_${target} PRIVATE toy_fuzzed toolkit_fuzzed project_warnings)
  target_link_options(fuzz_toolkit_${target} PRIVATE -fsanitize=fuzzer,address,undefined)
endforeach()
target_sources(fuzz_toolkit_bodies PRIVATE ${toolkit_fuzz_root}/server/nesting.cc ${toolkit_fuzz_root}/server/text.cc)
target_sources(fuzz_toolkit_transactions PRIVATE ${CMAKE_CURRENT_LIST_DIR}/toy_model.cc)
