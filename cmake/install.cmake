# Installs the libraries, the headers, the programs, the manual pages, a CMake package and pkg-config
# files. Nothing in them holds the prefix, so that an installed tree may be moved.
include(CMakePackageConfigHelpers)

install(TARGETS camparam camparam_platform camparam_commands camparam_headers EXPORT camparam_targets
    LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
    INCLUDES DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
set_target_properties(camparam_headers PROPERTIES EXPORT_NAME headers)
set_target_properties(camparam_platform PROPERTIES EXPORT_NAME platform)
set_target_properties(camparam_commands PROPERTIES EXPORT_NAME commands)
install(DIRECTORY include/camparam DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}
    FILES_MATCHING PATTERN *.h PATTERN *.def)

if(CAMPARAM_TOOLS)
    file(RELATIVE_PATH from_bin_to_lib
        /${CMAKE_INSTALL_BINDIR} /${CMAKE_INSTALL_LIBDIR})
    set_target_properties(camparamd camparam_cli PROPERTIES
        INSTALL_RPATH "$ORIGIN/${from_bin_to_lib}")
    set_target_properties(camparam_client PROPERTIES INSTALL_RPATH "$ORIGIN")
    install(TARGETS camparamd camparam_cli RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
    install(TARGETS camparam_client LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} NAMELINK_SKIP)
    install(FILES cli/camparam.bash RENAME camparam
        DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions)
    install(FILES cli/camparam.zsh RENAME _camparam
        DESTINATION ${CMAKE_INSTALL_DATADIR}/zsh/vendor-completions)
    install(FILES cli/camparam.fish
        DESTINATION ${CMAKE_INSTALL_DATADIR}/fish/vendor_completions.d)
endif()

if(CAMPARAM_MAN)
    foreach(page IN LISTS CAMPARAM_MAN_PAGES)
        string(REGEX MATCH "[0-9]$" section ${page})
        install(FILES ${page} DESTINATION ${CMAKE_INSTALL_MANDIR}/man${section})
    endforeach()
endif()

set(package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/camparam)
install(EXPORT camparam_targets NAMESPACE camparam:: DESTINATION ${package_dir})
write_basic_package_version_file(${CMAKE_CURRENT_BINARY_DIR}/camparam-config-version.cmake
    COMPATIBILITY SameMajorVersion)
install(FILES cmake/camparam-config.cmake
    ${CMAKE_CURRENT_BINARY_DIR}/camparam-config-version.cmake
    DESTINATION ${package_dir})

set(pkgconfig_dir ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
file(RELATIVE_PATH from_pkgconfig_to_prefix /${pkgconfig_dir} /)
string(REGEX REPLACE "/$" "" from_pkgconfig_to_prefix ${from_pkgconfig_to_prefix})
foreach(name camparam camparam-platform camparam-commands)
    configure_file(cmake/${name}.pc.in ${CMAKE_CURRENT_BINARY_DIR}/${name}.pc @ONLY)
    install(FILES ${CMAKE_CURRENT_BINARY_DIR}/${name}.pc DESTINATION ${pkgconfig_dir})
endforeach()
