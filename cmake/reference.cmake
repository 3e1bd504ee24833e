# The reference, made from the public headers: the texts that `help` shows, compiled into the library, and pages as
# HTML and for man, which are installed.
add_executable(quorvex_reference ${PROJECT_SOURCE_DIR}/docs/reference/generator.cpp)
target_include_directories(quorvex_reference PRIVATE ${PROJECT_SOURCE_DIR}/src)
if(CMAKE_CXX_COMPILER_ID MATCHES "GNU|Clang") # no sanitizers, under which g++ 12 sees faults in std::regex that are none
    target_compile_options(quorvex_reference PRIVATE -Wall -Wextra)
endif()

set(reference_dir ${PROJECT_BINARY_DIR}/reference)
file(GLOB reference_headers CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/include/quorvex/*.h)
add_custom_command(OUTPUT ${reference_dir}/help_texts.cpp
    COMMAND quorvex_reference ${PROJECT_SOURCE_DIR}/include/quorvex ${reference_dir}
    DEPENDS quorvex_reference ${reference_headers}
    COMMENT "Reference from the public headers")

install(DIRECTORY ${reference_dir}/html/ DESTINATION ${CMAKE_INSTALL_DOCDIR}/reference)
install(DIRECTORY ${reference_dir}/man/ DESTINATION ${CMAKE_INSTALL_MANDIR}/man3)
