# The Debian package; `make package` makes it.
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME orvo)
set(CPACK_PACKAGE_VENDOR "The Orvo AI maintainers")
set(CPACK_PACKAGE_CONTACT "The Orvo AI maintainers <maintainers@orvo.example>")
set(CPACK_PACKAGE_HOMEPAGE_URL "${ORVO_WEB_ADDRESS}")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "workspace for the command-line tools of AI coding assistants")
set(CPACK_DEBIAN_PACKAGE_DESCRIPTION
"Several assistants, connectors of your own and a plain shell work side by side
on one project, each in a real terminal of its own, in the project itself or
each in a copy; what they changed is reviewed and taken over file by file.
It comes with orvoctl, which does the same without a window.")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_PACKAGE_DIRECTORY "${PROJECT_BINARY_DIR}/package")

set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION devel)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
# Beside the libraries: the shell of every session.
set(CPACK_DEBIAN_PACKAGE_DEPENDS zsh)
set(CPACK_DEBIAN_PACKAGE_RECOMMENDS
  "fonts-inter, fonts-jetbrains-mono, fonts-noto-color-emoji, python3, qt6-image-formats-plugins, \
speech-dispatcher, speech-dispatcher-espeak-ng, pocketsphinx-en-us")
set(CPACK_DEBIAN_PACKAGE_SUGGESTS "qt6-wayland, fonts-noto-cjk")
include(CPack)
