# `cmake --install` gives the library, the headers, velmara.pc and VelmaraConfig.cmake.
include(CMakePackageConfigHelpers)

install(TARGETS velmara EXPORT VelmaraTargets
    LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR})
install(DIRECTORY ${PROJECT_SOURCE_DIR}/include2/velmara DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}
    FILES_MATCHING PATTERN "*.h")
install(EXPORT VelmaraTargets NAMESPACE Velmara:: DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/Velmara)

configure_package_config_file(${PROJECT_SOURCE_DIR}/cmake/VelmaraConfig.cmake.in
    ${PROJECT_BINARY_DIR}/VelmaraConfig.cmake
    INSTALL_DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/Velmara)
write_basic_package_version_file(${PROJECT_BINARY_DIR}/VelmaraConfigVersion.cmake COMPATIBILITY SameMajorVersion)
install(FILES ${PROJECT_BINARY_DIR}/VelmaraConfig.cmake ${PROJECT_BINARY_DIR}/VelmaraConfigVersion.cmake
    DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/Velmara)

configure_file(${PROJECT_SOURCE_DIR}/cmake/velmara.pc.in ${PROJECT_BINARY_DIR}/velmara.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/velmara.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
