# The library's targets: quorvex_objects, quorvex (shared) and, by option, quorvex_static.

# The folders and their arrows.
set(QUORVEX_LAYERS ${PROJECT_SOURCE_DIR}/src/layers)
set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${QUORVEX_LAYERS})
file(STRINGS ${QUORVEX_LAYERS} layers REGEX "^[a-z]+:")
list(TRANSFORM layers REPLACE ":.*" "" OUTPUT_VARIABLE QUORVEX_FOLDERS)

# Sources are found, not listed: there is one file per idea and so there are many, and a list would only repeat
# the folders. CONFIGURE_DEPENDS makes the build notice a new file by itself.
set(sources)
foreach(folder IN LISTS QUORVEX_FOLDERS)
    file(GLOB_RECURSE found CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/src/${folder}/*.cpp)
    list(APPEND sources ${found})
endforeach()
if(WIN32)
    list(FILTER sources EXCLUDE REGEX "/posix[^/]*\\.cpp$")
else()
    list(FILTER sources EXCLUDE REGEX "/win32[^/]*\\.cpp$")
endif()

# quorvex_library_sources(<target>): how sources of the library are compiled.
function(quorvex_library_sources target)
    set_target_properties(${target} PROPERTIES
        POSITION_INDEPENDENT_CODE ON
        CXX_VISIBILITY_PRESET hidden
        VISIBILITY_INLINES_HIDDEN ON)
    target_include_directories(${target} PUBLIC ${PROJECT_SOURCE_DIR}/include ${PROJECT_SOURCE_DIR}/src)
    target_compile_definitions(${target}
        PUBLIC $<$<BOOL:${QUORVEX_ALLOC_PROBE}>:QUORVEX_ALLOC_PROBE=1>
        PRIVATE QUORVEX_BUILDING)
    if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
        # No program replaces a function of the library by one of the same name, so calls inside it may be direct.
        # (Not for Clang, whose form of the option would bind the exported constants too, which a program may own
        # by copy relocation.)
        target_compile_options(${target} PRIVATE -fno-semantic-interposition)
    endif()
    target_include_directories(${target} SYSTEM PRIVATE ${SUPERLU_INCLUDE_DIR})
    target_link_libraries(${target}
        PUBLIC ${QUORVEX_PRIVATE_LIBRARIES}
        PRIVATE quorvex_warnings quorvex_kernels Boost::headers)
endfunction()

# The loops are compiled once more for each instruction set that the processor may turn out to have
# (src/base/instruction_set.h).
file(GLOB kernel_sources CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/src/kernels/loops/*.cpp)
set(QUORVEX_OBJECT_LIBRARIES quorvex_objects) # all of them: what a test program links
set(has_x86_kernels FALSE)
if(CMAKE_CXX_COMPILER_ID MATCHES "GNU|Clang" AND CMAKE_SYSTEM_PROCESSOR MATCHES "x86_64|AMD64"
        AND CMAKE_SIZEOF_VOID_P EQUAL 8)
    set(has_x86_kernels TRUE)
    set(flags_of_avx2 -mavx2 -mfma)
    set(flags_of_avx512 -mavx512f -mavx512vl -mavx512dq -mavx512bw -mavx2 -mfma -mprefer-vector-width=512)
    set(vector_bytes_of_avx2 32)
    set(vector_bytes_of_avx512 64)
    foreach(isa avx2 avx512)
        add_library(quorvex_kernels_${isa} OBJECT ${kernel_sources})
        target_compile_definitions(quorvex_kernels_${isa} PRIVATE KN_ISA=${isa})
        target_compile_options(quorvex_kernels_${isa} PRIVATE ${flags_of_${isa}})
        if(QUORVEX_SLEEF_LIBRARY)
            target_compile_definitions(quorvex_kernels_${isa} PRIVATE KN_VECTOR_BYTES=${vector_bytes_of_${isa}})
            target_include_directories(quorvex_kernels_${isa} SYSTEM PRIVATE ${SLEEF_INCLUDE_DIR})
        endif()
        quorvex_library_sources(quorvex_kernels_${isa})
        list(APPEND QUORVEX_OBJECT_LIBRARIES quorvex_kernels_${isa})
    endforeach()
endif()

include(${CMAKE_CURRENT_LIST_DIR}/function_calls.cmake)
add_library(quorvex_objects OBJECT ${sources} ${function_calls} ${reference_dir}/help_texts.cpp)
quorvex_library_sources(quorvex_objects)
target_compile_definitions(quorvex_objects
    PRIVATE $<$<BOOL:${has_x86_kernels}>:KN_X86_KERNELS>
    INTERFACE QUORVEX_STATIC_DEFINE)
# Headers of values are written field by field and copied right after that: a copy by wider moves would wait until
# the fields are in the cache.
if(CMAKE_CXX_COMPILER_ID MATCHES "GNU|Clang")
    set_source_files_properties(src/value/value.cpp PROPERTIES COMPILE_OPTIONS -fno-tree-slp-vectorize)
endif()

# quorvex_finish(<target>): what the shared and the static library have in common.
function(quorvex_finish target)
    target_compile_features(${target} PUBLIC cxx_std_20)
    target_include_directories(${target} INTERFACE
        $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}/include> $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}>)
    target_link_libraries(${target} PRIVATE ${QUORVEX_PRIVATE_LIBRARIES} $<BUILD_INTERFACE:quorvex_warnings>)
    add_library(quorvex::${target} ALIAS ${target})
endfunction()

list(TRANSFORM QUORVEX_OBJECT_LIBRARIES REPLACE "(.+)" "$<TARGET_OBJECTS:\\1>" OUTPUT_VARIABLE objects)
add_library(quorvex SHARED ${objects})
set_target_properties(quorvex PROPERTIES
    VERSION ${PROJECT_VERSION}
    SOVERSION ${PROJECT_VERSION_MAJOR}.${PROJECT_VERSION_MINOR})
quorvex_finish(quorvex)
if(CMAKE_CXX_COMPILER_ID MATCHES "GNU|Clang" AND NOT WIN32 AND NOT QUORVEX_SANITIZE)
    # A sanitized library takes its run-time's symbols from the program.
    target_link_options(quorvex PRIVATE LINKER:--no-undefined LINKER:-Bsymbolic-functions)
endif()
if(CMAKE_SYSTEM_NAME STREQUAL "Linux")
    # dlclose leaves it loaded: handlers of faults and of uncaught exceptions, threads, and a program's values point
    # into it.
    target_link_options(quorvex PRIVATE LINKER:-z,nodelete)
endif()

if(QUORVEX_STATIC)
    add_library(quorvex_static STATIC ${objects})
    target_compile_definitions(quorvex_static INTERFACE QUORVEX_STATIC_DEFINE)
    if(NOT WIN32) # there libquorvex.lib is the shared library's import library
        set_target_properties(quorvex_static PROPERTIES OUTPUT_NAME quorvex)
    endif()
    quorvex_finish(quorvex_static)
endif()
