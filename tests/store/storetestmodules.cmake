# The store tests' modules, generated from tests/store/schemas as the library's are, and the
# hand-written manager of opaque modules that takes any file (modules/): the target
# store_test_modules. The store and link tests and their benchmarks share it; whichever
# directory includes this first owns the target.
include_guard(GLOBAL)

include(${PROJECT_SOURCE_DIR}/cmake/VarkModules.cmake)
vark_generate_modules(store_test_modules
    SCHEMAS ${CMAKE_CURRENT_LIST_DIR}/schemas
    OUTPUT ${CMAKE_CURRENT_BINARY_DIR}/generated
)
target_sources(store_test_modules PRIVATE ${CMAKE_CURRENT_LIST_DIR}/modules/opaquesetmanager.cpp)
target_include_directories(store_test_modules PUBLIC ${CMAKE_CURRENT_LIST_DIR}/modules)
