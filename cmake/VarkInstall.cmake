# Install rules, pkg-config and CMake package files, and the Debian packages (CPack).
# Components: runtime (the library), commonutils (the stand-in of the platform's common
# library, which a device image with the real one leaves out), development (headers, schemas,
# pkg-config and CMake files, development links) and tools (tonemetry, pdlib-run, modulegen).
include_guard(GLOBAL)
include(CMakePackageConfigHelpers)

set(VARK_INCLUDE_DIR ${CMAKE_INSTALL_INCLUDEDIR}/pdlibvark)
set(VARK_COMMON_INCLUDE_DIR ${CMAKE_INSTALL_INCLUDEDIR}/orvocommonutils)
set(VARK_PKGCONFIG_DIR ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
set(VARK_CMAKE_DIR ${CMAKE_INSTALL_LIBDIR}/cmake/pdlibvark)

# The library finds the common library beside it, also in an unpacked package outside the
# loader's paths.
set_target_properties(pdlibvark PROPERTIES INSTALL_RPATH "$ORIGIN")
install(TARGETS pdlibvark LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT runtime
        NAMELINK_COMPONENT development)
install(TARGETS orvocommonutils LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT commonutils
        NAMELINK_COMPONENT development)

# Headers: the phase-detection boundary, the store's public API and the generated set managers
# and records, with the headers these include; none of the engines' internals.
set(storeApi ${PROJECT_SOURCE_DIR}/api/generated/g_parser)
install(FILES
    ${PROJECT_SOURCE_DIR}/api/pdlibvark_export.h
    ${PROJECT_SOURCE_DIR}/system/statsalgo/pdlibvark/orvopdlibinterface.h
    ${PROJECT_SOURCE_DIR}/system/statsalgo/pdlibvark/pdlibtypes.h
    ${PROJECT_SOURCE_DIR}/system/statsalgo/pdlibvark/kelalgointerface.h
    ${storeApi}/base/parameterlogging.h
    ${storeApi}/base/parametermutex.h
    ${storeApi}/base/parametertypes.h
    ${storeApi}/base/parameterutils.h
    ${storeApi}/file/parameterbinaryfile.h
    ${storeApi}/file/parameterfilesymboltable.h
    ${storeApi}/file/parameterfilesymboltableentry.h
    ${storeApi}/manager/parameterctvalue.h
    ${storeApi}/manager/parameterdataapi.h
    ${storeApi}/manager/parametersetmanager.h
    ${storeApi}/modes/parametermodeentry.h
    ${storeApi}/modes/parametermodetable.h
    ${storeApi}/modules/parameterdefaultmodule.h
    ${storeApi}/modules/parametermodule.h
    ${storeApi}/text/parameterparserinfo.h
    DESTINATION ${VARK_INCLUDE_DIR} COMPONENT development)
file(GLOB schemaFolders LIST_DIRECTORIES true ${PROJECT_SOURCE_DIR}/schemas/g_*)
foreach(folder ${schemaFolders})
    get_filename_component(name ${folder} NAME)
    install(DIRECTORY ${PROJECT_BINARY_DIR}/api/generated/${name} DESTINATION ${VARK_INCLUDE_DIR}
            COMPONENT development FILES_MATCHING PATTERN "*.h")
    install(DIRECTORY ${folder} DESTINATION ${CMAKE_INSTALL_DATADIR}/pdlibvark/schemas
            COMPONENT development FILES_MATCHING PATTERN "*.json")
endforeach()
install(DIRECTORY ${PROJECT_SOURCE_DIR}/common/include/ DESTINATION ${VARK_COMMON_INCLUDE_DIR}
        COMPONENT development)

# Tools, finding the library, the schemas and the page's files relative to themselves.
foreach(tool tonemetry pdlib-run modulegen)
    if(TARGET ${tool})
        set_target_properties(${tool} PROPERTIES INSTALL_RPATH "$ORIGIN/../${CMAKE_INSTALL_LIBDIR}")
        install(TARGETS ${tool} RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT tools)
    endif()
endforeach()
if(TARGET tonemetry AND EXISTS ${PROJECT_SOURCE_DIR}/tools/tonemetry/ui)
    install(DIRECTORY ${PROJECT_SOURCE_DIR}/tools/tonemetry/ui/ DESTINATION ${CMAKE_INSTALL_DATADIR}/pdlibvark/ui
            COMPONENT tools)
endif()

# pkg-config and CMake package files, both relative to where they lie.
file(RELATIVE_PATH VARK_PKGCONFIG_TO_PREFIX ${CMAKE_INSTALL_PREFIX}/${VARK_PKGCONFIG_DIR} ${CMAKE_INSTALL_PREFIX})
file(RELATIVE_PATH VARK_CMAKE_TO_PREFIX ${CMAKE_INSTALL_PREFIX}/${VARK_CMAKE_DIR} ${CMAKE_INSTALL_PREFIX})
set(packageFiles ${PROJECT_BINARY_DIR}/package)
foreach(template pdlibvark.pc orvocommonutils.pc pdlibvarkConfig.cmake)
    configure_file(${PROJECT_SOURCE_DIR}/cmake/package/${template}.in ${packageFiles}/${template}.configured @ONLY)
    # The library file names come from the targets themselves.
    file(GENERATE OUTPUT ${packageFiles}/${template} INPUT ${packageFiles}/${template}.configured)
endforeach()
write_basic_package_version_file(${packageFiles}/pdlibvarkConfigVersion.cmake COMPATIBILITY SameMajorVersion)
install(FILES ${packageFiles}/pdlibvark.pc ${packageFiles}/orvocommonutils.pc DESTINATION ${VARK_PKGCONFIG_DIR}
        COMPONENT development)
install(FILES ${packageFiles}/pdlibvarkConfig.cmake ${packageFiles}/pdlibvarkConfigVersion.cmake
        DESTINATION ${VARK_CMAKE_DIR} COMPONENT development)

include(${CMAKE_CURRENT_LIST_DIR}/VarkPackage.cmake)
