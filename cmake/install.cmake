# The library with its headers, and how other build systems find it.
include(CMakePackageConfigHelpers)
install(TARGETS wlbrcm wlbrcm_headers EXPORT wlbrcmTargets)
install(DIRECTORY include/wlbrcm DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
# Relative, so that a staging folder can be moved.
file(RELATIVE_PATH WLBRCM_PC_TO_PREFIX "/${CMAKE_INSTALL_LIBDIR}/pkgconfig" "/")
configure_file(cmake/wlbrcm.pc.in ${CMAKE_CURRENT_BINARY_DIR}/wlbrcm.pc @ONLY)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/wlbrcm.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
install(EXPORT wlbrcmTargets NAMESPACE wlbrcm:: FILE wlbrcmConfig.cmake
    DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/wlbrcm)
write_basic_package_version_file(${CMAKE_CURRENT_BINARY_DIR}/wlbrcmConfigVersion.cmake COMPATIBILITY SameMajorVersion)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/wlbrcmConfigVersion.cmake
    DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/wlbrcm)
