# `cpack` in the build folder makes a Debian package of what `cmake --install` puts in place.
# The libraries come from the binaries' own links; the rest are packages the program loads at run
# time: the SVG icon engine, the icon theme of its commands and the Secret Service it keeps
# passwords in.
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME lomarin)
set(CPACK_PACKAGE_VENDOR Kestrova)
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "Administer and develop MySQL and MariaDB servers")
set(CPACK_PACKAGE_CONTACT "Lomarin maintainers <lomarin@localhost>")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION database)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_DEPENDS "libqt6svg6, breeze-icon-theme")
set(CPACK_DEBIAN_PACKAGE_RECOMMENDS "gnome-keyring")
include(CPack)
