# What a RESTCONF client can write into a request, behind HTTP.
get_filename_component(restconf_fuzz_root ${CMAKE_CURRENT_LIST_DIR}/../.. ABSOLUTE)
find_path(BEAST_INCLUDE_DIR boost/beast/src.hpp REQUIRED)
set(restconf_fuzz_server audit files nesting text worker restconf/call restconf/conditions restconf/data
  restconf/discovery restconf/errors restconf/fields restconf/handler restconf/negotiation restconf/query
  restconf/routes restconf/uri)
list(TRANSFORM restconf_fuzz_server PREPEND ${restconf_fuzz_root}/server/)
list(TRANSFORM restconf_fuzz_server APPEND .cc)
add_executable(fuzz_restconf_requests ${CMAKE_CURRENT_LIST_DIR}/restconf_requests.cc ${restconf_fuzz_server}
  ${restconf_fuzz_root}/server/boost_sources.cc)
target_include_directories(fuzz_restconf_requests SYSTEM PRIVATE ${BEAST_INCLUDE_DIR})
target_compile_definitions(fuzz_restconf_requests PRIVATE BOOST_ASIO_SEPARATE_COMPILATION
                           BOOST_BEAST_SEPARATE_COMPILATION BOOST_ASIO_NO_DEPRECATED)
target_link_libraries(fuzz_restconf_requests PRIVATE toy_fuzzed toolkit_fuzzed OpenSSL::SSL
                      OpenSSL::Crypto project_warnings)
target_link_options(fuzz_restconf_requests PRIVATE -fsanitize=fuzzer,address,undefined)
