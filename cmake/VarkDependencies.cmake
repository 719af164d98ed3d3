# The libraries of Debian that the tools and tests use, found once for the whole tree.
include_guard(GLOBAL)

find_package(Threads REQUIRED)

if(CMAKE_CROSSCOMPILING)
    # nlohmann/json and CLI11 are headers only, with no machine code: the build machine's copies
    # serve the cross build too. Only their own folders go on the include path, never the build
    # machine's /usr/include, whose C headers are not the target's.
    function(vark_host_header_library target folder)
        set(staged ${CMAKE_BINARY_DIR}/host-headers/${folder})
        file(MAKE_DIRECTORY ${staged})
        file(CREATE_LINK /usr/include/${folder} ${staged}/${folder} SYMBOLIC)
        add_library(${target} INTERFACE IMPORTED GLOBAL)
        set_target_properties(${target} PROPERTIES INTERFACE_INCLUDE_DIRECTORIES ${staged})
    endfunction()
    vark_host_header_library(nlohmann_json::nlohmann_json nlohmann)
    vark_host_header_library(CLI11::CLI11 CLI)
else()
    find_package(nlohmann_json REQUIRED)
    find_package(CLI11 REQUIRED)
endif()

# cpp-httplib, for the page of tonemetry ui: Debian builds it as a library, with the
# definitions its header must be read with in its pkg-config file. A cross build finds none for
# the target and builds tonemetry without ui.
if(NOT CMAKE_CROSSCOMPILING)
    find_package(PkgConfig REQUIRED)
    pkg_check_modules(HTTPLIB REQUIRED IMPORTED_TARGET cpp-httplib)
endif()

if(VARK_BUILD_TESTS)
    if(CMAKE_CROSSCOMPILING)
        # GoogleTest from the sources Debian's googletest package installs, built for the target.
        set(INSTALL_GTEST OFF CACHE BOOL "" FORCE)
        add_subdirectory(/usr/src/googletest ${CMAKE_BINARY_DIR}/googletest EXCLUDE_FROM_ALL SYSTEM)
    else()
        find_package(GTest REQUIRED)
    endif()
endif()
