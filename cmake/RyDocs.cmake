# The `docs` target: the public headers rendered by Doxygen into build/docs/html. Every
# Doxygen warning fails it, an undocumented public member included; the `docs` test builds
# it so the suite keeps the headers documented. Without doxygen neither exists.
find_package(Doxygen QUIET)
if(NOT DOXYGEN_FOUND)
  message(STATUS "doxygen not found: no docs target")
  return()
endif()

set(RY_DOCS_OUTPUT ${CMAKE_BINARY_DIR}/docs)
configure_file(${PROJECT_SOURCE_DIR}/docs/Doxyfile.in ${RY_DOCS_OUTPUT}/Doxyfile @ONLY)
file(GLOB ry_public_headers CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/include/rysdk/*.h)
add_custom_command(
  OUTPUT ${RY_DOCS_OUTPUT}/html/index.html
  COMMAND ${CMAKE_COMMAND} -E remove_directory ${RY_DOCS_OUTPUT}/html
  COMMAND Doxygen::doxygen ${RY_DOCS_OUTPUT}/Doxyfile
  DEPENDS ${ry_public_headers} ${PROJECT_SOURCE_DIR}/docs/Doxyfile.in
          ${PROJECT_SOURCE_DIR}/docs/api-mainpage.md
  WORKING_DIRECTORY ${PROJECT_SOURCE_DIR}
  COMMENT "Rendering the public headers with Doxygen"
  VERBATIM)
add_custom_target(docs DEPENDS ${RY_DOCS_OUTPUT}/html/index.html)

if(RY_BUILD_TESTS)
  add_test(NAME docs.public_headers_documented
           COMMAND ${CMAKE_COMMAND} --build ${CMAKE_BINARY_DIR} --target docs)
  set_tests_properties(docs.public_headers_documented PROPERTIES TIMEOUT 120 LABELS docs)
endif()
