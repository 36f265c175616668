# What `cmake --install` puts where, in five components:
#   runtime       the library under its soname: all that a linked or loading program needs to run
#   host_runtime  the same of the host library, which does without the first one
#   development   what hosts of both are built with: headers, CMake package, pkg-config files, manual of the
#                 calls, guides
#   tools         fi-rotate, its manual, completions and schemas, and the manual of the files that it reads
#   python        the package fi_rotation, which needs the host library
# Every path is found relative to the file that names it, so that an installed tree can be moved, unless the
# builder chose absolute folders.
include(GNUInstallDirs)
include(CMakePackageConfigHelpers)

install(TARGETS fi_rotation EXPORT fi_rotationTargets
    LIBRARY DESTINATION "${CMAKE_INSTALL_LIBDIR}" COMPONENT runtime NAMELINK_COMPONENT development
    INCLUDES DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}")
if(FI_ROTATION_BUILD_HOST)
    install(TARGETS fi_rotation_host EXPORT fi_rotationTargets
        LIBRARY DESTINATION "${CMAKE_INSTALL_LIBDIR}" COMPONENT host_runtime NAMELINK_COMPONENT development
        INCLUDES DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}")
endif()
install(FILES ${FI_ROTATION_PUBLIC_HEADERS}
    DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}/fi_rotation" COMPONENT development)

install(FILES "${PROJECT_SOURCE_DIR}/SECURITY.md" "${PROJECT_SOURCE_DIR}/docs/abi.md"
    "${PROJECT_SOURCE_DIR}/docs/host-guide.md"
    DESTINATION "${CMAKE_INSTALL_DOCDIR}" COMPONENT development)

# find_package(fi_rotation) gives fi_rotation::fi_rotation and fi_rotation::host. The targets ask for nothing
# more: what the libraries themselves are built on is no part of their interfaces.
set(cmake_package_dir "${CMAKE_INSTALL_LIBDIR}/cmake/fi_rotation")
install(EXPORT fi_rotationTargets NAMESPACE fi_rotation:: FILE fi_rotationConfig.cmake
    DESTINATION "${cmake_package_dir}" COMPONENT development)
write_basic_package_version_file("${PROJECT_BINARY_DIR}/fi_rotationConfigVersion.cmake"
    COMPATIBILITY SameMajorVersion)
install(FILES "${PROJECT_BINARY_DIR}/fi_rotationConfigVersion.cmake"
    DESTINATION "${cmake_package_dir}" COMPONENT development)

# fi_relative_path(RESULT FROM TO): the way between two install folders that are both below the prefix.
function(fi_relative_path result from to)
    file(RELATIVE_PATH path "/prefix/${from}" "/prefix/${to}")
    string(REGEX REPLACE "/$" "" path "${path}")
    set(${result} "${path}" PARENT_SCOPE)
endfunction()

# pkg-config starts from the folder of the file itself when the library's folder is below the prefix.
if(IS_ABSOLUTE "${CMAKE_INSTALL_LIBDIR}")
    set(pc_prefix "${CMAKE_INSTALL_PREFIX}")
    set(pc_libdir "${CMAKE_INSTALL_LIBDIR}")
else()
    fi_relative_path(up "${CMAKE_INSTALL_LIBDIR}/pkgconfig" "")
    set(pc_prefix "\${pcfiledir}/${up}")
    set(pc_libdir "\${prefix}/${CMAKE_INSTALL_LIBDIR}")
endif()
if(IS_ABSOLUTE "${CMAKE_INSTALL_INCLUDEDIR}")
    set(pc_includedir "${CMAKE_INSTALL_INCLUDEDIR}")
else()
    set(pc_includedir "\${prefix}/${CMAKE_INSTALL_INCLUDEDIR}")
endif()
# fi_install_pc(MODULE): what pkg-config tells of one of the libraries.
function(fi_install_pc module)
    configure_file("${PROJECT_SOURCE_DIR}/cmake/${module}.pc.in" "${PROJECT_BINARY_DIR}/${module}.pc" @ONLY)
    install(FILES "${PROJECT_BINARY_DIR}/${module}.pc"
        DESTINATION "${CMAKE_INSTALL_LIBDIR}/pkgconfig" COMPONENT development)
endfunction()
fi_install_pc(fi_rotation)
if(FI_ROTATION_BUILD_HOST)
    fi_install_pc(fi_rotation_host)
endif()

if(FI_ROTATION_BUILD_CLI)
    if(IS_ABSOLUTE "${CMAKE_INSTALL_LIBDIR}" OR IS_ABSOLUTE "${CMAKE_INSTALL_BINDIR}")
        set_target_properties(fi-rotate PROPERTIES INSTALL_RPATH "${CMAKE_INSTALL_FULL_LIBDIR}")
    else()
        fi_relative_path(to_library "${CMAKE_INSTALL_BINDIR}" "${CMAKE_INSTALL_LIBDIR}")
        set_target_properties(fi-rotate PROPERTIES INSTALL_RPATH "$ORIGIN/${to_library}")
    endif()
    install(TARGETS fi-rotate RUNTIME DESTINATION "${CMAKE_INSTALL_BINDIR}" COMPONENT tools)

    # bash looks for the completions of a command under its name; where zsh looks differs between systems.
    set(FI_ROTATION_ZSH_COMPLETIONS "${CMAKE_INSTALL_DATADIR}/zsh/site-functions"
        CACHE STRING "Where completions for zsh are installed")
    set(completions "${PROJECT_BINARY_DIR}/completions")
    install(FILES "${completions}/fi-rotate.bash" RENAME fi-rotate
        DESTINATION "${CMAKE_INSTALL_DATADIR}/bash-completion/completions" COMPONENT tools)
    install(FILES "${completions}/_fi-rotate"
        DESTINATION "${FI_ROTATION_ZSH_COMPLETIONS}" COMPONENT tools)

    install(FILES "${PROJECT_SOURCE_DIR}/docs/administrators-guide.md" "${PROJECT_SOURCE_DIR}/docs/simulate.md"
        DESTINATION "${CMAKE_INSTALL_DATADIR}/doc/fi-rotate" COMPONENT tools)
    # Where the manual page of fi-rotate says.
    install(DIRECTORY "${PROJECT_SOURCE_DIR}/docs/schema"
        DESTINATION "${CMAKE_INSTALL_DATADIR}/fi-rotate" COMPONENT tools)
endif()

if(TARGET fi_rotation_host)
    # Where Debian's interpreter looks when the prefix is /usr. Elsewhere PYTHONPATH names it.
    set(FI_ROTATION_PYTHON_DIR "lib/python3/dist-packages" CACHE STRING "Where the Python package is installed")
    install(DIRECTORY "${PROJECT_SOURCE_DIR}/python/fi_rotation"
        DESTINATION "${FI_ROTATION_PYTHON_DIR}" COMPONENT python
        PATTERN __pycache__ EXCLUDE)
endif()

# The manual pages that docs/man rendered; none when scdoc is missing. Section 3 is for those who build hosts.
file(GLOB manual_sources CONFIGURE_DEPENDS "${PROJECT_SOURCE_DIR}/docs/man/*.[1-8].scd")
foreach(source IN LISTS manual_sources)
    get_filename_component(page "${source}" NAME_WLE)
    string(REGEX MATCH "[1-8]$" section "${page}")
    if(section STREQUAL "3")
        set(component development)
    else()
        set(component tools)
    endif()
    install(FILES "${PROJECT_BINARY_DIR}/docs/man/${page}" OPTIONAL
        DESTINATION "${CMAKE_INSTALL_MANDIR}/man${section}" COMPONENT ${component})
endforeach()
