# ry_add_test(NAME <name> SOURCES <files...> LIBS <targets...> [LABELS <labels...>])
# Builds one GoogleTest executable into build/bin and registers its cases with CTest.
function(ry_add_test)
  if(NOT RY_BUILD_TESTS)
    return()
  endif()
  cmake_parse_arguments(ARG "" "NAME;TIMEOUT" "SOURCES;LIBS;LABELS" ${ARGN})
  add_executable(${ARG_NAME} ${ARG_SOURCES})
  target_link_libraries(${ARG_NAME} PRIVATE ${ARG_LIBS} GTest::gtest GTest::gtest_main
                                            GTest::gmock Threads::Threads)
  if(NOT ARG_TIMEOUT)
    set(ARG_TIMEOUT 120)
  endif()
  include(GoogleTest)
  gtest_discover_tests(${ARG_NAME} DISCOVERY_TIMEOUT 60
                       PROPERTIES TIMEOUT ${ARG_TIMEOUT} LABELS "${ARG_LABELS}")
endfunction()
