# ry_add_test(NAME <name> SOURCES <files...> LIBS <targets...> [LABELS <labels...>])
# Builds one GoogleTest executable into build/bin and registers its cases with CTest.
option(RY_TESTS_IN_PRIVATE_NETWORK
       "Run each test case in its own network namespace (needs root or CAP_SYS_ADMIN)" ON)

function(ry_add_test)
  if(NOT RY_BUILD_TESTS)
    return()
  endif()
  cmake_parse_arguments(ARG "" "NAME;TIMEOUT" "SOURCES;LIBS;LABELS" ${ARGN})
  add_executable(${ARG_NAME} ${ARG_SOURCES})
  target_link_libraries(${ARG_NAME} PRIVATE ${ARG_LIBS} GTest::gtest GTest::gtest_main
                                            GTest::gmock Threads::Threads)
  # Every test case runs in a network namespace of its own: tests that discover or serve
  # on the GigE Vision ports can then run side by side without seeing each other, and none
  # of them can send a packet beyond loopback.
  if(RY_TESTS_IN_PRIVATE_NETWORK)
    set_target_properties(${ARG_NAME} PROPERTIES
        CROSSCOMPILING_EMULATOR "${PROJECT_SOURCE_DIR}/scripts/in-private-net.sh")
  endif()
  if(NOT ARG_TIMEOUT)
    set(ARG_TIMEOUT 120)
  endif()
  include(GoogleTest)
  gtest_discover_tests(${ARG_NAME} DISCOVERY_TIMEOUT 60 PROPERTIES TIMEOUT ${ARG_TIMEOUT})
  # Labels are set by a script of our own that runs after the discovered cases are
  # defined: passed through the discovery's PROPERTIES, a list of several labels loses its
  # separators on the way and only the first label survives.
  if(ARG_LABELS)
    set(label_script "${CMAKE_CURRENT_BINARY_DIR}/${ARG_NAME}_labels.cmake")
    file(WRITE "${label_script}"
         "if(${ARG_NAME}_TESTS)\n"
         "  set_tests_properties(\${${ARG_NAME}_TESTS} PROPERTIES LABELS \"${ARG_LABELS}\")\n"
         "endif()\n")
    set_property(DIRECTORY APPEND PROPERTY TEST_INCLUDE_FILES "${label_script}")
  endif()
endfunction()

# Real camera descriptions the node map is tested and measured on. They are the team's
# shared data, kept outside the tree: the corpus tests skip and the node map benchmark is
# not built when none of these places has them.
set(RY_GENICAM_CORPUS_DIR "" CACHE PATH "Folder of real GenICam XML files")
if(NOT RY_GENICAM_CORPUS_DIR)
  foreach(candidate "$ENV{RY_GENICAM_CORPUS_DIR}" "${PROJECT_SOURCE_DIR}/../shared/genicam-xml"
                    "/work/shared/genicam-xml")
    if(candidate AND EXISTS "${candidate}/Basler-acA640-300gm.xml")
      set(RY_GENICAM_CORPUS_DIR "${candidate}" CACHE PATH "Folder of real GenICam XML files" FORCE)
      break()
    endif()
  endforeach()
endif()
