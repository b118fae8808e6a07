# libvelmara: all sources of the rooms. A new unit needs no line here.
find_package(PkgConfig REQUIRED)
find_package(Threads REQUIRED)
find_package(ICU 67 REQUIRED COMPONENTS uc)
find_package(LibXml2 2.9 REQUIRED)
find_package(Boost 1.74 REQUIRED COMPONENTS thread)
pkg_check_modules(RE2 REQUIRED IMPORTED_TARGET re2)
pkg_check_modules(LIBMD REQUIRED IMPORTED_TARGET libmd)
pkg_check_modules(LIBMAGIC REQUIRED IMPORTED_TARGET libmagic)

set(VELMARA_ROOMS runtime header message media charset semantics html hash filetype verdict)
set(velmara_sources "")
foreach(room IN LISTS VELMARA_ROOMS)
    file(GLOB room_sources CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/${room}/*.cpp)
    list(APPEND velmara_sources ${room_sources})
endforeach()

add_library(velmara SHARED ${velmara_sources})
add_library(Velmara::velmara ALIAS velmara)
set_target_properties(velmara PROPERTIES
    VERSION ${PROJECT_VERSION}
    SOVERSION ${PROJECT_VERSION_MAJOR}
    CXX_VISIBILITY_PRESET hidden
    VISIBILITY_INLINES_HIDDEN ON)
target_compile_features(velmara PUBLIC cxx_std_17)
# Calls between our own exported functions are not meant to be replaced from outside: they are inlined.
target_compile_options(velmara PRIVATE -fno-semantic-interposition)
set_source_files_properties(${PROJECT_SOURCE_DIR}/runtime/DataPath.cpp PROPERTIES
    COMPILE_DEFINITIONS VELMARA_DATA_ROOT="${VELMARA_DATA_ROOT}")
set_source_files_properties(${PROJECT_SOURCE_DIR}/runtime/Installation.cpp PROPERTIES
    COMPILE_DEFINITIONS VELMARA_VERSION="${PROJECT_VERSION}")
target_include_directories(velmara
    PUBLIC $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}/include2> $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}>
    PRIVATE ${PROJECT_SOURCE_DIR})
target_link_libraries(velmara
    PUBLIC Threads::Threads
    PRIVATE $<BUILD_INTERFACE:velmara_compile> ICU::uc LibXml2::LibXml2 Boost::thread
            PkgConfig::RE2 PkgConfig::LIBMD PkgConfig::LIBMAGIC)

# Symbols are versioned: abi/velmara.map. Sanitizers and coverage add symbols of their own, which have to be seen.
if(NOT CMAKE_CXX_FLAGS MATCHES "-fsanitize|--coverage|-fprofile")
    target_link_options(velmara PRIVATE -Wl,--version-script=${PROJECT_SOURCE_DIR}/abi/velmara.map)
    set_property(TARGET velmara APPEND PROPERTY LINK_DEPENDS ${PROJECT_SOURCE_DIR}/abi/velmara.map)
endif()
