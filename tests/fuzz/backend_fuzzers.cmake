# What the device layer does with bytes from outside. The sources are compiled once more, with coverage.
get_filename_component(backend_fuzz_root ${CMAKE_CURRENT_LIST_DIR}/../.. ABSOLUTE)
file(GLOB backend_fuzz_sources CONFIGURE_DEPENDS ${backend_fuzz_root}/backend/*.cc ${backend_fuzz_root}/switchsim/*.cc)
list(FILTER backend_fuzz_sources EXCLUDE REGEX "/main\\.cc$")
set(backend_fuzz_flags -fsanitize=fuzzer-no-link,address,undefined -fno-sanitize-recover=all)
add_library(backend_fuzzed OBJECT ${backend_fuzz_sources})
target_compile_options(backend_fuzzed PUBLIC ${backend_fuzz_flags})
target_link_libraries(backend_fuzzed PUBLIC backend_messages nlohmann_json::nlohmann_json Threads::Threads
                      PRIVATE project_warnings)
foreach(target backend_frames backend_answers backend_requests)
  add_executable(fuzz_${target} ${CMAKE_CURRENT_LIST_DIR}/${target}.cc $<TARGET_OBJECTS:backend_messages>)
  target_link_libraries(fuzz_${target} PRIVATE backend_fuzzed project_warnings)
  target_link_options(fuzz_${target} PRIVATE -fsanitize=fuzzer,address,undefined)
endforeach()
