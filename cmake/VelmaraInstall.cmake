# `cmake --install` gives the library, the headers, velmara.pc and VelmaraConfig.cmake. Each component is a package
# of its own: VelmaraPackages.cmake.
include(CMakePackageConfigHelpers)

install(TARGETS velmara EXPORT VelmaraTargets
    LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT library NAMELINK_COMPONENT development)
install(DIRECTORY ${PROJECT_SOURCE_DIR}/include2/velmara DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}
    COMPONENT development FILES_MATCHING PATTERN "*.h")
install(EXPORT VelmaraTargets NAMESPACE Velmara:: DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/Velmara
    COMPONENT development)

configure_package_config_file(${PROJECT_SOURCE_DIR}/cmake/VelmaraConfig.cmake.in
    ${PROJECT_BINARY_DIR}/VelmaraConfig.cmake
    INSTALL_DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/Velmara)
write_basic_package_version_file(${PROJECT_BINARY_DIR}/VelmaraConfigVersion.cmake COMPATIBILITY SameMajorVersion)
install(FILES ${PROJECT_BINARY_DIR}/VelmaraConfig.cmake ${PROJECT_BINARY_DIR}/VelmaraConfigVersion.cmake
    DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/Velmara COMPONENT development)

configure_file(${PROJECT_SOURCE_DIR}/cmake/velmara.pc.in ${PROJECT_BINARY_DIR}/velmara.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/velmara.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig COMPONENT development)

file(GLOB velmara_documents ${PROJECT_SOURCE_DIR}/docs/*.md ${PROJECT_SOURCE_DIR}/docs/*.json)
install(FILES ${velmara_documents} ${PROJECT_SOURCE_DIR}/CHANGELOG.md ${PROJECT_SOURCE_DIR}/ARCHITECTURE.md ${PROJECT_SOURCE_DIR}/SECURITY.md
    DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/libvelmara-dev COMPONENT development)
file(GLOB velmara_examples ${PROJECT_SOURCE_DIR}/examples/*.cpp)
install(FILES ${velmara_examples}
    DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/libvelmara-dev/examples COMPONENT development)
