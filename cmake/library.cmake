# The library's targets: quorvex_objects, quorvex (shared) and, by option, quorvex_static.

# Folders in the order of their arrows: each may include the private headers of those before it.
set(QUORVEX_FOLDERS platform core runtime text files sparse numerics solvers geometry graphics native)

# Sources are found, not listed: there is one file per idea and so there are many, and a list would only repeat
# the folders. CONFIGURE_DEPENDS makes the build notice a new file by itself.
set(sources)
foreach(folder IN LISTS QUORVEX_FOLDERS)
    file(GLOB found CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/${folder}/*.cpp)
    list(APPEND sources ${found})
endforeach()
if(WIN32)
    list(FILTER sources EXCLUDE REGEX "/posix[^/]*\\.cpp$")
else()
    list(FILTER sources EXCLUDE REGEX "/win32[^/]*\\.cpp$")
endif()

add_library(quorvex_objects OBJECT ${sources})
set_target_properties(quorvex_objects PROPERTIES
    POSITION_INDEPENDENT_CODE ON
    CXX_VISIBILITY_PRESET hidden
    VISIBILITY_INLINES_HIDDEN ON)
target_include_directories(quorvex_objects PUBLIC ${PROJECT_SOURCE_DIR}/include ${PROJECT_SOURCE_DIR})
target_compile_definitions(quorvex_objects
    PUBLIC $<$<BOOL:${QUORVEX_ALLOC_PROBE}>:QUORVEX_ALLOC_PROBE=1>
    PRIVATE QUORVEX_BUILDING
    INTERFACE QUORVEX_STATIC_DEFINE)
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
    # No program replaces a function of the library by one of the same name, so calls inside it may be direct.
    # (Not for Clang, whose form of the option would bind the exported constants too, which a program may own by
    # copy relocation.)
    target_compile_options(quorvex_objects PRIVATE -fno-semantic-interposition)
endif()
# Headers of values are written field by field and copied right after that: a copy by wider moves would wait until
# the fields are in the cache.
if(CMAKE_CXX_COMPILER_ID MATCHES "GNU|Clang")
    set_source_files_properties(core/value.cpp PROPERTIES COMPILE_OPTIONS -fno-tree-slp-vectorize)
endif()
target_link_libraries(quorvex_objects
    PUBLIC ${QUORVEX_PRIVATE_LIBRARIES}
    PRIVATE quorvex_warnings quorvex_kernels Boost::headers)

# quorvex_finish(<target>): what the shared and the static library have in common.
function(quorvex_finish target)
    target_compile_features(${target} PUBLIC cxx_std_20)
    target_include_directories(${target} INTERFACE
        $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}/include> $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}>)
    target_link_libraries(${target} PRIVATE ${QUORVEX_PRIVATE_LIBRARIES} $<BUILD_INTERFACE:quorvex_warnings>)
    add_library(quorvex::${target} ALIAS ${target})
endfunction()

add_library(quorvex SHARED $<TARGET_OBJECTS:quorvex_objects>)
set_target_properties(quorvex PROPERTIES
    VERSION ${PROJECT_VERSION}
    SOVERSION ${PROJECT_VERSION_MAJOR}.${PROJECT_VERSION_MINOR})
quorvex_finish(quorvex)
if(CMAKE_CXX_COMPILER_ID MATCHES "GNU|Clang" AND NOT WIN32 AND NOT QUORVEX_SANITIZE)
    # A sanitized library takes its run-time's symbols from the program.
    target_link_options(quorvex PRIVATE LINKER:--no-undefined LINKER:-Bsymbolic-functions)
endif()

if(QUORVEX_STATIC)
    add_library(quorvex_static STATIC $<TARGET_OBJECTS:quorvex_objects>)
    target_compile_definitions(quorvex_static INTERFACE QUORVEX_STATIC_DEFINE)
    if(NOT WIN32) # there libquorvex.lib is the shared library's import library
        set_target_properties(quorvex_static PROPERTIES OUTPUT_NAME quorvex)
    endif()
    quorvex_finish(quorvex_static)
endif()
