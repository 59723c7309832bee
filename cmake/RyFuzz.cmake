# Helpers for the libFuzzer targets of the wire parsers (fuzz preset, clang only).
#
# The libraries the rest of the tree links stay as they are; a fuzz target links a second
# copy of the pieces it exercises, compiled with the fuzzer's coverage hooks and the
# address and undefined-behaviour sanitizers. That keeps the sanitizers out of the shared
# libraries, which cannot link them.
set(RY_FUZZ_FLAGS -fsanitize=fuzzer-no-link,address,undefined -fno-sanitize-recover=undefined)

# Seeds, the corpus a long run grows, and how long the short run of `ctest --preset fuzz` and
# the long run (label fuzz-long) take.
set(RY_FUZZ_SHORT_SECONDS 15 CACHE STRING "Length of each wire fuzz target's short run")
set(RY_FUZZ_LONG_SECONDS 600 CACHE STRING "Length of each wire fuzz target's long run")
set(RY_FUZZ_CORPUS_DIR "" CACHE PATH
    "Where the long runs keep the inputs they found (default: corpus/ beside each target's seeds)")

# ry_fuzz_copy(<name> <target> [LINKS <targets...>]): a static library of <target>'s own
# sources, include folders and definitions, instrumented for fuzzing. LINKS replaces the
# libraries <target> links (usually by their fuzz copies).
function(ry_fuzz_copy name target)
  cmake_parse_arguments(ARG "" "" "LINKS" ${ARGN})
  get_target_property(sources ${target} SOURCES)
  get_target_property(dir ${target} SOURCE_DIR)
  list(TRANSFORM sources PREPEND "${dir}/" REGEX "^[^/$]")
  add_library(${name} STATIC ${sources})
  target_include_directories(${name} PUBLIC $<TARGET_PROPERTY:${target},INCLUDE_DIRECTORIES>)
  target_compile_definitions(${name} PUBLIC $<TARGET_PROPERTY:${target},COMPILE_DEFINITIONS>)
  target_compile_options(${name} PRIVATE ${RY_FUZZ_FLAGS})
  target_link_libraries(${name} PUBLIC ${ARG_LINKS})
endfunction()

# ry_fuzz_target(NAME <name> SOURCES <files...> LIBS <targets...> SEEDS <dir> [MAX_LEN <n>])
# Builds one libFuzzer program and registers two runs: a short one (label fuzz) from the
# seeds alone, which adds nothing to the tree, and a long one (label fuzz-long) that keeps
# what it finds in corpus/<name> beside the seeds (or RY_FUZZ_CORPUS_DIR/<name>), so a
# developer can merge it into the seeds. Both stop at the first fault and leave the input
# that caused it in the build folder.
function(ry_fuzz_target)
  cmake_parse_arguments(ARG "" "NAME;SEEDS;MAX_LEN" "SOURCES;LIBS" ${ARGN})
  if(NOT ARG_MAX_LEN)
    set(ARG_MAX_LEN 4096)
  endif()
  add_executable(${ARG_NAME} ${ARG_SOURCES})
  target_link_libraries(${ARG_NAME} PRIVATE ${ARG_LIBS})
  target_compile_options(${ARG_NAME} PRIVATE -fsanitize=fuzzer,address,undefined
                                             -fno-sanitize-recover=undefined)
  target_link_options(${ARG_NAME} PRIVATE -fsanitize=fuzzer,address,undefined)

  set(options -max_len=${ARG_MAX_LEN} -rss_limit_mb=2048 -timeout=10 -print_final_stats=1)
  set(scratch ${CMAKE_CURRENT_BINARY_DIR}/${ARG_NAME}-scratch)
  if(RY_FUZZ_CORPUS_DIR)
    set(corpus ${RY_FUZZ_CORPUS_DIR}/${ARG_NAME})
  else()
    set(corpus ${CMAKE_CURRENT_SOURCE_DIR}/corpus/${ARG_NAME})
  endif()
  file(MAKE_DIRECTORY ${scratch} ${corpus})
  set(artifacts -artifact_prefix=${CMAKE_CURRENT_BINARY_DIR}/${ARG_NAME}-)
  # The short run writes what it finds into a scratch folder of the build, never the tree.
  add_test(NAME ${ARG_NAME}_short
    COMMAND ${ARG_NAME} ${options} ${artifacts} -max_total_time=${RY_FUZZ_SHORT_SECONDS}
            ${scratch} ${corpus} ${ARG_SEEDS})
  set_tests_properties(${ARG_NAME}_short PROPERTIES LABELS fuzz TIMEOUT 180)
  add_test(NAME ${ARG_NAME}_long
    COMMAND ${ARG_NAME} ${options} ${artifacts} -max_total_time=${RY_FUZZ_LONG_SECONDS}
            ${corpus} ${ARG_SEEDS})
  math(EXPR long_timeout "${RY_FUZZ_LONG_SECONDS} + 300")
  set_tests_properties(${ARG_NAME}_long PROPERTIES LABELS fuzz-long TIMEOUT ${long_timeout})
endfunction()
