# Installation: headers, the library, a CMake package and a pkg-config file.
include(CMakePackageConfigHelpers)

install(TARGETS kwcore EXPORT kwcoreTargets
        RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR}
        LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
        ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR})
# The headers of back-ends built without (KWCoreBackends.cmake) stay out.
set(_kwcore_header_excludes)
foreach(_folder IN LISTS KWCORE_BACKEND_HEADERS_OFF)
  list(APPEND _kwcore_header_excludes REGEX "/include/kwcore/${_folder}$" EXCLUDE)
endforeach()
install(DIRECTORY include/kwcore DESTINATION ${CMAKE_INSTALL_INCLUDEDIR} ${_kwcore_header_excludes})
install(FILES ${PROJECT_BINARY_DIR}/include/kwcore/Config.h
        DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/kwcore)

set(KWCORE_CMAKE_DIR ${CMAKE_INSTALL_LIBDIR}/cmake/kwcore)
install(EXPORT kwcoreTargets NAMESPACE kwcore:: DESTINATION ${KWCORE_CMAKE_DIR})
configure_package_config_file(cmake/kwcoreConfig.cmake.in
                              ${CMAKE_CURRENT_BINARY_DIR}/kwcoreConfig.cmake
                              INSTALL_DESTINATION ${KWCORE_CMAKE_DIR})
write_basic_package_version_file(${CMAKE_CURRENT_BINARY_DIR}/kwcoreConfigVersion.cmake
                                 COMPATIBILITY SameMinorVersion)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/kwcoreConfig.cmake
              ${CMAKE_CURRENT_BINARY_DIR}/kwcoreConfigVersion.cmake
        DESTINATION ${KWCORE_CMAKE_DIR})

# The pkg-config file finds the prefix from its own place, so the package
# still works when installed with cmake --install --prefix elsewhere.
file(RELATIVE_PATH KWCORE_PC_TO_PREFIX "/${CMAKE_INSTALL_LIBDIR}/pkgconfig" "/")
configure_file(cmake/kwcore.pc.in ${CMAKE_CURRENT_BINARY_DIR}/kwcore.pc @ONLY)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/kwcore.pc
        DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
