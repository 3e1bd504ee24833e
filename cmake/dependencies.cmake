# What the library is built upon. All of it stays private: a program links quorvex and nothing else.
# Sets QUORVEX_PRIVATE_LIBRARIES, and QUORVEX_BLAS_VENDOR for the installed package.

# quorvex_need(<found> <what> <Debian package>): stops, telling what to install, unless <found> is true.
function(quorvex_need found what package)
    if(NOT found)
        message(FATAL_ERROR "quorvex needs ${what}, which was not found.\n"
            "On Debian: apt-get install ${package}   (scripts/setup installs all that is needed.)")
    endif()
endfunction()

# OpenBLAS unless the user names another implementation; where it is absent, any other.
if(NOT BLA_VENDOR)
    set(BLA_VENDOR OpenBLAS)
    find_package(BLAS QUIET)
    if(NOT BLAS_FOUND)
        unset(BLAS_LIBRARIES CACHE)
        set(BLA_VENDOR All)
    endif()
endif()
set(QUORVEX_BLAS_VENDOR ${BLA_VENDOR})
find_package(BLAS QUIET)
quorvex_need("${BLAS_FOUND}" "BLAS (OpenBLAS or another implementation)" libopenblas-dev)
find_package(LAPACK QUIET)
quorvex_need("${LAPACK_FOUND}" "LAPACK (part of OpenBLAS)" libopenblas-dev)

find_package(Boost 1.74 QUIET)
quorvex_need("${Boost_FOUND}" "the Boost headers, 1.74 or later" libboost-dev)

# The interface of version 5, which has 32-bit integers.
find_path(SUPERLU_INCLUDE_DIR slu_ddefs.h PATH_SUFFIXES superlu SuperLU)
find_library(SUPERLU_LIBRARY superlu)
mark_as_advanced(SUPERLU_INCLUDE_DIR SUPERLU_LIBRARY)
set(superlu_major)
if(SUPERLU_INCLUDE_DIR AND SUPERLU_LIBRARY)
    file(STRINGS ${SUPERLU_INCLUDE_DIR}/slu_util.h superlu_major REGEX "^#define SUPERLU_MAJOR_VERSION +5")
endif()
if(NOT superlu_major)
    quorvex_need(FALSE "SuperLU, version 5" libsuperlu-dev)
endif()

find_package(ZLIB QUIET)
quorvex_need("${ZLIB_FOUND}" "zlib" zlib1g-dev)

set(THREADS_PREFER_PTHREAD_FLAG ON)
find_package(Threads QUIET)
quorvex_need("${Threads_FOUND}" "a thread library" libc6-dev)

# Elementary functions of vectors, for the instruction sets of x86-64 beyond the baseline.
option(QUORVEX_SLEEF "Elementary functions by SLEEF where the processor has AVX2 or AVX-512" ON)
set(QUORVEX_SLEEF_LIBRARY) # stays empty without
if(QUORVEX_SLEEF AND CMAKE_CXX_COMPILER_ID MATCHES "GNU|Clang" AND CMAKE_SIZEOF_VOID_P EQUAL 8
        AND CMAKE_SYSTEM_PROCESSOR MATCHES "x86_64|AMD64")
    find_library(SLEEF_LIBRARY sleef)
    find_path(SLEEF_INCLUDE_DIR sleef.h)
    mark_as_advanced(SLEEF_LIBRARY SLEEF_INCLUDE_DIR)
    if(NOT SLEEF_LIBRARY OR NOT SLEEF_INCLUDE_DIR)
        quorvex_need(FALSE "SLEEF, 3.5 or later (or set QUORVEX_SLEEF=OFF)" libsleef-dev)
    endif()
    set(QUORVEX_SLEEF_LIBRARY ${SLEEF_LIBRARY})
endif()

if(QUORVEX_TESTS)
    find_package(GTest QUIET)
    quorvex_need("${GTest_FOUND}" "GoogleTest (or set QUORVEX_TESTS=OFF)" "libgtest-dev libgmock-dev")
    if(NOT TARGET GTest::gmock)
        quorvex_need(FALSE "GoogleMock (or set QUORVEX_TESTS=OFF)" libgmock-dev)
    endif()
endif()
if(QUORVEX_BENCH)
    find_package(benchmark QUIET)
    quorvex_need("${benchmark_FOUND}" "Google Benchmark (or set QUORVEX_BENCH=OFF)" libbenchmark-dev)
endif()

set(QUORVEX_PRIVATE_LIBRARIES ${SUPERLU_LIBRARY} LAPACK::LAPACK BLAS::BLAS ${QUORVEX_SLEEF_LIBRARY} ZLIB::ZLIB Threads::Threads
    ${CMAKE_DL_LIBS})
