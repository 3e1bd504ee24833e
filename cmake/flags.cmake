# Compiler flags, as interface targets that the project's own targets link privately.
#   quorvex_warnings   for everything: warnings, sanitizers, coverage
#   quorvex_kernels    for the library and the loops that the benchmarks compare it with

add_library(quorvex_warnings INTERFACE)
add_library(quorvex_kernels INTERFACE)

if(CMAKE_CXX_COMPILER_ID MATCHES "GNU|Clang")
    target_compile_options(quorvex_warnings INTERFACE -Wall -Wextra $<$<BOOL:${QUORVEX_WERROR}>:-Werror>)

    # These three let loops vectorise and change no value: no errno from sqrt, no traps (all are masked), and no
    # fused multiply-add, whose result would depend on the processor. -ffast-math is out of the question: NaN,
    # infinities and the sign of zero are values that programs look at.
    target_compile_options(quorvex_kernels INTERFACE -fno-math-errno -fno-trapping-math -ffp-contract=off)

    if(QUORVEX_SANITIZE)
        list(JOIN QUORVEX_SANITIZE "," sanitizers)
        target_compile_options(quorvex_warnings INTERFACE -fsanitize=${sanitizers} -fno-omit-frame-pointer)
        if("undefined" IN_LIST QUORVEX_SANITIZE)
            target_compile_options(quorvex_warnings INTERFACE -fno-sanitize-recover=undefined)
        endif()
        target_link_options(quorvex_warnings INTERFACE -fsanitize=${sanitizers})
    endif()
    if(QUORVEX_COVERAGE)
        target_compile_options(quorvex_warnings INTERFACE --coverage)
        target_link_options(quorvex_warnings INTERFACE --coverage)
    endif()
endif()
