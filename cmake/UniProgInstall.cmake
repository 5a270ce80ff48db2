# The installed package: find_package(UniProgUtils CONFIG) and pkg-config.

include(CMakePackageConfigHelpers)

configure_package_config_file(
    "${CMAKE_CURRENT_LIST_DIR}/UniProgUtilsConfig.cmake.in"
    "${PROJECT_BINARY_DIR}/UniProgUtilsConfig.cmake"
    INSTALL_DESTINATION "${UNIPROG_INSTALL_CMAKEDIR}"
    PATH_VARS UNIPROG_INSTALL_THEMESDIR)
write_basic_package_version_file(
    "${PROJECT_BINARY_DIR}/UniProgUtilsConfigVersion.cmake"
    COMPATIBILITY SameMajorVersion)
install(FILES
    "${PROJECT_BINARY_DIR}/UniProgUtilsConfig.cmake"
    "${PROJECT_BINARY_DIR}/UniProgUtilsConfigVersion.cmake"
    "${CMAKE_CURRENT_LIST_DIR}/UniProgThemes.cmake"
    DESTINATION "${UNIPROG_INSTALL_CMAKEDIR}" COMPONENT dev)

configure_file("${CMAKE_CURRENT_LIST_DIR}/UniProgUtils.pc.in" "${PROJECT_BINARY_DIR}/UniProgUtils.pc.in" @ONLY)
# The prefix is known only when the package is installed (cmake --install --prefix), so it is filled in then.
install(CODE "
    set(dollar \"$\")
    set(prefix \"\${CMAKE_INSTALL_PREFIX}\")
    configure_file(\"${PROJECT_BINARY_DIR}/UniProgUtils.pc.in\" \"${PROJECT_BINARY_DIR}/UniProgUtils.pc\")"
    COMPONENT dev)
install(FILES "${PROJECT_BINARY_DIR}/UniProgUtils.pc"
    DESTINATION "${CMAKE_INSTALL_LIBDIR}/pkgconfig" COMPONENT dev)
