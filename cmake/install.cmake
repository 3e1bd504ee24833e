# `cmake --install`: headers, libraries, the CMake package quorvex and quorvex.pc.
include(CMakePackageConfigHelpers)

set(package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/quorvex)

set(targets quorvex)
if(QUORVEX_STATIC)
    list(APPEND targets quorvex_static)
endif()
install(TARGETS ${targets} EXPORT quorvexTargets)
install(EXPORT quorvexTargets NAMESPACE quorvex:: DESTINATION ${package_dir})
install(DIRECTORY ${PROJECT_SOURCE_DIR}/include/ DESTINATION ${CMAKE_INSTALL_INCLUDEDIR} FILES_MATCHING PATTERN *.h)

configure_package_config_file(${CMAKE_CURRENT_LIST_DIR}/quorvexConfig.cmake.in
    ${PROJECT_BINARY_DIR}/quorvexConfig.cmake INSTALL_DESTINATION ${package_dir})
write_basic_package_version_file(${PROJECT_BINARY_DIR}/quorvexConfigVersion.cmake COMPATIBILITY SameMinorVersion)
install(FILES ${PROJECT_BINARY_DIR}/quorvexConfig.cmake ${PROJECT_BINARY_DIR}/quorvexConfigVersion.cmake
    DESTINATION ${package_dir})

# Libs.private is read for static linking only (pkg-config --static).
set(pc_private)
foreach(library IN LISTS SUPERLU_LIBRARY LAPACK_LIBRARIES BLAS_LIBRARIES QUORVEX_SLEEF_LIBRARY ZLIB_LIBRARIES
        CMAKE_THREAD_LIBS_INIT CMAKE_DL_LIBS)
    if(NOT library MATCHES "^-|/")
        set(library -l${library})
    endif()
    list(APPEND pc_private ${library})
endforeach()
list(REMOVE_DUPLICATES pc_private)
list(JOIN pc_private " " pc_private)
foreach(dir IN ITEMS LIBDIR INCLUDEDIR)
    if(IS_ABSOLUTE "${CMAKE_INSTALL_${dir}}")
        set(pc_${dir} "${CMAKE_INSTALL_${dir}}")
    else()
        set(pc_${dir} "\${prefix}/${CMAKE_INSTALL_${dir}}")
    endif()
endforeach()
# Written at install time, so that `cmake --install --prefix` is obeyed.
install(CODE "
    set(PROJECT_VERSION \"${PROJECT_VERSION}\")
    set(PROJECT_DESCRIPTION \"${PROJECT_DESCRIPTION}\")
    set(pc_LIBDIR [[${pc_LIBDIR}]])
    set(pc_INCLUDEDIR [[${pc_INCLUDEDIR}]])
    set(pc_private \"${pc_private}\")
    configure_file(\"${CMAKE_CURRENT_LIST_DIR}/quorvex.pc.in\" \"${PROJECT_BINARY_DIR}/quorvex.pc\" @ONLY)")
install(FILES ${PROJECT_BINARY_DIR}/quorvex.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)

# How gdb shows values. It loads the script with the library: from its own directory of such scripts, where the
# library is the system's, else from beside the library, once that is among the directories it trusts (one line in
# ~/.gdbinit: add-auto-load-safe-path <directory of the library>).
if(UNIX AND NOT APPLE)
    set(gdb_script libquorvex.so.${PROJECT_VERSION}-gdb.py)
    configure_file(${CMAKE_CURRENT_LIST_DIR}/gdb_printers.py ${PROJECT_BINARY_DIR}/${gdb_script} COPYONLY)
    if(CMAKE_INSTALL_PREFIX STREQUAL "/usr")
        install(FILES ${PROJECT_BINARY_DIR}/${gdb_script}
            DESTINATION ${CMAKE_INSTALL_DATADIR}/gdb/auto-load${CMAKE_INSTALL_FULL_LIBDIR})
    else()
        install(FILES ${PROJECT_BINARY_DIR}/${gdb_script} DESTINATION ${CMAKE_INSTALL_LIBDIR})
    endif()
endif()
