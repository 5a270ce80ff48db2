# Debian packages of what is installed, by `cpack`: uniprogutils (libraries, themes, commands) and uniprogutils-dev
# (headers, CMake package, pkg-config). scripts/package.sh makes and tries them.

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_CONTACT "The developers of UniProgUtils")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_COMPONENTS_ALL runtime dev)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)

set(CPACK_COMPONENT_RUNTIME_DESCRIPTION "${PROJECT_DESCRIPTION}")
set(CPACK_DEBIAN_RUNTIME_PACKAGE_NAME uniprogutils)
set(CPACK_DEBIAN_RUNTIME_PACKAGE_SECTION libs)
set(CPACK_DEBIAN_RUNTIME_PACKAGE_SHLIBDEPS ON)
# Icons and themes are SVG images, which a plugin reads that no symbol leads to.
set(CPACK_DEBIAN_RUNTIME_PACKAGE_DEPENDS libqt6svg6)

set(CPACK_COMPONENT_DEV_DESCRIPTION "Headers and test kit of UniProgUtils")
set(CPACK_COMPONENT_DEV_DEPENDS runtime)
set(CPACK_DEBIAN_DEV_PACKAGE_NAME uniprogutils-dev)
set(CPACK_DEBIAN_DEV_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_DEV_PACKAGE_DEPENDS qt6-base-dev)
set(CPACK_DEBIAN_ENABLE_COMPONENT_DEPENDS ON)

include(CPack)
