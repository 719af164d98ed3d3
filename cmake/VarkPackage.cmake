# Debian packages of the install components (make package): pdlibvark0 (the library),
# liborvocommonutils0 (the stand-in, which a device image may replace by the platform's own),
# pdlibvark-dev and, from a native build, pdlibvark-tools.
include_guard(GLOBAL)

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME pdlibvark)
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGE_CONTACT "pdlibvark developers <pdlibvark@zvk.invalid>")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_PACKAGE_DIRECTORY ${PROJECT_BINARY_DIR}/packages)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)

set(CPACK_DEBIAN_RUNTIME_PACKAGE_NAME pdlibvark0)
set(CPACK_DEBIAN_COMMONUTILS_PACKAGE_NAME liborvocommonutils0)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_NAME pdlibvark-dev)
set(CPACK_DEBIAN_TOOLS_PACKAGE_NAME pdlibvark-tools)
set(CPACK_DEBIAN_RUNTIME_PACKAGE_SECTION libs)
set(CPACK_DEBIAN_COMMONUTILS_PACKAGE_SECTION libs)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_TOOLS_PACKAGE_SECTION devel)
set(CPACK_COMPONENT_RUNTIME_DESCRIPTION "phase-detection autofocus and tuning parameter store of the camera stack")
set(CPACK_COMPONENT_COMMONUTILS_DESCRIPTION "stand-in of the camera platform's common library (logging, memory, OS)")
set(CPACK_COMPONENT_DEVELOPMENT_DESCRIPTION "headers, schemas, pkg-config and CMake files of pdlibvark")
set(CPACK_COMPONENT_TOOLS_DESCRIPTION "tonemetry, pdlib-run and modulegen: tools around tuning files and the PD library")

# The packages of this project depend on each other at exactly this version.
set(sameVersion "(= ${PROJECT_VERSION})")
set(CPACK_DEBIAN_RUNTIME_PACKAGE_DEPENDS "liborvocommonutils0 ${sameVersion}")
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_DEPENDS "pdlibvark0 ${sameVersion}")
set(CPACK_DEBIAN_TOOLS_PACKAGE_DEPENDS "pdlibvark0 ${sameVersion}, pdlibvark-dev ${sameVersion}, libjs-chart.js")

if(CMAKE_CROSSCOMPILING)
    # dpkg-shlibdeps cannot read the target's libraries here: the C and C++ runtimes by hand.
    set(CPACK_DEBIAN_PACKAGE_ARCHITECTURE arm64)
    set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS OFF)
    set(targetRuntime "libc6 (>= 2.34), libstdc++6 (>= 12), libgcc-s1 (>= 3.0)")
    set(CPACK_DEBIAN_RUNTIME_PACKAGE_DEPENDS "${CPACK_DEBIAN_RUNTIME_PACKAGE_DEPENDS}, ${targetRuntime}")
    set(CPACK_DEBIAN_COMMONUTILS_PACKAGE_DEPENDS "${targetRuntime}")
    set(CPACK_COMPONENTS_ALL runtime commonutils development)
else()
    set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
    # The project's own libraries are found in the build tree; their packages are named above.
    set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${PROJECT_BINARY_DIR} ${PROJECT_BINARY_DIR}/common)
    set(CPACK_COMPONENTS_ALL runtime commonutils development tools)
endif()

include(CPack)
