# Generated parameter modules: modulegen turns a folder of schemas into module and set manager
# sources, which are built as an object library.
include_guard(GLOBAL)

set(MODULEGEN_EXECUTABLE "" CACHE FILEPATH
    "A host-built modulegen to run (for cross builds); empty builds it with this project")

set(VARK_MODULEGEN_DEPENDENCY "")
if(NOT MODULEGEN_EXECUTABLE AND CMAKE_CROSSCOMPILING)
    # A cross-built modulegen cannot run here: build one for the build machine first, from this
    # same source tree (the library's own build needs nothing else of it).
    include(ExternalProject)
    set(hostBuild ${PROJECT_BINARY_DIR}/host-modulegen)
    set(MODULEGEN_EXECUTABLE ${hostBuild}/tools/modulegen/modulegen)
    ExternalProject_Add(host_modulegen
        SOURCE_DIR ${PROJECT_SOURCE_DIR}
        BINARY_DIR ${hostBuild}
        CMAKE_ARGS -DCMAKE_BUILD_TYPE=Release -DVARK_BUILD_TESTS=OFF -DVARK_BUILD_TOOLS=OFF
                   -DCMAKE_CXX_COMPILER_LAUNCHER=${CMAKE_CXX_COMPILER_LAUNCHER} -Wno-dev
        BUILD_COMMAND ${CMAKE_COMMAND} --build ${hostBuild} --target modulegen
        BUILD_ALWAYS ON
        BUILD_BYPRODUCTS ${MODULEGEN_EXECUTABLE}
        INSTALL_COMMAND ""
    )
    set(VARK_MODULEGEN_DEPENDENCY host_modulegen)
elseif(NOT MODULEGEN_EXECUTABLE AND NOT VARK_BUILD_TOOLS)
    # The host tools are off, but the library cannot do without its generator.
    add_subdirectory(${PROJECT_SOURCE_DIR}/tools/modulegen ${PROJECT_BINARY_DIR}/tools/modulegen)
endif()

# vark_generate_modules(<target> SCHEMAS <folder> OUTPUT <folder>)
# An object library <target> of the sources that modulegen makes from the schemas in the
# subfolders of SCHEMAS. Every schema file gives a header and a source of its own stem, so the
# outputs are known from the file names; adding or removing a schema reconfigures by itself.
function(vark_generate_modules target)
    cmake_parse_arguments(ARG "" "SCHEMAS;OUTPUT" "" ${ARGN})
    file(GLOB schemaFiles CONFIGURE_DEPENDS ${ARG_SCHEMAS}/*/*.json)
    set(headers)
    set(sources)
    foreach(schema IN LISTS schemaFiles)
        get_filename_component(stem ${schema} NAME_WE)
        get_filename_component(folderPath ${schema} DIRECTORY)
        get_filename_component(folder ${folderPath} NAME)
        list(APPEND headers ${ARG_OUTPUT}/${folder}/${stem}.h)
        list(APPEND sources ${ARG_OUTPUT}/${folder}/${stem}.cpp)
    endforeach()

    if(MODULEGEN_EXECUTABLE)
        set(generator ${MODULEGEN_EXECUTABLE})
    else()
        set(generator modulegen)
    endif()
    add_custom_command(
        OUTPUT ${headers} ${sources}
        COMMAND ${generator} --schemas ${ARG_SCHEMAS} --output ${ARG_OUTPUT}
        DEPENDS ${schemaFiles} ${generator} ${VARK_MODULEGEN_DEPENDENCY}
        COMMENT "Generating parameter modules from ${ARG_SCHEMAS}"
        VERBATIM
    )
    add_library(${target} OBJECT ${sources} ${headers})
    target_include_directories(${target} PUBLIC ${ARG_OUTPUT})
    target_link_libraries(${target} PUBLIC vark_store)
endfunction()
