# Install rules: the SDK library, its public headers, a CMake package (find_package(RyGigE))
# and a pkg-config file. The transport layer library is installed beside it when built.
include(CMakePackageConfigHelpers)

if(NOT TARGET RyGigE)
  return()
endif()

install(TARGETS RyGigE EXPORT RyGigETargets
        LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
        RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
install(DIRECTORY ${PROJECT_SOURCE_DIR}/include/rysdk DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
if(TARGET RyGenTL)
  install(TARGETS RyGenTL LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR})
endif()

set(ry_cmake_dir ${CMAKE_INSTALL_LIBDIR}/cmake/RyGigE)
install(EXPORT RyGigETargets NAMESPACE RyGigE:: DESTINATION ${ry_cmake_dir})
configure_package_config_file(${PROJECT_SOURCE_DIR}/cmake/RyGigEConfig.cmake.in
    ${CMAKE_BINARY_DIR}/RyGigEConfig.cmake INSTALL_DESTINATION ${ry_cmake_dir})
write_basic_package_version_file(${CMAKE_BINARY_DIR}/RyGigEConfigVersion.cmake
    COMPATIBILITY SameMajorVersion)
install(FILES ${CMAKE_BINARY_DIR}/RyGigEConfig.cmake ${CMAKE_BINARY_DIR}/RyGigEConfigVersion.cmake
        DESTINATION ${ry_cmake_dir})

# The .pc file finds its prefix from its own place, so the installed tree can be moved.
file(RELATIVE_PATH RY_PC_PREFIX_FROM_PCDIR "/root/${CMAKE_INSTALL_LIBDIR}/pkgconfig" "/root")
configure_file(${PROJECT_SOURCE_DIR}/cmake/RyGigE.pc.in ${CMAKE_BINARY_DIR}/RyGigE.pc @ONLY)
install(FILES ${CMAKE_BINARY_DIR}/RyGigE.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
