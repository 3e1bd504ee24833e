# The rows of each public header are expanded in a separate source, so that a new row compiles one of them again.
set(function_calls)
set(calls_dir ${PROJECT_BINARY_DIR}/function_calls)
file(GLOB row_headers CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/include/quorvex/*.h)
foreach(header IN LISTS row_headers)
    file(STRINGS ${header} rows REGEX "^#define QUORVEX_[A-Z]+_COUNTS\\(ROW\\)")
    if(rows)
        cmake_path(GET header STEM stem)
        string(REGEX REPLACE "#define (QUORVEX_[A-Z]+_COUNTS)[^;]*;?" "\\1(KN_CALLS)\n" rows "${rows}")
        file(CONFIGURE OUTPUT ${calls_dir}/${stem}.cpp CONTENT [[
#include "quorvex/@stem@.h"

#include "host/function_calls.h"

namespace kn {
@rows@}
]] @ONLY)
        list(APPEND function_calls ${calls_dir}/${stem}.cpp)
    endif()
endforeach()
if(CMAKE_CXX_COMPILER_ID MATCHES "GNU|Clang") # thousands of calls of one line each
    set_source_files_properties(${function_calls} PROPERTIES COMPILE_OPTIONS -O1)
endif()
